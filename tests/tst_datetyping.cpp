#include "forms/datetyping.h"
#include "search/clock.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QDateEdit>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>

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
    void clickEndsTyping();
    void clickIntoTheFieldTakesAWholeDate();
    void secondClickChoosesAPart();
    void otherPartsAreTypedAsBefore();
    void arrowsStepAsBefore();

private:
    [[nodiscard]] QString shown() const { return m_edit->findChild<QLineEdit *>()->text(); }
    void type(const QString &keys) { QTest::keyClicks(m_edit, keys); }
    void clickYear();

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
    Clock::setSource({});
}

void TestDateTyping::clickYear()
{
    auto *text = m_edit->findChild<QLineEdit *>();
    const int x = text->fontMetrics().horizontalAdvance(u"22.11.19"_s) + 3;
    QTest::mouseClick(text, Qt::LeftButton, {}, QPoint(x, text->height() / 2));
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
        QCOMPARE(m_edit->date(), date);
        QCOMPARE(shown(), date.toString(u"dd.MM.yyyy"_s));
        const bool isComplete = date.year() != Base.year();
        QCOMPARE(m_edit->hasFocus(), !isComplete); // else month or year are next
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
    for (const QString &keys :
        { u"31.2.2000"_s, u"5.13.2000"_s, u"45"_s, u"5.6.202"_s, u"0.0.0000"_s, u"00000000"_s }) {
        QTest::newRow(qUtf8Printable(keys)) << keys;
    }
}

void TestDateTyping::noSuchDayLeavesTheDate()
{
    QFETCH(const QString, keys);
    type(keys);
    QTest::keyClick(m_edit, Qt::Key_Tab);
    QCOMPARE(m_edit->date(), Base);
    QCOMPARE(shown(), u"22.11.1985"_s);
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

void TestDateTyping::otherPartsAreTypedAsBefore()
{
    m_edit->setSelectedSection(QDateTimeEdit::YearSection);
    type(u"2001"_s);
    QTest::keyClick(m_edit, Qt::Key_Tab);
    QCOMPARE(m_edit->date(), QDate(2001, 11, 22));
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
