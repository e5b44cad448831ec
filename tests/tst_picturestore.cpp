#include "search/folderlister.h"
#include "search/picturestore.h"
#include "tests/support/testcatalogue.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTest>

#include <memory>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

class TestPictureStore final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_catalogue = std::make_unique<TestCatalogue>(TestCatalogue::FoldersOnly); }
    void cleanup() { m_catalogue.reset(); }

    void numberGivesTheFolderName_data();
    void numberGivesTheFolderName();
    void foldersGiveTheCapacity_data();
    void foldersGiveTheCapacity();
    void freshStoreBeginsWithTheFirstFolder();
    void folderWithFewestFilesIsChosen_data();
    void folderWithFewestFilesIsChosen();
    void fullStoreOpensTwoFolders();
    void gapInTheNumbersNamesAnExistingFolder();
    void onlyVisibleFilesCount();
    void anyFolderBeginningLikeANumberedOneCounts();
    void otherFoldersNeverCount();
    void everyTenthStoredCopyChoosesAnew();
    void failedCopiesDoNotCount();
    void storeWithoutFoldersHasNoCurrentFolder();
    void makingAnExistingFolderIsNoError();
    void listerMakesOnlyWhatIsMissing();
    void listerComparesCaseSensitively();
    void listerIsNotRefreshed();
    void folderThatCannotBeMadeIsNotReported();

private:
    static void fill(const QString &folder, int files, int first = 0);
    [[nodiscard]] static QString inStore(const QString &name) { return u"Data/Pictures/"_s + name; }

    std::unique_ptr<TestCatalogue> m_catalogue;
};

void TestPictureStore::fill(const QString &folder, int files, int first)
{
    QDir().mkpath(inStore(folder));
    for (int i = first; i < first + files; ++i) {
        QFile file(inStore(u"%1/%2.jpg"_s.arg(folder, QString::number(i))));
        QVERIFY(file.open(QIODevice::WriteOnly));
    }
}

void TestPictureStore::numberGivesTheFolderName_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("name");
    QTest::newRow("one digit") << 1 << u"Folder001"_s;
    QTest::newRow("two digits") << 42 << u"Folder042"_s;
    QTest::newRow("three digits") << 100 << u"Folder100"_s;
    QTest::newRow("last padded number") << 999 << u"Folder999"_s;
    QTest::newRow("four digits") << 1000 << u"Folder1000"_s;
}

void TestPictureStore::numberGivesTheFolderName()
{
    QFETCH(const int, number);
    QFETCH(const QString, name);
    QCOMPARE(folderName(number), name);
    QCOMPARE(PictureStore().makeFolder(number), name);
    QVERIFY(QDir(inStore(name)).exists());
}

void TestPictureStore::foldersGiveTheCapacity_data()
{
    QTest::addColumn<int>("folders");
    QTest::addColumn<int>("capacity");
    const QList<std::pair<int, int>> table { { 0, 0 }, { 1, 50 }, { 2, 100 }, { 4, 200 }, { 5, 375 }, { 8, 600 },
        { 9, 900 }, { 12, 1200 }, { 13, 1625 }, { 16, 2000 }, { 17, 2550 }, { 20, 3000 }, { 21, 4200 },
        { 1000, 200000 } };
    for (const auto &[folders, capacity] : table) {
        QTest::addRow("%d folders", folders) << folders << capacity;
    }
}

void TestPictureStore::foldersGiveTheCapacity()
{
    QFETCH(const int, folders);
    QFETCH(const int, capacity);
    QCOMPARE(capacityFor(folders), capacity);
}

void TestPictureStore::freshStoreBeginsWithTheFirstFolder()
{
    const PictureStore store;
    QCOMPARE(store.currentFolder(), u"Folder001"_s);
    QCOMPARE(store.capacity(), 100);
    QCOMPARE(store.countdown(), 10);
    QCOMPARE(store.total(), 0);
    QCOMPARE(store.folderNames(), QStringList({ u"Folder001"_s, u"Folder002"_s }));
    QCOMPARE(store.fileCounts(), QList<int>({ 0, 0 }));
}

