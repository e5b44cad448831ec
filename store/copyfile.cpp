#include "store/copyfile.h"

#include "search/clock.h"
#include "search/folderlister.h"

#include <QBuffer>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageWriter>
#include <QSaveFile>
#include <QSet>
#include <QSqlError>
#include <QSqlQuery>
#include <QThread>
#include <QVariant>

#include <algorithm>
#include <limits>

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

void tellKept(const QString &path)
{
    qWarning() << "Datei bleibt stehen, sie ist keine Kopie dieses Katalogs:" << path;
}

/// Those that are there and may be removed as far as their place goes, each once.
QStringList filesOfStore(const QStringList &paths)
{
    QStringList files;
    for (const QString &path : paths) {
        const QFileInfo file(path);
        if ((file.isFile() || file.isSymLink()) && isInsideStore(path)) {
            files.append(path);
        } else if (file.exists() || file.isSymLink()) {
            tellKept(path);
        }
    }
    files.removeDuplicates();
    return files;
}

/// By what the files can be recognised, however their paths are spelled.
QSet<QString> realNames(const QStringList &paths)
{
    QSet<QString> names;
    for (const QString &path : paths) {
        const QFileInfo file(path);
        names.insert(file.absoluteFilePath());
        names.insert(file.canonicalFilePath());
    }
    names.remove(QString()); // of what does not exist
    return names;
}

/// The last `count` letters, of which one outside of the basic plane is two in a QString.
QString lastLetters(QString text, qsizetype count)
{
    while (text.toUcs4().size() > count) {
        text.remove(0, text.front().isHighSurrogate() ? 2 : 1);
    }
    return text;
}

/// Adds the paths of those originals in the table that may be one of the copies, because the user has chosen a copy as
/// a photograph. Only what ends like one is fetched: there is a path for each of some 100,000 pictures.
QString addOriginalsLike(const QStringList &copies, QStringList &originals)
{
    qsizetype shortest = std::numeric_limits<qsizetype>::max();
    for (const QString &copy : copies) {
        shortest = std::min(shortest, QFileInfo(copy).fileName().toUcs4().size());
    }
    QSqlQuery query;
    query.setForwardOnly(true);
    if (!query.prepare(
            u"SELECT pictOrigPath FROM loc_picture WHERE substr(CAST(pictOrigPath AS TEXT), -%1) IN (%2)"_s.arg(
                QString::number(shortest), QStringList(copies.size(), u"?"_s).join(u',')))) {
        return query.lastError().text();
    }
    for (const QString &copy : copies) {
        query.addBindValue(lastLetters(QFileInfo(copy).fileName(), shortest));
    }
    query.exec();
    while (query.next()) {
        originals.append(query.value(0).toString());
    }
    return query.lastError().text();
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

bool isTaken(const QString &path)
{
    return QFileInfo::exists(path) || QFileInfo(path).isSymLink();
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
    if (isWritten && !syncFolder(QFileInfo(path).path())) { // a new name is on the disk only when its folder is
        QFile::remove(path);
        return false;
    }
    return isWritten;
}

QString removeCopies(const QStringList &paths, const QStringList &originals)
{
    const QStringList copies = filesOfStore(paths);
    if (copies.isEmpty()) {
        return {};
    }
    QStringList kept = originals;
    QString errorText = addOriginalsLike(copies, kept);
    if (!errorText.isEmpty()) {
        return errorText;
    }
    const QSet<QString> keptNames = realNames(kept);
    for (const QString &copy : copies) {
        if (realNames({ copy }).intersects(keptNames)) {
            tellKept(copy);
        } else {
            QFile::remove(copy);
        }
    }
    return {};
}

bool removeCopy(const QString &path, const QString &originalPath)
{
    const bool wasThere = isTaken(path);
    const QString errorText = removeCopies({ path }, { originalPath });
    if (!errorText.isEmpty()) {
        qWarning() << "Datei bleibt stehen:" << path << errorText;
    }
    return wasThere && !isTaken(path);
}
