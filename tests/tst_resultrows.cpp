#include "browser/buttonitem.h"
#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "browser/resultrows.h"
#include "browser/textitem.h"
#include "search/entrysearch.h"
#include "search/searchchoice.h"
#include "store/catalogquery.h"
#include "store/colorsetting.h"
#include "store/rowvalue.h"
#include "store/statement.h"
#include "store/transaction.h"
#include "tests/support/testcatalogue.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QLibrary>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QTest>

#include <algorithm>
#include <functional>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr int Catalogues = 1000;
constexpr quint32 Seed = 20261121;
constexpr int Model = 7;
constexpr int OtherModel = 8;
const QString Broken = u"kaputt"_s; // becomes a number that is no UTF-8
const QString Latin = u"latein"_s; // becomes one that is no UTF-8 either, and is read as "9§"

/// One block of a page in words: entry, count of its number, copies.
QString blockText(int entryId, int count, const QStringList &copies)
{
    return u"%1 (%2): %3"_s.arg(QString::number(entryId), QString::number(count), copies.join(u' '));
}

void write(const QString &statement, const QList<BoundValue> &values = {})
{
    const WriteOutcome outcome = runWrite(statement, values);
    if (!outcome.done) {
        qFatal("%s", qUtf8Printable(outcome.errorText));
    }
}

/// The pages of a search as they were before anything was read for many rows: one statement for each row and question.
class PlainPages final
{
public:
    explicit PlainPages(const SearchParameters &parameters, int start)
        : m_parameters(parameters)
        , m_position(start)
    {
        entriesOfModel(m_rows, parameters.orderClause, parameters.modelId);
    }

    /// The count of the caption, then the blocks of the next page; the last text tells whether another one follows.
    [[nodiscard]] QStringList next();

private:
    [[nodiscard]] QString number(int index) const { return rowText(m_rows.at(index), u"nummer"_s); }
    void take(int index, QStringList &blocks);
    [[nodiscard]] bool isFullBehind(int index, qsizetype blocks) const;

    SearchParameters m_parameters;
    int m_position;
    QList<QSqlRecord> m_rows;
    QStringList m_shown;
};

QStringList PlainPages::next()
{
    QStringList blocks { QString::number(CatalogQuery::instance().countEntriesOfModel(m_parameters.modelId)) };
    bool mayEnd = false;
    for (int i = m_position - 1; i < m_rows.size(); ++i) {
        mayEnd = mayEnd || (m_position % 40 == 0 && m_position < m_rows.size());
        ++m_position;
        take(i, blocks);
        if (mayEnd && isFullBehind(i, blocks.size() - 1)) {
            return blocks << (i + 1 < m_rows.size() ? u"more"_s : u"end"_s);
        }
    }
    return blocks << u"end"_s;
}

void PlainPages::take(int index, QStringList &blocks)
{
    const CatalogQuery &catalog = CatalogQuery::instance();
    const int id = rowId(m_rows.at(index), u"id"_s);
    if (m_parameters.picturesOnly && catalog.countPicturesOfEntry(id) == 0) {
        return;
    }
    int count = -1;
    if (m_parameters.once) {
        if (m_shown.contains(number(index))) {
            return;
        }
        m_shown.append(number(index));
        count = catalog.countEntriesByNumber(number(index), m_parameters.modelId);
    }
    QList<QSqlRecord> pictures;
    catalog.picturesOfEntry(pictures, id);
    QStringList copies;
    for (const QSqlRecord &picture : std::as_const(pictures)) {
        copies.append(rowText(picture, u"pictAuxPath"_s));
    }
    blocks.append(blockText(id, count, copies));
}

bool PlainPages::isFullBehind(int index, qsizetype blocks) const
{
    if (!m_parameters.once) {
        return true;
    }
    const bool splitsNumber = index + 1 < m_rows.size() && number(index + 1) == number(index);
    return blocks >= 20 && !splitsNumber;
}

