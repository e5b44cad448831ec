#include "forms/picturepreview.h"

#include "store/pictureloader.h"

#include <QGraphicsPixmapItem>

PicturePreview::PicturePreview(QWidget *parent, const QSize &sceneSize)
    : QGraphicsView(parent)
{
    auto *canvas = new QGraphicsScene(QRectF({ 0, 0 }, sceneSize), this);
    canvas->setBackgroundBrush(palette().brush(QPalette::Mid));
    setScene(canvas);
    setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    setOptimizationFlag(DontAdjustForAntialiasing);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus); // there is nothing to operate in it
    setInteractive(false);
    setFixedSize(sceneSize + QSize(2 * frameWidth(), 2 * frameWidth()));
}

bool PicturePreview::showFile(const QString &path)
{
    return showImage(loadPicture(path, (sceneRect().size() * devicePixelRatioF()).toSize()));
}

bool PicturePreview::showImage(const QImage &picture)
{
    if (picture.isNull()) {
        return false;
    }
    const QRectF area = sceneRect();
    const QSizeF shown = fittedInto(picture.size(), area.size().toSize()); // equally large on every screen
    QImage image
        = picture.scaled((shown * devicePixelRatioF()).toSize(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    image.setDevicePixelRatio(devicePixelRatioF());
    clear();
    QGraphicsPixmapItem *item = scene()->addPixmap(QPixmap::fromImage(image));
    item->setTransformationMode(Qt::SmoothTransformation);
    const QPointF corner = area.center() - item->boundingRect().center();
    item->setPos(corner.toPoint()); // on whole pixels, else the picture would be blurred
    return true;
}

void PicturePreview::clear(const QString &notice)
{
    m_notice = notice;
    scene()->clear();
}

void PicturePreview::drawForeground(QPainter *painter, const QRectF &rect)
{
    Q_UNUSED(rect)
    if (scene()->items().isEmpty()) {
        painter->setFont(font());
        painter->setPen(palette().color(QPalette::WindowText));
        painter->drawText(sceneRect(), Qt::AlignCenter, m_notice.isEmpty() ? tr("Kein Bild gewählt") : m_notice);
    }
}
