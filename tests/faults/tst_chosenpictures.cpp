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
#include <functional>
#include <memory>
#include <tuple>

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

using PictureMaker = std::function<void(const QString &path)>;

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
    [[nodiscard]] QHash<QString, QString> makeStrangeFiles() const;
    void addTurnedRows();
    void addHugeRows();
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
    qInfo("%s", qPrintable(figures.text()));
    QVERIFY(figures.slowest < LongestLook);
    QVERIFY(isSanitized() || figures.memory < MostMemory);
}

void TestChosenPictures::mutatedPicturesAreStoredOrRefused()
{
    const int files = share(150, 20000);
    const quint32 seed = testSeed(1000000);
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
            QRandomGenerator random(quint32(i) + seed);
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
    const quint32 seed = testSeed(2000000);
    const QString folder = path(u"marked"_s);
    Figures all;
    for (int first = 0; first < files; first += FilesOfFolder) {
        QVERIFY(QDir().mkpath(folder));
        for (int i = 0; i < FilesOfFolder; ++i) {
            QRandomGenerator random(quint32(first + i) + seed);
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
        all.add(figures);
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

/// Files that are no pictures, or are larger than any is, with the boxes that they bring up.
QHash<QString, QString> TestChosenPictures::makeStrangeFiles() const
{
    using namespace PictureForgery;
    const auto strange = [this](const QString &name) { return path(u"seltsam/"_s + name); };
    QHash<QString, QString> boxes { { u"/dev/zero"_s, Unreadable }, { u"/dev/tty"_s, Unreadable } };
    if (!QDir().mkpath(strange(u"ordner.jpg"_s)) || mkfifo(qPrintable(strange(u"pipe.jpg"_s)), 0600) != 0
        || !QFile::link(u"/dev/zero"_s, strange(u"zero.jpg"_s))) {
        qFatal("no strange files");
    }
    write(strange(u"leer.jpg"_s), {});
    boxes.insert(strange(u"ordner.jpg"_s), QString()); // is entered and not chosen
    for (const QString &name : { u"pipe.jpg"_s, u"leer.jpg"_s, u"zero.jpg"_s }) {
        boxes.insert(strange(name), Unreadable);
    }
    for (const Sample sample : { Progressive, Png, DeepPng, PalettePng }) {
        const QString huge = strange(u"riesig%1.jpg"_s.arg(sample));
        write(huge, withSize(m_samples.at(sample), 60000, 60000));
        boxes.insert(huge, Unreadable);
    }
    return boxes;
}

/// Chosen in the dialog by their names, as they can be typed.
void TestChosenPictures::whatIsNoFileIsRefused()
{
    const QHash<QString, QString> expected = makeStrangeFiles();
    const QString before = catalogueDump(path(u"work"_s));
    Figures all;
    for (auto it = expected.cbegin(); it != expected.cend(); ++it) {
        all.add(figuresOf(
            it.key(), 1, [this](int) { enterCatalogue(); },
            [&it](const QString &name) {
                DialogAnswerer answers;
                const FormResult result = chooseInForm(name, answers);
                if (result.boxes != it.value()) {
                    qFatal("unexpected boxes: \"%s\"", qUtf8Printable(result.boxes));
                }
                return result.isSaved;
            }));
        QCOMPARE(catalogueDump(path(u"work"_s)), before);
    }
    checkLimits(all);
    QCOMPARE(all.readable, 0);
}

void TestChosenPictures::rareFormatsKeepTheirColours_data()
{
    QTest::addColumn<PictureMaker>("make");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QString>("colours");
    const QString quarters = u"#ff0000 #00ff00 #0000ff #ffff00"_s;
    const auto png = [&quarters](const char *name, QImage::Format format) {
        QTest::newRow(name) << PictureMaker([format](const QString &path) {
            write(path, PictureForgery::encoded(testImage({ 320, 200 }).convertToFormat(format), "PNG"));
        }) << QSize(320, 200)
                            << quarters;
    };
    png("16 bits a colour", QImage::Format_RGBX64);
    png("16 bits of alpha, too", QImage::Format_RGBA64);
    png("palette", QImage::Format_Indexed8);
    QTest::newRow("CMYK") << PictureMaker([this](const QString &path) {
        write(path, m_samples.at(PictureForgery::Cmyk));
    }) << QSize(16, 12) << u"#bc004d #bc004d #3500ce #3500ce"_s;
    addTurnedRows();
    addHugeRows();
}

/// The quarters of the picture from the left to the right, as they are to be seen.
void TestChosenPictures::addTurnedRows()
{
    const QStringList seen { u"#ff0000 #00ff00 #0000ff #ffff00"_s, u"#00ff00 #ff0000 #ffff00 #0000ff"_s,
        u"#ffff00 #0000ff #00ff00 #ff0000"_s, u"#0000ff #ffff00 #ff0000 #00ff00"_s,
        u"#ff0000 #0000ff #00ff00 #ffff00"_s, u"#0000ff #ff0000 #ffff00 #00ff00"_s,
        u"#ffff00 #00ff00 #0000ff #ff0000"_s, u"#00ff00 #ffff00 #ff0000 #0000ff"_s };
    for (int orientation = 1; orientation <= seen.size(); ++orientation) {
        QTest::addRow("orientation %d", orientation) << PictureMaker([orientation](const QString &path) {
            writeTestJpeg(path, { 900, 600 }, orientation);
        }) << (orientation > 4 ? QSize(333, 500) : QSize(750, 500))
                                                     << seen.at(orientation - 1);
    }
}

/// 108 megapixels, and a file that has hardly anything of the picture which its header promises.
void TestChosenPictures::addHugeRows()
{
    for (const auto &[name, format, isProgressive] : { std::tuple("huge baseline JPEG", "JPEG", false),
             std::tuple("huge progressive JPEG", "JPEG", true), std::tuple("huge PNG", "PNG", false) }) {
        QTest::newRow(name) << PictureMaker([format = format, isProgressive = isProgressive](const QString &path) {
            QImage image(12000, 9000, QImage::Format_RGB32);
            image.fill(qRgb(90, 120, 60));
            write(path, PictureForgery::encoded(image, format, isProgressive));
        }) << QSize(666, 500)
                            << u"#5a783c #5a783c #5a783c #5a783c"_s;
    }
    QTest::newRow("huge header") << PictureMaker([this](const QString &path) {
        write(path, PictureForgery::withSize(m_samples.at(PictureForgery::Baseline), 60000, 60000));
    }) << QSize(500, 500) << u"#808080 #808080 #808080 #808080"_s;
}

/// In the copy, as it was stored; a JPEG file changes colours a little. The file is made in a process of its own, whose
/// memory does not count.
void TestChosenPictures::rareFormatsKeepTheirColours()
{
    QFETCH(const PictureMaker, make);
    QFETCH(const QSize, size);
    QFETCH(const QString, colours);
    const QString file = path(u"selten"_s);
    QVERIFY(runForked([&] { make(file); }).isGood());
    const Figures figures = figuresOf(
        file, 1, [this](int) { enterCatalogue(); },
        [&](const QString &name) {
            DialogAnswerer answers;
            const FormResult result = chooseInForm(name, answers);
            if (!result.isSaved || result.copy.size() != size || farthest(coloursOf(result.copy), colours) >= 24) {
                qFatal("%d x %d pixels: %s, boxes \"%s\"", result.copy.width(), result.copy.height(),
                    qUtf8Printable(coloursOf(result.copy)), qUtf8Printable(result.boxes));
            }
            return true;
        });
    QVERIFY(QFile::remove(file));
    checkLimits(figures);
}

BAHNITO_TEST_MAIN(TestChosenPictures)
#include "tst_chosenpictures.moc"
