#pragma once

#include "bench/sample/railwaytables.h"
#include "bench/sample/season.h"

#include <QImage>

enum class View { Passing, Station, Landscape, Viaduct, Portrait };

/// What a photograph shows. Equal motifs give equal pictures, pixel by pixel.
struct Motif
{
    int locomotiveClass = 0; // index into locomotiveClasses()
    QString number;
    View view = View::Passing;
    Season season = Season::Summer;
    Light light = Light::Noon;
    quint32 seed = 1;
};

/// Paints the photograph, 1200 x 800 pixels or, as a portrait, 800 x 1200. A larger `size` shows the same with edges
/// as sharp as a camera of that size could see them.
[[nodiscard]] QImage paintPhotograph(const Motif &motif, const QSize &size = {});
