#include "forms/locgroupform.h"
#include "forms/locmodelform.h"
#include "forms/locseenform.h"
#include "tests/faults/faultfolder.h"
#include "tests/faults/hostiletexts.h"
#include "tests/support/testcatalogue.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTextDocument>
#include <QTextEdit>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

/// The texts of an entry, as they were typed or as its row must hold them.
struct EntryTexts
{
    QString number;
    QString place;
    QString comment;
};

EntryTexts hostileEntry(QRandomGenerator &random)
{
    const QString number = hostileText(random); // one after the other: the order of arguments is nobody's
    const QString place = hostileText(random);
    return { number, place, hostileText(random) };
}

EntryTexts asStored(const EntryTexts &typed)
{
    return { asStored(onOneLine(typed.number), FieldLimit::Number), asStored(onOneLine(typed.place), FieldLimit::Place),
        asStored(commentOnOneLine(typed.comment), FieldLimit::Comment) };
}

QLineEdit *lineEdit(const QWidget &form, const QString &name)
{
    return form.findChild<QLineEdit *>(name);
}

QTextEdit *commentEdit(const QWidget &form)
{
    return form.findChild<QTextEdit *>(u"commentEdit"_s);
}

QPushButton *saveButton(const QWidget &form)
{
    return form.findChild<QPushButton *>(u"saveButton"_s);
}

/// What the comment's field shows, with the ends of lines as blanks; its plain text would not tell all gaps apart.
QString shownComment(const QWidget &form)
{
    return commentOnOneLine(commentEdit(form)->document()->toRawText());
}

} // namespace

/// Whatever is typed into a field is stored as it was typed, up to the field's limit, and is there again when the form
/// is opened. All expectations come from what was typed.
class TestHostileTexts final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_catalogue.reset(); }

    void newEntriesKeepWhatWasTyped();
    void editedEntriesKeepWhatWasTyped_data();
    void editedEntriesKeepWhatWasTyped();
    void classesKeepWhatWasTyped();
    void groupsKeepWhatWasTyped();

private:
    void saveNewEntry(const EntryTexts &typed);
    void editEntry(int id, const EntryTexts &typed, bool byButton);
    void checkRow(int id, const EntryTexts &expected);
    void checkOpening(int id, const EntryTexts &expected);
    [[nodiscard]] QString text(const QString &column, const QString &table, int id) const;
    [[nodiscard]] int count(const QString &table) const;

    std::unique_ptr<TestCatalogue> m_catalogue;
};

void TestHostileTexts::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    m_catalogue->addGroup(u"Gruppe"_s);
    m_catalogue->addModel(u"Baureihe"_s, 1);
}

QString TestHostileTexts::text(const QString &column, const QString &table, int id) const
{
    return m_catalogue->value(u"SELECT %1 FROM %2 WHERE id = %3"_s.arg(column, table, QString::number(id))).toString();
}

int TestHostileTexts::count(const QString &table) const
{
    return m_catalogue->value(u"SELECT COUNT(*) FROM %1"_s.arg(table)).toInt();
}

void TestHostileTexts::newEntriesKeepWhatWasTyped()
{
    QRandomGenerator random(testSeed(1));
    const int texts = share(500, 5000);
    int stored = 0;
    for (int i = 0; i < texts && !QTest::currentTestFailed(); ++i) {
        const EntryTexts typed = hostileEntry(random);
        saveNewEntry(typed);
        if (count(u"loc_seen"_s) > stored) {
            checkRow(++stored, asStored(typed));
            checkOpening(stored, asStored(typed));
        }
    }
    QVERIFY(stored > texts * 9 / 10);
    qInfo("%d entries tried, %d stored", texts, stored);
}

/// Saves an entry, unless a field has taken nothing.
void TestHostileTexts::saveNewEntry(const EntryTexts &typed)
{
    LocseenForm form(-1, 1);
    pasteInto(commentEdit(form), typed.comment);
    pasteInto(lineEdit(form, u"numberEdit"_s), typed.number);
    pasteInto(lineEdit(form, u"placeEdit"_s), typed.place);
    QCOMPARE(lineEdit(form, u"numberEdit"_s)->text(), onOneLine(typed.number));
    QCOMPARE(lineEdit(form, u"placeEdit"_s)->text(), onOneLine(typed.place));
    QCOMPARE(shownComment(form), commentOnOneLine(typed.comment));
    const int before = count(u"loc_seen"_s);
    const bool isComplete = !onOneLine(typed.number).isEmpty() && !onOneLine(typed.place).isEmpty();
    QCOMPARE(saveButton(form)->isEnabled(), isComplete);
    saveButton(form)->click();
    QCOMPARE(count(u"loc_seen"_s), before + (isComplete ? 1 : 0));
}

