#pragma once

#include "browser/buttonitem.h"
#include "browser/canvascolors.h"
#include "browser/entrycard.h"

#include <QGraphicsItem>

#include <map>
#include <memory>

class TextItem;

/// The card of one entry: its texts at the left, at the right two of its pictures side by side with arrows to the
/// further pairs. An entry without pictures is a low card with the comment beside its details.
class EntryBlock final : public QGraphicsItem
{
public:
    enum { Type = UserType + 4 };

    static constexpr int Left = 20; // scene pixels
    static constexpr int Width = 1040;

    /// `number` counts the blocks of the page; it is the first part of the block's key.
    EntryBlock(const EntryCard &card, int number);

    [[nodiscard]] int type() const override { return Type; }
    [[nodiscard]] const EntryCard &card() const { return m_card; }
    [[nodiscard]] bool hasPictures() const { return !m_card.pictures.isEmpty(); }

    /// Gives the card the number of entries with the same running number, shown with its button.
    void setEntryCount(int count) { m_entryCount = count; }

    /// Builds the card's contents; its height is known from then on. Called once.
    void layOut();
    [[nodiscard]] double height() const { return m_height; }

    /// "n-k": n is the block's number, k the index of the first picture of the pair that is shown.
    [[nodiscard]] QString key() const;

    /// Shows another pair of pictures if `key` names one of this block; else changes nothing and returns false.
    bool turnTo(const QString &key);

    /// Decodes one photograph of the pair that is shown before it is seen; false when there is none left.
    bool decodeShown(double scale);

    /// The same with one photograph of a pair that an arrow would bring, which is kept beside the canvas.
    bool decodeFurther(double scale);
    void forgetFurther() { m_further.clear(); }

    /// Buttons and photographs in the order in which the keyboard walks through them.
    [[nodiscard]] QList<QGraphicsItem *> focusItems() const;

    [[nodiscard]] QRectF boundingRect() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

private:
    double addTexts();
    double addWideTexts(const QString &comment);
    double addButtons(double top);
    void addPair();
    void removePair();
    [[nodiscard]] std::unique_ptr<Picture> makePicture(int index) const;
    void addArrow(ButtonKind kind, int x);
    TextItem *addText(const QString &text, int font, const QColor &color, double top, double left, double width);

    EntryCard m_card;
    CardColors m_colors;
    int m_number;
    int m_firstPicture = 0; // index of the first picture of the shown pair
    int m_entryCount = -1; // not shown while negative
    double m_height = 0;
    TextItem *m_pictureText = nullptr; // a child like all that follow
    QList<QGraphicsItem *> m_buttons;
    QList<QGraphicsItem *> m_pairItems; // of the shown pair, in reading order
    std::map<int, std::unique_ptr<Picture>> m_further; // photographs of other pairs by their index; not on the canvas
};
