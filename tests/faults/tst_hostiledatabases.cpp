#include "app/startup.h"
#include "browser/picturescene.h"
#include "store/catalogquery.h"
#include "store/colorsetting.h"
#include "store/database.h"
#include "store/entryremoval.h"
#include "tests/faults/failingcalls.h"
#include "tests/faults/faultfolder.h"
#include "tests/faults/forkedrun.h"
#include "tests/faults/mutations.h"
#include "tests/faults/randomuser.h"
#include "tests/faults/samplecatalogue.h"
#include "tests/support/testmain.h"
#include "tests/support/testpictures.h"

#include <QApplication>
#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QFontMetrics>
#include <QSqlQuery>
#include <QTest>
#include <QVariant>

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <functional>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int LongestSession = 60000; // ms by the clock, on a machine that does other things too
constexpr rlim_t MostComputing = isSanitized() ? 50 : 5; // s; a session that takes more is ended by the system

/// Lets what grows or computes without end fail before the machine does.
void limitGrowth()
{
    const rlimit computingLimit { MostComputing, MostComputing + 1 }; // told by the signal SIGXCPU
    setrlimit(RLIMIT_CPU, &computingLimit);
    constexpr rlim_t LargestFile = 1024UL * 1024 * 1024; // bytes
    constexpr rlim_t MostMemory = 4 * LargestFile;
    const rlimit fileLimit { LargestFile, LargestFile };
    setrlimit(RLIMIT_FSIZE, &fileLimit);
    if (!isSanitized()) { // whose shadow alone is larger
        const rlimit memoryLimit { MostMemory, MostMemory };
        setrlimit(RLIMIT_AS, &memoryLimit);
    }
}

QString storeRoot; // of the process that watches itself

/// Ends the process when a file is to be written, made or removed that is neither the database nor in the store.
void refuseOutside(const char *name, const char *path)
{
    const int formerError = errno;
    const QFileInfo file(QFile::decodeName(path));
    const QString data = storeRoot.chopped(int(qstrlen("/Pictures")));
    const bool followsLinks = qstrcmp(name, "open") == 0 && file.exists();
    const QString target
        = followsLinks ? file.canonicalFilePath() : file.dir().canonicalPath() + u'/' + file.fileName();
    // What SQLite sorts and does not keep in memory; the file has no name any more once it is open.
    const bool isSorting = file.fileName().startsWith(u"etilqs_"_s);
    const bool isNowhere = qstrcmp(path, "/dev/null") == 0; // Qt tries to make it the folder of its settings
    const bool isAllowed = isSorting || isNowhere || target == storeRoot || target.startsWith(storeRoot + u'/')
        || target == data || target == data + u"/bahnakte.dat"_s || target == data + u"/bahnakte.dat-journal"_s;
    if (!isAllowed) {
        qFatal("%s of %s", name, qUtf8Printable(target));
    }
    errno = formerError;
}

/// Goes into the catalogue `folder`; from now on nothing outside of its store may be touched.
void enterAndWatch(const QString &folder)
{
    limitGrowth();
    Startup::keepNoSettings(); // as at start-up
    QDir::setCurrent(folder);
    storeRoot = QDir(folder).canonicalPath() + u"/Data/Pictures"_s;
    FailingCalls::setTouchHook(refuseOutside);
}

/// All names below `folder` outside of the store, but for the journal that a failed commit may leave.
QStringList namesOutsideTheStore(const QString &folder)
{
    QStringList names;
    QDirIterator entries(
        folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QString name = entries.next();
        if (!name.contains(u"/Data/Pictures/"_s) && !name.endsWith(u"bahnakte.dat-journal"_s)) {
            names.append(name);
        }
    }
    names.sort();
    return names;
}

/// The rows that belong to no entry, as far as they can be read, and the files in the folder of the group pictures.
QString digestOfGroupPictures()
{
    QString digest = QString::fromLatin1(folderDigest(u"Data/Pictures/AuxFolder"_s).toHex());
    QSqlQuery query(u"SELECT id FROM loc_picture WHERE locpictureid < 1"_s);
    while (query.next()) {
        digest += u' ' + query.value(0).toString();
    }
    return digest;
}

/// 0 when they cannot be counted.
int countEntries()
{
    QSqlQuery query(u"SELECT COUNT(*) FROM loc_seen"_s);
    return query.next() ? query.value(0).toInt() : 0;
}

/// Clicks on the button that deletes the first entry on the canvas; whether it is gone. The question is answered as the
/// user's last action wanted it.
bool deleteFirstShown(const RandomUser &user)
{
    BrowserWindow &browser = user.browser();
    if (browser.canvas().blocks().isEmpty()) {
        return false;
    }
    const int before = countEntries();
    browser.click(browser.button(ButtonKind::Delete, browser.block(0)));
    return countEntries() < before;
}

