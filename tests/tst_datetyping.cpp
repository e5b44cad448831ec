#include "forms/datetyping.h"
#include "search/clock.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QCalendarWidget>
#include <QClipboard>
#include <QDateEdit>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

const QDate Base(1985, 11, 22);

} // namespace

/// A form with a field before the date and one behind it.
class TestDateTyping final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void typedDates_data();
    void typedDates();
    void typingReplacesTheDate_data();
    void typingReplacesTheDate();
    void fieldShowsWhatIsTyped();
    void dateFollowsWhileItIsTyped();
    void backspaceTakesTheLastSignBack();
    void noSuchDayLeavesTheDate_data();
    void noSuchDayLeavesTheDate();
    void impossibleDayIsToldWhileItIsTyped();
    void clickEndsTyping();
    void clickIntoTheFieldTakesAWholeDate();
    void secondClickChoosesAPart();
    void clickedYearIsTypedAlone();
    void nextDateReplacesTheFirst_data();
    void nextDateReplacesTheFirst();
    void shiftDoesNotEndTyping();
    void tabLeadsToTheNextPart();
    void pastedDateIsTaken();
    void badDateIsToldAfterTheFormHasClosed();
    void dateIsEditedAsAText_data();
    void dateIsEditedAsAText();
    void doubleClickedYearIsTypedAlone();
    void wheelEndsTyping();
    void calendarTakesNoTyping();
    void tipDoesNotSpeakOfAnOldDate();
    void markedPartsAreTypedAlone_data();
    void markedPartsAreTypedAlone();
    void arrowsStepAsBefore();

private:
    [[nodiscard]] QString shown() const { return m_edit->findChild<QLineEdit *>()->text(); }
    void type(const QString &keys) { QTest::keyClicks(m_edit, keys); }
    void clickYear();
    void leave();

    std::unique_ptr<QWidget> m_form;
    QDateEdit *m_edit = nullptr;
};

void TestDateTyping::init()
{
    Clock::setSource([] { return QDateTime(QDate(2026, 11, 21), QTime(12, 0)); });
    m_form = std::make_unique<QWidget>();
    auto *row = new QHBoxLayout(m_form.get());
    auto *before = new QLineEdit;
    m_edit = new QDateEdit(Base);
    m_edit->setDisplayFormat(u"dd.MM.yyyy"_s);
    m_edit->setCalendarPopup(true);
    DateTyping::install(m_edit);
    row->addWidget(before);
    row->addWidget(m_edit);
    row->addWidget(new QLineEdit);
    m_form->show();
    m_form->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_form.get()));
    before->setFocus();
    QTest::keyClick(before, Qt::Key_Tab);
    QVERIFY(m_edit->hasFocus());
}

void TestDateTyping::cleanup()
{
    m_form.reset();
    QToolTip::hideText();
    Clock::setSource({});
}

void TestDateTyping::clickYear()
{
    auto *text = m_edit->findChild<QLineEdit *>();
    const int x = text->fontMetrics().horizontalAdvance(u"22.11.19"_s) + 3;
    QTest::mouseClick(text, Qt::LeftButton, {}, QPoint(x, text->height() / 2));
}

/// With as many Tabs as there are parts to be left.
void TestDateTyping::leave()
{
    for (int i = 0; i < 3 && m_edit->hasFocus(); ++i) {
        QTest::keyClick(m_edit, Qt::Key_Tab);
    }
    QVERIFY(!m_edit->hasFocus());
}

void TestDateTyping::typedDates_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QDate>("date"); // invalid: none
    QTest::newRow("a day") << u"5"_s << QDate(1985, 11, 5);
    QTest::newRow("day and month") << u"5.6"_s << QDate(1985, 6, 5);
    QTest::newRow("a point too many") << u"5.6.."_s << QDate(1985, 6, 5);
    QTest::newRow("this year") << u"5.6.26"_s << QDate(2026, 6, 5);
    QTest::newRow("next year is a hundred years ago") << u"5.6.27"_s << QDate(1927, 6, 5);
    QTest::newRow("year without a meaning") << u"5.6.202"_s << QDate();
    QTest::newRow("no such day") << u"31.11"_s << QDate();
    QTest::newRow("leap day") << u"29.2.2000"_s << QDate(2000, 2, 29);
    QTest::newRow("no leap day") << u"29.2.1900"_s << QDate();
    QTest::newRow("no day") << u"0"_s << QDate();
}

