#include "tests/faults/trial.h"

#include "store/colorsetting.h"
#include "tests/faults/faultfolder.h"

#include <QApplication>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <algorithm>
#include <cstring>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString Deleted = u"14201"_s; // the entry that a step deletes

/// The title of a box in known words; else the whole box, which then is like nothing expected.
QString kindOf(const QString &box)
{
    static const QRegularExpression database(
        u"^(DB-Insert|DB-Update|DB-Delete|DB-Löschen)\\|"
        "(disk I/O error|database or disk is full|unable to open database file|database is locked|"
        "attempt to write a readonly database) "
        "(Der Datensatz konnte nicht abgeholt werden|Die Abfrage konnte nicht ausgeführt werden)$"_s);
    if (box == u"File-Info|Die Bild-Datei konnte nicht gespeichert werden!"_s) {
        return u"File-Info"_s;
    }
    const QRegularExpressionMatch match = database.match(box);
    return match.hasMatch() ? match.captured(1) : box;
}

/// The kinds of the boxes of a click divided by "/", and the clicks by ";".
QString kindsOf(const QList<QStringList> &boxes)
{
    QStringList clicks;
    for (const QStringList &ofClick : boxes) {
        QStringList kinds;
        std::transform(ofClick.cbegin(), ofClick.cend(), std::back_inserter(kinds), kindOf);
        clicks.append(kinds.join(u'/'));
    }
    return clicks.join(u';');
}

/// A step with a fault in its calls.
class FaultyRun final
{
public:
    FaultyRun(const Trial &trial, const FailingCalls::Fault &fault);

    void run() { m_trial.step.run(m_user); }
    Outcome outcome();

private:
    void arm();
    void noteBoxes();
    void look();
    void pressAgain();
    void doAgain();

    const Trial &m_trial;
    FailingCalls::Fault m_fault;
    CatalogueUser m_user;
    bool m_isArmed = false;
    Outcome m_outcome;
};

FaultyRun::FaultyRun(const Trial &trial, const FailingCalls::Fault &fault)
    : m_trial(trial)
    , m_fault(fault)
{
    m_user.setSavingHooks([this] { arm(); }, [this] { noteBoxes(); });
}

Outcome FaultyRun::outcome()
{
    run();
    if (!m_outcome.isPressedAgain) {
        look();
        m_outcome.boxes.append(m_user.takeBoxes());
        doAgain();
    }
    const QString folder = QDir::currentPath();
    m_outcome.stateAfterwards = catalogueDump(folder, true);
    m_outcome.boxesAfterwards += m_user.takeBoxes();
    m_outcome.damagesAfterwards = damages(folder);
    return m_outcome;
}

/// Only once, so that the calls are counted over all clicks of the step.
void FaultyRun::arm()
{
    if (!std::exchange(m_isArmed, true)) {
        FailingCalls::arm(QDir::currentPath().toUtf8(), m_fault);
    }
}

void FaultyRun::noteBoxes()
{
    m_outcome.boxes.append(m_user.takeBoxes());
    const bool isPictureForm = m_trial.step.name.startsWith(u"addP"_s); // the one that can be used again
    if (isPictureForm && m_fault.at % 2 == 1 && !m_outcome.boxes.last().isEmpty()) {
        pressAgain();
    }
}

void FaultyRun::look()
{
    FailingCalls::disarm();
    m_outcome.log = FailingCalls::log();
    const QString folder = QDir::currentPath();
    m_outcome.state = catalogueDump(folder, true);
    const int removal = firstRemoval(m_outcome.log);
    const QStringList all = damages(folder);
    const bool mayLoseCopies = m_outcome.state == m_trial.states.first() && removal > 0 && removal <= m_fault.at;
    m_outcome.damages = mayLoseCopies ? damages(folder, m_trial.deleted()) : all;
    m_outcome.lostCopies = m_outcome.damages.size() < all.size();
}

/// The same button in the same form, now without the fault.
void FaultyRun::pressAgain()
{
    look();
    m_outcome.boxes.append(QStringList());
    m_outcome.isPressedAgain = true;
    QWidget *form = QApplication::activeModalWidget();
    if (!form || !DialogAnswerer::click(form, u"Bild speichern"_s)) {
        m_outcome.boxesAfterwards.append(u"nothing to press again"_s);
    }
}

void FaultyRun::doAgain()
{
    if (m_user.isOpen() && m_fault.mode != FailingCalls::CountOnly) {
        m_user.setSavingHooks({}, {});
        run();
    }
}

} // namespace

QString Trial::deleted() const
{
    return step.mayLoseCopies ? Deleted : QString();
}

bool Trial::storesPictureFirst() const
{
    return step.name.contains(u"Group"_s) && states.size() > 2;
}

QString Trial::wrongTelling(const QList<QStringList> &boxes, bool forever, bool isStored) const
{
    const QString shown = kindsOf(boxes);
    const bool isSilent = QString(shown).remove(u';').isEmpty();
    if (step.failureTitle.isEmpty()) {
        return isSilent ? QString() : shown; // lost choices are worth no box
    }
    const QStringList expected = tellings(forever, isStored);
    return (isSilent && isStored) || expected.contains(shown)
        ? QString()
        : u"boxes: %1 in place of %2"_s.arg(shown, expected.join(u" or "_s));
}

