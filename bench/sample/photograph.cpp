#include "bench/sample/photograph.h"

#include "bench/sample/landscape.h"
#include "bench/sample/lineside.h"

#include <QPainter>

#include <algorithm>

namespace {

/// One picture in the making: the parts of a view share its frame, its light and its random numbers.
class Photograph final
{
public:
    Photograph(const Motif &motif, const QSize &frame, QImage &image)
        : m_motif(motif)
        , m_class(locomotiveClasses().at(motif.locomotiveClass))
        , m_day(motif.season, motif.light)
        , m_random(motif.seed)
        , m_frame(QPoint(), frame)
        , m_painter(&image)
    {
        m_painter.setRenderHint(QPainter::Antialiasing);
        m_painter.scale(double(image.width()) / frame.width(), double(image.height()) / frame.height());
    }

    void paint();

private:
    void paintPassing();
    void paintStation();
    void paintLandscape();
    void paintViaduct();
    void paintPortrait();
    void paintBackground(double horizon, double mountainTop);
    void paintMeadowBehind(const Track &track, double top); // share of the height
    void paintMeadowBefore(const Track &track);
    void paintLine(const Track &track);
    void paintTrains(const Track &track, double x, int wagons);
    void finish();

    const Motif &m_motif;
    const LocomotiveClass &m_class;
    Daylight m_day;
    QRandomGenerator m_random;
    QRectF m_frame;
    QPainter m_painter;
};

void Photograph::paint()
{
    Landscape::paintSky(m_painter, m_frame, m_day, m_random);
    switch (m_motif.view) {
    case View::Passing:
        paintPassing();
        break;
    case View::Station:
        paintStation();
        break;
    case View::Landscape:
        paintLandscape();
        break;
    case View::Viaduct:
        paintViaduct();
        break;
    case View::Portrait:
        paintPortrait();
        break;
    }
    finish();
}

void Photograph::paintBackground(double horizon, double mountainTop)
{
    if (m_class.country != Country::Germany || m_random.bounded(3) == 0) {
        Landscape::paintMountains(m_painter, m_frame, mountainTop, horizon, m_day, m_random);
    }
    Landscape::paintHill(m_painter, m_frame, horizon - 34, 0.75, m_day, m_random);
    Landscape::paintHill(m_painter, m_frame, horizon + 8, 0.35, m_day, m_random);
}

void Photograph::paintMeadowBehind(const Track &track, double top)
{
    const QRectF strip(m_frame.left(), m_frame.top(), m_frame.width(), track.y + track.scale - m_frame.top());
    Landscape::paintMeadow(m_painter, strip, m_frame.height() * top, m_day, m_random);
}

void Photograph::paintMeadowBefore(const Track &track)
{
    const double top = track.y + 1.2 * track.scale;
    Landscape::paintMeadow(m_painter, m_frame.adjusted(0, top, 0, 0), top, m_day, m_random);
}

void Photograph::paintLine(const Track &track)
{
    if (m_class.look.hasPantographs) {
        Lineside::paintCatenary(m_painter, m_frame, track, m_random);
    } else {
        Lineside::paintTelegraphLine(m_painter, m_frame, track, m_random);
    }
    Lineside::paintTrack(m_painter, m_frame, track, m_day, m_random);
}

void Photograph::paintTrains(const Track &track, double x, int wagons)
{
    m_painter.save();
    m_painter.translate(x, track.y);
    m_painter.scale(track.scale, track.scale);
    m_painter.setPen(Qt::NoPen);
    paintTrain(m_painter, m_class.look.length / 2, 1, wagons, m_class.haulsGoods, m_class.country, m_random);
    paintLocomotive(m_painter, m_class.look, m_motif.number);
    m_painter.restore();
}

void Photograph::paintPassing()
{
    const double largest = m_frame.width() * 0.78 / m_class.look.length;
    const Track track { m_frame.height() * between(0.8, 0.84, m_random), std::min(50.0, largest) };
    paintBackground(m_frame.height() * 0.56, m_frame.height() * between(0.08, 0.2, m_random));
    paintMeadowBehind(track, 0.66);
    paintLine(track);
    const double x = m_frame.width() * between(0.43, 0.5, m_random);
    paintTrains(track, x, 2);
    paintMeadowBefore(track);
}

void Photograph::paintStation()
{
    const Track track { m_frame.height() * 0.82, between(34, 38, m_random) };
    paintBackground(m_frame.height() * 0.6, m_frame.height() * 0.2);
    paintMeadowBehind(track, 0.7);
    Lineside::paintStation(m_painter, m_frame, track, m_day, m_random);
    paintLine(track);
    paintTrains(track, m_frame.width() * between(0.42, 0.56, m_random), 1);
    paintMeadowBefore(track);
    const Track near { m_frame.height() * 0.95, track.scale * 1.12 }; // the next track, empty
    Lineside::paintTrack(m_painter, m_frame, near, m_day, m_random);
}

void Photograph::paintLandscape()
{
    const Track track { m_frame.height() * 0.8, between(21, 25, m_random) };
    Landscape::paintMountains(m_painter, m_frame, m_frame.height() * 0.12, m_frame.height() * 0.52, m_day, m_random);
    Landscape::paintHill(m_painter, m_frame, m_frame.height() * 0.5, 0.8, m_day, m_random);
    Landscape::paintLake(m_painter, m_frame, m_frame.height() * 0.55, m_frame.height() * 0.75, m_day, m_random);
    paintMeadowBehind(track, 0.74);
    paintLine(track);
    paintTrains(track, m_frame.width() * between(0.24, 0.34, m_random), 3);
    paintMeadowBefore(track);
    for (int i = 0; i < 3; ++i) {
        const QPointF foot(
            m_frame.width() * between(0.8, 1.0, m_random), m_frame.height() * between(0.97, 1.05, m_random));
        Landscape::paintTree(m_painter, foot, m_frame.height() * between(0.22, 0.4, m_random), i != 1, m_day, m_random);
    }
}

void Photograph::paintViaduct()
{
    const Track track { m_frame.height() * 0.46, between(12, 14, m_random) };
    const double foot = m_frame.height() * 0.9;
    Landscape::paintMountains(m_painter, m_frame, m_frame.height() * 0.1, m_frame.height() * 0.5, m_day, m_random);
    Landscape::paintHill(m_painter, m_frame, m_frame.height() * 0.5, 0.6, m_day, m_random);
    Landscape::paintHill(m_painter, m_frame, m_frame.height() * 0.66, 0.3, m_day, m_random);
    Landscape::paintLake(m_painter, m_frame, m_frame.height() * 0.84, m_frame.height() * 0.92, m_day, m_random);
    if (m_class.look.hasPantographs) {
        Lineside::paintCatenary(m_painter, m_frame, track, m_random);
    }
    paintTrains(track, m_frame.width() * between(0.2, 0.35, m_random), 5);
    Lineside::paintViaduct(m_painter, m_frame, track, foot, m_day, m_random);
    Landscape::paintMeadow(m_painter, m_frame.adjusted(0, foot, 0, 0), foot, m_day, m_random);
    for (int i = 0; i < 14; ++i) {
        const QPointF root(m_frame.width() * between(0, 1, m_random), m_frame.height() * between(0.9, 0.98, m_random));
        Landscape::paintTree(
            m_painter, root, m_frame.height() * between(0.08, 0.2, m_random), i % 3 != 0, m_day, m_random);
    }
}

void Photograph::paintPortrait()
{
    const Track track { m_frame.height() * 0.8, between(50, 56, m_random) };
    Landscape::paintMountains(m_painter, m_frame, m_frame.height() * 0.26, m_frame.height() * 0.6, m_day, m_random);
    Landscape::paintHill(m_painter, m_frame, m_frame.height() * 0.56, 0.7, m_day, m_random);
    Landscape::paintHill(m_painter, m_frame, m_frame.height() * 0.62, 0.25, m_day, m_random);
    paintMeadowBehind(track, 0.68);
    paintLine(track);
    paintTrains(track, m_frame.width() * 0.22 + m_class.look.length / 2 * track.scale, 0); // only the front is seen
    paintMeadowBefore(track);
}

void Photograph::finish()
{
    if (m_motif.season == Season::Winter && m_motif.light == Light::Overcast) {
        Landscape::paintSnowfall(m_painter, m_frame, m_random);
    }
    m_painter.fillRect(m_frame, m_day.glow);
}

} // namespace

QImage paintPhotograph(const Motif &motif, const QSize &size)
{
    const QSize frame = motif.view == View::Portrait ? QSize(800, 1200) : QSize(1200, 800);
    QImage image(size.isEmpty() ? frame : size, QImage::Format_RGB32);
    Photograph(motif, frame, image).paint();
    return image;
}