void TestDateTyping::typedDates()
{
    QFETCH(const QString, typed);
    QFETCH(const QDate, date);
    QCOMPARE(DateTyping::typedDate(typed, Base, 2026).value_or(QDate()), date);
}

void TestDateTyping::typingReplacesTheDate_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QDate>("date");
    for (const QString &keys : { u"05.06.2020"_s, u"5.6.2020"_s, u"05062020"_s, u"5.6.20"_s, u"05,06,2020"_s,
             u"5-6-2020"_s, u"5/6/20"_s, u"05 06 2020"_s, u"05.6.2020"_s, u"5.06.2020"_s }) {
        QTest::newRow(qUtf8Printable(keys)) << keys << QDate(2020, 6, 5);
    }
    // The 31st is typed while the field still shows November.
    QTest::newRow("31.12.1999") << u"31.12.1999"_s << QDate(1999, 12, 31);
    QTest::newRow("31121999") << u"31121999"_s << QDate(1999, 12, 31);
    QTest::newRow("12.3.1987") << u"12.3.1987"_s << QDate(1987, 3, 12);
    QTest::newRow("29.2.1984") << u"29.2.1984"_s << QDate(1984, 2, 29);
    QTest::newRow("7") << u"7"_s << QDate(1985, 11, 7);
    QTest::newRow("7.1") << u"7.1"_s << QDate(1985, 1, 7);
}

void TestDateTyping::typingReplacesTheDate()
{
    QFETCH(const QString, keys);
    QFETCH(const QDate, date);
    for (const bool isAllSelected : { false, true }) {
        m_edit->setDate(Base);
        m_edit->setSelectedSection(QDateTimeEdit::DaySection);
        if (isAllSelected) {
            m_edit->selectAll();
        }
        type(keys);
        QTest::keyClick(m_edit, Qt::Key_Tab);
        const bool isComplete = date.year() != Base.year();
        QCOMPARE(m_edit->hasFocus(), !isComplete); // else month or year are next
        if (!isComplete) {
            QTest::keyClick(m_edit, Qt::Key_Tab);
            QVERIFY(!m_edit->hasFocus());
        }
        QCOMPARE(m_edit->date(), date);
        QCOMPARE(shown(), date.toString(u"dd.MM.yyyy"_s));
        m_edit->setFocus();
    }
}

void TestDateTyping::fieldShowsWhatIsTyped()
{
    type(u"5.6."_s);
    QCOMPARE(shown(), u"5.6."_s);
    type(u"20201"_s); // one digit too many
    QCOMPARE(shown(), u"5.6.2020"_s);
    type(u".1"_s);
    QCOMPARE(shown(), u"5.6.2020"_s);
    QTest::keyClick(m_edit, Qt::Key_Return);
    QCOMPARE(shown(), u"05.06.2020"_s);
}

/// So that "Speichern" becomes enabled, and nothing is lost when the form closes in the middle.
void TestDateTyping::dateFollowsWhileItIsTyped()
{
    const QSignalSpy changes(m_edit, &QDateEdit::dateChanged);
    type(u"5.6"_s);
    QCOMPARE(m_edit->date(), QDate(1985, 6, 5));
    QVERIFY(!changes.isEmpty());
    type(u".2020"_s);
    QCOMPARE(m_edit->date(), QDate(2020, 6, 5));
}

void TestDateTyping::backspaceTakesTheLastSignBack()
{
    type(u"5.7"_s);
    QTest::keyClick(m_edit, Qt::Key_Backspace);
    QCOMPARE(shown(), u"5."_s);
    type(u"6"_s);
    QCOMPARE(m_edit->date(), QDate(1985, 6, 5));
    for (int i = 0; i < 3; ++i) {
        QTest::keyClick(m_edit, Qt::Key_Backspace);
    }
    QCOMPARE(shown(), u"22.11.1985"_s);
    QCOMPARE(m_edit->date(), Base);
}

