#include "tests/faults/faultfolder.h"
#include "tests/faults/samplecatalogue.h"
#include "tests/faults/trial.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <algorithm>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using FailingCalls::Fault;

namespace {

constexpr int QuickStride = 29; // of all faults, the run for every day tries one in so many
constexpr int QuickKillStride = 11;

/// What a first run does when nothing goes wrong, and what was found after those that could not.
struct FirstRun
{
    QString whole; // state of a catalogue with all tables
    int calls = 0;
    int opening = 0; // number of the call that makes the file
    int commit = 0; // number of the call that completes the tables
    int empty = 0; // catalogues left without tables
};

} // namespace

/// Lets each system call of each thing that a user can save fail or be the last one of the program.
class TestFailingCalls final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void aWriteCanEndHalfway();
    void everyCallCanFail_data();
    void everyCallCanFail();
    void everyCallCanBeTheLast_data();
    void everyCallCanBeTheLast();
    void everyCallOfTheFirstRunCanFail_data();
    void everyCallOfTheFirstRunCanFail();
    void cleanupTestCase();

private:
    [[nodiscard]] QString work() const { return m_folder.path(u"work"_s); }
    void addTrials(const QString &sample, const QList<SavingStep> &steps);
    void addSteps() const;
    [[nodiscard]] Outcome runWith(const Trial &trial, const Fault &fault);
    [[nodiscard]] QByteArray callsOf(const Trial &trial);
    void checkFailure(const Trial &trial, const Fault &fault);
    void checkTelling(const Trial &trial, bool forever, const Outcome &outcome);
    void checkKill(const Trial &trial, const Fault &fault, int removal);
    [[nodiscard]] ForkedRun::End startFirst(const Fault &fault) const;
    void checkFirstRun(const Fault &fault);

    FaultFolder m_folder;
    QList<Trial> m_trials;
    QByteArray m_photographs;
    FirstRun m_first;
    int m_failures = 0;
    int m_kills = 0;
    int m_storedInSpiteOfABox = 0;
    int m_pressedAgain = 0;
    int m_lostCopies = 0;
};

void TestFailingCalls::initTestCase()
{
    const QString sample = m_folder.path(u"sample"_s);
    const QString fullStore = m_folder.path(u"full"_s);
    const QString photographs = m_folder.path(u"photographs"_s);
    QVERIFY(runForked([&] {
        makeSampleCatalogue(sample);
        makeSamplePhotographs(photographs);
    }).isGood());
    m_photographs = folderDigest(photographs);
    FaultFolder::copy(sample, fullStore);
    fillStore(fullStore);
    addTrials(sample, savingSteps(photographs));
    addTrials(fullStore, { stepIntoNewFolder(photographs) });
    const QByteArray calls = runWith(m_trials.last(), {}).log;
    QVERIFY2(calls.contains("mkdir Folder003") && calls.contains("mkdir Folder004"), calls.constData());
}

void TestFailingCalls::addTrials(const QString &sample, const QList<SavingStep> &steps)
{
    const QString snapshots = sample + u"-before/"_s;
    const Reference reference = makeReference(sample, steps, snapshots);
    for (int i = 0; i < steps.size(); ++i) {
        const int before = reference.before(i);
        m_trials.append({ steps.at(i), snapshots + QString::number(i),
            reference.states.mid(before, reference.reached.at(i) - before + 1) });
    }
}

void TestFailingCalls::cleanupTestCase()
{
    QCOMPARE(folderDigest(m_folder.path(u"photographs"_s)), m_photographs);
    qInfo("%d failures, %d of them reported although the change was stored, %d got over in the same form", m_failures,
        m_storedInSpiteOfABox, m_pressedAgain);
    qInfo("%d kills; %d faults in its own deletion cost an entry copies", m_kills, m_lostCopies);
}

void TestFailingCalls::addSteps() const
{
    QTest::addColumn<int>("step");
    for (int i = 0; i < m_trials.size(); ++i) {
        QTest::newRow(qPrintable(m_trials.at(i).step.name)) << i;
    }
}

/// Else kills in the middle of a write would be the same as those before it.
void TestFailingCalls::aWriteCanEndHalfway()
{
    QDir().mkpath(work());
    const QByteArray file = (work() + u"/file"_s).toUtf8();
    const ForkedRun::End end = runForked([&] {
        const int fd = open(file.constData(), O_RDWR | O_CREAT, 0600);
        FailingCalls::arm(work().toUtf8(), { FailingCalls::KillHalfway, 1 });
        _exit(int(pwrite(fd, "abcdef", 6, 2)));
    });
    QCOMPARE(end.signal, SIGKILL);
    QFile written(QString::fromUtf8(file));
    QVERIFY(written.open(QIODevice::ReadOnly));
    QCOMPARE(written.readAll(), QByteArray("\0\0abc", 5));
}

