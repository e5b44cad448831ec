#include "tests/faults/faultfolder.h"
#include "tests/faults/samplecatalogue.h"
#include "tests/faults/trial.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QTest>

#include <cerrno>
#include <csignal>
#include <utility>

using namespace Qt::StringLiterals;
using FailingCalls::Fault;

namespace {

constexpr int QuickStride = 29; // of all faults, the run for every day tries one in so many
constexpr int QuickKillStride = 11;

} // namespace

/// Lets each system call of each thing that a user can save fail or be the last one of the program.
class TestFailingCalls final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
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
    [[nodiscard]] int countCalls(const Trial &trial);
    [[nodiscard]] Outcome runWith(const Trial &trial, const Fault &fault);
    void checkFailure(const Trial &trial, const Fault &fault);
    void checkKill(const Trial &trial, const Fault &fault);
    [[nodiscard]] static Outcome startAgain(const QString &folder, const QString &deleted = {});

    FaultFolder m_folder;
    QList<Trial> m_trials;
    QByteArray m_photographs;
    int m_runs = 0;
    int m_storedInSpiteOfABox = 0;
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
    qInfo("%d faults tried; %d were reported although the change was stored", m_runs, m_storedInSpiteOfABox);
}

void TestFailingCalls::addSteps() const
{
    QTest::addColumn<int>("step");
    for (int i = 0; i < m_trials.size(); ++i) {
        QTest::newRow(qPrintable(m_trials.at(i).step.name)) << i;
    }
}

int TestFailingCalls::countCalls(const Trial &trial)
{
    return int(runWith(trial, {}).log.count('\n'));
}

/// Runs the step with the fault in all clicks that save, and a second time without it if the program lives on.
Outcome TestFailingCalls::runWith(const Trial &trial, const Fault &fault)
{
    ++m_runs;
    const QString folder = work();
    FaultFolder::copy(trial.snapshot, folder);
    return outcomeOf(runForked([&] {
        setSteadyClock();
        QDir::setCurrent(folder);
        CatalogueUser user;
        bool isArmed = false;
        user.setSavingHooks(
            [&] {
                if (!std::exchange(isArmed, true)) {
                    FailingCalls::arm(folder.toUtf8(), fault);
                }
            },
            {});
        trial.step.run(user);
        FailingCalls::disarm();
        Outcome outcome;
        outcome.log = FailingCalls::log();
        outcome.state = catalogueDump(folder, true);
        outcome.boxes = user.takeBoxes();
        outcome.damages = damages(folder, outcome.state == trial.states.first() ? trial.deleted() : QString());
        if (user.isOpen() && fault.mode != FailingCalls::CountOnly) {
            user.setSavingHooks({}, {});
            trial.step.run(user);
            outcome.stateAfterwards = catalogueDump(folder, true);
            outcome.boxesAfterwards = user.takeBoxes();
            outcome.damagesAfterwards = damages(folder);
        }
        reportOutcome(outcome);
    }));
}

void TestFailingCalls::checkFailure(const Trial &trial, const Fault &fault)
{
    const Outcome outcome = runWith(trial, fault);
    const bool isStored = outcome.state == trial.states.last();
    const bool isUnchanged = outcome.state == trial.states.first();
    const char *what = description(fault, outcome);
    // When nothing can be written any more, neither can a group's picture be taken back that the group did not get.
    const bool isBetween = fault.forever && trial.storesPictureFirst() && trial.states.contains(outcome.state);
    QVERIFY2(isStored || isUnchanged || isBetween, what);
    QVERIFY2(outcome.damages.isEmpty(), what);
    QVERIFY2(outcome.damagesAfterwards.isEmpty(), what);
    const auto boxes = int(outcome.boxes.size());
    if (trial.step.name == u"shutDown"_s) {
        QVERIFY2(boxes == 0, what); // lost choices are worth no box
        return;
    }
    QVERIFY2(boxes <= (fault.forever ? trial.attempts() : 1), what);
    QVERIFY2(isStored || boxes >= 1, what);
    m_storedInSpiteOfABox += isStored && boxes > 0 ? 1 : 0;
    QVERIFY2(outcome.boxesAfterwards.isEmpty(), what);
    QVERIFY2(!isUnchanged || outcome.stateAfterwards == trial.states.last(), what);
    QVERIFY2(!isBetween || hasAllLines(outcome.stateAfterwards, trial.states.last()), what);
}

