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
#include <QRandomGenerator>
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

quint32 seedOf(quint32 fixed)
{
    return isLongRun() ? QRandomGenerator::global()->generate() : fixed;
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
    QTest::newRow("at the same moment") << true << share(10, 300);
}

/// Works for `duration` ms; reports the number of actions, that of colliding names, and the journal.
std::function<void()> TestTwoPrograms::user(quint32 seed, int duration, bool hasFixedClock) const
{
    return [=, this] {
        int collisions = 0;
        if (hasFixedClock) {
            setFixedClock(collisions);
        }
        QDir::setCurrent(m_work);
        RandomUser user(seed, RandomUser::Work, m_photographs);
        keepJournal();
        QElapsedTimer timer;
        timer.start();
        int actions = 0;
        while (timer.elapsed() < duration) {
            user.act();
            ++actions;
        }
        ForkedRun::report(QString::number(actions));
        ForkedRun::report(QString::number(collisions));
        reportJournal();
    };
}

void TestTwoPrograms::randomWorkLosesNothing()
{
    QFETCH(const bool, hasFixedClock);
    QFETCH(const int, seconds);
    const quint32 firstSeed = seedOf(11);
    const quint32 secondSeed = seedOf(12);
    qInfo("seeds %u and %u", firstSeed, secondSeed);
    const Rows before = rowsOf(m_work);
    ForkedRun first(user(firstSeed, seconds * 1000, hasFixedClock));
    ForkedRun second(user(secondSeed, seconds * 1000, hasFixedClock));
    const ForkedRun::End firstEnd = first.finish(seconds * 1000 + 120000);
    const ForkedRun::End secondEnd = second.finish(seconds * 1000 + 120000);
    QVERIFY2(firstEnd.isGood(), qPrintable(firstEnd.description()));
    QVERIFY2(secondEnd.isGood(), qPrintable(secondEnd.description()));
    QCOMPARE(damages(m_work).join(u'\n'), QString());
    checkRows(before, firstEnd.lines.mid(2), secondEnd.lines.mid(2));
    const int collisions = firstEnd.lines.value(1).toInt() + secondEnd.lines.value(1).toInt();
    QCOMPARE(collisions > 0, hasFixedClock);
    qInfo("%s and %s actions, %lld and %lld writes, %d colliding names", qPrintable(firstEnd.lines.value(0)),
        qPrintable(secondEnd.lines.value(0)), firstEnd.lines.size() - 2, secondEnd.lines.size() - 2, collisions);
}

void TestTwoPrograms::checkRows(
    const Rows &before, const QStringList &firstJournal, const QStringList &secondJournal) const
{
    QVERIFY(!firstJournal.isEmpty() && !secondJournal.isEmpty()); // both have stored something
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
