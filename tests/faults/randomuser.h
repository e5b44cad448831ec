#pragma once

#include "tests/faults/belief.h"
#include "tests/faults/dialoganswerer.h"
#include "tests/support/browserwindow.h"

#include <QDate>
#include <QList>
#include <QMap>
#include <QRandomGenerator>

#include <memory>

/// A user who clicks about in the real program at random: searches, pages, listings, pictures, colours, and all forms.
/// The same seed on the same catalogue does the same.
class RandomUser final
{
public:
    enum Manner {
        LookOnly, // opens and shows everything, but types nothing, saves nothing and says "Nein"
        Work,
    };

    /// `photographs` is the folder of makeSamplePhotographs(). Start-up opens the catalogue in the working folder.
    RandomUser(quint32 seed, Manner manner, const QString &photographs);
    ~RandomUser();
    Q_DISABLE_COPY_MOVE(RandomUser)

    /// Lets this user wait for up to so many ms with an edited entry open, while others may change it.
    void setHesitation(int longest) { m_hesitation = longest; }

    void act();

    /// How often each thing was really done: the forms that opened by their titles, "searched", "listed" (the entries
    /// of one number) and "deleted" (an entry whose row is gone). Never done is 0.
    using Deeds = QMap<QString, int>;
    [[nodiscard]] const Deeds &deeds() const { return m_deeds; }

    /// The deeds as lines, to hand them over from one process to another, and what was added up of such lines.
    [[nodiscard]] static QStringList deedLines(const Deeds &deeds);
    static void addDeeds(Deeds &sum, const QStringList &lines);

    /// What was saved since the last call without a box, in order. Deletions are not among it, nor the picture that a
    /// group gets in exchange.
    [[nodiscard]] QList<Belief> takeBeliefs();

    [[nodiscard]] BrowserWindow &browser() const { return *m_browser; }
    QStringList takeBoxes() { return m_answers.takeBoxes(); }

private:
    void searchSomeGroup();
    void pressSomeButton();
    void press(ButtonItem *button);
    void pickSomeColor();
    void maintainGroups();

    void answerOptions(QWidget *options);
    void answerEntry(QWidget *form);
    void editEntry(QWidget *form, QMap<QString, QString> &values);
    void usePictures(QWidget *form);
    void closeEntry(QWidget *form, const Belief &belief);
    void answerPicture(QWidget *form);
    void answerGroups(QWidget *form);
    void answerMove(QWidget *form);
    void answerClasses(QWidget *form);

    [[nodiscard]] bool chance(int percent) { return m_random.bounded(100) < percent; }
    [[nodiscard]] bool works(int percent) { return m_manner == Work && chance(percent); }
    [[nodiscard]] static int countEntries(); // 0 when they cannot be counted
    [[nodiscard]] QDate unusedDate();
    bool saveBy(QWidget *form, const QString &button, const Belief &belief);
    static void leave(QWidget *form);
    QString chooseSomeRow(const QWidget *form);
    bool type(QWidget *form, const QString &field, int length);
    [[nodiscard]] static QString textOf(const QWidget *form, const QString &field);

    QRandomGenerator m_random;
    Manner m_manner;
    QString m_photographs;
    int m_hesitation = 0; // ms at most
    int m_lastDay; // that was chosen, counted from 1800 on
    QList<Belief> m_beliefs;
    Deeds m_deeds { { QStringLiteral("searched"), 0 }, { QStringLiteral("listed"), 0 },
        { QStringLiteral("deleted"), 0 } };
    DialogAnswerer m_answers;
    std::unique_ptr<BrowserWindow> m_browser;
};
