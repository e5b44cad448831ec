#include "forms/locmodelform.h"
#include "store/catalogquery.h"
#include "store/database.h"
#include "tests/support/modalscript.h"
#include "tests/support/otherconnection.h"
#include "tests/support/testcatalogue.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMetaMethod>
#include <QPushButton>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QSqlTableModel>
#include <QTableView>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

QPushButton *buttonOf(const QWidget &form, const QString &text)
{
    for (QPushButton *button : form.findChildren<QPushButton *>()) {
        if (button->text() == text) {
            return button;
        }
    }
    return nullptr;
}

bool isEnabled(const QWidget &form, const QString &text)
{
    return buttonOf(form, text)->isEnabled();
}

void press(const QWidget &form, const QString &text)
{
    QVERIFY2(isEnabled(form, text), qUtf8Printable(text));
    QTest::mouseClick(buttonOf(form, text), Qt::LeftButton);
}

QLineEdit *nameEdit(const QWidget &form)
{
    return form.findChild<QLineEdit *>(u"nameEdit"_s);
}

QTableView *listOf(const QWidget &form)
{
    return form.findChild<QTableView *>();
}

QStringList namesIn(const QTableView *list)
{
    QStringList names;
    for (int row = 0; row < list->model()->rowCount(); ++row) {
        names.append(list->model()->index(row, 1).data().toString());
    }
    return names;
}

void clickRow(const QWidget &form, int row)
{
    const QTableView *list = listOf(form);
    const QPoint place = list->visualRect(list->model()->index(row, 1)).center();
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, place);
}

const QString StillUsed = u"Die Baureihe kann nicht entfernt werden, da sich noch Lok-Einträge darunter befinden!"_s;
const QString DeleteQuestion = u"Soll die gewählte Baureihe gelöscht werden?"_s;

} // namespace

class TestLocModelForm final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_catalogue.reset(); }

    void slotsKeepTheirOrder();
    void dialogHasItsTexts();
    void onlySchliessenIsEnabledAtFirst();
    void listShowsTheClassesOfTheGroupByName();
    void listCannotBeTypedInto();
    void rowEnablesMovingAndDeleting();
    void schliessenAccepts();

    void nameEnablesSaving();
    void newClassIsStoredInTheGroup();
    void returnSavesTheName();
    void newClassIsKnownToTheCache();
    void nameIsStoredAsTyped_data();
    void nameIsStoredAsTyped();
    void failedInsertIsTold();
    void missingGroupTakesNoClasses_data();
    void missingGroupTakesNoClasses();

    void lockedGroupIsNotTakenForAMissingOne();
    void listComesBackAfterALock();
    void spaceChoosesTheOnlyRowAgain();
    void classOfAGroupDeletedMeanwhileIsTold();
    void movedClassLeavesTheList();
    void movingWithoutARowDoesNothing();
    void cancelledMoveKeepsTheClass();

    void classWithAnEntryStays();
    void neinKeepsTheClass();
    void jaDeletesTheClass();
    void deletingWithoutARowDoesNothing();
    void entryAddedMeanwhileKeepsTheClass();
    void failedDeletionIsTold();

    void tabLeadsThroughTheDialogAsOneReads();

private:
    void refuse(const QString &what);

    std::unique_ptr<TestCatalogue> m_catalogue;
    int m_group = 0;
};

void TestLocModelForm::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    m_group = m_catalogue->addGroup(u"Krokodile"_s);
}

/// Makes the database refuse a kind of write, for example "INSERT ON loc_model".
void TestLocModelForm::refuse(const QString &what)
{
    QVERIFY(QSqlQuery().exec(
        u"CREATE TEMP TRIGGER refuse BEFORE %1 BEGIN SELECT RAISE(ABORT, 'verweigert'); END"_s.arg(what)));
}

