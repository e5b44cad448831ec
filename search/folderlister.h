#pragma once

#include <QStringList>

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
