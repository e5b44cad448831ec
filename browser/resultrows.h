#pragma once

#include <QHash>
#include <QList>
#include <QSet>
#include <QSqlRecord>
#include <QString>

#include <optional>

/// The rows of a search or number listing, with what a page has to know beside them. The schema has no index, so
/// every look-up walks a whole table: pictures are read for many rows with one statement, and entries of a number are
/// counted in the rows that are in memory anyway.
class ResultRows final
{
public:
    /// `numbersShown` is given in once mode only: rows with these numbers are not drawn, so that nothing is read for
    /// them ahead of need. The set may grow while the rows are gone through, and outlives this object.
    explicit ResultRows(QList<QSqlRecord> rows, const QSet<QString> *numbersShown = nullptr);

    /// Gives the memory of a long class back to the system.
    ~ResultRows();
    Q_DISABLE_COPY_MOVE(ResultRows)

    [[nodiscard]] int size() const { return int(m_rows.size()); }
    [[nodiscard]] const QSqlRecord &row(int index) const { return m_rows.at(index); }
    [[nodiscard]] QString number(int index) const;

    /// Ids of the rows before the 1-based `position`; ids of more than 32 bits too.
    [[nodiscard]] QList<qint64> idsBefore(int position) const;

    /// The 1-based position that best parts the rows with these ids from all others, the first one of several. Rows
    /// that have gone do not count, and a row that has moved to the other side draws no neighbour with it.
    [[nodiscard]] int positionBehind(const QList<qint64> &ids) const;

    /// False behind the last row.
    [[nodiscard]] bool nextHasSameNumber(int index) const;

    /// Picture rows of the entry at `index`, in database order. Reads those of the rows that come next with them.
    [[nodiscard]] const QList<QSqlRecord> &pictures(int index);

    /// As many as CatalogQuery::countEntriesByNumber finds in the class: none for a number with a single quote.
    [[nodiscard]] int entriesWithNumberOf(int index);

private:
    [[nodiscard]] int entryId(int index) const;
    [[nodiscard]] int idColumn() const;
    [[nodiscard]] QList<int> entriesAhead(int index) const;
    void readPicturesFrom(int index);
    [[nodiscard]] QHash<QString, int> countedNumbers() const;

    QList<QSqlRecord> m_rows;
    const QSet<QString> *m_numbersShown; // null unless in once mode
    QHash<int, QList<QSqlRecord>> m_pictures; // by entry id, of all entries that were read
    std::optional<QHash<QString, int>> m_counts; // by number, once they are asked for
    int m_rowsAhead; // to read at once, at least
    int m_numbersAhead; // different ones that are to be among them, in once mode
};