void TestLocModelForm::slotsKeepTheirOrder()
{
    QStringList names;
    const QMetaObject &meta = LocModelForm::staticMetaObject;
    for (int index = meta.methodOffset(); index < meta.methodCount(); ++index) {
        names.append(QString::fromLatin1(meta.method(index).name()));
    }
    QCOMPARE(names,
        QStringList({ u"checktextEdits"_s, u"addModel"_s, u"moveModel"_s, u"deleteModel"_s, u"getTableViewIndex"_s }));
}

void TestLocModelForm::dialogHasItsTexts()
{
    const LocModelForm form(m_group);
    QCOMPARE(form.windowTitle(), u"Baureihen"_s);
    const auto *box = form.findChild<QGroupBox *>(u"modelBox"_s);
    QCOMPARE(box->title(), u"Baureihe erfassen / entfernen"_s);
    QCOMPARE(box->font().family(), u"Helvetica [Cronyx]"_s);
    QCOMPARE(form.findChild<QGroupBox *>(u"listBox"_s)->title(), u"Liste der Baureihen"_s);
    const QList<QLabel *> labels = form.findChildren<QLabel *>();
    QCOMPARE(labels.size(), 2);
    QCOMPARE(labels.first()->text(), u"Name der neuen Baureihe:"_s);
    QCOMPARE(labels.first()->buddy(), nameEdit(form));
    QCOMPARE(labels.last()->text(), u" "_s);
}

void TestLocModelForm::onlySchliessenIsEnabledAtFirst()
{
    m_catalogue->addModel(u"Ce 6/8 II"_s, m_group);
    const LocModelForm form(m_group);
    for (const QString &text : { u"Speichern"_s, u"Baureihe verschieben"_s, u"Baureihe entfernen"_s }) {
        QVERIFY2(!isEnabled(form, text), qUtf8Printable(text));
    }
    QVERIFY(isEnabled(form, u"Schliessen"_s));
}

void TestLocModelForm::listShowsTheClassesOfTheGroupByName()
{
    m_catalogue->addModel(u"Re 4/4"_s, m_catalogue->addGroup(u"Re"_s));
    m_catalogue->addModel(u"Ce 6/8 III"_s, m_group);
    m_catalogue->addModel(u"<b>Be</b>"_s, m_group);
    LocModelForm form(m_group);
    form.show();
    const QTableView *list = listOf(form);
    QCOMPARE(namesIn(list), QStringList({ u"<b>Be</b>"_s, u"Ce 6/8 III"_s }));
    QCOMPARE(list->model()->headerData(1, Qt::Horizontal).toString(), u"Name"_s);
    QVERIFY(list->isColumnHidden(0));
    QVERIFY(!list->isColumnHidden(1));
    QVERIFY(list->isColumnHidden(2));
    const auto *model = qobject_cast<QSqlTableModel *>(list->model());
    QCOMPARE(model->filter(), u"locid = %1 "_s.arg(m_group));
}

void TestLocModelForm::listCannotBeTypedInto()
{
    m_catalogue->addModel(u"Ce 6/8 II"_s, m_group);
    LocModelForm form(m_group);
    form.show();
    clickRow(form, 0);
    QTest::keyClick(listOf(form), Qt::Key_F2);
    QTest::keyClicks(listOf(form), u"Weg"_s);
    QVERIFY(listOf(form)->findChild<QLineEdit *>() == nullptr);
    QCOMPARE(namesIn(listOf(form)), QStringList({ u"Ce 6/8 II"_s }));
    QCOMPARE(m_catalogue->value(u"SELECT modelname FROM loc_model"_s).toString(), u"Ce 6/8 II"_s);
}

void TestLocModelForm::rowEnablesMovingAndDeleting()
{
    m_catalogue->addModel(u"Ce 6/8 II"_s, m_group);
    LocModelForm form(m_group);
    form.show();
    clickRow(form, 0);
    QVERIFY(isEnabled(form, u"Baureihe verschieben"_s));
    QVERIFY(isEnabled(form, u"Baureihe entfernen"_s));
    QVERIFY(!isEnabled(form, u"Speichern"_s));
}

