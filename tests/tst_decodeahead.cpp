#include "browser/canvasview.h"
#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "browser/viewholder.h"
#include "store/colorsetting.h"
#include "tests/support/browserwindow.h"
#include "tests/support/modalscript.h"
#include "tests/support/testmain.h"
#include "tests/support/testpictures.h"

#include <QApplication>
#include <QFile>
#include <QScrollBar>
#include <QTest>

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr int Entries = 20; // about seven times what is in sight
constexpr int PicturesOfAnEntry = 6;
constexpr QSize CopySize(400, 300);
constexpr int Glance = 300; // ms, in which all that may be decoded is

QString copyOf(int entry, int picture)
{
    return u"./Data/Pictures/Folder001/copy%1.jpg"_s.arg(entry * PicturesOfAnEntry + picture + 1);
}

} // namespace

/// Photographs that are decoded before they are seen: which ones, when, and that nobody can tell.
class TestDecodeAhead final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void nothingIsDecodedBeforeTheFirstPaint();
    void idleProgramDecodesThePageBelow();
    void idleProgramDecodesThePageAbove();
    void farPicturesWaitUntilTheyAreSeen();
    void pairsOfTheArrowsAreDecodedInSightOnly();
    void nothingIsDecodedWhenOutOfSight();
    void nothingIsDecodedWhileAPressIsCarriedOut();
    void clearedCanvasEndsIt();
    void closedWindowEndsIt();
    void scrolledPageLooksTheSame();
    void turnedPairLooksTheSame();
    void changedFileIsShownAsItIsNow_data();
    void changedFileIsShownAsItIsNow();
    void largeFilesWaitUntilTheyAreSeen();

private:
    void showPage() const;
    void turnFirstEntry() const;
    [[nodiscard]] QImage shot() const;
    [[nodiscard]] CanvasView *view() const { return m_browser->window().viewHolder().view(); }
    [[nodiscard]] QList<EntryBlock *> blocks() const { return m_browser->canvas().blocks(); }
    [[nodiscard]] bool isDecoded(int block) const;
    [[nodiscard]] QList<int> decodedBlocks() const;

    std::unique_ptr<TestCatalogue> m_catalogue;
    std::unique_ptr<BrowserWindow> m_browser;
    SearchParameters m_search;
};

void TestDecodeAhead::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    m_search.modelId = m_catalogue->addModel(u"Ce 6/8"_s, m_catalogue->addGroup(u"Krokodile"_s));
    for (int entry = 0; entry < Entries; ++entry) {
        const int id = m_catalogue->addEntry(QString::number(100 + entry), m_search.modelId);
        for (int picture = 0; picture < PicturesOfAnEntry; ++picture) {
            m_catalogue->addPicture(id);
            writeTestJpeg(copyOf(entry, picture), CopySize);
        }
    }
    m_browser = std::make_unique<BrowserWindow>();
}

void TestDecodeAhead::cleanup()
{
    m_browser.reset();
    ColorSetting::saveAndRelease();
    m_catalogue.reset();
}

/// Paints the page's top and leaves no time for more.
void TestDecodeAhead::showPage() const
{
    m_browser->canvas().startSearch(m_search, 1);
    QApplication::processEvents();
}

/// Presses the first entry's right arrow.
void TestDecodeAhead::turnFirstEntry() const
{
    m_browser->canvas().activate(m_browser->button(ButtonKind::Right, blocks().first()));
    QApplication::processEvents();
}

QImage TestDecodeAhead::shot() const
{
    return view()->viewport()->grab().toImage();
}

/// Both photographs that the block shows.
bool TestDecodeAhead::isDecoded(int block) const
{
    const QList<Picture *> photos = m_browser->photos(blocks().at(block));
    return std::all_of(photos.begin(), photos.end(), [](const Picture *photo) { return photo->isDecoded(); });
}

