#pragma once

#include <QString>

/// Lays a small catalogue into `folder` (made when missing) with rows and copies as the program makes them: the groups
/// "Krokodile" (class "Ce 6/8 II" with the entries 14201 with two pictures, 14202 with one and 14203 with none, class
/// "Leer") and "Leere Gruppe". Runs in this process, on the default connection, and closes it again.
void makeSampleCatalogue(const QString &folder);

/// Photographs to choose, in `folder`: "klein.jpg", "gross.jpg" and "bild.png", all last changed on 17 May 2001, the
/// day on which the sample entries were seen, so that saving them changes no entry.
void makeSamplePhotographs(const QString &folder);
