#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QWidget>

#include <functional>

/// Answers modal dialogs from inside their event loops: each step is run once, in order, on the next modal widget
/// that appears. A step may open further dialogs, which the following steps then answer.
/// At the end a test compares problems() with an empty list: it names what was not as expected, steps never reached
/// included. A dialog that no step was written for is closed and counted as a problem.
/// Only one script may be alive at a time.
class ModalScript final : public QObject
{
    Q_OBJECT

public:
    using Step = std::function<void(QWidget *)>;

    ModalScript();
    ~ModalScript() override;

    /// Adds a step for the next modal widget.
    ModalScript &then(Step step);

    /// Expects a message box with exactly this title and text, and clicks the button with this text ("&" ignored).
    ModalScript &box(const QString &title, const QString &text, const QString &button = QStringLiteral("OK"));

    /// Expects a message box with this title and any non-empty text, and clicks OK.
    ModalScript &anyBox(const QString &title);

    /// Expects the picture file dialog and chooses `path` in it; an empty path cancels it.
    ModalScript &chooseFile(const QString &path);

    [[nodiscard]] QStringList problems() const;

    /// Clicks the button with this text in `widget`; adds a problem when there is none or it is disabled.
    void click(QWidget *widget, const QString &text);

private:
    void schedule();
    void look();
    void compare(const QString &what, const QString &actual, const QString &expected);

    QList<Step> m_steps;
    QList<QPointer<QWidget>> m_seen;
    QStringList m_problems;
};
