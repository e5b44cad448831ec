#include "store/catalogquery.h"
#include "store/database.h"
#include "store/entryremoval.h"
#include "store/statement.h"
#include "tests/support/modalscript.h"
#include "tests/support/testcatalogue.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QFile>
#include <QMessageBox>
#include <QPushButton>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

class TestDeleteEntry final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_catalogue.reset(); }

    void missingEntryCountsAsDeletedAndNothingIsAsked();
    void yesDeletesTheEntryWithItsPictures();
    void anyOtherAnswerChangesNothing_data();
    void anyOtherAnswerChangesNothing();
    void questionIsAWarningWithTwoButtons();
    void questionShowsAHostileNumberAsItIs_data();
    void questionShowsAHostileNumberAsItIs();
    void missingCopiesDoNotStopTheDeletion();
    void rowsCannotMakeItRemoveTheUsersFiles();
    void copyThatAnotherEntryCallsItsSourceStays();
    void idOfNoEntryIsAMissingEntry_data();
    void idOfNoEntryIsAMissingEntry();
    void lockedCatalogueLosesNothing();
    void readerOfTheCatalogueLosesNothing();
    void unreadablePicturesKeepTheEntry();
    void readOnlyCatalogueLosesNothing();
    void failedDeletionOfPicturesKeepsTheEntry();
    void failedDeletionOfTheEntryKeepsThePictureRows();

private:
    [[nodiscard]] bool remove() { return CatalogQuery::instance().deleteEntry(m_entry, m_nummer, m_modelId); }
    [[nodiscard]] static QString question(const QString &number);
    void expectNothingRemoved() const;

    std::unique_ptr<TestCatalogue> m_catalogue;
    int m_entry = 0;
    QString m_nummer;
    int m_modelId = 0;
};

void TestDeleteEntry::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    const int model = m_catalogue->addModel(u"Ae 6/6"_s, m_catalogue->addGroup(u"Gotthard"_s));
    m_entry = m_catalogue->addEntry(u"11407"_s, model);
    m_catalogue->addPicture(m_entry);
    m_catalogue->addPicture(m_entry);
    m_catalogue->addPicture(m_catalogue->addEntry(u"11408"_s, model));
    m_nummer = u"untouched"_s;
    m_modelId = -7;
}

QString TestDeleteEntry::question(const QString &number)
{
    return u"Eintrag 1 mit der Lok-Nummer %1 und alle dazugehörenden Bilder löschen?"_s.arg(number);
}

void TestDeleteEntry::expectNothingRemoved() const
{
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM loc_seen"_s).toInt(), 2);
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM loc_picture"_s).toInt(), 3);
    QVERIFY(QFile::exists(u"Data/Pictures/Folder001/copy1.jpg"_s));
    QVERIFY(QFile::exists(u"Data/Pictures/Folder001/copy2.jpg"_s));
}

void TestDeleteEntry::missingEntryCountsAsDeletedAndNothingIsAsked()
{
    const ModalScript script;
    m_entry = 99;
    QVERIFY(remove());
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(m_nummer, u"untouched"_s);
    QCOMPARE(m_modelId, -7);
    expectNothingRemoved();
}

void TestDeleteEntry::yesDeletesTheEntryWithItsPictures()
{
    ModalScript script;
    script.box(u"Eintrag Entfernen"_s, question(u"11407"_s), u"Ja"_s);
    QVERIFY(remove());
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(m_nummer, u"11407"_s);
    QCOMPARE(m_modelId, 1);
    QCOMPARE(m_catalogue->value(u"SELECT group_concat(nummer) FROM loc_seen"_s).toString(), u"11408"_s);
    QCOMPARE(m_catalogue->value(u"SELECT group_concat(id) FROM loc_picture"_s).toString(), u"3"_s);
    QVERIFY(!QFile::exists(u"Data/Pictures/Folder001/copy1.jpg"_s));
    QVERIFY(!QFile::exists(u"Data/Pictures/Folder001/copy2.jpg"_s));
    QVERIFY(QFile::exists(u"Data/Pictures/Folder001/copy3.jpg"_s));
    QVERIFY(QFile::exists(u"source1.jpg"_s) && QFile::exists(u"source2.jpg"_s));
}

