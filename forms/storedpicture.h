#pragma once

#include <QImage>
#include <QString>

#include <optional>

/// A row of the picture table, without its id.
struct StoredPicture
{
    QString copyPath;
    QString originalPath; // the user's own file, which is only ever read
    int height = 0; // of the copy, in pixels
    int width = 0;
    int entryId = -1; // -1 for the picture of a group
};

struct PictureOutcome
{
    enum Result { Stored, StatementFailed, FileFailed };

    Result result = StatementFailed;
    QString errorText; // the driver's, when a statement failed
    int id = 0; // of an inserted row
};

/// The picture in `path` as its copy will look: fitted into 750 x 500 pixels and never enlarged, upright, on white.
/// Null when the file is no readable picture.
[[nodiscard]] QImage reducedPicture(const QString &path);

/// What is known of a row.
struct PictureReading
{
    std::optional<StoredPicture> picture; // none when there is no such row, or it could not be read
    QString errorText; // the driver's, when it could not be read
};

[[nodiscard]] PictureReading readPicture(int id);

/// Adds the row and writes `copy` to its path: both or neither.
[[nodiscard]] PictureOutcome insertPicture(const StoredPicture &picture, const QImage &copy);

/// Changes the paths and the size in the row, and writes `copy` unless it is null: both or neither.
[[nodiscard]] PictureOutcome updatePicture(int id, const StoredPicture &picture, const QImage &copy);

/// Whether a group has this copy as its picture, also when that cannot be found out.
[[nodiscard]] bool mayBelongToGroup(const QString &copyPath);

/// Removes the copy that a picture had before it was given another one. It stays when a row still names it, also when
/// that cannot be found out.
void removeReplacedCopy(const StoredPicture &former);

/// Deletes the row and then, unless `keepCopy`, the copy. Returns the driver's text when that failed, and a text of its
/// own when there was no such row; the copy stays then. Else an empty text.
[[nodiscard]] QString removePicture(int id, const StoredPicture &picture, bool keepCopy);
