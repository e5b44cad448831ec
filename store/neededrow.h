#pragma once

#include <QString>

/// A row that must be there for a write to make sense: what hangs under a deleted row, nobody would ever see again.
struct NeededRow
{
    QString countStatement; // yields 0 when the row is gone
    QString missingText; // tells the user so
};

[[nodiscard]] NeededRow neededGroup(int groupId);
[[nodiscard]] NeededRow neededModel(int modelId);
[[nodiscard]] NeededRow neededEntry(int entryId);

constexpr int MostPictures = 6; // of one entry

/// Room for one more picture of the entry.
[[nodiscard]] NeededRow neededRoom(int entryId);
