#include "app/pictureitem.h"
#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "browser/textitem.h"
#include "forms/locgroupform.h"
#include "forms/locmodelform.h"
#include "forms/locpictureform.h"
#include "forms/locseenform.h"
#include "store/statement.h"
#include "tests/faults/faultfolder.h"
#include "tests/faults/hostiletexts.h"
#include "tests/support/browserwindow.h"
#include "tests/support/modalscript.h"
#include "tests/support/testmain.h"

#include <QComboBox>
#include <QDir>
#include <QHash>
#include <QLabel>
#include <QLineEdit>
#include <QScopeGuard>
#include <QTableView>
#include <QTest>

#include <algorithm>
#include <functional>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr int EntriesOfClass = 40; // a page

/// Texts of a column of a list and its tool tips, by the ids in the first column.
void checkList(const QTableView *list, int column, const QHash<int, QString> &expected)
{
    QCOMPARE(list->model()->rowCount(), int(expected.size()));
    for (int row = 0; row < list->model()->rowCount() && !QTest::currentTestFailed(); ++row) {
        const QString shown = inList(expected.value(list->model()->index(row, 0).data().toInt()));
        const QModelIndex cell = list->model()->index(row, column);
        QCOMPARE(cell.data().toString(), shown);
        QCOMPARE(readableIn(cell.data(Qt::ToolTipRole).toString()), withoutGaps(shown));
    }
}

} // namespace

/// Whatever the catalogue holds is shown as the letters that it is: on the canvas, on buttons, in lists, boxes and
/// tool tips. All expectations come from what was put in.
class TestShownHostileTexts final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_catalogue = std::make_unique<TestCatalogue>(); }
    void cleanup() { m_catalogue.reset(); }

    void canvasShowsWhatIsStored();
    void groupButtonsShowTheNames();
    void searchDialogShowsTheNames();
    void listsShowTheNames();
    void moveDialogShowsTheName();
    void picturePathsAreShownAsTheyAre();

private:
    struct Page
    {
        QString model;
        QHash<int, QStringList> entries; // number, place and comment by their ids
    };

    [[nodiscard]] Page fillPage(QRandomGenerator &random, int groupId);
    void checkPage(BrowserWindow &browser, int groupId, const Page &page);
    void checkQuestions(BrowserWindow &browser, const Page &page);
    void checkListing(BrowserWindow &browser, int groupId, const Page &page);
    [[nodiscard]] QHash<int, QString> addNames(quint32 seed, const std::function<int(const QString &)> &add);

    std::unique_ptr<TestCatalogue> m_catalogue;
};

/// Five hundred hostile names by the ids of their rows.
QHash<int, QString> TestShownHostileTexts::addNames(quint32 seed, const std::function<int(const QString &)> &add)
{
    QRandomGenerator random(testSeed(seed));
    QHash<int, QString> names;
    const int count = share(500, 2000);
    while (names.size() < count) {
        const QString name = asStored(hostileText(random), FieldLimit::Name);
        names.insert(add(name), name);
    }
    return names;
}

/// A class with a hostile name and a page of hostile entries.
TestShownHostileTexts::Page TestShownHostileTexts::fillPage(QRandomGenerator &random, int groupId)
{
    Page page { asStored(hostileText(random), FieldLimit::Name), {} };
    m_catalogue->addGroup(u"Gruppe"_s);
    const int model = m_catalogue->addModel(page.model, groupId);
    for (int i = 0; i < EntriesOfClass; ++i) {
        // As the form stores it: a statement that finds a number by its text ends at a zero character.
        const QString number = asStored(onOneLine(hostileText(random)), FieldLimit::Number);
        const QString place = asStored(hostileText(random), FieldLimit::Place);
        const QString comment = asStored(hostileText(random), FieldLimit::Comment);
        const int id = m_catalogue->addEntry(number, model, place, {}, comment);
        page.entries.insert(id, { number, place, comment });
    }
    return page;
}

void TestShownHostileTexts::canvasShowsWhatIsStored()
{
    QRandomGenerator random(testSeed(4));
    const int pages = share(13, 125); // of forty entries: the five hundred texts, three times
    QList<Page> filled;
    for (int groupId = 1; groupId <= pages; ++groupId) {
        filled.append(fillPage(random, groupId));
    }
    BrowserWindow browser;
    int quoted = 0;
    for (int groupId = 1; groupId <= pages && !QTest::currentTestFailed(); ++groupId) {
        const Page &page = filled.at(groupId - 1);
        quoted += int(std::count_if(page.entries.cbegin(), page.entries.cend(),
            [](const QStringList &texts) { return texts.first().contains(u'\''); }));
        checkPage(browser, groupId, page);
        checkQuestions(browser, page);
        checkListing(browser, groupId, page);
    }
    qInfo("%d pages with %d entries shown, %d with a quote in the number", pages, pages * EntriesOfClass, quoted);
    QVERIFY(quoted > pages);
}

