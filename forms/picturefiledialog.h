#pragma once

#include <QFileDialog>

class PicturePreview;
class QTimer;

/// The toolkit's file dialog for choosing one picture, with a preview beside the list, because the names that cameras
/// give tell nothing. It is not the desktop's own, which would not be German everywhere.
class PictureFileDialog final : public QFileDialog
{
    Q_OBJECT

public:
    PictureFileDialog(QWidget *parent, const QString &title, const QString &folder, const QString &filter);

private:
    void widenList();
    void addPreview();
    void showMarked();

    PicturePreview *m_preview = nullptr;
    QTimer *m_pause = nullptr;
    QString m_marked; // path
};
