#include "search/optiondialog.h"
#include "store/catalogquery.h"
#include "store/colorsetting.h"
#include "tests/support/modalscript.h"
#include "tests/support/testcatalogue.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMetaMethod>
#include <QPushButton>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

QList<QSqlRecord> classesOf(int groupId)
{
    QList<QSqlRecord> classes;
    CatalogQuery::instance().modelsOfGroup(classes, groupId);
    return classes;
}

QComboBox *boxOf(const QDialog &dialog, const QString &name)
{
    return dialog.findChild<QComboBox *>(name);
}

QString fieldText(const QDialog &dialog, const QString &name)
{
    return dialog.findChild<QLineEdit *>(name)->text();
}

QPushButton *buttonOf(const QDialog &dialog, const QString &name)
{
    return dialog.findChild<QPushButton *>(name);
}

QStringList itemsOf(const QComboBox *box)
{
    QStringList items;
    for (int index = 0; index < box->count(); ++index) {
        items.append(box->itemText(index));
    }
    return items;
}

/// Moves a box to an item as a user does with the keyboard.
void chooseItem(QComboBox *box, int index)
{
    box->setFocus();
    QTest::keyClick(box, Qt::Key_Home);
    for (int step = 0; step < index; ++step) {
        QTest::keyClick(box, Qt::Key_Down);
    }
    QCOMPARE(box->currentIndex(), index);
}

/// The field that a label of the entry form leads to.
template <typename Field> Field *fieldOf(const QWidget *form, const QString &label)
{
    for (const QLabel *candidate : form->findChildren<QLabel *>()) {
        if (candidate->text() == label) {
            return qobject_cast<Field *>(candidate->buddy());
        }
    }
    return nullptr;
}

/// Fills in the entry form, saves the entry and closes the form.
ModalScript::Step captureEntry(ModalScript &script)
{
    return [&script](QWidget *form) {
        auto *number = fieldOf<QLineEdit>(form, u"Nu&mmer:"_s);
        auto *place = fieldOf<QLineEdit>(form, u"&Ort:"_s);
        auto *comment = fieldOf<QWidget>(form, u"&Kommentar:"_s);
        if (number == nullptr || place == nullptr || comment == nullptr) {
            form->close(); // no entry form: the test then misses its entry
            return;
        }
        QTest::keyClicks(number, u"14253"_s);
        QTest::keyClicks(place, u"Bern"_s);
        QTest::keyClicks(comment, u"fast neu"_s);
        script.click(form, u"Speichern"_s);
        script.click(form, u"Schliessen"_s);
    };
}

} // namespace

class TestOptionDialog final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void slotsKeepTheirOrder();
    void titlesAndLabelsAreThoseOfTheSearch();
    void labelsLeadToTheirBoxes();
    void captionNamesTheGroup_data();
    void captionNamesTheGroup();
    void captionOfAMissingGroupIsUnbekannt();
    void itemsKeepTheirTextsAndOrder();
    void freshCatalogueIsPresetToTheFirstItems();
    void keptChoicesArePreset();
    void keptChoiceThatIsNoItemPresetsTheFirst();
    void otherClassShowsItsOwnCountAndPositions();
    void classesOfEqualNameHaveTheirOwnCounts();
    void startEntryFollowsTheStartBox();
    void readOutsCountFromOne();
    void textReadOutsKeepTheChoices();
    void searchButtonAndReturnEndWithOne();
    void closingEndsWithZeroAndKeepsNothing_data();
    void closingEndsWithZeroAndKeepsNothing();
    void newEntryBelongsToTheChosenClass();
    void newEntryOfATwinBelongsToTheFirstOfTheName();
    void countFollowsTheNewEntryAndTheStartStays();
    void newEntryOfAVanishedClassIsRefused();
    void dialogKeepsWithinItsLimits_data();
    void dialogKeepsWithinItsLimits();
    void tabLeadsThroughTheDialogAsOneReads();

