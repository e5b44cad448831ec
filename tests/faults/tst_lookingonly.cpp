#include "browser/canvasview.h"
#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "browser/searchparameters.h"
#include "browser/viewholder.h"
#include "forms/locgroupform.h"
#include "forms/locmodelform.h"
#include "forms/locpictureform.h"
#include "forms/locseenform.h"
#include "search/entrysearch.h"
#include "store/catalogquery.h"
#include "store/rowvalue.h"
#include "tests/faults/faultfolder.h"
#include "tests/faults/forkedrun.h"
#include "tests/faults/randomuser.h"
#include "tests/faults/samplecatalogue.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTest>
#include <QVariant>

using namespace Qt::StringLiterals;

namespace {

void insert(const QString &table, const QString &columns, const QStringList &values)
{
    QSqlQuery query;
    if (!query.exec(u"INSERT INTO %1 (%2) VALUES (%3)"_s.arg(table, columns, values.join(u", "_s)))) {
        qFatal("no odd row: %s", qUtf8Printable(query.lastError().text()));
    }
}

/// The `i`-th of the texts, over and over.
QString nth(const QStringList &texts, int i)
{
    return texts.at(i % texts.size());
}

const QStringList OddTexts { u"'7''8'"_s, u"'<b>x</b>'"_s, u"''"_s, u"'a'||char(10)||'b'"_s, u"char(9)||' x '"_s,
    u"char(8232)"_s, u"'x'||char(0)||'y'"_s, u"char(128169)"_s, u"replace(hex(zeroblob(300)),'0','lang ')"_s,
    u"14201"_s, u"3.14"_s, u"x'4100ff'"_s, u"'é'||char(769)"_s, u"char(8238)||'abc'"_s, u"'   '"_s, u"char(173)"_s };
const QStringList OddDates { u"NULL"_s, u"''"_s, u"'gestern'"_s, u"'17.05.2001'"_s, u"'2001-02-30'"_s,
    u"'1700-01-01'"_s, u"'10001-01-01'"_s, u"990000000"_s, u"2451545.5"_s, u"'2001-05-17T12:00:00'"_s,
    u"'2001-05-17'"_s, u"x'32'"_s };
const QStringList OddPaths { u"NULL"_s, u"''"_s, u"'./Data/Pictures/Folder001/142010.jpg'"_s,
    u"'Data/Pictures/../Pictures/Folder001/142011.jpg'"_s, u"'./Data/Pictures/Folder001'"_s, u"'/'"_s, u"42"_s,
    u"x'2e00ff'"_s, u"'./Data/Pictures/AuxFolder/1.jpg'||char(10)"_s, u"'C:\\Bilder\\x.jpg'"_s,
    u"'./Data/bahnakte.dat'"_s, u"replace(hex(zeroblob(3000)),'0','lang/')"_s, u"'<img src=x>'"_s };
const QStringList OddReferences { u"1"_s, u"'1'"_s, u"0"_s, u"-1"_s, u"5000000000"_s, u"4294967297"_s, u"'abc'"_s,
    u"1.5"_s, u"x'31'"_s, u"''"_s, u"9223372036854775807"_s, u"3"_s };
const QStringList OddSizes { u"NULL"_s, u"0"_s, u"-50"_s, u"'fünfzig'"_s, u"9223372036854775807"_s, u"0.5"_s, u"75"_s };

/// The last of the forty odd rows of a table have ids that are far out; those that follow on the highest are, too.
QString oddId(int i)
{
    const QStringList far { u"-7"_s, u"0"_s, u"2147483647"_s, u"2147483648"_s, u"4294967298"_s, u"5000000000"_s };
    return far.value(i - 34, u"NULL"_s);
}

/// To the group or class of a row that is as odd, or to anything.
QString oddReference(int i)
{
    return i % 2 == 0 ? QString::number(i + 3) : nth(OddReferences, i / 2);
}

/// A thousand entries as other programs, other ages and other hands may have left them, and a hundred other rows.
void addOddRows()
{
    QSqlQuery(u"BEGIN"_s);
    const QString entry = u"id, nummer, locseenid, ort, kommentar, startdate, locseendate"_s;
    for (int i = 0; i < 1000; ++i) {
        insert(u"loc_seen"_s, entry,
            { u"NULL"_s, nth(OddTexts, i), QString::number(1 + i % 2), nth(OddTexts, i / 3), nth(OddTexts, i / 7),
                nth(OddDates, i / 2), nth(OddDates, i / 5) });
    }
    for (int i = 0; i < 40; ++i) {
        insert(u"loc_seen"_s, entry,
            { oddId(i), nth(OddTexts, i), i < 34 ? oddReference(i) : u"1"_s, nth(OddTexts, i / 3), nth(OddTexts, i / 7),
                nth(OddDates, i), nth(OddDates, i / 5) });
        insert(u"locomotive"_s, u"id, name, pictPath"_s, { oddId(i), nth(OddTexts, i), nth(OddPaths, i) });
        insert(u"loc_model"_s, u"id, modelname, locid"_s, { oddId(i), nth(OddTexts, i), oddReference(i) });
        insert(u"loc_picture"_s, u"id, pictAuxPath, pictOrigPath, pictHeight, pictWidth, locpictureid"_s,
            { oddId(i), nth(OddPaths, i), nth(OddPaths, i / 3), nth(OddSizes, i), nth(OddSizes, i / 2),
                nth(OddReferences, i / 2) });
    }
    QSqlQuery(u"UPDATE loc_picture SET pictAuxPath = NULL WHERE id = 3"_s);
    QSqlQuery(u"UPDATE locomotive SET pictPath = NULL WHERE id = 2"_s);
    if (QSqlQuery(u"COMMIT"_s).lastError().isValid()) {
        qFatal("the odd rows could not be stored");
    }
}

/// The ids of a table as the canvas and the lists understand them: 0 for those that do not fit.
QList<int> idsOf(const QString &table)
{
    QList<int> ids;
    QSqlQuery query(u"SELECT id FROM %1 ORDER BY id"_s.arg(table));
    while (query.next()) {
        ids.append(rowId(query.value(0)));
    }
    return ids;
}

/// Opens and closes a form for each row, while the random user answers it; returns how many there were.
int openAllForms(QWidget *window)
{
    int forms = 0;
    const auto use = [&forms](QDialog &&form) {
        form.exec();
        ++forms;
    };
    const CatalogQuery &catalog = CatalogQuery::instance();
    for (const int id : idsOf(u"loc_seen"_s)) {
        use(LocseenForm(id, catalog.modelIdOfEntry(id), window));
    }
    for (const int id : idsOf(u"locomotive"_s)) {
        use(LocModelForm(id, window));
    }
    for (const int id : idsOf(u"loc_model"_s)) {
        use(LocGroupForm(id, catalog.modelName(id), window));
    }
    for (const int id : idsOf(u"loc_picture"_s)) {
        use(LocPictureForm(1, id, window));
        LocPictureForm form(1, id, window); // with nothing chosen in it
        form.accept();
    }
    return forms;
}

/// Shows all pages of a search; returns the number of cards.
int showPages(const BrowserWindow &browser, const SearchParameters &parameters)
{
    PictureScene &canvas = browser.window().viewHolder().results();
    canvas.startSearch(parameters, 1);
    qsizetype cards = 0;
    while (true) {
        (void)browser.window().viewHolder().view()->grab(); // which also reads the pictures
        cards += canvas.blocks().size();
        if (!browser.button(ButtonKind::More)) {
            return int(cards);
        }
        canvas.loadPage(true);
    }
}

/// Shows every class in several ways; returns the number of cards of the plainest way.
int showAllEntries(const BrowserWindow &browser)
{
    QList<int> models = idsOf(u"loc_model"_s);
    models.append({ -1, 0 });
    int cards = 0;
    for (const int id : std::as_const(models)) {
        cards += showPages(browser, { id, false, false, {}, orderClause(u"Datum"_s, false) });
        showPages(browser, { id, true, false, {}, orderClause(u"Nummer"_s, true) });
        showPages(browser, { id, false, true, {}, orderClause(u"Ort"_s, false) });
    }
    return cards;
}

/// Lists all entries of every number; returns how many lists there were.
int listAllNumbers(const BrowserWindow &browser)
{
    QSqlQuery numbers(u"SELECT MIN(id) FROM loc_seen GROUP BY nummer, locseenid"_s);
    QList<int> entries;
    while (numbers.next()) {
        entries.append(rowId(numbers.value(0)));
    }
    for (const int id : std::as_const(entries)) {
        browser.window().viewHolder().showNumberListing(id);
        (void)browser.window().viewHolder().view()->grab();
    }
    browser.window().viewHolder().backToResults();
    return int(entries.size());
}

} // namespace

