#include "forms/locseenform.h"
#include "search/clock.h"
#include "store/colorsetting.h"
#include "store/statement.h"
#include "tests/support/modalscript.h"
#include "tests/support/testcatalogue.h"
#include "tests/support/testmain.h"
#include "tests/support/testpictures.h"

#include <QApplication>
#include <QClipboard>
#include <QDateEdit>
#include <QDir>
#include <QFile>
#include <QGraphicsView>
#include <QGridLayout>
#include <QGroupBox>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPushButton>
#include <QSqlError>
#include <QSqlQuery>
#include <QTableView>
#include <QTest>
#include <QTextEdit>
#include <QWheelEvent>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

QPushButton *button(const QWidget &form, const QString &name)
{
    return form.findChild<QPushButton *>(name);
}

void press(const QWidget &form, const QString &name)
{
    QVERIFY2(button(form, name)->isEnabled(), qUtf8Printable(name));
    QTest::mouseClick(button(form, name), Qt::LeftButton);
}

QLineEdit *number(const QWidget &form)
{
    return form.findChild<QLineEdit *>(u"numberEdit"_s);
}

QLineEdit *place(const QWidget &form)
{
    return form.findChild<QLineEdit *>(u"placeEdit"_s);
}

QTextEdit *comment(const QWidget &form)
{
    return form.findChild<QTextEdit *>(u"commentEdit"_s);
}

QDateEdit *seenDate(const QWidget &form)
{
    return form.findChild<QDateEdit *>(u"seenDateEdit"_s);
}

QDateEdit *startDate(const QWidget &form)
{
    return form.findChild<QDateEdit *>(u"startDateEdit"_s);
}

QTableView *table(const QWidget &form)
{
    return form.findChild<QTableView *>(u"pictureTable"_s);
}

bool canSave(const QWidget &form)
{
    return button(form, u"saveButton"_s)->isEnabled();
}

bool showsPicture(const QWidget &form)
{
    return !form.findChild<QGraphicsView *>(u"preview"_s)->scene()->items().isEmpty();
}

void show(QWidget &form)
{
    form.show();
    QVERIFY(QTest::qWaitForWindowActive(&form)); // else nothing in it has the focus
}

void paste(QWidget *field, const QString &text)
{
    QApplication::clipboard()->setText(text);
    field->setFocus();
    QTest::keyClick(field, Qt::Key_V, Qt::ControlModifier);
}

void replaceText(QLineEdit *edit, const QString &text)
{
    edit->setFocus();
    edit->selectAll();
    QTest::keyClicks(edit, text);
}

/// Fills the form as one reads it and leaves the last field.
void fill(LocseenForm &form, const QString &numberText = u"11109"_s, const QString &placeText = u"Bern"_s,
    const QString &commentText = u"Schnellzug"_s)
{
    show(form);
    paste(number(form), numberText);
    QTest::keyClick(number(form), Qt::Key_Tab);
    paste(place(form), placeText);
    QTest::keyClick(place(form), Qt::Key_Tab);
    paste(comment(form), commentText);
}

void clickRow(const QWidget &form, int row)
{
    const QTableView *list = table(form);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(list->model()->index(row, 1)).center());
}

void run(const QString &statement)
{
    QSqlQuery query;
    QVERIFY2(query.exec(statement), qUtf8Printable(query.lastError().text()));
}

/// Makes the next write of this kind fail with a text of its own.
void refuse(const QString &kind, const QString &tableName)
{
    run(u"CREATE TEMP TRIGGER refuse BEFORE %1 ON %2 BEGIN SELECT RAISE(ABORT, 'abgelehnt'); END"_s.arg(
        kind, tableName));
}

/// Expects an information box with this title and the driver's text.
ModalScript::Step driverBox(const QString &title)
{
    return [title](QWidget *widget) {
        const auto *box = qobject_cast<QMessageBox *>(widget);
        QVERIFY(box != nullptr);
        QCOMPARE(box->windowTitle(), title);
        QCOMPARE(box->icon(), QMessageBox::Information);
        QVERIFY2(box->text().contains(u"abgelehnt"_s), qUtf8Printable(box->text()));
        QTest::keyClick(widget, Qt::Key_Return);
    };
}

const QString NothingChosen = u"Die Bild-Datei konnte nicht gefunden\n-> klicken Sie auf einen Verzeichnis-Eintrag!"_s;
const QString DeleteQuestion = u"Soll das gewählte Bild gelöscht werden?"_s;

} // namespace

class TestLocseenForm final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void dialogHasItsTexts();
    void dialogKeepsItsMeasures();
    void slotsAreFoundByTheirNames();
    void tabLeadsThroughTheFormAsOneReads();
    void pictureTableShowsTheTwoPaths();
    void pathsInTheTableCannotBeTypedOver();

    void newEntryStartsEmptyAndToday();
    void newEntryNeedsAllThreeTexts_data();
    void newEntryNeedsAllThreeTexts();
    void emptiedTextDoesNotDisableSavingAgain();
    void numberIsTestedOnlyWhenItsEditingEnds();
    void newEntryIsStored();
    void firstSaveLocksTheTexts();
    void longTextsAreCut_data();
    void longTextsAreCut();
    void commentIsStoredOnOneLine_data();
    void commentIsStoredOnOneLine();
    void hostileTextsAreStoredAsTyped_data();
    void hostileTextsAreStoredAsTyped();
    void pastedMarkupStaysText();
    void failedInsertIsToldAndLocksTheTexts();
    void unsavedNewEntryIsDroppedWithoutAQuestion_data();
    void unsavedNewEntryIsDroppedWithoutAQuestion();
    void returnInAFieldDoesNotCloseTheForm();

    void storedEntryIsShown();
    void openingAndClosingRewritesNothing_data();
    void openingAndClosingRewritesNothing();
    void editElsewhereKeepsTheComment_data();
    void editElsewhereKeepsTheComment();
    void editOfTheCommentKeepsItsNoBreakSpaces();
    void editEnablesSavingUntilTakenBack_data();
    void editEnablesSavingUntilTakenBack();
    void editIsSaved();
    void closingSavesTheEdit_data();
    void closingSavesTheEdit();
    void savedEditThatIsTakenBackIsStored();
    void updateCutsAndJoinsTheTexts();
    void failedUpdateIsToldAndTheFormStays();
    void failedUpdateOnClosingIsTold();
    void editsAreKeptOnceForEachFailure();
    void editOfAnEntryDeletedMeanwhileIsTold();
    void editKeepsWhatAnotherWindowHasStored();
    void entryOfAClassDeletedMeanwhileIsTold();
    void textsOfTheWholeColumnAreShown();
    void dateThatTheFieldCannotShowIsKept_data();
    void dateThatTheFieldCannotShowIsKept();
    void wheelOverAnUnfocusedDateChangesNothing();
    void pastedLineFeedDoesNotReachTheNumber();
    void vanishedEntryCannotBeEdited_data();
    void vanishedEntryCannotBeEdited();

    void sixPicturesAreTheLimit();
    void fifthPictureMayBeFollowedByASixth();
    void newPictureIsListedAndShown();
    void newPictureMovesTheSeenDate();
    void pictureGivesTheDateThatWasMissing();
    void pictureOfTheSameDayLeavesNothingToSave();
    void pictureOfANewEntryMovesItsDate();
    void pictureFormClosedWithoutSavingChangesNothing();

    void rowEnablesItsButtons_data();
    void rowEnablesItsButtons();
    void focusAloneChoosesNothing();
    void showingWithoutARowIsTold();
    void chosenPictureIsShown();
    void missingPictureFileIsTold();
    void removingWithoutARowIsTold();
    void neinKeepsThePicture();
    void jaRemovesRowAndCopyButNotTheSource();
    void removingAgainWithoutARowIsTold();
    void removingNeverTouchesAFileOfTheUser();
    void failedDeletionIsTold();

