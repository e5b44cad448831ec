#include "browser/entryblock.h"

#include "browser/canvastexts.h"
#include "browser/textitem.h"
#include "store/colorsetting.h"

#include <QPainter>
#include <QStyleOptionGraphicsItem>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

// All in pixels from the card's top left corner.
constexpr int Padding = 16;
constexpr int TextWidth = 268;
constexpr int ArrowLeft = 294;
constexpr int PicturesLeft = 322;
constexpr int PictureGap = 12;
constexpr QSize PictureBox(332, 226);
constexpr int ArrowRight = PicturesLeft + 2 * 332 + PictureGap + 8;
constexpr int WideTextWidth = EntryBlock::Width - PicturesLeft - Padding;
constexpr int ButtonGap = 10;
constexpr int TextGap = 6; // above texts of another kind
constexpr double CornerRadius = 8;
constexpr int PairSize = 2;

} // namespace

EntryBlock::EntryBlock(const EntryCard &card, int number)
    : m_card(card)
    , m_colors(ColorSetting::instance().scheme())
    , m_number(number)
{
    setFlag(ItemUsesExtendedStyleOption); // to be told which part is exposed
}

void EntryBlock::layOut()
{
    const double textBottom = addTexts();
    const double contents = addButtons(textBottom);
    const double pictures = hasPictures() ? Padding + PictureBox.height() : 0;
    prepareGeometryChange();
    m_height = std::ceil(std::max(contents, pictures)) + Padding;
    if (hasPictures()) {
        addPair();
    }
}

QString EntryBlock::key() const
{
    return u"%1-%2"_s.arg(QString::number(m_number), QString::number(m_firstPicture));
}

bool EntryBlock::turnTo(const QString &key)
{
    const int former = m_firstPicture;
    for (int first = 0; first < m_card.pictures.size(); first += PairSize) {
        m_firstPicture = first;
        if (this->key() == key) {
            removePair();
            addPair();
            return true;
        }
    }
    m_firstPicture = former;
    return false;
}

bool EntryBlock::decodeShown(double scale)
{
    return std::any_of(m_pairItems.begin(), m_pairItems.end(), [scale](QGraphicsItem *item) {
        auto *picture = qgraphicsitem_cast<Picture *>(item);
        return picture && picture->decodeAhead(scale);
    });
}

bool EntryBlock::decodeFurther(double scale)
{
    const int first = std::max(0, m_firstPicture - PairSize);
    const int end = std::min(m_firstPicture + 2 * PairSize, int(m_card.pictures.size()));
    for (int i = first; i < end; ++i) {
        const bool isShown = i >= m_firstPicture && i < m_firstPicture + PairSize;
        if (isShown || m_further.contains(i)) {
            continue;
        }
        std::unique_ptr<Picture> picture = makePicture(i);
        picture->decodeAhead(scale);
        m_further.emplace(i, std::move(picture));
        return true;
    }
    return false;
}

QList<QGraphicsItem *> EntryBlock::focusItems() const
{
    return m_buttons + m_pairItems;
}

QRectF EntryBlock::boundingRect() const
{
    return { 0, 0, Width, m_height };
}

void EntryBlock::paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget)
{
    Q_UNUSED(widget)
    const double edge = CornerRadius;
    if (boundingRect().adjusted(edge, edge, -edge, -edge).contains(option->exposedRect)) {
        painter->fillRect(option->exposedRect, m_colors.ground); // other pictures, say: no edge to be smoothed
        return;
    }
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(m_colors.frame, 1));
    painter->setBrush(m_colors.ground);
    painter->drawRoundedRect(boundingRect().adjusted(0.5, 0.5, -0.5, -0.5), CornerRadius, CornerRadius);
}

