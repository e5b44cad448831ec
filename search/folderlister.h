#pragma once

#include <QStringList>

/// Puts what the folder's names stand for on the disk; false when that failed or there is no such folder. Where folders
/// cannot be synced, as on some network disks and shared folders, there is nothing to be done, which is no failure.
[[nodiscard]] bool syncFolder(const QString &path);

/// False only where it is certain that no folder can be synced.
[[nodiscard]] bool canSyncFolder(const QString &path);

/// Makes the folder `name` below `parentPath` if it is missing, and puts it on the disk. One that cannot be made is not
/// reported here; whoever writes into it will notice.
void makeFolder(const QString &parentPath, const QString &name);

/// Knows the subfolders that a path had when the lister was built, and makes missing ones.
/// The list is never refreshed: build a fresh lister for each level of folders.
class FolderLister final
{
public:
    explicit FolderLister(const QString &path);

    /// Makes the folder `name` below `parentPath` unless the list already holds that exact name.
    /// A folder that cannot be made is not reported here; whoever writes into it will notice.
    void ensure(const QString &parentPath, const QString &name) const;

private:
    QStringList m_names;
};
