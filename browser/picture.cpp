#include "browser/picture.h"

#include "browser/devicepixel.h"
#include "browser/focusframe.h"
#include "store/colorsetting.h"
#include "store/pictureloader.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFileInfo>
#include <QPainter>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int Mat = 5; // white edge around the photograph, in pixels
constexpr QSize PlaceholderSize(480, 320);
constexpr QSize SmallestFrame(40, 40); // a photograph of a few pixels can still be seen and clicked
constexpr qint64 MostPixelsAhead = 562'500; // of a copy of 750 x 750
constexpr qint64 MostBytesAhead = 1'000'000; // several times those of a copy
constexpr QColor NoticeColor(86, 72, 52);
const QString PlaceholderImage = u":/images/placeholder.png"_s;

/// On whole pixels, so that nothing is blurred.
QRect centredIn(const QRect &outer, const QSize &inner)
{
    return { outer.topLeft() + QPoint((outer.width() - inner.width()) / 2, (outer.height() - inner.height()) / 2),
        inner };
}

} // namespace

Picture::Picture(const PicturePaths &paths, const QSize &box, QGraphicsItem *parent)
    : QGraphicsItem(parent)
    , m_paths(paths)
{
    setFlag(ItemIsFocusable);
    const QSize room = box - QSize(2 * Mat, 2 * Mat);
    const QSize size = pictureSize(paths.copy);
    m_isPlaceholder = size.isEmpty();
    m_isQuick = size.width() * qint64(size.height()) <= MostPixelsAhead;
    const QSize shown = fittedInto(m_isPlaceholder ? PlaceholderSize : size, room);
    m_frame = centredIn(QRect({ 0, 0 }, box), (shown + QSize(2 * Mat, 2 * Mat)).expandedTo(SmallestFrame));
    place(shown);
}

/// Puts what is shown, photograph or placeholder, into the middle of the frame.
void Picture::place(const QSize &shown)
{
    m_area = centredIn(m_frame, shown);
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

QPainterPath Picture::shape() const
{
    QPainterPath path;
    path.addRect(m_frame);
    return path;
}

void Picture::paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget)
{
    Q_UNUSED(option)
    Q_UNUSED(widget)
    const double scale = painter->device()->devicePixelRatioF();
    const bool isOutdated = std::exchange(m_isAhead, false) && !isFileUnchanged();
    if (isOutdated || !isDecodedFor(scale)) {
        decode(scale);
    }
    painter->setPen(QPen(QColor(0, 0, 0, 110), 1));
    painter->setBrush(Qt::white);
    painter->drawRect(frame().adjusted(0.5, 0.5, -0.5, -0.5));
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->drawPixmap(onDevicePixel(*painter, QRectF(m_area).topLeft()), m_pixmap);
    if (m_isPlaceholder) {
        paintNotice(painter);
    }
    if (hasFocus()) {
        FocusFrame::paint(painter, m_frame);
    }
}

bool Picture::decodeAhead(double scale)
{
    if (!m_isQuick || isDecodedFor(scale) || fileState().size > MostBytesAhead) {
        return false;
    }
    decode(scale);
    m_isAhead = true;
    return true;
}

bool Picture::isFileUnchanged() const
{
    return fileState() == m_decodedFile;
}

Picture::FileState Picture::fileState() const
{
    const QFileInfo file(m_paths.copy);
    return { file.size(), file.lastModified().toMSecsSinceEpoch() };
}

bool Picture::isDecodedFor(double scale) const
{
    return isDecoded() && qFuzzyCompare(m_pixmap.devicePixelRatio(), scale);
}

void Picture::decode(double scale)
{
    m_decodedFile = fileState();
    const SizeChoice wanted = [this, scale](const QSize &) { return m_area.size() * scale; };
    QImage image = m_isPlaceholder ? QImage() : loadPicture(m_paths.copy, wanted, Reduction::Quick);
    if (image.isNull()) {
        if (!std::exchange(m_isPlaceholder, true)) { // the header was fine, the rest is not
            place(fittedInto(PlaceholderSize, m_frame.size() - QSize(2 * Mat, 2 * Mat)));
        }
        image = loadPicture(PlaceholderImage, wanted, Reduction::Quick);
    }
    m_pixmap = QPixmap::fromImage(image);
    m_pixmap.setDevicePixelRatio(scale);
}

/// Below the drawing, so that a missing photograph is not taken for a painted one: in the picture's own foot, else in
/// the frame beneath. Where neither has room, the tool tip tells it.
void Picture::paintNotice(QPainter *painter) const
{
    const QString notice = QCoreApplication::translate("Picture", "Bild nicht lesbar");
    painter->setFont(ColorSetting::instance().fontAt(5));
    painter->setPen(NoticeColor);
    const QSize needed = painter->fontMetrics().size(Qt::TextSingleLine, notice);
    const QRectF area(m_area);
    const QRectF foot = area.adjusted(0, area.height() * 0.74, 0, -area.height() * 0.1);
    const QRectF beneath(area.left(), area.bottom(), area.width(), frame().bottom() - area.bottom() - Mat);
    for (const QRectF &room : { foot, beneath }) {
        if (room.width() >= needed.width() && room.height() >= needed.height()) {
            painter->drawText(room, Qt::AlignCenter, notice);
            return;
        }
    }
}
