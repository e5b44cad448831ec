#include "store/neededrow.h"

#include <QCoreApplication>

using namespace Qt::StringLiterals;

NeededRow neededGroup(int groupId)
{
    return { u"SELECT COUNT(*) FROM locomotive WHERE id = %1"_s.arg(groupId),
        QCoreApplication::translate(
            "NeededRow", "Die Gruppe ist nicht mehr vorhanden, sie wurde inzwischen gelöscht.") };
}

NeededRow neededModel(int modelId)
{
    return { u"SELECT COUNT(*) FROM loc_model WHERE id = %1"_s.arg(modelId),
        QCoreApplication::translate(
            "NeededRow", "Die Baureihe ist nicht mehr vorhanden, sie wurde inzwischen gelöscht.") };
}

NeededRow neededEntry(int entryId)
{
    return { u"SELECT COUNT(*) FROM loc_seen WHERE id = %1"_s.arg(entryId),
        QCoreApplication::translate(
            "NeededRow", "Der Eintrag ist nicht mehr vorhanden, er wurde inzwischen gelöscht.") };
}

NeededRow neededRoom(int entryId)
{
    return { u"SELECT COUNT(*) < %1 FROM loc_picture WHERE locpictureid = %2"_s.arg(
                 QString::number(MostPictures), QString::number(entryId)),
        QCoreApplication::translate("LocseenForm", "Es sind max. 6 Bilder pro Eintrag zulässig!") };
}