private:
    void addEntries(int modelId, int count);

    std::unique_ptr<TestCatalogue> m_catalogue;
    int m_group = 0;
    int m_model = 0;
};

void TestOptionDialog::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    m_group = m_catalogue->addGroup(u"Krokodile"_s);
    m_model = m_catalogue->addModel(u"Ce 6/8 II"_s, m_group);
}

void TestOptionDialog::cleanup()
{
    ColorSetting::saveAndRelease();
    m_catalogue.reset();
}

void TestOptionDialog::addEntries(int modelId, int count)
{
    const QString statement = u"INSERT INTO loc_seen (nummer, locseenid, ort, kommentar, locseendate) "
                              "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < %1) "
                              "SELECT i, %2, 'Bern', '', '2001-05-17' FROM n"_s;
    QVERIFY(QSqlQuery().exec(statement.arg(count).arg(modelId)));
}

void TestOptionDialog::slotsKeepTheirOrder()
{
    QStringList names;
    const QMetaObject &meta = OptionDialog::staticMetaObject;
    for (int index = meta.methodOffset(); index < meta.methodCount(); ++index) {
        names.append(QString::fromLatin1(meta.method(index).name()));
    }
    QCOMPARE(names, QStringList({ u"locModelSelectionChanged"_s, u"startSearch"_s, u"startLocCapture"_s }));
}

void TestOptionDialog::titlesAndLabelsAreThoseOfTheSearch()
{
    const OptionDialog dialog(classesOf(m_group), m_group);
    QCOMPARE(dialog.windowTitle(), u"Benutzereingabe"_s);
    QCOMPARE(dialog.findChild<QGroupBox *>(u"modelGroup"_s)->title(), u"Baureihen"_s);
    QCOMPARE(dialog.findChild<QGroupBox *>(u"queryGroup"_s)->title(), u"Abfragen"_s);
    QCOMPARE(dialog.findChild<QGroupBox *>(u"captureGroup"_s)->title(), u"Erfassen"_s);
    QCOMPARE(buttonOf(dialog, u"searchButton"_s)->text(), u"Suchen"_s);
    QCOMPARE(buttonOf(dialog, u"newButton"_s)->text(), u"Neue Lok"_s);
    QCOMPARE(buttonOf(dialog, u"closeButton"_s)->text(), u"Schliessen"_s);
    QVERIFY(buttonOf(dialog, u"searchButton"_s)->isDefault());
    for (const QGroupBox *box : dialog.findChildren<QGroupBox *>()) {
        QCOMPARE(box->font().pointSize(), 9);
        QCOMPARE(box->font().family(), u"Helvetica [Cronyx]"_s);
    }
    QCOMPARE(dialog.findChild<QLabel *>(u"caption"_s)->font().pointSize(), 12);
    QVERIFY(!dialog.findChild<QLineEdit *>(u"countField"_s)->isEnabled());
    QVERIFY(!dialog.findChild<QLineEdit *>(u"modelField"_s)->isEnabled());
    const auto *buttons = dialog.findChild<QDialogButtonBox *>();
    QCOMPARE(buttons->buttonRole(buttonOf(dialog, u"closeButton"_s)), QDialogButtonBox::AcceptRole);
}

void TestOptionDialog::labelsLeadToTheirBoxes()
{
    const OptionDialog dialog(classesOf(m_group), m_group);
    QMap<QString, QString> buddies;
    for (const QLabel *label : dialog.findChildren<QLabel *>()) {
        if (label->buddy() != nullptr) {
            buddies.insert(label->text(), label->buddy()->objectName());
        }
    }
    QCOMPARE(buddies,
        (QMap<QString, QString> { { u"Auswahl:"_s, u"modelBox"_s }, { u"Anzahl Einträge:"_s, u"countField"_s },
            { u"Suche starten ab Eintrag # "_s, u"startBox"_s }, { u"gleiche Lok-Nummer:"_s, u"repeatBox"_s },
            { u"nur mit Bilder:"_s, u"picturesBox"_s }, { u"Sortierung:"_s, u"sortBox"_s } }));
}

