#include "store/statement.h"
#include "tests/support/cataloguecheck.h"
#include "tests/support/testcatalogue.h"
#include "tests/support/testmain.h"
#include "tests/support/testpictures.h"

#include <QApplication>
#include <QBuffer>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QSqlDatabase>
#include <QTest>

#include <memory>
#include <utility>

using namespace Qt::StringLiterals;

class TestCatalogueCheck final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_catalogue.reset(); }

    void soundCatalogueHasNoFindings();
    void emptyCatalogueHasNoFindings();
    void damageInARowIsFound_data();
    void damageInARowIsFound();
    void damageInAFileIsFound_data();
    void damageInAFileIsFound();
    void groupPictureRowBelongsToNoEntry();
    void missingDatabaseIsFound();
    void brokenDatabaseIsFound();
    void nothingIsChanged();
    void toolTellsByItsExitCode();

private:
    [[nodiscard]] QStringList findings() const { return catalogueFindings(m_catalogue->path(u"."_s)); }
    static void write(const QString &path, const QByteArray &bytes);
    static QByteArray testJpeg();
    static int runTool(const QStringList &arguments, QString *output = nullptr);

    std::unique_ptr<TestCatalogue> m_catalogue;
};

void TestCatalogueCheck::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    const QString icon = u"./Data/Pictures/AuxFolder/1.jpg"_s;
    writeTestJpeg(icon, { 60, 40 });
    const int group = m_catalogue->addGroup(u"Gotthard"_s, icon);
    QVERIFY(executeWrite(u"INSERT INTO loc_picture (pictAuxPath, pictOrigPath, pictHeight, pictWidth, locpictureid) "
                         "VALUES ('%1', '', 40, 60, -1)"_s.arg(icon))
                .done);
    const int entry = m_catalogue->addEntry(u"11407"_s, m_catalogue->addModel(u"Ae 6/6"_s, group));
    m_catalogue->addPicture(entry); // row 2
}

void TestCatalogueCheck::write(const QString &path, const QByteArray &bytes)
{
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

QByteArray TestCatalogueCheck::testJpeg()
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    return detailedImage({ 600, 400 }).save(&buffer, "JPEG") ? bytes : QByteArray();
}

int TestCatalogueCheck::runTool(const QStringList &arguments, QString *output)
{
    QProcess process;
    process.start(QCoreApplication::applicationDirPath() + u"/check-catalogue"_s, arguments);
    if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit) {
        return -1;
    }
    if (output != nullptr) {
        *output = QString::fromUtf8(process.readAllStandardOutput() + process.readAllStandardError());
    }
    return process.exitCode();
}

void TestCatalogueCheck::soundCatalogueHasNoFindings()
{
    QCOMPARE(findings(), QStringList());
}

void TestCatalogueCheck::emptyCatalogueHasNoFindings()
{
    m_catalogue.reset();
    m_catalogue = std::make_unique<TestCatalogue>();
    QCOMPARE(findings(), QStringList());
}

