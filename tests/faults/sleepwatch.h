#pragma once

#include <QtGlobal>

/// Ends this process when it sleeps for five seconds while the object lives: a hang that takes no processor time, as on
/// a pipe that nobody writes to. Time for which others have the processors is no sleep, so a busy machine is none, and
/// the limit is the same on every machine. Where the system does not tell one from the other, only the limit of a
/// minute by the clock holds. One object at a time.
class SleepWatch final
{
public:
    static constexpr int LongestSleep = 5; // seconds
    static constexpr int LongestTime = 60; // seconds, for whatever reason

    SleepWatch();
    ~SleepWatch();
    Q_DISABLE_COPY_MOVE(SleepWatch)
};
