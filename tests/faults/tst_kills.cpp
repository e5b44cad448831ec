#include "tests/faults/failingcalls.h"
#include "tests/faults/faultfolder.h"
#include "tests/faults/programrun.h"
#include "tests/faults/samplecatalogue.h"
#include "tests/faults/savingsteps.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>
#include <QVariant>

#include <algorithm>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int LongestStep = 250; // ms; later kills would find the step done
constexpr int LongestStart = 60; // ms, with the end of a user who only looks
constexpr int LongestWait = 60000; // ms, on a machine that does other things too

int commits = 0; // of this process

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

/// What the scripted user has added, in his own words and in his order.
QStringList storedByScript(const QString &folder)
{
    QStringList rows;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"script"_s);
        database.setDatabaseName(folder + u"/Data/bahnakte.dat"_s);
        database.open();
        QSqlQuery query(u"SELECT what || ' ' || number FROM ("
                        "SELECT 'entry' AS what, CAST(nummer AS INTEGER) AS number, 1 AS place FROM loc_seen "
                        "WHERE ort = 'Wassen' UNION ALL "
                        "SELECT 'picture', CAST(s.nummer AS INTEGER), 2 FROM loc_picture AS p "
                        "JOIN loc_seen AS s ON s.id = p.locpictureid WHERE s.ort = 'Wassen' UNION ALL "
                        "SELECT 'class', CAST(substr(modelname, 5) AS INTEGER), 3 FROM loc_model "
                        "WHERE modelname LIKE 'neu %') ORDER BY number, place"_s,
            database);
        while (query.next()) {
            rows.append(query.value(0).toString());
        }
    }
    QSqlDatabase::removeDatabase(u"script"_s);
    return rows;
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
    void killDuring(int step);
    void killWhileItsUserWorks(int longest);
    [[nodiscard]] bool killFirstRun(const QString &folder, bool atTheDatabase);

    FaultFolder m_folder;
    QList<SavingStep> m_steps;
    Reference m_reference;
    QList<int> m_saved; // for each saving click of all steps, the state at its return
    QList<int> m_savingsBefore; // for each step, how many savings there are in the steps before it
    QByteArray m_photographs;
    QRandomGenerator m_random;
    int m_inTheMiddle = 0;
};

void TestKills::initTestCase()
{
    const quint32 seed = isLongRun() ? QRandomGenerator::global()->generate() : 1;
    qInfo("seed %u", seed);
    m_random.seed(seed);
    QVERIFY(runForked([this] {
        makeSampleCatalogue(m_folder.path(u"sample"_s));
        makeSamplePhotographs(m_folder.path(u"photographs"_s));
    }).isGood());
    m_photographs = folderDigest(m_folder.path(u"photographs"_s));
    m_steps = savingSteps(m_folder.path(u"photographs"_s));
    m_reference = makeReference(m_folder.path(u"sample"_s), m_steps, m_folder.path(u"before"_s));
    QVERIFY(m_reference.reached.last() >= m_steps.size());
    noteSavings();
    QVERIFY(m_saved.size() >= m_steps.size());
    QCOMPARE(m_saved.last(), m_reference.reached.last());
}

/// Does all steps once without harm and notes how far the catalogue is when each click that saves has returned.
void TestKills::noteSavings()
{
    const QString folder = m_folder.path(u"work"_s);
    FaultFolder::copy(m_folder.path(u"sample"_s), folder);
    const ForkedRun::End end = runForked([&] {
        setSteadyClock();
        QDir::setCurrent(folder);
        CatalogueUser user;
        FailingCalls::setJournalHook([] { ++commits; });
        int step = 0;
        user.setSavingHooks({}, [&step] { ForkedRun::report(u"%1 %2"_s.arg(step).arg(commits)); });
        for (; step < m_steps.size(); ++step) {
            m_steps.at(step).run(user);
        }
    });
    m_savingsBefore.fill(0, m_steps.size());
    for (const QString &line : end.lines) {
        m_saved.append(line.section(u' ', 1).toInt());
        for (qsizetype later = line.section(u' ', 0, 0).toInt() + 1; later < m_steps.size(); ++later) {
            ++m_savingsBefore[later];
        }
    }
}

void TestKills::killDuring(int step)
{
    const QString folder = m_folder.path(u"work"_s);
    FaultFolder::copy(m_folder.path(u"before/"_s + QString::number(step)), folder);
    ForkedRun program([&] {
        setSteadyClock();
        QDir::setCurrent(folder);
        CatalogueUser user;
        user.setSavingHooks({}, [] { ForkedRun::report(u"saved"_s); });
        ForkedRun::report(u"ready"_s);
        for (int i = step; i < m_steps.size(); ++i) {
            m_steps.at(i).run(user);
        }
    });
    QVERIFY(program.waitForLine(LongestWait));
    usleep(1000 * quint32(m_random.bounded(LongestStep)));
    program.kill();
    const ForkedRun::End end = program.finish(LongestWait);
    const auto savings = m_savingsBefore.at(step) + int(end.lines.size()) - 1;
    const int from = savings == m_savingsBefore.at(step) ? m_reference.before(step) : m_saved.at(savings - 1);
    const int to = m_saved.at(std::min(savings, int(m_saved.size()) - 1));
    const auto next = std::upper_bound(m_savingsBefore.cbegin(), m_savingsBefore.cend(), savings) - 1;
    const SavingStep &interrupted = m_steps.at(next - m_savingsBefore.cbegin());

    const ForkedRun::End again = startAgain(folder, interrupted.mayLoseCopies ? u"14201"_s : QString());
    QVERIFY2(again.isGood(), qUtf8Printable(again.description()));
    const QString state = catalogueDump(folder, true);
    const QStringList allowed = m_reference.states.mid(from, to - from + 1);
    QVERIFY2(allowed.contains(state), qUtf8Printable(interrupted.name + u'\n' + state));
    m_inTheMiddle += state != allowed.first() ? 1 : 0;
    QCOMPARE(again.lines, QStringList());
}