/// Counts the statements that hold a text, as the database sees them, and tells of each one just before it runs.
class StatementCounter final
{
public:
    explicit StatementCounter(QByteArray text, std::function<void(int)> beforeEach = {})
        : m_text(std::move(text))
        , m_beforeEach(std::move(beforeEach))
    {
        watch(&StatementCounter::see);
    }
    ~StatementCounter() { watch(nullptr); }
    Q_DISABLE_COPY_MOVE(StatementCounter)

    /// Those since the last call.
    [[nodiscard]] int take() { return std::exchange(m_count, 0); }

private:
    using Callback = int (*)(unsigned, void *, void *, void *);

    static int see(unsigned /*event*/, void *counter, void * /*statement*/, void *text)
    {
        auto *self = static_cast<StatementCounter *>(counter);
        if (QByteArrayView(static_cast<const char *>(text)).contains(self->m_text)) {
            ++self->m_count;
            if (self->m_beforeEach) {
                self->m_beforeEach(self->m_count);
            }
        }
        return 0;
    }

    void watch(Callback callback)
    {
        using Trace = int (*)(void *, unsigned, Callback, void *);
        constexpr unsigned Statements = 1; // the kind of event
        const QVariant handle = QSqlDatabase::database().driver()->handle();
        const auto trace = reinterpret_cast<Trace>(QLibrary::resolve(u"sqlite3"_s, 0, "sqlite3_trace_v2"));
        if (!trace || qstrcmp(handle.typeName(), "sqlite3*") != 0) {
            qFatal("The database cannot be watched.");
        }
        trace(*static_cast<void *const *>(handle.data()), callback ? Statements : 0, callback, this);
    }

    QByteArray m_text;
    std::function<void(int)> m_beforeEach;
    int m_count = 0;
};

/// Another program that takes the file for itself alone, as long as it is told to.
class OtherProgram final
{
public:
    OtherProgram()
    {
        m_database.setDatabaseName(u"./Data/bahnakte.dat"_s);
        if (!m_database.open()) {
            qFatal("The file cannot be opened twice.");
        }
    }
    ~OtherProgram()
    {
        m_database = {};
        QSqlDatabase::removeDatabase(u"other"_s);
    }
    Q_DISABLE_COPY_MOVE(OtherProgram)

    void run(const QString &statement) const
    {
        QSqlQuery query(m_database);
        if (!query.exec(statement)) {
            qFatal("%s", qUtf8Printable(query.lastError().text()));
        }
    }

private:
    QSqlDatabase m_database = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"other"_s);
};

/// The count that stands beside the block's count button; -1 when there is no such button.
int shownCount(const EntryBlock *block)
{
    bool isBehindButton = false;
    const QList<QGraphicsItem *> items = block->childItems();
    for (const QGraphicsItem *item : items) {
        const auto *button = qgraphicsitem_cast<const ButtonItem *>(item);
        const auto *text = qgraphicsitem_cast<const TextItem *>(item);
        if (isBehindButton && text) {
            return text->toPlainText().toInt();
        }
        isBehindButton = isBehindButton || (button && button->kind() == ButtonKind::Count);
    }
    return -1;
}

/// The text at the caption's place; empty when there is none.
QString caption(const PictureScene &canvas)
{
    const QList<QGraphicsItem *> items = canvas.items();
    for (const QGraphicsItem *item : items) {
        const auto *text = qgraphicsitem_cast<const TextItem *>(item);
        if (text && text->scenePos() == QPointF(350, 20)) {
            return text->toPlainText();
        }
    }
    return {};
}