void TestDateTyping::noSuchDayLeavesTheDate_data()
{
    QTest::addColumn<QString>("keys");
    for (const QString &keys : { u"31.2.2000"_s, u"5.13.2000"_s, u"45"_s, u"5.6.202"_s, u"0.0.0000"_s, u"00000000"_s,
             u"5.6.1600"_s, u"2012"_s }) {
        QTest::newRow(qUtf8Printable(keys)) << keys;
    }
}

void TestDateTyping::noSuchDayLeavesTheDate()
{
    QFETCH(const QString, keys);
    type(keys);
    leave();
    QCOMPARE(m_edit->date(), Base);
    QCOMPARE(shown(), u"22.11.1985"_s);
    QTRY_VERIFY(QToolTip::isVisible());
    QCOMPARE(QToolTip::text(), u"„%1“ ist kein Datum. Es bleibt beim 22.11.1985."_s.arg(keys));
}

void TestDateTyping::impossibleDayIsToldWhileItIsTyped()
{
    type(u"31.2.200"_s);
    QVERIFY(!QToolTip::isVisible()); // anything may come of it yet
    type(u"0"_s);
    QVERIFY(QToolTip::isVisible());
    QCOMPARE(QToolTip::text(), u"„31.2.2000“ ist kein Datum. Es bleibt beim 22.11.1985."_s);
    QTest::keyClick(m_edit, Qt::Key_Backspace);
    QTRY_VERIFY(!QToolTip::isVisible());
}

void TestDateTyping::clickEndsTyping()
{
    type(u"5.6.20"_s);
    QTest::mouseClick(m_edit->findChild<QLineEdit *>(), Qt::LeftButton, {}, QPoint(5, 5));
    QCOMPARE(shown(), u"05.06.2020"_s);
    QCOMPARE(m_edit->date(), QDate(2020, 6, 5));
}

void TestDateTyping::clickIntoTheFieldTakesAWholeDate()
{
    QTest::keyClick(m_edit, Qt::Key_Backtab);
    QVERIFY(!m_edit->hasFocus());
    clickYear();
    type(u"5.6.2020"_s);
    QTest::keyClick(m_edit, Qt::Key_Tab);
    QCOMPARE(m_edit->date(), QDate(2020, 6, 5));
}

void TestDateTyping::secondClickChoosesAPart()
{
    clickYear();
    QCOMPARE(m_edit->currentSection(), QDateTimeEdit::YearSection);
    QVERIFY(m_edit->findChild<QLineEdit *>()->selectedText() != shown());
}

void TestDateTyping::clickedYearIsTypedAlone()
{
    clickYear();
    QTest::qWait(1); // what the first focus has brought about must not come later
    type(u"2001"_s);
    QTest::keyClick(m_edit, Qt::Key_Tab);
    QCOMPARE(m_edit->date(), QDate(2001, 11, 22));
}

void TestDateTyping::nextDateReplacesTheFirst_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<int>("key");
    QTest::newRow("after Return") << u"5.6.2020"_s << int(Qt::Key_Return);
    QTest::newRow("after Enter") << u"5.6.20"_s << int(Qt::Key_Enter);
    QTest::newRow("after no date") << u"31.2.2020"_s << int(Qt::Key_Return);
    QTest::newRow("back with Tab") << u"5.6.2020"_s << int(Qt::Key_Tab);
    QTest::newRow("nothing typed before") << QString() << int(Qt::Key_Tab);
}

void TestDateTyping::nextDateReplacesTheFirst()
{
    QFETCH(const QString, first);
    QFETCH(const int, key);
    for (const bool isQuick : { true, false }) {
        type(first);
        if (key == Qt::Key_Tab) {
            leave();
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backtab);
        } else {
            QTest::keyClick(m_edit, Qt::Key(key));
        }
        QVERIFY(m_edit->hasFocus());
        if (!isQuick) {
            QTRY_COMPARE(m_edit->findChild<QLineEdit *>()->selectedText(), shown());
        }
        type(u"7.8.2021"_s);
        QTest::keyClick(m_edit, Qt::Key_Return);
        QCOMPARE(m_edit->date(), QDate(2021, 8, 7));
    }
}

