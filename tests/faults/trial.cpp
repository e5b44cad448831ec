#include "tests/faults/trial.h"

#include "store/colorsetting.h"

#include <QDataStream>
#include <QFile>

#include <algorithm>
#include <cstring>

using namespace Qt::StringLiterals;

QString Trial::deleted() const
{
    return step.mayLoseCopies ? u"14201"_s : QString();
}

bool Trial::storesPictureFirst() const
{
    return step.name.contains(u"Group"_s) && states.size() > 2;
}

int Trial::attempts() const
{
    if (step.name == u"editEntry"_s) {
        return 3; // by "Speichern" and by the first and the second "Schliessen"
    }
    if (step.name == u"editByClosing"_s) {
        return 2;
    }
    return storesPictureFirst() ? 2 : 1; // also when the group form stores or takes back what the picture form has not
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
    stream << outcome.log << outcome.state << outcome.boxes << outcome.damages << outcome.stateAfterwards
           << outcome.boxesAfterwards << outcome.damagesAfterwards;
    ForkedRun::report(QString::fromLatin1(bytes.toBase64()));
}

Outcome outcomeOf(const ForkedRun::End &end)
{
    if (!end.isGood() || end.lines.size() != 1) {
        qFatal("%s", qUtf8Printable(end.description()));
    }
    QDataStream stream(QByteArray::fromBase64(end.lines.first().toLatin1()));
    Outcome outcome;
    stream >> outcome.log >> outcome.state >> outcome.boxes >> outcome.damages >> outcome.stateAfterwards
        >> outcome.boxesAfterwards >> outcome.damagesAfterwards;
    return outcome;
}

const char *description(const FailingCalls::Fault &fault, const Outcome &outcome)
{
    static QByteArray text;
    text = u"mode %1, call %2 (%5), error %3%4; boxes: %6; damages: %7; state:\n%8\nafterwards:\n%9\n"_s
               .arg(QString::number(fault.mode), QString::number(fault.at),
                   QString::fromUtf8(std::strerror(fault.error)), fault.forever ? u" for ever"_s : QString(),
                   QString::fromUtf8(outcome.log.split('\n').value(fault.at - 1)), outcome.boxes.join(u" / "_s),
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
    return { u"addPictureAndFolder"_s, addPicture };
}
