#include "search/folderlister.h"

#include <QDir>
#include <QFile>

#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace {

/// 0 when it is on the disk, else the number of the error.
int syncError(const QString &path)
{
    const int folder = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (folder < 0) {
        return errno;
    }
    const int error = fsync(folder) == 0 ? 0 : errno;
    ::close(folder);
    return error;
}

bool meansUnable(int error)
{
    return error == EINVAL || error == ENOSYS || error == ENOTSUP;
}

} // namespace

bool syncFolder(const QString &path)
{
    const int error = syncError(path);
    return error == 0 || meansUnable(error);
}

bool canSyncFolder(const QString &path)
{
    return !meansUnable(syncError(path));
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