/// It stands above the 7 of German keyboards.
void TestDateTyping::shiftDoesNotEndTyping()
{
    for (const char sign : { '5', '/', '6', '/', '2', '0' }) {
        if (sign == '/') {
            QTest::keyPress(m_edit, Qt::Key_Shift, Qt::ShiftModifier);
            QTest::keyClick(m_edit, '/', Qt::ShiftModifier);
            QTest::keyRelease(m_edit, Qt::Key_Shift);
        } else {
            QTest::keyClick(m_edit, sign);
        }
    }
    QTest::keyClick(m_edit, Qt::Key_Tab);
    QCOMPARE(m_edit->date(), QDate(2020, 6, 5));
}

void TestDateTyping::tabLeadsToTheNextPart()
{
    for (const QString &part : { u"5"_s, u"06"_s, u"20"_s }) {
        QVERIFY(m_edit->hasFocus());
        type(part);
        QTest::keyClick(m_edit, Qt::Key_Tab);
    }
    QVERIFY(!m_edit->hasFocus());
    QCOMPARE(m_edit->date(), QDate(2020, 6, 5));
}

void TestDateTyping::pastedDateIsTaken()
{
    QApplication::clipboard()->setText(u"05.06.2020\n"_s); // as cells of a spreadsheet are copied
    QTest::keySequence(m_edit, QKeySequence::Paste);
    QCOMPARE(shown(), u"05.06.2020"_s);
    QTest::keyClick(m_edit, Qt::Key_Return);
    QCOMPARE(m_edit->date(), QDate(2020, 6, 5));
    QApplication::clipboard()->setText(u"gestern"_s);
    QTest::keySequence(m_edit, QKeySequence::Paste);
    QCOMPARE(m_edit->date(), QDate(2020, 6, 5));
}

void TestDateTyping::badDateIsToldAfterTheFormHasClosed()
{
    type(u"31.4.20"_s);
    m_form.reset();
    QTRY_COMPARE(QToolTip::text(), u"„31.4.20“ ist kein Datum. Es bleibt beim 22.11.1985."_s);
}

void TestDateTyping::dateIsEditedAsAText_data()
{
    QTest::addColumn<QStringList>("keys"); // texts, and "Home", "End", "Left", "Delete", "Backspace", "Ctrl+V"
    QTest::addColumn<QDate>("date");
    QTest::newRow("first digit away") << QStringList { u"Home"_s, u"Delete"_s } << QDate(1985, 11, 2);
    QTest::newRow("day") << QStringList { u"Home"_s, u"Delete"_s, u"1"_s } << QDate(1985, 11, 12);
    QTest::newRow("last digit") << QStringList { u"End"_s, u"Backspace"_s, u"7"_s } << QDate(1987, 11, 22);
    QTest::newRow("decade") << QStringList { u"End"_s, u"Backspace"_s, u"Backspace"_s, u"25"_s } << QDate(1925, 11, 22);
    QTest::newRow("half a year") << QStringList { u"End"_s, u"Backspace"_s } << Base;
    QTest::newRow("month") << QStringList { u"Home"_s, u"Right"_s, u"Right"_s, u"Right"_s, u"Delete"_s }
                           << QDate(1985, 1, 22);
    QTest::newRow("all") << QStringList { u"Ctrl+A"_s, u"Delete"_s, u"5.6.2020"_s } << QDate(2020, 6, 5);
    QTest::newRow("pasted behind typed ones") << QStringList { u"5.6."_s, u"Ctrl+V"_s } << QDate(2001, 6, 5);
}

void TestDateTyping::dateIsEditedAsAText()
{
    QFETCH(const QStringList, keys);
    QFETCH(const QDate, date);
    QApplication::clipboard()->setText(u"2001"_s);
    for (const QString &key : keys) {
        if (key.front().isDigit()) {
            type(key);
        } else {
            QTest::keySequence(m_edit, QKeySequence(key));
        }
    }
    QCOMPARE(m_edit->date(), date); // at once, as when the form is closed now
    leave();
    QCOMPARE(m_edit->date(), date);
    QCOMPARE(shown(), date.toString(u"dd.MM.yyyy"_s));
}

