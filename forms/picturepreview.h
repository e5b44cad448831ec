#pragma once

#include <QGraphicsView>

/// Shows one picture file, fitted into its scene and never enlarged. It shows no boxes: the form that owns it says what
/// went wrong.
class PicturePreview final : public QGraphicsView
{
    Q_OBJECT

public:
    static constexpr QSize DefaultSize { 330, 220 }; // most photographs are three by two

    /// `sceneSize` is in device-independent pixels; the view gets just the room to show it.
    explicit PicturePreview(QWidget *parent = nullptr, const QSize &sceneSize = DefaultSize);

    /// Shows the file in place of the present picture. False, with nothing changed, when it cannot be read.
    bool showFile(const QString &path);

    /// False when the image is null; then the view stays as it is.
    bool showImage(const QImage &picture);

    /// Says `notice` in the empty preview, by default that no picture is chosen.
    void clear(const QString &notice = {});

protected:
    /// An empty preview says so, else it looks like something that failed to load.
    void drawForeground(QPainter *painter, const QRectF &rect) override;

private:
    QString m_notice;
};
