#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "tests/faults/failingcalls.h"
#include "tests/faults/faultfolder.h"
#include "tests/faults/obstacles.h"
#include "tests/faults/samplecatalogue.h"
#include "tests/faults/savingsteps.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QSqlQuery>
#include <QTest>

#include <cerrno>
#include <memory>
#include <numeric>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int RoomForJournal = 9000; // bytes: what is written before a copy, and less than that and the smallest copy

/// Has the program give up sooner in the quick run, where it would wait for a minute in all. How long it really waits
/// is another test's claim.
void waitLess()
{
    if (!isLongRun()) {
        QSqlQuery(u"PRAGMA busy_timeout = 50"_s);
    }
}

/// What keeps the catalogue from being written.
struct Obstacle
{
    std::function<void()> block;
    std::function<void()> unblock;
    QStringList reasons; // what the driver may say
    bool isBeforeStart = false; // it is there when the program opens the catalogue, and gone for its next session
    bool isForRightless = false; // only those meet it who may not write everywhere
    bool failsTheCopy = false; // the row alone could be written
    bool hidesEntries = false; // nothing can be read, so an entry counts as gone: nothing is asked and nothing deleted
};

void report(const QString &finding)
{
    if (!finding.isEmpty()) {
        ForkedRun::report(finding);
    }
}

} // namespace

/// The catalogue that cannot be written: each thing that a user saves ends with one clear box and nothing half done,
/// and can be done again when the obstacle is gone.
class TestBlockedCatalogue final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void fullDisk_data();
    void fullDisk();
    void diskRefusesToWrite_data() { addSteps(); }
    void diskRefusesToWrite();
    void readOnlyFile_data() { addSteps(); }
    void readOnlyFile();
    void readOnlyFolders_data() { addSteps(); }
    void readOnlyFolders();
    void startedInAReadOnlyFolder_data() { addSteps(); }
    void startedInAReadOnlyFolder();
    void lockedByAnotherProgram_data() { addSteps(); }
    void lockedByAnotherProgram();
    void readByAnotherProgram_data() { addSteps(); }
    void readByAnotherProgram();
    void showsWhatCannotBeWritten_data();
    void showsWhatCannotBeWritten();
    void cleanupTestCase() { qInfo("%d steps tried, %d boxes told of a failure", m_tried, m_told); }

private:
    void addSteps() const;
    void check(int step, const Obstacle &obstacle);
    void tryStep(int step, CatalogueUser &user, const Obstacle &obstacle) const;
    void compare(int state, const QString &claim) const;
    [[nodiscard]] QString work() const { return m_folder.path(u"work"_s); }

    FaultFolder m_folder;
    QList<SavingStep> m_steps;
    Reference m_reference;
    int m_tried = 0;
    int m_told = 0;
};

void TestBlockedCatalogue::initTestCase()
{
    QVERIFY(runForked([this] {
        makeSampleCatalogue(m_folder.path(u"sample"_s));
        makeSamplePhotographs(m_folder.path(u"photographs"_s));
    }).isGood());
    m_steps = savingSteps(m_folder.path(u"photographs"_s));
    m_reference = makeReference(m_folder.path(u"sample"_s), m_steps, m_folder.path(u"before"_s));
}

void TestBlockedCatalogue::addSteps() const
{
    QTest::addColumn<int>("step");
    for (int i = 0; i < m_steps.size(); ++i) {
        QTest::newRow(qPrintable(m_steps.at(i).name)) << i;
    }
}

/// Does the step while the catalogue is blocked and once more when it is not.
void TestBlockedCatalogue::check(int step, const Obstacle &obstacle)
{
    FaultFolder::copy(m_folder.path(u"before/"_s + QString::number(step)), work());
    ForkedRun::End end = runForked([&] {
        setSteadyClock();
        if (obstacle.isForRightless) {
            giveUpRights(m_folder.path());
        }
        QDir::setCurrent(work());
        if (obstacle.isBeforeStart) {
            obstacle.block();
        }
        auto user = std::make_unique<CatalogueUser>();
        tryStep(step, *user, obstacle);
        if (!user->isOpen()) {
            return;
        }
        if (obstacle.isBeforeStart) {
            user.reset(); // before there is another: both use the default connection
            user = std::make_unique<CatalogueUser>();
        }
        m_steps.at(step).run(*user);
        compare(m_reference.reached.at(step), u"not done afterwards: "_s + user->takeBoxes().join(u'/'));
    });
    QVERIFY2(end.isGood() && !end.lines.isEmpty(), qPrintable(end.description()));
    m_told += end.lines.takeFirst().toInt();
    ++m_tried;
    QCOMPARE(end.lines.join(u'\n'), QString());
}