/// The log of a run without a fault.
QByteArray TestFailingCalls::callsOf(const Trial &trial)
{
    QByteArray log = runWith(trial, {}).log;
    const qsizetype commits = trial.states.size() - 1;
    [&] { QCOMPARE(log.count("unlink bahnakte.dat-journal"), commits); }(); // it tells of all clicks that save
    return log;
}

Outcome TestFailingCalls::runWith(const Trial &trial, const Fault &fault)
{
    FaultFolder::copy(trial.snapshot, work());
    return outcomeOf(runForked([&] {
        QDir::setCurrent(work());
        reportOutcome(outcomeOfFault(trial, fault));
    }));
}

void TestFailingCalls::checkFailure(const Trial &trial, const Fault &fault)
{
    const Outcome outcome = runWith(trial, fault);
    ++m_failures;
    const bool isStored = outcome.state == trial.states.last();
    const bool isUnchanged = outcome.state == trial.states.first();
    const char *what = description(fault, outcome);
    QVERIFY2(outcome.log.count('\n') >= fault.at, what); // else nothing has failed
    // When nothing can be written any more, neither can a group's picture be taken back that the group did not get.
    const bool isBetween = fault.forever && trial.storesPictureFirst() && trial.states.contains(outcome.state);
    QVERIFY2(isStored || isUnchanged || isBetween, what);
    QVERIFY2(outcome.damages.isEmpty(), what);
    QVERIFY2(outcome.damagesAfterwards.isEmpty(), what);
    m_lostCopies += outcome.lostCopies ? 1 : 0;
    checkTelling(trial, fault.forever, outcome);
    if (trial.step.name == u"shutDown"_s) {
        return;
    }
    const bool triesAgain = trial.step.name.startsWith(u"edit"_s) && !fault.forever; // when its form is closed
    QVERIFY2(!triesAgain || isStored, what);
    QVERIFY2(outcome.boxesAfterwards.isEmpty(), what);
    QVERIFY2(!isUnchanged || outcome.stateAfterwards == trial.states.last(), what);
    QVERIFY2(!isBetween || hasAllLines(outcome.stateAfterwards, trial.states.last()), what);
    m_pressedAgain += outcome.isPressedAgain ? 1 : 0;
}

void TestFailingCalls::checkTelling(const Trial &trial, bool forever, const Outcome &outcome)
{
    const bool isStored = outcome.state == trial.states.last();
    const QString wrong = trial.wrongTelling(outcome.boxes, forever, isStored);
    QVERIFY2(wrong.isEmpty(), qUtf8Printable(wrong));
    const bool wasTold = std::any_of(
        outcome.boxes.cbegin(), outcome.boxes.cend(), [](const QStringList &boxes) { return !boxes.isEmpty(); });
    m_storedInSpiteOfABox += isStored && wasTold && trial.step.furtherTries == 0 ? 1 : 0;
}

void TestFailingCalls::everyCallCanFail_data()
{
    addSteps();
}

void TestFailingCalls::everyCallCanFail()
{
    QFETCH(const int, step);
    const Trial &trial = m_trials.at(step);
    const auto calls = int(callsOf(trial).count('\n'));
    QVERIFY(calls > 5);
    int tried = 0;
    for (int at = 1; at <= calls; ++at) {
        for (const int error : { ENOSPC, EIO, EACCES }) {
            for (const bool forever : { false, true }) {
                if (isLongRun() || tried++ % QuickStride == step % QuickStride) {
                    checkFailure(trial, { FailingCalls::Fail, at, error, forever });
                }
                if (QTest::currentTestFailed()) {
                    return;
                }
            }
        }
    }
}

void TestFailingCalls::everyCallCanBeTheLast_data()
{
    addSteps();
}

void TestFailingCalls::everyCallCanBeTheLast()
{
    QFETCH(const int, step);
    const Trial &trial = m_trials.at(step);
    const QByteArray log = callsOf(trial);
    const auto calls = int(log.count('\n'));
    QVERIFY(!trial.step.mayLoseCopies || firstRemoval(log) > 0);
    int tried = 0;
    for (int at = 1; at <= calls; ++at) {
        for (const FailingCalls::Mode mode : { FailingCalls::Kill, FailingCalls::KillHalfway }) {
            if (isLongRun() || tried++ % QuickKillStride == step % QuickKillStride) {
                checkKill(trial, { mode, at }, firstRemoval(log));
            }
            if (QTest::currentTestFailed()) {
                return;
            }
        }
    }
}

