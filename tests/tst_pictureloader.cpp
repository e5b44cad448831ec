#include "store/pictureloader.h"
#include "tests/support/testmain.h"
#include "tests/support/testpictures.h"

#include <QApplication>
#include <QFile>
#include <QImageReader>
#include <QPainter>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <memory>

#include <sys/stat.h>

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
    void whatIsNoPictureIsNull_data();
    void whatIsNoPictureIsNull();
    void pipeIsNotOpened();
    void cutPhotographIsNull_data();
    void cutPhotographIsNull();
    void cutPngIsNull();
    void photographWithSomethingBehindItIsRead();
    void hugeHeaderIsRefused();
    void largePhotographIsReadBeyondQtsLimit();
    void reducedPictureLooksLikeASmoothlyScaledOne_data();
    void reducedPictureLooksLikeASmoothlyScaledOne();

private:
    [[nodiscard]] QString path(const QString &name) const { return m_folder->filePath(name); }
    [[nodiscard]] static QByteArray read(const QString &path);
    static void write(const QString &path, const QByteArray &bytes);

    std::unique_ptr<QTemporaryDir> m_folder;
};

namespace {

constexpr QSize CopyBox(750, 500);

/// A picture with soft slopes, thin lines and text, so that bad scaling shows.
QImage detailedImage(const QSize &size)
{
    QImage image(size, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient sky(0, 0, size.width(), size.height());
    sky.setColorAt(0, QColor(110, 160, 220));
    sky.setColorAt(1, QColor(200, 120, 60));
    painter.fillRect(image.rect(), sky);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::black, size.width() / 600.0));
    for (int x = 0; x < size.width(); x += size.width() / 50) {
        painter.drawLine(x, 0, size.width() - x, size.height());
    }
    return image;
}

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

QByteArray TestPictureLoader::read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void TestPictureLoader::write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

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

void TestPictureLoader::whatIsNoPictureIsNull_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("text") << QByteArray("Das ist kein Bild.\n");
    QTest::newRow("one byte") << QByteArray("\xFF");
    QTest::newRow("JPEG start only") << QByteArray("\xFF\xD8\xFF");
    QTest::newRow("PNG start only") << QByteArray("\x89PNG\r\n\x1A\n");
    QTest::newRow("GIF") << QByteArray("GIF89a\1\0\1\0\x80\0\0\0\0\0\xff\xff\xff,\0\0\0\0\1\0\1\0\0\2\2D\1\0;", 35);
    QTest::newRow("drawing") << QByteArray("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"9\" height=\"9\"/>");
    QTest::newRow("junk behind a JPEG start") << QByteArray("\xFF\xD8\xFF") + QByteArray(5000, '\xFF');
}

void TestPictureLoader::whatIsNoPictureIsNull()
{
    QFETCH(const QByteArray, bytes);
    write(path(u"a.jpg"_s), bytes);
    QVERIFY(loadPicture(path(u"a.jpg"_s), CopyBox).isNull());
    QVERIFY(!pictureSize(path(u"a.jpg"_s)).isValid());
}

void TestPictureLoader::pipeIsNotOpened()
{
    QCOMPARE(::mkfifo(QFile::encodeName(path(u"pipe.jpg"_s)).constData(), 0600), 0);
    for (const QString &name : { path(u"pipe.jpg"_s), u"/dev/zero"_s, m_folder->path(), path(u"missing.jpg"_s), QString() }) {
        QVERIFY(loadPicture(name, CopyBox).isNull());
        QVERIFY(!pictureSize(name).isValid());
    }
}

void TestPictureLoader::cutPhotographIsNull_data()
{
    QTest::addColumn<double>("share");
    QTest::addColumn<bool>("hasThumbnail");
    QTest::newRow("half") << 0.5 << false;
    QTest::newRow("nearly whole") << 0.99 << false;
    QTest::newRow("in the header") << 0.01 << false;
    QTest::newRow("half, with a whole thumbnail in the header") << 0.5 << true;
}

void TestPictureLoader::cutPhotographIsNull()
{
    QFETCH(const double, share);
    QFETCH(const bool, hasThumbnail);
    QVERIFY(detailedImage({ 1200, 800 }).save(path(u"a.jpg"_s), "JPEG"));
    QByteArray bytes = read(path(u"a.jpg"_s));
    if (hasThumbnail) {
        writeTestJpeg(path(u"thumbnail.jpg"_s), { 60, 40 });
        const QByteArray thumbnail = read(path(u"thumbnail.jpg"_s));
        const auto length = int(thumbnail.size() + 2);
        bytes.insert(2, QByteArray("\xFF\xE5") + char(length >> 8) + char(length & 0xFF) + thumbnail);
        write(path(u"a.jpg"_s), bytes);
        QCOMPARE(loadPicture(path(u"a.jpg"_s), CopyBox).size(), QSize(750, 500));
    }
    bytes.truncate(qsizetype(double(bytes.size()) * share));
    write(path(u"a.jpg"_s), bytes);
    QVERIFY(loadPicture(path(u"a.jpg"_s), CopyBox).isNull());
}

void TestPictureLoader::cutPngIsNull()
{
    QVERIFY(detailedImage({ 1200, 800 }).save(path(u"a.png"_s), "PNG"));
    const QByteArray bytes = read(path(u"a.png"_s));
    write(path(u"a.png"_s), bytes.left(bytes.size() / 2));
    QVERIFY(loadPicture(path(u"a.png"_s), CopyBox).isNull());
}

void TestPictureLoader::photographWithSomethingBehindItIsRead()
{
    QVERIFY(detailedImage({ 1200, 800 }).save(path(u"a.jpg"_s), "JPEG"));
    const QByteArray bytes = read(path(u"a.jpg"_s)) + QByteArray("film\xFF\xDAof the camera");
    write(path(u"a.jpg"_s), bytes);
    QCOMPARE(loadPicture(path(u"a.jpg"_s), CopyBox).size(), QSize(750, 500));
}

void TestPictureLoader::hugeHeaderIsRefused()
{
    QImage(8, 8, QImage::Format_RGB32).save(path(u"a.png"_s), "PNG");
    QByteArray png = read(path(u"a.png"_s));
    png.replace(16, 8, QByteArray::fromHex("0000EA600000EA60")); // 60000 x 60000
    png.replace(29, 4, QByteArray::fromHex("0FB0E215")); // checksum of the changed header
    write(path(u"a.png"_s), png);
    QCOMPARE(pictureSize(path(u"a.png"_s)), QSize(60000, 60000));
    QVERIFY(loadPicture(path(u"a.png"_s), CopyBox).isNull());

    writeTestJpeg(path(u"a.jpg"_s), { 64, 64 });
    QByteArray jpeg = read(path(u"a.jpg"_s));
    const qsizetype frame = jpeg.indexOf("\xFF\xC0");
    jpeg.replace(frame + 5, 4, QByteArray::fromHex("EA60EA60"));
    write(path(u"a.jpg"_s), jpeg);
    QCOMPARE(pictureSize(path(u"a.jpg"_s)), QSize(60000, 60000));
    const QImage image = loadPicture(path(u"a.jpg"_s), CopyBox);
    QVERIFY(image.isNull() || image.size() == QSize(500, 500)); // never 60000 x 60000 pixels in memory
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
