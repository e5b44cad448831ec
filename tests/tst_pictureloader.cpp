#include "store/areaaverage.h"
#include "store/pictureloader.h"
#include "tests/support/testmain.h"
#include "tests/support/testpictures.h"

#include <QApplication>
#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QImageWriter>
#include <QPainter>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
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
    void rubbishIsPassedOverOnlyForAWhile_data();
    void rubbishIsPassedOverOnlyForAWhile();
    void sizeHiddenBehindAFalseSegmentIsSeen();
    void fileLargerThanAnyPhotographIsRefused_data();
    void fileLargerThanAnyPhotographIsRefused();
    void onlyWhatIsDecodedInFullIsSlowToRead_data();
    void onlyWhatIsDecodedInFullIsSlowToRead();
    void reducedPictureLooksLikeASmoothlyScaledOne_data();
    void reducedPictureLooksLikeASmoothlyScaledOne();
    void turnedPictureOfUnevenSizeLosesNoEdge_data();
    void turnedPictureOfUnevenSizeLosesNoEdge();
    void quickPictureHasTheWantedSize();
    void averageCountsPixelsByTheirShare();
    void hardEdgesComeOutAsTheAverageOfTheWholePicture_data();
    void hardEdgesComeOutAsTheAverageOfTheWholePicture();

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

QByteArray encodedJpeg(const QSize &size, bool progressive)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, "JPEG");
    writer.setProgressiveScanWrite(progressive);
    writer.write(testImage(size));
    return bytes;
}

void write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

/// Quadrangles without soft edges, each with a colour of its own: what bad scaling shows on most.
QImage hardEdges(const QSize &size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::gray);
    QPainter painter(&image);
    painter.setPen(Qt::NoPen);
    QRandomGenerator random(20261121);
    const int longest = size.width() / 8;
    for (int i = 0; i < 1500; ++i) {
        const QPoint corner(random.bounded(size.width()), random.bounded(size.height()));
        QPolygon quadrangle;
        for (int point = 0; point < 4; ++point) {
            quadrangle << corner + QPoint(random.bounded(longest), random.bounded(longest));
        }
        painter.setBrush(QColor::fromRgb(random.generate()));
        painter.drawPolygon(quadrangle);
    }
    return image;
}

/// The green of the area of `source` that pixel (x, y) of a picture of `size` stands for.
double averageGreen(const QImage &source, const QSize &size, int x, int y)
{
    const double across = double(source.width()) / size.width();
    const double down = double(source.height()) / size.height();
    double sum = 0;
    for (int row = int(y * down); row < std::min<double>(source.height(), (y + 1) * down); ++row) {
        const double height = std::min((y + 1) * down, row + 1.0) - std::max(y * down, double(row));
        for (int column = int(x * across); column < std::min<double>(source.width(), (x + 1) * across); ++column) {
            const double width = std::min((x + 1) * across, column + 1.0) - std::max(x * across, double(column));
            sum += width * height * qGreen(source.pixel(column, row));
        }
    }
    return sum / (across * down);
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
    const QImage image = loadPicture(
        path(u"a.jpg"_s),
        [&offered](const QSize &size) {
            offered = size;
            return QSize(40, 60);
        },
        Reduction::Quick);
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

void TestPictureLoader::rubbishIsPassedOverOnlyForAWhile_data()
{
    QTest::addColumn<int>("length");
    QTest::addColumn<bool>("readable");
    QTest::newRow("none") << 0 << true;
    QTest::newRow("some") << 65'000 << true;
    QTest::newRow("too much") << 66'000 << false;
    QTest::newRow("far too much") << 1'000'000 << false;
}

void TestPictureLoader::rubbishIsPassedOverOnlyForAWhile()
{
    QFETCH(const int, length);
    QFETCH(const bool, readable);
    for (const char filler : { '\0', 'x', '\xFF' }) {
        QByteArray bytes = encodedJpeg({ 60, 40 }, false);
        bytes.insert(bytes.indexOf("\xFF\xC0"), QByteArray(length, filler));
        write(path(u"a.jpg"_s), bytes);
        QCOMPARE(pictureSize(path(u"a.jpg"_s)), readable ? QSize(60, 40) : QSize());
        QCOMPARE(loadPicture(path(u"a.jpg"_s), CopyBox).isNull(), !readable);
    }
}

/// A marker without a length, with what looks like one behind it.
void TestPictureLoader::sizeHiddenBehindAFalseSegmentIsSeen()
{
    QByteArray bytes = encodedJpeg({ 60, 40 }, true);
    const qsizetype frame = bytes.indexOf("\xFF\xC2");
    const QByteArray prefix("\xFF\1\xFF\xD0\xFF\2");
    write(path(u"small.jpg"_s), QByteArray(bytes).insert(frame, prefix.first(4)));
    QCOMPARE(loadPicture(path(u"small.jpg"_s), CopyBox).size(), QSize(60, 40));
    bytes.replace(frame + 5, 4, QByteArray::fromHex("EA60EA60")); // 60,000 x 60,000
    for (const qsizetype length : { 0, 2, 4, 6 }) {
        write(path(u"large.jpg"_s), QByteArray(bytes).insert(frame, prefix.first(length)));
        QVERIFY(pictureSize(path(u"large.jpg"_s)).isEmpty());
        QVERIFY(loadPicture(path(u"large.jpg"_s), CopyBox).isNull());
    }
}

void TestPictureLoader::fileLargerThanAnyPhotographIsRefused_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("megabytes");
    QTest::addColumn<bool>("readable");
    for (const QString &name : { u"a.jpg"_s, u"a.png"_s }) {
        QTest::addRow("%s as it is", qPrintable(name)) << name << 0 << true;
        QTest::addRow("%s with much behind it", qPrintable(name)) << name << 100 << true;
        QTest::addRow("%s with too much behind it", qPrintable(name)) << name << 513 << false;
        QTest::addRow("%s larger than any memory", qPrintable(name)) << name << 40'000 << false;
    }
}

