#include "forms/datetyping.h"

#include "search/clock.h"

#include <QApplication>
#include <QClipboard>
#include <QDateEdit>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPointer>
#include <QSignalBlocker>
#include <QStringList>
#include <QTimer>
#include <QToolTip>

#include <algorithm>
#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto ClickLength = 300ms; // a tip that is shown in the middle of a click disappears with its end

bool isDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

bool isBetween(QChar character)
{
    return u".,-/ "_s.contains(character);
}

/// Day, month and year as far as they are typed; a day or a month is full with two digits.
QStringList partsOf(const QString &typed)
{
    QStringList parts { QString() };
    for (const QChar character : typed) {
        const bool isFull = parts.size() < 3 && parts.last().size() == 2;
        if (isBetween(character) ? !parts.last().isEmpty() : isFull) {
            parts.append(QString());
        }
        if (isDigit(character)) {
            parts.last().append(character);
        }
    }
    return parts;
}

std::optional<int> typedYear(const QString &digits, int thisYear)
{
    if (digits.size() == 2) {
        const int year = thisYear - thisYear % 100 + digits.toInt();
        return year <= thisYear ? year : year - 100;
    }
    return digits.size() == 4 ? std::optional(digits.toInt()) : std::nullopt;
}

bool isModifier(int key)
{
    return key == Qt::Key_Shift || key == Qt::Key_Control || key == Qt::Key_Alt || key == Qt::Key_AltGr
        || key == Qt::Key_Meta || key == Qt::Key_CapsLock || key == Qt::Key_NumLock;
}

