#pragma once

#include "tests/faults/dialoganswerer.h"
#include "tests/support/browserwindow.h"

#include <QDate>

#include <functional>
#include <memory>

/// A user of the real program in the working folder, who uses the main window and its dialogs with mouse and keyboard
/// and goes on whatever boxes come up. Start-up opens the catalogue as the program does.
class CatalogueUser final
{
public:
    /// Around each click that stores or deletes something.
    using SavingHook = std::function<void()>;

    CatalogueUser();
    ~CatalogueUser();
    Q_DISABLE_COPY_MOVE(CatalogueUser)

    void setSavingHooks(SavingHook before, SavingHook after);

    /// Whether there is a main window: start-up has found a catalogue, and nobody has shut down.
    [[nodiscard]] bool isOpen() const { return m_browser != nullptr; }

    /// The boxes that told something since the last call.
    QStringList takeBoxes() { return m_answers.takeBoxes(); }

    [[nodiscard]] BrowserWindow &browser() const { return *m_browser; }

    void addGroup(const QString &name, const QString &picture);
    void saveGroupPicture(const QString &picture); // and then leaves the group unsaved
    void changeGroupPicture(const QString &name, const QString &picture);
    void deleteGroup(const QString &name);
    void addClass(const QString &group, const QString &name);
    void moveClass(const QString &group, const QString &name, const QString &toGroup);
    void deleteClass(const QString &group, const QString &name);

    void addEntry(const QString &group, const QString &model, const QString &number, const QString &place,
        const QString &comment);
    /// Lists the class, so that its entries can be reached.
    void search(const QString &group, const QString &model);
    void editEntry(const QString &number, const QString &addedToPlace, bool byClosing = false);
    void addPicture(const QString &number, const QString &picture);
    void deletePicture(const QString &number);
    void deleteEntry(const QString &number);

    void shutDown(const QString &color = {});

private:
    using Answer = DialogAnswerer::Answer;

    void clickGroup(const QString &name);
    void openGroupForm(const Answer &answer);
    void openClassForm(const QString &group, const Answer &answer);
    void openEntryForm(const QString &number, const Answer &answer);
    void savePicture(QWidget *form);
    void store(const std::function<void()> &click);
    void storeBy(QWidget *form, const QString &button);
    [[nodiscard]] EntryBlock *blockOf(const QString &number) const;

    SavingHook m_before;
    SavingHook m_after;
    DialogAnswerer m_answers;
    std::unique_ptr<BrowserWindow> m_browser;
};