/// Reports first how many boxes came up, and then what was wrong.
void TestBlockedCatalogue::tryStep(int step, CatalogueUser &user, const Obstacle &obstacle) const
{
    bool isBlocked = obstacle.isBeforeStart;
    QList<QStringList> boxes;
    user.setSavingHooks(
        [&] {
            if (!std::exchange(isBlocked, true)) {
                obstacle.block();
            }
        },
        [&] { boxes.append(user.takeBoxes()); });
    m_steps.at(step).run(user);
    obstacle.unblock();
    user.setSavingHooks({}, {});
    boxes.append(user.takeBoxes());
    ForkedRun::report(QString::number(std::accumulate(
        boxes.cbegin(), boxes.cend(), 0, [](qsizetype sum, const QStringList &list) { return sum + list.size(); })));
    SavingStep told = m_steps.at(step);
    if (obstacle.hidesEntries && told.name == u"deleteEntry"_s) {
        told.failureTitle.clear();
    }
    report(wrongBoxes(told, boxes, obstacle.reasons));
    if (obstacle.failsTheCopy && !boxes.first().first().startsWith(u"File-Info|"_s)) {
        report(u"the row has failed: "_s + boxes.first().first());
    }
    compare(m_reference.before(step), u"changed: "_s);
    for (const QString &damage : damages(work())) {
        report(damage);
    }
}

void TestBlockedCatalogue::compare(int state, const QString &claim) const
{
    const QString found = catalogueDump(work(), true);
    report(found == m_reference.states.at(state) ? QString() : claim + found);
}

void TestBlockedCatalogue::fullDisk_data()
{
    QTest::addColumn<int>("step");
    QTest::addColumn<int>("room");
    for (int i = 0; i < m_steps.size(); ++i) {
        for (const int room : { 0, 700, RoomForJournal }) { // bytes: not even a journal; a part of it
            if (room == 0 || m_steps.at(i).storesPicture() || isLongRun()) {
                QTest::addRow("%s with %d bytes", qPrintable(m_steps.at(i).name), room) << i << room;
            }
        }
    }
}

void TestBlockedCatalogue::fullDisk()
{
    QFETCH(const int, step);
    QFETCH(const int, room);
    const QByteArray folder = work().toUtf8();
    Obstacle obstacle;
    obstacle.block = [&] { FailingCalls::arm(folder, { FailingCalls::FillDisk, room }); };
    obstacle.unblock = [] { FailingCalls::disarm(); };
    obstacle.reasons = QStringList { u"database or disk is full"_s };
    obstacle.failsTheCopy = room == RoomForJournal && m_steps.at(step).storesPicture();
    check(step, obstacle);
}

/// Each call that would write is refused from then on, though the file was opened for writing.
void TestBlockedCatalogue::diskRefusesToWrite()
{
    QFETCH(const int, step);
    const QByteArray folder = work().toUtf8();
    Obstacle obstacle;
    obstacle.block = [&] { FailingCalls::arm(folder, { FailingCalls::Fail, 1, EACCES, true }); };
    obstacle.unblock = [] { FailingCalls::disarm(); };
    obstacle.reasons = QStringList { u"attempt to write a readonly database"_s };
    check(step, obstacle);
}

/// SQLite keeps a file open, so what counts is how the file was when the program opened it.
void TestBlockedCatalogue::readOnlyFile()
{
    QFETCH(const int, step);
    const QString file = work() + u"/Data/bahnakte.dat"_s;
    Obstacle obstacle;
    obstacle.block = [&] { setWritable(file, false); };
    obstacle.unblock = [&] { setWritable(file, true); };
    obstacle.reasons = QStringList { u"attempt to write a readonly database"_s };
    obstacle.isBeforeStart = true;
    obstacle.isForRightless = true;
    check(step, obstacle);
}

