#include "browser/picture.h"

#include "browser/devicepixel.h"
#include "browser/focusframe.h"
#include "store/colorsetting.h"
#include "store/pictureloader.h"

#include <QCoreApplication>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace {

constexpr int Mat = 5; // white edge around the photograph, in pixels
constexpr QSize PlaceholderSize(300, 200);
constexpr QSize SmallestFrame(40, 40); // a photograph of a few pixels can still be seen and clicked
constexpr QColor NoticeColor(86, 72, 52);
const QString PlaceholderImage = u":/images/placeholder.png"_s;

} // namespace

Picture::Picture(const PicturePaths &paths, const QSize &box, QGraphicsItem *parent)
    : QGraphicsItem(parent)
    , m_paths(paths)
{
    setFlag(ItemIsFocusable);
    const QSize room = box - QSize(2 * Mat, 2 * Mat);
    const QSize size = pictureSize(paths.copy);
    m_isPlaceholder = size.isEmpty();
    const QSize shown = fittedInto(m_isPlaceholder ? PlaceholderSize : size, room);
    const QSize frame = (shown + QSize(2 * Mat, 2 * Mat)).expandedTo(SmallestFrame);
    const auto centred = [](const QSize &inner, const QSize &outer) { // on whole pixels, so that nothing is blurred
        return QPoint((outer.width() - inner.width()) / 2, (outer.height() - inner.height()) / 2);
    };
    const QPoint corner = centred(frame, box);
    m_frame = QRect(corner, frame);
    m_area = QRect(corner + centred(shown, frame), shown);
    setToolTip(m_isPlaceholder
            ? QCoreApplication::translate("Picture", "Die Kopie dieses Bildes fehlt oder ist nicht lesbar.")
            : QCoreApplication::translate("Picture", "Doppelklick öffnet das Original."));
}

QString Picture::name() const
{
    return m_isPlaceholder ? QCoreApplication::translate("Picture", "%1 (fehlt)").arg(m_name) : m_name;
}

QRectF Picture::boundingRect() const
{
    return FocusFrame::around(m_frame);
}

void Picture::paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget)
{
    Q_UNUSED(option)
    Q_UNUSED(widget)
    const double scale = painter->device()->devicePixelRatioF();
    if (m_pixmap.isNull() || !qFuzzyCompare(m_pixmap.devicePixelRatio(), scale)) {
        decode(scale);
    }
    painter->setPen(QPen(QColor(0, 0, 0, 110), 1));
    painter->setBrush(Qt::white);
    painter->drawRect(m_frame.adjusted(0.5, 0.5, -0.5, -0.5));
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->drawPixmap(onDevicePixel(*painter, m_area.topLeft()), m_pixmap);
    if (m_isPlaceholder) {
        paintNotice(painter);
    }
    if (hasFocus()) {
        FocusFrame::paint(painter, m_frame);
    }
}

void Picture::decode(double scale)
{
    const SizeChoice wanted = [this, scale](const QSize &) { return (m_area.size() * scale).toSize(); };
    QImage image = m_isPlaceholder ? QImage() : loadPicture(m_paths.copy, wanted);
    if (image.isNull()) {
        m_isPlaceholder = true; // the header was fine, the rest is not
        image = loadPicture(PlaceholderImage, wanted);
    }
    m_pixmap = QPixmap::fromImage(image);
    m_pixmap.setDevicePixelRatio(scale);
}

/// Below the drawing, so that a missing photograph is not taken for a painted one.
void Picture::paintNotice(QPainter *painter) const
{
    const QRectF foot = m_area.adjusted(0, m_area.height() * 0.74, 0, -m_area.height() * 0.1);
    painter->setFont(ColorSetting::instance().fontAt(5));
    painter->setPen(NoticeColor);
    painter->drawText(foot, Qt::AlignCenter, QCoreApplication::translate("Picture", "Bild nicht lesbar"));
}
