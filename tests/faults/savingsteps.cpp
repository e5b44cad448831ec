#include "tests/faults/savingsteps.h"

#include "search/clock.h"
#include "tests/faults/failingcalls.h"
#include "tests/faults/faultfolder.h"
#include "tests/faults/forkedrun.h"

#include <QDir>
#include <QFile>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QString Group = u"Krokodile"_s;
const QString Model = u"Ce 6/8 II"_s;

/// Shows the class's entries first.
std::function<void(CatalogueUser &)> onList(std::function<void(CatalogueUser &)> action)
{
    return [action = std::move(action)](CatalogueUser &user) {
        user.search(Group, Model);
        action(user);
    };
}

QString separator()
{
    return u"\x1E"_s;
}

/// Copies the database file aside whenever a commit is complete.
class CommitWatch final
{
public:
    explicit CommitWatch(const QString &folder)
    {
        single = this;
        m_folder = folder;
        FailingCalls::setJournalHook([] { single->keep(); });
    }
    ~CommitWatch() { FailingCalls::setJournalHook(nullptr); }
    Q_DISABLE_COPY_MOVE(CommitWatch)

    [[nodiscard]] int commits() const { return m_commits; }

private:
    void keep()
    {
        ++m_commits;
        const QString target = m_folder + u"/%1/Data"_s.arg(m_commits);
        QDir().mkpath(target);
        QFile::copy(u"Data/bahnakte.dat"_s, target + u"/bahnakte.dat"_s);
    }

    static inline CommitWatch *single = nullptr;
    QString m_folder;
    int m_commits = 0;
};

} // namespace

void setSteadyClock()
{
    Clock::setSource([now = QDateTime(QDate(2024, 3, 2), QTime(14, 0))]() mutable {
        now = now.addMSecs(1);
        return now;
    });
}

QList<SavingStep> savingSteps(const QString &photographs)
{
    const QString small = photographs + u"/klein.jpg"_s;
    const QString large = photographs + u"/gross.jpg"_s;
    const QString png = photographs + u"/bild.png"_s;
    const QString insertion = u"DB-Insert"_s;
    const QString update = u"DB-Update"_s;
    const QString deletion = u"DB-Delete"_s;
    return {
        { u"addGroup"_s, [=](CatalogueUser &user) { user.addGroup(u"Neue Gruppe"_s, small); }, insertion, 1 },
        { u"changeGroupPicture"_s, [=](CatalogueUser &user) { user.changeGroupPicture(u"Neue Gruppe"_s, png); },
            insertion },
        { u"addClass"_s, [](CatalogueUser &user) { user.addClass(Group, u"Be 6/8 III"_s); }, insertion },
        { u"moveClass"_s, [](CatalogueUser &user) { user.moveClass(Group, u"Leer"_s, u"Neue Gruppe"_s); }, update },
        { u"addEntry"_s, [](CatalogueUser &user) { user.addEntry(Group, Model, u"14253"_s, u"Biasca"_s, u"neu"_s); },
            insertion },
        { u"addPicture"_s, onList([=](CatalogueUser &user) { user.addPicture(u"14203"_s, large); }), insertion },
        { u"addPng"_s, onList([=](CatalogueUser &user) { user.addPicture(u"14203"_s, png); }), insertion },
        { u"editEntry"_s, onList([](CatalogueUser &user) { user.editEntry(u"14202"_s, u" Nord"_s); }), update, 2 },
        { u"editByClosing"_s, onList([](CatalogueUser &user) { user.editEntry(u"14202"_s, u"ost"_s, true); }), update,
            1 },
        { u"deletePicture"_s, onList([](CatalogueUser &user) { user.deletePicture(u"14202"_s); }), deletion },
        { u"deleteEntry"_s, onList([](CatalogueUser &user) { user.deleteEntry(u"14201"_s); }), u"DB-Löschen"_s, 0,
            true },
        { u"deleteClass"_s, [](CatalogueUser &user) { user.deleteClass(Group, u"Be 6/8 III"_s); }, deletion },
        { u"deleteGroup"_s, [](CatalogueUser &user) { user.deleteGroup(u"Leere Gruppe"_s); }, deletion },
        { u"shutDown"_s, [](CatalogueUser &user) { user.shutDown(u"schwarz"_s); } },
    };
}

QString wrongBoxes(const SavingStep &step, const QList<QStringList> &boxes, const QStringList &reasons)
{
    QStringList allowed { u"File-Info|Die Bild-Datei konnte nicht gespeichert werden!"_s };
    for (const QString &reason : reasons) {
        allowed.append(step.failureTitle + u'|' + reason + u" Der Datensatz konnte nicht abgeholt werden"_s);
    }
    if (!step.storesPicture()) {
        allowed.removeFirst();
    }
    QStringList shown;
    for (const QStringList &ofClick : boxes) {
        shown.append(ofClick);
    }
    const bool isToldAtOnce = step.failureTitle.isEmpty() || boxes.value(0).size() == 1;
    const bool isKnown
        = std::all_of(shown.cbegin(), shown.cend(), [&allowed](const QString &box) { return allowed.contains(box); });
    const qsizetype expected = step.failureTitle.isEmpty() ? 0 : 1 + step.furtherTries;
    return isToldAtOnce && isKnown && shown.size() == expected
        ? QString()
        : u"boxes: "_s + shown.join(u" / "_s) + u" in place of "_s + allowed.join(u" or "_s);
}

Reference makeReference(const QString &sample, const QList<SavingStep> &steps, const QString &snapshots)
{
    const FaultFolder commits;
    const QString work = commits.path(u"work"_s);
    FaultFolder::copy(sample, work);
    const ForkedRun::End end = runForked([&] {
        setSteadyClock();
        QDir::setCurrent(work);
        CatalogueUser user;
        const CommitWatch watch(commits.path());
        for (int i = 0; i < steps.size(); ++i) {
            FaultFolder::copy(work, snapshots + u'/' + QString::number(i));
            steps.at(i).run(user);
            const QStringList boxes = user.takeBoxes();
            ForkedRun::report(QString::number(watch.commits()) + separator() + boxes.join(u'/'));
        }
    });
    Reference reference;
    for (const QString &line : end.lines) {
        reference.reached.append(line.section(separator(), 0, 0).toInt());
        if (!line.endsWith(separator())) {
            qFatal("unexpected box: %s", qUtf8Printable(line));
        }
    }
    if (!end.isGood() || reference.reached.size() != steps.size()) {
        qFatal("the steps do not work: %s", qUtf8Printable(end.description()));
    }
    reference.states.append(catalogueDump(sample, true));
    for (int i = 1; i <= reference.reached.last(); ++i) {
        reference.states.append(catalogueDump(commits.path(QString::number(i)), true));
    }
    return reference;
}
