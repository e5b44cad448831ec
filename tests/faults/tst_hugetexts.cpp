#include "browser/buttonitem.h"
#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "forms/locseenform.h"
#include "tests/faults/catalogueuser.h"
#include "tests/faults/faultfolder.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QSqlQuery>
#include <QTableView>
#include <QTest>
#include <QTextEdit>

#include <ctime>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr int LongestAction = 1500; // ms of computing, in which the window stands still

/// Ten million letters, in words or without a gap.
const QString InWords = u"replace(hex(zeroblob(2000000)),'00','wort ')"_s;
const QString WithoutGaps = u"replace(hex(zeroblob(5000000)),'0','W')"_s;

QAbstractItemView *listOf(const QWidget *form)
{
    return form->findChild<QTableView *>();
}

void clickFirstRow(const QWidget *form)
{
    QAbstractItemView *list = listOf(form);
    const auto *table = static_cast<QTableView *>(list);
    for (int column = 0; column < list->model()->columnCount(); ++column) {
        if (!table->isColumnHidden(column)) {
            const QRect cell = list->visualRect(list->model()->index(0, column));
            QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, cell.center());
            return;
        }
    }
}

} // namespace

/// Texts that another program has put into the database and that no form would have taken. They must cost nobody an
/// evening, and stay as they are where the user does not touch them.
class TestHugeTexts final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_catalogue.reset(); }

    void hugeTextsDoNotFreezeTheForms_data();
    void hugeTextsDoNotFreezeTheForms();
    void unrelatedEditKeepsTooLongTexts();
    void editedTextReplacesTheTooLongOne();

private:
    void lap(const QString &action, QWidget *shown = nullptr);
    void expectDialogs(DialogAnswerer &answers);
    void fillWith(const QString &text);
    [[nodiscard]] QVariant stored(const QString &column) const;

    std::unique_ptr<TestCatalogue> m_catalogue;
    std::clock_t m_lapStart = 0;
    int m_slowest = 0;
    QStringList m_laps;
};

void TestHugeTexts::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    m_catalogue->addGroup(u"Gruppe"_s);
    m_catalogue->addModel(u"Baureihe"_s, 1);
    m_catalogue->addEntry(u"1"_s, 1);
    m_catalogue->addPicture(1);
}

/// Ends the action that began at the last lap; `shown` is painted as a part of it.
void TestHugeTexts::lap(const QString &action, QWidget *shown)
{
    if (shown) {
        QApplication::processEvents();
        shown->grab();
    }
    const int taken = int((std::clock() - m_lapStart) * 1000 / CLOCKS_PER_SEC);
    m_laps.append(u"%1 %2 ms"_s.arg(action, QString::number(taken)));
    m_slowest = std::max(m_slowest, taken);
    m_lapStart = std::clock();
}

void TestHugeTexts::fillWith(const QString &text)
{
    for (const QString &column :
        { u"locomotive.name"_s, u"locomotive.pictPath"_s, u"loc_model.modelname"_s, u"loc_seen.nummer"_s,
            u"loc_seen.ort"_s, u"loc_seen.kommentar"_s, u"loc_picture.pictAuxPath"_s, u"loc_picture.pictOrigPath"_s }) {
        QSqlQuery query;
        QVERIFY(query.exec(u"UPDATE %1 SET %2 = %3"_s.arg(column.section(u'.', 0, 0), column.section(u'.', 1), text)));
    }
}

/// What the user does in each dialog that comes up; everything is looked at and nothing is changed.
void TestHugeTexts::expectDialogs(DialogAnswerer &answers)
{
    const auto on = [this, &answers](const QString &title, const std::function<void(QWidget *)> &use) {
        answers.always(title, [this, title, use](QWidget *form) {
            lap(u"open "_s + title, form);
            use(form);
            lap(u"use "_s + title, form);
            DialogAnswerer::click(form, u"Schliessen"_s);
            lap(u"close "_s + title);
        });
    };
    on(u"Baureihe-Gruppen (mit Bild)"_s, [this](QWidget *form) {
        clickFirstRow(form);
        lap(u"choose a group"_s, form);
        DialogAnswerer::click(form, u"Bild zeigen"_s);
        DialogAnswerer::click(form, u"Gruppe entfernen"_s);
        lap(u"refuse to delete it"_s, form);
        DialogAnswerer::click(form, u"Baureihen"_s);
    });
    on(u"Baureihen"_s, [this](QWidget *form) {
        clickFirstRow(form);
        lap(u"choose a class"_s, form);
        DialogAnswerer::click(form, u"Baureihe entfernen"_s);
        lap(u"refuse to delete it"_s, form);
        DialogAnswerer::click(form, u"Baureihe verschieben"_s);
    });
    on(u"Baureihe-Gruppen"_s, [](QWidget *form) { clickFirstRow(form); });
    on(u"Edit Bahnito-Eintrag"_s, [this](QWidget *form) {
        clickFirstRow(form);
        lap(u"choose a picture"_s, form);
        DialogAnswerer::click(form, u"Bild zeigen"_s);
        DialogAnswerer::click(form, u"Bild entfernen"_s);
    });
    answers.always(u"Benutzereingabe"_s, [this](QWidget *form) {
        lap(u"open Benutzereingabe"_s, form);
        DialogAnswerer::click(form, u"Neue Lok"_s);
        lap(u"new entry"_s, form);
        DialogAnswerer::click(form, u"Suchen"_s);
    });
}

