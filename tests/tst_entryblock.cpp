#include "browser/canvasview.h"
#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "browser/textitem.h"
#include "browser/viewholder.h"
#include "store/colorsetting.h"
#include "store/statement.h"
#include "tests/support/browserwindow.h"
#include "tests/support/layoutcheck.h"
#include "tests/support/testmain.h"
#include "tests/support/testpictures.h"

#include <QApplication>
#include <QRandomGenerator>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

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
    const QStringList copies = LayoutCheck::anyPictures();
    const auto text = [&random](int longest) { return LayoutCheck::anyText(random, longest); };
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
        QCOMPARE(LayoutCheck::blockFault(block.get()), QString());
        QVERIFY(block->sceneBoundingRect().left() >= 20 && block->sceneBoundingRect().right() <= 1060);
        QVERIFY(block->turnTo(u"1-2"_s) == (card.pictures.size() > 2));
        QCOMPARE(LayoutCheck::blockFault(block.get()), QString());
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

BAHNITO_TEST_MAIN(TestEntryBlock)
#include "tst_entryblock.moc"
