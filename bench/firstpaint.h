#pragma once

#include <QApplication>

/// Silences messages. Prints {"ms": …, "rss": …} once a graphics view has been painted for the first time, and lets the
/// program end then. `ms` counts from `startedAt`, a reading of nowMs() that whoever started this process took.
void reportFirstPaint(QApplication &application, double startedAt);

/// Keeps everything but failures off the error output: thousands of windows are made here, and some talk.
void silenceMessages();

/// Milliseconds on the clock that all processes of the machine share.
[[nodiscard]] double nowMs();

/// Resident memory of this process in kilobytes.
[[nodiscard]] int residentKb();