/// All folders of the catalogue, as on a medium that somebody has protected.
void TestBlockedCatalogue::readOnlyFolders()
{
    QFETCH(const int, step);
    Obstacle obstacle;
    obstacle.block = [this] { setFoldersWritable(work(), false); };
    obstacle.unblock = [this] { setFoldersWritable(work(), true); };
    obstacle.reasons = QStringList { u"unable to open database file"_s, u"attempt to write a readonly database"_s };
    obstacle.isForRightless = true;
    check(step, obstacle);
}

/// Only the folder of the database file, so that it is opened for writing and copies can be stored.
void TestBlockedCatalogue::startedInAReadOnlyFolder()
{
    QFETCH(const int, step);
    const QString folder = work() + u"/Data"_s;
    Obstacle obstacle;
    obstacle.block = [&] { setWritable(folder, false); };
    obstacle.unblock = [&] { setWritable(folder, true); };
    obstacle.reasons = QStringList { u"unable to open database file"_s, u"attempt to write a readonly database"_s };
    obstacle.isBeforeStart = true;
    obstacle.isForRightless = true;
    check(step, obstacle);
}

void TestBlockedCatalogue::lockedByAnotherProgram()
{
    QFETCH(const int, step);
    std::unique_ptr<OtherProgram> other;
    Obstacle obstacle;
    obstacle.block = [&] {
        other = std::make_unique<OtherProgram>(work(), 60000);
        waitLess();
    };
    obstacle.unblock = [&] { other.reset(); };
    obstacle.reasons = QStringList { u"database is locked"_s };
    obstacle.hidesEntries = true;
    check(step, obstacle);
}

/// Everything can be read and every transaction begun, but none of them committed.
void TestBlockedCatalogue::readByAnotherProgram()
{
    QFETCH(const int, step);
    std::unique_ptr<OtherProgram> other;
    Obstacle obstacle;
    obstacle.block = [&] {
        other = std::make_unique<OtherProgram>(work(), 60000, u"SELECT * FROM sqlite_master"_s);
        waitLess();
    };
    obstacle.unblock = [&] { other.reset(); };
    obstacle.reasons = QStringList { u"database is locked"_s };
    check(step, obstacle);
}

void TestBlockedCatalogue::showsWhatCannotBeWritten_data()
{
    QTest::addColumn<bool>("isFile");
    QTest::addColumn<bool>("isFolder");
    QTest::addColumn<bool>("areAllFolders");
    QTest::newRow("the file") << true << false << false;
    QTest::newRow("its folder") << false << true << false;
    QTest::newRow("all folders") << false << true << true;
    QTest::newRow("the file and all folders") << true << true << true;
}

/// A catalogue on a protected medium can be looked at, with all its entries and pictures, and is left as it is.
void TestBlockedCatalogue::showsWhatCannotBeWritten()
{
    QFETCH(const bool, isFile);
    QFETCH(const bool, isFolder);
    QFETCH(const bool, areAllFolders);
    FaultFolder::copy(m_folder.path(u"sample"_s), work());
    const QByteArray before = folderDigest(work());
    const ForkedRun::End end = runForked([&] {
        giveUpRights(m_folder.path());
        QDir::setCurrent(work());
        setWritable(u"Data/bahnakte.dat"_s, !isFile);
        setWritable(u"Data"_s, !isFolder);
        if (areAllFolders) {
            setFoldersWritable(work(), false);
        }
        CatalogueUser user;
        user.search(u"Krokodile"_s, u"Ce 6/8 II"_s);
        QStringList shown;
        for (const EntryBlock *block : user.browser().canvas().blocks()) {
            shown.append(block->card().number + u':' + QString::number(block->card().pictures.size()));
        }
        shown.sort();
        user.shutDown(u"schwarz"_s);
        setFoldersWritable(work(), true);
        ForkedRun::report(shown.join(u' '));
        report(user.takeBoxes().join(u'/'));
    });
    QVERIFY2(end.isGood(), qPrintable(end.description()));
    QCOMPARE(end.lines, QStringList(u"14201:2 14202:1 14203:0"_s));
    QCOMPARE(folderDigest(work()), before);
}

BAHNITO_TEST_MAIN(TestBlockedCatalogue)
#include "tst_blockedcatalogue.moc"