void TestOptionDialog::captionNamesTheGroup_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << u"Dampfloks"_s;
    QTest::newRow("markup") << u"<b>x</b>"_s;
    QTest::newRow("quote") << u"7'8"_s;
    QTest::newRow("placeholder") << u"7%2"_s;
    QTest::newRow("emoji") << u"\U0001F682"_s;
}

void TestOptionDialog::captionNamesTheGroup()
{
    QFETCH(QString, name);
    const int group = m_catalogue->addGroup(name);
    m_catalogue->addModel(name, group);
    const OptionDialog dialog(classesOf(group), group);
    const auto *caption = dialog.findChild<QLabel *>(u"caption"_s);
    QCOMPARE(caption->text(), u"Gruppe "_s + name);
    QCOMPARE(caption->textFormat(), Qt::PlainText);
    QCOMPARE(caption->alignment(), Qt::AlignHCenter | Qt::AlignVCenter);
    QCOMPARE(itemsOf(boxOf(dialog, u"modelBox"_s)), QStringList({ name }));
    QCOMPARE(fieldText(dialog, u"modelField"_s), name);
}

void TestOptionDialog::captionOfAMissingGroupIsUnbekannt()
{
    const OptionDialog dialog(classesOf(m_group), 99);
    QCOMPARE(dialog.findChild<QLabel *>(u"caption"_s)->text(), u"Gruppe Unbekannt"_s);
    m_catalogue->addGroup(u"Zweite"_s);
    const OptionDialog ofAll(classesOf(0), 0); // 0 lists two groups
    QCOMPARE(ofAll.findChild<QLabel *>(u"caption"_s)->text(), u"Gruppe Unbekannt"_s);
}

void TestOptionDialog::itemsKeepTheirTextsAndOrder()
{
    const OptionDialog dialog(classesOf(m_group), m_group);
    QCOMPARE(itemsOf(boxOf(dialog, u"repeatBox"_s)), QStringList({ u"immer"_s, u"nur einmal"_s }));
    QCOMPARE(itemsOf(boxOf(dialog, u"picturesBox"_s)), QStringList({ u"nein alle"_s, u"ja"_s }));
    QCOMPARE(itemsOf(boxOf(dialog, u"sortBox"_s)), QStringList({ u"Datum"_s, u"Nummer"_s, u"Ort"_s }));
}

void TestOptionDialog::freshCatalogueIsPresetToTheFirstItems()
{
    const OptionDialog dialog(classesOf(m_group), m_group);
    QCOMPARE(boxOf(dialog, u"repeatBox"_s)->currentText(), u"immer"_s);
    QCOMPARE(boxOf(dialog, u"picturesBox"_s)->currentText(), u"nein alle"_s);
    QCOMPARE(boxOf(dialog, u"sortBox"_s)->currentText(), u"Datum"_s);
    QCOMPARE(fieldText(dialog, u"countField"_s), u"0"_s);
    QCOMPARE(itemsOf(boxOf(dialog, u"startBox"_s)), QStringList({ u"1"_s }));
}

void TestOptionDialog::keptChoicesArePreset()
{
    ColorSetting::instance().setQueryValue(u"SingleOrMulti"_s, 1);
    ColorSetting::instance().setQueryValue(u"InclPictures"_s, 1);
    ColorSetting::instance().setQueryValue(u"Sort"_s, 2);
    const OptionDialog dialog(classesOf(m_group), m_group);
    QCOMPARE(boxOf(dialog, u"repeatBox"_s)->currentText(), u"nur einmal"_s);
    QCOMPARE(boxOf(dialog, u"picturesBox"_s)->currentText(), u"ja"_s);
    QCOMPARE(boxOf(dialog, u"sortBox"_s)->currentText(), u"Ort"_s);
}