private:
    /// Chooses `source` in the picture form that opens, saves and closes it.
    void addPicture(LocseenForm &form, const QString &source);
    [[nodiscard]] QString writeSource(const QDate &lastChange) const;
    [[nodiscard]] QString column(const QString &name) const;
    [[nodiscard]] int entries() const { return m_catalogue->value(u"SELECT COUNT(*) FROM loc_seen"_s).toInt(); }
    [[nodiscard]] int pictures() const { return m_catalogue->value(u"SELECT COUNT(*) FROM loc_picture"_s).toInt(); }
    [[nodiscard]] int writes() const { return m_catalogue->value(u"SELECT total_changes()"_s).toInt(); }

    std::unique_ptr<TestCatalogue> m_catalogue;
    int m_model = 0;
};

void TestLocseenForm::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    m_model = m_catalogue->addModel(u"Re 4/4 II"_s, m_catalogue->addGroup(u"Lokomotiven"_s));
}

void TestLocseenForm::cleanup()
{
    Clock::setSource({});
    ColorSetting::saveAndRelease();
    m_catalogue.reset();
}

QString TestLocseenForm::column(const QString &name) const
{
    return m_catalogue->value(u"SELECT %1 FROM loc_seen ORDER BY id DESC"_s.arg(name)).toString();
}

QString TestLocseenForm::writeSource(const QDate &lastChange) const
{
    const QString path = m_catalogue->path(u"Aufnahme.jpg"_s);
    writeTestJpeg(path, { 300, 200 });
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite)
        || !file.setFileTime(lastChange.startOfDay().addSecs(3600), QFileDevice::FileModificationTime)) {
        qFatal("no source file");
    }
    return path;
}

void TestLocseenForm::addPicture(LocseenForm &form, const QString &source)
{
    ModalScript script;
    script
        .then([](QWidget *pictureForm) {
            QCOMPARE(pictureForm->windowTitle(), u"Edit Bahnito-Bild"_s);
            press(*pictureForm, u"browseButton"_s);
            press(*pictureForm, u"saveButton"_s);
            press(*pictureForm, u"closeButton"_s);
        })
        .chooseFile(source);
    press(form, u"newPictureButton"_s);
    QCOMPARE(script.problems(), QStringList());
}

void TestLocseenForm::dialogHasItsTexts()
{
    const LocseenForm form(-1, m_model);
    QCOMPARE(form.windowTitle(), u"Edit Bahnito-Eintrag"_s);
    QCOMPARE(form.findChild<QGroupBox *>(u"entryBox"_s)->title(), u"Bahnito erfassen / bearbeiten"_s);
    QCOMPARE(form.findChild<QGroupBox *>(u"pictureBox"_s)->title(), u"Verzeichnisse der Bilder"_s);
    QStringList labels;
    for (const QLabel *label : form.findChildren<QLabel *>()) {
        labels.append(label->text());
    }
    for (const QString &text : { u"Nu&mmer:"_s, u"&Ort:"_s, u"&Kommentar:"_s, u"Gesehen am:"_s, u"Baureihe:"_s,
             u" *Datum wird aus dem Bild gelesen!"_s }) {
        QVERIFY2(labels.contains(text), qUtf8Printable(text));
    }
    QCOMPARE(button(form, u"saveButton"_s)->text(), u"Speichern"_s);
    QCOMPARE(button(form, u"closeButton"_s)->text(), u"Schliessen"_s);
    QCOMPARE(button(form, u"showPictureButton"_s)->text(), u"&Bild zeigen"_s);
    QCOMPARE(button(form, u"newPictureButton"_s)->text(), u"Neues Bild"_s);
    QCOMPARE(button(form, u"removePictureButton"_s)->text(), u"Bild entfernen"_s);
    for (const QString &name :
        { u"saveButton"_s, u"showPictureButton"_s, u"newPictureButton"_s, u"removePictureButton"_s }) {
        QVERIFY2(!button(form, name)->isEnabled(), qUtf8Printable(name));
    }
    QVERIFY(button(form, u"closeButton"_s)->isEnabled());
}

void TestLocseenForm::dialogKeepsItsMeasures()
{
    LocseenForm form(-1, m_model);
    show(form);
    QCOMPARE(form.maximumSize(), QSize(1500, 520));
    QVERIFY(form.minimumSizeHint().height() <= 520);
    QCOMPARE(form.font().family(), u"Helvetica [Cronyx]"_s);
    QCOMPARE(form.font().pointSize(), 9);
    QCOMPARE(place(form)->font().family(), u"Helvetica [Cronyx]"_s);
    QCOMPARE(comment(form)->maximumHeight(), 74);
    const auto *grid = qobject_cast<QGridLayout *>(form.findChild<QGroupBox *>(u"entryBox"_s)->layout());
    QCOMPARE(grid->rowMinimumHeight(7), 10);
    QCOMPARE(grid->columnStretch(2), 1);
    QVERIFY(seenDate(form)->calendarPopup());
    const auto *preview = form.findChild<QGraphicsView *>(u"preview"_s);
    QVERIFY(preview->optimizationFlags().testFlag(QGraphicsView::DontAdjustForAntialiasing));
    QVERIFY(preview->renderHints().testFlag(QPainter::SmoothPixmapTransform));
    QVERIFY(preview->scene()->backgroundBrush().style() != Qt::NoBrush);
    const QRectF before = preview->sceneRect();
    form.resize(1400, 480);
    QCOMPARE(preview->sceneRect(), before);
}

void TestLocseenForm::slotsAreFoundByTheirNames()
{
    const QMetaObject &form = LocseenForm::staticMetaObject;
    for (const char *slot : { "checktextEdits()", "addLocseen()", "showLocPicture()", "newLocPicture()",
             "deleteLocPicture()", "getTableViewIndex()", "accept()", "done(int)" }) {
        QVERIFY2(form.indexOfSlot(slot) >= 0, slot);
    }
}

void TestLocseenForm::tabLeadsThroughTheFormAsOneReads()
{
    LocseenForm form(-1, m_model);
    show(form);
    QStringList order { QApplication::focusWidget()->objectName() };
    while (order.last() != u"closeButton"_s && order.size() < 20) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        order.append(QApplication::focusWidget()->objectName());
    }
    order.removeDuplicates(); // Tab leads through day, month and year first
    QCOMPARE(order,
        QStringList({ u"numberEdit"_s, u"placeEdit"_s, u"commentEdit"_s, u"seenDateEdit"_s, u"startDateEdit"_s,
            u"modelEdit"_s, u"pictureTable"_s, u"closeButton"_s }));
}

