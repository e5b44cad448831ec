#pragma once

#include <QStringView>

/// The items of the search options as a user reads them. They are compared as texts when a search is built, and
/// therefore not translated.
namespace SearchChoice {

inline constexpr QStringView Always = u"immer";
inline constexpr QStringView Once = u"nur einmal";

inline constexpr QStringView AllEntries = u"nein alle";
inline constexpr QStringView WithPictures = u"ja";

inline constexpr QStringView ByDate = u"Datum";
inline constexpr QStringView ByNumber = u"Nummer";
inline constexpr QStringView ByPlace = u"Ort";

} // namespace SearchChoice
