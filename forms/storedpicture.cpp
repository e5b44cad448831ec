#include "forms/storedpicture.h"

#include "store/copyfile.h"
#include "store/pictureloader.h"
#include "store/rowvalue.h"
#include "store/statement.h"
#include "store/transaction.h"

#include <QColorSpace>
#include <QCoreApplication>
#include <QPainter>
#include <QSqlError>
#include <QSqlQuery>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize LargestCopy(750, 500); // pixels

QString vanishedPictureText()
{
    return QCoreApplication::translate("StoredPicture", "Das Bild ist nicht mehr vorhanden.");
}

QList<BoundValue> boundValues(const StoredPicture &picture)
{
    const auto text = [](const QString &path) { return path.isNull() ? u""_s : path; }; // a null text would be NULL
    return { { u":pap"_s, text(picture.copyPath) }, { u":pop"_s, text(picture.originalPath) },
        { u":phe"_s, picture.height }, { u":pwi"_s, picture.width } };
}

/// In how many rows `column` of `table` names the copy; none when that cannot be found out.
std::optional<int> countRowsWith(const QString &path, const QString &table, const QString &column)
{
    QSqlQuery query;
    query.prepare(u"SELECT COUNT(*) FROM %1 WHERE %2 = :path"_s.arg(table, column));
    query.bindValue(u":path"_s, path);
    if (!query.exec() || !query.next()) {
        return {};
    }
    return query.value(0).toInt();
}

/// A disk that fails at the very end lets a COMMIT fail that has taken place: the copy goes only if no row has it.
PictureOutcome outcomeOfFailedCommit(const QString &errorText, int newId, const StoredPicture &picture)
{
    const std::optional<int> rows = countRowsWith(picture.copyPath, u"loc_picture"_s, u"pictAuxPath"_s);
    if (rows > 0) {
        return { PictureOutcome::Stored, {}, newId };
    }
    if (rows == 0) {
        removeCopy(picture.copyPath, picture.originalPath);
    }
    return { PictureOutcome::StatementFailed, errorText, 0 };
}

/// The file is written before the row is committed, so that a crash in between leaves no row without its file.
PictureOutcome store(const QString &statement, const QList<BoundValue> &values, const StoredPicture &picture,
    const QImage &copy, const QList<NeededRow> &needed = {})
{
    Transaction transaction;
    if (!transaction.isOpen()) {
        return { PictureOutcome::StatementFailed, transaction.errorText(), 0 };
    }
    const WriteOutcome row = runWrite(statement, values, needed);
    if (!row.done) {
        return { PictureOutcome::StatementFailed, row.errorText, 0 };
    }
    if (row.rows < 1) { // a second window has deleted it
        return { PictureOutcome::StatementFailed, vanishedPictureText(), 0 };
    }
    if (!copy.isNull() && !writeCopy(copy, picture.copyPath)) {
        return { PictureOutcome::FileFailed, {}, 0 };
    }
    if (transaction.commit()) {
        return { PictureOutcome::Stored, {}, row.newId };
    }
    if (!copy.isNull()) {
        return outcomeOfFailedCommit(transaction.errorText(), row.newId, picture);
    }
    return { PictureOutcome::StatementFailed, transaction.errorText(), 0 };
}

} // namespace

QImage reducedPicture(const QString &path)
{
    QImage source = loadPicture(path, LargestCopy);
    if (source.isNull()) {
        return {};
    }
    const bool isOpaque = !source.hasAlphaChannel();
    source.convertTo(QImage::Format_ARGB32);
    source.convertToColorSpace(QColorSpace::SRgb); // the copy is shown without regard to profiles
    if (isOpaque) {
        return source;
    }
    QImage copy(source.size(), QImage::Format_ARGB32);
    copy.fill(Qt::white);
    QPainter(&copy).drawImage(0, 0, source);
    return copy;
}

PictureReading readPicture(int id)
{
    QSqlQuery query;
    if (!query.exec(u"SELECT * FROM loc_picture WHERE id = %1"_s.arg(id)) || !query.next()) {
        return { {}, query.lastError().text() };
    }
    const QSqlRecord row = query.record();
    return { StoredPicture { rowText(row, u"pictAuxPath"_s), rowText(row, u"pictOrigPath"_s),
                 rowId(row, u"pictHeight"_s), rowId(row, u"pictWidth"_s), rowId(row, u"locpictureid"_s) },
        {} };
}

PictureOutcome insertPicture(const StoredPicture &picture, const QImage &copy)
{
    QList<BoundValue> values = boundValues(picture);
    values.append({ u":lpi"_s, picture.entryId });
    QList<NeededRow> needed; // nothing for the picture of a group
    if (picture.entryId != -1) {
        needed = { neededEntry(picture.entryId), neededRoom(picture.entryId) };
    }
    return store(u"INSERT INTO loc_picture (pictAuxPath, pictOrigPath, pictHeight, pictWidth, locpictureid) "
                 "VALUES (:pap, :pop, :phe, :pwi, :lpi)"_s,
        values, picture, copy, needed);
}

PictureOutcome updatePicture(int id, const StoredPicture &picture, const QImage &copy)
{
    return store(u"UPDATE loc_picture SET pictAuxPath = :pap, pictOrigPath = :pop,  pictHeight = :phe, "
                 "pictWidth = :pwi WHERE id = %1"_s.arg(id),
        boundValues(picture), picture, copy);
}

bool mayBelongToGroup(const QString &copyPath)
{
    return countRowsWith(copyPath, u"locomotive"_s, u"pictPath"_s) != 0;
}

void removeReplacedCopy(const StoredPicture &former)
{
    if (countRowsWith(former.copyPath, u"loc_picture"_s, u"pictAuxPath"_s) == 0 && !mayBelongToGroup(former.copyPath)) {
        removeCopy(former.copyPath, former.originalPath);
    }
}

QString removePicture(int id, const StoredPicture &picture, bool keepCopy)
{
    if (id < 1) {
        return vanishedPictureText(); // an id that cannot be read: no row that the program has made is meant by it
    }
    const WriteOutcome outcome = executeWrite(u"DELETE FROM loc_picture WHERE id = %1"_s.arg(id));
    if (!outcome.done) {
        return outcome.errorText;
    }
    if (outcome.rows < 1) {
        return vanishedPictureText(); // and whatever row has the copy still needs it
    }
    if (!keepCopy) {
        removeCopy(picture.copyPath, picture.originalPath);
    }
    return {};
}