/// The page that stands on the canvas, in the words of PlainPages.
QStringList shownPage(const PictureScene &canvas)
{
    QStringList blocks { caption(canvas).section(u' ', 0, 0) };
    for (const EntryBlock *block : canvas.blocks()) {
        QStringList copies;
        for (const PicturePaths &paths : block->card().pictures) {
            copies.append(paths.copy);
        }
        blocks.append(blockText(block->card().id, shownCount(block), copies));
    }
    const QList<QGraphicsItem *> items = canvas.items();
    const bool hasMore = std::any_of(items.begin(), items.end(), [](const QGraphicsItem *item) {
        const auto *button = qgraphicsitem_cast<const ButtonItem *>(item);
        return button && button->kind() == ButtonKind::More;
    });
    return blocks << (hasMore ? u"more"_s : u"end"_s);
}

} // namespace

class TestResultRows final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void pagesAreThoseOfOneStatementPerRow();
    void picturesAndCountsAreThoseOfSingleStatementsInAnyOrder();
    void longPagesReadThePicturesAFewTimesOnly();
    void numberWithASingleQuoteCountsNothing();
    void blobForANumberCountsNothing();
    void missingNumberIsNoEmptyOne();
    void numberThatIsNoUtf8CountsWhatTheStatementFinds();
    void entriesWithoutAUsableIdHaveNoPictures();
    void lockForAMomentCostsNoOtherEntryItsPictures_data();
    void lockForAMomentCostsNoOtherEntryItsPictures();
    void unreadablePictureCostsNoOtherEntryItsPictures();

private:
    [[nodiscard]] QVariant anyNumber();
    void refill();
    void addEntry(int id, const QVariant &number, int modelId);
    [[nodiscard]] SearchParameters anySearch();
    [[nodiscard]] QString comparePages(const SearchParameters &parameters, int start, int &pages);

    std::unique_ptr<TestCatalogue> m_catalogue;
    QRandomGenerator m_random { Seed };
    int m_differentNumbers = 1;
};

void TestResultRows::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    m_random.seed(Seed);
}

void TestResultRows::cleanup()
{
    ColorSetting::saveAndRelease();
    m_catalogue.reset();
}

/// Numbers that are alike but not equal, that no statement can hold, and some that are no texts or badly encoded ones.
QVariant TestResultRows::anyNumber()
{
    static const QStringList odd { u"1"_s, u"01"_s, u" 1"_s, u"a"_s, u"A"_s, u"7'8"_s, u"'"_s, u"7%2"_s, u"%1"_s,
        u"ü"_s, u"Ü"_s, u""_s, u"🚂"_s, u"7"_s + QChar(QChar::Null), u"7"_s + QChar(QChar::Null) + u"8"_s, Broken,
        u"9"_s + QChar(QChar::ReplacementCharacter), Latin, u"9§"_s, u"9§'"_s };
    const int which = m_random.bounded(m_differentNumbers);
    if (which < odd.size()) {
        return odd.at(which);
    }
    return which % 9 == 0 ? QVariant(QByteArray("1")) : QVariant(QString::number(which));
}

void TestResultRows::addEntry(int id, const QVariant &number, int modelId)
{
    write(u"INSERT INTO loc_seen (id, nummer, locseenid, ort, kommentar, locseendate) "
          "VALUES (:id, :number, :model, :place, '', :seen)"_s,
        { { u":id"_s, id }, { u":number"_s, number }, { u":model"_s, modelId },
            { u":place"_s, QString(QChar(u'a' + m_random.bounded(5))) },
            { u":seen"_s, QDate(1990, 1, 1).addDays(m_random.bounded(30)) } });
}