/// What is behind the picture takes no room on the disk.
void TestPictureLoader::fileLargerThanAnyPhotographIsRefused()
{
    QFETCH(const QString, name);
    QFETCH(const int, megabytes);
    QFETCH(const bool, readable);
    QVERIFY(testImage({ 60, 40 }).save(path(name)));
    QFile file(path(name));
    QVERIFY(file.resize(file.size() + megabytes * 1024LL * 1024));
    QCOMPARE(pictureSize(path(name)), readable ? QSize(60, 40) : QSize());
    QCOMPARE(loadPicture(path(name), CopyBox).isNull(), !readable);
}

void TestPictureLoader::onlyWhatIsDecodedInFullIsSlowToRead_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("slow");
    const auto large = [](QByteArray bytes) {
        const qsizetype frame = std::max(bytes.indexOf("\xFF\xC0"), bytes.indexOf("\xFF\xC2"));
        return bytes.replace(frame + 5, 4, QByteArray::fromHex("17701F40")); // 8000 x 6000 in the header
    };
    QTest::newRow("JPEG") << encodedJpeg({ 60, 40 }, false) << false;
    QTest::newRow("large JPEG") << large(encodedJpeg({ 60, 40 }, false)) << false;
    QTest::newRow("progressive JPEG") << encodedJpeg({ 60, 40 }, true) << false;
    QTest::newRow("large progressive JPEG") << large(encodedJpeg({ 60, 40 }, true)) << true;
    QTest::newRow("no picture") << QByteArray("Das ist kein Bild.") << false;
    for (const auto &[size, slow] : { std::pair(QSize(6000, 5000), false), std::pair(QSize(6001, 5000), true) }) {
        QImage image(size, QImage::Format_Mono);
        image.fill(0);
        QByteArray bytes;
        QBuffer buffer(&bytes);
        image.save(&buffer, "PNG");
        QTest::addRow("PNG of %d pixels", size.width() * size.height()) << bytes << slow;
    }
}

void TestPictureLoader::onlyWhatIsDecodedInFullIsSlowToRead()
{
    QFETCH(const QByteArray, bytes);
    write(path(u"a"_s), bytes);
    QTEST(isSlowToRead(path(u"a"_s)), "slow");
}

void TestPictureLoader::reducedPictureLooksLikeASmoothlyScaledOne_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QSize>("size");
    QTest::newRow("photograph") << u"a.jpg"_s << QSize(3000, 2000);
    QTest::newRow("uneven size") << u"a.jpg"_s << QSize(1777, 1003);
    QTest::newRow("many times too large") << u"a.jpg"_s << QSize(6016, 4016);
    QTest::newRow("an eighth exactly") << u"a.jpg"_s << QSize(6000, 4000);
    QTest::newRow("no part of it is whole") << u"a.jpg"_s << QSize(4331, 2887);
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

void TestPictureLoader::turnedPictureOfUnevenSizeLosesNoEdge_data()
{
    QTest::addColumn<int>("orientation");
    for (const int orientation : { 1, 2, 3, 4, 5, 6, 7, 8 }) {
        QTest::addRow("orientation %d", orientation) << orientation;
    }
}

