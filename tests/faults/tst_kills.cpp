#include "tests/faults/failingcalls.h"
#include "tests/faults/faultfolder.h"
#include "tests/faults/programrun.h"
#include "tests/faults/samplecatalogue.h"
#include "tests/faults/savingsteps.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTest>

#include <csignal>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int LongestWait = 60000; // ms, on a machine that does other things too
constexpr int Savings = 22; // of the scripted user: seven in each of three evenings, and one at the end
constexpr int FirstSteps = 2000; // µs from the database file to its tables, and more

int commits = 0; // of this process

/// A click that saves, done without harm.
struct Saving
{
    int step = 0;
    int state = 0; // of the reference, at its return
    qint64 duration = 0; // µs
};

/// The start of the program after a crash: what is said in it, and then the damages.
ForkedRun::End startAgain(const QString &folder, const QString &deleted = {})
{
    return runForked([&] {
        QDir::setCurrent(folder);
        CatalogueUser user;
        user.search(u"Krokodile"_s, u"Ce 6/8 II"_s);
        const QStringList boxes = user.takeBoxes();
        for (const QString &line : boxes + damages(folder, deleted)) {
            ForkedRun::report(line);
        }
    });
}

} // namespace

/// Kills the program while its user works, and looks at what is left.
class TestKills final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void catalogueSurvivesAKillAtAnyMoment();
    void programSurvivesAKillWhileItsUserWorks();
    void firstRunSurvivesAKillAtAnyMoment();
    void cleanupTestCase();

private:
    void noteSavings();
    void noteScript();
    void doStepsFrom(int step) const;
    void killOften(int kills, const std::function<void(int)> &killOnce);
    [[nodiscard]] bool kill(ForkedRun &program, const Aim &aim, ReportedSavings &reported);
    void checkTally(qsizetype places) const;
    void killDuring(int round);
    void killWhileItsUserWorks(int round);
    void killFirstRun(int round, qint64 longest);
    void checkFirstRun(const QString &folder);
    [[nodiscard]] QString work() const { return m_folder.path(u"work"_s); }
    [[nodiscard]] QString photograph() const { return m_folder.path(u"photographs/klein.jpg"_s); }

    FaultFolder m_folder;
    QByteArray m_photographs;
    QRandomGenerator m_random;
    Tally m_tally;
    QList<SavingStep> m_steps;
    Reference m_reference;
    QList<Saving> m_savings;
    QList<qint64> m_rests; // for each step, the µs from its start to the end of the session
    RunTimes m_script; // of the executable and its scripted user
    QList<QStringList> m_facts; // for each number of savings, what is then in the catalogue
    int m_early = 0; // first runs without a file
    int m_empty = 0; // first runs that left an empty catalogue
};

void TestKills::initTestCase()
{
    m_random.seed(testSeed(1));
    QVERIFY(runForked([this] {
        makeSampleCatalogue(m_folder.path(u"sample"_s));
        makeSamplePhotographs(m_folder.path(u"photographs"_s));
    }).isGood());
    m_photographs = folderDigest(m_folder.path(u"photographs"_s));
    m_steps = savingSteps(m_folder.path(u"photographs"_s));
    m_reference = makeReference(m_folder.path(u"sample"_s), m_steps, m_folder.path(u"before"_s));
    QVERIFY(m_reference.reached.last() >= m_steps.size());
    noteSavings();
    QVERIFY(m_savings.size() >= m_steps.size());
    QCOMPARE(m_savings.last().state, m_reference.reached.last());
}

/// Inside a fork: reports each step, and each saving click as ReportedSavings wants it.
void TestKills::doStepsFrom(int step) const
{
    setSteadyClock();
    QDir::setCurrent(work());
    CatalogueUser user;
    FailingCalls::setJournalHook([] { ++commits; });
    int click = 0;
    user.setSavingHooks([&click] { ForkedRun::report(u"> %1"_s.arg(click)); },
        [&click, &step] {
            ForkedRun::report(QString::number(click++));
            ForkedRun::report(u"= %1 %2"_s.arg(step).arg(commits));
        });
    ForkedRun::report(u"ready"_s);
    for (; step < m_steps.size(); ++step) {
        ForkedRun::report(u"step"_s);
        m_steps.at(step).run(user);
    }
}

/// Does all steps once without harm and notes how far the catalogue is when each click that saves has returned.
void TestKills::noteSavings()
{
    FaultFolder::copy(m_folder.path(u"sample"_s), work());
    ForkedRun program([this] { doStepsFrom(0); });
    const RunTimes times = timesOf(program);
    QVERIFY(times.isGood);
    for (int i = 0; i < times.said.size(); ++i) {
        const QString &line = times.said.at(i);
        if (line == u"step"_s) {
            m_rests.append(times.end - times.lines.at(i));
        } else if (line.startsWith(u'=')) {
            m_savings.append({ line.section(u' ', 1, 1).toInt(), line.section(u' ', 2).toInt(),
                times.lines.at(i) - times.lines.at(i - 2) });
        }
    }
}

