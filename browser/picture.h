#pragma once

#include <QGraphicsItem>
#include <QPixmap>
#include <QString>

/// One photograph of an entry: where its copy lies and which file of the user's it was made from.
struct PicturePaths
{
    QString copy;
    QString source;
};

/// A framed photograph on the canvas, fitted into a box and centred in it, never enlarged.
/// Only the file's header is read at first; the picture is decoded when it is painted for the first time.
class Picture final : public QGraphicsItem
{
public:
    enum { Type = UserType + 3 };

    /// `box` in scene pixels, frame included.
    Picture(const PicturePaths &paths, const QSize &box, QGraphicsItem *parent = nullptr);

    [[nodiscard]] int type() const override { return Type; }
    [[nodiscard]] QString sourcePath() const { return m_paths.source; }

    /// What the photograph is called by screen readers.
    void setName(const QString &name) { m_name = name; }
    [[nodiscard]] QString name() const;

    /// Whether a placeholder stands for the photograph, because its copy is missing or cannot be read.
    [[nodiscard]] bool isPlaceholder() const { return m_isPlaceholder; }

    /// Outer edge of the frame, relative to the box.
    [[nodiscard]] QRectF frame() const { return m_frame; }

    [[nodiscard]] QRectF boundingRect() const override;

    /// The frame, without the margin for the focus mark.
    [[nodiscard]] QPainterPath shape() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

private:
    void place(const QSize &shown);
    void decode(double scale);
    void paintNotice(QPainter *painter) const;

    PicturePaths m_paths;
    QString m_name;
    bool m_isPlaceholder;
    QRect m_frame;
    QRect m_area; // of the photograph inside the frame
    QPixmap m_pixmap;
};
