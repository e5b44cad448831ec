#pragma once

#include <QByteArray>
#include <QString>
#include <QTemporaryDir>

/// Where a fault test keeps its catalogues: in memory where that is offered, because a thousand kills mean many
/// thousand waits for a disk.
class FaultFolder final
{
public:
    FaultFolder();

    [[nodiscard]] QString path(const QString &name = {}) const { return m_folder.filePath(name); }

    /// A fresh copy of `from`, with its links as links; `to` is emptied before.
    static void copy(const QString &from, const QString &to);

private:
    QTemporaryDir m_folder;
};

/// Whether the long share was asked for, with scripts/test --long.
[[nodiscard]] bool isLongRun();

/// Whether this is the build with sanitizers, where measures of memory mean nothing.
[[nodiscard]] constexpr bool isSanitized()
{
#ifdef BAHNITO_SANITIZED
    return true;
#else
    return false;
#endif
}

/// `quick` in the run for every day, `longCount` in the long one.
[[nodiscard]] inline int share(int quick, int longCount)
{
    return isLongRun() ? longCount : quick;
}

/// The seed for what is random: BAHNITO_TEST_SEED if that is set, `quick` in the run for every day, and another one in
/// each long run. It is printed, so that a failure can be had again.
[[nodiscard]] quint32 testSeed(quint32 quick);

/// All rows of the catalogue in `folder`, a line each, with "<Kopie>" for the names of copies, pictures without
/// id, and groups with the photograph of their picture.
/// Settings are left out unless `withSettings`. Reads through a connection of its own, which rolls back what a killed
/// program has left.
[[nodiscard]] QString catalogueDump(const QString &folder, bool withSettings = false);

/// The whole database but for the values of the settings: every row with every value exactly as it is stored, the
/// counters of ids, the schema and its version.
[[nodiscard]] QString exactDump(const QString &folder);

/// The findings of the catalogue check that are damage. A file without a row is none: it costs room and nothing else.
/// Nor are missing copies of the entry with the number `deleted`, if that was about to be deleted: they go before its
/// rows.
[[nodiscard]] QStringList damages(const QString &folder, const QString &deleted = {});

/// Digest over all names, sizes, times and contents below `folder`.
[[nodiscard]] QByteArray folderDigest(const QString &folder);
