#include "browser/resultrows.h"

#include "browser/pager.h"
#include "store/catalogquery.h"
#include "store/rowvalue.h"

#include <QVariant>

#include <algorithm>

using namespace Qt::StringLiterals;

ResultRows::ResultRows(const QList<QSqlRecord> &rows)
    : m_rows(rows)
    , m_chunk(Pager::PageSize)
{ }

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
    if (index < m_readFrom || index >= m_readUpTo) {
        readPicturesFrom(index);
    }
    return m_pictures[rowId(m_rows.at(index), u"id"_s)];
}

int ResultRows::entriesWithNumberOf(int index)
{
    if (m_counts.isEmpty()) {
        countNumbers();
    }
    return m_counts.value(number(index));
}

void ResultRows::readPicturesFrom(int index)
{
    m_readFrom = index;
    m_readUpTo = std::min(index + m_chunk, size());
    m_chunk *= 2; // a page that runs on in once mode must not walk the table again and again
    QList<int> ids;
    for (int i = m_readFrom; i < m_readUpTo; ++i) {
        ids.append(rowId(m_rows.at(i), u"id"_s));
    }
    m_pictures = CatalogQuery::instance().picturesOfEntries(ids);
}

void ResultRows::countNumbers()
{
    for (const QSqlRecord &row : std::as_const(m_rows)) {
        const QVariant number = row.value(u"nummer"_s);
        const bool isText = number.typeId() == QMetaType::QString; // a blob equals no text in the database
        if (isText && !number.toString().contains(u'\'')) {
            ++m_counts[number.toString()];
        }
    }
}