void TestShownHostileTexts::checkPage(BrowserWindow &browser, int groupId, const Page &page)
{
    QCOMPARE(browser.search(groupId), QStringList());
    QCOMPARE(browser.caption(), u"40 Einträge der Baureihe "_s + onCanvas(page.model));
    QCOMPARE(browser.canvas().blocks().size(), EntriesOfClass);
    for (const EntryBlock *block : browser.canvas().blocks()) {
        QStringList shown;
        const QList<QGraphicsItem *> items = block->childItems();
        for (QGraphicsItem *item : items) {
            if (const auto *line = qgraphicsitem_cast<TextItem *>(item)) {
                shown.append(line->toPlainText());
            }
        }
        const QStringList texts = page.entries.value(block->card().id);
        QCOMPARE(texts.size(), 3);
        for (const QString &text : texts) {
            QVERIFY2(text.isEmpty() || shown.contains(onCanvas(text)), qPrintable(text + u" in "_s + shown.join(u'|')));
        }
    }
}

/// The question before an entry is deleted, answered with no.
void TestShownHostileTexts::checkQuestions(BrowserWindow &browser, const Page &page)
{
    for (int i = 0; i < EntriesOfClass && !QTest::currentTestFailed(); ++i) {
        const EntryBlock *block = browser.block(i);
        const QString id = QString::number(block->card().id);
        const QString number = page.entries.value(block->card().id).first();
        ModalScript script;
        script.box(u"Eintrag Entfernen"_s,
            u"Eintrag "_s + id + u" mit der Lok-Nummer "_s + number + u" und alle dazugehörenden Bilder löschen?"_s,
            u"Nein"_s);
        browser.click(browser.button(ButtonKind::Delete, block));
        QCOMPARE(script.problems(), QStringList());
    }
}

/// The listing of one number, which comes from the database and goes back into a statement: a number with a single
/// quote is one that the statement does not find.
void TestShownHostileTexts::checkListing(BrowserWindow &browser, int groupId, const Page &page)
{
    QCOMPARE(browser.search(groupId, { {}, u"nur einmal"_s, u"nein alle"_s, u"Datum"_s, u"1"_s }), QStringList());
    for (const bool isQuoted : { false, true }) {
        const QList<EntryBlock *> blocks = browser.canvas().blocks();
        const auto block = std::find_if(blocks.cbegin(), blocks.cend(),
            [isQuoted](const EntryBlock *candidate) { return candidate->card().number.contains(u'\'') == isQuoted; });
        if (block == blocks.cend()) {
            continue;
        }
        const QString number = page.entries.value((*block)->card().id).first();
        const int entries = isQuoted ? 0
                                     : int(std::count_if(page.entries.cbegin(), page.entries.cend(),
                                         [&number](const QStringList &texts) { return texts.first() == number; }));
        browser.click(browser.button(ButtonKind::Count, *block));
        QCOMPARE(
            browser.caption(), u"%1 Einträge der "_s.arg(entries) + onCanvas(page.model) + u' ' + onCanvas(number));
        QCOMPARE(browser.numbers(), QStringList(entries, number));
        browser.click(browser.button(ButtonKind::Back));
    }
}

void TestShownHostileTexts::groupButtonsShowTheNames()
{
    const auto names = addNames(5, [this](const QString &name) { return m_catalogue->addGroup(name); });
    const BrowserWindow browser;
    int marked = 0;
    for (auto it = names.cbegin(); it != names.cend(); ++it) {
        const auto *button = browser.window().findChild<PictureItem *>(u"group%1"_s.arg(it.key()));
        const QString name = onCanvas(it.value());
        QCOMPARE(button->accessibleName(), name);
        QCOMPARE(readableIn(button->toolTip()), withoutGaps(name));
        QVERIFY2(isStartOf(lettersOn(button), name), qPrintable(button->text() + u" of "_s + name));
        marked += lettersOn(button).contains(u'&') ? 1 : 0;
    }
    qInfo("%d names on buttons, %d with an ampersand", int(names.size()), marked);
    QVERIFY(marked > 0);
}

