#pragma once

#include <QString>

class QWidget;

/// Asks for a picture file, starting in the folder that was last used in this run. Empty when the user cancels.
[[nodiscard]] QString choosePictureFile(QWidget *parent);
