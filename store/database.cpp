#include "store/database.h"

#include "search/messagebox.h"
#include "store/transaction.h"

#include <QCoreApplication>
#include <QSet>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <array>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace {

/// The driver's own connection; none when the driver has another SQLite than this program.
sqlite3 *openConnection()
{
    QSqlQuery query(u"SELECT sqlite_source_id()"_s);
    const bool isSameLibrary = query.next() && query.value(0).toString() == QString::fromLatin1(sqlite3_sourceid());
    const QVariant handle = QSqlDatabase::database().driver()->handle();
    const bool isConnection = isSameLibrary && qstrcmp(handle.typeName(), "sqlite3*") == 0;
    return isConnection ? *static_cast<sqlite3 *const *>(handle.constData()) : nullptr;
}

/// What is computed when it is read or written; the authorizer of the connection looks there.
struct Computed
{
    QSet<QByteArray> columns; // "table.column"
    QSet<QByteArray> tables; // that have such columns
};
Computed computed;

/// As SQLite compares names; not through a QString, because a name need not be UTF-8.
QByteArray nameOf(const char *name)
{
    return QByteArray(name).toLower();
}

int authorize(void *context, int action, const char *first, const char *second, const char *schema, const char *inner)
{
    Q_UNUSED(context)
    Q_UNUSED(schema)
    Q_UNUSED(inner)
    if (action == SQLITE_READ && computed.columns.contains(nameOf(first) + '.' + nameOf(second))) {
        return SQLITE_IGNORE;
    }
    const bool isWrite = action == SQLITE_INSERT || action == SQLITE_UPDATE;
    return isWrite && computed.tables.contains(nameOf(first)) ? SQLITE_DENY : SQLITE_OK;
}

/// Lets computed columns be read as NULL, and nothing be written into their tables, for that computes them as well: a
/// few bytes in a file can make gigabytes of them, or hours of work.
void ignoreComputedColumns(sqlite3 *connection)
{
    constexpr auto Statement = "SELECT t.name, c.name FROM sqlite_master AS t JOIN pragma_table_xinfo(t.name) AS c "
                               "WHERE t.type = 'table' AND c.hidden IN (2, 3)";
    computed = {};
    sqlite3_stmt *statement = nullptr;
    int result = sqlite3_prepare_v2(connection, Statement, -1, &statement, nullptr);
    while (statement && (result = sqlite3_step(statement)) == SQLITE_ROW) {
        const auto name = [statement](int column) {
            return nameOf(reinterpret_cast<const char *>(sqlite3_column_text(statement, column)));
        };
        computed.tables.insert(name(0));
        computed.columns.insert(name(0) + '.' + name(1));
    }
    sqlite3_finalize(statement);
    if (result != SQLITE_DONE) {
        qWarning("Berechnete Spalten der Datenbank lassen sich nicht feststellen: %s", sqlite3_errmsg(connection));
    }
    if (!computed.tables.isEmpty()) {
        sqlite3_set_authorizer(connection, authorize, nullptr);
    }
}

/// A view in place of a table can yield rows without end, and so can a trigger. The program makes neither, nor computed
/// columns, so what a file brings of them is not followed: reading such a view fails, and a trigger does nothing.
void distrustFile()
{
    sqlite3 *connection = openConnection();
    if (!connection) {
        qWarning("Sichten und Auslöser der Datenbank werden nicht ausgeschaltet.");
        return;
    }
    sqlite3_db_config(connection, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
    sqlite3_db_config(connection, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    ignoreComputedColumns(connection);
}

} // namespace

QString databasePath()
{
    return u"./Data/bahnakte.dat"_s;
}

bool connectDatabase()
{
    QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s);
    database.setDatabaseName(databasePath());
    database.setConnectOptions(u"QSQLITE_BUSY_TIMEOUT=1000"_s); // Qt's 5 s would freeze the window at each statement
    if (!database.open()) {
        MessageBox::warning(
            nullptr, QCoreApplication::translate("Database", "Database Error"), database.lastError().text());
        return false;
    }
    // For this connection only; none of these changes the file.
    QSqlQuery query;
    query.exec(synchronousStatement());
    query.exec(u"PRAGMA trusted_schema=OFF"_s);
    query.exec(u"PRAGMA cell_size_check=ON"_s);
    distrustFile();
    return true;
}