/// Makes another catalogue of the present one: from nothing to a few pages, from one number to all different.
void TestResultRows::refill()
{
    Transaction transaction;
    write(u"DELETE FROM loc_seen"_s);
    write(u"DELETE FROM loc_picture"_s);
    const int entries = m_random.bounded(m_random.bounded(4) == 0 ? 150 : 50);
    m_differentNumbers = 1 + m_random.bounded(60);
    const int withoutPictures = m_random.bounded(4); // of four entries
    for (int id = 1; id <= entries; ++id) {
        addEntry(id, anyNumber(), m_random.bounded(6) == 0 ? OtherModel : Model);
        const bool hasPictures = m_random.bounded(4) >= withoutPictures;
        for (int picture = hasPictures ? m_random.bounded(1, 4) : 0; picture > 0; --picture) {
            write(u"INSERT INTO loc_picture (pictAuxPath, locpictureid) VALUES (:copy, :entry)"_s,
                { { u":copy"_s, u"copy%1.jpg"_s.arg(m_random.bounded(1000)) },
                    { u":entry"_s, m_random.bounded(8) == 0 ? m_random.bounded(entries) + 1 : id } });
        }
    }
    write(u"UPDATE loc_seen SET nummer = CAST(X'39FF' AS TEXT) WHERE nummer = '%1'"_s.arg(Broken));
    write(u"UPDATE loc_seen SET nummer = CAST(X'39A7' AS TEXT) WHERE nummer = '%1'"_s.arg(Latin));
    QVERIFY(transaction.commit());
}

SearchParameters TestResultRows::anySearch()
{
    SearchParameters parameters;
    parameters.modelId = Model;
    parameters.once = m_random.bounded(2) == 0;
    parameters.picturesOnly = m_random.bounded(2) == 0;
    const QList<QStringView> sorts { SearchChoice::ByDate, SearchChoice::ByNumber, SearchChoice::ByPlace };
    parameters.orderClause = orderClause(sorts.at(m_random.bounded(3)).toString(), parameters.once);
    return parameters;
}

/// The first page that is not what single statements say; empty when all agree.
QString TestResultRows::comparePages(const SearchParameters &parameters, int start, int &pages)
{
    PictureScene canvas;
    PlainPages plain(parameters, start);
    canvas.startSearch(parameters, start);
    while (true) {
        ++pages;
        const QStringList shown = shownPage(canvas);
        const QStringList expected = plain.next();
        if (shown != expected) {
            return u"shown:\n%1\nexpected:\n%2"_s.arg(shown.join(u'\n'), expected.join(u'\n'));
        }
        if (shown.last() == u"end"_s) {
            return {};
        }
        canvas.loadPage(true);
    }
}

void TestResultRows::pagesAreThoseOfOneStatementPerRow()
{
    int pages = 0;
    for (int catalogue = 0; catalogue < Catalogues; ++catalogue) {
        refill();
        const int start = m_random.bounded(5) == 0 ? 41 : 1;
        const QString difference = comparePages(anySearch(), start, pages);
        QVERIFY2(difference.isEmpty(),
            qPrintable(u"catalogue %1 of seed %2, %3"_s.arg(catalogue).arg(Seed).arg(difference)));
    }
    QVERIFY(pages > Catalogues * 11 / 10); // else no second page was among them
}

void TestResultRows::picturesAndCountsAreThoseOfSingleStatementsInAnyOrder()
{
    const CatalogQuery &catalog = CatalogQuery::instance();
    for (int catalogue = 0; catalogue < Catalogues; ++catalogue) {
        refill();
        QList<QSqlRecord> list;
        entriesOfModel(list, {}, Model);
        const QSet<QString> shown { u"1"_s, u"a"_s };
        ResultRows rows(list, m_random.bounded(2) == 0 ? &shown : nullptr);
        for (int look = 0; look < 20 && !list.isEmpty(); ++look) {
            const int index = m_random.bounded(rows.size());
            QList<QSqlRecord> pictures;
            catalog.picturesOfEntry(pictures, rowId(list.at(index), u"id"_s));
            QCOMPARE(rows.pictures(index), pictures);
            QCOMPARE(rows.entriesWithNumberOf(index), catalog.countEntriesByNumber(rows.number(index), Model));
        }
    }
}