/// Through the window, because of the second press a widget is told only as of a double click.
void TestDateTyping::doubleClickedYearIsTypedAlone()
{
    QTest::keyClick(m_edit, Qt::Key_Backtab);
    auto *text = m_edit->findChild<QLineEdit *>();
    const int x = text->fontMetrics().horizontalAdvance(u"22.11.19"_s) + 3;
    const QPoint place = text->mapTo(m_form.get(), QPoint(x, text->height() / 2));
    QTest::mouseDClick(m_form->windowHandle(), Qt::LeftButton, {}, place);
    QCOMPARE(text->selectedText(), u"1985"_s);
    type(u"2012"_s);
    QTest::keyClick(m_edit, Qt::Key_Return);
    QCOMPARE(m_edit->date(), QDate(2012, 11, 22));
}

void TestDateTyping::wheelEndsTyping()
{
    type(u"5.6"_s);
    const QPointF place = m_edit->rect().center();
    QWheelEvent wheel(place, m_edit->mapToGlobal(place), {}, QPoint(0, 120), {}, {}, Qt::NoScrollPhase, false);
    QApplication::sendEvent(m_edit, &wheel);
    const QDate stepped = m_edit->date();
    QVERIFY(stepped != QDate(1985, 6, 5));
    QCOMPARE(shown(), stepped.toString(u"dd.MM.yyyy"_s));
    leave();
    QCOMPARE(m_edit->date(), stepped);
}

/// It would read 05.06.2020 as another date.
void TestDateTyping::calendarTakesNoTyping()
{
    QTest::mouseClick(m_edit, Qt::LeftButton, {}, QPoint(m_edit->width() - 5, m_edit->height() / 2));
    QWidget *calendar = QApplication::activePopupWidget();
    QVERIFY(calendar);
    QWidget *days = calendar->findChild<QWidget *>(u"qt_calendar_calendarview"_s);
    QTest::keyClicks(days, u"05062020"_s);
    QTest::keyClick(days, Qt::Key_Return);
    QCOMPARE(m_edit->date(), Base);
}

void TestDateTyping::tipDoesNotSpeakOfAnOldDate()
{
    type(u"31.2"_s);
    QTest::keyClick(m_edit, Qt::Key_Up);
    QVERIFY(m_edit->date() != Base);
    QTRY_COMPARE(QToolTip::text(), u"„31.2“ ist kein Datum."_s);
}

void TestDateTyping::markedPartsAreTypedAlone_data()
{
    QTest::addColumn<QDateTimeEdit::Section>("section");
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QDate>("date");
    QTest::newRow("day") << QDateTimeEdit::DaySection << u"5"_s << QDate(1985, 11, 5);
    QTest::newRow("month") << QDateTimeEdit::MonthSection << u"6"_s << QDate(1985, 6, 22);
    QTest::newRow("month and year") << QDateTimeEdit::MonthSection << u"6.2001"_s << QDate(2001, 6, 22);
    QTest::newRow("year") << QDateTimeEdit::YearSection << u"2001"_s << QDate(2001, 11, 22);
    QTest::newRow("short year") << QDateTimeEdit::YearSection << u"99"_s << QDate(1999, 11, 22);
}

void TestDateTyping::markedPartsAreTypedAlone()
{
    QFETCH(const QDateTimeEdit::Section, section);
    QFETCH(const QString, keys);
    QFETCH(const QDate, date);
    QTest::keyClick(m_edit, Qt::Key_Left); // no longer the whole date
    m_edit->setSelectedSection(section);
    type(keys);
    QTest::keyClick(m_edit, Qt::Key_Return);
    QCOMPARE(m_edit->date(), date);
}

void TestDateTyping::arrowsStepAsBefore()
{
    type(u"5.6.2020"_s);
    QTest::keyClick(m_edit, Qt::Key_Up);
    QTest::keyClick(m_edit, Qt::Key_Tab);
    QVERIFY2(m_edit->date() > QDate(2020, 6, 5), qUtf8Printable(m_edit->date().toString()));
}

BAHNITO_TEST_MAIN(TestDateTyping)
#include "tst_datetyping.moc"
