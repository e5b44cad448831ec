#include "tests/faults/failingcalls.h"
#include "tests/faults/faultfolder.h"
#include "tests/faults/forkedrun.h"
#include "tests/faults/samplecatalogue.h"
#include "tests/faults/savingsteps.h"
#include "tests/support/testmain.h"

#include <QDataStream>
#include <QDir>
#include <QTest>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

using namespace Qt::StringLiterals;
using FailingCalls::Fault;

namespace {

/// What is left after a fault and, where the session went on, after the same thing was done once more.
struct Outcome
{
    QByteArray log; // of the calls
    QString state;
    QStringList boxes;
    QStringList damages;
    QString stateAfterwards;
    QStringList boxesAfterwards;
};

constexpr int QuickStride = 29; // of all faults, the run for every day tries one in so many
constexpr int QuickKillStride = 11;

void report(const Outcome &outcome)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << outcome.log << outcome.state << outcome.boxes << outcome.damages << outcome.stateAfterwards
           << outcome.boxesAfterwards;
    ForkedRun::report(QString::fromLatin1(bytes.toBase64()));
}

Outcome outcomeOf(const ForkedRun::End &end)
{
    if (!end.isGood() || end.lines.size() != 1) {
        qFatal("%s", qUtf8Printable(end.description()));
    }
    QDataStream stream(QByteArray::fromBase64(end.lines.first().toLatin1()));
    Outcome outcome;
    stream >> outcome.log >> outcome.state >> outcome.boxes >> outcome.damages >> outcome.stateAfterwards
        >> outcome.boxesAfterwards;
    return outcome;
}

const char *description(const Fault &fault, const Outcome &outcome)
{
    static QByteArray text;
    text = u"mode %1, call %2 (%5), error %3%4; boxes: %6; damages: %7; state:\n%8\nafterwards:\n%9\n"_s
               .arg(QString::number(fault.mode), QString::number(fault.at),
                   QString::fromUtf8(std::strerror(fault.error)), fault.forever ? u" for ever"_s : QString(),
                   QString::fromUtf8(outcome.log.split('\n').value(fault.at - 1)), outcome.boxes.join(u" / "_s),
                   outcome.damages.join(u" / "_s), outcome.state, outcome.stateAfterwards)
               .toUtf8()
        + outcome.boxesAfterwards.join(u" / "_s).toUtf8();
    return text.constData();
}

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
    void addSteps() const;
    [[nodiscard]] int countCalls(int step);
    [[nodiscard]] Outcome runWith(int step, const Fault &fault);
    void checkFailure(int step, const Fault &fault);
    void checkKill(int step, const Fault &fault);
    [[nodiscard]] static Outcome startAgain(const QString &folder);
    [[nodiscard]] QStringList statesOf(int step) const;

    FaultFolder m_folder;
    QList<SavingStep> m_steps;
    Reference m_reference;
    QByteArray m_photographs;
    int m_runs = 0;
    int m_storedInSpiteOfABox = 0;
};

void TestFailingCalls::initTestCase()
{
    QVERIFY(runForked([this] {
        makeSampleCatalogue(m_folder.path(u"sample"_s));
        makeSamplePhotographs(m_folder.path(u"photographs"_s));
    }).isGood());
    m_photographs = folderDigest(m_folder.path(u"photographs"_s));
    m_steps = savingSteps(m_folder.path(u"photographs"_s));
    m_reference = makeReference(m_folder.path(u"sample"_s), m_steps, m_folder.path(u"before"_s));
}

void TestFailingCalls::cleanupTestCase()
{
    QCOMPARE(folderDigest(m_folder.path(u"photographs"_s)), m_photographs);
    qInfo("%d faults tried; %d were reported although the change was stored", m_runs, m_storedInSpiteOfABox);
}

void TestFailingCalls::addSteps() const
{
    QTest::addColumn<int>("step");
    for (int i = 0; i < m_steps.size(); ++i) {
        QTest::newRow(qPrintable(m_steps.at(i).name)) << i;
    }
}

/// The committed states from just before the step to its end.
QStringList TestFailingCalls::statesOf(int step) const
{
    const int before = m_reference.before(step);
    return m_reference.states.mid(before, m_reference.reached.at(step) - before + 1);
}

int TestFailingCalls::countCalls(int step)
{
    return int(runWith(step, {}).log.count('\n'));
}

