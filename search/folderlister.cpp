#include "search/folderlister.h"

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <unistd.h>

bool syncFolder(const QString &path)
{
    const int folder = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (folder < 0) {
        return false;
    }
    const bool isSynced = fsync(folder) == 0;
    ::close(folder);
    return isSynced;
}

void makeFolder(const QString &parentPath, const QString &name)
{
    if (QDir(parentPath).mkdir(name) && !syncFolder(parentPath)) {
        qWarning("Nicht sicher auf der Platte: %s/%s", qUtf8Printable(parentPath), qUtf8Printable(name));
    }
}

FolderLister::FolderLister(const QString &path)
    : m_names(QDir(path).entryList(QDir::AllDirs | QDir::NoDotAndDotDot))
{ }

void FolderLister::ensure(const QString &parentPath, const QString &name) const
{
    if (!m_names.contains(name)) {
        makeFolder(parentPath, name);
    }
}
