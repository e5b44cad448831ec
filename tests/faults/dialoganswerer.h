#pragma once

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QWidget>

#include <functional>

/// Answers modal dialogs by their titles while something may go wrong: whatever box comes up is noted and closed,
/// questions are answered with "Ja" unless told otherwise, and a dialog that nobody expects is closed.
class DialogAnswerer final : public QObject
{
    Q_OBJECT

public:
    using Answer = std::function<void(QWidget *)>;

    DialogAnswerer();
    ~DialogAnswerer() override;

    /// For the next dialog with this window title. The answer has to close it.
    void on(const QString &title, Answer answer);

    /// For all dialogs with this title that no on() was called for.
    void always(const QString &title, Answer answer);

    /// The answer to all questions from now on.
    void setConsent(bool consent) { m_consent = consent; }

    /// For all file dialogs from now on.
    void setFile(const QString &path) { m_file = path; }

    /// "title|text" of the boxes that told something, since the last call.
    QStringList takeBoxes();

    /// How many of them there were at all.
    [[nodiscard]] int boxCount() const { return m_boxCount; }

    /// Clicks the button with this text; false when there is none that is enabled.
    static bool click(QWidget *widget, const QString &text);

private:
    void schedule();
    void look();
    void answerBox(QWidget *box);
    void answerDialog(QWidget *dialog);
    void note(const QString &box);

    QHash<QString, QList<Answer>> m_answers;
    QHash<QString, Answer> m_standing;
    bool m_consent = true;
    QList<QPointer<QWidget>> m_seen;
    QString m_file;
    QStringList m_boxes;
    int m_boxCount = 0;
};
