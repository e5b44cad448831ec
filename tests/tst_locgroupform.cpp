#include "forms/locgroupform.h"
#include "tests/support/modalscript.h"
#include "tests/support/testcatalogue.h"
#include "tests/support/testmain.h"
#include "tests/support/testpictures.h"

#include <QApplication>
#include <QDir>
#include <QGraphicsView>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMetaMethod>
#include <QPushButton>
#include <QSignalSpy>
#include <QSqlDatabase>
#include <QSqlQuery>
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
    return form.findChild<QTableView *>(u"groupList"_s);
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

bool showsPicture(const QWidget &form)
{
    const auto *preview = form.findChild<QGraphicsView *>(u"preview"_s);
    return preview->scene() != nullptr && !preview->scene()->items().isEmpty();
}

const QString NothingChosen = u"Die Bild-Datei konnte nicht gefunden\n-> klicken Sie auf einen Verzeichnis-Eintrag!"_s;
const QString StillUsed = u"Die Gruppe kann nicht entfernt werden, da sich noch Baureihen darunter befinden!"_s;
const QString DeleteQuestion = u"Soll die gewählte Gruppe gelöscht werden?"_s;

} // namespace

class TestLocGroupForm final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_catalogue.reset(); }

    void slotsKeepTheirOrder();
    void maintenanceDialogHasItsTexts();
    void onlySchliessenIsEnabledAtFirst();
    void listShowsNamesAndPathsByName();
    void listCannotBeTypedInto();
    void longListLeavesTheFileWritable();
    void rowEnablesItsButtons_data();
    void rowEnablesItsButtons();
    void focusAloneChoosesNothing();

    void nameEnablesAssigningOnly();
    void emptyNameDisablesSavingAndAssigning();
    void newGroupIsStoredWithItsPicture_data();
    void newGroupIsStoredWithItsPicture();
    void formIsReadyForTheNextGroup();
    void pictureFormWithoutAPictureChangesNothing();
    void cancelledPictureLeavesNeitherRowNorFile();
    void nameIsStoredAsTyped_data();
    void nameIsStoredAsTyped();
    void assignedPictureWithoutAGroupIsDroppedOnClosing();
    void savedGroupKeepsItsPictureOnClosing();
    void removedAuxFolderIsMadeAgain();
    void moveDialogIgnoresSlotsOfTheOtherDialog();
    void failedInsertIsTold();
    void returnSavesOnlyACompleteGroup();

    void pictureOfTheChosenGroupIsShown();
    void missingPictureFileIsTold();
    void replacedPictureIsStored();
    void replacingDoesNotTouchTheNewGroup();
    void replacingWithoutAChoiceChangesNothing();
    void failedUpdateOfThePictureIsTold();
    void pictureOfAGroupDeletedMeanwhileIsDropped();

    void groupWithAClassStays();
    void neinKeepsTheGroup();
    void jaDeletesTheGroupButNotItsPictureFile();
    void deletingWithNothingChosenIsTold();
    void classAddedMeanwhileKeepsTheGroup();
    void failedDeletionIsTold();
    void baureihenOpensTheClassForm();

    void moveDialogHasItsTexts();
    void moveStoresTheTargetGroup();
    void moveWithoutARowDoesNothing();
    void failedMoveIsTold();
    void moveOfWhatIsGoneIsTold_data();
    void moveOfWhatIsGoneIsTold();

    void tabLeadsThroughTheDialogAsOneReads();

private:
    void assignPicture(const LocGroupForm &form, const QString &button, bool saveInForm = true);
    [[nodiscard]] qsizetype copies() const;
    void refuse(const QString &what);

    std::unique_ptr<TestCatalogue> m_catalogue;
};

void TestLocGroupForm::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    writeTestJpeg(u"source.jpg"_s, { 1500, 1000 });
}

/// Chooses the source picture in the picture form that `button` opens.
void TestLocGroupForm::assignPicture(const LocGroupForm &form, const QString &button, bool saveInForm)
{
    ModalScript script;
    script.then([&script, saveInForm](QWidget *pictureForm) {
        script.click(pictureForm, u"Bild auswählen"_s);
        if (saveInForm) {
            script.click(pictureForm, u"Bild speichern"_s);
        }
        script.click(pictureForm, u"Schliessen"_s);
    });
    script.chooseFile(m_catalogue->path(u"source.jpg"_s));
    press(form, button);
    QCOMPARE(script.problems(), QStringList());
}

qsizetype TestLocGroupForm::copies() const
{
    return QDir(u"Data/Pictures/AuxFolder"_s).entryList(QDir::Files).size();
}