void TestLocModelForm::schliessenAccepts()
{
    ModalScript script;
    script.then([&script](QWidget *form) { script.click(form, u"Schliessen"_s); });
    LocModelForm form(m_group);
    QCOMPARE(form.exec(), int(QDialog::Accepted));
    QCOMPARE(script.problems(), QStringList());
}

void TestLocModelForm::nameEnablesSaving()
{
    LocModelForm form(m_group);
    form.show();
    QTest::keyClicks(nameEdit(form), u"C"_s);
    QVERIFY(isEnabled(form, u"Speichern"_s));
    QTest::keyClick(nameEdit(form), Qt::Key_Backspace);
    QVERIFY(!isEnabled(form, u"Speichern"_s));
}

void TestLocModelForm::newClassIsStoredInTheGroup()
{
    m_catalogue->addModel(u"Ce 6/8 III"_s, m_group);
    LocModelForm form(m_group);
    form.show();
    QTest::keyClicks(nameEdit(form), u"Ce 6/8 II"_s);
    press(form, u"Speichern"_s);
    QCOMPARE(namesIn(listOf(form)), QStringList({ u"Ce 6/8 II"_s, u"Ce 6/8 III"_s }));
    QCOMPARE(m_catalogue->value(u"SELECT locid FROM loc_model WHERE modelname = 'Ce 6/8 II'"_s).toInt(), m_group);
    QCOMPARE(nameEdit(form)->text(), QString());
    QVERIFY(!nameEdit(form)->isEnabled());
    QVERIFY(!isEnabled(form, u"Speichern"_s));
}

void TestLocModelForm::returnSavesTheName()
{
    LocModelForm form(m_group);
    form.show();
    QTest::keyClick(nameEdit(form), Qt::Key_Return);
    QVERIFY(form.isVisible());
    QTest::keyClicks(nameEdit(form), u"Ce 6/8 II"_s);
    QTest::keyClick(nameEdit(form), Qt::Key_Return);
    QVERIFY(form.isVisible());
    QCOMPARE(m_catalogue->value(u"SELECT group_concat(modelname) FROM loc_model"_s).toString(), u"Ce 6/8 II"_s);
}

void TestLocModelForm::newClassIsKnownToTheCache()
{
    LocModelForm form(m_group);
    form.show();
    QTest::keyClicks(nameEdit(form), u"Ce 6/8 II"_s);
    press(form, u"Speichern"_s);
    const int id = m_catalogue->value(u"SELECT id FROM loc_model"_s).toInt();
    QCOMPARE(CatalogQuery::instance().modelNameCached(id), u"Ce 6/8 II"_s);
}

void TestLocModelForm::nameIsStoredAsTyped_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("stored");
    QTest::newRow("38 characters stay whole") << QString(38, u'W') << QString(38, u'W');
    QTest::newRow("45 characters are cut") << QString(38, u'W') + u"xxxxxxx"_s << QString(38, u'W');
    QTest::newRow("10,000 characters are cut") << QString(10'000, u'W') << QString(38, u'W');
    QTest::newRow("no half of an emoji stays") << QString(37, u'W') + u"\U0001F682"_s << QString(37, u'W');
    QTest::newRow("emoji") << u"\U0001F682"_s << u"\U0001F682"_s;
    QTest::newRow("markup") << u"<b>x</b>"_s << u"<b>x</b>"_s;
    QTest::newRow("quote") << u"7'8"_s << u"7'8"_s;
    QTest::newRow("placeholder") << u"7%2"_s << u"7%2"_s;
}

