#pragma once

#include <QList>
#include <QPair>
#include <QSize>
#include <QString>

class Browsing;
struct SearchParameters;

/// The least that showing a page takes, whatever the program looks like: count, class list, pictures of the page, and
/// decoding those that are to be seen. Written with plain Qt, without the program's code.
class PageFloor final
{
public:
    /// Remembers what the page that stands on the canvas shows.
    PageFloor(const Browsing &browsing, const SearchParameters &parameters);

    /// Milliseconds. Once mode needs one grouped count of the numbers more.
    [[nodiscard]] double take() const;

private:
    QString m_count;
    QString m_list;
    QString m_pictures;
    QString m_groupedCount; // empty unless in once mode
    QList<QPair<QString, QSize>> m_visible; // files and the sizes at which they are shown
};

/// Decodes the file at that size, as far reduced as the decoder can.
void decodePlainly(const QString &path, const QSize &size);