void TestShownHostileTexts::searchDialogShowsTheNames()
{
    const QString group = asStored(u"<b>R&S</b> 'x' %1"_s, FieldLimit::Name);
    m_catalogue->addGroup(group);
    const auto names = addNames(9, [this](const QString &name) { return m_catalogue->addModel(name, 1); });
    BrowserWindow browser;
    ModalScript script;
    script.then([&](QWidget *dialog) {
        const auto close = qScopeGuard([dialog] { dialog->close(); });
        auto *box = dialog->findChild<QComboBox *>(u"modelBox"_s);
        const auto *field = dialog->findChild<QLineEdit *>(u"modelField"_s);
        const auto *caption = dialog->findChild<QLabel *>(u"caption"_s);
        QStringList listed;
        for (int i = 0; i < box->count() && !QTest::currentTestFailed(); ++i) {
            box->setCurrentIndex(i);
            listed.append(box->itemText(i));
            QCOMPARE(field->text(), box->itemText(i));
            QCOMPARE(readableIn(box->toolTip()), withoutGaps(box->itemText(i)));
            QCOMPARE(readableIn(field->toolTip()), withoutGaps(box->itemText(i)));
        }
        QStringList expected = names.values();
        std::sort(expected.begin(), expected.end());
        std::sort(listed.begin(), listed.end());
        QCOMPARE(listed, expected);
        QCOMPARE(caption->text(), u"Gruppe "_s + group);
        QCOMPARE(caption->textFormat(), Qt::PlainText);
        qInfo("%d names in the dialog", int(listed.size()));
    });
    browser.clickGroup(1);
    QCOMPARE(script.problems(), QStringList());
}

void TestShownHostileTexts::listsShowTheNames()
{
    const auto groups = addNames(10, [this](const QString &name) { return m_catalogue->addGroup(name); });
    const auto models = addNames(11, [this](const QString &name) { return m_catalogue->addModel(name, 1); });
    const LocGroupForm groupForm;
    checkList(groupForm.findChild<QTableView *>(u"groupList"_s), 1, groups);
    const LocModelForm modelForm(1);
    const auto *list = modelForm.findChild<QTableView *>(u"modelList"_s);
    checkList(list, list->isColumnHidden(1) ? 2 : 1, models);
    qInfo("%d groups and %d classes listed", int(groups.size()), int(models.size()));
}

void TestShownHostileTexts::moveDialogShowsTheName()
{
    QRandomGenerator random(testSeed(12));
    m_catalogue->addGroup(u"Gruppe"_s);
    const int dialogs = share(500, 5000);
    for (int i = 0; i < dialogs; ++i) {
        const QString name = asStored(hostileText(random), FieldLimit::Name);
        const LocGroupForm form(1, name, nullptr);
        QCOMPARE(form.findChild<QLineEdit *>(u"modelNameEdit"_s)->text(), name);
    }
    qInfo("%d dialogs opened", dialogs);
}

void TestShownHostileTexts::picturePathsAreShownAsTheyAre()
{
    QRandomGenerator random(testSeed(6));
    const int entry = m_catalogue->addEntry(u"1"_s, 1);
    QHash<int, QString> copies;
    QHash<int, QString> originals;
    for (int i = 0; i < share(500, 2000); ++i) {
        const QString copy = asStored(hostileText(random), 5000);
        const QString original = asStored(u"/media/"_s + hostileText(random), 5000);
        const WriteOutcome outcome
            = executeWrite(u"INSERT INTO loc_picture (pictAuxPath, pictOrigPath, pictHeight, pictWidth, "
                           "locpictureid) VALUES (:copy, :original, 1, 1, 1)"_s,
                { { u":copy"_s, copy }, { u":original"_s, original } });
        QVERIFY2(outcome.done, qPrintable(outcome.errorText));
        const int id = outcome.newId;
        copies.insert(id, copy);
        originals.insert(id, original);
    }
    const QByteArray before = folderDigest(QDir::currentPath() + u"/Data"_s);
    LocseenForm entryForm(entry, 1);
    const auto *table = entryForm.findChild<QTableView *>(u"pictureTable"_s);
    checkList(table, 1, copies);
    checkList(table, 2, originals);
    entryForm.done(QDialog::Accepted);
    for (auto it = copies.cbegin(); it != copies.cend(); ++it) {
        LocPictureForm form(entry, it.key());
        const auto *copyEdit = form.findChild<QLineEdit *>(u"copyPathEdit"_s);
        const auto *originalEdit = form.findChild<QLineEdit *>(u"originalPathEdit"_s);
        QCOMPARE(copyEdit->text(), inList(it.value()));
        QCOMPARE(originalEdit->text(), inList(originals.value(it.key())));
        QCOMPARE(readableIn(copyEdit->toolTip()), withoutGaps(inList(it.value())));
        QCOMPARE(readableIn(originalEdit->toolTip()), withoutGaps(inList(originals.value(it.key()))));
        form.done(QDialog::Accepted);
    }
    qInfo("%d pictures with odd paths shown", int(copies.size()));
    QCOMPARE(folderDigest(QDir::currentPath() + u"/Data"_s), before);
}

BAHNITO_TEST_MAIN(TestShownHostileTexts)
#include "tst_shownhostiletexts.moc"