QList<int> TestDecodeAhead::decodedBlocks() const
{
    QList<int> decoded;
    for (int block = 0; block < blocks().size(); ++block) {
        if (isDecoded(block)) {
            decoded.append(block);
        }
    }
    return decoded;
}

void TestDecodeAhead::nothingIsDecodedBeforeTheFirstPaint()
{
    m_browser.reset();
    ApplWindow window;
    window.viewHolder().results().startSearch(m_search, 1);
    QTest::qWait(Glance);
    const QList<QGraphicsItem *> items = window.viewHolder().results().blocks().first()->childItems();
    const auto pictures = std::count_if(items.begin(), items.end(), [](QGraphicsItem *item) {
        const auto *picture = qgraphicsitem_cast<Picture *>(item);
        return picture && !picture->isDecoded();
    });
    QCOMPARE(pictures, 2);
}

void TestDecodeAhead::idleProgramDecodesThePageBelow()
{
    showPage();
    const QList<int> painted = decodedBlocks();
    QVERIFY(!painted.isEmpty() && painted.size() < 5);
    const int lastBelow = int(2 * view()->viewport()->height() / (blocks().at(1)->y() - blocks().at(0)->y())) - 1;
    QVERIFY(lastBelow >= painted.size() + 1);
    QTRY_VERIFY(isDecoded(lastBelow));
    QCOMPARE(decodedBlocks().first(), 0);
}

void TestDecodeAhead::idleProgramDecodesThePageAbove()
{
    showPage();
    QTest::keyClick(view(), Qt::Key_End);
    view()->viewport()->repaint();
    const int firstPainted = decodedBlocks().value(decodedBlocks().indexOf(Entries - 1) - 1);
    QVERIFY(firstPainted > Entries / 2);
    QTRY_VERIFY(isDecoded(firstPainted - 2));
}

void TestDecodeAhead::farPicturesWaitUntilTheyAreSeen()
{
    showPage();
    QTest::qWait(Glance);
    const double end = 2.0 * view()->viewport()->height();
    for (int block = 0; block < Entries; ++block) {
        QCOMPARE(isDecoded(block), blocks().at(block)->y() < end);
    }
}

void TestDecodeAhead::pairsOfTheArrowsAreDecodedInSightOnly()
{
    showPage();
    QTest::qWait(Glance);
    QVERIFY(!blocks().at(0)->decodeFurther(1)); // nothing is left to be done
    QVERIFY(blocks().at(Entries / 2)->decodeFurther(1));

    turnFirstEntry();
    QTest::qWait(Glance);
    QVERIFY(!blocks().at(0)->decodeFurther(1)); // of the pairs at both sides

    QTest::keyClick(view(), Qt::Key_End);
    QTest::qWait(Glance);
    QVERIFY(!blocks().last()->decodeFurther(1));
    QVERIFY(blocks().at(0)->decodeFurther(1)); // let go
}

void TestDecodeAhead::nothingIsDecodedWhenOutOfSight()
{
    showPage();
    const QList<int> painted = decodedBlocks();
    m_browser->window().hide();
    QTest::qWait(Glance);
    QCOMPARE(decodedBlocks(), painted);

    m_browser->window().show();
    QTRY_VERIFY(decodedBlocks().size() > painted.size());
}

void TestDecodeAhead::nothingIsDecodedWhileAPressIsCarriedOut()
{
    showPage();
    const QList<int> painted = decodedBlocks();
    QList<int> decodedMeanwhile;
    ModalScript script;
    script.then([&](QWidget *form) {
        QTest::qWait(Glance);
        decodedMeanwhile = decodedBlocks();
        form->close();
    });
    m_browser->canvas().activate(m_browser->button(ButtonKind::Edit, blocks().first()));
    QApplication::processEvents();
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(decodedMeanwhile, painted);
    QTRY_VERIFY(decodedBlocks().size() > painted.size());
}

