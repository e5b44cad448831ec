#include "store/statement.h"
#include "tests/faults/faultfolder.h"
#include "tests/faults/forkedrun.h"
#include "tests/faults/randomuser.h"
#include "tests/faults/samplecatalogue.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>

using namespace Qt::StringLiterals;

/// Whoever only looks finds the catalogue afterwards as it was, odd rows included. Only the settings may have changed.
class TestLookingOnly final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lookingChangesNothingButTheSettings();

private:
    static void addOddRows();

    FaultFolder m_folder;
};

/// A thousand entries as other programs, other ages and other hands may have left them.
void TestLookingOnly::addOddRows()
{
    const QStringList texts { u"'7''8'"_s, u"'<b>x</b>'"_s, u"''"_s, u"'a'||char(10)||'b'"_s, u"char(9)||' x '"_s,
        u"char(8232)"_s, u"'x'||char(0)||'y'"_s, u"char(128169)"_s, u"replace(hex(zeroblob(300)),'0','lang ')"_s,
        u"14201"_s, u"3.14"_s, u"x'4100ff'"_s, u"'é'||char(769)"_s, u"char(8238)||'abc'"_s, u"'   '"_s,
        u"char(173)"_s };
    const QStringList dates { u"NULL"_s, u"''"_s, u"'gestern'"_s, u"'17.05.2001'"_s, u"'2001-02-30'"_s,
        u"'1700-01-01'"_s, u"'10001-01-01'"_s, u"990000000"_s, u"2451545.5"_s, u"'2001-05-17T12:00:00'"_s,
        u"'2001-05-17'"_s, u"x'32'"_s };
    QSqlQuery(u"BEGIN"_s);
    for (int i = 0; i < 1000; ++i) {
        const auto text = [&texts, i](int step) { return texts.at((i / step) % texts.size()); };
        QSqlQuery query;
        if (!query.exec(u"INSERT INTO loc_seen (nummer, locseenid, ort, kommentar, startdate, locseendate) VALUES (%1, "
                        "%2, %3, %4, %5, %6)"_s.arg(text(1), QString::number(1 + i % 2), text(3), text(7),
                            dates.at((i / 2) % dates.size()), dates.at((i / 5) % dates.size())))) {
            qFatal("no odd row %d", i);
        }
    }
    QSqlQuery(u"UPDATE loc_picture SET pictAuxPath = NULL WHERE id = 3"_s);
    QSqlQuery(u"UPDATE locomotive SET pictPath = NULL WHERE id = 2"_s);
    QSqlQuery(u"COMMIT"_s);
}

void TestLookingOnly::lookingChangesNothingButTheSettings()
{
    QVERIFY(runForked([this] {
        makeSampleCatalogue(m_folder.path(u"work"_s));
        makeSamplePhotographs(m_folder.path(u"photographs"_s));
    }).isGood());
    QVERIFY(runForked([this] {
        QDir::setCurrent(m_folder.path(u"work"_s));
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s);
        database.setDatabaseName(u"Data/bahnakte.dat"_s);
        if (database.open()) {
            addOddRows();
        }
    }).isGood());
    const QString before = exactDump(m_folder.path(u"work"_s));
    const QByteArray pictures = folderDigest(m_folder.path(u"work/Data/Pictures"_s));
    QVERIFY(before.count(u'\n') > 1000);
    const int actions = share(150, 10000);
    const ForkedRun::End end = runForked(
        [this, actions] {
            QDir::setCurrent(m_folder.path(u"work"_s));
            RandomUser user(3, RandomUser::LookOnly, m_folder.path(u"photographs"_s));
            for (int i = 0; i < actions; ++i) {
                user.act();
            }
            for (const QString &line : RandomUser::deedLines(user.deeds())) {
                ForkedRun::report(line);
            }
        },
        3600000);
    QVERIFY2(end.isGood(), qPrintable(end.description()));
    QCOMPARE(exactDump(m_folder.path(u"work"_s)), before);
    QCOMPARE(folderDigest(m_folder.path(u"work/Data/Pictures"_s)), pictures);
    RandomUser::Deeds deeds;
    RandomUser::addDeeds(deeds, end.lines);
    QCOMPARE(deeds.take(u"deleted"_s), 0);
    QCOMPARE(deeds.size(), 8); // six forms, searches and listings
    QVERIFY2(deeds.key(0).isEmpty(), qPrintable(deeds.key(0) + u" never"_s));
    qInfo("%d actions over a thousand odd rows: %s", actions, qPrintable(end.lines.join(u", "_s)));
}

BAHNITO_TEST_MAIN(TestLookingOnly)
#include "tst_lookingonly.moc"
