#pragma once

#include <QString>

/// The catalogue's database file, relative to the working folder.
[[nodiscard]] QString databasePath();

/// Opens the catalogue under the default connection name, making the file when it is missing. On failure shows the
/// driver's text in a warning and returns false; on success the connection stays open for the whole run.
[[nodiscard]] bool connectDatabase();

enum class Existing {
    Replace, // what is there is destroyed
    Keep, // nothing is done unless the database holds nothing
};

/// Drops and makes all tables and inserts the default settings, as one transaction. Failures are not reported.
void createTables(Existing existing = Existing::Replace);

/// Whether the open database provably holds nothing at all; false also when it cannot be read.
[[nodiscard]] bool isDatabaseEmpty();