/// Makes the database refuse a kind of write, for example "INSERT ON locomotive".
void TestLocGroupForm::refuse(const QString &what)
{
    QVERIFY(QSqlQuery().exec(
        u"CREATE TEMP TRIGGER refuse BEFORE %1 BEGIN SELECT RAISE(ABORT, 'verweigert'); END"_s.arg(what)));
}

void TestLocGroupForm::slotsKeepTheirOrder()
{
    QStringList names;
    const QMetaObject &meta = LocGroupForm::staticMetaObject;
    for (int index = meta.methodOffset(); index < meta.methodCount(); ++index) {
        if (meta.method(index).methodType() == QMetaMethod::Slot) {
            names.append(QString::fromLatin1(meta.method(index).name()));
        }
    }
    QCOMPARE(names,
        QStringList({ u"checktextEdits"_s, u"addGroup"_s, u"moveToGroup"_s, u"showLocPicture"_s, u"newLocPicture"_s,
            u"changeLocPicture"_s, u"deleteGroup"_s, u"editLocModel"_s, u"getTableViewIndex"_s }));
}

void TestLocGroupForm::maintenanceDialogHasItsTexts()
{
    const LocGroupForm form;
    QCOMPARE(form.windowTitle(), u"Baureihe-Gruppen (mit Bild)"_s);
    const auto *box = form.findChild<QGroupBox *>(u"groupBox"_s);
    QCOMPARE(box->title(), u"Gruppe erfassen / entfernen"_s);
    QCOMPARE(box->font().family(), u"Helvetica [Cronyx]"_s);
    QCOMPARE(box->font().pointSize(), 9);
    QCOMPARE(form.findChild<QGroupBox *>(u"listBox"_s)->title(), u"Liste der Gruppen"_s);
    QStringList labels;
    for (const QLabel *label : form.findChildren<QLabel *>()) {
        labels.append(label->text());
        if (label->text() == u"Name der neuen Gruppe:"_s) {
            QCOMPARE(label->buddy(), nameEdit(form));
        }
    }
    QCOMPARE(labels, QStringList({ u"Name der neuen Gruppe:"_s, u" "_s }));
    QCOMPARE(nameEdit(form)->text(), QString());
}

void TestLocGroupForm::onlySchliessenIsEnabledAtFirst()
{
    m_catalogue->addGroup(u"Krokodile"_s);
    const LocGroupForm form;
    const QStringList disabled { u"Speichern"_s, u"Bild zeigen"_s, u"Bild zuweisen"_s, u"Bild austauschen"_s,
        u"Baureihen"_s, u"Gruppe entfernen"_s };
    for (const QString &text : disabled) {
        QVERIFY2(!isEnabled(form, text), qUtf8Printable(text));
    }
    QVERIFY(isEnabled(form, u"Schliessen"_s));
    QCOMPARE(form.findChildren<QPushButton *>().size(), disabled.size() + 1);
}

void TestLocGroupForm::listShowsNamesAndPathsByName()
{
    m_catalogue->addGroup(u"Krokodile"_s, u"./b.jpg"_s);
    m_catalogue->addGroup(u"<b>Ae</b>"_s, u"./a.jpg"_s);
    LocGroupForm form;
    form.show();
    const QTableView *list = listOf(form);
    QCOMPARE(namesIn(list), QStringList({ u"<b>Ae</b>"_s, u"Krokodile"_s }));
    QCOMPARE(list->model()->index(1, 2).data().toString(), u"./b.jpg"_s);
    QVERIFY(list->isColumnHidden(0));
    QVERIFY(!list->isColumnHidden(1));
    QVERIFY(!list->isColumnHidden(2));
    QCOMPARE(list->model()->headerData(1, Qt::Horizontal).toString(), u"Name"_s);
    QCOMPARE(list->model()->headerData(2, Qt::Horizontal).toString(), u"Bild-Datei"_s);
}

void TestLocGroupForm::listCannotBeTypedInto()
{
    m_catalogue->addGroup(u"Krokodile"_s);
    LocGroupForm form;
    form.show();
    clickRow(form, 0);
    QTest::keyClick(listOf(form), Qt::Key_F2);
    QTest::keyClicks(listOf(form), u"Weg"_s);
    QVERIFY(listOf(form)->findChild<QLineEdit *>() == nullptr);
    QCOMPARE(namesIn(listOf(form)), QStringList({ u"Krokodile"_s }));
    QCOMPARE(m_catalogue->value(u"SELECT name FROM locomotive"_s).toString(), u"Krokodile"_s);
}

