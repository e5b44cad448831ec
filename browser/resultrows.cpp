#include "browser/resultrows.h"

#include "browser/pager.h"
#include "store/catalogquery.h"
#include "store/rowvalue.h"

#include <QVariant>

#include <algorithm>
#include <utility>

#ifdef __GLIBC__
#include <malloc.h>
#endif

using namespace Qt::StringLiterals;

namespace {

/// Whether a statement that holds the text compares something else: it ends at a NUL, and what was no UTF-8 in the
/// database has been replaced here.
bool differsInStatements(const QString &number)
{
    return number.contains(QChar(QChar::Null)) || number.contains(QChar(QChar::ReplacementCharacter));
}

} // namespace

ResultRows::ResultRows(QList<QSqlRecord> rows, const QSet<QString> *numbersShown)
    : m_rows(std::move(rows))
    , m_numbersShown(numbersShown)
    , m_rowsAhead(Pager::PageSize)
    , m_numbersAhead(Pager::NumbersPerPage * 3 / 2) // some may turn out to have no pictures
{ }

ResultRows::~ResultRows()
{
    constexpr int LongClass = 2000;
    if (std::exchange(m_rows, {}).size() > LongClass) {
#ifdef __GLIBC__
        malloc_trim(0); // the page was built behind the rows, and holes below it would be kept
#endif
    }
}

QString ResultRows::number(int index) const
{
    return rowText(m_rows.at(index), u"nummer"_s);
}

bool ResultRows::nextHasSameNumber(int index) const
{
    return index + 1 < m_rows.size() && number(index + 1) == number(index);
}

const QList<QSqlRecord> &ResultRows::pictures(int index)
{
    if (!m_pictures.contains(entryId(index))) {
        readPicturesFrom(index);
    }
    return m_pictures[entryId(index)];
}

int ResultRows::entriesWithNumberOf(int index)
{
    const QString text = number(index);
    if (differsInStatements(text)) {
        return CatalogQuery::instance().countEntriesByNumber(text, rowId(m_rows.at(index), u"locseenid"_s));
    }
    if (!m_counts) {
        m_counts = countedNumbers();
    }
    return m_counts->value(text);
}

int ResultRows::entryId(int index) const
{
    return rowId(m_rows.at(index), u"id"_s);
}

/// The entry at `index` and those after it that the page is likely to draw. A page of once mode runs on until it has
/// enough numbers, which may be far away among those that are shown already.
QList<int> ResultRows::entriesAhead(int index) const
{
    QSet<QString> newNumbers;
    QList<int> ids { entryId(index) };
    for (int i = index; i < size(); ++i) {
        const bool hasNumbers = !m_numbersShown || newNumbers.size() >= m_numbersAhead;
        if (i - index >= m_rowsAhead && hasNumbers) {
            break;
        }
        const QString text = number(i);
        if (m_numbersShown && m_numbersShown->contains(text)) {
            continue;
        }
        newNumbers.insert(text);
        if (i > index) {
            ids.append(entryId(i));
        }
    }
    return ids;
}

void ResultRows::readPicturesFrom(int index)
{
    const QList<int> ids = entriesAhead(index);
    m_pictures.insert(CatalogQuery::instance().picturesOfEntries(ids));
    for (const int id : ids) {
        m_pictures[id]; // read, even if there was nothing
    }
    m_rowsAhead = std::min(m_rowsAhead * 2, size()); // a page that runs on must not walk the table again and again
    m_numbersAhead = std::min(m_numbersAhead * 2, size());
}

QHash<QString, int> ResultRows::countedNumbers() const
{
    QHash<QString, int> counts;
    for (const QSqlRecord &row : m_rows) {
        const QVariant number = row.value(u"nummer"_s);
        const bool isText = number.typeId() == QMetaType::QString; // a blob equals no text in the database
        if (isText && !number.toString().contains(u'\'')) {
            ++counts[number.toString()];
        }
    }
    return counts;
}