/// As kindsOf() puts them.
QStringList Trial::tellings(bool forever, bool isStored) const
{
    // Where the last call of a commit has failed, the row is there, and a further try finds nothing left to write.
    const QString further
        = forever && !isStored ? QStringList(step.furtherTries, step.failureTitle).join(u'/') : QString();
    QStringList expected { step.failureTitle + u';' + further };
    if (step.storesPicture()) {
        expected.append(u"File-Info;"_s);
    }
    if (!storesPictureFirst()) {
        return expected;
    }
    const bool isNew = step.name == u"addGroup"_s;
    if (isNew && forever) { // the group's form tries to store a picture that was chosen and not stored
        expected = { u"DB-Insert;DB-Insert;"_s, u"File-Info;DB-Insert;"_s, u"File-Info;File-Info;"_s };
    } else if (isNew) {
        expected = { u"DB-Insert;;"_s, u"File-Info;;"_s };
    }
    expected.append(isNew ? u";DB-Insert;"_s : u"DB-Update;"_s);
    if (forever) { // the picture that a group did not get cannot be taken back, unless it may be the group's after all
        expected.append(isNew ? u";DB-Insert;DB-Delete"_s : u"DB-Update/DB-Delete;"_s);
    }
    return expected;
}

Outcome outcomeOfFault(const Trial &trial, const FailingCalls::Fault &fault)
{
    setSteadyClock();
    return FaultyRun(trial, fault).outcome();
}

void runIntoKill(const Trial &trial, const FailingCalls::Fault &fault)
{
    setSteadyClock();
    FaultyRun(trial, fault).run();
}

Outcome outcomeOfStart(const QString &folder, const QString &deleted)
{
    QDir::setCurrent(folder);
    CatalogueUser user;
    user.search(u"Krokodile"_s, u"Ce 6/8 II"_s);
    Outcome outcome;
    outcome.state = catalogueDump(folder, true);
    outcome.boxes.append(user.takeBoxes());
    outcome.damages = damages(folder, deleted);
    outcome.lostCopies = outcome.damages.size() < damages(folder).size();
    return outcome;
}

int callNumber(const QByteArray &log, const QByteArray &call)
{
    const QList<QByteArray> lines = log.split('\n');
    for (const QByteArray &line : lines) {
        const qsizetype blank = line.indexOf(' ');
        if (line.sliced(blank + 1).startsWith(call)) {
            return line.first(blank).toInt();
        }
    }
    return 0;
}

int firstRemoval(const QByteArray &log)
{
    return callNumber(log, "unlink " + Deleted.toLatin1());
}

bool hasAllLines(const QString &state, const QString &wanted)
{
    const QStringList lines = state.split(u'\n');
    const QStringList needed = wanted.split(u'\n');
    return std::all_of(needed.cbegin(), needed.cend(), [&lines](const QString &line) { return lines.contains(line); });
}

void reportOutcome(const Outcome &outcome)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << outcome.log << outcome.state << outcome.boxes << outcome.damages << outcome.lostCopies
           << outcome.isPressedAgain << outcome.stateAfterwards << outcome.boxesAfterwards << outcome.damagesAfterwards;
    ForkedRun::report(QString::fromLatin1(bytes.toBase64()));
}

Outcome outcomeOf(const ForkedRun::End &end)
{
    if (!end.isGood() || end.lines.size() != 1) {
        qFatal("%s", qUtf8Printable(end.description()));
    }
    QDataStream stream(QByteArray::fromBase64(end.lines.first().toLatin1()));
    Outcome outcome;
    stream >> outcome.log >> outcome.state >> outcome.boxes >> outcome.damages >> outcome.lostCopies
        >> outcome.isPressedAgain >> outcome.stateAfterwards >> outcome.boxesAfterwards >> outcome.damagesAfterwards;
    return outcome;
}

const char *description(const FailingCalls::Fault &fault, const Outcome &outcome)
{
    static QByteArray text;
    text = u"mode %1, call %2 (%5), error %3%4; boxes: %6; damages: %7; state:\n%8\nafterwards:\n%9\n"_s
               .arg(QString::number(fault.mode), QString::number(fault.at),
                   QString::fromUtf8(std::strerror(fault.error)), fault.forever ? u" for ever"_s : QString(),
                   QString::fromUtf8(outcome.log.split('\n').value(fault.at - 1)), kindsOf(outcome.boxes),
                   outcome.damages.join(u" / "_s), outcome.state, outcome.stateAfterwards)
               .toUtf8()
        + (outcome.boxesAfterwards + outcome.damagesAfterwards).join(u" / "_s).toUtf8();
    return text.constData();
}

void fillStore(const QString &folder)
{
    constexpr int Files = 97; // three are there
    const QString store = folder + u"/Data/Pictures/Folder001/"_s;
    for (int i = 0; i < Files; ++i) {
        if (!QFile::copy(store + u"142010.jpg"_s, store + u"alt%1.jpg"_s.arg(i))) {
            qFatal("cannot fill %s", qUtf8Printable(store));
        }
    }
}

SavingStep stepIntoNewFolder(const QString &photographs)
{
    const auto addPicture = [=](CatalogueUser &user) {
        user.search(u"Krokodile"_s, u"Ce 6/8 II"_s);
        PictureStore &store = ColorSetting::instance().pictureStore();
        while (store.countdown() > 1) {
            store.noteStored(true);
        }
        user.addPicture(u"14203"_s, photographs + u"/klein.jpg"_s);
    };
    return { u"addPictureAndFolder"_s, addPicture, u"DB-Insert"_s };
}