void TestLocGroupForm::longListLeavesTheFileWritable()
{
    QVERIFY(
        QSqlQuery().exec(u"INSERT INTO locomotive (name, pictPath) WITH RECURSIVE n(i) AS "
                         "(SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 700) SELECT 'Gruppe ' || i, '' FROM n"_s));
    const LocGroupForm form;
    QCOMPARE(listOf(form)->model()->rowCount(), 700);
    bool written = false;
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"other"_s);
        other.setDatabaseName(u"./Data/bahnakte.dat"_s);
        QVERIFY(other.open());
        written = QSqlQuery(other).exec(u"DELETE FROM locomotive"_s);
    }
    QSqlDatabase::removeDatabase(u"other"_s);
    QVERIFY(written);
}

void TestLocGroupForm::rowEnablesItsButtons_data()
{
    QTest::addColumn<bool>("withKeyboard");
    QTest::newRow("a click") << false;
    QTest::newRow("the keyboard") << true;
}

void TestLocGroupForm::rowEnablesItsButtons()
{
    QFETCH(bool, withKeyboard);
    m_catalogue->addGroup(u"Ae"_s);
    m_catalogue->addGroup(u"Krokodile"_s);
    LocGroupForm form;
    form.show();
    if (withKeyboard) {
        listOf(form)->setFocus();
        QTest::keyClick(listOf(form), Qt::Key_Down);
    } else {
        clickRow(form, 1);
    }
    for (const QString &text : { u"Bild zeigen"_s, u"Bild austauschen"_s, u"Baureihen"_s, u"Gruppe entfernen"_s }) {
        QVERIFY2(isEnabled(form, text), qUtf8Printable(text));
    }
    QVERIFY(!isEnabled(form, u"Speichern"_s));
    QVERIFY(!isEnabled(form, u"Bild zuweisen"_s));
}

void TestLocGroupForm::focusAloneChoosesNothing()
{
    m_catalogue->addGroup(u"Krokodile"_s);
    LocGroupForm form;
    form.show();
    form.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&form));
    listOf(form)->setFocus();
    QVERIFY(listOf(form)->currentIndex().isValid()); // though nothing is marked
    QVERIFY(!isEnabled(form, u"Gruppe entfernen"_s));
    ModalScript script;
    script.box(u"File-Info"_s, NothingChosen);
    form.deleteGroup();
    QCOMPARE(script.problems(), QStringList());
}

void TestLocGroupForm::nameEnablesAssigningOnly()
{
    LocGroupForm form;
    form.show();
    QTest::keyClicks(nameEdit(form), u"K"_s);
    QVERIFY(isEnabled(form, u"Bild zuweisen"_s));
    QVERIFY(!isEnabled(form, u"Speichern"_s));
}

void TestLocGroupForm::emptyNameDisablesSavingAndAssigning()
{
    LocGroupForm form;
    form.show();
    QTest::keyClicks(nameEdit(form), u"K"_s);
    assignPicture(form, u"Bild zuweisen"_s);
    QVERIFY(isEnabled(form, u"Speichern"_s));
    QTest::keyClick(nameEdit(form), Qt::Key_Backspace);
    QVERIFY(!isEnabled(form, u"Speichern"_s));
    QVERIFY(!isEnabled(form, u"Bild zuweisen"_s));
    QTest::keyClicks(nameEdit(form), u"K"_s);
    QVERIFY(isEnabled(form, u"Bild zuweisen"_s));
    QVERIFY(!isEnabled(form, u"Speichern"_s));
}

void TestLocGroupForm::newGroupIsStoredWithItsPicture_data()
{
    QTest::addColumn<bool>("saveInForm");
    QTest::newRow("saved in the picture form") << true;
    QTest::newRow("only chosen there") << false;
}

void TestLocGroupForm::newGroupIsStoredWithItsPicture()
{
    QFETCH(bool, saveInForm);
    LocGroupForm form;
    form.show();
    const QSignalSpy changes(&form, &LocGroupForm::groupsChanged);
    QTest::keyClicks(nameEdit(form), u"Krokodile"_s);
    assignPicture(form, u"Bild zuweisen"_s, saveInForm);
    QVERIFY(showsPicture(form));
    QCOMPARE(changes.size(), 0);
    press(form, u"Speichern"_s);
    QCOMPARE(changes.size(), 1);
    QCOMPARE(namesIn(listOf(form)), QStringList({ u"Krokodile"_s }));
    QCOMPARE(m_catalogue->value(u"SELECT name FROM locomotive"_s).toString(), u"Krokodile"_s);
    const QString path = m_catalogue->value(u"SELECT pictPath FROM locomotive"_s).toString();
    QVERIFY2(path.startsWith(u"./Data/Pictures/AuxFolder/"_s), qUtf8Printable(path));
    QCOMPARE(QImage(path).size(), QSize(750, 500));
    QCOMPARE(copies(), 1);
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM loc_picture"_s).toInt(), 1);
}

