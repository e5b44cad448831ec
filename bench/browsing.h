#pragma once

#include "app/applwindow.h"
#include "bench/paintwatch.h"
#include "browser/searchparameters.h"

#include <QString>

#include <memory>

class CanvasView;
class ButtonItem;
class PictureScene;

/// The program's main window on the catalogue in the working folder, with what the measurements do in it.
class Browsing final
{
public:
    Browsing();
    ~Browsing();
    Q_DISABLE_COPY_MOVE(Browsing)

    [[nodiscard]] ViewHolder &holder() const;
    [[nodiscard]] CanvasView *view() const;
    [[nodiscard]] PictureScene &results() const;
    [[nodiscard]] PaintWatch &watch() { return *m_watch; }

    /// What "Suchen" does with the chosen parameters, up to the painted page.
    void search(const SearchParameters &parameters);

    /// Presses a button of the canvas and waits until its effect is painted.
    void press(ButtonItem *button);

private:
    std::unique_ptr<ApplWindow> m_window;
    PaintWatch *m_watch; // belongs to the view
};

[[nodiscard]] SearchParameters searchOf(int modelId, const QString &sort, bool once, bool picturesOnly);
