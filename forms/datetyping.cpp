#include "forms/datetyping.h"

#include "search/clock.h"

#include <QApplication>
#include <QDateEdit>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QStringList>

#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

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
        if (event->type() == QEvent::KeyPress && watched == m_edit && takeKey(*static_cast<QKeyEvent *>(event))) {
            return true;
        }
        if (event->type() == QEvent::FocusIn) {
            m_clickedInto = static_cast<QFocusEvent *>(event)->reason() == Qt::MouseFocusReason;
        } else if (event->type() == QEvent::MouseButtonRelease && std::exchange(m_clickedInto, false)) {
            m_edit->selectAll(); // what is typed now is a whole date, wherever the click went
        }
        const bool endsTyping = event->type() == QEvent::FocusOut || event->type() == QEvent::MouseButtonPress
            || (event->type() == QEvent::KeyPress && watched == m_edit);
        if (endsTyping) {
            finish();
        }
        return QObject::eventFilter(watched, event);
    }

private:
    [[nodiscard]] bool canBegin() const
    {
        return m_text->selectedText() == m_text->text() || m_edit->currentSection() == QDateTimeEdit::DaySection;
    }

    /// False for keys that are not part of a date.
    bool takeKey(const QKeyEvent &key)
    {
        const bool isPlain = !(key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
        if (key.key() == Qt::Key_Backspace && isPlain && !m_typed.isEmpty()) {
            show(m_typed.chopped(1));
            return true;
        }
        const bool isOne = key.text().size() == 1 && (isDigit(key.text().front()) || isBetween(key.text().front()));
        if (!isOne || !isPlain || (m_typed.isEmpty() && (!canBegin() || !isDigit(key.text().front())))) {
            return false;
        }
        if (m_typed.isEmpty()) {
            m_base = m_edit->date();
        }
        if (DateTyping::isBeginning(m_typed + key.text())) {
            show(m_typed + key.text());
        } else {
            QApplication::beep();
        }
        return true;
    }

    void show(const QString &typed)
    {
        m_typed = typed;
        m_edit->setDate(DateTyping::typedDate(typed, m_base, Clock::now().date().year()).value_or(m_base));
        if (!typed.isEmpty()) {
            const QSignalBlocker blocker(m_text); // the field would take it for a text in its own form
            const QValidator *validator = m_text->validator(); // and would complete it
            m_text->setValidator(nullptr);
            m_text->setText(typed);
            m_text->setValidator(validator);
        }
    }

    void finish()
    {
        if (m_typed.isEmpty()) {
            return;
        }
        if (!DateTyping::typedDate(m_typed, m_base, Clock::now().date().year())) {
            QApplication::beep();
        }
        constexpr std::array sections { QDateTimeEdit::DaySection, QDateTimeEdit::MonthSection,
            QDateTimeEdit::YearSection };
        const auto last = static_cast<std::size_t>(partsOf(m_typed).size()) - 1;
        m_typed.clear();
        m_edit->setDate(m_edit->date()); // shows it in the field's own form
        m_edit->setCurrentSection(sections.at(last)); // from where Tab goes on
    }

    QDateEdit *m_edit;
    QLineEdit *m_text;
    QString m_typed; // empty while nobody types
    QDate m_base; // before typing
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