void TestLocseenForm::pictureTableShowsTheTwoPaths()
{
    const int entry = m_catalogue->addEntry(u"11109"_s, m_model);
    m_catalogue->addPicture(entry);
    m_catalogue->addPicture(entry + 1);
    m_catalogue->addPicture(entry);
    run(u"UPDATE loc_picture SET pictOrigPath = '/<b>x</b>.jpg' WHERE id = 3"_s);
    const LocseenForm form(entry, 0);
    const QAbstractItemModel *model = table(form)->model();
    QCOMPARE(model->rowCount(), 2);
    QCOMPARE(model->columnCount(), 6);
    for (int i = 0; i < 6; ++i) {
        QCOMPARE(table(form)->isColumnHidden(i), i != 1 && i != 2);
    }
    QCOMPARE(model->headerData(1, Qt::Horizontal).toString(), u"Aktueller Pfad"_s);
    QCOMPARE(model->headerData(2, Qt::Horizontal).toString(), u"Ursprünglicher Pfad"_s);
    QCOMPARE(model->index(0, 1).data().toString(), u"./Data/Pictures/Folder001/copy1.jpg"_s);
    QCOMPARE(model->index(1, 1).data().toString(), u"./Data/Pictures/Folder001/copy3.jpg"_s);
    QVERIFY(model->index(1, 2).data(Qt::ToolTipRole).toString().contains(u"&lt;b&gt;x"_s));
    QCOMPARE(table(form)->selectionMode(), QAbstractItemView::SingleSelection);
    QCOMPARE(table(form)->selectionBehavior(), QAbstractItemView::SelectRows);
}

void TestLocseenForm::pathsInTheTableCannotBeTypedOver()
{
    const int entry = m_catalogue->addEntry(u"11109"_s, m_model);
    m_catalogue->addPicture(entry);
    LocseenForm form(entry, 0);
    show(form);
    clickRow(form, 0);
    QTest::keyClicks(table(form), u"xyz"_s);
    QVERIFY(table(form)->findChildren<QLineEdit *>().isEmpty());
    QCOMPARE(m_catalogue->value(u"SELECT pictAuxPath FROM loc_picture"_s).toString(),
        u"./Data/Pictures/Folder001/copy1.jpg"_s);
}

void TestLocseenForm::newEntryStartsEmptyAndToday()
{
    Clock::setSource([] { return QDateTime({ 2003, 2, 1 }, { 12, 0 }); });
    const LocseenForm form(-1, m_model);
    QCOMPARE(number(form)->text() + place(form)->text() + comment(form)->toPlainText(), QString());
    QVERIFY(number(form)->isEnabled());
    QCOMPARE(seenDate(form)->date(), QDate(2003, 2, 1));
    QCOMPARE(startDate(form)->date(), QDate(2003, 2, 1));
    QCOMPARE(seenDate(form)->text(), u"01.02.2003"_s);
    QCOMPARE(form.findChild<QLineEdit *>(u"modelEdit"_s)->text(), u"Re 4/4 II"_s);
    QVERIFY(form.findChild<QLineEdit *>(u"modelEdit"_s)->isReadOnly());
}

void TestLocseenForm::newEntryNeedsAllThreeTexts_data()
{
    QTest::addColumn<QString>("numberText");
    QTest::addColumn<QString>("placeText");
    QTest::addColumn<QString>("commentText");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("nothing") << u""_s << u""_s << u""_s << false;
    QTest::newRow("no number") << u""_s << u"Bern"_s << u"Zug"_s << false;
    QTest::newRow("no place") << u"11109"_s << u""_s << u"Zug"_s << false;
    QTest::newRow("no comment") << u"11109"_s << u"Bern"_s << u""_s << false;
    QTest::newRow("all three") << u"11109"_s << u"Bern"_s << u"Zug"_s << true;
}

void TestLocseenForm::newEntryNeedsAllThreeTexts()
{
    QFETCH(QString, numberText);
    QFETCH(QString, placeText);
    QFETCH(QString, commentText);
    QFETCH(bool, enabled);
    LocseenForm form(-1, m_model);
    show(form);
    QTest::keyClicks(number(form), numberText);
    QTest::keyClicks(place(form), placeText);
    QTest::keyClicks(comment(form), commentText);
    seenDate(form)->setFocus();
    QTest::keyClick(seenDate(form), Qt::Key_Up);
    QCOMPARE(canSave(form), enabled);
}

void TestLocseenForm::emptiedTextDoesNotDisableSavingAgain()
{
    LocseenForm form(-1, m_model);
    fill(form);
    QVERIFY(canSave(form));
    place(form)->setFocus();
    place(form)->selectAll();
    QTest::keyClick(place(form), Qt::Key_Delete);
    QVERIFY(canSave(form));
}

void TestLocseenForm::numberIsTestedOnlyWhenItsEditingEnds()
{
    LocseenForm form(-1, m_model);
    fill(form, u""_s);
    QVERIFY(!canSave(form));
    number(form)->setFocus();
    QTest::keyClicks(number(form), u"11109"_s);
    QVERIFY(!canSave(form));
    QTest::keyClick(number(form), Qt::Key_Tab);
    QVERIFY(canSave(form));
}

void TestLocseenForm::newEntryIsStored()
{
    Clock::setSource([] { return QDateTime({ 2024, 1, 5 }, { 12, 0 }); });
    LocseenForm form(-1, m_model);
    fill(form);
    seenDate(form)->setDate({ 1999, 12, 31 });
    press(form, u"saveButton"_s);
    QCOMPARE(entries(), 1);
    QCOMPARE(column(u"nummer"_s), u"11109"_s);
    QCOMPARE(column(u"locseenid"_s).toInt(), m_model);
    QCOMPARE(column(u"ort"_s), u"Bern"_s);
    QCOMPARE(column(u"kommentar"_s), u"Schnellzug"_s);
    QCOMPARE(column(u"startdate"_s), u"2024-01-05"_s);
    QCOMPARE(column(u"locseendate"_s), u"1999-12-31"_s);
    QCOMPARE(column(u"COALESCE(anlass, orignummer, reserveint1, reserveint2, reservestr1, reservestr2, 'leer')"_s),
        u"leer"_s);
    press(form, u"closeButton"_s);
    QVERIFY(form.hasChanged());
    QCOMPARE(entries(), 1);
}

void TestLocseenForm::firstSaveLocksTheTexts()
{
    LocseenForm form(-1, m_model);
    fill(form);
    press(form, u"saveButton"_s);
    QVERIFY(!number(form)->isEnabled());
    QVERIFY(!place(form)->isEnabled());
    QVERIFY(!comment(form)->isEnabled());
    QVERIFY(button(form, u"newPictureButton"_s)->isEnabled());
    QVERIFY(!canSave(form));
    seenDate(form)->setDate({ 1999, 12, 31 });
    QVERIFY(!canSave(form)); // only a picture's date enables it again
    press(form, u"closeButton"_s);
    QCOMPARE(column(u"locseendate"_s), u"1999-12-31"_s);
}