void TestLocGroupForm::formIsReadyForTheNextGroup()
{
    LocGroupForm form;
    form.show();
    QTest::keyClicks(nameEdit(form), u"Krokodile"_s);
    assignPicture(form, u"Bild zuweisen"_s);
    press(form, u"Speichern"_s);
    QCOMPARE(nameEdit(form)->text(), QString());
    QVERIFY(!showsPicture(form));
    QVERIFY(!isEnabled(form, u"Speichern"_s));
    QVERIFY(!isEnabled(form, u"Bild zuweisen"_s));
    QTest::keyClicks(nameEdit(form), u"Ae"_s);
    ModalScript script;
    script.then([&script](QWidget *pictureForm) { script.click(pictureForm, u"Schliessen"_s); });
    press(form, u"Bild zuweisen"_s);
    QCOMPARE(script.problems(), QStringList());
    QVERIFY(!isEnabled(form, u"Speichern"_s)); // the first group's picture is not taken for the second
}

void TestLocGroupForm::pictureFormWithoutAPictureChangesNothing()
{
    LocGroupForm form;
    form.show();
    QTest::keyClicks(nameEdit(form), u"Krokodile"_s);
    ModalScript script;
    script.then([&script](QWidget *pictureForm) { script.click(pictureForm, u"Schliessen"_s); });
    press(form, u"Bild zuweisen"_s);
    QCOMPARE(script.problems(), QStringList());
    QVERIFY(!isEnabled(form, u"Speichern"_s));
    QVERIFY(!showsPicture(form));
    QCOMPARE(copies(), 0);
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM loc_picture"_s).toInt(), 0);
}

void TestLocGroupForm::cancelledPictureLeavesNeitherRowNorFile()
{
    LocGroupForm form;
    form.show();
    QTest::keyClicks(nameEdit(form), u"Krokodile"_s);
    ModalScript script;
    script.then([&script](QWidget *pictureForm) {
        script.click(pictureForm, u"Bild auswählen"_s);
        script.click(pictureForm, u"Bild speichern"_s);
        QTest::keyClick(pictureForm, Qt::Key_Escape);
    });
    script.chooseFile(m_catalogue->path(u"source.jpg"_s));
    press(form, u"Bild zuweisen"_s);
    QCOMPARE(script.problems(), QStringList());
    QVERIFY(!isEnabled(form, u"Speichern"_s));
    QCOMPARE(copies(), 0);
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM loc_picture"_s).toInt(), 0);
}

void TestLocGroupForm::nameIsStoredAsTyped_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("stored");
    QTest::newRow("38 characters stay whole") << QString(38, u'W') << QString(38, u'W');
    QTest::newRow("39 characters are cut") << QString(38, u'W') + u'x' << QString(38, u'W');
    QTest::newRow("10,000 characters are cut") << QString(10'000, u'W') << QString(38, u'W');
    QTest::newRow("no half of an emoji stays") << QString(37, u'W') + u"\U0001F682"_s << QString(37, u'W');
    QTest::newRow("emoji") << u"\U0001F682"_s << u"\U0001F682"_s;
    QTest::newRow("markup") << u"<b>x</b>"_s << u"<b>x</b>"_s;
    QTest::newRow("quote") << u"7'8"_s << u"7'8"_s;
    QTest::newRow("placeholder") << u"7%2"_s << u"7%2"_s;
}

void TestLocGroupForm::nameIsStoredAsTyped()
{
    QFETCH(QString, typed);
    LocGroupForm form;
    form.show();
    QTest::keyClicks(nameEdit(form), u"K"_s);
    nameEdit(form)->setText(typed); // pasted
    assignPicture(form, u"Bild zuweisen"_s);
    press(form, u"Speichern"_s);
    QTEST(m_catalogue->value(u"SELECT name FROM locomotive"_s).toString(), "stored");
}

void TestLocGroupForm::assignedPictureWithoutAGroupIsDroppedOnClosing()
{
    LocGroupForm form;
    form.show();
    QTest::keyClicks(form.findChild<QLineEdit *>(u"nameEdit"_s), u"Krokodile"_s);
    assignPicture(form, u"Bild zuweisen"_s);
    assignPicture(form, u"Bild zuweisen"_s); // the second choice replaces the first
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM loc_picture"_s).toInt(), 1);
    QCOMPARE(QDir(u"./Data/Pictures/AuxFolder"_s).entryList(QDir::Files).size(), 1);
    form.reject();
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM loc_picture"_s).toInt(), 0);
    QVERIFY(QDir(u"./Data/Pictures/AuxFolder"_s).entryList(QDir::Files).isEmpty());
}

