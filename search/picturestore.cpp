#include "search/picturestore.h"

#include "search/folderlister.h"

#include <QDir>
#include <QFile>

#include <algorithm>

#include <dirent.h>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int StoresPerChoice = 10;
const QString StoreRoot = u"./Data/Pictures"_s;
const QString NumberedPrefix = u"Folder"_s;

bool isRegularFile(int folder, const dirent &entry)
{
    if (entry.d_type == DT_REG) {
        return true;
    }
    if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN) {
        return false;
    }
    struct stat status = {};
    return fstatat(folder, static_cast<const char *>(entry.d_name), &status, 0) == 0 && S_ISREG(status.st_mode);
}

/// Visible files of one folder. Plain directory reading, because a QDir list asks the file system about every
/// single file, and a life's collection has 300,000 of them.
int countFiles(const QString &path)
{
    DIR *folder = opendir(QFile::encodeName(path).constData());
    if (folder == nullptr) {
        return 0;
    }
    int files = 0;
    while (const dirent *entry = readdir(folder)) {
        if (entry->d_name[0] != '.' && isRegularFile(dirfd(folder), *entry)) {
            ++files;
        }
    }
    closedir(folder);
    return files;
}

} // namespace

static_assert(capacityFor(0) == 0 && capacityFor(2) == 100 && capacityFor(5) == 375 && capacityFor(12) == 1200);
static_assert(capacityFor(16) == 2000 && capacityFor(20) == 3000 && capacityFor(21) == 4200);

QString folderName(int number)
{
    const QString digits = QString::number(number);
    const QString padding = number <= 999 ? u"000"_s.left(3 - digits.size()) : QString();
    return u"Folder%1%2"_s.arg(padding, digits);
}

PictureStore::PictureStore()
{
    chooseFolder();
}

void PictureStore::noteStored(bool saved)
{
    if (!saved) {
        return;
    }
    --m_countdown;
    if (m_countdown == 0) {
        chooseFolder();
    }
}

QString PictureStore::makeFolder(int number) const
{
    QString name = folderName(number);
    ::makeFolder(StoreRoot, name);
    return name;
}

void PictureStore::chooseFolder()
{
    m_countdown = StoresPerChoice;
    m_total = scan();
    const int folders = int(m_folderNames.size());
    m_capacity = capacityFor(folders);
    if (m_total > m_capacity) {
        m_currentFolder = makeFolder(folders + 1);
        makeFolder(folders + 2); // stands ready for a later choice
        return;
    }
    if (folders == 0) {
        m_currentFolder.clear();
        return;
    }
    const auto fewest = std::min_element(m_fileCounts.cbegin(), m_fileCounts.cend());
    m_currentFolder = m_folderNames.at(fewest - m_fileCounts.cbegin());
}

int PictureStore::scan()
{
    m_folderNames.clear();
    m_fileCounts.clear();
    const QDir root(StoreRoot);
    int total = 0;
    const QStringList names = root.entryList(QDir::AllDirs | QDir::NoDotAndDotDot);
    for (const QString &name : names) {
        if (!name.startsWith(NumberedPrefix)) {
            continue;
        }
        const int files = countFiles(u"%1/%2"_s.arg(root.absolutePath(), name));
        m_folderNames.append(name);
        m_fileCounts.append(files);
        total += files;
    }
    return total;
}