/// Some actions, a deletion, and the end of the program, as if the user had closed it. Reports what was done.
void useProgram(quint32 seed, int actions, const QString &photographs)
{
    RandomUser user(seed, RandomUser::Work, photographs);
    for (int i = 0; i < actions; ++i) {
        user.act();
    }
    const bool isDeleted = deleteFirstShown(user);
    user.browser().window().close();
    RandomUser::Deeds deeds = user.deeds();
    deeds[u"deleted"_s] += isDeleted ? 1 : 0;
    for (const QString &line : RandomUser::deedLines(deeds)) {
        ForkedRun::report(line);
    }
}

void readAndDelete()
{
    if (!connectDatabase()) {
        return;
    }
    const CatalogQuery &catalog = CatalogQuery::instance();
    QList<QSqlRecord> rows;
    catalog.groups(rows, 0);
    catalog.modelsOfGroup(rows, 0);
    catalog.allEntries(rows);
    catalog.storedPictureAt(rows, catalog.countStoredPictures() - 1);
    catalog.entriesByNumber(rows, catalog.entryNumber(1), catalog.modelIdOfEntry(1));
    const auto pictures = catalog.picturesOfEntries({ 1, 2, 3 });
    int removed = 0;
    for (const int id : { 1, 2, 3 }) {
        removed += removeEntry(id).done ? 1 : 0;
    }
    const QString groupPictures = digestOfGroupPictures();
    for (const int id : { 0, -1 }) {
        if (!removeEntry(id).done || digestOfGroupPictures() != groupPictures) {
            qFatal("removed what belongs to no entry");
        }
    }
    ColorSetting::instance();
    ColorSetting::saveAndRelease();
    ForkedRun::report(QString::number(removed));
}

void reportComputing()
{
    ForkedRun::report(QString::number(std::clock() * 1000 / CLOCKS_PER_SEC)); // of this process, ms
}

} // namespace

/// Opens catalogues that are broken or made to do harm. Whatever they hold, the program lives and no file outside the
/// picture store is touched.
class TestHostileDatabases final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { m_slowest = 0; }
    void endlessContentsAreNotFollowed_data();
    void endlessContentsAreNotFollowed();
    void everyReadAndDeletionSurvives();
    void everySessionSurvives();

private:
    [[nodiscard]] QString work() const { return m_folder.path(u"work"_s); }
    void makeCatalogue(quint32 seed, bool hugeTexts);
    QStringList run(const std::function<void()> &session);
    void checkCanaries();

    FaultFolder m_folder;
    QByteArray m_canaries;
    QStringList m_namesOutside;
    quint32 m_seed = 0; // of the catalogue
    int m_slowest = 0; // ms of computing that a session took
};

void TestHostileDatabases::initTestCase()
{
    QVERIFY(runForked([this] {
        makeSampleCatalogue(m_folder.path(u"sample"_s));
        makeSamplePhotographs(m_folder.path(u"photographs"_s));
        QDir().mkpath(m_folder.path(u"canaries"_s));
        writeTestJpeg(m_folder.path(u"canaries/foto.jpg"_s), { 60, 40 });
        writeTestJpeg(m_folder.path(u"canaries/link.jpg"_s), { 60, 40 });
    }).isGood());
    QFontMetrics(QApplication::font()).horizontalAdvance(u"Ä\u6771\u05D1"_s); // loaded once, not in each of the forks
    m_canaries = folderDigest(m_folder.path(u"canaries"_s));
    QVERIFY(QDir().mkpath(m_folder.path(u"config"_s)));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(QFileInfo(m_folder.path(u"config"_s)).canonicalFilePath()));
}

/// A catalogue with number `seed`, with a file beside the database, a link, a linked folder and a pipe in the store.
void TestHostileDatabases::makeCatalogue(quint32 seed, bool hugeTexts)
{
    const QString foreign = m_folder.path(u"canaries/foto.jpg"_s);
    FaultFolder::copy(m_folder.path(u"sample"_s), work());
    const QString store = work() + u"/Data/Pictures"_s;
    QFile::link(m_folder.path(u"canaries/link.jpg"_s), store + u"/Folder001/link.jpg"_s);
    QFile::link(m_folder.path(u"canaries"_s), store + u"/linked"_s);
    mkfifo(qPrintable(store + u"/Folder001/pipe.jpg"_s), 0600);
    QFile note(work() + u"/Data/notiz.txt"_s);
    QVERIFY(note.open(QIODevice::WriteOnly) && note.write("bleibt") == 6);
    m_seed = seed;
    QRandomGenerator random(seed);
    const int kind = random.bounded(3);
    if (kind != 0) {
        Mutations::falsifyRows(work() + u"/Data/bahnakte.dat"_s, foreign, hugeTexts, random);
    }
    if (kind != 1) {
        Mutations::spoilBytes(work() + u"/Data/bahnakte.dat"_s, random);
    }
    m_namesOutside = namesOutsideTheStore(m_folder.path());
}

/// Runs the session in the catalogue, in a process of its own; what it has reported.
QStringList TestHostileDatabases::run(const std::function<void()> &session)
{
    ForkedRun::End end = runForked(
        [this, &session] {
            enterAndWatch(work());
            session();
            reportComputing();
        },
        LongestSession);
    if (!end.isGood() || end.lines.isEmpty()) {
        QTest::qFail(qPrintable(u"catalogue %1: "_s.arg(m_seed) + end.description()), __FILE__, __LINE__);
        return {};
    }
    m_slowest = std::max(m_slowest, end.lines.takeLast().toInt());
    return end.lines;
}