void TestLocGroupForm::savedGroupKeepsItsPictureOnClosing()
{
    LocGroupForm form;
    form.show();
    QTest::keyClicks(form.findChild<QLineEdit *>(u"nameEdit"_s), u"Krokodile"_s);
    assignPicture(form, u"Bild zuweisen"_s);
    QTest::mouseClick(form.findChild<QPushButton *>(u"saveButton"_s), Qt::LeftButton);
    form.reject();
    QVERIFY(QFile::exists(m_catalogue->value(u"SELECT pictPath FROM locomotive"_s).toString()));
}

void TestLocGroupForm::removedAuxFolderIsMadeAgain()
{
    QVERIFY(QDir(u"./Data/Pictures/AuxFolder"_s).removeRecursively());
    LocGroupForm form;
    form.show();
    QTest::keyClicks(form.findChild<QLineEdit *>(u"nameEdit"_s), u"Krokodile"_s);
    assignPicture(form, u"Bild zuweisen"_s);
    QTest::mouseClick(form.findChild<QPushButton *>(u"saveButton"_s), Qt::LeftButton);
    QVERIFY(QFile::exists(m_catalogue->value(u"SELECT pictPath FROM locomotive"_s).toString()));
}

void TestLocGroupForm::moveDialogIgnoresSlotsOfTheOtherDialog()
{
    LocGroupForm form(1, u"Ce 6/8"_s, nullptr);
    form.show();
    for (const char *slot : { "checktextEdits", "showLocPicture", "newLocPicture", "changeLocPicture" }) {
        QVERIFY(QMetaObject::invokeMethod(&form, slot));
    }
    QVERIFY(form.isVisible());
}

void TestLocGroupForm::failedInsertIsTold()
{
    LocGroupForm form;
    form.show();
    const QSignalSpy changes(&form, &LocGroupForm::groupsChanged);
    QTest::keyClicks(nameEdit(form), u"Krokodile"_s);
    assignPicture(form, u"Bild zuweisen"_s);
    refuse(u"INSERT ON locomotive"_s);
    ModalScript script;
    script.anyBox(u"DB-Insert"_s);
    press(form, u"Speichern"_s);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(changes.size(), 1);
    QCOMPARE(nameEdit(form)->text(), u"Krokodile"_s);
    QVERIFY(isEnabled(form, u"Speichern"_s));
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM locomotive"_s).toInt(), 0);
}

void TestLocGroupForm::returnSavesOnlyACompleteGroup()
{
    LocGroupForm form;
    form.show();
    QTest::keyClicks(nameEdit(form), u"Krokodile"_s);
    QTest::keyClick(nameEdit(form), Qt::Key_Return);
    QVERIFY(form.isVisible());
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM locomotive"_s).toInt(), 0);
    assignPicture(form, u"Bild zuweisen"_s);
    QTest::keyClick(nameEdit(form), Qt::Key_Return);
    QVERIFY(form.isVisible());
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM locomotive"_s).toInt(), 1);
}

void TestLocGroupForm::pictureOfTheChosenGroupIsShown()
{
    m_catalogue->addGroup(u"Krokodile"_s, m_catalogue->path(u"source.jpg"_s));
    LocGroupForm form;
    form.show();
    clickRow(form, 0);
    press(form, u"Bild zeigen"_s);
    QVERIFY(showsPicture(form));
}

void TestLocGroupForm::missingPictureFileIsTold()
{
    m_catalogue->addGroup(u"Ae"_s, m_catalogue->path(u"source.jpg"_s));
    m_catalogue->addGroup(u"Krokodile"_s, u"./Data/Pictures/AuxFolder/1.jpg"_s);
    m_catalogue->addGroup(u"Ohne"_s);
    LocGroupForm form;
    form.show();
    clickRow(form, 0);
    press(form, u"Bild zeigen"_s);
    for (const int row : { 1, 2 }) {
        clickRow(form, row);
        ModalScript script;
        script.box(u"File-Info"_s, u"Die Datei konnte nicht gefunden werden!"_s);
        press(form, u"Bild zeigen"_s);
        QCOMPARE(script.problems(), QStringList());
        QVERIFY(!showsPicture(form)); // not the picture of another group
    }
}

void TestLocGroupForm::replacedPictureIsStored()
{
    m_catalogue->addGroup(u"Ae"_s, u"./alt.jpg"_s);
    m_catalogue->addGroup(u"Krokodile"_s, u"./alt.jpg"_s);
    LocGroupForm form;
    form.show();
    const QSignalSpy changes(&form, &LocGroupForm::groupsChanged);
    clickRow(form, 1);
    assignPicture(form, u"Bild austauschen"_s);
    const QString path = m_catalogue->value(u"SELECT pictPath FROM locomotive WHERE id = 2"_s).toString();
    QVERIFY2(path.startsWith(u"./Data/Pictures/AuxFolder/"_s), qUtf8Printable(path));
    QCOMPARE(m_catalogue->value(u"SELECT pictPath FROM locomotive WHERE id = 1"_s).toString(), u"./alt.jpg"_s);
    QCOMPARE(listOf(form)->model()->index(1, 2).data().toString(), path);
    QVERIFY(showsPicture(form));
    QVERIFY(!isEnabled(form, u"Bild austauschen"_s));
    QCOMPARE(changes.size(), 1);
    ModalScript script;
    press(form, u"Bild zeigen"_s); // the row stays chosen
    QCOMPARE(script.problems(), QStringList());
    clickRow(form, 1);
    QVERIFY(isEnabled(form, u"Bild austauschen"_s));
}

