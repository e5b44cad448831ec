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
    const QRectF area = sceneRect();
    QImage image = loadPicture(path, (area.size() * devicePixelRatioF()).toSize());
    if (image.isNull()) {
        return false;
    }
    image.setDevicePixelRatio(devicePixelRatioF());
    clear();
    QGraphicsPixmapItem *item = scene()->addPixmap(QPixmap::fromImage(image));
    item->setTransformationMode(Qt::SmoothTransformation);
    const QPointF corner = area.center() - item->boundingRect().center();
    item->setPos(corner.toPoint()); // on whole pixels, else the picture would be blurred
    return true;
}

void PicturePreview::clear()
{
    scene()->clear();
}
