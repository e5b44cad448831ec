#include "store/pictureloader.h"
#include "tests/support/testmain.h"
#include "tests/support/testpictures.h"

#include <QApplication>
#include <QFile>
#include <QImageReader>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <memory>

using namespace Qt::StringLiterals;

class TestPictureLoader final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }
    void cleanup() { m_folder.reset(); }

    void sizeIsFittedIntoTheBox_data();
    void sizeIsFittedIntoTheBox();
    void everyOrientationStandsUpright_data();
    void everyOrientationStandsUpright();
    void pictureIsFittedAndNeverEnlarged();
    void wantedSizeIsChosenFromTheUprightSize();
    void formatIsThatOfTheContent();
    void transparencyIsKept();
    void pixelRatioIsOne();
    void largePhotographIsReadBeyondQtsLimit();
    void reducedPictureLooksLikeASmoothlyScaledOne_data();
    void reducedPictureLooksLikeASmoothlyScaledOne();

private:
    [[nodiscard]] QString path(const QString &name) const { return m_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

namespace {

constexpr QSize CopyBox(750, 500);

double meanDifference(const QImage &one, const QImage &other)
{
    double sum = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            sum += std::abs(qGray(one.pixel(x, y)) - qGray(other.pixel(x, y)));
        }
    }
    return sum / (double(one.width()) * one.height());
}

bool isAbout(const QColor &color, const QColor &expected)
{
    return std::abs(color.red() - expected.red()) < 40 && std::abs(color.green() - expected.green()) < 40
        && std::abs(color.blue() - expected.blue()) < 40;
}

} // namespace

void TestPictureLoader::sizeIsFittedIntoTheBox_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QSize>("fitted");
    QTest::newRow("landscape") << QSize(1500, 1000) << QSize(750, 500);
    QTest::newRow("square") << QSize(1000, 1000) << QSize(500, 500);
    QTest::newRow("portrait") << QSize(3000, 4000) << QSize(375, 500);
    QTest::newRow("four to three") << QSize(4000, 3000) << QSize(4000, 3000).scaled(CopyBox, Qt::KeepAspectRatio);
    QTest::newRow("smaller stays") << QSize(75, 50) << QSize(75, 50);
    QTest::newRow("exactly the box") << QSize(750, 500) << QSize(750, 500);
    QTest::newRow("one pixel too wide") << QSize(751, 500) << QSize(750, 499);
    QTest::newRow("only too high") << QSize(10, 5000) << QSize(1, 500);
    QTest::newRow("a thread") << QSize(100000, 1) << QSize(750, 1);
    QTest::newRow("nothing") << QSize(0, 0) << QSize(1, 1);
    QTest::newRow("invalid") << QSize() << QSize(1, 1);
}

void TestPictureLoader::sizeIsFittedIntoTheBox()
{
    QFETCH(const QSize, size);
    QTEST(fittedInto(size, CopyBox), "fitted");
}

void TestPictureLoader::everyOrientationStandsUpright_data()
{
    QTest::addColumn<int>("orientation");
    QTest::addColumn<QList<QColor>>("corners"); // top left, top right, bottom left, bottom right
    const QColor r = Qt::red;
    const QColor g = Qt::green;
    const QColor b = Qt::blue;
    const QColor y = Qt::yellow;
    QTest::newRow("1 upright") << 1 << QList { r, g, b, y };
    QTest::newRow("2 mirrored") << 2 << QList { g, r, y, b };
    QTest::newRow("3 upside down") << 3 << QList { y, b, g, r };
    QTest::newRow("4 mirrored upside down") << 4 << QList { b, y, r, g };
    QTest::newRow("5 mirrored on its side") << 5 << QList { r, b, g, y };
    QTest::newRow("6 turned right") << 6 << QList { b, r, y, g };
    QTest::newRow("7 mirrored on its other side") << 7 << QList { y, g, b, r };
    QTest::newRow("8 turned left") << 8 << QList { g, y, r, b };
}

void TestPictureLoader::everyOrientationStandsUpright()
{
    QFETCH(const int, orientation);
    QFETCH(const QList<QColor>, corners);
    const bool isTurned = orientation >= 5;
    const QString file = path(u"a.jpg"_s);
    writeTestJpeg(file, { 1200, 800 }, orientation);
    QCOMPARE(pictureSize(file), isTurned ? QSize(800, 1200) : QSize(1200, 800));

    const QImage image = loadPicture(file, CopyBox);
    const QSize size = isTurned ? QSize(333, 500) : QSize(750, 500);
    QCOMPARE(image.size(), size);
    const QList<QPoint> points { { 20, 20 }, { size.width() - 20, 20 }, { 20, size.height() - 20 },
        { size.width() - 20, size.height() - 20 } };
    for (int i = 0; i < 4; ++i) {
        QVERIFY2(isAbout(image.pixelColor(points.at(i)), corners.at(i)), qPrintable(u"corner %1"_s.arg(i)));
    }
}