/// Returns the lower edge of the texts.
double EntryBlock::addTexts()
{
    const QColor text = m_colors.text;
    double y = Padding - 4; // the line of the large number has room of its own above the digits
    const auto addLine = [this, &y](const QString &line, int font, const QColor &color) {
        const TextItem *item = addText(line, font, color, y, Padding, TextWidth);
        y += item->height();
        return item;
    };
    addLine(CanvasTexts::shown(m_card.number), 0, m_colors.accent);
    addLine(CanvasTexts::shown(m_card.place), 2, text);
    addLine(CanvasTexts::date(m_card.seen), 3, text);
    const QString comment = CanvasTexts::shown(m_card.comment);
    if (!hasPictures()) {
        return std::max(y, addWideTexts(comment));
    }
    if (!comment.isEmpty()) {
        y += TextGap;
        addLine(comment, 4, text);
    }
    y += TextGap;
    m_pictureText = addText(CanvasTexts::picturesShown(0, int(m_card.pictures.size())), 5, text, y, Padding, TextWidth);
    return y + m_pictureText->height();
}

/// The texts that stand where other cards have their pictures; returns their lower edge.
double EntryBlock::addWideTexts(const QString &comment)
{
    double y = Padding;
    if (!comment.isEmpty()) {
        y += addText(comment, 4, m_colors.text, y, PicturesLeft, WideTextWidth)->height() + TextGap;
    }
    return y + addText(CanvasTexts::pictureCount(0), 5, m_colors.text, y, PicturesLeft, WideTextWidth)->height();
}

/// Places the buttons at the foot of the card; returns their lower edge.
double EntryBlock::addButtons(double top)
{
    const int buttonHeight = buttonBox(ButtonKind::Edit).height();
    const int pictureFoot = hasPictures() ? Padding + PictureBox.height() - buttonHeight : 0;
    const double y = std::ceil(std::max(top + ButtonGap, double(pictureFoot)));
    double x = Padding;
    QList<ButtonKind> kinds { ButtonKind::Edit, ButtonKind::Delete };
    if (m_entryCount >= 0) {
        kinds.append(ButtonKind::Count);
    }
    for (const ButtonKind kind : std::as_const(kinds)) {
        auto *button = new ButtonItem(kind, m_card.id, {}, this);
        button->setPos(x, y + std::floor((buttonHeight - buttonBox(kind).height()) / 2.0));
        m_buttons.append(button);
        x += buttonBox(kind).width() + ButtonGap;
    }
    if (m_entryCount >= 0) {
        TextItem *count = addText(QString::number(m_entryCount), 2, m_colors.text, y, x - 2, 0);
        count->setPos(count->x(), y + std::floor((buttonHeight - count->height()) / 2));
    }
    return y + buttonHeight;
}

void EntryBlock::addPair()
{
    const auto pictures = int(m_card.pictures.size());
    if (m_firstPicture > 0) {
        addArrow(ButtonKind::Left, ArrowLeft);
    }
    for (int i = m_firstPicture; i < std::min(m_firstPicture + PairSize, pictures); ++i) {
        auto further = m_further.extract(i);
        const bool isUsable = further && further.mapped()->isFileUnchanged();
        Picture *picture = (isUsable ? std::move(further.mapped()) : makePicture(i)).release();
        picture->setParentItem(this);
        m_pairItems.append(picture);
    }
    if (m_firstPicture + PairSize < pictures) {
        addArrow(ButtonKind::Right, ArrowRight);
    }
    m_pictureText->setPlainText(CanvasTexts::picturesShown(m_firstPicture, pictures));
}

void EntryBlock::removePair()
{
    qDeleteAll(m_pairItems);
    m_pairItems.clear();
}

/// Not on the canvas until it gets a parent.
std::unique_ptr<Picture> EntryBlock::makePicture(int index) const
{
    auto picture = std::make_unique<Picture>(m_card.pictures.at(index), PictureBox);
    picture->setPos(PicturesLeft + index % PairSize * (PictureBox.width() + PictureGap), Padding);
    picture->setName(CanvasTexts::pictureName(index, int(m_card.pictures.size())));
    return picture;
}

void EntryBlock::addArrow(ButtonKind kind, int x)
{
    auto *arrow = new ButtonItem(kind, m_card.id, key(), this);
    arrow->setPos(x, Padding + (PictureBox.height() - buttonBox(kind).height()) / 2.0);
    m_pairItems.append(arrow);
}

TextItem *EntryBlock::addText(const QString &text, int font, const QColor &color, double top, double left, double width)
{
    auto *item = new TextItem(text, ColorSetting::instance().fontAt(font), color, width, this);
    item->setPos(left, std::floor(top));
    return item;
}