void TestPictureLoader::turnedPictureOfUnevenSizeLosesNoEdge()
{
    QFETCH(const int, orientation);
    constexpr QSize Uneven(3201, 2135); // decoded at a quarter, which leaves a remainder both ways
    constexpr QSize Box(300, 200);
    writeTestJpeg(path(u"uneven.jpg"_s), Uneven, orientation);
    writeTestJpeg(path(u"small.jpg"_s), Box, orientation);
    const QImage image = loadPicture(path(u"uneven.jpg"_s), Box);
    QCOMPARE(image.size(), fittedInto(orientation > 4 ? Uneven.transposed() : Uneven, Box));
    const QImage plain = loadPicture(path(u"small.jpg"_s), Box);
    const QImage resized = plain.scaled(image.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const double difference = meanDifference(image, resized);
    QVERIFY2(difference < 1.5, qPrintable(u"mean difference %1 of 255 levels"_s.arg(difference)));
}

void TestPictureLoader::quickPictureHasTheWantedSize()
{
    const QImage original = detailedImage({ 1503, 1001 });
    QVERIFY(original.save(path(u"a.jpg"_s), nullptr, 95));
    const QSize wanted(322, 215);
    const QImage quick = loadPicture(
        path(u"a.jpg"_s), [&wanted](const QSize &) { return wanted; }, Reduction::Quick);
    QCOMPARE(quick.size(), wanted);
    const QImage smooth = original.scaled(wanted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const double difference = meanDifference(quick, smooth);
    QVERIFY2(difference < 8, qPrintable(u"mean difference %1 of 255 levels"_s.arg(difference)));
}

void TestPictureLoader::averageCountsPixelsByTheirShare()
{
    QImage image(3, 1, QImage::Format_RGB32);
    image.setPixel(0, 0, qRgb(0, 0, 255));
    image.setPixel(1, 0, qRgb(90, 90, 90));
    image.setPixel(2, 0, qRgb(255, 0, 0));
    const QImage halves = areaAverage(image, QSizeF(3, 1), { 2, 1 });
    QCOMPARE(halves.pixel(0, 0), qRgb(30, 30, 200));
    QCOMPARE(halves.pixel(1, 0), qRgb(200, 30, 30));
    const QImage withoutTheEnd = areaAverage(image, QSizeF(2.25, 1), { 1, 1 });
    QCOMPARE(withoutTheEnd.pixel(0, 0), qRgb(68, 40, 153)); // (90 + 255 / 4) / 2.25 and so on
    const QImage upright = areaAverage(image.transformed(QTransform().rotate(90)), QSizeF(1, 3), { 1, 2 });
    QCOMPARE(upright.pixel(0, 1), qRgb(200, 30, 30));
}

void TestPictureLoader::hardEdgesComeOutAsTheAverageOfTheWholePicture_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("an eighth exactly") << QSize(6000, 4000);
    QTest::newRow("one pixel more than that") << QSize(6001, 4001);
    QTest::newRow("a little more than a quarter") << QSize(3008, 2000);
    QTest::newRow("a quarter exactly") << QSize(3000, 2000);
    QTest::newRow("less than a quarter") << QSize(2700, 1800);
    QTest::newRow("nearly the copy's size") << QSize(801, 533);
    QTest::newRow("upright") << QSize(1999, 3001);
}

/// 45 decibels are what an eye does not see even when both pictures lie on top of each other.
void TestPictureLoader::hardEdgesComeOutAsTheAverageOfTheWholePicture()
{
    QFETCH(const QSize, size);
    QVERIFY(hardEdges(size).save(path(u"a.jpg"_s), nullptr, 95));
    const QImage source(path(u"a.jpg"_s)); // as the decoder sees it: only the making smaller counts
    const QImage reduced = loadPicture(path(u"a.jpg"_s), CopyBox);
    double squares = 0;
    for (int y = 0; y < reduced.height(); ++y) {
        for (int x = 0; x < reduced.width(); ++x) {
            const double difference = qGreen(reduced.pixel(x, y)) - averageGreen(source, reduced.size(), x, y);
            squares += difference * difference;
        }
    }
    const double mean = squares / (double(reduced.width()) * reduced.height());
    const double decibels = 10 * std::log10(255 * 255 / mean);
    QVERIFY2(decibels >= 45, qPrintable(u"%1 dB"_s.arg(decibels)));
}

BAHNITO_TEST_MAIN(TestPictureLoader)
#include "tst_pictureloader.moc"
