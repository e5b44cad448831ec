#include "store/entryremoval.h"

#include "store/catalogquery.h"
#include "store/copyfile.h"
#include "store/rowvalue.h"
#include "store/transaction.h"

using namespace Qt::StringLiterals;

WriteOutcome removeEntry(int entryId)
{
    // The copies go before the rows, so it must be certain beforehand that rows can be deleted.
    Transaction transaction;
    if (!transaction.isOpen() || !transaction.provesWritable()) {
        return { false, transaction.errorText() };
    }
    QList<QSqlRecord> pictures;
    CatalogQuery::instance().picturesOfEntry(pictures, entryId);
    for (const QSqlRecord &picture : pictures) {
        removeCopy(rowText(picture, u"pictAuxPath"_s), rowText(picture, u"pictOrigPath"_s));
    }
    WriteOutcome outcome = runWrite(u"DELETE FROM loc_picture WHERE locpictureid = %1"_s.arg(entryId));
    if (outcome.done) {
        outcome = runWrite(u"DELETE FROM loc_seen WHERE id = %1"_s.arg(entryId));
    }
    if (outcome.done && !transaction.commit()) {
        return { false, transaction.errorText() };
    }
    return outcome;
}