void TestKills::killOften(int kills, const std::function<void(int)> &killOnce)
{
    m_tally = {};
    while (m_tally.kills < kills) {
        killOnce(m_tally.kills);
        if (QTest::currentTestFailed()) {
            return;
        }
        QVERIFY(m_tally.tooLate <= kills); // else the moments are chosen badly
    }
    QCOMPARE(folderDigest(m_folder.path(u"photographs"_s)), m_photographs);
    qInfo("%d kills, and %d runs that ended before", m_tally.kills, m_tally.tooLate);
}

/// Whether the moments were chosen well: of the `places` where something is saved each has to be struck.
void TestKills::checkTally(qsizetype places) const
{
    qInfo("%d kills inside the clicks of %lld of %lld savings; %d found it stored but not yet reported",
        m_tally.savings, m_tally.interrupted.size(), places, m_tally.stored);
    QVERIFY(m_tally.savings >= m_tally.kills / 6);
    QVERIFY(m_tally.interrupted.size() >= (isLongRun() ? places : places / 3));
    QVERIFY(m_tally.stored > 0 || !isLongRun());
}

/// False when it had ended by itself, or when the test has failed.
bool TestKills::kill(ForkedRun &program, const Aim &aim, ReportedSavings &reported)
{
    const ForkedRun::End end = killAt(program, aim, m_random);
    const bool isKilled = end.signal == SIGKILL && !end.timedOut;
    m_tally.kills += isKilled ? 1 : 0;
    m_tally.tooLate += end.isGood() ? 1 : 0;
    reported = ReportedSavings(end.lines);
    if (!isKilled && !end.isGood()) {
        QTest::qFail(qUtf8Printable(end.description()), __FILE__, __LINE__); // it has crashed before
    }
    return isKilled;
}

/// Every other time around, a saving click of the step is aimed at, else any moment from the step to the end.
void TestKills::killDuring(int round)
{
    const auto step = int(round % m_steps.size());
    const auto isOfStep = [step](const Saving &saving) { return saving.step >= step; };
    const auto first = std::find_if(m_savings.cbegin(), m_savings.cend(), isOfStep);
    const auto later = std::find_if(first, m_savings.cend(), [&](const Saving &saving) { return saving.step > step; });
    const int click = m_random.bounded(int(later - first));
    // Before a click there are "ready" and "step", and for each one before it three lines.
    const bool isAimed = (round / m_steps.size()) % 2 == 0;
    const Aim aim = isAimed ? Aim { 3 + 3 * click, first[click].duration } : Aim { 1, m_rests.at(step) };
    FaultFolder::copy(m_folder.path(u"before/"_s + QString::number(step)), work());
    ForkedRun program([&] { doStepsFrom(step); });
    ReportedSavings reported;
    if (!kill(program, aim, reported)) {
        return;
    }
    const Saving *next = reported.interrupted.isEmpty() ? nullptr : &first[reported.done.size()];
    const int from = reported.done.isEmpty() ? m_reference.before(step) : first[reported.done.size() - 1].state;
    const int to = next ? next->state : from;
    const SavingStep interrupted = next ? m_steps.at(next->step) : SavingStep();
    const ForkedRun::End again = startAgain(work(), interrupted.mayLoseCopies ? u"14201"_s : QString());
    QVERIFY2(again.isGood(), qUtf8Printable(again.description()));
    const QString state = catalogueDump(work(), true);
    const QStringList allowed = m_reference.states.mid(from, to - from + 1);
    QVERIFY2(allowed.contains(state), qUtf8Printable(interrupted.name + u'\n' + state));
    QCOMPARE(again.lines, QStringList());
    m_tally.note(interrupted.name, state != allowed.first());
}

void TestKills::catalogueSurvivesAKillAtAnyMoment()
{
    killOften(share(20, 1000), [this](int round) { killDuring(round); });
    if (!QTest::currentTestFailed()) {
        checkTally(m_steps.size());
    }
}

void TestKills::noteScript()
{
    FaultFolder::copy(m_folder.path(u"sample"_s), work());
    m_facts = { scriptFacts(work()) };
    ForkedRun program([&] { becomeProgram(work(), photograph()); });
    m_script = timesOf(program);
    QVERIFY(m_script.isGood);
    QCOMPARE(m_script.said.first(), u"window"_s);
    QCOMPARE(m_script.said.last(), u"closed"_s);
    QCOMPARE(m_script.said.size(), 2 * Savings + 1);
    const ReportedSavings reported(m_script.said);
    QCOMPARE(reported.done.size(), Savings - 1);
    QCOMPARE(reported.interrupted, u"close"_s);
    for (const QString &action : reported.done + QStringList(reported.interrupted)) {
        m_facts.append(factsAfter(m_facts.last(), action));
    }
    QCOMPARE(scriptFacts(work()), m_facts.last());
    QCOMPARE(damages(work()), QStringList());
}