void TestOptionDialog::keptChoiceThatIsNoItemPresetsTheFirst()
{
    ColorSetting::instance().setQueryValue(u"SingleOrMulti"_s, 2);
    ColorSetting::instance().setQueryValue(u"Sort"_s, -1);
    const OptionDialog dialog(classesOf(m_group), m_group);
    QCOMPARE(boxOf(dialog, u"repeatBox"_s)->currentText(), u"immer"_s);
    QCOMPARE(boxOf(dialog, u"sortBox"_s)->currentText(), u"Datum"_s);
}

void TestOptionDialog::otherClassShowsItsOwnCountAndPositions()
{
    addEntries(m_catalogue->addModel(u"Ce 6/8 III"_s, m_group), 61);
    OptionDialog dialog(classesOf(m_group), m_group);
    dialog.show();
    chooseItem(boxOf(dialog, u"modelBox"_s), 1);
    QCOMPARE(fieldText(dialog, u"modelField"_s), u"Ce 6/8 III"_s);
    QCOMPARE(fieldText(dialog, u"countField"_s), u"61"_s);
    QCOMPARE(itemsOf(boxOf(dialog, u"startBox"_s)), QStringList({ u"1"_s, u"40"_s }));
    QCOMPARE(boxOf(dialog, u"startBox"_s)->currentText(), u"1"_s);
    chooseItem(boxOf(dialog, u"startBox"_s), 1);
    chooseItem(boxOf(dialog, u"modelBox"_s), 0);
    QCOMPARE(fieldText(dialog, u"countField"_s), u"0"_s);
    QCOMPARE(itemsOf(boxOf(dialog, u"startBox"_s)), QStringList({ u"1"_s }));
}

void TestOptionDialog::classesOfEqualNameHaveTheirOwnCounts()
{
    addEntries(m_catalogue->addModel(u"Ce 6/8 II"_s, m_group), 3);
    OptionDialog dialog(classesOf(m_group), m_group);
    dialog.show();
    const QString first = fieldText(dialog, u"countField"_s);
    chooseItem(boxOf(dialog, u"modelBox"_s), 1);
    const QString second = fieldText(dialog, u"countField"_s);
    QVERIFY(first != second);
    QCOMPARE(first.toInt() + second.toInt(), 3);
}

void TestOptionDialog::startEntryFollowsTheStartBox()
{
    addEntries(m_model, 120);
    OptionDialog dialog(classesOf(m_group), m_group);
    dialog.show();
    QComboBox *start = boxOf(dialog, u"startBox"_s);
    QCOMPARE(itemsOf(start), QStringList({ u"1"_s, u"40"_s, u"80"_s, u"120"_s }));
    const QList<int> entries { 1, 41, 81, 121 };
    for (int index = 0; index < entries.size(); ++index) {
        chooseItem(start, index);
        QCOMPARE(dialog.startEntry(), entries.at(index));
    }
}

void TestOptionDialog::readOutsCountFromOne()
{
    m_catalogue->addModel(u"Ce 6/8 III"_s, m_group);
    OptionDialog dialog(classesOf(m_group), m_group);
    dialog.show();
    QCOMPARE(dialog.selectedModelNumber(), 1);
    QCOMPARE(dialog.repeatChoiceNumber(), 1);
    QCOMPARE(dialog.picturesChoiceNumber(), 1);
    QCOMPARE(dialog.sortChoiceNumber(), 1);
    chooseItem(boxOf(dialog, u"modelBox"_s), 1);
    chooseItem(boxOf(dialog, u"repeatBox"_s), 1);
    chooseItem(boxOf(dialog, u"picturesBox"_s), 1);
    chooseItem(boxOf(dialog, u"sortBox"_s), 2);
    QCOMPARE(dialog.selectedModelNumber(), 2);
    QCOMPARE(dialog.repeatChoiceNumber(), 2);
    QCOMPARE(dialog.picturesChoiceNumber(), 2);
    QCOMPARE(dialog.sortChoiceNumber(), 3);
}

