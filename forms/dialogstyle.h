#pragma once

#include <QFont>
#include <QIcon>

/// The font of the dialogs' group boxes and captions.
[[nodiscard]] QFont dialogFont(int pointSize = 9);

/// The window icon of all dialogs, read from the working folder; empty where the file is missing.
[[nodiscard]] QIcon dialogIcon();