void TestLocseenForm::longTextsAreCut_data()
{
    QTest::addColumn<int>("tooMany");
    QTest::newRow("just fits") << 0;
    QTest::newRow("one over") << 1;
    QTest::newRow("two over") << 2;
    QTest::newRow("far too long") << 10'000;
}

void TestLocseenForm::longTextsAreCut()
{
    QFETCH(int, tooMany);
    const auto text
        = [tooMany](int limit) -> QString { return QString(limit - 1, u'a') + u'z' + QString(tooMany, u'!'); };
    LocseenForm form(-1, m_model);
    fill(form, text(18), text(38), text(198));
    press(form, u"saveButton"_s);
    QCOMPARE(column(u"nummer"_s), QString(17, u'a') + u'z');
    QCOMPARE(column(u"ort"_s), QString(37, u'a') + u'z');
    QCOMPARE(column(u"kommentar"_s), QString(197, u'a') + u'z');
}

void TestLocseenForm::commentIsStoredOnOneLine_data()
{
    QTest::addColumn<QString>("pasted");
    QTest::addColumn<QString>("stored");
    QTest::newRow("lines") << u"eins\nzwei\n\ndrei"_s << u"eins zwei  drei"_s;
    QTest::newRow("tabs") << u"eins\tzwei\t\tdrei"_s << u"eins zwei  drei"_s;
    QTest::newRow("lines from Windows") << u"eins\r\nzwei"_s << u"eins zwei"_s;
    QTest::newRow("line separator") << u"eins\u2028zwei"_s << u"eins zwei"_s;
    QTest::newRow("form feed") << u"eins\fzwei"_s << u"eins zwei"_s;
    QTest::newRow("no-break space") << u"80\u00A0km\u00A0"_s << u"80\u00A0km\u00A0"_s;
    QTest::newRow("signs for a frame's ends") << u"eins\uFDD0zwei\uFDD1drei"_s << u"eins zwei drei"_s;
}

void TestLocseenForm::commentIsStoredOnOneLine()
{
    QFETCH(QString, pasted);
    QFETCH(QString, stored);
    LocseenForm form(-1, m_model);
    fill(form, u"11109"_s, u"Bern"_s, pasted);
    QTest::keyClick(comment(form), Qt::Key_Return);
    QTest::keyClicks(comment(form), u"Ende"_s);
    press(form, u"saveButton"_s);
    QCOMPARE(column(u"kommentar"_s), stored + u" Ende"_s);
}

void TestLocseenForm::hostileTextsAreStoredAsTyped_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("markup") << u"<b>x</b>"_s;
    QTest::newRow("quote") << u"7'8"_s;
    QTest::newRow("placeholder") << u"7%2"_s;
    QTest::newRow("statement") << u"'); DROP --"_s;
    QTest::newRow("emoji") << u"\U0001F682 Zug"_s;
    QTest::newRow("blanks") << u"  x  "_s;
}

void TestLocseenForm::hostileTextsAreStoredAsTyped()
{
    QFETCH(QString, text);
    LocseenForm form(-1, m_model);
    fill(form, text, text, text);
    press(form, u"saveButton"_s);
    press(form, u"closeButton"_s);
    QCOMPARE(column(u"nummer"_s), text);
    QCOMPARE(column(u"ort"_s), text);
    QCOMPARE(column(u"kommentar"_s), text);

    LocseenForm again(column(u"id"_s).toInt(), 0);
    show(again);
    QCOMPARE(comment(again)->toPlainText(), text);
    QTest::keyClick(place(again), Qt::Key_End);
    QTest::keyClicks(place(again), u"!"_s);
    press(again, u"saveButton"_s);
    QCOMPARE(column(u"nummer"_s), text);
    QCOMPARE(column(u"ort"_s), text + u'!');
    QCOMPARE(column(u"kommentar"_s), text);
}

void TestLocseenForm::pastedMarkupStaysText()
{
    LocseenForm form(-1, m_model);
    show(form);
    auto *data = new QMimeData;
    data->setHtml(u"<b>fett</b>"_s);
    data->setText(u"fett"_s);
    QApplication::clipboard()->setMimeData(data);
    comment(form)->setFocus();
    QTest::keyClick(comment(form), Qt::Key_V, Qt::ControlModifier);
    QCOMPARE(comment(form)->toPlainText(), u"fett"_s);
    QVERIFY(!comment(form)->toHtml().contains(u"font-weight:700"_s));
}

void TestLocseenForm::failedInsertIsToldAndLocksTheTexts()
{
    refuse(u"INSERT"_s, u"loc_seen"_s);
    LocseenForm form(-1, m_model);
    fill(form);
    ModalScript script;
    script.then(driverBox(u"DB-Insert"_s));
    press(form, u"saveButton"_s);
    QCOMPARE(script.problems(), QStringList());
    QVERIFY(form.isVisible());
    QVERIFY(!number(form)->isEnabled());
    QVERIFY(!place(form)->isEnabled());
    QVERIFY(!comment(form)->isEnabled());
    QVERIFY(!button(form, u"newPictureButton"_s)->isEnabled());
    QVERIFY(!canSave(form));
    QCOMPARE(comment(form)->toPlainText(), u"Schnellzug"_s);
    press(form, u"closeButton"_s);
    QCOMPARE(entries(), 0);
}

void TestLocseenForm::unsavedNewEntryIsDroppedWithoutAQuestion_data()
{
    QTest::addColumn<bool>("byButton");
    QTest::newRow("Schliessen") << true;
    QTest::newRow("frame or Escape") << false;
}

void TestLocseenForm::unsavedNewEntryIsDroppedWithoutAQuestion()
{
    QFETCH(bool, byButton);
    LocseenForm form(-1, m_model);
    fill(form);
    ModalScript script;
    if (byButton) {
        press(form, u"closeButton"_s);
    } else {
        QTest::keyClick(&form, Qt::Key_Escape);
    }
    QVERIFY(!form.isVisible());
    QCOMPARE(form.result(), int(byButton ? QDialog::Accepted : QDialog::Rejected));
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(entries(), 0);
    QVERIFY(!form.hasChanged());
}

void TestLocseenForm::returnInAFieldDoesNotCloseTheForm()
{
    LocseenForm form(-1, m_model);
    show(form);
    QTest::keyClicks(number(form), u"11109"_s);
    QTest::keyClick(number(form), Qt::Key_Return);
    QVERIFY(form.isVisible());
    QCOMPARE(entries(), 0);
    QTest::keyClicks(comment(form), u"Zug"_s);
    QTest::keyClicks(place(form), u"Bern"_s);
    QTest::keyClick(place(form), Qt::Key_Return);
    QVERIFY(form.isVisible());
    QCOMPARE(entries(), 1);
}

void TestLocseenForm::storedEntryIsShown()
{
    const int entry = m_catalogue->addEntry(u"11109"_s, m_model, u"Olten"_s, { 1998, 7, 6 }, u"Güterzug"_s);
    LocseenForm form(entry, 4711);
    show(form);
    QCOMPARE(number(form)->text(), u"11109"_s);
    QVERIFY(!number(form)->isEnabled());
    QCOMPARE(place(form)->text(), u"Olten"_s);
    QCOMPARE(comment(form)->toPlainText(), u"Güterzug"_s);
    QCOMPARE(seenDate(form)->text(), u"06.07.1998"_s);
    QCOMPARE(startDate(form)->date(), QDate(1998, 7, 6));
    QCOMPARE(form.findChild<QLineEdit *>(u"modelEdit"_s)->text(), u"Re 4/4 II"_s);
    QVERIFY(button(form, u"newPictureButton"_s)->isEnabled());
    QVERIFY(!canSave(form));
    QCOMPARE(QApplication::focusWidget(), place(form));
}