void TestLocModelForm::nameIsStoredAsTyped()
{
    QFETCH(QString, typed);
    LocModelForm form(m_group);
    form.show();
    QTest::keyClicks(nameEdit(form), u"C"_s);
    nameEdit(form)->setText(typed); // pasted
    press(form, u"Speichern"_s);
    QTEST(m_catalogue->value(u"SELECT modelname FROM loc_model"_s).toString(), "stored");
    QCOMPARE(nameEdit(form)->text(), QString());
    QVERIFY(!nameEdit(form)->isEnabled());
}

void TestLocModelForm::failedInsertIsTold()
{
    refuse(u"INSERT ON loc_model"_s);
    LocModelForm form(m_group);
    form.show();
    QTest::keyClicks(nameEdit(form), u"Ce 6/8 II"_s);
    ModalScript script;
    script.anyBox(u"DB-Insert"_s);
    press(form, u"Speichern"_s);
    QCOMPARE(script.problems(), QStringList());
    QVERIFY(form.isVisible());
    QCOMPARE(nameEdit(form)->text(), QString());
    QVERIFY(!nameEdit(form)->isEnabled());
    QVERIFY(!isEnabled(form, u"Speichern"_s));
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM loc_model"_s).toInt(), 0);
}

void TestLocModelForm::missingGroupTakesNoClasses_data()
{
    QTest::addColumn<int>("group");
    QTest::newRow("deleted") << 99;
    QTest::newRow("none") << 0;
    QTest::newRow("never stored") << -1;
}

void TestLocModelForm::missingGroupTakesNoClasses()
{
    QFETCH(int, group);
    LocModelForm form(group);
    form.show();
    QCOMPARE(namesIn(listOf(form)), QStringList());
    QVERIFY(!nameEdit(form)->isEnabled());
    QVERIFY(!isEnabled(form, u"Speichern"_s));
    QVERIFY(isEnabled(form, u"Schliessen"_s));
}

void TestLocModelForm::lockedGroupIsNotTakenForAMissingOne()
{
    std::unique_ptr<LocModelForm> form;
    {
        const OtherConnection other(u"BEGIN EXCLUSIVE"_s);
        QVERIFY(other.works());
        form = std::make_unique<LocModelForm>(m_group);
    }
    form->show();
    QVERIFY(nameEdit(*form)->isEnabled());
    QTest::keyClicks(nameEdit(*form), u"Ce 6/8 II"_s);
    press(*form, u"Speichern"_s);
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM loc_model"_s).toInt(), 1);
    QCOMPARE(namesIn(listOf(*form)), QStringList(u"Ce 6/8 II"_s)); // which could not be read at first
}

void TestLocModelForm::listComesBackAfterALock()
{
    m_catalogue->addModel(u"Ce 6/8 II"_s, m_group);
    LocModelForm form(m_group);
    form.show();
    clickRow(form, 0);
    {
        const OtherConnection other(u"BEGIN EXCLUSIVE"_s);
        ModalScript script;
        script.box(u"Baureihe entfernen"_s, u"Soll die gewählte Baureihe gelöscht werden?"_s, u"Ja"_s)
            .anyBox(u"DB-Delete"_s);
        press(form, u"Baureihe entfernen"_s);
        QCOMPARE(script.problems(), QStringList());
    }
    QTest::keyClicks(nameEdit(form), u"Ce 6/8 III"_s);
    press(form, u"Speichern"_s);
    QCOMPARE(namesIn(listOf(form)), (QStringList { u"Ce 6/8 II"_s, u"Ce 6/8 III"_s }));
    const auto *header = listOf(form)->horizontalHeader();
    QCOMPARE(header->count() - header->hiddenSectionCount(), 1);
}

void TestLocModelForm::spaceChoosesTheOnlyRowAgain()
{
    m_catalogue->addModel(u"Ce 6/8 II"_s, m_group);
    LocModelForm form(m_group);
    form.show();
    form.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&form));
    listOf(form)->setFocus(Qt::TabFocusReason);
    QTest::keyClick(listOf(form), Qt::Key_Space);
    ModalScript script;
    script.then([&script](QWidget *move) { script.click(move, u"Schliessen"_s); });
    press(form, u"Baureihe verschieben"_s);
    QCOMPARE(script.problems(), QStringList());
    QVERIFY(!isEnabled(form, u"Baureihe verschieben"_s));
    QTest::keyClick(listOf(form), Qt::Key_Space);
    QVERIFY(isEnabled(form, u"Baureihe verschieben"_s));
}

