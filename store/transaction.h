#pragma once

#include <QString>

/// Lets SQLite tell of a commit only when it is on the disk, its end included. Where folders cannot be synced, SQLite
/// would report each commit as failed and store it all the same, so there it is asked for less.
[[nodiscard]] QString synchronousStatement();

/// A write on the default connection that takes the write lock at once and rolls back unless commit() returned true.
/// It shows nothing: a message box inside a transaction would keep the file locked while the user thinks.
class Transaction final
{
public:
    enum class Kind {
        Write, // other programs may read meanwhile, and one that does so at the end lets the commit fail
        Exclusive, // nobody else reads either, so that no reader can undo what is done beside the database; and what is
                   // written has its room on the disk before the commit
    };

    explicit Transaction(Kind kind = Kind::Write);
    ~Transaction();
    Q_DISABLE_COPY_MOVE(Transaction)

    [[nodiscard]] bool isOpen() const { return m_open; }

    /// Whether the file can be written right now: BEGIN alone succeeds on a read-only file and on a full disk.
    /// Afterwards the file's first page, which each commit writes, has its place in the journal.
    [[nodiscard]] bool provesWritable();

    /// On failure everything is rolled back, for SQLite would keep the transaction open and lose what follows.
    [[nodiscard]] bool commit();

    /// The driver's text for the last failure of this object.
    [[nodiscard]] QString errorText() const { return m_errorText; }

private:
    bool run(const QString &statement);
    bool leaveWriteAheadLog();

    bool m_open = false;
    QString m_errorText;
};
