#include "bench/storefloor.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

#include <string>
#include <string_view>

#include <dirent.h>

using namespace Qt::StringLiterals;

namespace {

template <typename Use> void readFolder(const std::string &path, Use use)
{
    DIR *folder = opendir(path.c_str());
    if (folder == nullptr) {
        return;
    }
    while (const dirent *entry = readdir(folder)) {
        use(std::string_view(static_cast<const char *>(entry->d_name)), entry->d_type);
    }
    closedir(folder);
}

} // namespace

int StoreFloor::countFiles()
{
    const std::string root = "./Data/Pictures/";
    int files = 0;
    readFolder(root, [&](std::string_view folder, int) {
        if (folder.substr(0, 6) == "Folder") {
            readFolder(root + std::string(folder),
                [&](std::string_view file, int type) { files += type == DT_REG && file.front() != '.' ? 1 : 0; });
        }
    });
    return files;
}

int StoreFloor::countPictures()
{
    QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s);
    database.setDatabaseName(u"./Data/bahnakte.dat"_s);
    database.open();
    QSqlQuery query(u"SELECT COUNT(*) FROM loc_picture WHERE pictAuxPath NOT LIKE '%AuxFolder%'"_s, database);
    return query.next() ? query.value(0).toInt() : 0;
}