/// Runs the step with the fault in all clicks that save, and a second time without it if the program lives on.
Outcome TestFailingCalls::runWith(int step, const Fault &fault)
{
    ++m_runs;
    const QString folder = work();
    FaultFolder::copy(m_folder.path(u"before/"_s + QString::number(step)), folder);
    return outcomeOf(runForked([&] {
        setSteadyClock();
        QDir::setCurrent(folder);
        const SavingStep &action = m_steps.at(step);
        CatalogueUser user;
        bool isArmed = false;
        user.setSavingHooks(
            [&] {
                if (!std::exchange(isArmed, true)) {
                    FailingCalls::arm(folder.toUtf8(), fault);
                }
            },
            {});
        action.run(user);
        FailingCalls::disarm();
        Outcome outcome { FailingCalls::log(), catalogueDump(folder, true), user.takeBoxes(), damages(folder), {}, {} };
        if (user.isOpen() && fault.mode != FailingCalls::CountOnly) {
            user.setSavingHooks({}, {});
            action.run(user);
            outcome.stateAfterwards = catalogueDump(folder, true);
            outcome.boxesAfterwards = user.takeBoxes();
        }
        report(outcome);
    }));
}

void TestFailingCalls::checkFailure(int step, const Fault &fault)
{
    const Outcome outcome = runWith(step, fault);
    const QStringList states = statesOf(step);
    const SavingStep &action = m_steps.at(step);
    const bool isStored = outcome.state == states.last();
    const bool isUnchanged = outcome.state == states.first();
    const char *what = description(fault, outcome);
    QVERIFY2(states.contains(outcome.state), what);
    const bool mayLose = action.mayLoseCopies && isUnchanged;
    for (const QString &damage : outcome.damages) {
        QVERIFY2(mayLose && damage.endsWith(u"fehlt"_s), what);
    }
    const auto boxes = int(outcome.boxes.size());
    if (action.name == u"shutDown"_s) {
        QVERIFY2(boxes == 0, what); // lost choices are worth no box
        return;
    }
    QVERIFY2(boxes <= (fault.forever ? 3 : 1), what); // "Speichern" may fail, and then "Schliessen" twice
    QVERIFY2(boxes >= (isStored ? 0 : 1), what);
    m_storedInSpiteOfABox += isStored && boxes > 0 ? 1 : 0;
    QVERIFY2(outcome.boxesAfterwards.isEmpty(), what);
    if (isUnchanged) {
        QVERIFY2(outcome.stateAfterwards == states.last(), what);
    }
}

void TestFailingCalls::everyCallCanFail_data()
{
    addSteps();
}

void TestFailingCalls::everyCallCanFail()
{
    QFETCH(const int, step);
    const int calls = countCalls(step);
    QVERIFY(calls > 5);
    int tried = 0;
    for (int at = 1; at <= calls; ++at) {
        for (const int error : { ENOSPC, EIO, EACCES }) {
            for (const bool forever : { false, true }) {
                if (isLongRun() || tried++ % QuickStride == step % QuickStride) {
                    checkFailure(step, { FailingCalls::Fail, at, error, forever });
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
    const int calls = countCalls(step);
    int tried = 0;
    for (int at = 1; at <= calls; ++at) {
        for (const FailingCalls::Mode mode : { FailingCalls::Kill, FailingCalls::KillHalfway }) {
            if (isLongRun() || tried++ % QuickKillStride == step % QuickKillStride) {
                checkKill(step, { mode, at });
            }
            if (QTest::currentTestFailed()) {
                return;
            }
        }
    }
}

void TestFailingCalls::checkKill(int step, const Fault &fault)
{
    ++m_runs;
    const QString folder = work();
    FaultFolder::copy(m_folder.path(u"before/"_s + QString::number(step)), folder);
    const ForkedRun::End end = runForked([&] {
        setSteadyClock();
        QDir::setCurrent(folder);
        CatalogueUser user;
        user.setSavingHooks([&] { FailingCalls::arm(folder.toUtf8(), fault); }, {});
        m_steps.at(step).run(user);
    });
    QVERIFY2(!end.timedOut && (end.signal == 0 || end.signal == SIGKILL), qPrintable(end.description()));
    const Outcome outcome = startAgain(folder);
    const QStringList states = statesOf(step);
    const char *what = description(fault, outcome);
    QVERIFY2(states.contains(outcome.state), what);
    QVERIFY2(outcome.boxes.isEmpty(), what);
    const bool mayLose = m_steps.at(step).mayLoseCopies && outcome.state == states.first();
    for (const QString &damage : outcome.damages) {
        QVERIFY2(mayLose && damage.endsWith(u"fehlt"_s), what);
    }
}

/// What the next start finds in `folder`.
Outcome TestFailingCalls::startAgain(const QString &folder)
{
    return outcomeOf(runForked([&folder] {
        QDir::setCurrent(folder);
        CatalogueUser user;
        user.search(u"Krokodile"_s, u"Ce 6/8 II"_s);
        report({ {}, catalogueDump(folder, true), user.takeBoxes(), damages(folder), {}, {} });
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
            report({ FailingCalls::log(), {}, {}, {}, {}, {} });
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
