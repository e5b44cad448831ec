#include "search/clock.h"
#include "store/copyfile.h"
#include "tests/faults/faultfolder.h"
#include "tests/faults/forkedrun.h"
#include "tests/faults/randomuser.h"
#include "tests/faults/samplecatalogue.h"
#include "tests/support/testmain.h"
#include "tests/support/testpictures.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTest>

using namespace Qt::StringLiterals;

/// Two windows on one folder.
class TestTwoPrograms final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void randomWorkLosesNothing();
    void aCopyIsNeverOverwritten();

private:
    FaultFolder m_folder;
};

void TestTwoPrograms::randomWorkLosesNothing()
{
    const QString work = m_folder.path(u"work"_s);
    const QString photographs = m_folder.path(u"photographs"_s);
    const int duration = share(12, 600) * 1000;
    QVERIFY(runForked([&] {
        makeSampleCatalogue(work);
        makeSamplePhotographs(photographs);
    }).isGood());
    const auto useFor = [&](quint32 seed) {
        return [&, seed] {
            QDir::setCurrent(work);
            RandomUser user(seed, RandomUser::Work, photographs);
            QElapsedTimer timer;
            timer.start();
            int actions = 0;
            while (timer.elapsed() < duration) {
                user.act();
                ++actions;
            }
            ForkedRun::report(QString::number(actions));
        };
    };
    ForkedRun first(useFor(11));
    ForkedRun second(useFor(12));
    const ForkedRun::End firstEnd = first.finish(duration + 120000);
    const ForkedRun::End secondEnd = second.finish(duration + 120000);
    QVERIFY2(firstEnd.isGood(), qPrintable(firstEnd.description()));
    QVERIFY2(secondEnd.isGood(), qPrintable(secondEnd.description()));
    QStringList findings = damages(work);
    // An entry that one deletes while the other adds a picture to it leaves the picture without an entry.
    findings.removeIf([](const QString &finding) { return finding.endsWith(u"die Zeile in loc_seen fehlt"_s); });
    QCOMPARE(findings, QStringList());
    qInfo("%s and %s actions", qPrintable(firstEnd.lines.value(0)), qPrintable(secondEnd.lines.value(0)));
}

void TestTwoPrograms::aCopyIsNeverOverwritten()
{
    const QString path = m_folder.path(u"kopie.jpg"_s);
    const QImage mine = testImage({ 30, 20 });
    QVERIFY(writeCopy(mine, path));
    QVERIFY(!writeCopy(testImage({ 60, 40 }), path));
    QCOMPARE(QImage(path).size(), mine.size());
}

BAHNITO_TEST_MAIN(TestTwoPrograms)
#include "tst_twoprograms.moc"
