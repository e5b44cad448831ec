#include "browser/canvasview.h"
#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "browser/textitem.h"
#include "browser/viewholder.h"
#include "store/colorsetting.h"
#include "store/statement.h"
#include "tests/support/browserwindow.h"
#include "tests/support/testmain.h"
#include "tests/support/testpictures.h"

#include <QApplication>
#include <QRandomGenerator>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

/// The part of an item that the user sees: buttons and photographs keep a margin for the focus mark around it.
QRectF seen(const QGraphicsItem *item)
{
    if (const auto *button = qgraphicsitem_cast<const ButtonItem *>(item)) {
        return QRectF({ 0, 0 }, buttonBox(button->kind())).translated(item->pos());
    }
    if (const auto *photo = qgraphicsitem_cast<const Picture *>(item)) {
        return photo->frame().translated(item->pos());
    }
    return item->boundingRect().translated(item->pos());
}

/// What is wrong with the block's layout; empty when nothing is.
QString layoutFault(const EntryBlock *block)
{
    const QList<QGraphicsItem *> items = block->childItems();
    for (qsizetype i = 0; i < items.size(); ++i) {
        const QRectF rect = seen(items.at(i));
        if (!block->boundingRect().contains(rect)) {
            return u"item %1 of type %2 leaves the card"_s.arg(i).arg(items.at(i)->type());
        }
        for (qsizetype k = i + 1; k < items.size(); ++k) {
            if (rect.intersects(seen(items.at(k)))) {
                return u"items of types %1 and %2 overlap"_s.arg(items.at(i)->type()).arg(items.at(k)->type());
            }
        }
    }
    return {};
}

} // namespace

class TestEntryBlock final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void noLayoutOverlapsForAnyEntry();
    void cardWithoutPicturesIsLow();
    void portraitKeepsItsShape();
    void smallPictureIsNotEnlarged();
    void unreadableCopyHasAPlaceholder();
    void pictureIsDecodedWhenItIsPainted();
    void keyboardReachesAndFiresEverything();
    void keysScrollTheCanvas();

private:
    std::unique_ptr<TestCatalogue> m_catalogue;
    std::unique_ptr<BrowserWindow> m_browser;
    int m_group = 0;
    int m_model = 0;
};

void TestEntryBlock::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    m_group = m_catalogue->addGroup(u"Krokodile"_s);
    m_model = m_catalogue->addModel(u"Ce 6/8"_s, m_group);
    m_browser = std::make_unique<BrowserWindow>();
}

void TestEntryBlock::cleanup()
{
    m_browser.reset();
    m_catalogue.reset();
}

void TestEntryBlock::noLayoutOverlapsForAnyEntry()
{
    QRandomGenerator random(7);
    const QList<QSize> shapes { { 750, 500 }, { 500, 750 }, { 500, 500 }, { 1, 2000 }, { 2000, 1 }, { 1, 1 },
        { 2000, 30 } };
    QStringList copies;
    for (qsizetype i = 0; i < shapes.size(); ++i) {
        copies.append(m_catalogue->path(u"shape%1.jpg"_s.arg(i)));
        writeTestJpeg(copies.last(), shapes.at(i));
    }
    copies.append(u"missing.jpg"_s);
    const QStringList words { u"W"_s, u"i"_s, u"Krokodil "_s, u"Wasserturm"_s, u" "_s, u"<b>x</b>"_s, u"שלום "_s,
        u"🚂"_s, u"机关车"_s, u"a\u0301"_s };
    const auto text = [&](int longest) {
        QString result;
        const int wanted = random.bounded(longest + 1);
        const QString word = words.at(random.bounded(words.size()));
        while (result.size() < wanted) {
            result += random.bounded(3) == 0 ? words.at(random.bounded(words.size())) : word;
        }
        return result.left(longest);
    };
    PictureScene &canvas = m_browser->canvas();
    for (int run = 0; run < 1000; ++run) {
        EntryCard card { run, text(18), text(38), QDate(1990, 1, 1), text(198), {} };
        for (int pictures = random.bounded(7); pictures > 0; --pictures) {
            card.pictures.append({ copies.at(random.bounded(copies.size())), {} });
        }
        auto block = std::make_unique<EntryBlock>(card, 1);
        if (random.bounded(2) == 0) {
            block->setEntryCount(random.bounded(100000));
        }
        block->layOut();
        canvas.addItem(block.get());
        block->setPos(EntryBlock::Left, 80);
        QCOMPARE(layoutFault(block.get()), QString());
        QVERIFY(block->sceneBoundingRect().left() >= 20 && block->sceneBoundingRect().right() <= 1060);
        QVERIFY(block->turnTo(u"1-2"_s) == (card.pictures.size() > 2));
        QCOMPARE(layoutFault(block.get()), QString());
        QVERIFY(!block->turnTo(u"1-6"_s));
        QVERIFY(!block->turnTo(u"2-0"_s));
    }
}

void TestEntryBlock::cardWithoutPicturesIsLow()
{
    m_catalogue->addEntry(u"1"_s, m_model);
    m_catalogue->addPicture(m_catalogue->addEntry(u"2"_s, m_model));
    QCOMPARE(m_browser->search(m_group), QStringList());
    QVERIFY(!m_browser->block(0)->hasPictures());
    QVERIFY(m_browser->block(1)->hasPictures());
    QVERIFY(m_browser->block(0)->height() < 0.75 * m_browser->block(1)->height());
}

