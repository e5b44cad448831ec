#include "search/clock.h"
#include "store/copyfile.h"
#include "store/statement.h"
#include "tests/support/testcatalogue.h"
#include "tests/support/testmain.h"
#include "tests/support/testpictures.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QTest>

#include <csignal>
#include <memory>

#include <sys/resource.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

class TestCopyFile final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_catalogue = std::make_unique<TestCatalogue>(); }
    void cleanup()
    {
        Clock::setSource({});
        m_catalogue.reset();
    }

    void nameIsMadeOfBareNumbers_data();
    void nameIsMadeOfBareNumbers();
    void takenNamesAreNeverChosen();
    void danglingLinkTakesItsName();
    void copyIsAJpegFile();
    void copyThatCannotBeWrittenLeavesNothing();
    void diskThatFillsUpLeavesNothing();
    void existingCopyIsRemoved();
    void missingCopyIsNoMatter();
    void linkIsRemovedButNotItsTarget();
    void whatIsNoCopyIsLeftAlone_data();
    void whatIsNoCopyIsLeftAlone();
    void originalIsNeverRemoved_data();
    void originalIsNeverRemoved();
    void whatAnyRowCallsAnOriginalIsNeverRemoved_data();
    void whatAnyRowCallsAnOriginalIsNeverRemoved();
    void originalOfTheSameNameElsewhereKeepsNothing();
    void unreadableRowsKeepTheCopy();
    void linkedFolderIsNoPartOfTheStore();
    void linkBetweenFoldersOfTheStoreIsFollowed();
    void linkedStoreIsAStore();

private:
    static void write(const QString &path);
    static void addOriginal(const QString &path);

    std::unique_ptr<TestCatalogue> m_catalogue;
};

void TestCopyFile::write(const QString &path)
{
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("x") == 1);
}

void TestCopyFile::addOriginal(const QString &path)
{
    QVERIFY(executeWrite(u"INSERT INTO loc_picture (pictAuxPath, pictOrigPath, pictHeight, pictWidth, locpictureid) "
                         "VALUES ('./Data/Pictures/Folder001/other.jpg', :path, 1, 1, 1)"_s,
        { { u":path"_s, path } })
                .done);
}

void TestCopyFile::nameIsMadeOfBareNumbers_data()
{
    QTest::addColumn<QDateTime>("time");
    QTest::addColumn<QString>("name");
    QTest::newRow("no leading zeros") << QDateTime({ 2004, 1, 5 }, { 7, 3, 9, 8 })
                                      << u"./Data/Pictures/Folder002/2004157398.jpg"_s;
    QTest::newRow("all digits") << QDateTime({ 2024, 12, 31 }, { 23, 59, 58, 997 })
                                << u"./Data/Pictures/Folder002/20241231235958997.jpg"_s;
    QTest::newRow("midnight") << QDateTime({ 2000, 10, 10 }, { 0, 0 })
                              << u"./Data/Pictures/Folder002/200010100000.jpg"_s;
}

void TestCopyFile::nameIsMadeOfBareNumbers()
{
    QFETCH(const QDateTime, time);
    QFETCH(const QString, name);
    QCOMPARE(copyPath(u"Folder002"_s, time), name);
    Clock::setSource([time] { return time; });
    QCOMPARE(freeCopyPath(u"Folder002"_s), name);
}

void TestCopyFile::takenNamesAreNeverChosen()
{
    const QDateTime start({ 2024, 1, 11 }, { 8, 0 }); // named like 1 November at the same time of day
    int reads = 0;
    Clock::setSource([&reads, start] { return start.addMSecs(reads++); });
    write(copyPath(u"Folder001"_s, QDateTime({ 2024, 11, 1 }, { 8, 0 })));
    write(copyPath(u"Folder001"_s, start.addMSecs(1)));
    QCOMPARE(freeCopyPath(u"Folder001"_s), copyPath(u"Folder001"_s, start.addMSecs(2)));
    QCOMPARE(reads, 3);
}

void TestCopyFile::danglingLinkTakesItsName()
{
    const QDateTime start({ 2024, 5, 5 }, { 8, 0 });
    int reads = 0;
    Clock::setSource([&reads, start] { return start.addMSecs(reads++); });
    QVERIFY(QFile::link(u"/nowhere"_s, copyPath(u"Folder001"_s, start)));
    QCOMPARE(freeCopyPath(u"Folder001"_s), copyPath(u"Folder001"_s, start.addMSecs(1)));
}

void TestCopyFile::copyIsAJpegFile()
{
    const QString path = u"./Data/Pictures/Folder001/1.jpg"_s;
    QVERIFY(writeCopy(testImage({ 75, 50 }), path));
    QImageReader reader(path);
    reader.setDecideFormatFromContent(true);
    QCOMPARE(reader.format(), QByteArray("jpeg"));
    QCOMPARE(reader.read().size(), QSize(75, 50));
    QCOMPARE(QDir(u"Data/Pictures/Folder001"_s).entryList(QDir::Files | QDir::Hidden), QStringList(u"1.jpg"_s));
}