void TestKills::catalogueSurvivesAKillAtAnyMoment()
{
    const int kills = share(100, 1000);
    for (int i = 0; i < kills; ++i) {
        killDuring(int(i % m_steps.size()));
        if (QTest::currentTestFailed()) {
            return;
        }
    }
    QCOMPARE(folderDigest(m_folder.path(u"photographs"_s)), m_photographs);
    qInfo("%d kills; %d found a step stored but not yet reported", kills, m_inTheMiddle);
}

/// The executable itself: killed while it starts, while it stores, and while it closes.
void TestKills::programSurvivesAKillWhileItsUserWorks()
{
    const QString folder = m_folder.path(u"work"_s);
    const QString photograph = m_folder.path(u"photographs/klein.jpg"_s);
    FaultFolder::copy(m_folder.path(u"sample"_s), folder);
    QElapsedTimer timer;
    timer.start();
    const ForkedRun::End whole = runForked([&] { becomeProgram(folder, photograph); });
    const auto longest = int(timer.elapsed());
    QVERIFY2(whole.isGood(), qPrintable(whole.description()));
    QCOMPARE(whole.lines.first(), u"window"_s);
    QCOMPARE(whole.lines.last(), u"closed"_s);
    QCOMPARE(whole.lines.size(), 20); // six evenings with a class, an entry and a picture each
    m_inTheMiddle = 0;
    const int kills = share(30, 300);
    for (int i = 0; i < kills; ++i) {
        killWhileItsUserWorks(longest);
        if (QTest::currentTestFailed()) {
            return;
        }
    }
    qInfo("%d kills in up to %d ms; %d while the user worked", kills, longest, m_inTheMiddle);
    QVERIFY(m_inTheMiddle > kills / 4); // else the moments were chosen badly
}

void TestKills::killWhileItsUserWorks(int longest)
{
    const QString folder = m_folder.path(u"work"_s);
    FaultFolder::copy(m_folder.path(u"sample"_s), folder);
    ForkedRun program([&] { becomeProgram(folder, m_folder.path(u"photographs/klein.jpg"_s)); });
    usleep(1000 * quint32(m_random.bounded(longest)));
    program.kill();
    QStringList said = program.finish(LongestWait).lines;
    const bool isClosed = said.removeAll(u"closed"_s) > 0;
    const auto savings = int(said.removeAll(u"window"_s) > 0 ? said.size() : 0);
    m_inTheMiddle += savings > 0 && !isClosed ? 1 : 0;

    const ForkedRun::End again = runForked([&] { becomeProgram(folder); });
    QVERIFY2(again.isGood(), qPrintable(again.description()));
    QCOMPARE(again.lines, (QStringList { u"window"_s, u"closed"_s }));
    QCOMPARE(damages(folder), QStringList());
    const QStringList stored = storedByScript(folder);
    QVERIFY2(stored.mid(0, savings) == said && stored.size() <= savings + 1,
        qPrintable(said.join(u'/') + u"; stored: "_s + stored.join(u'/')));
}

/// Kills the executable at a moment of its start, or soon after it has made the database file. False if that fails.
bool TestKills::killFirstRun(const QString &folder, bool atTheDatabase)
{
    QDir(folder).removeRecursively();
    QDir().mkpath(folder);
    ForkedRun program([&folder] { becomeProgram(folder, {}); });
    if (atTheDatabase) {
        const QString file = folder + u"/Data/bahnakte.dat"_s;
        for (int i = 0; i < 100 * LongestWait && !QFile::exists(file); ++i) {
            usleep(10);
        }
        usleep(quint32(m_random.bounded(5000)));
    } else {
        usleep(1000 * quint32(m_random.bounded(LongestStart)));
    }
    program.kill();
    return !program.finish(LongestWait).timedOut;
}

/// The one fault that cannot be mended: a program that is killed before its first commit leaves an empty file, which
/// later starts use as it is. It never leaves half of the tables.
void TestKills::firstRunSurvivesAKillAtAnyMoment()
{
    const QString folder = m_folder.path(u"first"_s);
    const int kills = share(30, 300);
    int empty = 0;
    int early = 0;
    for (int i = 0; i < kills; ++i) {
        QVERIFY(killFirstRun(folder, i % 2 == 0));
        const bool hasFile = QFile::exists(folder + u"/Data/bahnakte.dat"_s);
        const ForkedRun::End again = runForked([&folder] { becomeProgram(folder); });
        QVERIFY2(again.isGood(), qUtf8Printable(again.description()));
        QCOMPARE(again.lines, (QStringList { u"window"_s, u"closed"_s }));
        const QString state = catalogueDump(folder, true);
        const bool isEmpty = state.isEmpty() && hasFile;
        QVERIFY2(isEmpty || state.count(u'\n') == 8, qUtf8Printable(state)); // five tables and four settings
        empty += isEmpty ? 1 : 0;
        early += hasFile ? 0 : 1;
    }
    qInfo("%d kills of a first run; %d before there was a file, %d left it empty", kills, early, empty);
    QVERIFY(early < kills);
}

void TestKills::cleanupTestCase()
{
    QCOMPARE(folderDigest(m_folder.path(u"photographs"_s)), m_photographs);
}

BAHNITO_TEST_MAIN(TestKills)
#include "tst_kills.moc"
