#include "browser/picturescene.h"

#include "browser/buttonitem.h"
#include "browser/canvastexts.h"
#include "browser/entryblock.h"
#include "browser/focusplace.h"
#include "browser/loadprogress.h"
#include "browser/pager.h"
#include "browser/resultrows.h"
#include "browser/startview.h"
#include "browser/textitem.h"
#include "search/entrysearch.h"
#include "store/catalogquery.h"
#include "store/colorsetting.h"
#include "store/rowvalue.h"

#include <QGraphicsView>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

// Scene pixels.
constexpr int CanvasWidth = 1080;
constexpr int CaptionLeft = 350;
constexpr int CaptionTop = 20;
constexpr int FirstBlockTop = 80;
constexpr int CaptionGap = 4; // kept free above the first block
constexpr int BlockGap = 30;
constexpr int MoreLeft = 950;

} // namespace

PictureScene::PictureScene(QObject *parent)
    : QGraphicsScene(parent)
{
    setSceneRect(0, 0, CanvasWidth, FirstBlockTop);
}

PictureScene::~PictureScene()
{
    clearCanvas();
}

void PictureScene::startSearch(const SearchParameters &parameters, int startEntry)
{
    clearCanvas();
    m_parameters = parameters;
    paintBackground();
    m_position = startEntry;
    loadPage(false);
}

void PictureScene::loadPage(bool continues)
{
    if (!continues) {
        m_numbersShown.clear();
    }
    drawPage();
}

void PictureScene::restartSearch()
{
    const std::optional<FocusPlace> place = focusPlace(focusItem(), m_blocks);
    m_position = 1;
    loadPage(false);
    restoreFocus(place);
}

void PictureScene::showNumber(int modelId, const QString &number)
{
    m_listing = NumberListing { modelId, number };
    m_position = 1;
    paintBackground();
    drawListing();
}

void PictureScene::showStartView(const QSqlRecord &picture, const QSqlRecord &entry, int storedPictures)
{
    clearCanvas();
    m_startPicture = true;
    const CatalogQuery &catalog = CatalogQuery::instance();
    const QString modelName = catalog.modelName(rowId(entry, u"locseenid"_s));
    const QList<QGraphicsItem *> items
        = startViewItems(picturePaths(picture), entryCard(entry, {}), modelName, storedPictures);
    for (QGraphicsItem *item : items) {
        addToCanvas(item);
        m_y = std::max(m_y, item->sceneBoundingRect().bottom() + BlockGap);
        if (item->type() == Picture::Type) {
            m_otherFocusItems.append(item);
        }
    }
    finishPage();
}

void PictureScene::clearCanvas()
{
    m_blocks.clear();
    m_otherFocusItems.clear();
    m_pressed = nullptr;
    m_y = 0;
    ColorSetting::clearItemsOf(this);
    Q_EMIT itemsDeleted();
}

void PictureScene::paintBackground()
{
    setBackgroundBrush(QBrush(ColorSetting::instance().scheme().background(), Qt::SolidPattern));
}

QList<QGraphicsItem *> PictureScene::focusItems() const
{
    QList<QGraphicsItem *> items;
    for (const EntryBlock *block : m_blocks) {
        items += block->focusItems();
    }
    const bool isListing = m_listing.has_value(); // its back button stands above the blocks, the more button below
    return isListing ? m_otherFocusItems + items : items + m_otherFocusItems;
}

void PictureScene::drawPage(Begin begin)
{
    const bool wasBusy = std::exchange(m_busy, true);
    m_startPicture = false;
    clearCanvas();
    const SearchParameters parameters = m_parameters.value_or(SearchParameters());
    ColorSetting::instance().setOnce(parameters.once);
    QList<QSqlRecord> list;
    entriesOfModel(list, parameters.orderClause, parameters.modelId);
    const QString modelName = CatalogQuery::instance().modelName(parameters.modelId);
    drawCaption(CanvasTexts::resultCaption(int(list.size()), modelName)); // to count them would be one more walk
    ResultRows rows(std::move(list), parameters.once ? &m_numbersShown : nullptr);
    if (begin == Begin::BehindSameRows && parameters.once) {
        m_position = rows.positionBehind(m_idsBefore);
    }
    if (begin != Begin::AtPosition) {
        stepBack(rows.size(), parameters.once);
    }
    m_numbersOfEarlierPages = m_numbersShown;
    drawRows(rows, parameters);
    finishPage();
    m_busy = wasBusy;
}