void TestResultRows::longPagesReadThePicturesAFewTimesOnly()
{
    constexpr int Entries = 900;
    constexpr int Numbers = 60;
    Transaction transaction;
    for (int id = 1; id <= Entries; ++id) {
        const int number = m_random.bounded(1 + m_random.bounded(Numbers)); // the last ones come late
        addEntry(id, QString::number(number), Model);
        if (m_random.bounded(3) > 0) {
            write(u"INSERT INTO loc_picture (pictAuxPath, locpictureid) VALUES ('copy.jpg', %1)"_s.arg(id));
        }
    }
    QVERIFY(transaction.commit());
    SearchParameters parameters;
    parameters.modelId = Model;
    parameters.once = true;
    parameters.picturesOnly = true;
    parameters.orderClause = orderClause(SearchChoice::ByDate.toString(), true);
    PictureScene canvas;
    StatementCounter reads("FROM loc_picture");
    canvas.startSearch(parameters, 1);
    for (const QString &end : { u"more"_s, u"more"_s, u"end"_s }) {
        const int taken = reads.take();
        QVERIFY2(taken >= 1 && taken <= 4, qPrintable(u"%1 times"_s.arg(taken)));
        QCOMPARE(shownPage(canvas).last(), end);
        canvas.loadPage(true);
    }
}

void TestResultRows::numberWithASingleQuoteCountsNothing()
{
    addEntry(1, u"7'8"_s, Model);
    addEntry(2, u"7'8"_s, Model);
    addEntry(3, u"78"_s, Model);
    QList<QSqlRecord> list;
    entriesOfModel(list, u"ORDER BY id"_s, Model);
    ResultRows rows(list);
    QCOMPARE(rows.entriesWithNumberOf(0), 0);
    QCOMPARE(rows.entriesWithNumberOf(2), 1);
}

void TestResultRows::blobForANumberCountsNothing()
{
    addEntry(1, QByteArray("5"), Model);
    addEntry(2, QByteArray("6"), Model);
    addEntry(3, u"6"_s, Model);
    QList<QSqlRecord> list;
    entriesOfModel(list, u"ORDER BY id"_s, Model);
    ResultRows rows(list);
    QCOMPARE(rows.entriesWithNumberOf(0), 0);
    QCOMPARE(rows.entriesWithNumberOf(1), 1); // the text "6"
}

void TestResultRows::missingNumberIsNoEmptyOne()
{
    addEntry(1, u""_s, Model);
    addEntry(2, u""_s, Model);
    addEntry(3, u"1"_s, Model);
    write(u"CREATE TEMP TABLE loc_seen AS SELECT * FROM main.loc_seen"_s); // the file's own takes no NULL
    write(u"UPDATE temp.loc_seen SET nummer = NULL WHERE id = 3"_s);
    QList<QSqlRecord> list;
    entriesOfModel(list, u"ORDER BY id"_s, Model);
    QVERIFY(list.at(2).isNull(u"nummer"_s));
    ResultRows rows(list);
    QCOMPARE(CatalogQuery::instance().countEntriesByNumber(u""_s, Model), 2);
    QCOMPARE(rows.entriesWithNumberOf(0), 2);
    QCOMPARE(rows.entriesWithNumberOf(2), 2);
}

void TestResultRows::numberThatIsNoUtf8CountsWhatTheStatementFinds()
{
    addEntry(1, u"9§"_s, Model);
    addEntry(2, u"8"_s, Model);
    addEntry(3, u"7§'"_s, Model);
    addEntry(4, u"7§'"_s, Model);
    write(u"UPDATE loc_seen SET nummer = CAST(X'39A7' AS TEXT) WHERE id = 2"_s);
    QList<QSqlRecord> list;
    entriesOfModel(list, u"ORDER BY id"_s, Model);
    ResultRows rows(list);
    QCOMPARE(rows.number(1), u"9§"_s); // it cannot be told from the other here
    QCOMPARE(rows.entriesWithNumberOf(0), 1);
    QCOMPARE(rows.entriesWithNumberOf(1), 1);
    QCOMPARE(rows.entriesWithNumberOf(2), 0);
}

