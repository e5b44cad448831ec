#include "store/database.h"

#include "search/messagebox.h"
#include "store/transaction.h"

#include <QCoreApplication>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <array>

using namespace Qt::StringLiterals;

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
    query.exec(u"PRAGMA synchronous=EXTRA"_s);
    query.exec(u"PRAGMA trusted_schema=OFF"_s);
    query.exec(u"PRAGMA cell_size_check=ON"_s);
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
    QSqlQuery query;
    for (const QString &statement : statements) {
        if (transaction.isOpen()) {
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
