#include "forms/locgroupform.h"
#include "forms/locmodelform.h"
#include "forms/locpictureform.h"
#include "forms/locseenform.h"
#include "search/optiondialog.h"
#include "store/catalogquery.h"
#include "store/colorsetting.h"
#include "tests/support/modalscript.h"
#include "tests/support/testcatalogue.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QTableView>
#include <QTest>
#include <QTextEdit>

#include <functional>
#include <memory>

using namespace Qt::StringLiterals;

Q_DECLARE_METATYPE(std::function<QDialog *()>)

/// All dialogs by keyboard, as far as they are alike; each form's own test knows the rest.
class TestDialogKeyboard final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void escapeStoresNothing_data();
    void escapeStoresNothing();
    void escapeLeavesTheChosenGroupUnmoved();
    void tabLeadsThroughThePictureFormAsOneReads();
    void tabLeadsThroughTheMoveDialogAsOneReads();

private:
    [[nodiscard]] QStringList stored() const;

    std::unique_ptr<TestCatalogue> m_catalogue;
    int m_group = 0;
    int m_model = 0;
};

namespace {

/// Where Tab leads from the first stop on, until it begins again.
QStringList tabStops(QDialog &dialog)
{
    dialog.show();
    dialog.activateWindow();
    QStringList order;
    while (QTest::qWaitForWindowActive(&dialog) && order.size() < 20
        && !order.contains(QApplication::focusWidget()->objectName())) {
        order.append(QApplication::focusWidget()->objectName());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    return order;
}

void clickFirstRow(const QDialog &dialog)
{
    const auto *table = dialog.findChild<QTableView *>(u"groupList"_s);
    QTest::mouseClick(table->viewport(), Qt::LeftButton, {}, table->visualRect(table->model()->index(0, 1)).center());
}

} // namespace

void TestDialogKeyboard::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    m_group = m_catalogue->addGroup(u"Krokodile"_s);
    m_model = m_catalogue->addModel(u"Ce 6/8"_s, m_group);
    m_catalogue->addPicture(m_catalogue->addEntry(u"14253"_s, m_model));
    CatalogQuery::instance().reloadModels();
}

void TestDialogKeyboard::cleanup()
{
    ColorSetting::saveAndRelease();
    m_catalogue.reset();
}

/// All that a dialog could have changed: rows with their contents, and the files of the picture store.
QStringList TestDialogKeyboard::stored() const
{
    QStringList all;
    for (const QString &columns : { u"group_concat(id || name || pictPath) FROM locomotive"_s,
             u"group_concat(id || modelname || locid) FROM loc_model"_s,
             u"group_concat(id || nummer || ort || kommentar || locseendate || locseenid) FROM loc_seen"_s,
             u"group_concat(id || pictAuxPath || pictOrigPath || locpictureid) FROM loc_picture"_s,
             u"group_concat(id || value) FROM settings"_s }) {
        all.append(m_catalogue->value(u"SELECT "_s + columns).toString());
    }
    for (const QString &folder : { u"AuxFolder"_s, u"Folder001"_s, u"Folder002"_s }) {
        all += QDir(u"./Data/Pictures/"_s + folder).entryList(QDir::Files);
    }
    return all;
}

void TestDialogKeyboard::escapeStoresNothing_data()
{
    QTest::addColumn<std::function<QDialog *()>>("make");
    const auto add = [](const char *name, std::function<QDialog *()> make) { QTest::newRow(name) << std::move(make); };
    add("search", [this] {
        QList<QSqlRecord> classes;
        CatalogQuery::instance().modelsOfGroup(classes, m_group);
        return new OptionDialog(classes, m_group);
    });
    add("new entry", [this] { return new LocseenForm(-1, m_model, nullptr); });
    add("new picture", [] { return new LocPictureForm(1, -1, nullptr); });
    add("stored picture", [] { return new LocPictureForm(1, 1, nullptr); });
    add("groups", [] { return new LocGroupForm; });
    add("move", [this] { return new LocGroupForm(m_model, u"Ce 6/8"_s, nullptr); });
    add("classes", [this] { return new LocModelForm(m_group, nullptr); });
}

void TestDialogKeyboard::escapeStoresNothing()
{
    QFETCH(std::function<QDialog *()>, make);
    const QStringList before = stored();
    QVERIFY(before.join(u' ').contains(u"14253"_s));
    const std::unique_ptr<QDialog> dialog(make());
    ModalScript script;
    dialog->show();
    const QList<QWidget *> fields = dialog->findChildren<QWidget *>();
    for (QWidget *field : fields) {
        const bool isText = qobject_cast<QLineEdit *>(field) || qobject_cast<QTextEdit *>(field);
        if (isText && field->isVisible() && field->isEnabled()) {
            QTest::keyClicks(field, u"7"_s);
        }
    }
    QWidget *focused = dialog->focusWidget();
    QTest::keyClick(focused ? focused : dialog.get(), Qt::Key_Escape);
    QVERIFY(!dialog->isVisible());
    QCOMPARE(dialog->result(), int(QDialog::Rejected));
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(stored(), before);
}

void TestDialogKeyboard::escapeLeavesTheChosenGroupUnmoved()
{
    const int other = m_catalogue->addGroup(u"Akkutriebwagen"_s); // first in the list
    LocGroupForm move(m_model, u"Ce 6/8"_s, nullptr);
    move.show();
    const QStringList before = stored();
    clickFirstRow(move);
    QTest::keyClick(move.focusWidget(), Qt::Key_Escape);
    QVERIFY(!move.isVisible());
    QCOMPARE(stored(), before);
    QVERIFY(other > m_group);
}

void TestDialogKeyboard::tabLeadsThroughThePictureFormAsOneReads()
{
    LocPictureForm form(1, -1, nullptr);
    QCOMPARE(tabStops(form), (QStringList { u"browseButton"_s, u"closeButton"_s })); // nothing to be saved yet
}

void TestDialogKeyboard::tabLeadsThroughTheMoveDialogAsOneReads()
{
    LocGroupForm move(m_model, u"Ce 6/8"_s, nullptr);
    move.show();
    clickFirstRow(move); // enables saving
    move.findChild<QWidget *>(u"modelNameEdit"_s)->setFocus();
    QCOMPARE(tabStops(move), (QStringList { u"modelNameEdit"_s, u"saveButton"_s, u"groupList"_s, u"closeButton"_s }));
}

BAHNITO_TEST_MAIN(TestDialogKeyboard)
#include "tst_dialogkeyboard.moc"
