#pragma once

#include "store/statement.h"

#include <QDate>
#include <QDateTime>
#include <QList>
#include <QRandomGenerator>
#include <QStringList>

/// Fills the open, empty catalogue in the working folder with so many entries that what takes long is seen. The rows
/// are those that a user would have made; the copies are links to a few hundred files that all catalogues share.
class BenchCatalogue final
{
public:
    // What the measurements rely on. The class of 10,000 rows is only in catalogues above 20,000 entries.
    static constexpr int Groups = 20;
    static constexpr int LongClass = 1; // 1,000 rows, one of each three numbers comes again
    static constexpr int LongestClass = 2; // 10,000 rows
    static constexpr int FullClass = 3; // 200 rows, each with six pictures
    static constexpr int LongClassRows = 1000;
    static constexpr int FullClassRows = 200;
    static constexpr int CopyYear = 2001; // begins the names of all copies
    static constexpr int LongestClassRows = 10000;

    /// The group that holds the class.
    [[nodiscard]] static int groupOf(int modelId);

    BenchCatalogue(QString baseFolder, int entries);

    [[nodiscard]] bool fill();

private:
    [[nodiscard]] QList<int> shuffledClasses();
    void addGroupsAndClasses();
    void addEntry(int modelId);
    void addPicture(int entryId);
    [[nodiscard]] QString linkCopy(const QString &folder);
    [[nodiscard]] QString nextFolder();
    int insert(const QString &statement, const QList<BoundValue> &values);
    [[nodiscard]] QString oneOf(const QStringList &list);

    QString m_baseFolder;
    int m_entries;
    int m_folder = 1; // numbered folders are filled one after the other
    int m_filesInFolder = 0;
    int m_copies = 0;
    QDateTime m_clock; // names the copies
    QRandomGenerator m_random;
    bool m_failed = false;
};