void TestDeleteEntry::anyOtherAnswerChangesNothing_data()
{
    QTest::addColumn<QString>("answer");
    QTest::newRow("Nein") << u"Nein"_s;
    QTest::newRow("Escape") << u"Escape"_s;
    QTest::newRow("Return by accident") << u"Return"_s;
    QTest::newRow("closed") << u"close"_s;
}

void TestDeleteEntry::anyOtherAnswerChangesNothing()
{
    QFETCH(const QString, answer);
    ModalScript script;
    script.then([&](QWidget *box) {
        if (answer == u"Escape"_s) {
            QTest::keyClick(box, Qt::Key_Escape);
        } else if (answer == u"Return"_s) {
            QTest::keyClick(box, Qt::Key_Return);
        } else if (answer == u"close"_s) {
            box->close();
        } else {
            script.click(box, answer);
        }
    });
    QVERIFY(!remove());
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(m_nummer, u"11407"_s);
    QCOMPARE(m_modelId, 1);
    expectNothingRemoved();
}

void TestDeleteEntry::questionIsAWarningWithTwoButtons()
{
    ModalScript script;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    bool hasParent = true;
    QMap<QString, QMessageBox::ButtonRole> roles;
    script.then([&](QWidget *widget) {
        auto *box = qobject_cast<QMessageBox *>(widget);
        QVERIFY(box != nullptr);
        icon = box->icon();
        hasParent = box->parentWidget() != nullptr;
        for (QAbstractButton *button : box->buttons()) {
            roles.insert(button->text().remove(u'&'), box->buttonRole(button));
        }
        box->close();
    });
    QVERIFY(!remove());
    QCOMPARE(icon, QMessageBox::Warning);
    QVERIFY(!hasParent);
    QCOMPARE(roles.keys(), QStringList({ u"Ja"_s, u"Nein"_s }));
    QCOMPARE(roles.value(u"Ja"_s), QMessageBox::AcceptRole);
    QCOMPARE(roles.value(u"Nein"_s), QMessageBox::RejectRole);
}

void TestDeleteEntry::questionShowsAHostileNumberAsItIs_data()
{
    QTest::addColumn<QString>("number");
    QTest::newRow("tag") << u"<b>x</b>"_s;
    QTest::newRow("quote") << u"7'8"_s;
    QTest::newRow("placeholder") << u"7%2"_s;
    QTest::newRow("own placeholder") << u"%1"_s;
    QTest::newRow("emoji") << u"🚂"_s;
}

void TestDeleteEntry::questionShowsAHostileNumberAsItIs()
{
    QFETCH(const QString, number);
    QVERIFY(executeWrite(u"UPDATE loc_seen SET nummer = :number WHERE id = 1"_s, { { u":number"_s, number } }).done);
    ModalScript script;
    script.box(u"Eintrag Entfernen"_s,
        u"Eintrag 1 mit der Lok-Nummer "_s + number + u" und alle dazugehörenden Bilder löschen?"_s, u"Ja"_s);
    QVERIFY(remove());
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(m_nummer, number);
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM loc_seen"_s).toInt(), 1);
}

void TestDeleteEntry::missingCopiesDoNotStopTheDeletion()
{
    QVERIFY(QFile::remove(u"Data/Pictures/Folder001/copy1.jpg"_s));
    QVERIFY(executeWrite(u"UPDATE loc_picture SET pictAuxPath = NULL WHERE id = 2"_s).done);
    ModalScript script;
    script.box(u"Eintrag Entfernen"_s, question(u"11407"_s), u"Ja"_s);
    QVERIFY(remove());
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM loc_picture"_s).toInt(), 1);
}

