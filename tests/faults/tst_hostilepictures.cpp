#include "store/pictureloader.h"
#include "tests/faults/faultfolder.h"
#include "tests/faults/forkedrun.h"
#include "tests/faults/pictureforgery.h"
#include "tests/faults/pictureuse.h"
#include "tests/support/testmain.h"
#include "tests/support/testpictures.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTest>

#include <algorithm>
#include <functional>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace PictureUse;

namespace {

constexpr int LongestLook = 5000; // ms of computing
constexpr double MostMemory = 600; // MB

/// Of one file. What comes near the limit is measured once more, for a core that others share computes more slowly.
Figures figuresOfOne(const QString &path, const std::function<void(int)> &make)
{
    Figures figures = figuresOf(path, 1, make);
    if (figures.slowest > LongestLook / 2) {
        figures.slowest = std::min(figures.slowest, figuresOf(path, 1, make).slowest);
    }
    return figures;
}

} // namespace

/// Photographs that are broken or made to do harm, as they are read, made smaller and written again.
class TestHostilePictures final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_samples = makeSamples(path({})); }
    void mutatedPicturesAreSurvived();
    void hugeHeadersCostNeitherTimeNorMemory_data();
    void hugeHeadersCostNeitherTimeNorMemory();
    void overloadedFilesCostNeitherTimeNorMemory_data();
    void overloadedFilesCostNeitherTimeNorMemory();
    void fullColoursAreKeptOnlyInHalfAGigabyte();
    void hugeSparseFileIsNoPicture_data();
    void hugeSparseFileIsNoPicture();
    void whatIsNoFileIsNoPicture();
    void rarePicturesAreRead();
    void hugePhotographIsRead_data();
    void hugePhotographIsRead();

private:
    void checkLimits(const Figures &figures);
    [[nodiscard]] QString path(const QString &name) const { return m_folder.path(name); }

    FaultFolder m_folder;
    QList<QByteArray> m_samples;
};

void TestHostilePictures::checkLimits(const Figures &figures)
{
    qInfo("%s", qPrintable(figures.text()));
    QVERIFY(figures.slowest < LongestLook);
    QVERIFY(isSanitized() || figures.memory < MostMemory);
}

void TestHostilePictures::mutatedPicturesAreSurvived()
{
    constexpr int Batch = 250;
    const int files = share(2000, 20000);
    const quint32 seed = testSeed(1);
    Figures all;
    for (int first = 0; first < files; first += Batch) {
        all.add(figuresOf(path(u"hostile"_s), Batch, [this, first, seed](int i) {
            QRandomGenerator random(quint32(first + i) + seed);
            write(path(u"hostile"_s), PictureForgery::mutated(m_samples, random));
        }));
    }
    checkLimits(all);
    QCOMPARE(all.tried, files);
    QVERIFY(all.readable > files / 20); // else the damage is so great that nothing was tried
}

void TestHostilePictures::hugeHeadersCostNeitherTimeNorMemory_data()
{
    QTest::addColumn<int>("sample");
    QTest::addColumn<int>("length");
    for (const int length : { 12000, 30000, 60000 }) {
        QTest::addRow("JPEG of %d pixels", length) << int(PictureForgery::Baseline) << length;
        QTest::addRow("progressive JPEG of %d pixels", length) << int(PictureForgery::Progressive) << length;
        QTest::addRow("PNG of %d pixels", length) << int(PictureForgery::Png) << length;
        QTest::addRow("CMYK of %d pixels", length) << int(PictureForgery::Cmyk) << length;
    }
}

void TestHostilePictures::hugeHeadersCostNeitherTimeNorMemory()
{
    QFETCH(const int, sample);
    QFETCH(const int, length);
    checkLimits(figuresOfOne(path(u"huge"_s),
        [&](int) { write(path(u"huge"_s), PictureForgery::withSize(m_samples.at(sample), length, length)); }));
}

void TestHostilePictures::overloadedFilesCostNeitherTimeNorMemory_data()
{
    using namespace PictureForgery;
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("readable");
    const QByteArray progressive = m_samples.at(Progressive);
    const QByteArray large = withSize(progressive, 8000, 6000);
    const QByteArray baseline = m_samples.at(Baseline);
    QTest::newRow("a few scans more") << withScans(progressive, 20) << true;
    QTest::newRow("some hundred scans of a small picture") << withScans(progressive, 500) << true;
    QTest::newRow("some hundred scans of a large picture") << withScans(large, 500) << false;
    QTest::newRow("thousands of scans of a small picture") << withScans(progressive, 5000) << false;
    QTest::newRow("rubbish in the header") << withRubbish(baseline, 60000) << true;
    QTest::newRow("much rubbish in the header") << withRubbish(baseline, 4'000'000) << false;
    QTest::newRow("zeros behind the end") << baseline + QByteArray(4'000'000, '\0') << true;
    QTest::newRow("fill bytes behind the end") << baseline + QByteArray(4'000'000, '\xFF') << true;
    QTest::newRow("empty segments behind the end")
        << baseline + QByteArray("\xFF\xE1\0\2", 4).repeated(1'000'000) << true;
    QTest::newRow("empty segments in place of the end")
        << baseline.chopped(2) + QByteArray("\xFF\xE1\0\2", 4).repeated(10'000'000) + "\xFF\xD9" << false;
    QTest::newRow("empty segments before the picture")
        << baseline.first(2) + QByteArray("\xFF\xE1\0\2", 4).repeated(1'000'000) + baseline.sliced(2) << false;
    QTest::newRow("gigapixels of black") << black(60000) << true;
}

