#pragma once

class QString;
class QWidget;

/// Hands the user's own photograph to the desktop's viewer, or says in a box why that is not possible.
/// Never opens anything but a regular file, and that only for reading.
void openSourcePicture(const QString &path, QWidget *parent);
