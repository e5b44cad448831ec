#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "store/colorsetting.h"
#include "tests/support/browserwindow.h"
#include "tests/support/testmain.h"
#include "tests/support/testpictures.h"

#include <QApplication>
#include <QFile>
#include <QPainter>
#include <QTest>

#include <cmath>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize PictureBox(332, 226);

/// A copy whose header is whole while the end of its data is missing.
void writeCutJpeg(const QString &path, const QSize &size)
{
    writeTestJpeg(path, size);
    QFile file(path);
    QVERIFY(file.resize(file.size() - 10));
}

QImage painted(Picture &picture)
{
    QImage image(PictureBox, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    picture.paint(&painter, nullptr, nullptr);
    return image;
}

/// The smallest rectangle around everything that is not white, inside the frame's line.
QRect drawnPart(const QImage &image, const QRect &frame)
{
    QRect part;
    for (int y = frame.top() + 2; y < frame.bottom() - 1; ++y) {
        for (int x = frame.left() + 2; x < frame.right() - 1; ++x) {
            if (qGray(image.pixel(x, y)) < 250) {
                part |= QRect(x, y, 1, 1);
            }
        }
    }
    return part;
}

} // namespace

/// Photographs on the canvas whose copies are damaged behind a good header, which is seen only when they are painted.
class TestCanvasCopies final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void cutCopyBecomesAPlaceholderOfItsOwnShape_data();
    void cutCopyBecomesAPlaceholderOfItsOwnShape();
    void cutCopyIsCalledMissing();
    void noticeStandsOnlyWhereItFits_data();
    void noticeStandsOnlyWhereItFits();
    void photographIsHitOnlyInsideItsFrame();

private:
    std::unique_ptr<TestCatalogue> m_catalogue;
    std::unique_ptr<BrowserWindow> m_browser;
    int m_group = 0;
    int m_model = 0;
};

void TestCanvasCopies::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    m_group = m_catalogue->addGroup(u"Krokodile"_s);
    m_model = m_catalogue->addModel(u"Ce 6/8"_s, m_group);
}

void TestCanvasCopies::cleanup()
{
    m_browser.reset();
    ColorSetting::saveAndRelease();
    m_catalogue.reset();
}

void TestCanvasCopies::cutCopyBecomesAPlaceholderOfItsOwnShape_data()
{
    QTest::addColumn<QSize>("copy");
    QTest::addColumn<QSize>("placeholder"); // 480 x 320, fitted into the frame
    QTest::newRow("landscape") << QSize(750, 500) << QSize(322, 215);
    QTest::newRow("portrait") << QSize(300, 450) << QSize(144, 96);
    QTest::newRow("small") << QSize(75, 50) << QSize(75, 50);
    QTest::newRow("strip") << QSize(20, 2000) << QSize(30, 20);
}

void TestCanvasCopies::cutCopyBecomesAPlaceholderOfItsOwnShape()
{
    QFETCH(QSize, copy);
    QFETCH(QSize, placeholder);
    writeCutJpeg(u"cut.jpg"_s, copy);
    Picture picture({ u"cut.jpg"_s, {} }, PictureBox);
    QVERIFY(!picture.isPlaceholder()); // the header says nothing of the rest
    const QRectF frame = picture.frame();
    const QImage image = painted(picture);
    QVERIFY(picture.isPlaceholder());
    QCOMPARE(picture.frame(), frame);
    QRect expected({ 0, 0 }, placeholder);
    expected.moveCenter(frame.toRect().center());
    const QRect drawn = drawnPart(image, frame.toRect());
    QVERIFY2(expected.adjusted(-1, -1, 1, 1).contains(QRect(drawn.left(), drawn.top(), drawn.width(), 1)), "top");
    QVERIFY(drawn.width() >= placeholder.width() * 0.9 && drawn.width() <= placeholder.width());
    QVERIFY(std::abs(drawn.center().x() - expected.center().x()) <= 2);
    QCOMPARE(painted(picture), image); // and stays so
}

void TestCanvasCopies::cutCopyIsCalledMissing()
{
    const int entry = m_catalogue->addEntry(u"1"_s, m_model);
    m_catalogue->addPicture(entry);
    writeCutJpeg(u"./Data/Pictures/Folder001/copy1.jpg"_s, { 750, 500 });
    m_browser = std::make_unique<BrowserWindow>();
    QCOMPARE(m_browser->search(m_group), QStringList());
    const Picture *photo = m_browser->photos(m_browser->block(0)).first();
    QTRY_VERIFY(photo->isPlaceholder()); // once it was painted
    QCOMPARE(photo->name(), u"Bild 1 von 1 (fehlt)"_s);
    QCOMPARE(photo->toolTip(), u"Die Kopie dieses Bildes fehlt oder ist nicht lesbar."_s);
}

void TestCanvasCopies::noticeStandsOnlyWhereItFits_data()
{
    QTest::addColumn<QSize>("copy");
    QTest::addColumn<bool>("beneath"); // the drawing, in the white of the frame
    QTest::newRow("landscape has it in the drawing") << QSize(750, 500) << false;
    QTest::newRow("portrait has it beneath") << QSize(300, 450) << true;
    QTest::newRow("small has none") << QSize(75, 50) << false;
    QTest::newRow("strip has none") << QSize(20, 2000) << false;
}

void TestCanvasCopies::noticeStandsOnlyWhereItFits()
{
    m_browser = std::make_unique<BrowserWindow>(); // brings the canvas's fonts
    QFETCH(QSize, copy);
    QFETCH(bool, beneath);
    writeCutJpeg(u"cut.jpg"_s, copy);
    Picture picture({ u"cut.jpg"_s, {} }, PictureBox);
    const QImage image = painted(picture);
    const QRect frame = picture.frame().toRect();
    QRect drawing({ 0, 0 }, QSize(480, 320).scaled(frame.size() - QSize(10, 10), Qt::KeepAspectRatio));
    drawing.moveCenter(frame.center());
    const QRect drawn = drawnPart(image, frame);
    QCOMPARE(drawn.bottom() > drawing.bottom() + 2, beneath);
    QVERIFY(frame.adjusted(5, 5, -5, -5).contains(drawn)); // nothing in the mat
    QImage outside = image;
    QPainter(&outside).fillRect(frame, Qt::white);
    QImage white(PictureBox, QImage::Format_RGB32);
    white.fill(Qt::white);
    QCOMPARE(outside, white);
}

void TestCanvasCopies::photographIsHitOnlyInsideItsFrame()
{
    m_catalogue->addPicture(m_catalogue->addEntry(u"1"_s, m_model));
    m_browser = std::make_unique<BrowserWindow>();
    QCOMPARE(m_browser->search(m_group), QStringList());
    const Picture *photo = m_browser->photos(m_browser->block(0)).first();
    const QRectF frame = photo->mapRectToScene(photo->frame());
    const auto hit = [this](const QPointF &point) { return m_browser->canvas().itemAt(point, {}); };
    QCOMPARE(hit(frame.topLeft() + QPointF(1, 1)), static_cast<const QGraphicsItem *>(photo));
    QVERIFY(hit(frame.topLeft() - QPointF(3, 3)) != photo); // there only the focus mark is painted
}

BAHNITO_TEST_MAIN(TestCanvasCopies)
#include "tst_canvascopies.moc"