void TestFailingCalls::everyCallCanFail_data()
{
    addSteps();
}

void TestFailingCalls::everyCallCanFail()
{
    QFETCH(const int, step);
    const Trial &trial = m_trials.at(step);
    const int calls = countCalls(trial);
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
    const int calls = countCalls(trial);
    int tried = 0;
    for (int at = 1; at <= calls; ++at) {
        for (const FailingCalls::Mode mode : { FailingCalls::Kill, FailingCalls::KillHalfway }) {
            if (isLongRun() || tried++ % QuickKillStride == step % QuickKillStride) {
                checkKill(trial, { mode, at });
            }
            if (QTest::currentTestFailed()) {
                return;
            }
        }
    }
}

void TestFailingCalls::checkKill(const Trial &trial, const Fault &fault)
{
    ++m_runs;
    const QString folder = work();
    FaultFolder::copy(trial.snapshot, folder);
    const ForkedRun::End end = runForked([&] {
        setSteadyClock();
        QDir::setCurrent(folder);
        CatalogueUser user;
        user.setSavingHooks([&] { FailingCalls::arm(folder.toUtf8(), fault); }, {});
        trial.step.run(user);
    });
    QVERIFY2(!end.timedOut && (end.signal == 0 || end.signal == SIGKILL), qPrintable(end.description()));
    const Outcome outcome = startAgain(folder, trial.deleted());
    const char *what = description(fault, outcome);
    // A killed program takes nothing back: of a step with several commits, some may be there.
    QVERIFY2(trial.states.contains(outcome.state), what);
    QVERIFY2(outcome.boxes.isEmpty(), what);
    QVERIFY2(outcome.damages.isEmpty(), what);
}

/// What the next start finds in `folder`; `deleted` is the number of an entry that was about to be deleted.
Outcome TestFailingCalls::startAgain(const QString &folder, const QString &deleted)
{
    return outcomeOf(runForked([&] {
        QDir::setCurrent(folder);
        CatalogueUser user;
        user.search(u"Krokodile"_s, u"Ce 6/8 II"_s);
        Outcome outcome;
        outcome.state = catalogueDump(folder, true);
        outcome.boxes = user.takeBoxes();
        outcome.damages = damages(folder, deleted);
        reportOutcome(outcome);
    }));
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
    const QString folder = work();
    const auto start = [&folder](const Fault &fault) {
        QDir(folder).removeRecursively();
        QDir().mkpath(folder);
        return runForked([&] {
            QDir::setCurrent(folder);
            FailingCalls::arm(folder.toUtf8(), fault);
            const CatalogueUser user;
            FailingCalls::disarm();
            reportOutcome({ FailingCalls::log(), {}, {}, {}, {}, {}, {} });
        });
    };
    const auto calls = int(outcomeOf(start({})).log.count('\n'));
    const QString whole = catalogueDump(folder, true);
    QCOMPARE(whole.count(u'\n'), 8); // five tables and four settings
    int empty = 0;
    for (int at = 1; at <= calls; ++at) {
        for (const int error : { ENOSPC, EIO, EACCES }) {
            for (const bool forever : { false, true }) {
                if (mode != FailingCalls::Fail && (error != ENOSPC || forever)) {
                    continue;
                }
                if (!isLongRun() && mode == FailingCalls::Fail && (at + error) % 4 != 0) {
                    continue;
                }
                ++m_runs;
                const Fault fault { FailingCalls::Mode(mode), at, error, forever };
                const ForkedRun::End end = start(fault);
                QVERIFY2(!end.timedOut && (end.signal == 0 || end.signal == SIGKILL), qPrintable(end.description()));
                const Outcome outcome = startAgain(folder);
                QVERIFY2(outcome.state.isEmpty() || outcome.state == whole, description(fault, outcome));
                empty += outcome.state.isEmpty() ? 1 : 0;
            }
        }
    }
    qInfo("%d calls; %d faults left an empty catalogue", calls, empty);
}

BAHNITO_TEST_MAIN(TestFailingCalls)
#include "tst_failingcalls.moc"