void TestHostilePictures::overloadedFilesCostNeitherTimeNorMemory()
{
    QFETCH(const QByteArray, bytes);
    const Figures figures = figuresOfOne(path(u"overloaded"_s), [&](int) { write(path(u"overloaded"_s), bytes); });
    checkLimits(figures);
    QTEST(figures.readable == 1, "readable");
}

/// A progressive picture of 89 megapixels takes all of it, one of 108 would take more.
void TestHostilePictures::fullColoursAreKeptOnlyInHalfAGigabyte()
{
    const QByteArray fullColours = PictureForgery::withFullColours(m_samples.at(PictureForgery::Progressive));
    for (const auto &[size, readable] : { std::pair(QSize(10900, 8200), 1), std::pair(QSize(12000, 9000), 0) }) {
        write(path(u"colours"_s), PictureForgery::withSize(fullColours, size.width(), size.height()));
        const Figures figures = figuresOfOne(path(u"colours"_s), [](int) {});
        checkLimits(figures);
        QCOMPARE(figures.readable, readable);
    }
}

void TestHostilePictures::hugeSparseFileIsNoPicture_data()
{
    QTest::addColumn<QByteArray>("start");
    QTest::addColumn<qint64>("megabytes");
    const QByteArray baseline = m_samples.at(PictureForgery::Baseline);
    for (const qint64 megabytes : { 300, 40000 }) {
        QTest::addRow("%lld MB behind a start marker", megabytes) << QByteArray("\xFF\xD8\xFF") << megabytes;
        QTest::addRow("%lld MB in place of the end", megabytes) << baseline.chopped(2) << megabytes;
        QTest::addRow("%lld MB of PNG", megabytes) << m_samples.at(PictureForgery::Png).first(60) << megabytes;
    }
}

/// Nothing but zeros from some place on, which take no room on the disk.
void TestHostilePictures::hugeSparseFileIsNoPicture()
{
    QFETCH(const QByteArray, start);
    QFETCH(const qint64, megabytes);
    const QString name = path(u"sparse"_s);
    write(name, start);
    QVERIFY(QFile::resize(name, megabytes * 1024 * 1024));
    const Figures figures = figuresOf(name, 1, [](int) {});
    QVERIFY(QFile::remove(name));
    checkLimits(figures);
    QCOMPARE(figures.readable, 0);
}

void TestHostilePictures::whatIsNoFileIsNoPicture()
{
    const QString pipe = path(u"pipe.jpg"_s);
    QCOMPARE(mkfifo(qPrintable(pipe), 0600), 0);
    write(path(u"leer.jpg"_s), {});
    QVERIFY(QDir().mkpath(path(u"ordner.jpg"_s)));
    QVERIFY(QFile::link(u"/dev/zero"_s, path(u"zero.jpg"_s)));
    for (const QString &name : { pipe, path(u"leer.jpg"_s), path(u"ordner.jpg"_s), path(u"zero.jpg"_s), u"/dev/zero"_s,
             u"/dev/tty"_s, QString(), u"/"_s }) {
        const Figures figures = figuresOf(name, 1, [](int) {});
        checkLimits(figures);
        QCOMPARE(figures.readable, 0);
    }
}

void TestHostilePictures::rarePicturesAreRead()
{
    using namespace PictureForgery;
    for (const int sample : { Progressive, DeepPng, PalettePng, Cmyk }) {
        QCOMPARE(figuresOf(path(QString::number(sample)), 1, [](int) {}).readable, 1);
    }
    for (int orientation = 1; orientation <= 8; ++orientation) {
        writeTestJpeg(path(u"turned"_s), { 90, 60 }, orientation);
        QCOMPARE(figuresOf(path(u"turned"_s), 1, [](int) {}).readable, 1);
        QCOMPARE(pictureSize(path(u"turned"_s)), orientation > 4 ? QSize(60, 90) : QSize(90, 60));
    }
}

void TestHostilePictures::hugePhotographIsRead_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<bool>("progressive");
    QTest::newRow("baseline JPEG") << QByteArray("JPEG") << false;
    QTest::newRow("progressive JPEG") << QByteArray("JPEG") << true;
    QTest::newRow("PNG") << QByteArray("PNG") << false;
}

/// 108 megapixels, as the largest sensors of telephones have them.
void TestHostilePictures::hugePhotographIsRead()
{
    QFETCH(const QByteArray, format);
    QFETCH(const bool, progressive);
    const QString name = path(u"108"_s);
    QVERIFY(runForked([&] {
        QImage image(12000, 9000, QImage::Format_RGB32);
        image.fill(qRgb(90, 120, 60));
        write(name, PictureForgery::encoded(image, format.constData(), progressive));
    }).isGood());
    const Figures figures = figuresOf(name, 1, [](int) {});
    checkLimits(figures);
    QCOMPARE(figures.readable, 1);
}

BAHNITO_TEST_MAIN(TestHostilePictures)
#include "tst_hostilepictures.moc"
