#include "store/entryremoval.h"

#include "store/copyfile.h"
#include "store/rowvalue.h"
#include "store/transaction.h"

#include <QSqlError>
#include <QSqlQuery>

using namespace Qt::StringLiterals;

namespace {

struct PictureFiles
{
    QStringList copies;
    QStringList originals;
    QString errorText; // the driver's, when they could not all be read
};

/// A failed reading must not pass for an entry without pictures here: its rows would go and their copies stay, and
/// SQLite may have ended the transaction with it, so that each deletion would be stored by itself.
PictureFiles picturesOf(int entryId)
{
    PictureFiles files;
    QSqlQuery query;
    query.setForwardOnly(true);
    query.exec(u"SELECT * FROM loc_picture WHERE locpictureid = %1"_s.arg(entryId));
    while (query.next()) {
        const QSqlRecord picture = query.record();
        files.copies.append(rowText(picture, u"pictAuxPath"_s));
        files.originals.append(rowText(picture, u"pictOrigPath"_s));
    }
    files.errorText = query.lastError().text();
    return files;
}

WriteOutcome deleteRows(int entryId)
{
    WriteOutcome outcome = runWrite(u"DELETE FROM loc_picture WHERE locpictureid = %1"_s.arg(entryId));
    if (outcome.done) {
        outcome = runWrite(u"DELETE FROM loc_seen WHERE id = %1"_s.arg(entryId));
    }
    return outcome;
}

/// Deletes the rows and takes that back. What this writes into the journal stays there until the transaction ends, so
/// neither the deletion proper nor the commit needs more room on a disk that is full.
WriteOutcome rehearse(int entryId)
{
    WriteOutcome outcome = runWrite(u"SAVEPOINT rehearsal"_s);
    if (outcome.done) {
        outcome = deleteRows(entryId);
    }
    return outcome.done ? runWrite(u"ROLLBACK TO rehearsal"_s) : outcome;
}

} // namespace

WriteOutcome removeEntry(int entryId)
{
    if (entryId == 0 || entryId == -1) {
        return { true, {}, 0, 0 }; // an id that cannot be read; the pictures of all groups have -1 in its place
    }
    // The copies go before the rows, so it must be certain beforehand that the rows can be deleted for good.
    Transaction transaction(Transaction::Kind::Exclusive);
    if (!transaction.isOpen() || !transaction.provesWritable()) {
        return { false, transaction.errorText() };
    }
    const PictureFiles files = picturesOf(entryId);
    if (!files.errorText.isEmpty()) {
        return { false, files.errorText };
    }
    WriteOutcome rehearsal = rehearse(entryId);
    if (!rehearsal.done) {
        return rehearsal;
    }
    const QString errorText = removeCopies(files.copies, files.originals);
    if (!errorText.isEmpty()) {
        return { false, errorText };
    }
    WriteOutcome outcome = deleteRows(entryId);
    if (outcome.done && !transaction.commit()) {
        return { false, transaction.errorText() };
    }
    return outcome;
}
