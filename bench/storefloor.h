#pragma once

#include <QString>

/// What any program must at least do to know the catalogue in the working folder; written without the program's code.
namespace StoreFloor {

/// Visible files in the numbered folders, by plain directory reading.
[[nodiscard]] int countFiles();

/// Opens the catalogue and counts the pictures that are not in the auxiliary folder.
[[nodiscard]] int countPictures();

} // namespace StoreFloor