void TestLocseenForm::openingAndClosingRewritesNothing_data()
{
    QTest::addColumn<QString>("change");
    QTest::newRow("usual row") << u"ort = 'Bern'"_s;
    QTest::newRow("no dates") << u"locseendate = NULL, startdate = NULL"_s;
    QTest::newRow("invalid dates") << u"locseendate = 'gestern', startdate = '2024-02-30'"_s;
    QTest::newRow("date before all calendars") << u"locseendate = '0044-03-15'"_s;
    QTest::newRow("date with a time") << u"locseendate = '2024-01-05T10:11:12'"_s;
    QTest::newRow("comment of several lines") << u"kommentar = 'a' || char(10) || 'b' || char(13, 10, 9) || 'c'"_s;
    QTest::newRow("control characters") << u"ort = 'a' || char(10, 9, 1) || 'b', kommentar = char(1, 160, 12)"_s;
    QTest::newRow("too long") << u"nummer = printf('%.60c', 'x'), kommentar = printf('%.40000c', 'x')"_s;
    QTest::newRow("longer than a field") << u"ort = printf('%.40000c', 'x')"_s;
    QTest::newRow("signs of the text control's own") << u"kommentar = 'a' || char(160, 64976, 64977, 8232, 8233)"_s;
    QTest::newRow("empty comment") << u"kommentar = ''"_s;
    QTest::newRow("class that is gone") << u"locseenid = 4711"_s;
    QTest::newRow("number as a number") << u"nummer = 7, ort = 8.5, kommentar = x'414243'"_s;
}

void TestLocseenForm::openingAndClosingRewritesNothing()
{
    QFETCH(QString, change);
    const int entry = m_catalogue->addEntry(u"11109"_s, m_model);
    run(u"UPDATE loc_seen SET "_s + change);
    const int before = writes();
    LocseenForm form(entry, 0);
    show(form);
    QVERIFY(!canSave(form));
    place(form)->setFocus();
    QTest::keyClick(place(form), Qt::Key_Tab);
    QTest::keyClick(comment(form), Qt::Key_Right);
    QVERIFY(!canSave(form));
    press(form, u"closeButton"_s);
    QCOMPARE(writes(), before);
    QVERIFY(!form.hasChanged());
}

void TestLocseenForm::editElsewhereKeepsTheComment_data()
{
    QTest::addColumn<QString>("stored");
    QTest::newRow("no-break space") << u"80\u00A0km\u00A0"_s;
    QTest::newRow("line separator") << u"eins\u2028zwei"_s;
    QTest::newRow("paragraph separator") << u"eins\u2029zwei"_s;
    QTest::newRow("line feed") << u"eins\nzwei\n"_s;
    QTest::newRow("sign for a frame's start") << u"eins\uFDD0zwei"_s;
    QTest::newRow("sign for a frame's end") << u"eins\uFDD1zwei"_s;
}

void TestLocseenForm::editElsewhereKeepsTheComment()
{
    QFETCH(QString, stored);
    LocseenForm form(m_catalogue->addEntry(u"11109"_s, m_model, u"Bern"_s, { 1998, 7, 6 }, stored), 0);
    show(form);
    replaceText(place(form), u"Thun"_s);
    press(form, u"saveButton"_s);
    seenDate(form)->setDate({ 2010, 10, 11 });
    press(form, u"closeButton"_s);
    QCOMPARE(column(u"ort"_s), u"Thun"_s);
    QCOMPARE(column(u"locseendate"_s), u"2010-10-11"_s);
    QCOMPARE(column(u"kommentar"_s), stored);
}

void TestLocseenForm::editOfTheCommentKeepsItsNoBreakSpaces()
{
    LocseenForm form(m_catalogue->addEntry(u"11109"_s, m_model, u"Bern"_s, {}, u"80\u00A0km/h bei 5\u00A0%"_s), 0);
    show(form);
    comment(form)->setFocus();
    QTest::keyClick(comment(form), Qt::Key_End, Qt::ControlModifier);
    QTest::keyClicks(comment(form), u"!"_s);
    press(form, u"saveButton"_s);
    QCOMPARE(column(u"kommentar"_s), u"80\u00A0km/h bei 5\u00A0%!"_s);
    QTest::keyClick(comment(form), Qt::Key_Home, Qt::ControlModifier);
    for (int i = 0; i < 3; ++i) {
        QTest::keyClick(comment(form), Qt::Key_Delete);
    }
    paste(comment(form), u"80 "_s); // a blank in place of the other is an edit
    QVERIFY(canSave(form));
    press(form, u"closeButton"_s);
    QCOMPARE(column(u"kommentar"_s), u"80 km/h bei 5\u00A0%!"_s);
}

void TestLocseenForm::editEnablesSavingUntilTakenBack_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("back");
    QTest::newRow("place") << u"placeEdit"_s << int(Qt::Key_X) << int(Qt::Key_Backspace);
    QTest::newRow("comment") << u"commentEdit"_s << int(Qt::Key_X) << int(Qt::Key_Backspace);
    QTest::newRow("date") << u"seenDateEdit"_s << int(Qt::Key_Up) << int(Qt::Key_Down);
}

void TestLocseenForm::editEnablesSavingUntilTakenBack()
{
    QFETCH(QString, name);
    QFETCH(int, key);
    QFETCH(int, back);
    LocseenForm form(m_catalogue->addEntry(u"11109"_s, m_model), 0);
    show(form);
    auto *edit = form.findChild<QWidget *>(name);
    edit->setFocus();
    if (key == Qt::Key_X) {
        QTest::keyClick(edit, Qt::Key_End);
    }
    QTest::keyClick(edit, Qt::Key(key));
    QVERIFY(canSave(form));
    QTest::keyClick(edit, Qt::Key(back));
    QVERIFY(!canSave(form));
}

void TestLocseenForm::editIsSaved()
{
    const int entry = m_catalogue->addEntry(u"11109"_s, m_model);
    const int other = m_catalogue->addEntry(u"11110"_s, m_model);
    LocseenForm form(entry, 4711);
    show(form);
    replaceText(place(form), u"Thun"_s);
    paste(comment(form), u"Neu: "_s);
    seenDate(form)->setDate({ 2010, 10, 11 });
    press(form, u"saveButton"_s);
    QVERIFY(form.isVisible());
    QVERIFY(!canSave(form));
    QCOMPARE(m_catalogue
                 ->value(u"SELECT nummer || '|' || locseenid || '|' || ort || '|' || kommentar || '|' "
                         "|| startdate || '|' || locseendate FROM loc_seen WHERE id = %1"_s.arg(entry))
                 .toString(),
        u"11109|%1|Thun|Neu: Kommentar|2001-05-17|2010-10-11"_s.arg(m_model));
    QCOMPARE(m_catalogue->value(u"SELECT ort FROM loc_seen WHERE id = %1"_s.arg(other)).toString(), u"Bern"_s);
    press(form, u"closeButton"_s);
    QVERIFY(form.hasChanged());
}

