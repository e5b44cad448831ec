#include "search/textcut.h"
#include "store/pictureloader.h"
#include "tests/support/cataloguecheck.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

/// Runs the real generator, as scripts and demonstrations do.
class TestSample final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void catalogueIsSound();
    void catalogueHoldsWhatWasAsked();
    void groupsHavePicturesOutsideTheNumberedFolders();
    void copiesAreFittedAndOriginalsLarger();
    void picturesShowTheLocomotiveOfTheirEntry();
    void originalsCarryTheDayOfTheSighting();
    void sameSeedGivesTheSameCatalogue();
    void otherSeedGivesAnotherCatalogue();
    void existingCatalogueIsRefused();
    void existingOriginalsAreRefused();
    void folderThatCannotBeMadeIsRefused();
    void wrongArgumentsShowTheUsage_data();
    void wrongArgumentsShowTheUsage();
    void catalogueWithoutEntriesIsSound();

private:
    struct Run
    {
        int exitCode = -1;
        QString errors;
    };

    [[nodiscard]] static Run run(const QStringList &arguments);
    [[nodiscard]] static QStringList rows(const QString &folder, const QString &statement);
    [[nodiscard]] static QStringList pictures(const QString &folder);

    QTemporaryDir m_folder;
    QString m_sample; // made once, read by most tests
};

TestSample::Run TestSample::run(const QStringList &arguments)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(u"DISPLAY"_s);
    environment.remove(u"WAYLAND_DISPLAY"_s);
    environment.remove(u"QT_QPA_PLATFORM"_s);
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(BAHNITO_SAMPLE), arguments);
    if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit) {
        return {};
    }
    return { process.exitCode(), QString::fromUtf8(process.readAllStandardError()) };
}

/// All rows, their columns joined by "|".
QStringList TestSample::rows(const QString &folder, const QString &statement)
{
    QStringList found;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"sample"_s);
        database.setDatabaseName(folder + u"/Data/bahnakte.dat"_s);
        QSqlQuery query(database.open() ? database : QSqlDatabase());
        query.exec(statement);
        while (query.next()) {
            QStringList columns;
            for (int i = 0; i < query.record().count(); ++i) {
                columns.append(query.value(i).toString());
            }
            found.append(columns.join(u'|'));
        }
    }
    QSqlDatabase::removeDatabase(u"sample"_s);
    return found;
}

/// Name and content of every picture file.
QStringList TestSample::pictures(const QString &folder)
{
    QStringList found;
    QDirIterator files(folder, { u"*.jpg"_s }, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        const bool isOpen = file.open(QIODevice::ReadOnly);
        const QByteArray hash
            = QCryptographicHash::hash(isOpen ? file.readAll() : QByteArray(), QCryptographicHash::Sha256);
        found.append(QDir(folder).relativeFilePath(file.fileName()) + u' ' + QString::fromLatin1(hash.toHex()));
    }
    found.sort();
    return found;
}

void TestSample::initTestCase()
{
    m_sample = m_folder.filePath(u"first"_s);
    const Run made = run({ m_sample, u"--entries"_s, u"30"_s, u"--seed"_s, u"7"_s });
    QVERIFY2(made.exitCode == 0, qPrintable(made.errors));
}

void TestSample::catalogueIsSound()
{
    QCOMPARE(catalogueFindings(m_sample), QStringList());
}

