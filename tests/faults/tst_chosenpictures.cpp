#include "app/startup.h"
#include "store/pictureloader.h"
#include "tests/faults/dialoganswerer.h"
#include "tests/faults/faultfolder.h"
#include "tests/faults/forkedrun.h"
#include "tests/faults/markedfiles.h"
#include "tests/faults/pictureforgery.h"
#include "tests/faults/pictureuse.h"
#include "tests/faults/samplecatalogue.h"
#include "tests/support/testmain.h"
#include "tests/support/testpictures.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTest>

#include <algorithm>
#include <memory>

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using namespace PictureUse;

namespace {

constexpr int LongestLook = 5000; // ms of computing
constexpr double MostMemory = 600; // MB

QString fileName(int number)
{
    return u"%1.jpg"_s.arg(number, 4, 10, QChar(u'0')); // what it holds is told by the content
}

/// The colours in the middle of the four quarters of a copy.
QString coloursOf(const QImage &copy)
{
    QStringList names;
    for (const int y : { 1, 3 }) {
        for (const int x : { 1, 3 }) {
            names.append(QColor(copy.pixel(copy.width() * x / 4, copy.height() * y / 4)).name());
        }
    }
    return names.join(u' ');
}

/// How far the most different of the colours are from each other, of 255.
int farthest(const QString &colours, const QString &others)
{
    const QStringList one = colours.split(u' ');
    const QStringList other = others.split(u' ');
    int distance = one.size() == other.size() ? 0 : 255;
    for (qsizetype i = 0; i < std::min(one.size(), other.size()); ++i) {
        const QColor a(one.at(i));
        const QColor b(other.at(i));
        distance = std::max(
            { distance, std::abs(a.red() - b.red()), std::abs(a.green() - b.green()), std::abs(a.blue() - b.blue()) });
    }
    return distance;
}

} // namespace

/// Broken, false and rare photographs as a user meets them: marked in the file dialog, chosen, and saved in the form.
class TestChosenPictures final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void mutatedPicturesAreStoredOrRefused();
    void mutatedPicturesCanBeMarked();
    void markedPictureIsShownOnlyWhereThatIsQuick();
    void whatIsNoFileIsRefused();
    void rareFormatsKeepTheirColours_data();
    void rareFormatsKeepTheirColours();

private:
    void enterCatalogue();
    void checkLimits(const Figures &figures);
    [[nodiscard]] QString path(const QString &name) const { return m_folder.path(name); }

    FaultFolder m_folder;
    QList<QByteArray> m_samples;
};

void TestChosenPictures::initTestCase()
{
    m_samples = makeSamples(path({}));
    QVERIFY(runForked([this] { makeSampleCatalogue(path(u"work"_s)); }).isGood());
}

/// Called in a process of its own, which the open catalogue ends with.
void TestChosenPictures::enterCatalogue()
{
    QDir::setCurrent(path(u"work"_s));
    if (!Startup::openCatalogue()) {
        qFatal("no catalogue");
    }
}

void TestChosenPictures::checkLimits(const Figures &figures)
{
    qInfo("%d readable, slowest %d ms, at most %.0f MB", figures.readable, figures.slowest, figures.memory);
    QVERIFY(figures.slowest < LongestLook);
    QVERIFY(isSanitized() || figures.memory < MostMemory);
}

void TestChosenPictures::mutatedPicturesAreStoredOrRefused()
{
    const int files = share(100, 2000);
    const QString photograph = path(u"photographs/hostile.jpg"_s);
    QVERIFY(QDir().mkpath(path(u"photographs"_s)));
    std::unique_ptr<DialogAnswerer> answers;
    const Figures figures = figuresOf(
        photograph, files,
        [&](int i) {
            if (!answers) { // the first one: the process has just begun
                enterCatalogue();
                answers = std::make_unique<DialogAnswerer>();
            }
            QRandomGenerator random(quint32(i) + 1000000);
            write(photograph, PictureForgery::mutated(m_samples, random));
        },
        [&](const QString &file) {
            const QByteArray before = folderDigest(QFileInfo(file).path());
            const bool isStored = useInForm(file, *answers);
            if (folderDigest(QFileInfo(file).path()) != before) {
                qFatal("the photograph was touched");
            }
            return isStored;
        });
    checkLimits(figures);
    QVERIFY(figures.readable > files / 20);
    QVERIFY(figures.readable < files); // some must have been refused
}

/// Each folder is small, because among the files are some of many megabytes.
void TestChosenPictures::mutatedPicturesCanBeMarked()
{
    constexpr int FilesOfFolder = 40;
    const int files = share(40, 1000);
    const QString folder = path(u"marked"_s);
    Figures all;
    for (int first = 0; first < files; first += FilesOfFolder) {
        QVERIFY(QDir().mkpath(folder));
        for (int i = 0; i < FilesOfFolder; ++i) {
            QRandomGenerator random(quint32(first + i) + 2000000);
            write(folder + u'/' + fileName(i), PictureForgery::mutated(m_samples, random));
        }
        const QByteArray before = folderDigest(folder);
        std::unique_ptr<MarkedFiles> marked;
        int number = 0;
        const Figures figures = figuresOf(
            folder, FilesOfFolder,
            [&](int i) {
                number = i;
                if (!marked) {
                    marked = std::make_unique<MarkedFiles>(folder, FilesOfFolder);
                }
            },
            [&](const QString &) {
                const MarkedFiles::Outcome outcome = marked->mark(fileName(number));
                const QString file = folder + u'/' + fileName(number);
                const bool isExpected = !isSlowToRead(file) && pictureSize(file).isValid();
                if (outcome == MarkedFiles::Nothing || (outcome == MarkedFiles::Picture && !isExpected)) {
                    qFatal("the preview of %s does not fit it", qUtf8Printable(file));
                }
                return outcome == MarkedFiles::Picture;
            });
        QCOMPARE(folderDigest(folder), before);
        QVERIFY(QDir(folder).removeRecursively());
        all.readable += figures.readable;
        all.slowest = std::max(all.slowest, figures.slowest);
        all.memory = std::max(all.memory, figures.memory);
    }
    checkLimits(all);
    QVERIFY(all.readable > files / 20);
    QVERIFY(all.readable < files);
}

