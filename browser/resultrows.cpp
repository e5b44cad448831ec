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

/// Whether a statement that holds the text may compare something else: it ends at a NUL, and bytes that are no UTF-8
/// are read as letters whose UTF-8 is another.
bool differsInStatements(const QString &number)
{
    constexpr char16_t LastAscii = 0x7f;
    return std::any_of(
        number.begin(), number.end(), [](QChar letter) { return letter.isNull() || letter.unicode() > LastAscii; });
}

/// What cannot be read as an id is 0, and the pictures of groups have -1 in place of an entry.
bool canHavePictures(int entryId)
{
    return entryId != 0 && entryId != -1;
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

QList<qint64> ResultRows::idsBefore(int position) const
{
    const int column = idColumn();
    const qsizetype count = std::clamp<qsizetype>(position - 1, 0, m_rows.size());
    QList<qint64> ids;
    ids.reserve(count);
    for (qsizetype i = 0; i < count; ++i) {
        ids.append(m_rows.at(i).value(column).toLongLong());
    }
    return ids;
}

int ResultRows::positionBehind(const QList<qint64> &ids) const
{
    const QSet<qint64> before(ids.begin(), ids.end());
    const int column = idColumn();
    int best = 0;
    int bestBalance = 0;
    int balance = 0; // other rows less those of `ids`, up to the present row
    for (int i = 0; i < size(); ++i) {
        balance += before.contains(m_rows.at(i).value(column).toLongLong()) ? -1 : 1;
        if (balance < bestBalance) {
            bestBalance = balance;
            best = i + 1;
        }
    }
    return best + 1;
}

bool ResultRows::nextHasSameNumber(int index) const
{
    return index + 1 < m_rows.size() && number(index + 1) == number(index);
}

const QList<QSqlRecord> &ResultRows::pictures(int index)
{
    const int id = entryId(index);
    if (canHavePictures(id) && !m_pictures.contains(id)) {
        readPicturesFrom(index);
    }
    return m_pictures[id];
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

/// A name would have to be looked for in each row of a long class.
int ResultRows::idColumn() const
{
    return m_rows.isEmpty() ? 0 : m_rows.first().indexOf(u"id"_s);
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
        if (i > index && canHavePictures(entryId(i))) {
            ids.append(entryId(i));
        }
    }
    return ids;
}

/// What keeps those of many rows from being read, a lock for a moment or a broken row, need not concern each of them:
/// then the row's own are read alone, and the next batches grow from one anew.
void ResultRows::readPicturesFrom(int index)
{
    QList<int> ids = entriesAhead(index);
    auto pictures = CatalogQuery::instance().picturesOfEntries(ids);
    if (!pictures && ids.size() > 1) {
        ids = { entryId(index) };
        pictures = CatalogQuery::instance().picturesOfEntries(ids);
        m_rowsAhead = 1;
        m_numbersAhead = 1;
    }
    if (pictures) {
        m_pictures.insert(*pictures);
    }
    for (const int id : ids) {
        m_pictures[id]; // asked for, even if there was nothing
    }
    if (pictures) { // a page that runs on must not walk the table again and again
        m_rowsAhead = std::min(m_rowsAhead * 2, size());
        m_numbersAhead = std::min(m_numbersAhead * 2, size());
    }
}

QHash<QString, int> ResultRows::countedNumbers() const
{
    QHash<QString, int> counts;
    for (const QSqlRecord &row : m_rows) {
        const QVariant number = row.value(u"nummer"_s);
        // In the database a blob equals no text, and NULL equals nothing.
        const bool isText = number.typeId() == QMetaType::QString && !number.isNull();
        if (isText && !number.toString().contains(u'\'')) {
            ++counts[number.toString()];
        }
    }
    return counts;
}
