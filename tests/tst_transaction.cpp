#include "store/database.h"
#include "store/statement.h"
#include "store/transaction.h"
#include "tests/support/otherconnection.h"
#include "tests/support/testcatalogue.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

class TestTransaction final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_catalogue = std::make_unique<TestCatalogue>(); }
    void cleanup() { m_catalogue.reset(); }

    void uncommittedWorkIsRolledBack();
    void committedWorkStays();
    void anotherWriterStopsItAtTheBeginning();
    void readerStopsAnExclusiveOneAtTheBeginning();
    void durabilityIsSetWhenTheFileWasLockedWhileOpening();
    void exclusiveOneLeavesTheWriteAheadLog();
    void usedRowIsNotDeleted();
    void failedCountStopsADeletion();

private:
    std::unique_ptr<TestCatalogue> m_catalogue;
};

void TestTransaction::uncommittedWorkIsRolledBack()
{
    {
        const Transaction transaction;
        QVERIFY(transaction.isOpen());
        QVERIFY(runWrite(u"INSERT INTO locomotive (name) VALUES ('Krokodile')"_s).done);
    }
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM locomotive"_s).toInt(), 0);
}

void TestTransaction::committedWorkStays()
{
    const WriteOutcome outcome = executeWrite(u"INSERT INTO locomotive (name) VALUES ('Krokodile')"_s);
    QVERIFY(outcome.done);
    QCOMPARE(outcome.newId, 1);
    QCOMPARE(m_catalogue->value(u"SELECT name FROM locomotive"_s).toString(), u"Krokodile"_s);
}

void TestTransaction::anotherWriterStopsItAtTheBeginning()
{
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"other"_s);
        other.setDatabaseName(u"./Data/bahnakte.dat"_s);
        QVERIFY(other.open());
        QVERIFY(QSqlQuery(other).exec(u"BEGIN IMMEDIATE"_s));
        const WriteOutcome outcome = executeWrite(u"INSERT INTO locomotive (name) VALUES ('Krokodile')"_s);
        QVERIFY(!outcome.done);
        QVERIFY(!outcome.errorText.isEmpty());
    }
    QSqlDatabase::removeDatabase(u"other"_s);
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM locomotive"_s).toInt(), 0);
}

void TestTransaction::readerStopsAnExclusiveOneAtTheBeginning()
{
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"other"_s);
        other.setDatabaseName(databasePath());
        QVERIFY(other.open());
        QSqlQuery reading(other);
        QVERIFY(reading.exec(u"SELECT * FROM settings"_s) && reading.next());
        QVERIFY(Transaction().isOpen());
        const Transaction refused(Transaction::Kind::Exclusive);
        QVERIFY(!refused.isOpen());
        QVERIFY(refused.errorText().contains(u"locked"_s));
        reading.finish();
        QVERIFY(QSqlQuery(other).exec(u"UPDATE settings SET value = 1"_s)); // nothing is left locked
        QVERIFY(Transaction(Transaction::Kind::Exclusive).isOpen());
    }
    QSqlDatabase::removeDatabase(u"other"_s);
}

void TestTransaction::durabilityIsSetWhenTheFileWasLockedWhileOpening()
{
    QSqlDatabase::database().close();
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"other"_s);
        other.setDatabaseName(databasePath());
        QVERIFY(other.open());
        QVERIFY(QSqlQuery(other).exec(u"BEGIN EXCLUSIVE"_s));
        QVERIFY(connectDatabase());
        QVERIFY(QSqlQuery(other).exec(u"ROLLBACK"_s));
    }
    QSqlDatabase::removeDatabase(u"other"_s);
    QCOMPARE(m_catalogue->value(u"PRAGMA synchronous"_s).toInt(), 2); // what opening could not set
    QVERIFY(executeWrite(u"UPDATE settings SET value = 1"_s).done);
    QCOMPARE(m_catalogue->value(u"PRAGMA synchronous"_s).toInt(), 3);
}

/// With a log written ahead others would go on reading, and only the commit would ask for room on the disk.
void TestTransaction::exclusiveOneLeavesTheWriteAheadLog()
{
    QCOMPARE(m_catalogue->value(u"PRAGMA journal_mode=WAL"_s).toString(), u"wal"_s);
    {
        const OtherConnection reader(u"SELECT * FROM settings"_s);
        QVERIFY(reader.works());
        const Transaction refused(Transaction::Kind::Exclusive);
        QVERIFY(!refused.isOpen());
        QVERIFY(!refused.errorText().isEmpty());
    }
    QVERIFY(Transaction(Transaction::Kind::Exclusive).isOpen());
    QCOMPARE(m_catalogue->value(u"PRAGMA journal_mode"_s).toString(), u"delete"_s);
}

void TestTransaction::usedRowIsNotDeleted()
{
    const int group = m_catalogue->addGroup(u"Krokodile"_s);
    m_catalogue->addModel(u"Ce 6/8"_s, group);
    const DeletionOutcome outcome = deleteUnlessUsed(
        u"SELECT COUNT(*) FROM loc_model WHERE locid = '1'"_s, u"DELETE FROM locomotive WHERE id = 1"_s);
    QCOMPARE(outcome.result, DeletionResult::StillUsed);
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM locomotive"_s).toInt(), 1);
}

void TestTransaction::failedCountStopsADeletion()
{
    m_catalogue->addGroup(u"Krokodile"_s);
    QVERIFY(QSqlQuery().exec(u"DROP TABLE loc_model"_s));
    const DeletionOutcome outcome = deleteUnlessUsed(
        u"SELECT COUNT(*) FROM loc_model WHERE locid = '1'"_s, u"DELETE FROM locomotive WHERE id = 1"_s);
    QCOMPARE(outcome.result, DeletionResult::Failed);
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM locomotive"_s).toInt(), 1);
}

BAHNITO_TEST_MAIN(TestTransaction)
#include "tst_transaction.moc"
