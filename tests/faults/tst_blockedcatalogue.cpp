#include "search/clock.h"
#include "store/database.h"
#include "store/statement.h"
#include "tests/faults/failingcalls.h"
#include "tests/faults/faultfolder.h"
#include "tests/faults/forkedrun.h"
#include "tests/faults/samplecatalogue.h"
#include "tests/faults/savingsteps.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTest>

#include <cerrno>

#include <unistd.h>

using namespace Qt::StringLiterals;
using FailingCalls::Fault;

namespace {

constexpr int LongestStatement = 1500; // ms that the window may stand still

/// Has the program give up sooner in the quick run, where it would wait for a minute in all. How long it really waits
/// is another test's claim.
void waitLess()
{
    if (!isLongRun()) {
        QSqlQuery(u"PRAGMA busy_timeout = 50"_s);
    }
}

/// Another program that has the catalogue for itself, or has read a part of it, until it is told to give it back or has
/// had it long enough.
class OtherProgram final
{
public:
    OtherProgram(const QString &folder, int holds, const QString &statement = u"BEGIN EXCLUSIVE"_s)
        : m_run([folder, holds, statement] {
            QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"other"_s);
            database.setDatabaseName(folder + u"/Data/bahnakte.dat"_s);
            QSqlQuery query(database.open() ? database : QSqlDatabase());
            ForkedRun::report(query.exec(statement) ? u"locked"_s : query.lastError().text());
            usleep(1000U * quint32(holds));
        })
    {
        if (!m_run.waitForLine(10000)) {
            qFatal("the other program does not start");
        }
    }

private:
    ForkedRun m_run;
};

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
    void readOnlyFileOrFolder_data() { addSteps(); }
    void readOnlyFileOrFolder();
    void lockedByAnotherProgram_data() { addSteps(); }
    void lockedByAnotherProgram();
    void readByAnotherProgram_data() { addSteps(); }
    void readByAnotherProgram();
    void noStatementWaitsLong();
    void startsAndEndsOnALockedCatalogue();
    void tablesAreNotMadeWhileAnotherProgramHasTheFile();
    void tablesThatAnotherProgramIsMakingAreKept();

private:
    void addSteps() const;
    void check(int step, const std::function<void()> &block, const std::function<void()> &unblock);
    [[nodiscard]] QString work() const { return m_folder.path(u"work"_s); }

    FaultFolder m_folder;
    QList<SavingStep> m_steps;
    Reference m_reference;
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

/// Does the step while the catalogue is blocked and, in the same session, once more when it is not.
void TestBlockedCatalogue::check(int step, const std::function<void()> &block, const std::function<void()> &unblock)
{
    const QString folder = work();
    FaultFolder::copy(m_folder.path(u"before/"_s + QString::number(step)), folder);
    const ForkedRun::End end = runForked([&] {
        setSteadyClock();
        QDir::setCurrent(folder);
        const SavingStep &action = m_steps.at(step);
        CatalogueUser user;
        bool isBlocked = false;
        user.setSavingHooks(
            [&] {
                if (!std::exchange(isBlocked, true)) {
                    block();
                }
            },
            {});
        action.run(user);
        unblock();
        const QStringList boxes = user.takeBoxes();
        const bool isEnd = !user.isOpen();
        const bool hasReason = boxes.value(0).section(u'|', 1).size() > 5;
        // While nothing can be read, an entry counts as gone: then nothing is asked and nothing deleted.
        const bool countsAsGone = qstrcmp(QTest::currentTestFunction(), "lockedByAnotherProgram") == 0
            && qstrcmp(QTest::currentDataTag(), "deleteEntry") == 0;
        const bool isOneBox = isEnd || countsAsGone ? boxes.isEmpty() : hasReason;
        if (!isOneBox || boxes.size() > 3 || boxes.count(boxes.value(0)) != boxes.size()) {
            ForkedRun::report(u"boxes: "_s + boxes.join(u'/'));
        }
        if (catalogueDump(folder, true) != m_reference.states.at(m_reference.before(step))) {
            ForkedRun::report(u"changed: "_s + catalogueDump(folder, true));
        }
        for (const QString &damage : damages(folder)) {
            ForkedRun::report(damage);
        }
        if (isEnd) {
            return;
        }
        user.setSavingHooks({}, {});
        action.run(user);
        if (catalogueDump(folder, true) != m_reference.states.at(m_reference.reached.at(step))) {
            ForkedRun::report(u"not done afterwards: "_s + user.takeBoxes().join(u'/') + catalogueDump(folder, true));
        }
    });
    QVERIFY2(end.isGood(), qPrintable(end.description()));
    QCOMPARE(end.lines.join(u'\n'), QString());
}