void TestDecodeAhead::clearedCanvasEndsIt()
{
    showPage();
    m_browser->canvas().clearCanvas();
    QTest::qWait(Glance);
    QVERIFY(blocks().isEmpty());
    showPage();
    const qsizetype painted = decodedBlocks().size();
    QTRY_VERIFY(decodedBlocks().size() > painted);
}

void TestDecodeAhead::closedWindowEndsIt()
{
    showPage();
    QTest::qWait(Glance / 10); // in the midst of it
    m_browser.reset();
    QTest::qWait(Glance); // a use of anything that is gone ends the program
    m_browser = std::make_unique<BrowserWindow>();
    QVERIFY(blocks().isEmpty());
}

void TestDecodeAhead::scrolledPageLooksTheSame()
{
    showPage();
    QTest::keyClick(view(), Qt::Key_PageDown);
    const QImage atOnce = shot();
    showPage();
    QTest::qWait(Glance);
    QVERIFY(isDecoded(4));
    QTest::keyClick(view(), Qt::Key_PageDown);
    QCOMPARE(shot(), atOnce);
}

void TestDecodeAhead::turnedPairLooksTheSame()
{
    showPage();
    turnFirstEntry();
    const QImage atOnce = shot();
    const QStringList names = m_browser->texts();
    showPage();
    QTest::qWait(Glance);
    turnFirstEntry();
    QCOMPARE(shot(), atOnce);
    QCOMPARE(m_browser->texts(), names);
    QCOMPARE(m_browser->photos(blocks().first()).first()->name(), u"Bild 3 von 6"_s);
}

void TestDecodeAhead::changedFileIsShownAsItIsNow_data()
{
    QTest::addColumn<bool>("isRemoved");
    QTest::newRow("another photograph") << false;
    QTest::newRow("gone") << true;
}

/// What was decoded ahead counts only as long as the file is the one that was decoded.
void TestDecodeAhead::changedFileIsShownAsItIsNow()
{
    QFETCH(bool, isRemoved);
    showPage();
    QTest::qWait(Glance);
    const int below = 4;
    QVERIFY(isDecoded(below));
    for (const QString &path : { copyOf(0, 2), copyOf(below, 0) }) {
        QVERIFY(QFile::remove(path));
        if (!isRemoved) {
            QImage other(CopySize, QImage::Format_RGB32);
            other.fill(Qt::cyan);
            QVERIFY(other.save(path, "JPG"));
        }
    }
    turnFirstEntry();
    const QImage turned = shot();
    QTest::keyClick(view(), Qt::Key_PageDown);
    const QImage scrolled = shot();
    QCOMPARE(m_browser->photos(blocks().at(0)).first()->isPlaceholder(), isRemoved);
    QCOMPARE(m_browser->photos(blocks().at(below)).first()->isPlaceholder(), isRemoved);

    showPage();
    turnFirstEntry();
    QCOMPARE(turned, shot());
    QTest::keyClick(view(), Qt::Key_PageDown);
    if (!isRemoved) {
        QCOMPARE(scrolled, shot());
    }
}

void TestDecodeAhead::largeFilesWaitUntilTheyAreSeen()
{
    const int below = 4;
    writeTestJpeg(copyOf(below, 0), { 1500, 1000 });
    writeTestJpeg(copyOf(0, 2), { 1500, 1000 });
    showPage();
    QTest::qWait(Glance);
    const QList<Picture *> photos = m_browser->photos(blocks().at(below));
    QVERIFY(!photos.at(0)->isDecoded());
    QVERIFY(photos.at(1)->isDecoded());
    turnFirstEntry();
    view()->viewport()->repaint();
    const Picture *turned = m_browser->photos(blocks().first()).first();
    QVERIFY(turned->isDecoded() && !turned->isPlaceholder());
}

BAHNITO_TEST_MAIN(TestDecodeAhead)
#include "tst_decodeahead.moc"