void TestOptionDialog::textReadOutsKeepTheChoices()
{
    OptionDialog dialog(classesOf(m_group), m_group);
    dialog.show();
    chooseItem(boxOf(dialog, u"repeatBox"_s), 1);
    chooseItem(boxOf(dialog, u"picturesBox"_s), 1);
    chooseItem(boxOf(dialog, u"sortBox"_s), 1);
    const ColorSetting &settings = ColorSetting::instance();
    QCOMPARE(settings.queryValue(u"SingleOrMulti"_s), 0);
    QCOMPARE(dialog.repeatChoice(), u"nur einmal"_s);
    QCOMPARE(settings.queryValue(u"SingleOrMulti"_s), 1);
    QCOMPARE(settings.queryValue(u"InclPictures"_s), 0);
    QCOMPARE(dialog.picturesChoice(), u"ja"_s);
    QCOMPARE(settings.queryValue(u"InclPictures"_s), 1);
    QCOMPARE(settings.queryValue(u"Sort"_s), 0);
    QCOMPARE(dialog.sortChoice(), u"Nummer"_s);
    QCOMPARE(settings.queryValue(u"Sort"_s), 1);
}

void TestOptionDialog::searchButtonAndReturnEndWithOne()
{
    ModalScript script;
    script.then([&script](QWidget *widget) { script.click(widget, u"Suchen"_s); });
    script.then(
        [](QWidget *widget) { QTest::keyClick(widget->findChild<QComboBox *>(u"modelBox"_s), Qt::Key_Return); });
    OptionDialog clicked(classesOf(m_group), m_group);
    QCOMPARE(clicked.exec(), 1);
    OptionDialog typed(classesOf(m_group), m_group);
    QCOMPARE(typed.exec(), 1);
    QCOMPARE(script.problems(), QStringList());
}

void TestOptionDialog::closingEndsWithZeroAndKeepsNothing_data()
{
    QTest::addColumn<int>("how");
    QTest::newRow("the button") << 0;
    QTest::newRow("Escape") << 1;
    QTest::newRow("the window's frame") << 2;
}

void TestOptionDialog::closingEndsWithZeroAndKeepsNothing()
{
    QFETCH(int, how);
    ModalScript script;
    script.then([&script, how](QWidget *widget) {
        for (const QString &name : { u"repeatBox"_s, u"picturesBox"_s, u"sortBox"_s }) {
            chooseItem(widget->findChild<QComboBox *>(name), 1);
        }
        if (how == 0) {
            script.click(widget, u"Schliessen"_s);
        } else if (how == 1) {
            QTest::keyClick(widget, Qt::Key_Escape);
        } else {
            widget->close();
        }
    });
    OptionDialog dialog(classesOf(m_group), m_group);
    QCOMPARE(dialog.exec(), 0);
    for (const QString &name : { u"SingleOrMulti"_s, u"InclPictures"_s, u"Sort"_s }) {
        QCOMPARE(ColorSetting::instance().queryValue(name), 0);
    }
    QCOMPARE(script.problems(), QStringList());
}

void TestOptionDialog::newEntryBelongsToTheChosenClass()
{
    const int second = m_catalogue->addModel(u"Ce 6/8 III"_s, m_group);
    OptionDialog dialog(classesOf(m_group), m_group);
    dialog.show();
    chooseItem(boxOf(dialog, u"modelBox"_s), 1);
    ModalScript script;
    script.then(captureEntry(script));
    QTest::mouseClick(buttonOf(dialog, u"newButton"_s), Qt::LeftButton);
    QCOMPARE(script.problems(), QStringList());
    QVERIFY(dialog.isVisible());
    QCOMPARE(m_catalogue->value(u"SELECT locseenid FROM loc_seen WHERE nummer = '14253'"_s).toInt(), second);
}