void createTables(Existing existing)
{
    const std::array statements {
        u"DROP TABLE settings"_s,
        u"DROP TABLE loc_picture"_s,
        u"DROP TABLE loc_seen"_s,
        u"DROP TABLE loc_model"_s,
        u"DROP TABLE locomotive"_s,
        u"CREATE TABLE locomotive (id INTEGER PRIMARY KEY AUTOINCREMENT, name VARCHAR(40) NOT NULL, pictPath VARCHAR(80))"_s,
        u"CREATE TABLE loc_model (id INTEGER PRIMARY KEY AUTOINCREMENT, modelname VARCHAR(40) NOT NULL, locid INTEGER NOT NULL, FOREIGN KEY (locid) REFERENCES locomotive)"_s,
        u"CREATE TABLE loc_seen (id INTEGER PRIMARY KEY AUTOINCREMENT, nummer VARCHAR(20) NOT NULL, locseenid INTEGER NOT NULL, ort VARCHAR(40) NOT NULL, kommentar VARCHAR(200) NOT NULL, startdate DATE, locseendate DATE, anlass VARCHAR(80), orignummer VARCHAR(20), reserveint1 INTEGER, reserveint2 INTEGER, reservestr1 VARCHAR(80), reservestr2 VARCHAR(120), FOREIGN KEY (locseenid) REFERENCES loc_model)"_s,
        u"CREATE TABLE loc_picture (id INTEGER PRIMARY KEY AUTOINCREMENT, pictAuxPath VARCHAR(80), pictOrigPath VARCHAR(80), pictHeight INTEGER,pictWidth INTEGER,locpictureid INTEGER NOT NULL, FOREIGN KEY (locpictureid) REFERENCES loc_seen)"_s,
        u"CREATE TABLE settings (id INTEGER PRIMARY KEY AUTOINCREMENT, category VARCHAR(40) NOT NULL, name VARCHAR(40) NOT NULL, value INTEGER)"_s,
        u"INSERT INTO settings (category, name, value) VALUES ('COLOR-SETTING', 'BG_COLOR', 0)"_s,
        u"INSERT INTO settings (category, name, value) VALUES ('QUERY-Type', 'SingleOrMulti', 0)"_s,
        u"INSERT INTO settings (category, name, value) VALUES ('QUERY-Type', 'InclPictures', 0)"_s,
        u"INSERT INTO settings (category, name, value) VALUES ('QUERY-Type', 'Sort', 0)"_s,
    };
    // One transaction, because a program killed in between would leave a catalogue that later runs use as it is.
    // Without it nothing is touched: another program has the file, and the drops would destroy what it is making.
    Transaction transaction;
    // Asked inside the transaction, because before it another program may have been about to make its tables.
    if (transaction.isOpen() && existing == Existing::Keep && !isDatabaseEmpty()) {
        return;
    }
    sqlite3 *connection = openConnection();
    QSqlQuery query;
    for (const QString &statement : statements) {
        // Some failures, as of the disk, end the transaction; what came next would be stored without the rest.
        if (transaction.isOpen() && (!connection || sqlite3_get_autocommit(connection) == 0)) {
            query.exec(statement);
        }
    }
    if (!transaction.commit()) {
        qWarning("Tabellen nicht angelegt: %s", qUtf8Printable(transaction.errorText()));
    }
}

bool isDatabaseEmpty()
{
    QSqlQuery query;
    return query.exec(u"SELECT COUNT(*) FROM sqlite_master"_s) && query.next() && query.value(0).toInt() == 0;
}