void TestLocGroupForm::replacingDoesNotTouchTheNewGroup()
{
    m_catalogue->addGroup(u"Krokodile"_s);
    LocGroupForm form;
    form.show();
    QTest::keyClicks(nameEdit(form), u"Ae"_s);
    clickRow(form, 0);
    assignPicture(form, u"Bild austauschen"_s);
    QVERIFY(!isEnabled(form, u"Speichern"_s));
}

void TestLocGroupForm::replacingWithoutAChoiceChangesNothing()
{
    m_catalogue->addGroup(u"Krokodile"_s, u"./alt.jpg"_s);
    LocGroupForm form;
    form.show();
    const QSignalSpy changes(&form, &LocGroupForm::groupsChanged);
    clickRow(form, 0);
    ModalScript script;
    script.then([&script](QWidget *pictureForm) { script.click(pictureForm, u"Schliessen"_s); });
    press(form, u"Bild austauschen"_s);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(m_catalogue->value(u"SELECT pictPath FROM locomotive"_s).toString(), u"./alt.jpg"_s);
    QVERIFY(isEnabled(form, u"Bild austauschen"_s));
    QCOMPARE(changes.size(), 0);
}

void TestLocGroupForm::failedUpdateOfThePictureIsTold()
{
    m_catalogue->addGroup(u"Krokodile"_s, u"./alt.jpg"_s);
    refuse(u"UPDATE ON locomotive"_s);
    LocGroupForm form;
    form.show();
    clickRow(form, 0);
    ModalScript script;
    script.then([&script](QWidget *pictureForm) {
        script.click(pictureForm, u"Bild auswählen"_s);
        script.click(pictureForm, u"Schliessen"_s);
    });
    script.chooseFile(m_catalogue->path(u"source.jpg"_s));
    script.anyBox(u"DB-Update"_s);
    press(form, u"Bild austauschen"_s);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(m_catalogue->value(u"SELECT pictPath FROM locomotive"_s).toString(), u"./alt.jpg"_s);
}

void TestLocGroupForm::pictureOfAGroupDeletedMeanwhileIsDropped()
{
    m_catalogue->addGroup(u"Krokodile"_s, u"./alt.jpg"_s);
    LocGroupForm form;
    form.show();
    clickRow(form, 0);
    ModalScript script;
    script.then([&script](QWidget *pictureForm) {
        QVERIFY(QSqlQuery().exec(u"DELETE FROM locomotive"_s));
        script.click(pictureForm, u"Bild auswählen"_s);
        script.click(pictureForm, u"Schliessen"_s);
    });
    script.chooseFile(m_catalogue->path(u"source.jpg"_s));
    script.box(u"DB-Update"_s, u"Die Gruppe ist nicht mehr vorhanden, sie wurde inzwischen gelöscht."_s);
    press(form, u"Bild austauschen"_s);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(copies(), 0);
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM loc_picture"_s).toInt(), 0);
}

void TestLocGroupForm::groupWithAClassStays()
{
    m_catalogue->addModel(u"Ce 6/8 II"_s, m_catalogue->addGroup(u"Krokodile"_s));
    LocGroupForm form;
    form.show();
    const QSignalSpy changes(&form, &LocGroupForm::groupsChanged);
    clickRow(form, 0);
    ModalScript script;
    script.box(u"Daten vorhanden"_s, StillUsed);
    press(form, u"Gruppe entfernen"_s);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM locomotive"_s).toInt(), 1);
    QCOMPARE(changes.size(), 0);
}

void TestLocGroupForm::neinKeepsTheGroup()
{
    m_catalogue->addGroup(u"Krokodile"_s);
    LocGroupForm form;
    form.show();
    clickRow(form, 0);
    ModalScript script;
    script.box(u"Gruppe entfernen"_s, DeleteQuestion, u"Nein"_s);
    press(form, u"Gruppe entfernen"_s);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM locomotive"_s).toInt(), 1);
}