void TestOptionDialog::newEntryOfATwinBelongsToTheFirstOfTheName()
{
    const int twin = m_catalogue->addModel(u"Ce 6/8 II"_s, m_group);
    QVERIFY(twin != m_model);
    OptionDialog dialog(classesOf(m_group), m_group);
    dialog.show();
    chooseItem(boxOf(dialog, u"modelBox"_s), 1);
    ModalScript script;
    script.then(captureEntry(script));
    QTest::mouseClick(buttonOf(dialog, u"newButton"_s), Qt::LeftButton);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(m_catalogue->value(u"SELECT locseenid FROM loc_seen WHERE nummer = '14253'"_s).toInt(), m_model);
    QCOMPARE(dialog.selectedModelNumber(), 2);
}

void TestOptionDialog::countFollowsTheNewEntryAndTheStartStays()
{
    addEntries(m_model, 119);
    OptionDialog dialog(classesOf(m_group), m_group);
    dialog.show();
    chooseItem(boxOf(dialog, u"startBox"_s), 1);
    chooseItem(boxOf(dialog, u"sortBox"_s), 2);
    ModalScript script;
    script.then(captureEntry(script));
    QTest::mouseClick(buttonOf(dialog, u"newButton"_s), Qt::LeftButton);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(fieldText(dialog, u"countField"_s), u"120"_s);
    QCOMPARE(itemsOf(boxOf(dialog, u"startBox"_s)), QStringList({ u"1"_s, u"40"_s, u"80"_s, u"120"_s }));
    QCOMPARE(dialog.startEntry(), 41);
    QCOMPARE(dialog.sortChoiceNumber(), 3);
}

void TestOptionDialog::newEntryOfAVanishedClassIsRefused()
{
    OptionDialog dialog(classesOf(m_group), m_group);
    dialog.show();
    QVERIFY(QSqlQuery().exec(u"DELETE FROM loc_model"_s));
    ModalScript script;
    script.box(u"Keine Daten"_s, u"Die Baureihe Ce 6/8 II wurde in dieser Gruppe nicht gefunden!"_s);
    QTest::mouseClick(buttonOf(dialog, u"newButton"_s), Qt::LeftButton);
    QCOMPARE(script.problems(), QStringList());
    QVERIFY(dialog.isVisible());
}

void TestOptionDialog::dialogKeepsWithinItsLimits_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("usual") << u"Krokodile"_s;
    QTest::newRow("38 wide characters") << QString(38, u'W');
    QTest::newRow("10,000 characters from elsewhere") << QString(10'000, u'W');
}

void TestOptionDialog::dialogKeepsWithinItsLimits()
{
    QFETCH(QString, name);
    const int group = m_catalogue->addGroup(name);
    m_catalogue->addModel(name, group);
    OptionDialog dialog(classesOf(group), group);
    QCOMPARE(dialog.maximumSize(), QSize(530, 380));
    dialog.show();
    QVERIFY(dialog.width() <= 530 && dialog.height() <= 380);
    QVERIFY(dialog.minimumSizeHint().width() <= 530 && dialog.minimumSizeHint().height() <= 380);
    for (const QLabel *label : dialog.findChildren<QLabel *>()) {
        QVERIFY2(label->width() >= label->sizeHint().width(), qUtf8Printable(label->text()));
    }
    for (const QPushButton *button : dialog.findChildren<QPushButton *>()) {
        QVERIFY2(button->width() >= button->sizeHint().width(), qUtf8Printable(button->text()));
    }
}

void TestOptionDialog::tabLeadsThroughTheDialogAsOneReads()
{
    addEntries(m_model, 100);
    OptionDialog dialog(classesOf(m_group), m_group);
    dialog.show();
    QStringList order;
    boxOf(dialog, u"modelBox"_s)->setFocus();
    for (int stop = 0; stop < 8; ++stop) {
        order.append(dialog.focusWidget()->objectName());
        QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
    }
    QCOMPARE(order,
        QStringList({ u"modelBox"_s, u"startBox"_s, u"repeatBox"_s, u"picturesBox"_s, u"sortBox"_s, u"searchButton"_s,
            u"newButton"_s, u"closeButton"_s }));
}

BAHNITO_TEST_MAIN(TestOptionDialog)
#include "tst_optiondialog.moc"
