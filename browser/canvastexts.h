#pragma once

#include <QDate>
#include <QString>

/// The texts that the canvas composes. All are plain text.
namespace CanvasTexts {

/// A stored text as one line that fits the canvas: control characters become blanks, an endless text is cut.
[[nodiscard]] QString shown(const QString &stored);

/// dd.MM.yyyy; "Datum unbekannt" for an invalid date.
[[nodiscard]] QString date(const QDate &date);

/// The part of the page that is loaded; empty when everything fits on one page.
[[nodiscard]] QString pageLabel(int entries, int position, bool once);

/// Begins with a blank when the page label is empty.
[[nodiscard]] QString progressLabel(int entries, int position, bool once);

/// While all entries of one number are loaded, which has no pages.
[[nodiscard]] QString listingProgressLabel(int entries);

/// "41 Einträge der Baureihe Re 4/4"; the count is that of the class, not of the filtered result.
[[nodiscard]] QString resultCaption(int entries, const QString &modelName);

/// "3 Einträge der Re 4/4 11108".
[[nodiscard]] QString listingCaption(int entries, const QString &modelName, const QString &number);

/// "keine Bilder", "1 Bild", "2 Bilder".
[[nodiscard]] QString pictureCount(int pictures);

/// Which of the pictures are shown, from index `first` on, where they do not all fit side by side.
[[nodiscard]] QString picturesShown(int first, int pictures);

/// "Bild 2 von 5": the picture at `index`, counted from 0, for screen readers.
[[nodiscard]] QString pictureName(int index, int pictures);

} // namespace CanvasTexts
