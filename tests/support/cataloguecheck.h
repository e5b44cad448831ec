#pragma once

#include <QStringList>

/// What is wrong with the catalogue in the working folder `folder`, one German sentence each; empty when it is sound:
/// the database is whole, no row points at a missing one, dates are ISO, every copy lies in the store, is a
/// whole picture and belongs to one row, and every file of the store has its row. Reads only, on a connection of its
/// own.
[[nodiscard]] QStringList catalogueFindings(const QString &folder);