/// Whoever only looks finds the catalogue afterwards as it was, odd rows included. Only the settings may have changed.
class TestLookingOnly final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lookingChangesNothingButTheSettings();

private:
    void makeCatalogue() const;

    FaultFolder m_folder;
};

void TestLookingOnly::makeCatalogue() const
{
    QVERIFY(runForked([this] {
        makeSampleCatalogue(m_folder.path(u"work"_s));
        makeSamplePhotographs(m_folder.path(u"photographs"_s));
    }).isGood());
    const ForkedRun::End end = runForked([this] {
        QDir::setCurrent(m_folder.path(u"work"_s));
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s);
        database.setDatabaseName(u"Data/bahnakte.dat"_s);
        if (database.open()) {
            addOddRows();
        }
    });
    QVERIFY2(end.isGood(), qPrintable(end.description()));
}

void TestLookingOnly::lookingChangesNothingButTheSettings()
{
    makeCatalogue();
    const QString before = exactDump(m_folder.path(u"work"_s));
    const QByteArray pictures = folderDigest(m_folder.path(u"work/Data/Pictures"_s));
    QVERIFY(before.count(u'\n') > 1150);
    const int actions = share(150, 10000);
    const quint32 seed = testSeed(3);
    const ForkedRun::End end = runForked(
        [this, actions, seed] {
            QDir::setCurrent(m_folder.path(u"work"_s));
            RandomUser user(seed, RandomUser::LookOnly, m_folder.path(u"photographs"_s));
            for (int i = 0; i < actions; ++i) {
                user.act();
            }
            ForkedRun::report(u"%1 forms"_s.arg(openAllForms(&user.browser().window())));
            ForkedRun::report(u"%1 cards"_s.arg(showAllEntries(user.browser())));
            ForkedRun::report(u"%1 lists"_s.arg(listAllNumbers(user.browser())));
            for (const QString &line : RandomUser::deedLines(user.deeds())) {
                ForkedRun::report(line);
            }
        },
        3600000);
    qInfo("%d actions over a thousand odd rows: %s", actions, qPrintable(end.lines.join(u", "_s)));
    QVERIFY2(end.isGood(), qPrintable(end.description()));
    QCOMPARE(exactDump(m_folder.path(u"work"_s)), before);
    QCOMPARE(folderDigest(m_folder.path(u"work/Data/Pictures"_s)), pictures);
    RandomUser::Deeds deeds;
    RandomUser::addDeeds(deeds, end.lines);
    QVERIFY(deeds.take(u"forms"_s) > 1150);
    QVERIFY(deeds.take(u"cards"_s) > 1000);
    QVERIFY(deeds.take(u"lists"_s) > 32);
    deeds.remove(u"listed"_s); // that by chance
    QCOMPARE(deeds.take(u"deleted"_s), 0);
    QCOMPARE(deeds.size(), 7); // six forms and searches
    QVERIFY2(deeds.key(0).isEmpty(), qPrintable(deeds.key(0) + u" never"_s));
}

BAHNITO_TEST_MAIN(TestLookingOnly)
#include "tst_lookingonly.moc"
