#include "search/folderlister.h"

#include <QDir>

FolderLister::FolderLister(const QString &path)
    : m_names(QDir(path).entryList(QDir::AllDirs | QDir::NoDotAndDotDot))
{ }

void FolderLister::ensure(const QString &parentPath, const QString &name) const
{
    if (!m_names.contains(name)) {
        QDir(parentPath).mkdir(name);
    }
}
