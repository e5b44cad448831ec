#pragma once

#include "bench/measure.h"

#include <QStringList>

/// Every kind of measurement is a process of its own in the folder of its catalogue, so that none lives on the memory
/// and the caches that another has left.
namespace Children {

/// Runs what a child was started for; `arguments` are those behind "--child". Returns the exit code.
int runAsChild(const QStringList &arguments);

/// Starts a child in `folder` and reads what it has measured. Ends the program when the child fails.
[[nodiscard]] Timings run(const QString &folder, const QStringList &arguments);

/// Starts another program of the build in `folder`; it prints its milliseconds and memory at the first paint. It is
/// painted on the X server `screen`, or on none when that is empty.
struct Start
{
    double ms = 0;
    double memory = 0; // kilobytes
};
[[nodiscard]] Start start(const QString &program, const QString &folder, const QString &screen);

} // namespace Children