void TestBlockedCatalogue::fullDisk_data()
{
    QTest::addColumn<int>("step");
    QTest::addColumn<int>("room");
    for (int i = 0; i < m_steps.size(); ++i) {
        for (const int room : { 0, 700, 9000 }) { // bytes: not even a journal; a part of it; the journal but no more
            const bool isPicture = m_steps.at(i).name.startsWith(u"addP"_s);
            if (room == 0 || isPicture || isLongRun()) {
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
    check(
        step,
        [&] {
            FailingCalls::arm(folder, { FailingCalls::FillDisk, room });
        },
        [] { FailingCalls::disarm(); });
}

void TestBlockedCatalogue::readOnlyFileOrFolder()
{
    QFETCH(const int, step);
    const QByteArray folder = work().toUtf8();
    check(
        step,
        [&] {
            FailingCalls::arm(folder, { FailingCalls::Fail, 1, EACCES, true });
        },
        [] { FailingCalls::disarm(); });
}

void TestBlockedCatalogue::lockedByAnotherProgram()
{
    QFETCH(const int, step);
    std::unique_ptr<OtherProgram> other;
    check(
        step,
        [&] {
            other = std::make_unique<OtherProgram>(work(), 30000);
            waitLess();
        },
        [&] { other.reset(); });
}

/// Everything can be read and every transaction begun, but none of them committed.
void TestBlockedCatalogue::readByAnotherProgram()
{
    QFETCH(const int, step);
    std::unique_ptr<OtherProgram> other;
    check(
        step,
        [&] {
            other = std::make_unique<OtherProgram>(work(), 30000, u"SELECT * FROM sqlite_master"_s);
            waitLess();
        },
        [&] { other.reset(); });
}

void TestBlockedCatalogue::noStatementWaitsLong()
{
    FaultFolder::copy(m_folder.path(u"sample"_s), work());
    const OtherProgram other(work(), 30000);
    const ForkedRun::End end = runForked([this] {
        QDir::setCurrent(work());
        if (!connectDatabase()) {
            ForkedRun::report(u"not opened"_s);
        }
        const QStringList statements { u"SELECT * FROM loc_seen"_s, u"UPDATE settings SET value = 1"_s,
            u"DELETE FROM loc_seen WHERE id = 1"_s, u"BEGIN IMMEDIATE"_s };
        for (const QString &statement : statements) {
            QElapsedTimer timer;
            timer.start();
            QSqlQuery query;
            if (query.exec(statement) || timer.elapsed() > LongestStatement) {
                ForkedRun::report(u"%1: %2 ms"_s.arg(statement, QString::number(timer.elapsed())));
            }
        }
        QElapsedTimer timer;
        timer.start();
        const WriteOutcome outcome = executeWrite(u"DELETE FROM loc_seen WHERE id = 1"_s);
        if (outcome.done || outcome.errorText.isEmpty() || timer.elapsed() > LongestStatement) {
            ForkedRun::report(u"executeWrite: %1 ms"_s.arg(timer.elapsed()));
        }
    });
    QVERIFY(end.isGood());
    QCOMPARE(end.lines.join(u'\n'), QString());
}

/// Opening is only reading; the window comes up late and without its rows, and closing it loses no more than choices.
void TestBlockedCatalogue::startsAndEndsOnALockedCatalogue()
{
    FaultFolder::copy(m_folder.path(u"sample"_s), work());
    const QString before = catalogueDump(work(), true);
    {
        const OtherProgram other(work(), 60000);
        const ForkedRun::End end = runForked([this] {
            QDir::setCurrent(work());
            CatalogueUser user;
            waitLess();
            user.shutDown(u"schwarz"_s);
            ForkedRun::report(user.takeBoxes().join(u'/'));
        });
        QVERIFY2(end.isGood(), qPrintable(end.description()));
        QCOMPARE(end.lines.join(QString()), QString());
    }
    QCOMPARE(catalogueDump(work(), true), before);
}

void TestBlockedCatalogue::tablesAreNotMadeWhileAnotherProgramHasTheFile()
{
    FaultFolder::copy(m_folder.path(u"sample"_s), work());
    const QString before = catalogueDump(work(), true);
    {
        const OtherProgram other(work(), 60000);
        QVERIFY(runForked([this] {
            QDir::setCurrent(work());
            if (connectDatabase()) {
                createTables();
            }
        }).isGood());
    }
    QCOMPARE(catalogueDump(work(), true), before);
}

/// Two programs started at once on a new folder: the second has found the file empty, the first commits its tables.
void TestBlockedCatalogue::tablesThatAnotherProgramIsMakingAreKept()
{
    FaultFolder::copy(m_folder.path(u"sample"_s), work());
    QVERIFY(QFile::resize(work() + u"/Data/bahnakte.dat"_s, 0));
    ForkedRun other([this] {
        QDir::setCurrent(work());
        const bool isReady = connectDatabase() && QSqlQuery().exec(u"BEGIN IMMEDIATE"_s)
            && QSqlQuery().exec(u"CREATE TABLE locomotive (name)"_s)
            && QSqlQuery().exec(u"INSERT INTO locomotive VALUES ('Krokodile')"_s);
        ForkedRun::report(isReady ? u"making"_s : u"failed"_s);
        usleep(300000); // within the time that the second program waits
        ForkedRun::report(QSqlQuery().exec(u"COMMIT"_s) ? u"made"_s : u"failed"_s);
    });
    QVERIFY(other.waitForLine(10000));
    const ForkedRun::End end = runForked([this] {
        QDir::setCurrent(work());
        if (connectDatabase()) {
            ForkedRun::report(isDatabaseEmpty() ? u"empty"_s : u"filled"_s);
            createTables(Existing::Keep);
        }
        QSqlQuery query(u"SELECT COUNT(*) FROM locomotive"_s);
        ForkedRun::report(query.next() ? query.value(0).toString() : query.lastError().text());
    });
    QCOMPARE(other.finish(10000).lines, QStringList({ u"making"_s, u"made"_s }));
    QCOMPARE(end.lines, QStringList({ u"empty"_s, u"1"_s }));
}

BAHNITO_TEST_MAIN(TestBlockedCatalogue)
#include "tst_blockedcatalogue.moc"
