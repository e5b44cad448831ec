#include "store/database.h"
#include "store/statement.h"
#include "store/transaction.h"
#include "tests/faults/faultfolder.h"
#include "tests/faults/obstacles.h"
#include "tests/faults/samplecatalogue.h"
#include "tests/faults/savingsteps.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTest>
#include <QVariant>

#include <memory>
#include <optional>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int LongestWait = 1500; // ms that the window may stand still
constexpr int LongestStatement = 2500; // ms by the clock, on a machine that does other things too
constexpr int ShortestWait = 800; // ms; what is quicker was not kept waiting by the other program

const QString Read = u"SELECT * FROM sqlite_master"_s; // held on its first row, so that nobody can commit
const QString Write = u"BEGIN IMMEDIATE"_s; // others can read, and nobody can begin to write
const QString Exclude = u"BEGIN EXCLUSIVE"_s; // nobody can even read
const QString Measured = u"measured: "_s; // begins a line that is no finding

/// Has the program give up sooner in the quick run, where it would wait for a minute in all.
void waitLess()
{
    if (!isLongRun()) {
        QSqlQuery(u"PRAGMA busy_timeout = 50"_s);
    }
}

/// Reports a time as a finding when the user would feel it or when it shows that there was nothing to wait for.
void judge(const QString &name, qint64 time)
{
    const bool isRight = time <= LongestStatement && time >= ShortestWait;
    ForkedRun::report(
        (isRight ? Measured : QString()) + name.simplified() + u": "_s + QString::number(time) + u" ms"_s);
}

/// What is wrong; what was merely measured is printed.
QString findings(QStringList lines)
{
    lines.removeIf([](const QString &line) {
        const bool isMeasured = line.startsWith(Measured);
        if (isMeasured) {
            qInfo("%s", qUtf8Printable(line));
        }
        return isMeasured;
    });
    return lines.join(u'\n');
}

/// `work` has to fail.
void judge(const QString &name, const std::function<bool()> &work)
{
    QElapsedTimer timer;
    timer.start();
    if (work()) {
        ForkedRun::report(name + u" succeeded"_s);
    }
    judge(name, timer.elapsed());
}

} // namespace

/// The catalogue that another program reads or writes at the same time: the window waits a little and never long, and
/// everything can be done when the other has finished.
class TestLockedCatalogue final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void everythingIsTriedWhileALockIsHeld();
    void noStatementWaitsLong();
    void noStatementWaitsLongForAReader();
    void noStatementOfTheWindowWaitsLong_data();
    void noStatementOfTheWindowWaitsLong();
    void startsAndEndsOnALockedCatalogue();
    void tablesAreNotMadeWhileAnotherProgramHasTheFile();
    void tablesThatAnotherProgramIsMakingAreKept();

private:
    void tryAll(CatalogueUser &user, bool isLocked) const;
    [[nodiscard]] QString work() const { return m_folder.path(u"work"_s); }

    FaultFolder m_folder;
    QList<SavingStep> m_steps; // without the one that ends the session
    QString m_before; // a catalogue in which all of them can be done
};

void TestLockedCatalogue::initTestCase()
{
    QVERIFY(runForked([this] {
        makeSampleCatalogue(m_folder.path(u"sample"_s));
        makeSamplePhotographs(m_folder.path(u"photographs"_s));
    }).isGood());
    m_steps = savingSteps(m_folder.path(u"photographs"_s));
    QVERIFY(!makeReference(m_folder.path(u"sample"_s), m_steps, m_folder.path(u"before"_s)).states.isEmpty());
    m_steps.removeLast();
    m_before = m_folder.path(u"before/3"_s); // the first group and class have been added, and nothing is gone yet
}

/// Each step once, with its box when it cannot be done and without any when it can.
void TestLockedCatalogue::tryAll(CatalogueUser &user, bool isLocked) const
{
    for (SavingStep step : m_steps) {
        QList<QStringList> boxes;
        user.setSavingHooks({}, [&] { boxes.append(user.takeBoxes()); });
        step.run(user);
        user.setSavingHooks({}, {});
        boxes.append(user.takeBoxes());
        if (!isLocked) {
            step.failureTitle.clear();
        }
        const QString finding = wrongBoxes(step, boxes, { u"database is locked"_s });
        if (!finding.isEmpty()) {
            ForkedRun::report(step.name + u' ' + finding);
        }
    }
}

/// In one session, which then does all of it.
void TestLockedCatalogue::everythingIsTriedWhileALockIsHeld()
{
    const int duration = share(2000, 30000);
    QStringList dumps;
    for (const bool isLocked : { false, true }) {
        FaultFolder::copy(m_before, work());
        const ForkedRun::End end = runForked(
            [&] {
                setSteadyClock();
                QDir::setCurrent(work());
                CatalogueUser user;
                const QString before = catalogueDump(work());
                QElapsedTimer timer;
                if (isLocked) {
                    const OtherProgram other(work(), 10 * duration, Write);
                    waitLess();
                    timer.start();
                    int rounds = 0;
                    for (; timer.elapsed() < duration; ++rounds) {
                        tryAll(user, true);
                    }
                    ForkedRun::report(Measured + u"%1 times all %2 steps"_s.arg(rounds).arg(m_steps.size()));
                    if (catalogueDump(work()) != before) {
                        ForkedRun::report(u"changed: "_s + catalogueDump(work()));
                    }
                }
                tryAll(user, false);
            },
            20 * duration + 60000);
        QVERIFY2(end.isGood(), qPrintable(end.description()));
        QCOMPARE(findings(end.lines), QString());
        QCOMPARE(damages(work()).join(u'\n'), QString());
        dumps.append(catalogueDump(work()));
    }
    QCOMPARE(dumps.at(1), dumps.at(0));
}