void TestLocseenForm::closingSavesTheEdit_data()
{
    QTest::addColumn<bool>("byButton");
    QTest::newRow("Schliessen") << true;
    QTest::newRow("frame or Escape") << false;
}

void TestLocseenForm::closingSavesTheEdit()
{
    QFETCH(bool, byButton);
    LocseenForm form(m_catalogue->addEntry(u"11109"_s, m_model), 0);
    show(form);
    replaceText(place(form), u"Thun"_s);
    ModalScript script;
    if (byButton) {
        press(form, u"closeButton"_s);
    } else {
        form.close();
    }
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(column(u"ort"_s), u"Thun"_s);
    QVERIFY(form.hasChanged());
}

void TestLocseenForm::savedEditThatIsTakenBackIsStored()
{
    LocseenForm form(m_catalogue->addEntry(u"11109"_s, m_model), 0);
    show(form);
    replaceText(place(form), u"Thun"_s);
    press(form, u"saveButton"_s);
    replaceText(place(form), u"Bern"_s);
    QVERIFY(canSave(form));
    press(form, u"closeButton"_s);
    QCOMPARE(column(u"ort"_s), u"Bern"_s);
}

void TestLocseenForm::updateCutsAndJoinsTheTexts()
{
    LocseenForm form(m_catalogue->addEntry(u"11109"_s, m_model), 0);
    show(form);
    replaceText(place(form), QString(39, u'o'));
    paste(comment(form), QString(100, u'k') + u"\n\t"_s + QString(100, u'k'));
    press(form, u"saveButton"_s);
    QCOMPARE(column(u"ort"_s), QString(38, u'o'));
    QCOMPARE(column(u"kommentar"_s), QString(100, u'k') + u"  "_s + QString(96, u'k'));
}

void TestLocseenForm::failedUpdateIsToldAndTheFormStays()
{
    const int entry = m_catalogue->addEntry(u"11109"_s, m_model);
    refuse(u"UPDATE"_s, u"loc_seen"_s);
    LocseenForm form(entry, 0);
    show(form);
    replaceText(place(form), u"Thun"_s);
    ModalScript script;
    script.then(driverBox(u"DB-Update"_s));
    press(form, u"saveButton"_s);
    QCOMPARE(script.problems(), QStringList());
    QVERIFY(form.isVisible());
    QCOMPARE(place(form)->text(), u"Thun"_s);
    run(u"DROP TRIGGER refuse"_s);
    press(form, u"closeButton"_s);
    QCOMPARE(column(u"ort"_s), u"Thun"_s);
}

void TestLocseenForm::failedUpdateOnClosingIsTold()
{
    const int entry = m_catalogue->addEntry(u"11109"_s, m_model);
    refuse(u"UPDATE"_s, u"loc_seen"_s);
    LocseenForm form(entry, 0);
    show(form);
    replaceText(place(form), u"Thun"_s);
    ModalScript script;
    script.then(driverBox(u"DB-Update"_s));
    script.then(driverBox(u"DB-Update"_s));
    press(form, u"closeButton"_s);
    QVERIFY(form.isVisible()); // the edits are not lost yet
    QCOMPARE(place(form)->text(), u"Thun"_s);
    press(form, u"closeButton"_s);
    QVERIFY(!form.isVisible()); // but nobody is locked in
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(column(u"ort"_s), u"Bern"_s);
}

void TestLocseenForm::editsAreKeptOnceForEachFailure()
{
    const int entry = m_catalogue->addEntry(u"11109"_s, m_model);
    LocseenForm form(entry, 0);
    show(form);
    ModalScript script;
    for (const QString &text : { u"Thun"_s, u"Spiez"_s }) {
        refuse(u"UPDATE"_s, u"loc_seen"_s);
        replaceText(place(form), text);
        script.then(driverBox(u"DB-Update"_s));
        press(form, u"closeButton"_s);
        QVERIFY(form.isVisible());
        run(u"DROP TRIGGER refuse"_s);
        press(form, u"saveButton"_s);
        QCOMPARE(column(u"ort"_s), text);
    }
    QCOMPARE(script.problems(), QStringList());
}

void TestLocseenForm::editKeepsWhatAnotherWindowHasStored()
{
    const int entry = m_catalogue->addEntry(u"11109"_s, m_model);
    LocseenForm form(entry, 0);
    show(form);
    run(u"UPDATE loc_seen SET kommentar = 'aus dem anderen Fenster', locseendate = '1999-08-07'"_s);
    replaceText(place(form), u"Thun"_s);
    press(form, u"saveButton"_s);
    QCOMPARE(column(u"ort || kommentar || locseendate"_s), u"Thunaus dem anderen Fenster1999-08-07"_s);
}

void TestLocseenForm::entryOfAClassDeletedMeanwhileIsTold()
{
    LocseenForm form(-1, m_model);
    fill(form);
    run(u"DELETE FROM loc_model"_s);
    ModalScript script;
    script.box(u"DB-Insert"_s, u"Die Baureihe ist nicht mehr vorhanden, sie wurde inzwischen gelöscht."_s);
    press(form, u"saveButton"_s);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(entries(), 0);
    QVERIFY(form.isVisible());
}

/// The columns take a little more than the form stores.
void TestLocseenForm::textsOfTheWholeColumnAreShown()
{
    const QString longNumber(20, u'8');
    const QString longPlace(40, u'o');
    const QString longComment(200, u'k');
    const int entry = m_catalogue->addEntry(longNumber, m_model, longPlace, {}, longComment);
    LocseenForm form(entry, 0);
    show(form);
    QCOMPARE(number(form)->text(), longNumber);
    QCOMPARE(place(form)->text(), longPlace);
    QCOMPARE(comment(form)->toPlainText(), longComment);
}

void TestLocseenForm::editOfAnEntryDeletedMeanwhileIsTold()
{
    const int entry = m_catalogue->addEntry(u"11109"_s, m_model);
    LocseenForm form(entry, 0);
    show(form);
    replaceText(place(form), u"Thun"_s);
    QVERIFY(executeWrite(u"DELETE FROM loc_seen"_s).done);
    ModalScript script;
    script.box(u"DB-Update"_s, u"Der Eintrag ist nicht mehr vorhanden, er wurde inzwischen gelöscht."_s);
    press(form, u"saveButton"_s);
    QCOMPARE(script.problems(), QStringList());
}

void TestLocseenForm::dateThatTheFieldCannotShowIsKept_data()
{
    QTest::addColumn<QString>("stored");
    QTest::newRow("none") << u"NULL"_s;
    QTest::newRow("a year only") << u"'1998'"_s;
    QTest::newRow("before the calendar of the field") << u"'0044-03-15'"_s;
}

