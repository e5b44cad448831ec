#pragma once

#include "tests/faults/dialoganswerer.h"
#include "tests/support/browserwindow.h"

#include <QMap>
#include <QRandomGenerator>

#include <memory>

class QAbstractItemView;

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

    void act();

    /// How often each thing was really done: the forms that opened by their titles, "searched", "listed" (the entries
    /// of one number) and "deleted" (an entry whose row is gone). Never done is 0.
    using Deeds = QMap<QString, int>;
    [[nodiscard]] const Deeds &deeds() const { return m_deeds; }

    /// The deeds as lines, to hand them over from one process to another, and what was added up of such lines.
    [[nodiscard]] static QStringList deedLines(const Deeds &deeds);
    static void addDeeds(Deeds &sum, const QStringList &lines);

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
    void answerPicture(QWidget *form);
    void answerGroups(QWidget *form);
    void answerMove(QWidget *form);
    void answerClasses(QWidget *form);

    [[nodiscard]] bool chance(int percent) { return m_random.bounded(100) < percent; }
    [[nodiscard]] bool works(int percent) { return m_manner == Work && chance(percent); }
    void chooseSomeRow(const QWidget *form);
    void type(QWidget *form, const QString &field, int length);

    QRandomGenerator m_random;
    Manner m_manner;
    QString m_photographs;
    Deeds m_deeds { { QStringLiteral("searched"), 0 }, { QStringLiteral("listed"), 0 },
        { QStringLiteral("deleted"), 0 } };
    DialogAnswerer m_answers;
    std::unique_ptr<BrowserWindow> m_browser;
};