void TestHostileDatabases::checkCanaries()
{
    QCOMPARE(folderDigest(m_folder.path(u"canaries"_s)), m_canaries);
    QFile note(work() + u"/Data/notiz.txt"_s);
    QVERIFY(note.open(QIODevice::ReadOnly));
    QCOMPARE(note.readAll(), QByteArray("bleibt"));
    QVERIFY(QFileInfo(work() + u"/Data/bahnakte.dat"_s).isFile());
    QCOMPARE(namesOutsideTheStore(m_folder.path()), m_namesOutside);
}

void TestHostileDatabases::endlessContentsAreNotFollowed_data()
{
    QTest::addColumn<QString>("table");
    for (const QString &table : { u"locomotive"_s, u"loc_model"_s, u"loc_seen"_s, u"loc_picture"_s, u"settings"_s }) {
        QTest::newRow(qUtf8Printable(table)) << table;
    }
}

/// A whole session with each, which would never come to its end.
void TestHostileDatabases::endlessContentsAreNotFollowed()
{
    QFETCH(const QString, table);
    const QString endless = u"WITH RECURSIVE c(id) AS (SELECT 1 UNION ALL SELECT id + 1 FROM c) "_s;
    const QString trigger = u"CREATE TRIGGER t%1 AFTER %1 ON %2 BEGIN INSERT INTO settings (category, name) %3"
                            "SELECT id, id FROM c; END"_s;
    const QStringList views { u"ALTER TABLE %1 RENAME TO hidden"_s.arg(table),
        u"CREATE VIEW %1 AS %2 SELECT * FROM c"_s.arg(table, endless) };
    const QStringList triggers { trigger.arg(u"INSERT"_s, table, endless), trigger.arg(u"UPDATE"_s, table, endless),
        trigger.arg(u"DELETE"_s, table, endless) };
    const QString column = u"ALTER TABLE %1 ADD COLUMN %2 AS (%3)"_s; // of gigabytes, though not without end
    const QStringList bytes { column.arg(table, u"b"_s, u"hex(zeroblob(100000000 + id))"_s) };
    const QStringList letters { column.arg(table, u"l"_s, u"printf('%.*c', 200000000, id)"_s) };
    for (const QStringList &statements : { views, triggers, bytes, letters }) {
        FaultFolder::copy(m_folder.path(u"sample"_s), work());
        Mutations::run(work() + u"/Data/bahnakte.dat"_s, statements);
        run([this] { useProgram(1, 30, m_folder.path(u"photographs"_s)); });
    }
    qInfo("slowest session %d ms", m_slowest);
}

/// All queries of the catalogue and the deletion of entries, without a window.
void TestHostileDatabases::everyReadAndDeletionSurvives()
{
    const int catalogues = share(1000, 10000);
    const quint32 first = testSeed(1);
    int deleted = 0;
    for (int i = 0; i < catalogues && !QTest::currentTestFailed(); ++i) {
        makeCatalogue(first + quint32(i), false);
        deleted += run(readAndDelete).value(0).toInt();
        checkCanaries();
    }
    qInfo("%d hostile catalogues read; %d deletions went through; slowest %d ms", catalogues, deleted, m_slowest);
    QVERIFY(deleted > catalogues); // else the damage is so great that nothing was tried
}

/// The whole program on them: searches, forms, listings, deletions, closing. Most sessions are short, because it is
/// the first steps on each catalogue that count.
void TestHostileDatabases::everySessionSurvives()
{
    const int catalogues = share(300, 10000);
    const quint32 first = testSeed(1);
    RandomUser::Deeds deeds;
    for (int i = 0; i < catalogues && !QTest::currentTestFailed(); ++i) {
        const quint32 seed = first + quint32(i);
        makeCatalogue(seed, i % 8 == 0);
        const int actions = isLongRun() || i % 10 == 0 ? 12 : 3;
        RandomUser::addDeeds(deeds, run([&] { useProgram(seed, actions, m_folder.path(u"photographs"_s)); }));
        checkCanaries();
    }
    qInfo("%d hostile catalogues used: %s; slowest %d ms", catalogues,
        qPrintable(RandomUser::deedLines(deeds).join(u", "_s)), m_slowest);
    if (QTest::currentTestFailed()) {
        return;
    }
    QCOMPARE(deeds.size(), 9); // six forms, searches, listings and deletions
    QVERIFY(deeds.key(0).isEmpty()); // none was never done
    QVERIFY(deeds.value(u"searched"_s) > catalogues / 2 && deeds.value(u"Edit Bahnito-Eintrag"_s) > catalogues / 3);
    QVERIFY(deeds.value(u"deleted"_s) > catalogues / 10);
}

BAHNITO_TEST_MAIN(TestHostileDatabases)
#include "tst_hostiledatabases.moc"
