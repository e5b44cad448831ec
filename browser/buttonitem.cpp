#include "browser/buttonitem.h"

#include "browser/devicepixel.h"
#include "browser/focusframe.h"
#include "store/pictureloader.h"

#include <QCoreApplication>
#include <QCursor>
#include <QGuiApplication>
#include <QPixmapCache>

#include <array>

using namespace Qt::StringLiterals;

namespace {

struct Look
{
    const char *image;
    int width;
    int height;
    const char *name;
};

const Look &lookOf(ButtonKind kind)
{
    static constexpr std::array looks {
        Look { "Bearbeiten-Button.png", 25, 25, QT_TRANSLATE_NOOP("ButtonItem", "Eintrag bearbeiten") },
        Look { "Loeschen-Button.png", 25, 25, QT_TRANSLATE_NOOP("ButtonItem", "Eintrag löschen") },
        Look { "leftArrow.png", 20, 100, QT_TRANSLATE_NOOP("ButtonItem", "Vorige Bilder") },
        Look { "rightArrow.png", 20, 100, QT_TRANSLATE_NOOP("ButtonItem", "Nächste Bilder") },
        Look { "lokCount.png", 38, 22, QT_TRANSLATE_NOOP("ButtonItem", "Alle Einträge dieser Nummer") },
        Look { "backArrow.png", 100, 40, QT_TRANSLATE_NOOP("ButtonItem", "Zurück zur Liste") },
        Look { "more.png", 100, 40, QT_TRANSLATE_NOOP("ButtonItem", "Weitere Einträge") },
    };
    const auto index = std::size_t(int(kind) - 1);
    return index < looks.size() ? looks.at(index) : looks.front();
}

/// The kind's image in its box, sharp at the screen's scale; the compiled-in copy where the file is missing.
QPixmap buttonPixmap(ButtonKind kind)
{
    const double scale = qGuiApp->devicePixelRatio();
    const QString cacheKey = u"button %1 %2"_s.arg(buttonImage(kind)).arg(scale);
    QPixmap pixmap;
    if (QPixmapCache::find(cacheKey, &pixmap)) {
        return pixmap;
    }
    const SizeChoice intoBox
        = [kind, scale](const QSize &size) { return size.scaled(buttonBox(kind) * scale, Qt::KeepAspectRatio); };
    QImage image = loadPicture(buttonImage(kind), intoBox, Reduction::Sharp);
    if (image.isNull()) {
        image = loadPicture(u":/images/%1"_s.arg(QLatin1StringView(lookOf(kind).image)), intoBox, Reduction::Sharp);
    }
    image.setDevicePixelRatio(scale);
    pixmap = QPixmap::fromImage(image);
    QPixmapCache::insert(cacheKey, pixmap);
    return pixmap;
}

} // namespace

QString buttonImage(ButtonKind kind)
{
    return u"./images/%1"_s.arg(QLatin1StringView(lookOf(kind).image));
}

QSize buttonBox(ButtonKind kind)
{
    return { lookOf(kind).width, lookOf(kind).height };
}

QString buttonName(ButtonKind kind)
{
    return QCoreApplication::translate("ButtonItem", lookOf(kind).name);
}

ButtonItem::ButtonItem(ButtonKind kind, int entryId, const QString &key, QGraphicsItem *parent)
    : QGraphicsPixmapItem(buttonPixmap(kind), parent)
    , m_kind(kind)
    , m_entryId(entryId)
    , m_key(key)
{
    setFlag(ItemIsFocusable);
    setTransformationMode(Qt::SmoothTransformation);
    setCursor(Qt::PointingHandCursor);
    setToolTip(buttonName(kind));
}

QRectF ButtonItem::boundingRect() const
{
    return FocusFrame::around(QRectF({ 0, 0 }, buttonBox(m_kind)));
}

QPainterPath ButtonItem::shape() const
{
    QPainterPath box; // whole, for a click between the strokes of an image is still a click on the button
    box.addRect(QRectF({ 0, 0 }, buttonBox(m_kind)));
    return box;
}

void ButtonItem::paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget)
{
    Q_UNUSED(option)
    Q_UNUSED(widget)
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    const QRectF box({ 0, 0 }, buttonBox(m_kind));
    QRectF image({ 0, 0 }, pixmap().deviceIndependentSize());
    image.moveCenter(box.center()); // one of another shape leaves a part of the box free
    painter->drawPixmap(onDevicePixel(*painter, image.topLeft()), pixmap());
    if (hasFocus()) {
        FocusFrame::paint(painter, box);
    }
}