void TestChosenPictures::markedPictureIsShownOnlyWhereThatIsQuick()
{
    const QString folder = path(u"Fotos"_s);
    QVERIFY(QDir().mkpath(folder));
    const ForkedRun::End end = runForked([this, &folder] {
        QImage image(7000, 5000, QImage::Format_Grayscale8);
        image.fill(Qt::gray);
        write(folder + u"/a.png"_s, PictureForgery::encoded(image, "PNG"));
        write(folder + u"/b.png"_s, m_samples.at(PictureForgery::Png));
        write(folder + u"/c.jpg"_s, PictureForgery::encoded(image, "JPEG"));
        write(folder + u"/d.jpg"_s, "kein Bild");
        MarkedFiles marked(folder, 4);
        for (const QString &name : { u"a.png"_s, u"b.png"_s, u"c.jpg"_s, u"d.jpg"_s }) {
            ForkedRun::report(u"%1 %2"_s.arg(name, QString::number(marked.mark(name))));
        }
    });
    QVERIFY2(end.isGood(), qPrintable(end.description()));
    QCOMPARE(end.lines, QStringList({ u"a.png 1"_s, u"b.png 2"_s, u"c.jpg 2"_s, u"d.jpg 1"_s }));
    QCOMPARE(MarkedFiles::Picture, 2);
}

/// Chosen in the dialog by their names, as they can be typed. A folder is entered and not chosen.
void TestChosenPictures::whatIsNoFileIsRefused()
{
    QVERIFY(QDir().mkpath(path(u"seltsam/ordner.jpg"_s)));
    QCOMPARE(mkfifo(qPrintable(path(u"seltsam/pipe.jpg"_s)), 0600), 0);
    write(path(u"seltsam/leer.jpg"_s), {});
    QVERIFY(QFile::link(u"/dev/zero"_s, path(u"seltsam/zero.jpg"_s)));
    const QHash<QString, QString> expected { { path(u"seltsam/ordner.jpg"_s), QString() },
        { path(u"seltsam/pipe.jpg"_s), Unreadable }, { path(u"seltsam/leer.jpg"_s), Unreadable },
        { path(u"seltsam/zero.jpg"_s), Unreadable }, { u"/dev/zero"_s, Unreadable }, { u"/dev/tty"_s, Unreadable } };
    for (auto it = expected.cbegin(); it != expected.cend(); ++it) {
        const QString before = catalogueDump(path(u"work"_s));
        const Figures figures = figuresOf(
            it.key(), 1, [this](int) { enterCatalogue(); },
            [&it](const QString &name) {
                DialogAnswerer answers;
                const FormResult result = chooseInForm(name, answers);
                if (result.boxes != it.value()) {
                    qFatal("unexpected boxes: \"%s\"", qUtf8Printable(result.boxes));
                }
                return result.isSaved;
            });
        checkLimits(figures);
        QCOMPARE(figures.readable, 0);
        QCOMPARE(catalogueDump(path(u"work"_s)), before);
    }
}

void TestChosenPictures::rareFormatsKeepTheirColours_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<QString>("colours");
    const QString quarters = u"#ff0000 #00ff00 #0000ff #ffff00"_s;
    QTest::newRow("16 bits a colour") << int(QImage::Format_RGBX64) << quarters;
    QTest::newRow("16 bits of alpha, too") << int(QImage::Format_RGBA64) << quarters;
    QTest::newRow("palette") << int(QImage::Format_Indexed8) << quarters;
    QTest::newRow("CMYK") << -1 << u"#bc004d #bc004d #3500ce #3500ce"_s;
}

/// In the copy, as it was stored; a JPEG file changes colours a little.
void TestChosenPictures::rareFormatsKeepTheirColours()
{
    QFETCH(const int, format);
    QFETCH(const QString, colours);
    const ForkedRun::End end = runForked([&] {
        const auto imageFormat = QImage::Format(std::max(format, int(QImage::Format_Invalid)));
        const QByteArray bytes = format < 0
            ? m_samples.at(PictureForgery::Cmyk)
            : PictureForgery::encoded(testImage({ 320, 200 }).convertToFormat(imageFormat), "PNG");
        write(path(u"farben.png"_s), bytes);
        enterCatalogue();
        DialogAnswerer answers;
        ForkedRun::report(coloursOf(chooseInForm(path(u"farben.png"_s), answers).copy));
    });
    QVERIFY2(end.isGood(), qPrintable(end.description()));
    QVERIFY2(farthest(end.lines.value(0), colours) < 24, qPrintable(end.lines.value(0)));
}

BAHNITO_TEST_MAIN(TestChosenPictures)
#include "tst_chosenpictures.moc"