void TestLocModelForm::classOfAGroupDeletedMeanwhileIsTold()
{
    LocModelForm form(m_group);
    form.show();
    QTest::keyClicks(nameEdit(form), u"Ce 6/8 II"_s);
    QVERIFY(QSqlQuery().exec(u"DELETE FROM locomotive"_s));
    ModalScript script;
    script.box(u"DB-Insert"_s, u"Die Gruppe ist nicht mehr vorhanden, sie wurde inzwischen gelöscht."_s);
    press(form, u"Speichern"_s);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM loc_model"_s).toInt(), 0);
}

void TestLocModelForm::movedClassLeavesTheList()
{
    const int target = m_catalogue->addGroup(u"Re"_s);
    m_catalogue->addModel(u"Ce 6/8 II"_s, m_group);
    const int moved = m_catalogue->addModel(u"Re 4/4"_s, m_group);
    LocModelForm form(m_group);
    form.show();
    clickRow(form, 1);
    ModalScript script;
    script.then([&script](QWidget *dialog) {
        QCOMPARE(dialog->windowTitle(), u"Baureihe-Gruppen"_s);
        QCOMPARE(dialog->findChild<QLineEdit *>(u"modelNameEdit"_s)->text(), u"Re 4/4"_s);
        clickRow(*dialog, 1);
        script.click(dialog, u"Speichern"_s);
        script.click(dialog, u"Schliessen"_s);
    });
    press(form, u"Baureihe verschieben"_s);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(namesIn(listOf(form)), QStringList({ u"Ce 6/8 II"_s }));
    QVERIFY(!isEnabled(form, u"Baureihe verschieben"_s));
    QCOMPARE(m_catalogue->value(u"SELECT locid FROM loc_model WHERE id = %1"_s.arg(moved)).toInt(), target);
    const LocModelForm targetForm(target);
    QCOMPARE(namesIn(listOf(targetForm)), QStringList({ u"Re 4/4"_s }));
}

void TestLocModelForm::movingWithoutARowDoesNothing()
{
    m_catalogue->addModel(u"Ce 6/8 II"_s, m_group);
    LocModelForm form(m_group);
    form.show();
    listOf(form)->setFocus();
    ModalScript script;
    form.moveModel();
    QTest::qWait(20);
    QCOMPARE(script.problems(), QStringList());
}

void TestLocModelForm::cancelledMoveKeepsTheClass()
{
    m_catalogue->addModel(u"Ce 6/8 II"_s, m_group);
    LocModelForm form(m_group);
    form.show();
    clickRow(form, 0);
    ModalScript script;
    script.then([](QWidget *dialog) { QTest::keyClick(dialog, Qt::Key_Escape); });
    press(form, u"Baureihe verschieben"_s);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(namesIn(listOf(form)), QStringList({ u"Ce 6/8 II"_s }));
    QVERIFY(!isEnabled(form, u"Baureihe verschieben"_s));
    clickRow(form, 0);
    QVERIFY(isEnabled(form, u"Baureihe verschieben"_s));
}

void TestLocModelForm::classWithAnEntryStays()
{
    m_catalogue->addEntry(u"14253"_s, m_catalogue->addModel(u"Ce 6/8 II"_s, m_group));
    LocModelForm form(m_group);
    form.show();
    clickRow(form, 0);
    ModalScript script;
    script.box(u"Daten vorhanden"_s, StillUsed);
    press(form, u"Baureihe entfernen"_s);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM loc_model"_s).toInt(), 1);
}

