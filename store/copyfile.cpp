#include "store/copyfile.h"

#include "search/clock.h"

#include <QBuffer>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageWriter>
#include <QSaveFile>
#include <QThread>

#include <fcntl.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

const QString StoreRoot = u"./Data/Pictures"_s;

/// Whether `path` lies directly in a real folder of the store.
bool isInsideStore(const QString &path)
{
    if (path.isEmpty() || path.split(u'/').contains(u".."_s)) {
        return false;
    }
    const QString root = QFileInfo(StoreRoot).canonicalFilePath();
    const QFileInfo folder(QFileInfo(path).absolutePath());
    const QString realFolder = folder.canonicalFilePath();
    return !root.isEmpty() && QFileInfo(realFolder).path() == root;
}

bool isTaken(const QString &path)
{
    return QFileInfo::exists(path) || QFileInfo(path).isSymLink();
}

/// A new name is on the disk only when its folder is.
bool syncFolderOf(const QString &path)
{
    const int folder = ::open(QFile::encodeName(QFileInfo(path).path()).constData(), O_RDONLY | O_CLOEXEC);
    if (folder < 0) {
        return false;
    }
    const bool isSynced = fsync(folder) == 0;
    ::close(folder);
    return isSynced;
}

bool isOriginal(const QString &path, const QString &originalPath)
{
    const QFileInfo copy(path);
    const QFileInfo original(originalPath);
    return copy.absoluteFilePath() == original.absoluteFilePath()
        || (original.exists() && copy.canonicalFilePath() == original.canonicalFilePath());
}

} // namespace

QString copyPath(const QString &folder, const QDateTime &time)
{
    const QDate date = time.date();
    const QTime clock = time.time();
    QString name;
    for (const int number :
        { date.year(), date.month(), date.day(), clock.hour(), clock.minute(), clock.second(), clock.msec() }) {
        name += QString::number(number);
    }
    return u"./Data/Pictures/%1/"_s.arg(folder) + name + u".jpg"_s;
}

QString freeCopyPath(const QString &folder)
{
    QString path = copyPath(folder, Clock::now());
    while (isTaken(path)) {
        QThread::msleep(1);
        path = copyPath(folder, Clock::now());
    }
    return path;
}

bool writeCopy(const QImage &picture, const QString &path)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    if (!QImageWriter(&buffer, "JPEG").write(picture)) {
        return false;
    }
    if (isTaken(path)) {
        return false; // another program on the same folder had the same idea
    }
    QSaveFile file(path);
    const bool isWritten = file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush()
        && fsync(file.handle()) == 0 // commit() would not tell
        && file.commit();
    if (isWritten && !syncFolderOf(path)) {
        QFile::remove(path);
        return false;
    }
    return isWritten;
}

bool removeCopy(const QString &path, const QString &originalPath)
{
    const QFileInfo copy(path);
    if (!copy.exists() && !copy.isSymLink()) {
        return false;
    }
    const bool isFile = copy.isFile() || copy.isSymLink();
    if (!isFile || !isInsideStore(path) || isOriginal(path, originalPath)) {
        qWarning() << "Datei bleibt stehen, sie ist keine Kopie dieses Katalogs:" << path;
        return false;
    }
    return QFile::remove(path);
}
