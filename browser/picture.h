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
/// Only the file's header is read at first; the picture is decoded when it is painted for the first time, or before if
/// there is time for it.
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

    /// Decodes the picture before it is seen, for a screen of this scale. False when nothing was to be done, and for a
    /// file that no copy of ours would be as large as: it may take long, so it waits until somebody wants to see it.
    bool decodeAhead(double scale);

    [[nodiscard]] bool isDecoded() const { return !m_pixmap.isNull(); }

    /// Whether the file is still as it was when it was decoded.
    [[nodiscard]] bool isFileUnchanged() const;

    /// Outer edge of the frame, relative to the box.
    [[nodiscard]] QRectF frame() const { return m_frame; }

    [[nodiscard]] QRectF boundingRect() const override;

    /// The frame, without the margin for the focus mark.
    [[nodiscard]] QPainterPath shape() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

private:
    struct FileState
    {
        qint64 size = 0;
        qint64 modified = 0; // ms

        bool operator==(const FileState &) const = default;
    };

    [[nodiscard]] FileState fileState() const;
    [[nodiscard]] bool isDecodedFor(double scale) const;
    void place(const QSize &shown);
    void decode(double scale);
    void paintNotice(QPainter *painter) const;

    PicturePaths m_paths;
    QString m_name;
    bool m_isPlaceholder;
    QRect m_frame;
    QRect m_area; // of the photograph inside the frame
    QPixmap m_pixmap;
    FileState m_decodedFile; // the file at the time when it was decoded
    bool m_isQuick; // no larger than a copy of ours
    bool m_isAhead = false; // decoded, but not painted since
};