void TestSample::catalogueHoldsWhatWasAsked()
{
    QCOMPARE(rows(m_sample, u"SELECT COUNT(*) FROM loc_seen"_s), QStringList(u"30"_s));
    QCOMPARE(rows(m_sample, u"SELECT COUNT(*) FROM loc_model"_s), QStringList(u"20"_s));
    QCOMPARE(rows(m_sample, u"SELECT COUNT(*) FROM locomotive"_s), QStringList(u"6"_s));
    QCOMPARE(rows(m_sample, u"SELECT COUNT(DISTINCT locseenid) FROM loc_seen"_s), QStringList(u"20"_s));
    QCOMPARE(rows(m_sample, u"SELECT COUNT(*) FROM settings WHERE value = 0"_s), QStringList(u"4"_s));
    QVERIFY(rows(m_sample, u"SELECT MAX(LENGTH(kommentar)) FROM loc_seen"_s).first().toInt() > TextLimit::Comment - 12);
    QCOMPARE(rows(m_sample,
                 u"SELECT COUNT(*) FROM loc_seen WHERE LENGTH(kommentar) > 198 OR LENGTH(ort) > 38 OR "
                 "LENGTH(nummer) > 18 OR startdate <> '2024-03-02'"_s),
        QStringList(u"0"_s));
    const QStringList counts = rows(m_sample,
        u"SELECT COUNT(p.id) AS n FROM loc_seen AS s LEFT JOIN loc_picture AS p ON "
        "p.locpictureid = s.id GROUP BY s.id ORDER BY n"_s);
    QVERIFY(counts.last().toInt() <= 6 && counts.last().toInt() >= 4);
}

void TestSample::groupsHavePicturesOutsideTheNumberedFolders()
{
    QCOMPARE(rows(m_sample,
                 u"SELECT COUNT(*) FROM locomotive AS g JOIN loc_picture AS p ON p.pictAuxPath = g.pictPath "
                 "WHERE p.locpictureid = -1 AND g.pictPath LIKE './Data/Pictures/AuxFolder/%.jpg'"_s),
        QStringList(u"6"_s));
    QCOMPARE(rows(m_sample,
                 u"SELECT COUNT(*) FROM loc_picture WHERE locpictureid <> -1 AND pictAuxPath LIKE '%AuxFolder%'"_s),
        QStringList(u"0"_s));
}

void TestSample::copiesAreFittedAndOriginalsLarger()
{
    bool hasPortrait = false;
    for (const QString &row : rows(m_sample, u"SELECT pictAuxPath, pictOrigPath FROM loc_picture"_s)) {
        const QSize copy = pictureSize(m_sample + u'/' + row.section(u'|', 0, 0));
        const QSize original = pictureSize(row.section(u'|', 1));
        QVERIFY(original == QSize(1200, 800) || original == QSize(800, 1200));
        QCOMPARE(copy, fittedInto(original, { 750, 500 }));
        hasPortrait = hasPortrait || copy.height() > copy.width();
    }
    QVERIFY(hasPortrait);
}

void TestSample::picturesShowTheLocomotiveOfTheirEntry()
{
    QVERIFY(rows(m_sample, u"SELECT COUNT(*) FROM loc_picture WHERE locpictureid <> -1"_s).first().toInt() > 30);
    QCOMPARE(rows(m_sample,
                 u"SELECT pictOrigPath FROM loc_picture AS p JOIN loc_seen AS s ON s.id = p.locpictureid "
                 "WHERE pictOrigPath NOT LIKE '%/' || nummer || ' %'"_s),
        QStringList());
}

void TestSample::originalsCarryTheDayOfTheSighting()
{
    const QStringList seen = rows(m_sample,
        u"SELECT pictOrigPath, MIN(s.id), locseendate FROM loc_picture AS p JOIN loc_seen "
        "AS s ON s.id = p.locpictureid GROUP BY pictOrigPath"_s);
    QVERIFY(!seen.isEmpty());
    for (const QString &row : seen) {
        const QDate taken = QFileInfo(row.section(u'|', 0, 0)).lastModified().date();
        QCOMPARE(taken.toString(Qt::ISODate), row.section(u'|', 2));
    }
}

void TestSample::sameSeedGivesTheSameCatalogue()
{
    const QString second = m_folder.filePath(u"second"_s);
    QCOMPARE(run({ u"--seed"_s, u"7"_s, second, u"--entries"_s, u"30"_s }).exitCode, 0);
    QCOMPARE(pictures(second), pictures(m_sample));
    QVERIFY(pictures(second).size() > 60);
    for (const QString &statement :
        { u"SELECT * FROM loc_seen"_s, u"SELECT * FROM loc_model"_s, u"SELECT * FROM locomotive"_s,
            u"SELECT id, pictAuxPath, pictHeight, pictWidth, locpictureid FROM loc_picture"_s }) {
        QCOMPARE(rows(second, statement), rows(m_sample, statement));
        QVERIFY(!rows(second, statement).isEmpty());
    }
}