void TestHostileTexts::editedEntriesKeepWhatWasTyped_data()
{
    QTest::addColumn<bool>("byButton");
    QTest::newRow("saved") << true;
    QTest::newRow("closed") << false;
}

void TestHostileTexts::editedEntriesKeepWhatWasTyped()
{
    QFETCH(const bool, byButton);
    QRandomGenerator random(testSeed(byButton ? 7 : 8));
    const int texts = share(500, 5000);
    int changed = 0;
    for (int i = 0; i < texts && !QTest::currentTestFailed(); ++i) {
        const EntryTexts before = asStored(hostileEntry(random));
        const int id = m_catalogue->addEntry(before.number, 1, before.place, {}, before.comment);
        const EntryTexts typed = hostileEntry(random);
        editEntry(id, typed, byButton);
        EntryTexts expected = asStored(typed);
        expected.number = before.number; // cannot be edited
        checkRow(id, expected);
        checkOpening(id, expected);
        changed += expected.place != before.place || expected.comment != before.comment ? 1 : 0;
    }
    qInfo("%d edits tried, %d entries changed", texts, changed);
    QVERIFY(changed > texts * 9 / 10);
}

void TestHostileTexts::editEntry(int id, const EntryTexts &typed, bool byButton)
{
    LocseenForm form(id, 1);
    const bool isEdited = onOneLine(typed.place) != lineEdit(form, u"placeEdit"_s)->text()
        || commentOnOneLine(typed.comment) != shownComment(form);
    pasteInto(lineEdit(form, u"placeEdit"_s), typed.place);
    pasteInto(commentEdit(form), typed.comment);
    QCOMPARE(saveButton(form)->isEnabled(), isEdited);
    if (byButton) {
        saveButton(form)->click();
        QVERIFY(!saveButton(form)->isEnabled());
    } else {
        form.done(QDialog::Accepted);
        QCOMPARE(form.hasChanged(), isEdited);
    }
}

void TestHostileTexts::checkRow(int id, const EntryTexts &expected)
{
    QCOMPARE(text(u"nummer"_s, u"loc_seen"_s, id), expected.number);
    QCOMPARE(text(u"ort"_s, u"loc_seen"_s, id), expected.place);
    QCOMPARE(text(u"kommentar"_s, u"loc_seen"_s, id), expected.comment);
}

/// The form that is opened on the row, and the file, which opening and closing leaves as it is.
void TestHostileTexts::checkOpening(int id, const EntryTexts &expected)
{
    const QByteArray before = folderDigest(QDir::currentPath() + u"/Data"_s);
    LocseenForm form(id, 1);
    QCOMPARE(lineEdit(form, u"numberEdit"_s)->text(), expected.number);
    QCOMPARE(lineEdit(form, u"placeEdit"_s)->text(), expected.place);
    QCOMPARE(commentEdit(form)->document()->toRawText(), expected.comment);
    form.done(QDialog::Accepted);
    QVERIFY(!form.hasChanged());
    QCOMPARE(folderDigest(QDir::currentPath() + u"/Data"_s), before);
}

void TestHostileTexts::classesKeepWhatWasTyped()
{
    QRandomGenerator random(testSeed(2));
    const int texts = share(500, 5000);
    int id = 1;
    for (int i = 0; i < texts; ++i) {
        LocModelForm form(1);
        const QString typed = hostileText(random);
        pasteInto(lineEdit(form, u"nameEdit"_s), typed);
        QCOMPARE(lineEdit(form, u"nameEdit"_s)->text(), onOneLine(typed));
        QCOMPARE(saveButton(form)->isEnabled(), !onOneLine(typed).isEmpty());
        if (saveButton(form)->isEnabled()) {
            saveButton(form)->click();
            QCOMPARE(text(u"modelname"_s, u"loc_model"_s, ++id), asStored(onOneLine(typed), FieldLimit::Name));
        }
    }
    qInfo("%d classes tried, %d stored", texts, id - 1);
    QVERIFY(id > texts * 9 / 10);
}

void TestHostileTexts::groupsKeepWhatWasTyped()
{
    QRandomGenerator random(testSeed(3));
    const int texts = share(500, 5000);
    for (int i = 0; i < texts; ++i) {
        LocGroupForm form;
        const QString typed = hostileText(random);
        pasteInto(lineEdit(form, u"nameEdit"_s), typed);
        QCOMPARE(lineEdit(form, u"nameEdit"_s)->text(), onOneLine(typed));
        form.addGroup(); // its button waits for a picture
        QCOMPARE(text(u"name"_s, u"locomotive"_s, i + 2), asStored(onOneLine(typed), FieldLimit::Name));
    }
    qInfo("%d groups tried, %d stored", texts, count(u"locomotive"_s) - 1);
}

BAHNITO_TEST_MAIN(TestHostileTexts)
#include "tst_hostiletexts.moc"
