#include "browser/buttonitem.h"
#include "browser/entryblock.h"
#include "browser/focusplace.h"
#include "browser/pictureopener.h"
#include "browser/picturescene.h"
#include "forms/locseenform.h"
#include "store/catalogquery.h"
#include "store/colorsetting.h"

#include <QGraphicsSceneMouseEvent>
#include <QGraphicsView>

#include <utility>

using namespace Qt::StringLiterals;

// What the canvas does when something on it is pressed, and how it is drawn again after a change.

namespace {

constexpr int PicturesPerStep = 2;

} // namespace

void PictureScene::activate(QGraphicsItem *item)
{
    if (const auto *button = qgraphicsitem_cast<ButtonItem *>(item)) {
        press(*button);
    } else if (const auto *picture = qgraphicsitem_cast<Picture *>(item)) {
        afterwards([path = picture->sourcePath()] { openSourcePicture(path, window()); });
    }
}

void PictureScene::mousePressEvent(QGraphicsSceneMouseEvent *event)
{
    QGraphicsItem *item = itemAt(event->scenePos(), {});
    m_pressed = item;
    if (event->button() == Qt::LeftButton && qgraphicsitem_cast<ButtonItem *>(item)) {
        activate(item);
    }
    event->accept();
}

void PictureScene::mouseDoubleClickEvent(QGraphicsSceneMouseEvent *event)
{
    // The press may have hit a button whose page is gone by now: then a photograph has come under the pointer by
    // chance.
    QGraphicsItem *item = itemAt(event->scenePos(), {});
    if (event->button() == Qt::LeftButton && item == m_pressed && qgraphicsitem_cast<Picture *>(item)) {
        activate(item);
    }
    event->accept();
}

void PictureScene::press(const ButtonItem &button)
{
    const int entryId = button.entryId();
    const QString key = button.key();
    const QPointF position = button.scenePos();
    switch (button.kind()) {
    case ButtonKind::Delete:
        return afterwards([=, this] { deleteEntry(entryId, position); });
    case ButtonKind::Left:
        return afterwards([=, this] { turnPictures(entryId, key, -PicturesPerStep); });
    case ButtonKind::Right:
        return afterwards([=, this] { turnPictures(entryId, key, PicturesPerStep); });
    case ButtonKind::Count:
        return afterwards([=, this] { Q_EMIT numberListingRequested(entryId); });
    case ButtonKind::Back:
        return afterwards([this] { Q_EMIT backRequested(); });
    case ButtonKind::More:
        if (!m_listing) {
            afterwards([this] { loadPage(true); });
        }
        return;
    case ButtonKind::Edit:
    case ButtonKind::Photo:
        break;
    }
    afterwards([=, this] { editEntry(entryId, position); });
}

/// Carries out a press when its event is over, because the redraw deletes the pressed button itself.
void PictureScene::afterwards(std::function<void()> action)
{
    if (std::exchange(m_busy, true)) {
        return; // one press at a time
    }
    QMetaObject::invokeMethod(
        this,
        [this, action = std::move(action), place = focusPlace(focusItem(), m_blocks)] {
            action();
            m_busy = false;
            restoreFocus(place);
        },
        Qt::QueuedConnection);
}

void PictureScene::focusFirst()
{
    setFocusItem(focusItems().value(0), Qt::OtherFocusReason);
}

/// Takes the keyboard back to where it was, if the item that it stood on is gone.
void PictureScene::restoreFocus(const std::optional<FocusPlace> &place)
{
    if (place && !focusItem()) {
        setFocusItem(itemAtPlace(*place, m_blocks, focusItems()), Qt::OtherFocusReason);
    }
}

void PictureScene::editEntry(int entryId, const QPointF &position)
{
    if (entryId < 1) {
        return redrawAt(position); // the form knows no such entry, as if it were gone
    }
    LocseenForm form(entryId, CatalogQuery::instance().modelIdOfEntry(entryId), window());
    form.exec();
    if (form.hasChanged()) {
        redrawAt(position);
    }
}

void PictureScene::deleteEntry(int entryId, const QPointF &position)
{
    QString number;
    int modelId = 0;
    if (CatalogQuery::instance().deleteEntry(entryId, number, modelId)) {
        redrawAt(position);
    }
}

void PictureScene::turnPictures(int entryId, const QString &key, int step)
{
    const int block = key.section(u'-', 0, 0).toInt();
    const int first = key.section(u'-', 1, 1).toInt() + step;
    if (first < 0) {
        return;
    }
    const QString turned = u"%1-%2"_s.arg(QString::number(block), QString::number(first));
    m_pressed = nullptr; // it may go with the turned pictures
    for (EntryBlock *entryBlock : std::as_const(m_blocks)) {
        if (entryBlock->card().id == entryId) {
            entryBlock->turnTo(turned); // what comes and goes repaints its own part of the canvas
        }
    }
    Q_EMIT contentsChanged();
}

void PictureScene::redraw()
{
    redrawPage(Begin::Again);
}

void PictureScene::redrawAfterChangeElsewhere()
{
    redrawPage(Begin::BehindSameRows);
}

void PictureScene::redrawPage(Begin begin)
{
    const std::optional<FocusPlace> place = focusPlace(focusItem(), m_blocks);
    if (m_listing) {
        drawListing();
    } else {
        m_position = m_pageStart;
        m_numbersShown = m_numbersOfEarlierPages; // else numbers of the first page would come up again on the second
        drawPage(begin);
    }
    restoreFocus(place);
}

void PictureScene::redrawAt(const QPointF &position)
{
    redraw();
    ColorSetting::instance().view()->centerOn(position);
    Q_EMIT entryChanged();
}

QWidget *PictureScene::window()
{
    const QGraphicsView *view = ColorSetting::instance().view();
    return view ? view->window() : nullptr;
}
