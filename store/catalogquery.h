#pragma once

#include <QHash>
#include <QList>
#include <QSqlRecord>
#include <QString>

#include <optional>

/// The read queries of the catalogue and a cache of all classes; also adds classes and deletes whole entries.
/// A failed read is an empty result. Lists that are passed in are appended to.
class CatalogQuery final
{
public:
    /// The single object; made, with its class cache loaded, on the first call.
    static CatalogQuery &instance();

    /// Reads the class cache anew; until then it keeps what it read.
    void reloadModels();

    [[nodiscard]] int countEntries() const;
    /// Pictures whose copy is not in the auxiliary folder.
    [[nodiscard]] int countStoredPictures() const;
    [[nodiscard]] int countPicturesOfEntry(int entryId) const;
    [[nodiscard]] int countEntriesOfModel(int modelId) const;
    [[nodiscard]] int countGroups() const;
    /// Group 0 counts the classes of all groups.
    [[nodiscard]] int countModels(int groupId) const;
    [[nodiscard]] int countEntriesByNumber(const QString &nummer, int modelId) const;

    void picturesOfEntry(QList<QSqlRecord> &list, int entryId) const;
    void entryById(QList<QSqlRecord> &list, int entryId) const;
    /// Ordered by name; group 0 takes all.
    void modelsOfGroup(QList<QSqlRecord> &list, int groupId) const;
    /// False when they could not be read, or not all of them.
    bool groups(QList<QSqlRecord> &list, int groupId) const;
    /// Oldest sighting first.
    void allEntries(QList<QSqlRecord> &list) const;
    void entriesByNumber(QList<QSqlRecord> &list, const QString &nummer, int modelId) const;

    /// Leaves in `list` the n-th stored picture, counted from 0; the first one when there are not that many.
    void storedPictureAt(QList<QSqlRecord> &list, int n) const;

    /// Picture rows of several entries by entry id, in database order, read with one statement. Nothing when that
    /// failed: unlike an empty result, it tells nothing about any of the entries.
    [[nodiscard]] std::optional<QHash<int, QList<QSqlRecord>>> picturesOfEntries(const QList<int> &entryIds) const;

    /// Class id of the first entry with this number; 0 when there is none.
    [[nodiscard]] int modelIdOfNumber(const QString &nummer) const;
    [[nodiscard]] int modelIdOfEntry(int entryId) const;
    /// From the cache, which knows nothing of classes added since the last reload.
    [[nodiscard]] QString modelNameCached(int modelId) const;
    [[nodiscard]] QString modelName(int modelId) const;
    /// "000" when there is no such entry.
    [[nodiscard]] QString entryNumber(int entryId) const;
    /// First class of the group with exactly this name; 0 when there is none.
    [[nodiscard]] int modelIdByName(const QString &name, int groupId) const;

    /// Adds a class, its name cut to 38 characters. A failure is only logged; the cache is not reloaded.
    void AddLocModel(const QString &name, int groupId) const;

    /// Asks, then deletes an entry with its pictures' rows and copies, never the user's own files. True when the entry
    /// is gone, also when it was gone before; `nummer` and `modelId` are then those of its row, if there was one.
    bool deleteEntry(int entryId, QString &nummer, int &modelId) const;

private:
    CatalogQuery();

    QList<QSqlRecord> m_models;
};
