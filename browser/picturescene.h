#pragma once

#include "browser/searchparameters.h"

#include <QGraphicsScene>
#include <QSet>
#include <QSqlRecord>
#include <QString>

#include <functional>
#include <optional>

class ButtonItem;
class EntryBlock;
class ResultRows;
struct FocusPlace;

/// A canvas: the list of a search page by page, all entries of one running number, or the start view.
/// It reads and shows; what the buttons change is done by the forms and the catalogue that it calls for it.
class PictureScene final : public QGraphicsScene
{
    Q_OBJECT

public:
    explicit PictureScene(QObject *parent = nullptr);
    ~PictureScene() override;

    void startSearch(const SearchParameters &parameters, int startEntry);

    /// Loads a page from the position counter on; `continues` keeps the numbers that earlier pages have shown.
    void loadPage(bool continues);

    /// Loads the search result from its first page on.
    void restartSearch();

    /// Lists all entries of the class with this running number, in place of search results.
    void showNumber(int modelId, const QString &number);

    /// Draws the present page, or the number listing, again from the same entry on. Where deletions have left no entry
    /// there, the page that now ends the result is drawn.
    void redraw();

    /// The same after entries were changed on another canvas: the page begins behind the rows that stood before it,
    /// even if some of them have gone.
    void redrawAfterChangeElsewhere();

    void showStartView(const QSqlRecord &picture, const QSqlRecord &entry, int storedPictures);
    [[nodiscard]] bool showsStartPicture() const { return m_startPicture; }

    /// Deletes everything that stands on the canvas.
    void clearCanvas();

    /// Takes the stored background colour.
    void paintBackground();

    [[nodiscard]] const QList<EntryBlock *> &blocks() const { return m_blocks; }

    /// Buttons and photographs in reading order, for the keyboard and for screen readers.
    [[nodiscard]] QList<QGraphicsItem *> focusItems() const;

    /// Does what a press on the button or a double click on the photograph does.
    void activate(QGraphicsItem *item);

    /// Whether a page is being loaded or a press is still to be carried out.
    [[nodiscard]] bool isBusy() const { return m_busy; }

    /// Puts the keyboard on the first button or photograph, if there is one.
    void focusFirst();

Q_SIGNALS:
    void numberListingRequested(int entryId);
    void backRequested();
    void entryChanged(); // an entry was edited or deleted from here
    void itemsDeleted(); // nothing may point at an item any more
    void contentsChanged(); // other items stand on the canvas

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent *event) override;

private:
    struct NumberListing
    {
        int modelId;
        QString number;
    };

    /// Where a page begins: at the position counter or, drawn again, where it began, or behind the rows before it.
    enum class Begin { AtPosition, Again, BehindSameRows };

    void drawPage(Begin begin = Begin::AtPosition);
    void redrawPage(Begin begin);
    void stepBack(int rows, bool once);
    void drawRows(ResultRows &rows, const SearchParameters &parameters);
    bool takeRow(ResultRows &rows, int index, const SearchParameters &parameters);
    void drawListing();
    void drawBlock(const QSqlRecord &entry, const QList<QSqlRecord> &pictures, int entryCount);
    void drawCaption(const QString &text);
    void drawButton(ButtonItem *button, const QPointF &position);
    void addToCanvas(QGraphicsItem *item);
    void finishPage();

    void press(const ButtonItem &button);
    void afterwards(std::function<void()> action);
    void restoreFocus(const std::optional<FocusPlace> &place);
    void editEntry(int entryId, const QPointF &position);
    void deleteEntry(int entryId, const QPointF &position);
    void turnPictures(int entryId, const QString &key, int step);
    void redrawAt(const QPointF &position);
    [[nodiscard]] static QWidget *window();

    std::optional<SearchParameters> m_parameters; // of the last search on this canvas
    std::optional<NumberListing> m_listing; // set on the canvas that lists one number
    int m_position = 1; // 1-based position in the full result of the next entry to show
    int m_pageStart = 1; // the position when the present page was begun
    QList<qint64> m_idsBefore; // once mode, where listings are opened: of the rows before the page start
    QSet<QString> m_numbersShown; // once mode: on this page and those before it
    QSet<QString> m_numbersOfEarlierPages;
    QList<EntryBlock *> m_blocks; // of the page, in order; the settings object owns all items
    QList<QGraphicsItem *> m_otherFocusItems; // buttons that belong to no block
    double m_y = 0; // where the next block goes
    QGraphicsItem *m_pressed = nullptr; // what the last press hit; null once that may be gone
    bool m_startPicture = false;
    bool m_busy = false;
};