void TestPictureStore::folderWithFewestFilesIsChosen_data()
{
    QTest::addColumn<QList<int>>("files"); // in Folder001, Folder002, ...
    QTest::addColumn<QString>("current");
    QTest::newRow("exactly full") << QList<int> { 60, 40 } << u"Folder002"_s;
    QTest::newRow("equal counts take the first listed") << QList<int> { 7, 7 } << u"Folder001"_s;
    QTest::newRow("first of equal minima") << QList<int> { 9, 3, 3 } << u"Folder002"_s;
    QTest::newRow("minimum at the end") << QList<int> { 9, 8, 7, 6 } << u"Folder004"_s;
}

void TestPictureStore::folderWithFewestFilesIsChosen()
{
    QFETCH(const QList<int>, files);
    QFETCH(const QString, current);
    for (int i = 0; i < files.size(); ++i) {
        fill(folderName(i + 1), files.at(i));
    }
    const PictureStore store;
    QCOMPARE(store.currentFolder(), current);
    QCOMPARE(store.fileCounts(), files);
    QVERIFY(!QDir(inStore(folderName(int(files.size()) + 1))).exists());
}

void TestPictureStore::fullStoreOpensTwoFolders()
{
    fill(u"Folder001"_s, 61);
    fill(u"Folder002"_s, 40);
    PictureStore store;
    QCOMPARE(store.total(), 101);
    QCOMPARE(store.currentFolder(), u"Folder003"_s);
    QVERIFY(QDir(inStore(u"Folder003"_s)).isEmpty() && QDir(inStore(u"Folder003"_s)).exists());
    QVERIFY(QDir(inStore(u"Folder004"_s)).isEmpty() && QDir(inStore(u"Folder004"_s)).exists());
    QVERIFY(!QDir(inStore(u"Folder005"_s)).exists());
    QCOMPARE(store.folderNames().size(), 2); // the new ones are seen by the next scan

    fill(u"Folder003"_s, 10);
    for (int i = 0; i < 10; ++i) {
        store.noteStored(true);
    }
    QCOMPARE(store.folderNames().size(), 4);
    QCOMPARE(store.capacity(), 200);
    QCOMPARE(store.currentFolder(), u"Folder004"_s);
}

void TestPictureStore::gapInTheNumbersNamesAnExistingFolder()
{
    fill(u"Folder001"_s, 61);
    QVERIFY(QDir().rmdir(inStore(u"Folder002"_s)));
    fill(u"Folder003"_s, 40);
    QCOMPARE(PictureStore().currentFolder(), u"Folder003"_s);
}

void TestPictureStore::onlyVisibleFilesCount()
{
    fill(u"Folder001"_s, 1);
    QFile hidden(inStore(u"Folder001/.hidden"_s));
    QVERIFY(hidden.open(QIODevice::WriteOnly));
    QVERIFY(QDir().mkdir(inStore(u"Folder001/deeper"_s)));
    fill(u"Folder001/deeper"_s, 3);
    QCOMPARE(::mkfifo(QFile::encodeName(inStore(u"Folder001/pipe"_s)).constData(), 0600), 0);
    QVERIFY(QFile::link(u"0.jpg"_s, inStore(u"Folder001/link.jpg"_s)));
    QVERIFY(QFile::link(u"nowhere"_s, inStore(u"Folder001/broken.jpg"_s)));
    const PictureStore store;
    QCOMPARE(store.fileCounts().first(), 2); // the file and the link to it
    QCOMPARE(int(QDir(inStore(u"Folder001"_s)).entryList(QDir::Files).size()), store.fileCounts().first());
}

void TestPictureStore::anyFolderBeginningLikeANumberedOneCounts()
{
    fill(u"Folderx"_s, 2);
    fill(u"Folder"_s, 1);
    fill(u"folder003"_s, 1);
    fill(u"Folde"_s, 1);
    fill(u".Folder009"_s, 1);
    const PictureStore store;
    QCOMPARE(store.folderNames(), QStringList({ u"Folder"_s, u"Folder001"_s, u"Folder002"_s, u"Folderx"_s }));
    QCOMPARE(store.capacity(), 200);
    QCOMPARE(store.total(), 3);
}

