#include "tests/faults/faultfolder.h"
#include "tests/faults/forkedrun.h"
#include "tests/faults/samplecatalogue.h"
#include "tests/faults/savingsteps.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QRandomGenerator>
#include <QTest>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int LongestStep = 250; // ms; later kills would find the step done

} // namespace

/// Kills the program while its user works, and looks at what is left.
class TestKills final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void catalogueSurvivesAKillAtAnyMoment();
    void firstRunSurvivesAKillAtAnyMoment();
    void cleanupTestCase();

private:
    void killDuring(int step);
    [[nodiscard]] ForkedRun::End startAgain(const QString &folder);

    FaultFolder m_folder;
    QList<SavingStep> m_steps;
    Reference m_reference;
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
}

/// Starts the program in `folder` as after a crash; reports the damages.
ForkedRun::End TestKills::startAgain(const QString &folder)
{
    return runForked([&folder] {
        QDir::setCurrent(folder);
        CatalogueUser user;
        user.search(u"Krokodile"_s, u"Ce 6/8 II"_s);
        const QStringList boxes = user.takeBoxes();
        for (const QString &line : boxes + damages(folder)) {
            ForkedRun::report(line);
        }
    });
}

void TestKills::killDuring(int step)
{
    const QString folder = m_folder.path(u"work"_s);
    FaultFolder::copy(m_folder.path(u"before/"_s + QString::number(step)), folder);
    ForkedRun program([&] {
        setSteadyClock();
        QDir::setCurrent(folder);
        CatalogueUser user;
        ForkedRun::report(u"ready"_s);
        for (int i = step; i < m_steps.size(); ++i) {
            m_steps.at(i).run(user);
            ForkedRun::report(m_steps.at(i).name);
        }
    });
    QVERIFY(program.waitForLine(30000));
    usleep(1000 * quint32(m_random.bounded(LongestStep)));
    program.kill();
    const ForkedRun::End end = program.finish(30000);
    const auto done = int(end.lines.size()) - 1; // steps whose saving had returned
    const int next = std::min(step + done, int(m_steps.size()) - 1);

    const ForkedRun::End again = startAgain(folder);
    QVERIFY2(again.isGood(), qUtf8Printable(again.description()));
    const QString state = catalogueDump(folder, true);
    QStringList allowed = m_reference.states.mid(
        m_reference.before(step + done), m_reference.reached.at(next) - m_reference.before(step + done) + 1);
    QVERIFY2(allowed.contains(state), qUtf8Printable(m_steps.at(next).name + u'\n' + state));
    m_inTheMiddle += state != allowed.first() ? 1 : 0;
    QStringList lines = again.lines;
    if (m_steps.at(next).mayLoseCopies) {
        lines.removeIf([](const QString &line) { return line.endsWith(u"fehlt"_s); });
    }
    QCOMPARE(lines, QStringList());
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

/// The one fault that cannot be mended: a program that is killed before its first commit leaves an empty file, which
/// later starts use as it is. It never leaves half of the tables.
void TestKills::firstRunSurvivesAKillAtAnyMoment()
{
    const int kills = share(30, 300);
    int empty = 0;
    for (int i = 0; i < kills; ++i) {
        const QString folder = m_folder.path(u"first"_s);
        QDir(folder).removeRecursively();
        QDir().mkpath(folder);
        ForkedRun program([&folder] {
            QDir::setCurrent(folder);
            CatalogueUser user;
        });
        usleep(200 * quint32(m_random.bounded(200)));
        program.kill();
        QVERIFY(!program.finish(30000).timedOut);
        const bool hasFile = QFile::exists(folder + u"/Data/bahnakte.dat"_s);
        const ForkedRun::End again = runForked([&folder] {
            QDir::setCurrent(folder);
            CatalogueUser user;
        });
        QVERIFY2(again.isGood(), qUtf8Printable(again.description()));
        const QString state = catalogueDump(folder, true);
        const bool isEmpty = state.isEmpty() && hasFile;
        QVERIFY2(isEmpty || state.count(u'\n') == 8, qUtf8Printable(state)); // five tables and four settings
        empty += isEmpty ? 1 : 0;
    }
    qInfo("%d kills of a first run; %d left an empty database file", kills, empty);
}

void TestKills::cleanupTestCase()
{
    QCOMPARE(folderDigest(m_folder.path(u"photographs"_s)), m_photographs);
}

BAHNITO_TEST_MAIN(TestKills)
#include "tst_kills.moc"