void TestHugeTexts::hugeTextsDoNotFreezeTheForms_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("words") << InWords;
    QTest::newRow("no gap") << WithoutGaps;
}

void TestHugeTexts::hugeTextsDoNotFreezeTheForms()
{
    QFETCH(const QString, text);
    fillWith(text);
    const QString before = catalogueDump(QDir::currentPath());
    QVERIFY(before.size() > 80'000'000);
    m_laps.clear();
    m_slowest = 0;
    DialogAnswerer answers;
    answers.setConsent(false);
    expectDialogs(answers);
    m_lapStart = std::clock();
    BrowserWindow browser;
    lap(u"start"_s, &browser.window());
    for (QAction *action : browser.window().findChildren<QAction *>()) {
        if (action->text() == u"Baureihe-Gruppen bearbeiten"_s) {
            action->trigger();
        }
    }
    browser.clickGroup(1);
    lap(u"search"_s, &browser.window());
    QCOMPARE(browser.canvas().blocks().size(), 1);
    browser.click(browser.button(ButtonKind::Edit, browser.block(0)));
    lap(u"edit"_s, &browser.window());
    browser.click(browser.button(ButtonKind::Delete, browser.block(0)));
    lap(u"ask before deleting"_s, &browser.window());
    qInfo("slowest %d ms of %d actions", m_slowest, int(m_laps.size()));
    QVERIFY2(m_slowest < LongestAction, qPrintable(m_laps.join(u", "_s)));
    QVERIFY(m_laps.size() > 20); // all dialogs have come up
    QVERIFY(catalogueDump(QDir::currentPath()) == before); // a comparison that fails would print it all
}

QVariant TestHugeTexts::stored(const QString &column) const
{
    return m_catalogue->value(u"SELECT %1 FROM loc_seen WHERE id = 1"_s.arg(column));
}

void TestHugeTexts::unrelatedEditKeepsTooLongTexts()
{
    QSqlQuery query;
    QVERIFY(query.exec(u"UPDATE loc_seen SET nummer = 'n'||hex(zeroblob(50)), kommentar = 'k'||hex(zeroblob(500))"_s));
    const QVariant number = stored(u"nummer"_s);
    const QVariant comment = stored(u"kommentar"_s);
    LocseenForm form(1, 1);
    QCOMPARE(form.findChild<QTextEdit *>(u"commentEdit"_s)->toPlainText(), comment.toString().left(1000));
    auto *place = form.findChild<QLineEdit *>(u"placeEdit"_s);
    for (const QString &name : { u"Olten"_s, u"Brig"_s }) { // saving leaves the form open for the next edit
        place->setText(name);
        form.findChild<QPushButton *>(u"saveButton"_s)->click();
        QCOMPARE(stored(u"ort"_s).toString(), name);
        QCOMPARE(stored(u"nummer"_s), number);
        QCOMPARE(stored(u"kommentar"_s), comment);
    }
}

void TestHugeTexts::editedTextReplacesTheTooLongOne()
{
    QSqlQuery query;
    QVERIFY(query.exec(u"UPDATE loc_seen SET ort = 'o'||hex(zeroblob(50)), kommentar = 'k'||hex(zeroblob(500))"_s));
    const QVariant place = stored(u"ort"_s);
    LocseenForm form(1, 1);
    form.findChild<QTextEdit *>(u"commentEdit"_s)->setPlainText(u"kurz"_s);
    form.done(QDialog::Accepted);
    QVERIFY(form.hasChanged());
    QCOMPARE(stored(u"kommentar"_s).toString(), u"kurz"_s);
    QCOMPARE(stored(u"ort"_s), place);
}

BAHNITO_TEST_MAIN(TestHugeTexts)
#include "tst_hugetexts.moc"
