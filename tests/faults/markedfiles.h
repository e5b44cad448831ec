#pragma once

#include "forms/picturefiledialog.h"

class PicturePreview;
class QTreeView;

/// The file dialog on a folder of pictures, in which a user marks one file after the other to look at it.
class MarkedFiles final
{
public:
    enum Outcome { Nothing, Notice, Picture }; // of the preview

    /// Waits until the dialog lists so many files; the program ends when it does not.
    MarkedFiles(const QString &folder, int files);

    /// Moves to the file with this name and waits for the preview.
    [[nodiscard]] Outcome mark(const QString &name);

private:
    PictureFileDialog m_dialog;
    QTreeView *m_list;
    PicturePreview *m_preview;
};
