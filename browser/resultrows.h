#pragma once

#include <QHash>
#include <QList>
#include <QSqlRecord>
#include <QString>

/// The rows of a search or number listing, with what a page has to know beside them. The schema has no index, so
/// every look-up walks a whole table: pictures are read for many rows with one statement, and entries of a number are
/// counted in the rows that are in memory anyway.
class ResultRows final
{
public:
    explicit ResultRows(const QList<QSqlRecord> &rows);

    [[nodiscard]] int size() const { return int(m_rows.size()); }
    [[nodiscard]] const QSqlRecord &row(int index) const { return m_rows.at(index); }
    [[nodiscard]] QString number(int index) const;

    /// False behind the last row.
    [[nodiscard]] bool nextHasSameNumber(int index) const;

    /// Picture rows of the entry at `index`, in database order.
    [[nodiscard]] const QList<QSqlRecord> &pictures(int index);

    /// As many as CatalogQuery::countEntriesByNumber finds in the class: none for a number with a single quote.
    [[nodiscard]] int entriesWithNumberOf(int index);

private:
    void readPicturesFrom(int index);
    void countNumbers();

    QList<QSqlRecord> m_rows;
    QHash<int, QList<QSqlRecord>> m_pictures; // by entry id
    QHash<QString, int> m_counts;
    int m_readUpTo = 0; // rows whose pictures were read, seen from the last start of reading
    int m_readFrom = 0;
    int m_chunk; // rows to read at once
};