void TestDeleteEntry::rowsCannotMakeItRemoveTheUsersFiles()
{
    QVERIFY(executeWrite(u"UPDATE loc_picture SET pictAuxPath = pictOrigPath WHERE id = 1"_s).done);
    QVERIFY(
        executeWrite(u"UPDATE loc_picture SET pictAuxPath = './Data/Pictures/../bahnakte.dat' WHERE id = 2"_s).done);
    ModalScript script;
    script.box(u"Eintrag Entfernen"_s, question(u"11407"_s), u"Ja"_s);
    QVERIFY(remove());
    QCOMPARE(script.problems(), QStringList());
    QVERIFY(QFile::exists(u"source1.jpg"_s));
    QVERIFY(QFile::exists(databasePath()));
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM loc_seen"_s).toInt(), 1);
}

void TestDeleteEntry::copyThatAnotherEntryCallsItsSourceStays()
{
    QVERIFY(executeWrite(u"UPDATE loc_picture SET pictOrigPath = :path WHERE id = 3"_s,
        { { u":path"_s, m_catalogue->path(u"Data/Pictures/Folder001/copy2.jpg"_s) } })
                .done);
    ModalScript script;
    script.box(u"Eintrag Entfernen"_s, question(u"11407"_s), u"Ja"_s);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(u"^Datei bleibt stehen"_s));
    QVERIFY(remove());
    QCOMPARE(script.problems(), QStringList());
    QVERIFY(!QFile::exists(u"Data/Pictures/Folder001/copy1.jpg"_s));
    QVERIFY(QFile::exists(u"Data/Pictures/Folder001/copy2.jpg"_s));
    QCOMPARE(m_catalogue->value(u"SELECT group_concat(id) FROM loc_picture"_s).toString(), u"3"_s);
}

void TestDeleteEntry::idOfNoEntryIsAMissingEntry_data()
{
    QTest::addColumn<int>("id");
    QTest::newRow("what pictures of groups have in its place") << -1;
    QTest::newRow("what an unreadable id reads as") << 0;
}

void TestDeleteEntry::idOfNoEntryIsAMissingEntry()
{
    QFETCH(const int, id);
    m_catalogue->addPicture(id);
    QVERIFY(executeWrite(u"UPDATE loc_seen SET id = %1 WHERE id = 2"_s.arg(id)).done);
    const ModalScript script;
    m_entry = id;
    QVERIFY(remove());
    QCOMPARE(script.problems(), QStringList());
    const WriteOutcome outcome = removeEntry(id);
    QVERIFY(outcome.done);
    QCOMPARE(outcome.rows, 0);
    QVERIFY(QFile::exists(u"Data/Pictures/Folder001/copy4.jpg"_s));
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM loc_picture"_s).toInt(), 4);
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM loc_seen"_s).toInt(), 2);
}

void TestDeleteEntry::readerOfTheCatalogueLosesNothing()
{
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"other"_s);
        other.setDatabaseName(databasePath());
        QVERIFY(other.open());
        QSqlQuery reading(other);
        QVERIFY(reading.exec(u"SELECT * FROM loc_seen"_s) && reading.next()); // and not to the end
        ModalScript script;
        script.box(u"Eintrag Entfernen"_s, question(u"11407"_s), u"Ja"_s).anyBox(u"DB-Löschen"_s);
        QVERIFY(!remove());
        QCOMPARE(script.problems(), QStringList());
        expectNothingRemoved();
        reading.finish();
        script.box(u"Eintrag Entfernen"_s, question(u"11407"_s), u"Ja"_s);
        QVERIFY(remove());
        QCOMPARE(script.problems(), QStringList());
    }
    QSqlDatabase::removeDatabase(u"other"_s);
    QVERIFY(!QFile::exists(u"Data/Pictures/Folder001/copy1.jpg"_s));
}