void TestLocGroupForm::jaDeletesTheGroupButNotItsPictureFile()
{
    const QString picture = u"./Data/Pictures/AuxFolder/1.jpg"_s;
    writeTestJpeg(picture, { 75, 50 });
    m_catalogue->addGroup(u"Krokodile"_s, picture);
    m_catalogue->addModel(u"Re 4/4"_s, m_catalogue->addGroup(u"Re"_s));
    LocGroupForm form;
    form.show();
    const QSignalSpy changes(&form, &LocGroupForm::groupsChanged);
    clickRow(form, 0);
    ModalScript script;
    script.box(u"Gruppe entfernen"_s, DeleteQuestion, u"Ja"_s);
    press(form, u"Gruppe entfernen"_s);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(namesIn(listOf(form)), QStringList({ u"Re"_s }));
    QCOMPARE(m_catalogue->value(u"SELECT group_concat(name) FROM locomotive"_s).toString(), u"Re"_s);
    QVERIFY(QFile::exists(picture));
    QCOMPARE(changes.size(), 1);
}

void TestLocGroupForm::deletingWithNothingChosenIsTold()
{
    m_catalogue->addGroup(u"Ae"_s);
    m_catalogue->addGroup(u"Krokodile"_s);
    LocGroupForm form;
    form.show();
    clickRow(form, 0);
    ModalScript script;
    script.box(u"Gruppe entfernen"_s, DeleteQuestion, u"Ja"_s);
    script.box(u"File-Info"_s, NothingChosen);
    script.box(u"File-Info"_s, NothingChosen);
    press(form, u"Gruppe entfernen"_s);
    press(form, u"Gruppe entfernen"_s); // the deleted row is no longer chosen, and no other took its place
    press(form, u"Bild zeigen"_s);
    press(form, u"Bild austauschen"_s); // nothing happens
    press(form, u"Baureihen"_s); // nothing happens
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(namesIn(listOf(form)), QStringList({ u"Krokodile"_s }));
}

void TestLocGroupForm::classAddedMeanwhileKeepsTheGroup()
{
    const int group = m_catalogue->addGroup(u"Krokodile"_s);
    LocGroupForm form;
    form.show();
    clickRow(form, 0);
    ModalScript script;
    script.then([this, &script, group](QWidget *box) {
        m_catalogue->addModel(u"Ce 6/8 II"_s, group);
        script.click(box, u"Ja"_s);
    });
    script.box(u"Daten vorhanden"_s, StillUsed);
    press(form, u"Gruppe entfernen"_s);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM locomotive"_s).toInt(), 1);
}

void TestLocGroupForm::failedDeletionIsTold()
{
    m_catalogue->addGroup(u"Krokodile"_s);
    refuse(u"DELETE ON locomotive"_s);
    LocGroupForm form;
    form.show();
    clickRow(form, 0);
    ModalScript script;
    script.box(u"Gruppe entfernen"_s, DeleteQuestion, u"Ja"_s);
    script.anyBox(u"DB-Delete"_s);
    press(form, u"Gruppe entfernen"_s);
    QCOMPARE(script.problems(), QStringList());
    QVERIFY(form.isVisible());
    QCOMPARE(namesIn(listOf(form)), QStringList({ u"Krokodile"_s }));
}

void TestLocGroupForm::baureihenOpensTheClassForm()
{
    m_catalogue->addModel(u"Re 4/4"_s, m_catalogue->addGroup(u"Ae"_s));
    m_catalogue->addModel(u"Ce 6/8 II"_s, m_catalogue->addGroup(u"Krokodile"_s));
    LocGroupForm form;
    form.show();
    clickRow(form, 1);
    ModalScript script;
    QString listed;
    script.then([&script, &listed](QWidget *classForm) {
        QCOMPARE(classForm->windowTitle(), u"Baureihen"_s);
        listed = namesIn(classForm->findChild<QTableView *>()).join(u',');
        script.click(classForm, u"Schliessen"_s);
    });
    press(form, u"Baureihen"_s);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(listed, u"Ce 6/8 II"_s);
}

void TestLocGroupForm::moveDialogHasItsTexts()
{
    m_catalogue->addGroup(u"Krokodile"_s);
    const LocGroupForm form(1, u"<b>x</b> 7%2"_s, nullptr);
    QCOMPARE(form.windowTitle(), u"Baureihe-Gruppen"_s);
    const auto *box = form.findChild<QGroupBox *>(u"groupBox"_s);
    QCOMPARE(box->title(), u"Baureihe verschieben"_s);
    QCOMPARE(box->font().pointSize(), 9);
    const auto *name = form.findChild<QLineEdit *>(u"modelNameEdit"_s);
    QCOMPARE(name->text(), u"<b>x</b> 7%2"_s);
    QVERIFY(name->isReadOnly());
    QCOMPARE(form.findChild<QLabel *>()->text(), u"Baureihe:"_s);
    QCOMPARE(form.findChildren<QPushButton *>().size(), 2);
    QVERIFY(!isEnabled(form, u"Speichern"_s));
    QVERIFY(isEnabled(form, u"Schliessen"_s));
    QCOMPARE(namesIn(listOf(form)), QStringList({ u"Krokodile"_s }));
}

