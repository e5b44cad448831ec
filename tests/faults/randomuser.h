#pragma once

#include "tests/faults/dialoganswerer.h"
#include "tests/support/browserwindow.h"

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

    [[nodiscard]] BrowserWindow &browser() const { return *m_browser; }
    QStringList takeBoxes() { return m_answers.takeBoxes(); }

private:
    void searchSomeGroup();
    void pressSomeButton();
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
    DialogAnswerer m_answers;
    std::unique_ptr<BrowserWindow> m_browser;
};