void TestPictureStore::otherFoldersNeverCount()
{
    fill(u"AuxFolder"_s, 150);
    QFile file(inStore(u"Folder003"_s)); // a file of that name is no folder
    QVERIFY(file.open(QIODevice::WriteOnly));
    const PictureStore store;
    QCOMPARE(store.total(), 0);
    QCOMPARE(store.folderNames().size(), 2);
    QCOMPARE(store.currentFolder(), u"Folder001"_s);
}

void TestPictureStore::everyTenthStoredCopyChoosesAnew()
{
    PictureStore store;
    fill(u"Folder001"_s, 60);
    for (int i = 0; i < 9; ++i) {
        store.noteStored(true);
        QCOMPARE(store.countdown(), 9 - i);
        QCOMPARE(store.currentFolder(), u"Folder001"_s);
    }
    store.noteStored(true);
    QCOMPARE(store.countdown(), 10);
    QCOMPARE(store.total(), 60);
    QCOMPARE(store.currentFolder(), u"Folder002"_s);
}

void TestPictureStore::failedCopiesDoNotCount()
{
    PictureStore store;
    fill(u"Folder001"_s, 60);
    for (int i = 0; i < 25; ++i) {
        store.noteStored(false);
    }
    QCOMPARE(store.countdown(), 10);
    QCOMPARE(store.currentFolder(), u"Folder001"_s);
}

void TestPictureStore::storeWithoutFoldersHasNoCurrentFolder()
{
    QVERIFY(QDir(u"Data"_s).removeRecursively());
    const PictureStore store;
    QCOMPARE(store.currentFolder(), QString());
    QCOMPARE(store.capacity(), 0);
    QCOMPARE(store.total(), 0);
}

void TestPictureStore::makingAnExistingFolderIsNoError()
{
    fill(u"Folder002"_s, 1);
    QCOMPARE(PictureStore().makeFolder(2), u"Folder002"_s);
    QVERIFY(QFile::exists(inStore(u"Folder002/0.jpg"_s)));
}

void TestPictureStore::listerMakesOnlyWhatIsMissing()
{
    fill(u"Folder001"_s, 1);
    const FolderLister lister(u"./Data/Pictures"_s);
    lister.ensure(u"./Data/Pictures"_s, u"Folder001"_s);
    lister.ensure(u"./Data/Pictures"_s, u"Folder007"_s);
    QVERIFY(QFile::exists(inStore(u"Folder001/0.jpg"_s)));
    QVERIFY(QDir(inStore(u"Folder007"_s)).exists());
}

void TestPictureStore::listerComparesCaseSensitively()
{
    QVERIFY(QDir().mkdir(inStore(u"other"_s)));
    FolderLister(u"./Data/Pictures"_s).ensure(u"./Data/Pictures"_s, u"Other"_s);
    QVERIFY(QDir(u"Data/Pictures"_s).entryList(QDir::AllDirs).contains(u"Other"_s));
}

void TestPictureStore::listerIsNotRefreshed()
{
    const FolderLister lister(u"./Data/Pictures"_s);
    QVERIFY(QDir().rmdir(inStore(u"Folder002"_s)));
    lister.ensure(u"./Data/Pictures"_s, u"Folder002"_s);
    QVERIFY(!QDir(inStore(u"Folder002"_s)).exists());
}

void TestPictureStore::folderThatCannotBeMadeIsNotReported()
{
    QFile file(inStore(u"Folder003"_s));
    QVERIFY(file.open(QIODevice::WriteOnly));
    FolderLister(u"./Data/Pictures"_s).ensure(u"./Data/Pictures"_s, u"Folder003"_s);
    FolderLister(u"./missing"_s).ensure(u"./missing"_s, u"x"_s);
    QVERIFY(!QDir(inStore(u"Folder003"_s)).exists());
    QVERIFY(!QDir(u"missing"_s).exists());
}

BAHNITO_TEST_MAIN(TestPictureStore)
#include "tst_picturestore.moc"
