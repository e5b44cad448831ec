#pragma once

#include <QDateTime>

#include <functional>

/// The one place that reads the wall clock, so that a test can set the time that names copies and draws pictures.
namespace Clock {

[[nodiscard]] QDateTime now();

/// Replaces the source of time for the whole process; an empty function restores the system clock.
void setSource(std::function<QDateTime()> source);

} // namespace Clock