void TestEntryBlock::portraitKeepsItsShape()
{
    writeTestJpeg(u"portrait.jpg"_s, { 300, 450 });
    const Picture picture({ u"portrait.jpg"_s, {} }, { 332, 226 });
    const QSizeF shown = picture.frame().size() - QSizeF(10, 10);
    QCOMPARE(shown, QSizeF(144, 216));
    QCOMPARE(picture.frame().center(), QPointF(166, 113));
}

void TestEntryBlock::smallPictureIsNotEnlarged()
{
    writeTestJpeg(u"small.jpg"_s, { 90, 60 });
    const Picture picture({ u"small.jpg"_s, {} }, { 332, 226 });
    QCOMPARE(picture.frame().size(), QSizeF(100, 70));
}

void TestEntryBlock::unreadableCopyHasAPlaceholder()
{
    QVERIFY(Picture({ u"missing.jpg"_s, {} }, { 332, 226 }).isPlaceholder());
    QFile cut(u"cut.jpg"_s);
    QVERIFY(cut.open(QIODevice::WriteOnly));
    cut.write("\xFF\xD8\xFF\xE0 no more");
    cut.close();
    QVERIFY(Picture({ u"cut.jpg"_s, {} }, { 332, 226 }).isPlaceholder());
}

void TestEntryBlock::pictureIsDecodedWhenItIsPainted()
{
    const int entry = m_catalogue->addEntry(u"1"_s, m_model);
    m_catalogue->addPicture(entry);
    writeTestJpeg(u"./Data/Pictures/Folder001/copy1.jpg"_s, { 750, 500 });
    QCOMPARE(m_browser->search(m_group), QStringList());
    const CanvasView *view = m_browser->window().viewHolder().view();
    const QImage shot = m_browser->window().viewHolder().view()->viewport()->grab().toImage();
    const Picture *photo = m_browser->photos(m_browser->block(0)).first();
    const QRectF frame = photo->frame().translated(photo->scenePos());
    const QColor corner = shot.pixelColor(view->mapFromScene(frame.topLeft() + QPointF(30, 30)));
    QVERIFY(corner.red() > 200 && corner.green() < 60 && corner.blue() < 60);
    const QColor opposite = shot.pixelColor(view->mapFromScene(frame.bottomRight() - QPointF(30, 30)));
    QVERIFY(opposite.red() > 200 && opposite.green() > 200 && opposite.blue() < 60);
}

void TestEntryBlock::keyboardReachesAndFiresEverything()
{
    for (int i = 0; i < 41; ++i) {
        m_catalogue->addEntry(QString::number(100 + i), m_model, u"Bern"_s, QDate(1990, 1, 1).addDays(i));
    }
    for (int i = 0; i < 3; ++i) {
        m_catalogue->addPicture(1);
    }
    QCOMPARE(m_browser->search(m_group), QStringList());
    CanvasView *view = m_browser->window().viewHolder().view();
    m_browser->window().activateWindow();
    view->setFocus();
    QList<int> kinds;
    for (int i = 0; i < 5; ++i) {
        QTest::keyClick(view, Qt::Key_Tab);
        const QGraphicsItem *item = m_browser->canvas().focusItem();
        QVERIFY(item);
        const auto *button = qgraphicsitem_cast<const ButtonItem *>(item);
        kinds.append(button ? int(button->kind()) : 0);
    }
    QCOMPARE(kinds, (QList<int> { int(ButtonKind::Edit), int(ButtonKind::Delete), 0, 0, int(ButtonKind::Right) }));
    QTest::keyClick(view, Qt::Key_Return);
    QTRY_COMPARE(m_browser->block(0)->key(), u"1-2"_s);
    QCOMPARE(m_browser->canvas().focusItems().size(), 2 + 2 + 39 * 2 + 1);
    view->canvas()->setFocusItem(m_browser->canvas().focusItems().constLast());
    QTest::keyClick(view, Qt::Key_Space);
    QTRY_COMPARE(m_browser->numbers(), QStringList { u"140"_s });
}

void TestEntryBlock::keysScrollTheCanvas()
{
    for (int i = 0; i < 30; ++i) {
        m_catalogue->addEntry(QString::number(100 + i), m_model, u"Bern"_s, QDate(1990, 1, 1).addDays(i));
    }
    QCOMPARE(m_browser->search(m_group), QStringList());
    CanvasView *view = m_browser->window().viewHolder().view();
    const auto top = [view] { return view->mapToScene(0, 0).y(); };
    QCOMPARE(top(), 0.0);
    QTest::keyClick(view, Qt::Key_PageDown);
    const double page = top();
    QVERIFY(page > 300);
    QTest::keyClick(view, Qt::Key_PageUp);
    QCOMPARE(top(), 0.0);
    QTest::keyClick(view, Qt::Key_End);
    QVERIFY(top() > page);
    QTest::keyClick(view, Qt::Key_Home);
    QCOMPARE(top(), 0.0);
}

BAHNITO_TEST_MAIN(TestEntryBlock)
#include "tst_entryblock.moc"
