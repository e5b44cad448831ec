#pragma once

#include <QStringList>

/// The positions in a class's result list at which a search may start: "1" and, for classes that are long enough to
/// be worth it, the last entry of each page. The last one may equal `entries`, which starts behind the last entry.
[[nodiscard]] QStringList startPositions(int entries);

/// The first entry shown for an offered position: the pages begin just after the entry that is named, except the first.
constexpr int firstEntryFor(int position)
{
    return position < 2 ? position : position + 1;
}
static_assert(firstEntryFor(1) == 1 && firstEntryFor(40) == 41);