void TestLocGroupForm::moveStoresTheTargetGroup()
{
    const int from = m_catalogue->addGroup(u"Ae"_s);
    const int to = m_catalogue->addGroup(u"Krokodile"_s);
    const int model = m_catalogue->addModel(u"Ce 6/8 II"_s, from);
    const int other = m_catalogue->addModel(u"Ae 3/6"_s, from);
    LocGroupForm form(model, u"Ce 6/8 II"_s, nullptr);
    form.show();
    clickRow(form, 1);
    press(form, u"Speichern"_s);
    const QString group = u"SELECT locid FROM loc_model WHERE id = %1"_s;
    QCOMPARE(m_catalogue->value(group.arg(model)).toInt(), to);
    QCOMPARE(m_catalogue->value(group.arg(other)).toInt(), from);
    QVERIFY(!isEnabled(form, u"Speichern"_s));
    press(form, u"Schliessen"_s);
    QVERIFY(!form.isVisible());
    QCOMPARE(form.result(), int(QDialog::Accepted));
}

void TestLocGroupForm::moveWithoutARowDoesNothing()
{
    const int group = m_catalogue->addGroup(u"Ae"_s);
    const int model = m_catalogue->addModel(u"Ae 3/6"_s, group);
    LocGroupForm form(model, u"Ae 3/6"_s, nullptr);
    form.show();
    form.moveToGroup();
    QCOMPARE(m_catalogue->value(u"SELECT locid FROM loc_model"_s).toInt(), group);
}

void TestLocGroupForm::failedMoveIsTold()
{
    const int model = m_catalogue->addModel(u"Ae 3/6"_s, m_catalogue->addGroup(u"Ae"_s));
    refuse(u"UPDATE ON loc_model"_s);
    LocGroupForm form(model, u"Ae 3/6"_s, nullptr);
    form.show();
    clickRow(form, 0);
    ModalScript script;
    script.anyBox(u"DB-Update"_s);
    press(form, u"Speichern"_s);
    QCOMPARE(script.problems(), QStringList());
    QVERIFY(form.isVisible());
    QVERIFY(isEnabled(form, u"Speichern"_s));
}

void TestLocGroupForm::moveOfWhatIsGoneIsTold_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("text");
    QTest::newRow("group") << u"locomotive"_s
                           << u"Die Gruppe ist nicht mehr vorhanden, sie wurde inzwischen gelöscht."_s;
    QTest::newRow("class") << u"loc_model"_s
                           << u"Die Baureihe ist nicht mehr vorhanden, sie wurde inzwischen gelöscht."_s;
}

void TestLocGroupForm::moveOfWhatIsGoneIsTold()
{
    QFETCH(const QString, table);
    QFETCH(const QString, text);
    const int group = m_catalogue->addGroup(u"Ae"_s);
    const int model = m_catalogue->addModel(u"Ae 3/6"_s, group);
    LocGroupForm form(model, u"Ae 3/6"_s, nullptr);
    form.show();
    clickRow(form, 0);
    QVERIFY(QSqlQuery().exec(u"DELETE FROM "_s + table));
    ModalScript script;
    script.box(u"DB-Update"_s, text);
    press(form, u"Speichern"_s);
    QCOMPARE(script.problems(), QStringList());
    QVERIFY(form.isVisible());
    QVERIFY(table == u"loc_model"_s || m_catalogue->value(u"SELECT locid FROM loc_model"_s).toInt() == group);
}

void TestLocGroupForm::tabLeadsThroughTheDialogAsOneReads()
{
    m_catalogue->addGroup(u"Krokodile"_s);
    LocGroupForm form;
    form.show();
    clickRow(form, 0);
    nameEdit(form)->setFocus();
    QTest::keyClicks(nameEdit(form), u"Ae"_s);
    QStringList order;
    for (int stop = 0; stop < 8; ++stop) {
        order.append(form.focusWidget()->objectName());
        QTest::keyClick(form.focusWidget(), Qt::Key_Tab);
    }
    QCOMPARE(order,
        QStringList({ u"nameEdit"_s, u"groupList"_s, u"modelsButton"_s, u"deleteButton"_s, u"showPictureButton"_s,
            u"assignPictureButton"_s, u"changePictureButton"_s, u"closeButton"_s }));
}

BAHNITO_TEST_MAIN(TestLocGroupForm)
#include "tst_locgroupform.moc"
