#pragma once

#include "tests/faults/dialoganswerer.h"

#include <QGenericPlugin>

/// A user inside the real program, which loads him as a plug-in when the environment says so: the executable can then
/// be killed as it is, while it stores something. He knows the windows by their names only, and says on the standard
/// output "window" when the main window stands, "entry 1", "picture 1", "class 1" and so on whenever a saving click
/// has returned, and "closed" at the end.
class ScriptedUser final : public QObject
{
    Q_OBJECT

public:
    /// Without a photograph he only looks and leaves.
    explicit ScriptedUser(const QString &photograph);

private:
    void waitForWindow();
    void work();

    void openNewEntry(QWidget *options);
    void addEntry(QWidget *form);
    void addPicture(QWidget *form);
    void openClasses(QWidget *form);
    void addClass(QWidget *form);
    void store(QWidget *form, const QString &button, const QString &what);

    QString m_photograph;
    DialogAnswerer m_answers;
    int m_evening = 0;
};

class ScriptedUserPlugin final : public QGenericPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "scripteduser.json")

public:
    QObject *create(const QString &key, const QString &option) override;
};
