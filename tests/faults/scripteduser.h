#pragma once

#include "browser/buttonitem.h"
#include "tests/faults/dialoganswerer.h"

#include <QGenericPlugin>

#include <functional>

/// A user inside the real program, which loads him as a plug-in when the environment says so: the executable can then
/// be killed as it is, while it stores something. He knows the windows by their names and the canvas by its buttons.
/// On the standard output he says "window" when the main window stands, "> entry 1" before a saving click and
/// "entry 1" when it has returned, and so on; at the end "> close" and "closed".
class ScriptedUser final : public QObject
{
    Q_OBJECT

public:
    /// Without a photograph he only looks and leaves.
    explicit ScriptedUser(const QString &photograph);

private:
    void waitForWindow();
    void work();
    void spendEvening();
    void leaveProgram();

    void clickGroup(const QString &wish);
    void clickOnCard(int entryId, ButtonKind kind);
    void answerOptions(QWidget *options);
    void answerEntry(QWidget *form);
    void addEntry(QWidget *form);
    void editEntry(QWidget *form);
    void addPicture(QWidget *form);
    void answerGroups(QWidget *form);
    void addGroup(QWidget *form);
    void addClass(QWidget *form);
    void store(QWidget *form, const QString &button, const QString &what);
    void storeBy(const std::function<bool()> &click, const QString &what);

    QString m_photograph;
    DialogAnswerer m_answers;
    int m_evening = 0;
    QString m_wish; // the button of the search options that is wanted
};

class ScriptedUserPlugin final : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "scripteduser.json")

public:
    QObject *create(const QString &key, const QString &option) override;
};