/// The executable itself: killed while it starts, while it stores, and while it closes.
void TestKills::programSurvivesAKillWhileItsUserWorks()
{
    noteScript();
    if (QTest::currentTestFailed()) {
        return;
    }
    killOften(share(50, 700), [this](int round) { killWhileItsUserWorks(round); });
    if (!QTest::currentTestFailed()) {
        checkTally(Savings);
    }
}

/// Two of three times a saving is aimed at, one after the other, else any moment of the run.
void TestKills::killWhileItsUserWorks(int round)
{
    FaultFolder::copy(m_folder.path(u"sample"_s), work());
    const auto saving = round % Savings;
    const qsizetype line = 1 + 2 * saving;
    const qint64 duration = m_script.lines.value(line + 1) - m_script.lines.at(line);
    const bool isAimed = round % 3 != 0;
    ForkedRun program([&] { becomeProgram(work(), photograph()); });
    ReportedSavings reported;
    if (!kill(program, isAimed ? Aim { line + 1, duration } : Aim { 0, m_script.end }, reported)) {
        return;
    }
    const ForkedRun::End again = runForked([&] { becomeProgram(work()); });
    QVERIFY2(again.isGood(), qPrintable(again.description()));
    QCOMPARE(again.lines, (QStringList { u"window"_s, u"closed"_s }));
    QCOMPARE(damages(work(), deletedBy(reported.interrupted)), QStringList());
    const QStringList facts = scriptFacts(work());
    const bool isStored = !reported.interrupted.isEmpty() && facts == m_facts.at(reported.done.size() + 1);
    QVERIFY2(isStored || facts == m_facts.at(reported.done.size()),
        qPrintable(reported.done.join(u'/') + u", then "_s + reported.interrupted + u"; "_s + facts.join(u'/')));
    m_tally.note(reported.interrupted, isStored);
}

/// Every other time, soon after the database file is there; else at any moment of the run.
void TestKills::killFirstRun(int round, qint64 longest)
{
    const QString folder = m_folder.path(u"first"_s);
    const QString file = folder + u"/Data/bahnakte.dat"_s;
    QDir(folder).removeRecursively();
    QDir().mkpath(folder);
    ForkedRun program([&folder] { becomeProgram(folder); });
    const bool isAimed = round % 2 == 0;
    for (int i = 0; isAimed && i < 100 * LongestWait && !QFile::exists(file); ++i) {
        usleep(10);
    }
    ReportedSavings nothing;
    if (kill(program, { 0, isAimed ? FirstSteps : longest }, nothing)) {
        checkFirstRun(folder);
    }
}

/// The one fault that cannot be mended: a program that is killed before its first commit leaves an empty file, which
/// later starts use as it is. It never leaves half of the tables.
void TestKills::checkFirstRun(const QString &folder)
{
    const QString file = u"/Data/bahnakte.dat"_s;
    const QString aside = m_folder.path(u"aside"_s); // looking would take back what the next start has to take back
    FaultFolder::copy(folder, aside);
    const bool hasFile = QFile::exists(aside + file);
    const bool isBeforeTheCommit
        = hasFile && (QFileInfo(aside + file).size() == 0 || QFile::exists(aside + file + u"-journal"_s));
    QCOMPARE(hasFile && catalogueDump(aside, true).isEmpty(), isBeforeTheCommit);
    QVERIFY(!isBeforeTheCommit || QFileInfo(aside + file).size() == 0);
    const ForkedRun::End again = runForked([&folder] { becomeProgram(folder); });
    QVERIFY2(again.isGood(), qUtf8Printable(again.description()));
    QCOMPARE(again.lines, (QStringList { u"window"_s, u"closed"_s }));
    const QString state = catalogueDump(folder, true);
    QCOMPARE(state.isEmpty(), isBeforeTheCommit);
    QVERIFY2(isBeforeTheCommit || state.count(u'\n') == 8, qUtf8Printable(state)); // five tables and four settings
    m_empty += isBeforeTheCommit ? 1 : 0;
    m_early += hasFile ? 0 : 1;
}

void TestKills::firstRunSurvivesAKillAtAnyMoment()
{
    const QString folder = m_folder.path(u"first"_s);
    QDir().mkpath(folder);
    ForkedRun whole([&folder] { becomeProgram(folder); });
    const RunTimes times = timesOf(whole);
    QVERIFY(times.isGood);
    const int kills = share(30, 300);
    killOften(kills, [&](int round) { killFirstRun(round, times.end); });
    qInfo("%d of them before there was a file, %d left it empty", m_early, m_empty);
    QVERIFY(m_early + m_empty < kills);
}

void TestKills::cleanupTestCase()
{
    QCOMPARE(folderDigest(m_folder.path(u"photographs"_s)), m_photographs);
}

BAHNITO_TEST_MAIN(TestKills)
#include "tst_kills.moc"
