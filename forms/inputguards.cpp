#include "forms/inputguards.h"

#include <QDateEdit>
#include <QEvent>
#include <QLineEdit>
#include <QValidator>

#include <algorithm>

namespace {

bool breaksLine(QChar character)
{
    return character.category() == QChar::Other_Control || character == QChar::LineSeparator
        || character == QChar::ParagraphSeparator;
}

QString onOneLine(const QString &text)
{
    const auto first = std::find_if_not(text.cbegin(), text.cend(), breaksLine);
    const auto last = std::find_if_not(text.crbegin(), std::make_reverse_iterator(first), breaksLine).base();
    QString line(first, last - first);
    std::replace_if(line.begin(), line.end(), breaksLine, QChar(u' '));
    return line;
}

/// Refuses nothing, but straightens what comes in.
class OneLineValidator final : public QValidator
{
public:
    using QValidator::QValidator;

    State validate(QString &input, int &position) const override
    {
        input = onOneLine(input);
        position = std::min(position, int(input.size()));
        return Acceptable;
    }
};

class WheelFilter final : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const auto *field = static_cast<QWidget *>(watched);
        if (event->type() != QEvent::Wheel || field->hasFocus()) {
            return QObject::eventFilter(watched, event);
        }
        event->ignore(); // whatever lies around the field may scroll
        return true;
    }
};

} // namespace

void InputGuards::keepOnOneLine(QLineEdit *edit)
{
    edit->setValidator(new OneLineValidator(edit));
}

void InputGuards::ignoreWheelWithoutFocus(QDateEdit *edit)
{
    edit->setFocusPolicy(Qt::StrongFocus);
    edit->installEventFilter(new WheelFilter(edit));
}
