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
#include <QMap>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

const QStringList Tables { u"locomotive"_s, u"loc_model"_s, u"loc_seen"_s, u"loc_picture"_s };

/// Has this program's own connection note which rows it stores and deletes. A rollback takes its notes back, too.
void keepJournal()
{
    QSqlQuery query;
    bool isKept = query.exec(u"CREATE TEMP TABLE journal (line TEXT, step INTEGER)"_s);
    for (const QString &table : Tables) {
        isKept = isKept
            && query.exec(u"CREATE TEMP TRIGGER %1_stored AFTER INSERT ON main.%1 BEGIN "
                          "INSERT INTO journal VALUES ('%1 '||NEW.id, 1); END"_s.arg(table))
            && query.exec(u"CREATE TEMP TRIGGER %1_deleted AFTER DELETE ON main.%1 BEGIN "
                          "INSERT INTO journal VALUES ('%1 '||OLD.id, -1); END"_s.arg(table));
    }
    if (!isKept) {
        qFatal("no journal");
    }
}

void reportJournal()
{
    QSqlQuery query(u"SELECT line, SUM(step) FROM journal GROUP BY line"_s);
    while (query.next()) {
        ForkedRun::report(query.value(0).toString() + u' ' + query.value(1).toString());
    }
}

/// Table and id of every row, each counted once.
QMap<QString, int> rowsOf(const QString &folder)
{
    QMap<QString, int> rows;
    const QString name = u"rows"_s;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, name);
        database.setDatabaseName(folder + u"/Data/bahnakte.dat"_s);
        if (!database.open()) {
            qFatal("the catalogue could not be opened");
        }
        for (const QString &table : Tables) {
            QSqlQuery query(u"SELECT id FROM "_s + table, database);
            while (query.next()) {
                rows.insert(table + u' ' + query.value(0).toString(), 1);
            }
        }
    }
    QSqlDatabase::removeDatabase(name);
    return rows;
}

/// Adds what a program has reported; rows that are neither new nor there any more are left out.
void follow(QMap<QString, int> &rows, const QStringList &journal)
{
    for (const QString &line : journal) {
        const qsizetype step = line.lastIndexOf(u' ');
        rows[line.left(step)] += line.mid(step + 1).toInt();
        if (rows.value(line.left(step)) == 0) {
            rows.remove(line.left(step));
        }
    }
}

} // namespace

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
    QMap<QString, int> expected = rowsOf(work);
    const auto useFor = [&](quint32 seed) {
        return [&, seed] {
            QDir::setCurrent(work);
            RandomUser user(seed, RandomUser::Work, photographs);
            keepJournal();
            QElapsedTimer timer;
            timer.start();
            int actions = 0;
            while (timer.elapsed() < duration) {
                user.act();
                ++actions;
            }
            ForkedRun::report(QString::number(actions));
            reportJournal();
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
    follow(expected, firstEnd.lines.mid(1));
    follow(expected, secondEnd.lines.mid(1));
    QVERIFY(firstEnd.lines.size() > 5 && secondEnd.lines.size() > 5); // both have stored something
    QCOMPARE(rowsOf(work), expected);
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