void TestLockedCatalogue::noStatementWaitsLong()
{
    FaultFolder::copy(m_folder.path(u"sample"_s), work());
    const OtherProgram other(work(), 30000);
    const ForkedRun::End end = runForked([this] {
        QDir::setCurrent(work());
        if (!connectDatabase()) {
            ForkedRun::report(u"not opened"_s);
        }
        QSqlQuery timeout(u"PRAGMA busy_timeout"_s); // which no busy machine makes longer
        if (!timeout.next() || timeout.value(0).toInt() > LongestWait) {
            ForkedRun::report(u"waits for %1 ms"_s.arg(timeout.value(0).toString()));
        }
        const QStringList statements { u"SELECT * FROM loc_seen"_s, u"UPDATE settings SET value = 1"_s,
            u"DELETE FROM loc_seen WHERE id = 1"_s, u"BEGIN IMMEDIATE"_s };
        for (const QString &statement : statements) {
            judge(statement, [&] { return QSqlQuery().exec(statement); });
        }
        judge(u"executeWrite"_s, [] {
            const WriteOutcome outcome = executeWrite(u"DELETE FROM loc_seen WHERE id = 1"_s);
            return outcome.done || outcome.errorText.isEmpty();
        });
    });
    QVERIFY2(end.isGood(), qPrintable(end.description()));
    QCOMPARE(findings(end.lines), QString());
}

/// Who merely reads lets others begin to write, and keeps them from ending it.
void TestLockedCatalogue::noStatementWaitsLongForAReader()
{
    FaultFolder::copy(m_folder.path(u"sample"_s), work());
    const OtherProgram other(work(), 30000, Read);
    const ForkedRun::End end = runForked([this] {
        QDir::setCurrent(work());
        if (!connectDatabase()) {
            ForkedRun::report(u"not opened"_s);
        }
        Transaction transaction;
        if (!transaction.isOpen() || !runWrite(u"DELETE FROM loc_seen WHERE id = 1"_s).done) {
            ForkedRun::report(u"nothing to commit"_s);
        }
        judge(u"COMMIT"_s, [&] { return transaction.commit(); });
        judge(u"BEGIN EXCLUSIVE"_s, [] { return Transaction(Transaction::Kind::Exclusive).isOpen(); });
    });
    QVERIFY2(end.isGood(), qPrintable(end.description()));
    QCOMPARE(findings(end.lines), QString());
}

void TestLockedCatalogue::noStatementOfTheWindowWaitsLong_data()
{
    QTest::addColumn<QString>("lock");
    QTest::addColumn<int>("step");
    const QStringList quick { u"addGroup"_s, u"addEntry"_s, u"editByClosing"_s, u"deletePicture"_s, u"deleteEntry"_s };
    for (int i = 0; i < m_steps.size(); ++i) {
        const QString name = m_steps.at(i).name;
        if (isLongRun() || quick.contains(name)) {
            QTest::addRow("%s beside a reader", qPrintable(name)) << Read << i;
            QTest::addRow("%s beside a writer", qPrintable(name)) << Write << i;
        }
        if (isLongRun() || name == u"addEntry"_s || name == u"editEntry"_s) {
            QTest::addRow("%s beside one who excludes all", qPrintable(name)) << Exclude << i;
        }
    }
}

void TestLockedCatalogue::noStatementOfTheWindowWaitsLong()
{
    QFETCH(const QString, lock);
    QFETCH(const int, step);
    FaultFolder::copy(m_before, work());
    const ForkedRun::End end = runForked([&] {
        QDir::setCurrent(work());
        CatalogueUser user;
        std::optional<OtherProgram> other;
        std::optional<StatementWatch> watch;
        const auto begin = [&] {
            if (!other) {
                other.emplace(work(), 60000, lock);
                watch.emplace();
            }
        };
        user.setSavingHooks(begin, {}); // beside one who excludes all, no form would open any more
        if (lock != Exclude) {
            begin();
        }
        m_steps.at(step).run(user);
        judge(watch->slowest(), watch->longest());
    });
    QVERIFY2(end.isGood(), qPrintable(end.description()));
    QCOMPARE(findings(end.lines), QString());
}

/// Opening is only reading; the window comes up late and without its rows, and closing it loses no more than choices.
void TestLockedCatalogue::startsAndEndsOnALockedCatalogue()
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

void TestLockedCatalogue::tablesAreNotMadeWhileAnotherProgramHasTheFile()
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
void TestLockedCatalogue::tablesThatAnotherProgramIsMakingAreKept()
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

BAHNITO_TEST_MAIN(TestLockedCatalogue)
#include "tst_lockedcatalogue.moc"