void TestCopyFile::copyThatCannotBeWrittenLeavesNothing()
{
    QVERIFY(!writeCopy(testImage({ 75, 50 }), u"./Data/Pictures/Folder009/1.jpg"_s));
    QVERIFY(!writeCopy(QImage(), u"./Data/Pictures/Folder001/1.jpg"_s));
    QVERIFY(!QFile::exists(u"Data/Pictures/Folder009"_s));
    QVERIFY(QDir(u"Data/Pictures/Folder001"_s).isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden));
}

void TestCopyFile::diskThatFillsUpLeavesNothing()
{
    ::signal(SIGXFSZ, SIG_IGN);
    rlimit former = {};
    QCOMPARE(::getrlimit(RLIMIT_FSIZE, &former), 0);
    const rlimit tight { 100, former.rlim_max }; // bytes a file may have: like a full disk in the midst of writing
    QCOMPARE(::setrlimit(RLIMIT_FSIZE, &tight), 0);
    const bool written = writeCopy(testImage({ 75, 50 }), u"./Data/Pictures/Folder001/1.jpg"_s);
    QCOMPARE(::setrlimit(RLIMIT_FSIZE, &former), 0);
    QVERIFY(!written);
    QVERIFY(QDir(u"Data/Pictures/Folder001"_s).isEmpty(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden));
}

void TestCopyFile::existingCopyIsRemoved()
{
    const QString path = u"./Data/Pictures/Folder001/1.jpg"_s;
    write(path);
    write(u"source.jpg"_s);
    QVERIFY(removeCopy(path, m_catalogue->path(u"source.jpg"_s)));
    QVERIFY(!QFile::exists(path));
    QVERIFY(QFile::exists(u"source.jpg"_s));

    write(path);
    QVERIFY(removeCopy(m_catalogue->path(u"Data/Pictures/Folder001/1.jpg"_s), QString())); // the same file, named fully
    QVERIFY(!QFile::exists(path));
}

void TestCopyFile::missingCopyIsNoMatter()
{
    QVERIFY(!removeCopy(u"./Data/Pictures/Folder001/1.jpg"_s, QString()));
    QVERIFY(!removeCopy(QString(), QString()));
    QVERIFY(!removeCopy(u"./Data/Pictures/Folder009/1.jpg"_s, QString()));
}

void TestCopyFile::linkIsRemovedButNotItsTarget()
{
    write(u"source.jpg"_s);
    const QString path = u"./Data/Pictures/Folder001/1.jpg"_s;
    QVERIFY(QFile::link(m_catalogue->path(u"source.jpg"_s), path));
    QVERIFY(removeCopy(path, QString()));
    QVERIFY(!QFileInfo(path).isSymLink());
    QVERIFY(QFile::exists(u"source.jpg"_s));
}

void TestCopyFile::whatIsNoCopyIsLeftAlone_data()
{
    QTest::addColumn<QString>("path"); // %1 is the working folder
    QTest::newRow("beside the catalogue") << u"./mine.jpg"_s;
    QTest::newRow("full path outside") << u"%1/mine.jpg"_s;
    QTest::newRow("full path elsewhere that looks like a store") << u"%1/other/Data/Pictures/Folder001/mine.jpg"_s;
    QTest::newRow("out of the store by dots") << u"./Data/Pictures/Folder001/../../../mine.jpg"_s;
    QTest::newRow("into another folder of the store by dots") << u"./Data/Pictures/Folder001/../Folder002/mine.jpg"_s;
    QTest::newRow("in the root of the store") << u"./Data/Pictures/mine.jpg"_s;
    QTest::newRow("in the root, spelled as a folder") << u"./Data/Pictures/./mine.jpg"_s;
    QTest::newRow("deeper than a folder of the store") << u"./Data/Pictures/Folder001/deep/mine.jpg"_s;
    QTest::newRow("the database") << u"./Data/bahnakte.dat"_s;
}

void TestCopyFile::whatIsNoCopyIsLeftAlone()
{
    QFETCH(QString, path);
    path.replace(u"%1"_s, QDir::currentPath());
    write(path);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^Datei bleibt stehen"_s));
    QVERIFY(!removeCopy(path, QString()));
    QVERIFY(QFile::exists(path));
}

void TestCopyFile::originalIsNeverRemoved_data()
{
    QTest::addColumn<QString>("original"); // %1 is the working folder
    QTest::newRow("same text") << u"./Data/Pictures/Folder001/1.jpg"_s;
    QTest::newRow("full path") << u"%1/Data/Pictures/Folder001/1.jpg"_s;
    QTest::newRow("another spelling") << u"%1/Data/../Data/Pictures/Folder001/1.jpg"_s;
    QTest::newRow("through a link") << u"%1/link.jpg"_s;
}

void TestCopyFile::originalIsNeverRemoved()
{
    QFETCH(QString, original);
    original.replace(u"%1"_s, QDir::currentPath());
    const QString path = u"./Data/Pictures/Folder001/1.jpg"_s;
    write(path);
    QVERIFY(QFile::link(m_catalogue->path(u"Data/Pictures/Folder001/1.jpg"_s), u"link.jpg"_s));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^Datei bleibt stehen"_s));
    QVERIFY(!removeCopy(path, original));
    QVERIFY(QFile::exists(path));
}