void TestLocModelForm::neinKeepsTheClass()
{
    m_catalogue->addModel(u"Ce 6/8 II"_s, m_group);
    LocModelForm form(m_group);
    form.show();
    clickRow(form, 0);
    ModalScript script;
    script.box(u"Baureihe entfernen"_s, DeleteQuestion, u"Nein"_s);
    press(form, u"Baureihe entfernen"_s);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM loc_model"_s).toInt(), 1);
}

void TestLocModelForm::jaDeletesTheClass()
{
    m_catalogue->addModel(u"Be 6/8 II"_s, m_group);
    m_catalogue->addEntry(u"14253"_s, m_catalogue->addModel(u"Ce 6/8 II"_s, m_group));
    LocModelForm form(m_group);
    form.show();
    clickRow(form, 0);
    ModalScript script;
    script.box(u"Baureihe entfernen"_s, DeleteQuestion, u"Ja"_s);
    press(form, u"Baureihe entfernen"_s);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(namesIn(listOf(form)), QStringList({ u"Ce 6/8 II"_s }));
    QCOMPARE(m_catalogue->value(u"SELECT group_concat(modelname) FROM loc_model"_s).toString(), u"Ce 6/8 II"_s);
    QVERIFY(!isEnabled(form, u"Baureihe verschieben"_s));
    QVERIFY(!isEnabled(form, u"Baureihe entfernen"_s));
}

void TestLocModelForm::deletingWithoutARowDoesNothing()
{
    m_catalogue->addModel(u"Ce 6/8 II"_s, m_group);
    LocModelForm form(m_group);
    form.show();
    listOf(form)->setFocus();
    ModalScript script;
    form.deleteModel();
    QTest::qWait(20);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM loc_model"_s).toInt(), 1);
}

void TestLocModelForm::entryAddedMeanwhileKeepsTheClass()
{
    const int model = m_catalogue->addModel(u"Ce 6/8 II"_s, m_group);
    LocModelForm form(m_group);
    form.show();
    clickRow(form, 0);
    ModalScript script;
    script.then([this, &script, model](QWidget *box) {
        m_catalogue->addEntry(u"14253"_s, model);
        script.click(box, u"Ja"_s);
    });
    script.box(u"Daten vorhanden"_s, StillUsed);
    press(form, u"Baureihe entfernen"_s);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM loc_model"_s).toInt(), 1);
}

void TestLocModelForm::failedDeletionIsTold()
{
    m_catalogue->addModel(u"Ce 6/8 II"_s, m_group);
    refuse(u"DELETE ON loc_model"_s);
    LocModelForm form(m_group);
    form.show();
    clickRow(form, 0);
    ModalScript script;
    script.box(u"Baureihe entfernen"_s, DeleteQuestion, u"Ja"_s);
    script.anyBox(u"DB-Delete"_s);
    press(form, u"Baureihe entfernen"_s);
    QCOMPARE(script.problems(), QStringList());
    QVERIFY(form.isVisible());
    QCOMPARE(namesIn(listOf(form)), QStringList({ u"Ce 6/8 II"_s }));
}

void TestLocModelForm::tabLeadsThroughTheDialogAsOneReads()
{
    m_catalogue->addModel(u"Ce 6/8 II"_s, m_group);
    LocModelForm form(m_group);
    form.show();
    clickRow(form, 0);
    nameEdit(form)->setFocus();
    QTest::keyClicks(nameEdit(form), u"Ae"_s);
    QStringList order;
    for (int stop = 0; stop < 6; ++stop) {
        order.append(form.focusWidget()->objectName());
        QTest::keyClick(form.focusWidget(), Qt::Key_Tab);
    }
    QCOMPARE(order,
        QStringList(
            { u"nameEdit"_s, u"saveButton"_s, u"modelList"_s, u"moveButton"_s, u"deleteButton"_s, u"closeButton"_s }));
}

BAHNITO_TEST_MAIN(TestLocModelForm)
#include "tst_locmodelform.moc"
