#include "forms/datetyping.h"
#include "search/clock.h"

#include <QApplication>
#include <QCalendarWidget>
#include <QClipboard>
#include <QDateEdit>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPointer>
#include <QSignalBlocker>
#include <QTimer>
#include <QToolTip>

#include <algorithm>
#include <chrono>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

// How keys become a date.

namespace {

constexpr auto ClickLength = 300ms; // a tip that is shown in the middle of a click disappears with its end

bool isModifier(int key)
{
    return key == Qt::Key_Shift || key == Qt::Key_Control || key == Qt::Key_Alt || key == Qt::Key_AltGr
        || key == Qt::Key_Meta || key == Qt::Key_CapsLock || key == Qt::Key_NumLock;
}

bool isReturn(int key)
{
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

bool isPlain(const QKeyEvent &key)
{
    return !(key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
}

bool isDigitKey(const QKeyEvent &key)
{
    return isPlain(key) && key.text().size() == 1 && DateTyping::isDigit(key.text().front());
}

/// Whether the key edits a text in any field, or moves about in it.
bool isForText(const QKeyEvent &key)
{
    const bool isPrinted = isPlain(key) && !key.text().isEmpty() && key.text().front().isPrint();
    const bool isMove = key.key() == Qt::Key_Left || key.key() == Qt::Key_Right || key.key() == Qt::Key_Home
        || key.key() == Qt::Key_End;
    const bool isRemoval = key.key() == Qt::Key_Backspace || key.key() == Qt::Key_Delete;
    return isPrinted || isMove || isRemoval || key.matches(QKeySequence::Paste) || key.matches(QKeySequence::Cut)
        || key.matches(QKeySequence::Copy) || key.matches(QKeySequence::SelectAll);
}

/// Lets the text of a date field be anything for a while: the field does not hear of it, and does not complete it.
class FreeText final
{
public:
    explicit FreeText(QLineEdit *text)
        : m_text(text)
        , m_blocker(text)
        , m_validator(text->validator())
    {
        text->setValidator(nullptr);
    }
    ~FreeText() { m_text->setValidator(m_validator); }
    Q_DISABLE_COPY_MOVE(FreeText)

    void set(const QString &text, int cursor)
    {
        m_text->setText(text);
        m_text->setCursorPosition(cursor);
    }

private:
    QLineEdit *m_text;
    QSignalBlocker m_blocker;
    const QValidator *m_validator;
};

/// While a date is being typed the field is a plain text, as far as the keys are concerned, and its date follows.
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
            keepCalendarFromTyping();
            break;
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
            m_isWholeNext = false;
            finish();
            break;
        case QEvent::Wheel:
            if (m_edit->hasFocus()) {
                m_isWholeNext = false;
                finish();
            }
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
    bool pressKey(QKeyEvent &key)
    {
        if (isModifier(key.key())) {
            return false; // the slash of a German keyboard takes one
        }
        const bool isEdit = isDigitKey(key) || key.key() == Qt::Key_Backspace || key.key() == Qt::Key_Delete
            || key.matches(QKeySequence::Paste) || key.matches(QKeySequence::Cut);
        if (m_isTyping ? isForText(key) || leadsToNextPart(key) : isEdit) {
            typeKey(key);
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

    [[nodiscard]] bool leadsToNextPart(const QKeyEvent &key) const
    {
        const QString typed = m_text->text();
        const QStringList parts = DateTyping::partsOf(typed);
        const bool isRun = typed.size() > 2 && std::all_of(typed.begin(), typed.end(), DateTyping::isDigit);
        return key.key() == Qt::Key_Tab && !isRun && parts.size() < 3 && !parts.last().isEmpty();
    }

    /// Once the field has dealt with the event, all of the date is marked, and what is typed takes its place.
    void expectWholeDate()
    {
        m_isWholeNext = true;
        QTimer::singleShot(0, this, [this] {
            if (m_isWholeNext && !m_isTyping) {
                m_edit->selectAll();
            }
        });
    }

    /// What is typed there it reads part by part, into another date.
    void keepCalendarFromTyping()
    {
        if (m_edit->calendarPopup()) {
            m_edit->calendarWidget()->setDateEditEnabled(false);
        }
    }

    /// What is marked is what will be replaced; of a date in which nothing is marked, the part with the cursor.
    void begin(const QKeyEvent &key)
    {
        m_isTyping = true;
        m_base = m_edit->date();
        if (std::exchange(m_isWholeNext, false)) {
            m_edit->selectAll();
        } else if (isDigitKey(key) && !m_text->hasSelectedText()) {
            m_edit->setSelectedSection(m_edit->currentSection());
        }
    }

    void typeKey(QKeyEvent &key)
    {
        if (!m_isTyping) {
            begin(key);
        }
        const QString former = m_text->text();
        const int cursor = m_text->cursorPosition();
        {
            FreeText text(m_text);
            edit(key);
            if (!DateTyping::isBeginning(m_text->text())) {
                QApplication::beep();
                text.set(former, cursor);
            }
        }
        follow();
    }

    void edit(QKeyEvent &key)
    {
        if (key.key() == Qt::Key_Tab) {
            m_text->end(false);
            m_text->insert(u"."_s);
        } else if (key.matches(QKeySequence::Paste)) {
            const QString text = QApplication::clipboard()->text().simplified();
            if (DateTyping::partsOf(text).size() >= 3) {
                m_text->selectAll(); // a whole date stands for the whole
            }
            m_text->insert(text);
        } else if (!key.text().isEmpty() && DateTyping::isBetween(key.text().front()) && isBeforeSeparator()) {
            markNextPart();
        } else {
            static_cast<QObject *>(m_text)->event(&key);
        }
    }

    [[nodiscard]] bool isBeforeSeparator() const
    {
        const int cursor = m_text->cursorPosition();
        const QString text = m_text->text();
        return !m_text->hasSelectedText() && cursor > 0 && cursor < text.size()
            && DateTyping::isBetween(text.at(cursor));
    }

    void markNextPart()
    {
        const QString text = m_text->text();
        const int from = m_text->cursorPosition() + 1;
        int to = from;
        while (to < text.size() && DateTyping::isDigit(text.at(to))) {
            ++to;
        }
        m_text->setSelection(from, to - from);
    }

    /// None also when the field cannot hold the day: it would take another one without a word.
    [[nodiscard]] std::optional<QDate> typedDate() const
    {
        const std::optional<QDate> date = DateTyping::typedDate(m_text->text(), m_base, Clock::now().date().year());
        return date && *date >= m_edit->minimumDate() && *date <= m_edit->maximumDate() ? date : std::nullopt;
    }

    /// Takes over what is typed so far; the text stays as it is.
    void follow()
    {
        const std::optional<QDate> date = typedDate();
        const QString typed = m_text->text();
        if (typed.isEmpty()) {
            m_isTyping = false;
            m_edit->setDate(m_base);
            expectWholeDate();
            return;
        }
        if (m_edit->date() != date.value_or(m_base)) {
            const int cursor = m_text->cursorPosition();
            m_edit->setDate(date.value_or(m_base));
            FreeText(m_text).set(typed, cursor);
        }
        if (!date && DateTyping::partsOf(typed).value(2).size() == 4) {
            QToolTip::showText(place(), noDateText(typed, true), m_edit);
        } else {
            QToolTip::hideText();
        }
    }

    void finish()
    {
        if (!m_isTyping) {
            return;
        }
        const QString typed = m_text->text();
        if (!typedDate() && std::any_of(typed.begin(), typed.end(), DateTyping::isDigit)) {
            QApplication::beep();
            tellLater(typed);
        }
        m_isTyping = false;
        m_edit->setDate(m_edit->date()); // shows it in the field's own form
        m_edit->setCurrentSection(QDateTimeEdit::YearSection); // behind which Tab leaves the field
    }

    /// Also when the form has been closed with it.
    void tellLater(const QString &typed)
    {
        QTimer::singleShot(ClickLength, QCoreApplication::instance(),
            [edit = QPointer(m_edit), at = place(), base = m_base, isNo = noDateText(typed, false),
                isNoAndStays = noDateText(typed, true)] {
                const bool isThere = edit && edit->isVisible();
                const bool hasStayed = !edit || edit->date() == base; // nobody has gone on from there meanwhile
                QToolTip::showText(
                    at, hasStayed ? isNoAndStays : isNo, isThere ? edit.data() : QApplication::activeWindow());
            });
    }

    [[nodiscard]] QPoint place() const { return m_edit->mapToGlobal(m_edit->rect().bottomLeft()); }

    [[nodiscard]] QString noDateText(QString typed, bool stays) const
    {
        while (!typed.isEmpty() && DateTyping::isBetween(typed.back())) { // a Tab may have put it there
            typed.chop(1);
        }
        const QString text = QCoreApplication::translate("DateTyping", "„%1“ ist kein Datum.").arg(typed);
        const QString date = m_base.toString(m_edit->displayFormat());
        return stays ? text + QCoreApplication::translate("DateTyping", " Es bleibt beim %1.").arg(date) : text;
    }

    QDateEdit *m_edit;
    QLineEdit *m_text;
    bool m_isTyping = false;
    QDate m_base; // before typing
    bool m_isWholeNext = false; // what is typed next is a whole date, not the part where the cursor stands
    bool m_clickedInto = false; // by the click that is not over yet
};

} // namespace

void DateTyping::install(QDateEdit *edit)
{
    new Typist(edit); // belongs to the field
}