void TestCatalogueCheck::damageInARowIsFound_data()
{
    QTest::addColumn<QString>("statement");
    QTest::addColumn<QString>("finding");
    const auto row = [](const char *name, const QString &statement, const QString &finding) {
        QTest::newRow(name) << statement << finding;
    };
    row("class gone", u"DELETE FROM loc_model"_s, u"loc_seen 1: die Zeile in loc_model fehlt"_s);
    row("group gone", u"DELETE FROM locomotive"_s, u"loc_model 1: die Zeile in locomotive fehlt"_s);
    row("entry gone", u"DELETE FROM loc_seen"_s, u"loc_picture 2: die Zeile in loc_seen fehlt"_s);
    row("picture without an entry", u"UPDATE loc_picture SET locpictureid = -1 WHERE id = 2"_s,
        u"loc_picture 2: die Zeile in loc_seen fehlt"_s);
    row("German date", u"UPDATE loc_seen SET locseendate = '17.05.2001'"_s,
        u"loc_seen 1: locseendate \"17.05.2001\" ist kein Datum"_s);
    row("date and time", u"UPDATE loc_seen SET startdate = '2001-05-17T00:00:00'"_s,
        u"loc_seen 1: startdate \"2001-05-17T00:00:00\" ist kein Datum"_s);
    row("impossible date", u"UPDATE loc_seen SET startdate = '2001-02-30'"_s,
        u"loc_seen 1: startdate \"2001-02-30\" ist kein Datum"_s);
    row("wrong size", u"UPDATE loc_picture SET pictWidth = 7 WHERE id = 2"_s,
        u"loc_picture 2: Größe in der Datenbank stimmt nicht mit \"./Data/Pictures/Folder001/copy1.jpg\" überein"_s);
    const QString secondRow = u"INSERT INTO loc_picture SELECT 3, %1, '', pictHeight, pictWidth, locpictureid FROM "
                              "loc_picture WHERE id = 2"_s;
    row("copy of two pictures", secondRow.arg(u"pictAuxPath"_s),
        u"loc_picture 3: \"./Data/Pictures/Folder001/copy1.jpg\" gehört auch zu loc_picture 2"_s);
    row("copy of two pictures, spelled differently",
        secondRow.arg(u"replace(pictAuxPath, '/Folder001/', '/./Folder001//')"_s),
        u"loc_picture 3: \"./Data/Pictures/./Folder001//copy1.jpg\" gehört auch zu loc_picture 2"_s);
    row("row without a path", u"INSERT INTO loc_picture (locpictureid) VALUES (1)"_s, u"loc_picture 3: \"\" fehlt"_s);
    row("table gone", u"DROP TABLE loc_picture"_s,
        u"Anweisung \"SELECT id, pictAuxPath, pictHeight, pictWidth FROM loc_picture\": no such table: loc_picture"_s);
}

void TestCatalogueCheck::damageInARowIsFound()
{
    QFETCH(const QString, statement);
    QFETCH(const QString, finding);
    QVERIFY(executeWrite(statement).done);
    const QString found = findings().join(u'\n');
    QVERIFY2(found.contains(finding), qPrintable(found));
}

void TestCatalogueCheck::damageInAFileIsFound_data()
{
    QTest::addColumn<QString>("path"); // where the row's copy lies; %1 is the working folder
    QTest::addColumn<QByteArray>("bytes"); // none: the file is missing
    QTest::addColumn<QString>("finding");
    const QByteArray text("x");
    const QByteArray whole = testJpeg();
    const QString cut = u"loc_picture 2: \"%1\" ist abgeschnitten"_s;
    const QString outside = u"loc_picture 2: \"%1\" liegt nicht im Bilder-Ordner"_s;
    QTest::newRow("missing") << u"./Data/Pictures/Folder001/2.jpg"_s << QByteArray()
                             << u"loc_picture 2: \"%1\" fehlt"_s;
    QTest::newRow("no picture") << u"./Data/Pictures/Folder001/2.jpg"_s << text
                                << u"loc_picture 2: \"%1\" ist kein lesbares Bild"_s;
    for (const auto &[name, size] : { std::pair("almost nothing but the header", whole.indexOf("\xFF\xDA") + 40),
             std::pair("half", whole.size() / 2), std::pair("last byte missing", whole.size() - 1) }) {
        QTest::newRow(name) << u"./Data/Pictures/Folder001/2.jpg"_s << whole.first(size) << cut;
    }
    QTest::newRow("outside") << u"./mine.jpg"_s << text << outside;
    QTest::newRow("by dots") << u"./Data/Pictures/Folder001/../../mine.jpg"_s << text << outside;
    QTest::newRow("in the root") << u"./Data/Pictures/mine.jpg"_s << text << outside;
    QTest::newRow("in a deeper folder") << u"./Data/Pictures/Folder001/deep/mine.jpg"_s << text << outside;
    QTest::newRow("not relative to the working folder") << u"Data/Pictures/Folder001/2.jpg"_s << text << outside;
}

