#include "bench/sample/locomotive.h"

void paintLocomotive(QPainter &painter, const Appearance &look, const QString &number)
{
    switch (look.build) {
    case Build::Box:
        paintBoxLocomotive(painter, look, number);
        break;
    case Build::Crocodile:
    case Build::LongNosed:
        paintCrocodile(painter, look, number);
        break;
    case Build::Steam:
        paintSteamLocomotive(painter, look, number);
        break;
    }
}