void TestPictureLoader::pictureIsFittedAndNeverEnlarged()
{
    writeTestJpeg(path(u"large.jpg"_s), { 1500, 1000 });
    writeTestJpeg(path(u"small.jpg"_s), { 75, 50 });
    QCOMPARE(loadPicture(path(u"large.jpg"_s), CopyBox).size(), QSize(750, 500));
    QCOMPARE(loadPicture(path(u"small.jpg"_s), CopyBox).size(), QSize(75, 50));
}

void TestPictureLoader::wantedSizeIsChosenFromTheUprightSize()
{
    writeTestJpeg(path(u"a.jpg"_s), { 300, 200 }, 6);
    QSize offered;
    const QImage image = loadPicture(path(u"a.jpg"_s), [&offered](const QSize &size) {
        offered = size;
        return QSize(40, 60);
    });
    QCOMPARE(offered, QSize(200, 300));
    QCOMPARE(image.size(), QSize(40, 60));
}

void TestPictureLoader::formatIsThatOfTheContent()
{
    writeTransparentPng(path(u"png.jpg"_s), { 60, 40 });
    writeTestJpeg(path(u"jpeg.png"_s), { 60, 40 });
    writeTestJpeg(path(u"no extension"_s), { 60, 40 });
    for (const QString &name : { u"png.jpg"_s, u"jpeg.png"_s, u"no extension"_s }) {
        QCOMPARE(pictureSize(path(name)), QSize(60, 40));
        QCOMPARE(loadPicture(path(name), CopyBox).size(), QSize(60, 40));
    }
}

void TestPictureLoader::transparencyIsKept()
{
    writeTransparentPng(path(u"a.png"_s), { 1500, 1000 });
    const QImage image = loadPicture(path(u"a.png"_s), CopyBox);
    QCOMPARE(image.size(), QSize(750, 500));
    QCOMPARE(image.pixelColor(100, 100), QColor(Qt::red));
    QCOMPARE(image.pixelColor(700, 100).alpha(), 0);
}

void TestPictureLoader::pixelRatioIsOne()
{
    writeTestJpeg(path(u"a@2x.jpg"_s), { 60, 40 }); // Qt takes such a name for a picture of double density
    const QImage image = loadPicture(path(u"a@2x.jpg"_s), CopyBox);
    QCOMPARE(image.devicePixelRatio(), 1.0);
    QCOMPARE(image.size(), QSize(60, 40));
}

void TestPictureLoader::largePhotographIsReadBeyondQtsLimit()
{
    const int former = QImageReader::allocationLimit();
    QImageReader::setAllocationLimit(1); // megabyte
    QImage image(800, 600, QImage::Format_RGB32);
    image.fill(Qt::red);
    QVERIFY(image.save(path(u"a.png"_s), "PNG"));
    QVERIFY(QImage(path(u"a.png"_s)).isNull());
    QCOMPARE(loadPicture(path(u"a.png"_s), CopyBox).size(), QSize(666, 500));
    QCOMPARE(QImageReader::allocationLimit(), 1); // raised for the one call only
    QImageReader::setAllocationLimit(former);
}

void TestPictureLoader::reducedPictureLooksLikeASmoothlyScaledOne_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QSize>("size");
    QTest::newRow("photograph") << u"a.jpg"_s << QSize(3000, 2000);
    QTest::newRow("uneven size") << u"a.jpg"_s << QSize(1777, 1003);
    QTest::newRow("many times too large") << u"a.jpg"_s << QSize(6016, 4016);
    QTest::newRow("twice too large") << u"a.jpg"_s << QSize(1600, 1200);
    QTest::newRow("PNG") << u"a.png"_s << QSize(1800, 1200);
}

void TestPictureLoader::reducedPictureLooksLikeASmoothlyScaledOne()
{
    QFETCH(const QString, name);
    QFETCH(const QSize, size);
    const QImage original = detailedImage(size);
    QVERIFY(original.save(path(name), nullptr, 95));
    const QImage reduced = loadPicture(path(name), CopyBox);
    const QImage smooth = original.scaled(reduced.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const double difference = meanDifference(reduced, smooth);
    QVERIFY2(difference < 1.5, qPrintable(u"mean difference %1 of 255 levels"_s.arg(difference)));
}

BAHNITO_TEST_MAIN(TestPictureLoader)
#include "tst_pictureloader.moc"
