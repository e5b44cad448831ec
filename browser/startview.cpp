#include "browser/startview.h"

#include "browser/canvascolors.h"
#include "browser/canvastexts.h"
#include "browser/entryblock.h"
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
constexpr int FrameWidth = 14;
constexpr int PlateGap = 18;
constexpr int Padding = 18;
constexpr int DetailsWidth = 640;
constexpr int StatisticsLeft = 740; // from the plate's left edge

/// A rounded plate under the texts, or the wooden frame around the photograph.
class Panel final : public QGraphicsItem
{
public:
    Panel(const QSizeF &size, const QColor &ground, const QColor &edge)
        : m_size(size)
        , m_ground(ground)
        , m_edge(edge)
    {
    }

    [[nodiscard]] QRectF boundingRect() const override { return { QPointF(0, 0), m_size }; }

    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override
    {
        Q_UNUSED(option)
        Q_UNUSED(widget)
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(QPen(m_edge, 1));
        painter->setBrush(m_ground);
        painter->drawRoundedRect(boundingRect().adjusted(0.5, 0.5, -0.5, -0.5), 8, 8);
    }

private:
    QSizeF m_size;
    QColor m_ground;
    QColor m_edge;
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
QList<QGraphicsItem *> statistics(const QPointF &at, const QColor &color)
{
    const CatalogQuery &catalog = CatalogQuery::instance();
    const auto counts = [](const char *line, int first, int second) {
        return tr(line).arg(QString::number(first), QString::number(second));
    };
    return {
        text(tr("Aktueller Bestand:"), 2, color, at),
        text(counts("%1 Baureihen in %2 Gruppen", catalog.countModels(0), catalog.countGroups()), 3, color,
            at + QPointF(0, 18)),
        text(counts("%1 Bilder in %2 Einträgen", catalog.countStoredPictures(), catalog.countEntries()), 3, color,
            at + QPointF(0, 36)),
    };
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
        const TextItem *item = text(line, font, color, QPointF(at.x(), std::floor(y)), DetailsWidth);
        items.append(const_cast<TextItem *>(item));
        y += item->height();
    };
    addLine(CanvasTexts::shown(modelName + u"  "_s + card.number), 0, colors.accent);
    addLine(u"%1, %2"_s.arg(CanvasTexts::shown(card.place), CanvasTexts::date(card.seen)), 1, colors.text);
    y += 4;
    addLine(CanvasTexts::shown(card.comment), 4, colors.text);
    bottom = y;
    return items;
}

} // namespace

QList<QGraphicsItem *> startViewItems(const PicturePaths &paths, const EntryCard &card, const QString &modelName)
{
    const CardColors colors(ColorSetting::instance().scheme());
    QList<QGraphicsItem *> items;

    // The frame follows the photograph; photograph and plate share the middle axis of the canvas.
    auto *photo = new Picture(paths, PhotoBox);
    const QRectF inner = photo->frame();
    const double middle = EntryBlock::Left + EntryBlock::Width / 2.0;
    photo->setPos(middle - PhotoBox.width() / 2.0, Top + FrameWidth - inner.top());
    const QRectF outer
        = inner.translated(photo->pos()).adjusted(-FrameWidth, -FrameWidth, FrameWidth, FrameWidth);
    auto *frame = new Panel(outer.size(), QColor(94, 58, 34), QColor(52, 30, 16));
    frame->setPos(outer.topLeft());
    items << frame << photo;

    const double plateTop = std::floor(outer.bottom()) + PlateGap;
    double bottom = 0;
    const QPointF corner(EntryBlock::Left + Padding, plateTop + Padding - 4);
    const QList<QGraphicsItem *> lines = details(card, modelName, colors, corner, bottom);
    const QPointF anchor(EntryBlock::Left + StatisticsLeft, plateTop + Padding);
    bottom = std::max(bottom, anchor.y() + 60);
    auto *plate = new Panel({ double(EntryBlock::Width), std::ceil(bottom + Padding - plateTop) }, colors.ground, colors.frame);
    plate->setPos(EntryBlock::Left, plateTop);
    items << plate << lines << statistics(anchor, colors.text);
    return items;
}
