#include "search/clock.h"
#include "store/copyfile.h"
#include "tests/faults/faultfolder.h"
#include "tests/faults/forkedrun.h"
#include "tests/faults/randomuser.h"
#include "tests/faults/samplecatalogue.h"
#include "tests/faults/writejournal.h"
#include "tests/support/testmain.h"
#include "tests/support/testpictures.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTest>

#include <functional>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

/// Sets the clock of the process to a fixed day; each look finds it a millisecond later. `collisions` counts the looks
/// at times whose name a copy has already, and has to live as long as the clock.
void setFixedClock(int &collisions)
{
    Clock::setSource([now = QDateTime(QDate(2024, 3, 2), QTime(14, 0)), &collisions]() mutable {
        now = now.addMSecs(1);
        for (const QString &folder : { u"AuxFolder"_s, u"Folder001"_s, u"Folder002"_s }) {
            collisions += isTaken(copyPath(folder, now)) ? 1 : 0;
        }
        return now;
    });
}

/// What the program in a run has reported under `tag`.
QStringList reported(const ForkedRun::End &end, const QString &tag)
{
    QStringList texts;
    for (const QString &line : end.lines) {
        if (line.startsWith(tag + u'\t')) {
            texts.append(line.mid(tag.size() + 1));
        }
    }
    return texts;
}

void report(const QString &tag, const QStringList &texts)
{
    for (const QString &text : texts) {
        ForkedRun::report(tag + u'\t' + text);
    }
}

} // namespace

/// Two windows on one folder.
class TestTwoPrograms final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void randomWorkLosesNothing_data();
    void randomWorkLosesNothing();
    void aCopyIsNeverOverwritten();

private:
    [[nodiscard]] std::function<void()> user(quint32 seed, int duration, bool hasFixedClock) const;
    static void checkProgram(const ForkedRun::End &end);
    void checkRows(const Rows &before, const QStringList &firstJournal, const QStringList &secondJournal) const;

    std::unique_ptr<FaultFolder> m_folder;
    QString m_work;
    QString m_photographs;
};

void TestTwoPrograms::init()
{
    m_folder = std::make_unique<FaultFolder>();
    m_work = m_folder->path(u"work"_s);
    m_photographs = m_folder->path(u"photographs"_s);
    QVERIFY(runForked([this] {
        makeSampleCatalogue(m_work);
        makeSamplePhotographs(m_photographs);
        makeCounter(m_work);
    }).isGood());
}

void TestTwoPrograms::randomWorkLosesNothing_data()
{
    QTest::addColumn<bool>("hasFixedClock"); // so that both programs want the same names for their copies
    QTest::addColumn<int>("seconds");
    QTest::newRow("by the clock on the wall") << false << share(30, 600);
    QTest::newRow("at the same moment") << true << share(15, 300);
}

/// Works for `duration` ms; reports what was done and what is wrong with it.
std::function<void()> TestTwoPrograms::user(quint32 seed, int duration, bool hasFixedClock) const
{
    return [=, this] {
        int collisions = 0;
        if (hasFixedClock) {
            setFixedClock(collisions);
        }
        QDir::setCurrent(m_work);
        RandomUser user(seed, RandomUser::Work, m_photographs);
        user.setHesitation(hasFixedClock ? 100 : 200); // else the two would hardly ever have the same entry open
        keepJournal();
        QElapsedTimer timer;
        timer.start();
        int actions = 0;
        qsizetype beliefs = 0;
        QMap<QString, int> boxes; // by title
        while (timer.elapsed() < duration) {
            user.act();
            ++actions;
            const QList<Belief> fresh = user.takeBeliefs();
            beliefs += fresh.size();
            report(u"finding"_s, disappointments(fresh));
            for (const QString &box : user.takeBoxes()) {
                ++boxes[box.section(u'|', 0, 0)];
            }
        }
        report(u"actions"_s, { QString::number(actions) });
        report(u"collisions"_s, { QString::number(collisions) });
        report(u"beliefs"_s, { QString::number(beliefs) });
        report(u"deed"_s, RandomUser::deedLines(user.deeds()) + RandomUser::deedLines(boxes));
        report(u"write"_s, journal());
    };
}

void TestTwoPrograms::randomWorkLosesNothing()
{
    QFETCH(const bool, hasFixedClock);
    QFETCH(const int, seconds);
    const quint32 seed = testSeed(11);
    const Rows before = rowsOf(m_work);
    ForkedRun first(user(seed, seconds * 1000, hasFixedClock));
    ForkedRun second(user(seed + 1, seconds * 1000, hasFixedClock));
    const ForkedRun::End firstEnd = first.finish(seconds * 1000 + 120000);
    const ForkedRun::End secondEnd = second.finish(seconds * 1000 + 120000);
    checkProgram(firstEnd);
    checkProgram(secondEnd);
    if (QTest::currentTestFailed()) {
        return;
    }
    QCOMPARE(damages(m_work).join(u'\n'), QString());
    checkRows(before, reported(firstEnd, u"write"_s), reported(secondEnd, u"write"_s));
    const int collisions
        = reported(firstEnd, u"collisions"_s).value(0).toInt() + reported(secondEnd, u"collisions"_s).value(0).toInt();
    qInfo("%d colliding names", collisions);
    QCOMPARE(collisions > 0, hasFixedClock);
}

/// What one program can tell by itself.
void TestTwoPrograms::checkProgram(const ForkedRun::End &end)
{
    QVERIFY2(end.isGood(), qPrintable(end.description()));
    const QStringList writes = reported(end, u"write"_s);
    const int actions = reported(end, u"actions"_s).value(0).toInt();
    const int beliefs = reported(end, u"beliefs"_s).value(0).toInt();
    qInfo("%d actions, %d saves without a box; %s; %s", actions, beliefs,
        qPrintable(reported(end, u"deed"_s).join(u", "_s)), qPrintable(kindsOf(writes).join(u", "_s)));
    QCOMPARE(reported(end, u"finding"_s).join(u'\n'), QString());
    QVERIFY(beliefs > actions / 20); // else the programs have hardly met
    QVERIFY(writes.size() >= beliefs);
}

void TestTwoPrograms::checkRows(
    const Rows &before, const QStringList &firstJournal, const QStringList &secondJournal) const
{
    Writes writes;
    QCOMPARE(addWrites(writes, firstJournal), QStringList());
    QCOMPARE(addWrites(writes, secondJournal).join(u'\n'), QString());
    QCOMPARE(writes.lastKey(), int(writes.size()));
    QCOMPARE(counterOf(m_work), int(writes.size()));
    Rows expected = before;
    follow(expected, writes);
    const Rows found = rowsOf(m_work);
    QCOMPARE(found.keys(), expected.keys());
    for (auto row = expected.cbegin(); row != expected.cend(); ++row) {
        QCOMPARE(row.key() + found.value(row.key()), row.key() + row.value());
    }
    QCOMPARE(takenBack(before, writes).join(u'\n'), QString());
}

void TestTwoPrograms::aCopyIsNeverOverwritten()
{
    const QString path = m_folder->path(u"kopie.jpg"_s);
    const QImage mine = testImage({ 30, 20 });
    QVERIFY(writeCopy(mine, path));
    QVERIFY(!writeCopy(testImage({ 60, 40 }), path));
    QCOMPARE(QImage(path).size(), mine.size());
}

BAHNITO_TEST_MAIN(TestTwoPrograms)
#include "tst_twoprograms.moc"