bool isReturn(int key)
{
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

/// Takes the keys of a date that is being typed. The field shows them as they are, and its date follows.
class Typist final : public QObject
{
public:
    explicit Typist(QDateEdit *edit)
        : QObject(edit)
        , m_edit(edit)
        , m_text(edit->findChild<QLineEdit *>())
    {
        edit->installEventFilter(this);
        m_text->installEventFilter(this); // gets the mouse
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        switch (event->type()) {
        case QEvent::KeyPress:
            if (watched == m_edit) {
                return pressKey(*static_cast<QKeyEvent *>(event));
            }
            break;
        case QEvent::FocusIn:
            m_clickedInto = static_cast<QFocusEvent *>(event)->reason() == Qt::MouseFocusReason;
            expectWholeDate();
            break;
        case QEvent::MouseButtonPress:
            m_isWholeNext = false;
            finish();
            break;
        case QEvent::MouseButtonRelease:
            if (std::exchange(m_clickedInto, false)) {
                expectWholeDate(); // wherever the click went
            }
            break;
        case QEvent::FocusOut:
            finish();
            break;
        default:
            break;
        }
        return QObject::eventFilter(watched, event);
    }

private:
    /// True when the field itself shall not see the key.
    bool pressKey(const QKeyEvent &key)
    {
        if (isModifier(key.key())) {
            return false; // the slash of a German keyboard takes one
        }
        if (takeKey(key)) {
            m_isWholeNext = false;
            return true;
        }
        finish();
        m_isWholeNext = false;
        if (isReturn(key.key())) {
            expectWholeDate();
        } else if (key.key() == Qt::Key_Backtab) {
            m_edit->setCurrentSection(QDateTimeEdit::DaySection); // before which the field is left
        }
        return false;
    }

    /// Once the field has dealt with the event, all of the date is marked, and what is typed takes its place.
    void expectWholeDate()
    {
        m_isWholeNext = true;
        QTimer::singleShot(0, this, [this] {
            if (m_isWholeNext && m_typed.isEmpty()) {
                m_edit->selectAll();
            }
        });
    }

    /// What stands before the part that is typed first.
    [[nodiscard]] QString beginning() const
    {
        const bool isWhole = m_isWholeNext || m_text->selectedText() == m_text->text();
        const QString date = m_edit->date().toString(u"dd.MM."_s);
        switch (isWhole ? QDateTimeEdit::DaySection : m_edit->currentSection()) {
        case QDateTimeEdit::MonthSection:
            return date.first(3);
        case QDateTimeEdit::YearSection:
            return date;
        default:
            return {};
        }
    }

    /// False for keys that are not part of a date.
    bool takeKey(const QKeyEvent &key)
    {
        if (key.matches(QKeySequence::Paste)) {
            return type(QApplication::clipboard()->text().simplified(), {});
        }
        const bool isPlain = !(key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
        if (!isPlain || (m_typed.isEmpty() && (key.text().isEmpty() || !isDigit(key.text().front())))) {
            return false;
        }
        if (key.key() == Qt::Key_Backspace) {
            show(m_typed.chopped(1));
            return true;
        }
        const QStringList parts = partsOf(m_typed);
        if (key.key() == Qt::Key_Tab && parts.size() < 3 && !parts.last().isEmpty()) {
            return type(u"."_s, m_typed); // on to the next part
        }
        return type(key.text(), m_typed.isEmpty() ? beginning() : m_typed);
    }

    /// False when nothing of it belongs into a date.
    bool type(const QString &text, const QString &behind)
    {
        const auto isPart = [](QChar character) { return isDigit(character) || isBetween(character); };
        if (text.isEmpty() || !std::all_of(text.begin(), text.end(), isPart)) {
            return false;
        }
        if (m_typed.isEmpty()) {
            m_base = m_edit->date();
        }
        if (DateTyping::isBeginning(behind + text)) {
            show(behind + text);
        } else {
            QApplication::beep();
        }
        return true;
    }

    /// None also when the field cannot hold the day: it would take another one without a word.
    [[nodiscard]] std::optional<QDate> typedDate() const
    {
        const std::optional<QDate> date = DateTyping::typedDate(m_typed, m_base, Clock::now().date().year());
        return date && *date >= m_edit->minimumDate() && *date <= m_edit->maximumDate() ? date : std::nullopt;
    }

    void show(const QString &typed)
    {
        m_typed = typed;
        if (typed.isEmpty()) {
            m_edit->setDate(m_base);
            expectWholeDate();
            return;
        }
        const std::optional<QDate> date = typedDate();
        m_edit->setDate(date.value_or(m_base));
        if (!date && partsOf(typed).value(2).size() == 4) {
            QToolTip::showText(place(), noDateText(), m_edit);
        } else {
            QToolTip::hideText();
        }
        const QSignalBlocker blocker(m_text); // the field would take it for a text in its own form
        const QValidator *validator = m_text->validator(); // and would complete it
        m_text->setValidator(nullptr);
        m_text->setText(typed);
        m_text->setValidator(validator);
    }

    void finish()
    {
        if (m_typed.isEmpty()) {
            return;
        }
        if (!typedDate()) {
            QApplication::beep();
            // Also when the form has been closed with it.
            QTimer::singleShot(ClickLength, QCoreApplication::instance(),
                [edit = QPointer(m_edit), at = place(), text = noDateText()] {
                    const bool isThere = edit && edit->isVisible();
                    QToolTip::showText(at, text, isThere ? edit.data() : QApplication::activeWindow());
                });
        }
        m_typed.clear();
        m_edit->setDate(m_edit->date()); // shows it in the field's own form
        m_edit->setCurrentSection(QDateTimeEdit::YearSection); // behind which Tab leaves the field
    }

    [[nodiscard]] QPoint place() const { return m_edit->mapToGlobal(m_edit->rect().bottomLeft()); }

    [[nodiscard]] QString noDateText() const
    {
        QString typed = m_typed;
        while (!typed.isEmpty() && isBetween(typed.back())) { // a Tab has put it there
            typed.chop(1);
        }
        return QCoreApplication::translate("DateTyping", "„%1“ ist kein Datum. Es bleibt beim %2.")
            .arg(typed, m_base.toString(m_edit->displayFormat()));
    }

    QDateEdit *m_edit;
    QLineEdit *m_text;
    QString m_typed; // empty while nobody types
    QDate m_base; // before typing
    bool m_isWholeNext = false; // what is typed next is a whole date, not the part where the cursor stands
    bool m_clickedInto = false; // by the click that is not over yet
};

} // namespace

bool DateTyping::isBeginning(const QString &typed)
{
    const QStringList parts = partsOf(typed);
    return parts.size() <= 3 && parts.last().size() <= 4;
}

std::optional<QDate> DateTyping::typedDate(const QString &typed, const QDate &base, int thisYear)
{
    const QStringList parts = partsOf(typed);
    const QString month = parts.value(1);
    const QString year = parts.value(2);
    const std::optional<int> fullYear = year.isEmpty() ? std::optional(base.year()) : typedYear(year, thisYear);
    if (!fullYear) {
        return {};
    }
    const QDate date(*fullYear, month.isEmpty() ? base.month() : month.toInt(), parts.first().toInt());
    return date.isValid() ? std::optional(date) : std::nullopt;
}

void DateTyping::install(QDateEdit *edit)
{
    new Typist(edit); // belongs to the field
}
