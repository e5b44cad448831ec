#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <array>

/// How many files `folders` numbered folders may hold together before a new one is opened.
constexpr int capacityFor(int folders)
{
    struct Step
    {
        int upTo;
        int filesPerFolder;
    };
    constexpr std::array steps { Step { 4, 50 }, Step { 8, 75 }, Step { 12, 100 }, Step { 16, 125 }, Step { 20, 150 } };
    for (const Step &step : steps) {
        if (folders <= step.upTo) {
            return folders * step.filesPerFolder;
        }
    }
    return folders * 200;
}

/// The name of the numbered folder: three digits with leading zeros, from 1000 on as many as it takes.
[[nodiscard]] QString folderName(int number);

/// Chooses the numbered folder below "./Data/Pictures" that receives the next picture copies.
/// It counts files and makes folders; it never opens, moves or deletes a file.
class PictureStore final
{
public:
    PictureStore();

    /// Name of the folder for new copies, for example "Folder002"; empty when the store has no numbered folder.
    [[nodiscard]] QString currentFolder() const { return m_currentFolder; }

    /// Called after each attempt to write a copy; only successful ones count towards the next choice.
    void noteStored(bool saved);

    /// Makes the folder for `number` below the root, unless it is there, and returns its name.
    QString makeFolder(int number) const;

    [[nodiscard]] int capacity() const { return m_capacity; }
    [[nodiscard]] int countdown() const { return m_countdown; }
    [[nodiscard]] int total() const { return m_total; }
    [[nodiscard]] QStringList folderNames() const { return m_folderNames; }
    [[nodiscard]] QList<int> fileCounts() const { return m_fileCounts; }

private:
    void chooseFolder();
    int scan();

    int m_capacity = 0; // files that the present folders may hold together
    int m_countdown = 0; // successful copies left until the folder is chosen anew
    int m_total = 0; // files found at the last choice
    QString m_currentFolder;
    QStringList m_folderNames;
    QList<int> m_fileCounts;
};
