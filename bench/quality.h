#pragma once

#include <QString>

/// How close the copy that the program would make of the file comes to an area average of the whole source, in
/// decibels over all pixels and the three colours, before it is encoded.
[[nodiscard]] double copyQuality(const QString &path);

/// The same for a picture as the canvas shows it, 322 pixels wide.
[[nodiscard]] double shownQuality(const QString &path);
