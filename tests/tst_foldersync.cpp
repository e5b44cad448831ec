#include "search/folderlister.h"
#include "store/copyfile.h"
#include "store/statement.h"
#include "store/transaction.h"
#include "tests/support/testcatalogue.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QFile>
#include <QImage>
#include <QTest>

#include <cerrno>

#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

int folderError = EINVAL; // of each try to sync a folder; 0 for none

bool isFolder(int file)
{
    struct stat status = {};
    return fstat(file, &status) == 0 && S_ISDIR(status.st_mode);
}

int sync(int file, long call)
{
    if (folderError != 0 && isFolder(file)) {
        errno = folderError;
        return -1;
    }
    return int(syscall(call, file));
}

} // namespace

// In place of those of the C library.

int fsync(int file)
{
    return sync(file, SYS_fsync);
}

int fdatasync(int file)
{
    return sync(file, SYS_fdatasync);
}

/// Shared folders of virtual machines and some network disks know files that can be synced, but no folders.
class TestFolderSync final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { folderError = EINVAL; }

    void commitIsReportedAsItIs();
    void copyIsWritten();
    void failureIsStillAFailure();
};

void TestFolderSync::commitIsReportedAsItIs()
{
    const TestCatalogue catalogue; // its tables come from a commit, too
    const WriteOutcome outcome = executeWrite(u"INSERT INTO locomotive (name) VALUES ('Krokodile')"_s);
    QVERIFY2(outcome.done, qUtf8Printable(outcome.errorText));
    QCOMPARE(catalogue.value(u"PRAGMA synchronous"_s).toInt(), 2);
    QVERIFY(Transaction(Transaction::Kind::Exclusive).isOpen());
}

void TestFolderSync::copyIsWritten()
{
    const TestCatalogue catalogue;
    QImage picture(30, 20, QImage::Format_RGB32);
    picture.fill(Qt::red);
    const QString path = u"./Data/Pictures/Folder001/1.jpg"_s;
    QVERIFY(writeCopy(picture, path));
    QVERIFY(QFile::exists(path));
}

void TestFolderSync::failureIsStillAFailure()
{
    const TestCatalogue catalogue;
    QVERIFY(!canSyncFolder(u"./Data"_s));
    folderError = EIO;
    QVERIFY(canSyncFolder(u"./Data"_s));
    QVERIFY(!syncFolder(u"./Data"_s));
    QVERIFY(!syncFolder(u"./missing"_s));
    QVERIFY(canSyncFolder(u"./missing"_s));
}

BAHNITO_TEST_MAIN(TestFolderSync)
#include "tst_foldersync.moc"
