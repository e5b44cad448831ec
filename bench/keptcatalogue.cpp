#include "bench/keptcatalogue.h"

#include "bench/benchcatalogue.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>

#include <utility>

using namespace Qt::StringLiterals;

KeptCatalogue::KeptCatalogue(QString folder)
    : m_folder(std::move(folder))
    , m_database(m_folder + u"/Data/bahnakte.dat"_s)
    , m_untouched(m_folder + u"/unberuehrt.dat"_s)
{ }

bool KeptCatalogue::isMade() const
{
    return QFile::exists(m_untouched);
}

void KeptCatalogue::clear() const
{
    QDir(m_folder).removeRecursively();
    QDir().mkpath(m_folder);
}

bool KeptCatalogue::noteMade() const
{
    const QString unfinished = m_untouched + u".neu"_s;
    QFile::remove(unfinished);
    return QFile::copy(m_database, unfinished) && QFile::rename(unfinished, m_untouched);
}

bool KeptCatalogue::restore() const
{
    removeLeftCopies();
    QFile::remove(m_database + u"-journal"_s); // of a killed run: it would be played back into the copy
    QFile::remove(m_database);
    return QFile::copy(m_untouched, m_database);
}

void KeptCatalogue::removeLeftCopies() const
{
    QDirIterator files(m_folder + u"/Data/Pictures"_s, { u"*.jpg"_s }, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        if (!files.fileName().startsWith(QString::number(BenchCatalogue::CopyYear))) {
            QFile::remove(path);
        }
    }
}
