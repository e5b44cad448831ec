#include "search/startposition.h"

using namespace Qt::StringLiterals;

namespace {

constexpr int Step = 40; // entries on a page
constexpr int ShortList = 60; // up to here a list always starts at its beginning

} // namespace

QStringList startPositions(int entries)
{
    QStringList positions { u"1"_s };
    if (entries > ShortList) {
        for (int page = 1; page <= entries / Step; ++page) {
            positions.append(QString::number(Step * page));
        }
    }
    return positions;
}
