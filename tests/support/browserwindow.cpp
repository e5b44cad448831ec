#include "tests/support/browserwindow.h"

#include "app/startup.h"
#include "browser/canvasview.h"
#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "browser/textitem.h"
#include "browser/viewholder.h"
#include "tests/support/modalscript.h"

#include <QApplication>
#include <QComboBox>
#include <QMenu>
#include <QTest>
#include <QToolButton>

using namespace Qt::StringLiterals;

namespace {

void choose(QWidget *dialog, const QString &boxName, const QString &text)
{
    auto *box = dialog->findChild<QComboBox *>(boxName);
    if (!box || box->findText(text) < 0) {
        qFatal("no choice \"%s\" in %s", qUtf8Printable(text), qUtf8Printable(boxName));
    }
    while (box->currentIndex() < box->findText(text)) {
        QTest::keyClick(box, Qt::Key_Down);
    }
    while (box->currentIndex() > box->findText(text)) {
        QTest::keyClick(box, Qt::Key_Up);
    }
}

} // namespace

BrowserWindow::BrowserWindow()
    : m_window(std::make_unique<ApplWindow>())
{
    m_window->show();
    if (!QTest::qWaitForWindowExposed(m_window.get())) {
        qFatal("the window never came up");
    }
}

BrowserWindow::~BrowserWindow() = default;

PictureScene &BrowserWindow::canvas() const
{
    return m_window->viewHolder().current();
}

QStringList BrowserWindow::search(int groupId, const SearchWish &wish)
{
    ModalScript script;
    script.then([&](QWidget *dialog) {
        if (!wish.model.isEmpty()) {
            choose(dialog, u"modelBox"_s, wish.model);
        }
        choose(dialog, u"startBox"_s, wish.start);
        choose(dialog, u"repeatBox"_s, wish.repeat);
        choose(dialog, u"picturesBox"_s, wish.pictures);
        choose(dialog, u"sortBox"_s, wish.sort);
        script.click(dialog, u"Suchen"_s);
    });
    clickGroup(groupId);
    return script.problems();
}

void BrowserWindow::activate()
{
    m_window->activateWindow();
    if (!QTest::qWaitForWindowActive(m_window.get())) {
        qFatal("the window did not become active");
    }
}

void BrowserWindow::clickGroup(int groupId)
{
    auto *button = m_window->findChild<QToolButton *>(u"group%1"_s.arg(groupId));
    if (!button) {
        qFatal("no button for group %d", groupId);
    }
    QTest::mouseClick(button, Qt::LeftButton);
}

void BrowserWindow::click(QGraphicsItem *item)
{
    CanvasView *view = m_window->viewHolder().view();
    view->ensureVisible(item);
    const QPointF centre = item->sceneBoundingRect().center();
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->mapFromScene(centre));
    QApplication::processEvents(); // the press is carried out after its event
}

void BrowserWindow::doubleClick(QGraphicsItem *item)
{
    CanvasView *view = m_window->viewHolder().view();
    view->ensureVisible(item);
    const QPoint centre = view->mapFromScene(item->sceneBoundingRect().center());
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, centre); // the first half of every real double click
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, centre);
    QApplication::processEvents();
}

QString BrowserWindow::caption() const
{
    const QList<QGraphicsItem *> items = canvas().items();
    for (QGraphicsItem *item : items) {
        const auto *text = qgraphicsitem_cast<TextItem *>(item);
        if (text && text->scenePos() == QPointF(350, 20)) {
            return text->toPlainText();
        }
    }
    return {};
}

QStringList BrowserWindow::numbers() const
{
    QStringList numbers;
    for (const EntryBlock *block : canvas().blocks()) {
        numbers.append(block->card().number);
    }
    return numbers;
}

QStringList BrowserWindow::texts() const
{
    QStringList texts;
    const QList<QGraphicsItem *> items = canvas().items(Qt::AscendingOrder);
    for (QGraphicsItem *item : items) {
        if (const auto *text = qgraphicsitem_cast<TextItem *>(item)) {
            texts.append(text->toPlainText());
        }
    }
    return texts;
}

ButtonItem *BrowserWindow::button(ButtonKind kind, const EntryBlock *block) const
{
    const QList<QGraphicsItem *> items = canvas().items();
    for (QGraphicsItem *item : items) {
        auto *button = qgraphicsitem_cast<ButtonItem *>(item);
        if (button && button->kind() == kind && button->parentItem() == block) {
            return button;
        }
    }
    return nullptr;
}

EntryBlock *BrowserWindow::block(int index) const
{
    return canvas().blocks().value(index);
}

QList<Picture *> BrowserWindow::photos(const EntryBlock *block) const
{
    QList<Picture *> photos;
    const QList<QGraphicsItem *> items = block ? block->childItems() : canvas().items();
    for (QGraphicsItem *item : items) {
        if (auto *photo = qgraphicsitem_cast<Picture *>(item)) {
            photos.append(photo);
        }
    }
    return photos;
}

void BrowserWindow::pickColor(const QString &name)
{
    const QMenu *menu = m_window->findChild<QToolButton *>(u"colorButton"_s)->menu();
    const QList<QAction *> entries = menu->actions();
    for (QAction *entry : entries) {
        if (entry->text() == name) {
            entry->trigger();
            return;
        }
    }
    qFatal("no colour \"%s\"", qUtf8Printable(name));
}