void TestResultRows::entriesWithoutAUsableIdHaveNoPictures()
{
    for (const qint64 id : { Q_INT64_C(-1), Q_INT64_C(0), Q_INT64_C(7), Q_INT64_C(4294967303) }) {
        write(u"INSERT INTO loc_picture (pictAuxPath, locpictureid) VALUES ('copy%1.jpg', %1)"_s.arg(id));
        addEntry(1, QString::number(id), Model);
        write(u"UPDATE loc_seen SET id = %1 WHERE id = 1"_s.arg(id)); // as another program may have stored it
    }
    SearchParameters parameters;
    parameters.modelId = Model;
    parameters.orderClause = u"ORDER BY id"_s;
    PictureScene canvas;
    canvas.startSearch(parameters, 1);
    QCOMPARE(shownPage(canvas),
        (QStringList { u"4"_s, u"-1 (-1): "_s, u"0 (-1): "_s, u"7 (-1): copy7.jpg"_s, u"0 (-1): "_s, u"end"_s }));
}

void TestResultRows::lockForAMomentCostsNoOtherEntryItsPictures_data()
{
    QTest::addColumn<int>("failures");
    QTest::newRow("gone when the first entry is asked for alone") << 1;
    QTest::newRow("gone when the second entry is asked for") << 2;
}

void TestResultRows::lockForAMomentCostsNoOtherEntryItsPictures()
{
    QFETCH(int, failures);
    constexpr int Entries = 30;
    QStringList expected { QString::number(Entries) };
    for (int id = 1; id <= Entries; ++id) {
        addEntry(id, u"1"_s, Model);
        write(u"INSERT INTO loc_picture (pictAuxPath, locpictureid) VALUES ('copy.jpg', %1)"_s.arg(id));
        const bool isLost = id == 1 && failures > 1;
        expected.append(blockText(id, -1, isLost ? QStringList() : QStringList { u"copy.jpg"_s }));
    }
    write(u"PRAGMA busy_timeout=1"_s); // nobody waits here
    const OtherProgram other;
    SearchParameters parameters;
    parameters.modelId = Model;
    parameters.orderClause = u"ORDER BY id"_s;
    PictureScene canvas;
    StatementCounter reads("FROM loc_picture", [&other, failures](int count) {
        if (count == 1 || count == failures + 1) {
            other.run(count == 1 ? u"BEGIN EXCLUSIVE"_s : u"ROLLBACK"_s);
        }
    });
    canvas.startSearch(parameters, 1);
    QCOMPARE(shownPage(canvas), expected << u"end"_s);
    QVERIFY2(reads.take() <= failures + 6, "the batches have not grown again");
}

/// One row that the database cannot read must not take the pictures of the page with it.
void TestResultRows::unreadablePictureCostsNoOtherEntryItsPictures()
{
    constexpr int Entries = 30;
    constexpr int Unreadable = 17;
    QStringList expected { QString::number(Entries) };
    for (int id = 1; id <= Entries; ++id) {
        addEntry(id, u"1"_s, Model);
        write(u"INSERT INTO loc_picture (pictAuxPath, locpictureid) VALUES ('copy.jpg', %1)"_s.arg(id));
        expected.append(blockText(id, -1, id == Unreadable ? QStringList() : QStringList { u"copy.jpg"_s }));
    }
    write(u"CREATE TEMP VIEW loc_picture AS SELECT id, locpictureid, pictOrigPath, "
          "CASE locpictureid WHEN %1 THEN abs(-9223372036854775807 - 1) ELSE pictAuxPath END AS pictAuxPath "
          "FROM main.loc_picture"_s.arg(Unreadable));
    SearchParameters parameters;
    parameters.modelId = Model;
    parameters.orderClause = u"ORDER BY id"_s;
    PictureScene canvas;
    canvas.startSearch(parameters, 1);
    QCOMPARE(shownPage(canvas), expected << u"end"_s);
}

BAHNITO_TEST_MAIN(TestResultRows)
#include "tst_resultrows.moc"
