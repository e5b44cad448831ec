#pragma once

#include <QList>
#include <QSize>
#include <QString>

class Browsing;
class QGraphicsItem;
struct SearchParameters;

/// A photograph on the canvas: the file of its copy and the size at which it is drawn.
struct ShownPicture
{
    QString path;
    QSize size;
};

/// Those among `items` on the canvas that shows the results.
[[nodiscard]] QList<ShownPicture> shownPictures(const Browsing &browsing, const QList<QGraphicsItem *> &items);

/// The least that showing a page takes, whatever the program looks like: count, class list, pictures of the page, and
/// decoding those that are to be seen. Written with plain Qt, without the program's code.
class PageFloor final
{
public:
    /// Remembers what the page that stands on the canvas shows.
    PageFloor(const Browsing &browsing, const SearchParameters &parameters);

    /// Milliseconds. Once mode needs one grouped count of the numbers more.
    [[nodiscard]] double take() const;

    /// Those of the decoding alone.
    [[nodiscard]] double takeDecoding() const;

private:
    QString m_count;
    QString m_list;
    QString m_pictures;
    QString m_groupedCount; // empty unless in once mode
    QList<ShownPicture> m_visible;
};

/// Decodes the files at these sizes, as far reduced as the decoder can.
void decodePlainly(const QList<ShownPicture> &pictures);