void TestDeleteEntry::unreadablePicturesKeepTheEntry()
{
    // A column that cannot be computed lets the reading fail, but no deletion.
    QVERIFY(executeWrite(u"ALTER TABLE loc_picture ADD COLUMN x AS (abs(-9223372036854775807 - id))"_s).done);
    QVERIFY(!QSqlQuery().exec(u"SELECT * FROM loc_picture WHERE locpictureid = 1"_s));
    ModalScript script;
    script.box(u"Eintrag Entfernen"_s, question(u"11407"_s), u"Ja"_s).then([&script](QWidget *widget) {
        auto *box = qobject_cast<QMessageBox *>(widget);
        QVERIFY(box != nullptr);
        QCOMPARE(box->windowTitle(), u"DB-Löschen"_s);
        QVERIFY(box->text().contains(u"overflow"_s));
        script.click(box, u"OK"_s);
    });
    QVERIFY(!remove());
    QCOMPARE(script.problems(), QStringList());
    expectNothingRemoved();
}

void TestDeleteEntry::lockedCatalogueLosesNothing()
{
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"other"_s);
        other.setDatabaseName(databasePath());
        QVERIFY(other.open());
        ModalScript script;
        script.then([&](QWidget *box) {
            QVERIFY(QSqlQuery(other).exec(u"BEGIN IMMEDIATE"_s)); // while the user is asked, nothing is locked
            script.click(box, u"Ja"_s);
        });
        script.then([&](QWidget *widget) {
            auto *box = qobject_cast<QMessageBox *>(widget);
            QVERIFY(box != nullptr);
            QCOMPARE(box->windowTitle(), u"DB-Löschen"_s);
            QCOMPARE(box->icon(), QMessageBox::Information);
            QCOMPARE(box->standardButtons(), QMessageBox::Ok);
            QVERIFY(box->text().contains(u"locked"_s));
            QVERIFY(QSqlQuery(other).exec(u"ROLLBACK"_s)); // the box itself holds no transaction
            QVERIFY(QSqlQuery(other).exec(u"UPDATE settings SET value = 1"_s));
            script.click(box, u"OK"_s);
        });
        QVERIFY(!remove());
        QCOMPARE(script.problems(), QStringList());
    }
    QSqlDatabase::removeDatabase(u"other"_s);
    expectNothingRemoved();
}

void TestDeleteEntry::readOnlyCatalogueLosesNothing()
{
    // A transaction can begin on a read-only file; the copies must not be gone when the first DELETE fails.
    QSqlDatabase database = QSqlDatabase::database();
    database.close();
    database.setConnectOptions(u"QSQLITE_OPEN_READONLY"_s);
    QVERIFY(database.open());
    ModalScript script;
    script.box(u"Eintrag Entfernen"_s, question(u"11407"_s), u"Ja"_s).anyBox(u"DB-Löschen"_s);
    QVERIFY(!remove());
    QCOMPARE(script.problems(), QStringList());
    expectNothingRemoved();
}

void TestDeleteEntry::failedDeletionOfPicturesKeepsTheEntry()
{
    QVERIFY(
        executeWrite(u"CREATE TEMP TRIGGER t BEFORE DELETE ON loc_picture BEGIN SELECT RAISE(ABORT, 'no way'); END"_s)
            .done);
    ModalScript script;
    script.box(u"Eintrag Entfernen"_s, question(u"11407"_s), u"Ja"_s).anyBox(u"DB-Löschen"_s);
    QVERIFY(!remove());
    QCOMPARE(script.problems(), QStringList());
    expectNothingRemoved();
}

void TestDeleteEntry::failedDeletionOfTheEntryKeepsThePictureRows()
{
    QVERIFY(executeWrite(u"CREATE TEMP TRIGGER t BEFORE DELETE ON loc_seen BEGIN SELECT RAISE(ABORT, 'no way'); END"_s)
                .done);
    ModalScript script;
    script.box(u"Eintrag Entfernen"_s, question(u"11407"_s), u"Ja"_s).anyBox(u"DB-Löschen"_s);
    QVERIFY(!remove());
    QCOMPARE(script.problems(), QStringList());
    expectNothingRemoved();
}

BAHNITO_TEST_MAIN(TestDeleteEntry)
#include "tst_deleteentry.moc"