/// Deletions may have left nothing behind the page's start; then the page that now ends the result is drawn. Where that
/// begins in once mode is not known, and the numbers of earlier pages would leave it empty: the result begins anew.
void PictureScene::stepBack(int rows, bool once)
{
    if (rows == 0 || m_position <= rows) {
        return;
    }
    m_position = once ? 1 : Pager::lastPageStart(rows);
    if (once) {
        m_numbersShown.clear();
    }
}

void PictureScene::drawRows(ResultRows &rows, const SearchParameters &parameters)
{
    const int n = rows.size();
    m_pageStart = m_position;
    m_idsBefore = parameters.once ? rows.idsBefore(m_position) : QList<qint64>();
    m_y = FirstBlockTop;
    Pager pager(m_position, n, parameters.once);
    LoadProgress progress(CanvasTexts::progressLabel(n, m_position, parameters.once), n, window());
    for (int i = 0; i < n; ++i) {
        if (!pager.takes(i)) {
            continue;
        }
        m_position = pager.position();
        if (takeRow(rows, i, parameters)) {
            pager.countBlock();
        }
        if (pager.endsPage(rows.nextHasSameNumber(i))) {
            if (i + 1 < n) {
                drawButton(new ButtonItem(ButtonKind::More, 0), QPointF(MoreLeft, m_y - 10));
                m_y += BlockGap;
            }
            return;
        }
        if (!progress.advance(i)) {
            return;
        }
    }
}

/// Draws the row's block unless the search leaves it out; true when it was drawn. What is already in memory is asked
/// first: pictures of a row whose number is shown have not been read with the others.
bool PictureScene::takeRow(ResultRows &rows, int index, const SearchParameters &parameters)
{
    const QString number = parameters.once ? rows.number(index) : QString();
    if (parameters.once && m_numbersShown.contains(number)) {
        return false;
    }
    if (parameters.picturesOnly && rows.pictures(index).isEmpty()) {
        return false;
    }
    int entryCount = -1;
    if (parameters.once) {
        m_numbersShown.insert(number);
        entryCount = rows.entriesWithNumberOf(index);
    }
    drawBlock(rows.row(index), rows.pictures(index), entryCount);
    return true;
}

void PictureScene::drawListing()
{
    const bool wasBusy = std::exchange(m_busy, true);
    m_startPicture = false;
    clearCanvas();
    const CatalogQuery &catalog = CatalogQuery::instance();
    drawButton(new ButtonItem(ButtonKind::Back, 0), QPointF(EntryBlock::Left, CaptionTop));
    drawCaption(CanvasTexts::listingCaption(catalog.countEntriesByNumber(m_listing->number, m_listing->modelId),
        catalog.modelName(m_listing->modelId), m_listing->number));
    QList<QSqlRecord> list;
    catalog.entriesByNumber(list, m_listing->number, m_listing->modelId);
    ResultRows rows(std::move(list));
    m_y = FirstBlockTop;
    LoadProgress progress(CanvasTexts::listingProgressLabel(rows.size()), rows.size(), window());
    for (int i = 0; i < rows.size() && progress.advance(i); ++i) {
        drawBlock(rows.row(i), rows.pictures(i), -1);
    }
    finishPage();
    m_busy = wasBusy;
}

void PictureScene::drawBlock(const QSqlRecord &entry, const QList<QSqlRecord> &pictures, int entryCount)
{
    auto *block = new EntryBlock(entryCard(entry, pictures), int(m_blocks.size()) + 1);
    if (entryCount >= 0) {
        block->setEntryCount(entryCount);
    }
    block->layOut();
    block->setPos(EntryBlock::Left, m_y);
    addToCanvas(block);
    m_blocks.append(block);
    m_y += block->height() + BlockGap;
}

void PictureScene::drawCaption(const QString &text)
{
    const ColorSetting &setting = ColorSetting::instance();
    const double width = EntryBlock::Left + EntryBlock::Width - CaptionLeft;
    auto *caption = new TextItem(text, setting.fontAt(0), setting.scheme().textColor(), width);
    caption->setPos(CaptionLeft, CaptionTop);
    caption->fitInto(FirstBlockTop - CaptionTop - CaptionGap);
    addToCanvas(caption);
}

void PictureScene::drawButton(ButtonItem *button, const QPointF &position)
{
    button->setPos(position);
    addToCanvas(button);
    m_otherFocusItems.append(button);
}

void PictureScene::addToCanvas(QGraphicsItem *item)
{
    addItem(item);
    ColorSetting::instance().addItem(item);
}

void PictureScene::finishPage()
{
    QRectF rect = sceneRect();
    rect.setTopLeft({ 0, 0 });
    rect.setHeight(m_y);
    setSceneRect(rect);
    if (QGraphicsView *view = ColorSetting::instance().view()) {
        view->centerOn(0, 0);
    }
    update();
    Q_EMIT contentsChanged();
}
