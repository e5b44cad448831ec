#include "browser/startview.h"

#include "browser/canvascolors.h"
#include "browser/canvastexts.h"
#include "browser/entryblock.h"
#include "browser/startframe.h"
#include "browser/textitem.h"
#include "store/catalogquery.h"
#include "store/colorsetting.h"

#include <QCoreApplication>
#include <QPainter>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

// Scene pixels.
constexpr int Top = 20;
constexpr QSize PhotoBox(760, 510); // a full copy of 750 x 500 with its mat
constexpr int PlateGap = 20;
constexpr int Padding = 18;
constexpr int DetailsWidth = 680;
constexpr int StatisticsLeft = 740; // from the plate's left edge
constexpr int StatisticsHeight = 60;
constexpr double DividerLeft = 718.5;

/// The plate under the texts; a line parts the entry from the statistics.
class Plate final : public QGraphicsItem
{
public:
    Plate(const QSizeF &size, const CardColors &colors)
        : m_size(size)
        , m_colors(colors)
    { }

    [[nodiscard]] QRectF boundingRect() const override { return { QPointF(0, 0), m_size }; }

    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override
    {
        Q_UNUSED(option)
        Q_UNUSED(widget)
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(QPen(m_colors.frame, 1));
        painter->setBrush(m_colors.ground);
        painter->drawRoundedRect(boundingRect().adjusted(0.5, 0.5, -0.5, -0.5), 8, 8);
        painter->drawLine(QPointF(DividerLeft, Padding), QPointF(DividerLeft, m_size.height() - Padding));
    }

private:
    QSizeF m_size;
    CardColors m_colors;
};

TextItem *text(const QString &content, int font, const QColor &color, const QPointF &at, double width = 0)
{
    auto *item = new TextItem(content, ColorSetting::instance().fontAt(font), color, width);
    item->setPos(at);
    return item;
}

QString tr(const char *source)
{
    return QCoreApplication::translate("PictureScene", source);
}

/// The size of the catalogue in three lines from the anchor `at` on.
QList<QGraphicsItem *> statistics(const QPointF &at, const QColor &color, int storedPictures)
{
    const CatalogQuery &catalog = CatalogQuery::instance();
    const auto counts = [](const char *line, int first, int second) {
        return tr(line).arg(QString::number(first), QString::number(second));
    };
    return {
        text(tr("Aktueller Bestand:"), 2, color, at),
        text(counts("%1 Baureihen in %2 Gruppen", catalog.countModels(0), catalog.countGroups()), 3, color,
            at + QPointF(0, 18)),
        text(
            counts("%1 Bilder in %2 Einträgen", storedPictures, catalog.countEntries()), 3, color, at + QPointF(0, 36)),
    };
}

/// Class and number; a class that is gone leaves no gap.
QString locomotive(const QString &modelName, const EntryCard &card, const QString &gap)
{
    QStringList parts { modelName, card.number };
    parts.removeAll(QString());
    return CanvasTexts::shown(parts.join(gap));
}

/// Number, class, place, date and comment one below the other; `bottom` becomes the lower edge of the last.
QList<QGraphicsItem *> details(
    const EntryCard &card, const QString &modelName, const CardColors &colors, const QPointF &at, double &bottom)
{
    QList<QGraphicsItem *> items;
    double y = at.y();
    const auto addLine = [&](const QString &line, int font, const QColor &color) {
        if (line.isEmpty()) {
            return;
        }
        TextItem *item = text(line, font, color, QPointF(at.x(), std::floor(y)), DetailsWidth);
        items.append(item);
        y += item->height();
    };
    addLine(locomotive(modelName, card, u"  "_s), 0, colors.accent);
    const QString place = CanvasTexts::shown(card.place);
    const QString date = CanvasTexts::date(card.seen);
    addLine(place.isEmpty() ? date : u"%1, %2"_s.arg(place, date), 1, colors.text);
    y += 4;
    addLine(CanvasTexts::shown(card.comment), 4, colors.text);
    bottom = y;
    return items;
}

} // namespace

QList<QGraphicsItem *> startViewItems(
    const PicturePaths &paths, const EntryCard &card, const QString &modelName, int storedPictures)
{
    const CardColors colors(ColorSetting::instance().scheme());
    QList<QGraphicsItem *> items;

    // The frame follows the photograph; photograph and plate share the middle axis of the canvas.
    auto *photo = new Picture(paths, PhotoBox);
    const QString subject = locomotive(modelName, card, u" "_s);
    photo->setName(subject.isEmpty() ? tr("Foto") : tr("Foto von %1").arg(subject));
    auto *frame = new StartFrame(photo->frame().size());
    const double middle = EntryBlock::Left + EntryBlock::Width / 2.0;
    frame->setPos(std::floor(middle - frame->size().width() / 2), Top);
    photo->setPos(frame->pos() + QPointF(StartFrame::Width, StartFrame::Width) - photo->frame().topLeft());
    items << frame << photo;

    const double plateTop = Top + std::ceil(frame->size().height()) + PlateGap;
    double bottom = 0;
    const QPointF corner(EntryBlock::Left + Padding, plateTop + Padding - 4);
    const QList<QGraphicsItem *> lines = details(card, modelName, colors, corner, bottom);
    const QPointF anchor(EntryBlock::Left + StatisticsLeft, plateTop + Padding);
    bottom = std::max(bottom, anchor.y() + StatisticsHeight);
    auto *plate = new Plate({ double(EntryBlock::Width), std::ceil(bottom + Padding - plateTop) }, colors);
    plate->setPos(EntryBlock::Left, plateTop);
    items << plate << lines << statistics(anchor, colors.text, storedPictures);
    return items;
}