void TestCatalogueCheck::damageInAFileIsFound()
{
    QFETCH(const QString, path);
    QFETCH(const QByteArray, bytes);
    QFETCH(const QString, finding);
    if (!bytes.isEmpty()) {
        write(path, bytes);
    }
    QVERIFY(executeWrite(u"UPDATE loc_picture SET pictAuxPath = '%1' WHERE id = 2"_s.arg(path)).done);
    QVERIFY2(findings().contains(finding.arg(path)), qPrintable(findings().join(u'\n')));
    QVERIFY(findings().contains(u"\"Data/Pictures/Folder001/copy1.jpg\" gehört zu keiner Zeile"_s));
}

void TestCatalogueCheck::groupPictureRowBelongsToNoEntry()
{
    QVERIFY(QFile::remove(u"Data/Pictures/AuxFolder/1.jpg"_s));
    QCOMPARE(findings(),
        QStringList({ u"loc_picture 1: \"./Data/Pictures/AuxFolder/1.jpg\" fehlt"_s,
            u"locomotive 1: \"./Data/Pictures/AuxFolder/1.jpg\" fehlt"_s }));
    QVERIFY(executeWrite(u"UPDATE locomotive SET pictPath = NULL"_s).done);
    QCOMPARE(findings().size(), 1);
}

void TestCatalogueCheck::missingDatabaseIsFound()
{
    const QTemporaryDir folder;
    QCOMPARE(catalogueFindings(folder.path()),
        QStringList(u"Keine Datenbank \"%1/Data/bahnakte.dat\""_s.arg(folder.path())));
    QVERIFY(QDir(folder.path()).isEmpty());
}

void TestCatalogueCheck::brokenDatabaseIsFound()
{
    QSqlDatabase::database().close();
    QFile file(u"Data/bahnakte.dat"_s);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.seek(4096) && file.write(QByteArray(4096, 'x')) == 4096);
    file.close();
    QVERIFY(!findings().isEmpty());
    write(u"Data/bahnakte.dat"_s, QByteArray(9000, 'x'));
    QVERIFY(findings().first().contains(u"file is not a database"_s));
}

void TestCatalogueCheck::nothingIsChanged()
{
    const auto snapshot = [] {
        QStringList names;
        QDirIterator files(
            u"."_s, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QFileInfo file(files.next());
            names.append(file.filePath() + file.lastModified().toString(Qt::ISODateWithMs));
        }
        names.sort();
        return names;
    };
    const QStringList before = snapshot();
    QVERIFY(findings().isEmpty());
    QCOMPARE(snapshot(), before);
    QCOMPARE(QSqlDatabase::connectionNames().size(), 1);
}

void TestCatalogueCheck::toolTellsByItsExitCode()
{
    QString output;
    QCOMPARE(runTool({ m_catalogue->path(u"."_s) }, &output), 0);
    QCOMPARE(output, QString());
    QVERIFY(executeWrite(u"DELETE FROM loc_model"_s).done);
    QCOMPARE(runTool({ m_catalogue->path(u"."_s) }, &output), 1);
    QCOMPARE(output, u"loc_seen 1: die Zeile in loc_model fehlt\n"_s);
    QCOMPARE(runTool({}, &output), 2);
    QVERIFY(output.startsWith(u"Aufruf: check-catalogue ORDNER"_s));
    QCOMPARE(runTool({ u"a"_s, u"b"_s }), 2);
    QCOMPARE(runTool({ u"--help"_s }), 2);
    QCOMPARE(runTool({ m_catalogue->path(u"Data"_s) }, &output), 2);
    QVERIFY(output.contains(u"ist kein Katalog"_s));
}

BAHNITO_TEST_MAIN(TestCatalogueCheck)
#include "tst_cataloguecheck.moc"
