#pragma once

#include <QTime>

/// Draws the row number of the start picture from the time of day: 0 when there are no `pictures`, else a number from
/// 1 to `pictures` - 1, and 1 when there is only one picture. Row 0 is thus drawn only for want of another.
[[nodiscard]] int randomPictureNumber(const QTime &time, int pictures);
