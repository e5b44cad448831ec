#pragma once

#include "tests/faults/forkedrun.h"

/// Replaces the process, which must be one of ForkedRun, by the real program in `folder`. Inside it a ScriptedUser
/// works with `photograph`, or only looks if that is empty; what he says becomes the lines of the run. Never returns.
[[noreturn]] void becomeProgram(const QString &folder, const QString &photograph = {});