void TestLocseenForm::dateThatTheFieldCannotShowIsKept()
{
    QFETCH(QString, stored);
    const int entry = m_catalogue->addEntry(u"11109"_s, m_model);
    QVERIFY(executeWrite(u"UPDATE loc_seen SET locseendate = "_s + stored).done);
    {
        LocseenForm form(entry, 0);
        show(form);
        replaceText(place(form), u"Thun"_s);
        press(form, u"closeButton"_s);
    }
    QCOMPARE(column(u"ort"_s), u"Thun"_s);
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM loc_seen WHERE locseendate IS "_s + stored).toInt(), 1);
    LocseenForm form(entry, 0);
    show(form);
    form.findChild<QDateEdit *>(u"seenDateEdit"_s)->setDate(QDate(1998, 7, 4));
    press(form, u"closeButton"_s);
    QCOMPARE(column(u"locseendate"_s), u"1998-07-04"_s);
}

void TestLocseenForm::wheelOverAnUnfocusedDateChangesNothing()
{
    const int entry = m_catalogue->addEntry(u"11109"_s, m_model);
    LocseenForm form(entry, 0);
    show(form);
    auto *date = form.findChild<QDateEdit *>(u"seenDateEdit"_s);
    const QDate before = date->date();
    const auto turnWheel = [date] {
        QWheelEvent event(QPointF(5, 5), date->mapToGlobal(QPointF(5, 5)), {}, QPoint(0, 120), Qt::NoButton,
            Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(date, &event);
    };
    place(form)->setFocus();
    turnWheel();
    QCOMPARE(date->date(), before);
    date->setFocus();
    turnWheel();
    QVERIFY(date->date() != before); // with the focus it works as ever
}

void TestLocseenForm::pastedLineFeedDoesNotReachTheNumber()
{
    LocseenForm form(-1, m_model);
    show(form);
    QGuiApplication::clipboard()->setText(u"11109\t2\n"_s);
    number(form)->setFocus();
    QTest::keySequence(number(form), QKeySequence::Paste);
    QCOMPARE(number(form)->text(), u"11109 2"_s);
}

void TestLocseenForm::vanishedEntryCannotBeEdited_data()
{
    QTest::addColumn<int>("id");
    QTest::newRow("deleted") << 4711;
    QTest::newRow("beyond what an id can be") << 0; // which such an id reads as
    QTest::newRow("negative") << -7;
}

void TestLocseenForm::vanishedEntryCannotBeEdited()
{
    QFETCH(const int, id);
    const int before = writes();
    LocseenForm form(id, m_model);
    show(form);
    QVERIFY(!number(form)->isEnabled());
    QVERIFY(!place(form)->isEnabled());
    QVERIFY(!comment(form)->isEnabled());
    QVERIFY(!button(form, u"newPictureButton"_s)->isEnabled());
    QVERIFY(!canSave(form));
    press(form, u"closeButton"_s);
    QCOMPARE(writes(), before);
    QVERIFY(!form.hasChanged());
}

void TestLocseenForm::sixPicturesAreTheLimit()
{
    const int entry = m_catalogue->addEntry(u"11109"_s, m_model);
    for (int i = 0; i < 6; ++i) {
        m_catalogue->addPicture(entry);
    }
    LocseenForm form(entry, 0);
    show(form);
    ModalScript script;
    script.box(u"max. Anzahl Bilder"_s, u"Es sind max. 6 Bilder pro Eintrag zulässig!"_s);
    press(form, u"newPictureButton"_s);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(pictures(), 6);
}

void TestLocseenForm::fifthPictureMayBeFollowedByASixth()
{
    const int entry = m_catalogue->addEntry(u"11109"_s, m_model);
    for (int i = 0; i < 5; ++i) {
        m_catalogue->addPicture(entry);
    }
    LocseenForm form(entry, 0);
    show(form);
    addPicture(form, writeSource({ 2001, 5, 17 }));
    QCOMPARE(pictures(), 6);
    QCOMPARE(table(form)->model()->rowCount(), 6);
}

void TestLocseenForm::newPictureIsListedAndShown()
{
    const int entry = m_catalogue->addEntry(u"11109"_s, m_model);
    LocseenForm form(entry, 0);
    show(form);
    addPicture(form, writeSource({ 2001, 5, 17 }));
    QCOMPARE(m_catalogue->value(u"SELECT locpictureid FROM loc_picture"_s).toInt(), entry);
    QCOMPARE(table(form)->model()->rowCount(), 1);
    QVERIFY(showsPicture(form));
    press(form, u"closeButton"_s);
    QVERIFY(form.hasChanged());
}

void TestLocseenForm::newPictureMovesTheSeenDate()
{
    LocseenForm form(m_catalogue->addEntry(u"11109"_s, m_model), 0);
    show(form);
    addPicture(form, writeSource({ 1995, 3, 4 }));
    QCOMPARE(seenDate(form)->date(), QDate(1995, 3, 4));
    QVERIFY(canSave(form));
    press(form, u"saveButton"_s);
    QCOMPARE(column(u"locseendate"_s), u"1995-03-04"_s);
    QCOMPARE(column(u"startdate"_s), u"2001-05-17"_s);
}

/// The field shows today for a date that is missing; a picture of today gives that date for good.
void TestLocseenForm::pictureGivesTheDateThatWasMissing()
{
    const int entry = m_catalogue->addEntry(u"11109"_s, m_model);
    run(u"UPDATE loc_seen SET locseendate = NULL"_s);
    LocseenForm form(entry, 0);
    show(form);
    addPicture(form, writeSource(seenDate(form)->date()));
    QVERIFY(canSave(form));
    const QDate taken = seenDate(form)->date();
    press(form, u"closeButton"_s);
    QCOMPARE(column(u"locseendate"_s), taken.toString(Qt::ISODate));
}

void TestLocseenForm::pictureOfTheSameDayLeavesNothingToSave()
{
    LocseenForm form(m_catalogue->addEntry(u"11109"_s, m_model), 0);
    show(form);
    addPicture(form, writeSource({ 2001, 5, 17 }));
    QVERIFY(!canSave(form));
    press(form, u"closeButton"_s);
    QCOMPARE(column(u"locseendate"_s), u"2001-05-17"_s);
}

void TestLocseenForm::pictureOfANewEntryMovesItsDate()
{
    LocseenForm form(-1, m_model);
    fill(form);
    press(form, u"saveButton"_s);
    addPicture(form, writeSource({ 1995, 3, 4 }));
    QVERIFY(canSave(form));
    press(form, u"saveButton"_s);
    QCOMPARE(entries(), 1);
    QCOMPARE(column(u"locseendate"_s), u"1995-03-04"_s);
    QCOMPARE(column(u"ort || kommentar"_s), u"BernSchnellzug"_s);
}

void TestLocseenForm::pictureFormClosedWithoutSavingChangesNothing()
{
    LocseenForm form(m_catalogue->addEntry(u"11109"_s, m_model), 0);
    show(form);
    ModalScript script;
    script
        .then([](QWidget *pictureForm) {
            press(*pictureForm, u"browseButton"_s);
            press(*pictureForm, u"closeButton"_s);
        })
        .chooseFile(writeSource({ 1995, 3, 4 }));
    press(form, u"newPictureButton"_s);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(pictures(), 0);
    QCOMPARE(seenDate(form)->date(), QDate(2001, 5, 17));
    QVERIFY(!showsPicture(form));
    press(form, u"closeButton"_s);
    QVERIFY(!form.hasChanged());
}

void TestLocseenForm::rowEnablesItsButtons_data()
{
    QTest::addColumn<bool>("byMouse");
    QTest::newRow("click") << true;
    QTest::newRow("arrow key") << false;
}

void TestLocseenForm::rowEnablesItsButtons()
{
    QFETCH(bool, byMouse);
    const int entry = m_catalogue->addEntry(u"11109"_s, m_model);
    m_catalogue->addPicture(entry);
    m_catalogue->addPicture(entry);
    LocseenForm form(entry, 0);
    show(form);
    QVERIFY(!button(form, u"showPictureButton"_s)->isEnabled());
    QVERIFY(!button(form, u"removePictureButton"_s)->isEnabled());
    if (byMouse) {
        clickRow(form, 1);
    } else {
        table(form)->setFocus();
        QTest::keyClick(table(form), Qt::Key_Down);
    }
    QVERIFY(button(form, u"showPictureButton"_s)->isEnabled());
    QVERIFY(button(form, u"removePictureButton"_s)->isEnabled());
}

void TestLocseenForm::focusAloneChoosesNothing()
{
    const int entry = m_catalogue->addEntry(u"11109"_s, m_model);
    m_catalogue->addPicture(entry);
    LocseenForm form(entry, 0);
    show(form);
    table(form)->setFocus();
    ModalScript script;
    script.box(u"File-Info"_s, NothingChosen);
    form.deleteLocPicture();
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(pictures(), 1);
}

void TestLocseenForm::showingWithoutARowIsTold()
{
    LocseenForm form(m_catalogue->addEntry(u"11109"_s, m_model), 0);
    show(form);
    ModalScript script;
    script.box(u"File-Info"_s, NothingChosen);
    form.showLocPicture();
    QCOMPARE(script.problems(), QStringList());
}

void TestLocseenForm::chosenPictureIsShown()
{
    const int entry = m_catalogue->addEntry(u"11109"_s, m_model);
    m_catalogue->addPicture(entry);
    LocseenForm form(entry, 0);
    show(form);
    clickRow(form, 0);
    QVERIFY(!showsPicture(form));
    press(form, u"showPictureButton"_s);
    QVERIFY(showsPicture(form));
    press(form, u"closeButton"_s);
    QVERIFY(!form.hasChanged());
}

void TestLocseenForm::missingPictureFileIsTold()
{
    const int entry = m_catalogue->addEntry(u"11109"_s, m_model);
    m_catalogue->addPicture(entry);
    QVERIFY(QFile::remove(u"./Data/Pictures/Folder001/copy1.jpg"_s));
    LocseenForm form(entry, 0);
    show(form);
    clickRow(form, 0);
    ModalScript script;
    script.box(u"File-Info"_s, u"Die Datei konnte nicht gefunden werden!"_s);
    press(form, u"showPictureButton"_s);
    QCOMPARE(script.problems(), QStringList());
}

void TestLocseenForm::removingWithoutARowIsTold()
{
    const int entry = m_catalogue->addEntry(u"11109"_s, m_model);
    m_catalogue->addPicture(entry);
    LocseenForm form(entry, 0);
    show(form);
    ModalScript script;
    script.box(u"File-Info"_s, NothingChosen);
    form.deleteLocPicture();
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(pictures(), 1);
}

void TestLocseenForm::neinKeepsThePicture()
{
    const int entry = m_catalogue->addEntry(u"11109"_s, m_model);
    m_catalogue->addPicture(entry);
    LocseenForm form(entry, 0);
    show(form);
    clickRow(form, 0);
    ModalScript script;
    script.box(u"Bild Entfernen"_s, DeleteQuestion, u"Nein"_s);
    press(form, u"removePictureButton"_s);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(pictures(), 1);
    QVERIFY(QFile::exists(u"./Data/Pictures/Folder001/copy1.jpg"_s));
    press(form, u"closeButton"_s);
    QVERIFY(!form.hasChanged());
}

void TestLocseenForm::jaRemovesRowAndCopyButNotTheSource()
{
    const int entry = m_catalogue->addEntry(u"11109"_s, m_model);
    m_catalogue->addPicture(entry);
    m_catalogue->addPicture(entry);
    LocseenForm form(entry, 0);
    show(form);
    clickRow(form, 1);
    press(form, u"showPictureButton"_s);
    ModalScript script;
    script.box(u"Bild Entfernen"_s, DeleteQuestion, u"Ja"_s);
    press(form, u"removePictureButton"_s);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(pictures(), 1);
    QCOMPARE(table(form)->model()->rowCount(), 1);
    QVERIFY(!QFile::exists(u"./Data/Pictures/Folder001/copy2.jpg"_s));
    QVERIFY(QFile::exists(u"./Data/Pictures/Folder001/copy1.jpg"_s));
    QVERIFY(QFile::exists(m_catalogue->path(u"source2.jpg"_s)));
    QVERIFY(!showsPicture(form));
    press(form, u"closeButton"_s);
    QVERIFY(form.hasChanged());
}

void TestLocseenForm::removingAgainWithoutARowIsTold()
{
    const int entry = m_catalogue->addEntry(u"11109"_s, m_model);
    m_catalogue->addPicture(entry);
    m_catalogue->addPicture(entry);
    LocseenForm form(entry, 0);
    show(form);
    clickRow(form, 0);
    ModalScript script;
    script.box(u"Bild Entfernen"_s, DeleteQuestion, u"Ja"_s).box(u"File-Info"_s, NothingChosen);
    press(form, u"removePictureButton"_s);
    press(form, u"removePictureButton"_s);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(pictures(), 1);
}

void TestLocseenForm::removingNeverTouchesAFileOfTheUser()
{
    const int entry = m_catalogue->addEntry(u"11109"_s, m_model);
    m_catalogue->addPicture(entry);
    run(u"UPDATE loc_picture SET pictAuxPath = './source1.jpg'"_s);
    LocseenForm form(entry, 0);
    show(form);
    clickRow(form, 0);
    ModalScript script;
    script.box(u"Bild Entfernen"_s, DeleteQuestion, u"Ja"_s);
    press(form, u"removePictureButton"_s);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(pictures(), 0);
    QVERIFY(QFile::exists(u"./source1.jpg"_s));
}

void TestLocseenForm::failedDeletionIsTold()
{
    const int entry = m_catalogue->addEntry(u"11109"_s, m_model);
    m_catalogue->addPicture(entry);
    refuse(u"DELETE"_s, u"loc_picture"_s);
    LocseenForm form(entry, 0);
    show(form);
    clickRow(form, 0);
    ModalScript script;
    script.box(u"Bild Entfernen"_s, DeleteQuestion, u"Ja"_s).then(driverBox(u"DB-Delete"_s));
    press(form, u"removePictureButton"_s);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(pictures(), 1);
    QVERIFY(QFile::exists(u"./Data/Pictures/Folder001/copy1.jpg"_s));
    press(form, u"closeButton"_s);
    QVERIFY(form.hasChanged());
}

BAHNITO_TEST_MAIN(TestLocseenForm)
#include "tst_locseenform.moc"