/// `removal` is the number of the call that removes the first copy; 0 when the step removes none.
void TestFailingCalls::checkKill(const Trial &trial, const Fault &fault, int removal)
{
    FaultFolder::copy(trial.snapshot, work());
    const ForkedRun::End end = runForked([&] {
        QDir::setCurrent(work());
        runIntoKill(trial, fault);
    });
    QVERIFY2(!end.timedOut && end.signal == SIGKILL, qPrintable(u"call %1: "_s.arg(fault.at) + end.description()));
    ++m_kills;
    const QString deleted = removal > 0 && removal < fault.at ? trial.deleted() : QString();
    const Outcome outcome = outcomeOf(runForked([&] { reportOutcome(outcomeOfStart(work(), deleted)); }));
    const char *what = description(fault, outcome);
    // A killed program takes nothing back: of a step with several commits, some may be there.
    QVERIFY2(trial.states.contains(outcome.state), what);
    QCOMPARE(outcome.boxes, QList<QStringList>(1));
    QVERIFY2(outcome.damages.isEmpty(), what);
    m_lostCopies += outcome.lostCopies ? 1 : 0;
}

void TestFailingCalls::everyCallOfTheFirstRunCanFail_data()
{
    QTest::addColumn<int>("mode");
    QTest::newRow("with an error") << int(FailingCalls::Fail);
    QTest::newRow("and end the program") << int(FailingCalls::Kill);
    QTest::newRow("and end the program in the middle of it") << int(FailingCalls::KillHalfway);
}

/// A first run that fails may leave an empty catalogue, which later starts use as it is, but never half of the tables.
void TestFailingCalls::everyCallOfTheFirstRunCanFail()
{
    QFETCH(const int, mode);
    const QByteArray log = outcomeOf(startFirst({})).log;
    m_first = { catalogueDump(work(), true), int(log.count('\n')), callNumber(log, "open bahnakte.dat"),
        callNumber(log, "unlink bahnakte.dat-journal"), 0 };
    QCOMPARE(m_first.whole.count(u'\n'), 8); // five tables and four settings
    QVERIFY(m_first.opening > 0 && m_first.opening < m_first.commit && m_first.commit < m_first.calls);
    const bool isKill = mode != FailingCalls::Fail;
    for (int at = 1; at <= m_first.calls; ++at) {
        for (const int error : { ENOSPC, EIO, EACCES }) {
            for (const bool forever : { false, true }) {
                const bool isTried = isKill ? error == ENOSPC && !forever : isLongRun() || (at + error) % 4 == 0;
                if (isTried) {
                    checkFirstRun({ FailingCalls::Mode(mode), at, error, forever });
                }
                if (QTest::currentTestFailed()) {
                    return;
                }
            }
        }
    }
    qInfo("%d calls, from %d to %d without tables; %d faults left an empty catalogue", m_first.calls, m_first.opening,
        m_first.commit, m_first.empty);
}

ForkedRun::End TestFailingCalls::startFirst(const Fault &fault) const
{
    QDir(work()).removeRecursively();
    QDir().mkpath(work());
    return runForked([&] {
        QDir::setCurrent(work());
        FailingCalls::arm(work().toUtf8(), fault);
        const CatalogueUser user;
        FailingCalls::disarm();
        reportOutcome({ FailingCalls::log() });
        _exit(0); // closing the window would write settings into what is left
    });
}

void TestFailingCalls::checkFirstRun(const Fault &fault)
{
    const bool isKill = fault.mode != FailingCalls::Fail;
    const ForkedRun::End end = startFirst(fault);
    QVERIFY2(!end.timedOut && end.signal == (isKill ? SIGKILL : 0), qPrintable(end.description()));
    QVERIFY(isKill || outcomeOf(end).log.count('\n') >= fault.at);
    ++(isKill ? m_kills : m_failures);
    const QString aside = m_folder.path(u"aside"_s); // looking would take back what the next start has to take back
    FaultFolder::copy(work(), aside);
    const bool isEmpty = QFile::exists(aside + u"/Data/bahnakte.dat"_s) && catalogueDump(aside, true).isEmpty();
    const Outcome outcome = outcomeOf(runForked([this] { reportOutcome(outcomeOfStart(work())); }));
    const char *what = description(fault, outcome);
    QVERIFY2(!isEmpty || QFileInfo(aside + u"/Data/bahnakte.dat"_s).size() == 0, what);
    QVERIFY2(outcome.state == (isEmpty ? QString() : m_first.whole), what);
    // Without the file the next start is a first one again, and after the commit all tables are there.
    const bool mayBeEmpty = fault.at > m_first.opening && fault.at <= m_first.commit;
    QVERIFY2(!isEmpty || mayBeEmpty, what);
    QVERIFY2(!isKill || isEmpty == mayBeEmpty, what);
    m_first.empty += isEmpty ? 1 : 0;
}

BAHNITO_TEST_MAIN(TestFailingCalls)
#include "tst_failingcalls.moc"