void TestCopyFile::whatAnyRowCallsAnOriginalIsNeverRemoved_data()
{
    QTest::addColumn<QString>("copy"); // in Folder001
    QTest::addColumn<QString>("original"); // %1 is the working folder
    QTest::newRow("full path") << u"1.jpg"_s << u"%1/Data/Pictures/Folder001/1.jpg"_s;
    QTest::newRow("as the program writes it") << u"1.jpg"_s << u"./Data/Pictures/Folder001/1.jpg"_s;
    QTest::newRow("through a linked folder") << u"1.jpg"_s << u"%1/photos/1.jpg"_s;
    QTest::newRow("another spelling") << u"1.jpg"_s << u"%1/Data/../Data/./Pictures//Folder001/1.jpg"_s;
    QTest::newRow("letters of two units") << u"🚂11.jpg"_s << u"%1/Data/Pictures/Folder001/🚂11.jpg"_s;
}

void TestCopyFile::whatAnyRowCallsAnOriginalIsNeverRemoved()
{
    QFETCH(const QString, copy);
    QFETCH(QString, original);
    const QString path = u"./Data/Pictures/Folder001/"_s + copy;
    const QString shorter = u"./Data/Pictures/Folder001/2.jpg"_s;
    write(path);
    write(shorter);
    QVERIFY(QFile::link(m_catalogue->path(u"Data/Pictures/Folder001"_s), u"photos"_s));
    addOriginal(u"/elsewhere/2000.jpg"_s);
    addOriginal(original.replace(u"%1"_s, QDir::currentPath()));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^Datei bleibt stehen"_s));
    QCOMPARE(removeCopies({ path, shorter }, {}), QString());
    QVERIFY(QFile::exists(path));
    QVERIFY(!QFile::exists(shorter));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^Datei bleibt stehen"_s));
    QVERIFY(!removeCopy(path, QString()));
}

void TestCopyFile::originalOfTheSameNameElsewhereKeepsNothing()
{
    const QString path = u"./Data/Pictures/Folder001/1.jpg"_s;
    write(path);
    write(u"1.jpg"_s);
    addOriginal(m_catalogue->path(u"1.jpg"_s));
    addOriginal(u"/gone/1.jpg"_s);
    QVERIFY(removeCopy(path, QString()));
    QVERIFY(QFile::exists(u"1.jpg"_s));
}

void TestCopyFile::unreadableRowsKeepTheCopy()
{
    const QString path = u"./Data/Pictures/Folder001/1.jpg"_s;
    write(path);
    QVERIFY(executeWrite(u"DROP TABLE loc_picture"_s).done);
    QVERIFY(removeCopies({ path }, {}).contains(u"no such table"_s));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^Datei bleibt stehen"_s));
    QVERIFY(!removeCopy(path, QString()));
    QVERIFY(QFile::exists(path));
}

void TestCopyFile::linkBetweenFoldersOfTheStoreIsFollowed()
{
    write(u"Data/Pictures/Folder001/1.jpg"_s);
    QVERIFY(QFile::link(m_catalogue->path(u"Data/Pictures/Folder001"_s), u"Data/Pictures/Folder003"_s));
    QVERIFY(removeCopy(u"./Data/Pictures/Folder003/1.jpg"_s, QString()));
    QVERIFY(!QFile::exists(u"Data/Pictures/Folder001/1.jpg"_s));
}

void TestCopyFile::linkedFolderIsNoPartOfTheStore()
{
    write(u"photos/mine.jpg"_s);
    QVERIFY(QFile::link(m_catalogue->path(u"photos"_s), u"Data/Pictures/Folder003"_s));
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^Datei bleibt stehen"_s));
    QVERIFY(!removeCopy(u"./Data/Pictures/Folder003/mine.jpg"_s, QString()));
    QVERIFY(QFile::exists(u"photos/mine.jpg"_s));

    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^Datei bleibt stehen"_s));
    QVERIFY(!removeCopy(u"./Data/Pictures/Folder001"_s, QString())); // a folder
    QCOMPARE(::mkfifo("Data/Pictures/Folder001/pipe", 0600), 0);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^Datei bleibt stehen"_s));
    QVERIFY(!removeCopy(u"./Data/Pictures/Folder001/pipe"_s, QString()));
}

void TestCopyFile::linkedStoreIsAStore()
{
    QVERIFY(QDir().rename(u"Data/Pictures"_s, u"elsewhere"_s)); // the pictures on a larger disk
    QVERIFY(QFile::link(m_catalogue->path(u"elsewhere"_s), u"Data/Pictures"_s));
    write(u"Data/Pictures/Folder001/1.jpg"_s);
    QVERIFY(removeCopy(u"./Data/Pictures/Folder001/1.jpg"_s, QString()));
    QVERIFY(!QFile::exists(u"elsewhere/Folder001/1.jpg"_s));
}

BAHNITO_TEST_MAIN(TestCopyFile)
#include "tst_copyfile.moc"