void TestSample::otherSeedGivesAnotherCatalogue()
{
    const QString other = m_folder.filePath(u"other"_s);
    QCOMPARE(run({ other, u"--entries"_s, u"3"_s, u"--seed"_s, u"8"_s }).exitCode, 0);
    QVERIFY(rows(other, u"SELECT nummer FROM loc_seen"_s) != rows(m_sample, u"SELECT nummer FROM loc_seen LIMIT 3"_s));
    QCOMPARE(catalogueFindings(other), QStringList());
}

void TestSample::existingCatalogueIsRefused()
{
    const QStringList before = pictures(m_sample);
    const Run again = run({ m_sample, u"--entries"_s, u"3"_s });
    QCOMPARE(again.exitCode, 1);
    QVERIFY2(again.errors.contains(u"gibt es schon einen Katalog"_s), qPrintable(again.errors));
    QCOMPARE(pictures(m_sample), before);
    QCOMPARE(rows(m_sample, u"SELECT COUNT(*) FROM loc_seen"_s), QStringList(u"30"_s));
}

void TestSample::existingOriginalsAreRefused()
{
    const QString folder = m_folder.filePath(u"mine"_s);
    QVERIFY(QDir().mkpath(folder + u"/Originale"_s));
    QFile file(folder + u"/Originale/mine.jpg"_s);
    QVERIFY(file.open(QIODevice::WriteOnly));
    const Run made = run({ folder, u"--entries"_s, u"3"_s });
    QCOMPARE(made.exitCode, 1);
    QVERIFY2(made.errors.contains(u"gibt es schon einen Ordner"_s), qPrintable(made.errors));
    QVERIFY(!QFile::exists(folder + u"/Data"_s));
}

void TestSample::folderThatCannotBeMadeIsRefused()
{
    QFile file(m_folder.filePath(u"file"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const Run made = run({ file.fileName() });
    QCOMPARE(made.exitCode, 1);
    QVERIFY2(made.errors.contains(u"kann nicht angelegt werden"_s), qPrintable(made.errors));
}

void TestSample::wrongArgumentsShowTheUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("none") << QStringList();
    QTest::newRow("two folders") << QStringList { u"a"_s, u"b"_s };
    QTest::newRow("empty folder") << QStringList { u""_s };
    QTest::newRow("unknown option") << QStringList { u"a"_s, u"--help"_s };
    QTest::newRow("no number") << QStringList { u"a"_s, u"--entries"_s, u"viele"_s };
    QTest::newRow("negative number") << QStringList { u"a"_s, u"--entries"_s, u"-1"_s };
    QTest::newRow("number missing") << QStringList { u"a"_s, u"--seed"_s };
    QTest::newRow("folder missing") << QStringList { u"--seed"_s, u"1"_s };
}

void TestSample::wrongArgumentsShowTheUsage()
{
    QFETCH(const QStringList, arguments);
    const Run made = run(arguments);
    QCOMPARE(made.exitCode, 2);
    QVERIFY2(made.errors.contains(u"Aufruf: bahnito-sample ORDNER"_s), qPrintable(made.errors));
    QVERIFY(!QFile::exists(u"a"_s));
}

void TestSample::catalogueWithoutEntriesIsSound()
{
    const QString empty = m_folder.filePath(u"empty"_s);
    QCOMPARE(run({ empty, u"--entries"_s, u"0"_s }).exitCode, 0);
    QCOMPARE(catalogueFindings(empty), QStringList());
    QCOMPARE(rows(empty, u"SELECT COUNT(*) FROM loc_model"_s), QStringList(u"20"_s));
}

BAHNITO_TEST_MAIN(TestSample)
#include "tst_sample.moc"
