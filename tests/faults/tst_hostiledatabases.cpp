#include "store/catalogquery.h"
#include "store/colorsetting.h"
#include "store/database.h"
#include "store/entryremoval.h"
#include "tests/faults/faultfolder.h"
#include "tests/faults/forkedrun.h"
#include "tests/faults/mutations.h"
#include "tests/faults/randomuser.h"
#include "tests/faults/samplecatalogue.h"
#include "tests/support/testmain.h"
#include "tests/support/testpictures.h"

#include <QDir>
#include <QElapsedTimer>
#include <QSqlQuery>
#include <QTest>
#include <QVariant>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int LongestSession = 60000; // ms, on a machine that does other things too

/// The rows that belong to no entry, as far as they can be read, and the files in the folder of the group pictures.
QString digestOfGroupPictures()
{
    QString digest = QString::fromLatin1(folderDigest(u"Data/Pictures/AuxFolder"_s).toHex());
    QSqlQuery query(u"SELECT id FROM loc_picture WHERE locpictureid < 1"_s);
    while (query.next()) {
        digest += u' ' + query.value(0).toString();
    }
    return digest;
}

} // namespace

/// Opens catalogues that are broken or made to do harm. Whatever they hold, the program lives and no file outside the
/// picture store is touched.
class TestHostileDatabases final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void everyReadAndDeletionSurvives();
    void everySessionSurvives();

private:
    [[nodiscard]] QString work() const { return m_folder.path(u"work"_s); }
    void makeCatalogue(quint32 seed, bool hugeTexts);
    void checkCanaries();

    FaultFolder m_folder;
    QByteArray m_canaries;
};

void TestHostileDatabases::initTestCase()
{
    QVERIFY(runForked([this] {
        makeSampleCatalogue(m_folder.path(u"sample"_s));
        makeSamplePhotographs(m_folder.path(u"photographs"_s));
        QDir().mkpath(m_folder.path(u"canaries"_s));
        writeTestJpeg(m_folder.path(u"canaries/foto.jpg"_s), { 60, 40 });
        writeTestJpeg(m_folder.path(u"canaries/link.jpg"_s), { 60, 40 });
    }).isGood());
    m_canaries = folderDigest(m_folder.path(u"canaries"_s));
}

/// A catalogue with number `seed`, with a file beside the database, a link, a linked folder and a pipe in the store.
void TestHostileDatabases::makeCatalogue(quint32 seed, bool hugeTexts)
{
    const QString foreign = m_folder.path(u"canaries/foto.jpg"_s);
    FaultFolder::copy(m_folder.path(u"sample"_s), work());
    const QString store = work() + u"/Data/Pictures"_s;
    QFile::link(m_folder.path(u"canaries/link.jpg"_s), store + u"/Folder001/link.jpg"_s);
    QFile::link(m_folder.path(u"canaries"_s), store + u"/linked"_s);
    mkfifo(qPrintable(store + u"/Folder001/pipe.jpg"_s), 0600);
    QFile note(work() + u"/Data/notiz.txt"_s);
    QVERIFY(note.open(QIODevice::WriteOnly) && note.write("bleibt") == 6);
    QRandomGenerator random(seed);
    const int kind = random.bounded(3);
    if (kind != 0) {
        Mutations::falsifyRows(work() + u"/Data/bahnakte.dat"_s, foreign, hugeTexts, random);
    }
    if (kind != 1) {
        Mutations::spoilBytes(work() + u"/Data/bahnakte.dat"_s, random);
    }
}

void TestHostileDatabases::checkCanaries()
{
    QCOMPARE(folderDigest(m_folder.path(u"canaries"_s)), m_canaries);
    QFile note(work() + u"/Data/notiz.txt"_s);
    QVERIFY(note.open(QIODevice::ReadOnly));
    QCOMPARE(note.readAll(), QByteArray("bleibt"));
}

/// All queries of the catalogue and the deletion of entries, without a window.
void TestHostileDatabases::everyReadAndDeletionSurvives()
{
    const int catalogues = share(1000, 10000);
    int deleted = 0;
    for (int seed = 1; seed <= catalogues; ++seed) {
        makeCatalogue(quint32(seed), false);
        const ForkedRun::End end = runForked(
            [this] {
                QDir::setCurrent(work());
                if (!connectDatabase()) {
                    return;
                }
                const CatalogQuery &catalog = CatalogQuery::instance();
                QList<QSqlRecord> rows;
                catalog.groups(rows, 0);
                catalog.modelsOfGroup(rows, 0);
                catalog.allEntries(rows);
                catalog.storedPictureAt(rows, catalog.countStoredPictures() - 1);
                catalog.entriesByNumber(rows, catalog.entryNumber(1), catalog.modelIdOfEntry(1));
                const auto pictures = catalog.picturesOfEntries({ 1, 2, 3 });
                int removed = 0;
                for (const int id : { 1, 2, 3 }) {
                    removed += removeEntry(id).done ? 1 : 0;
                }
                const QString groupPictures = digestOfGroupPictures();
                for (const int id : { 0, -1 }) {
                    if (!removeEntry(id).done || digestOfGroupPictures() != groupPictures) {
                        qFatal("removed what belongs to no entry");
                    }
                }
                ColorSetting::instance();
                ColorSetting::saveAndRelease();
                ForkedRun::report(QString::number(removed));
            },
            LongestSession);
        QVERIFY2(end.isGood(), qPrintable(u"catalogue %1: "_s.arg(seed) + end.description()));
        deleted += end.lines.value(0).toInt();
        checkCanaries();
    }
    qInfo("%d hostile catalogues read; %d deletions went through", catalogues, deleted);
    QVERIFY(deleted > catalogues); // else the damage is so great that nothing was tried
}

/// The whole program on them: searches, forms, listings, deletions, closing.
void TestHostileDatabases::everySessionSurvives()
{
    const int catalogues = share(40, 10000);
    for (int seed = 1; seed <= catalogues; ++seed) {
        makeCatalogue(quint32(seed), seed % 10 == 0);
        const ForkedRun::End end = runForked(
            [this, seed] {
                QDir::setCurrent(work());
                RandomUser user(quint32(seed), RandomUser::Work, m_folder.path(u"photographs"_s));
                for (int i = 0; i < 8; ++i) {
                    user.act();
                }
            },
            LongestSession);
        QVERIFY2(end.isGood(), qPrintable(u"catalogue %1: "_s.arg(seed) + end.description()));
        checkCanaries();
        if (QTest::currentTestFailed()) {
            return;
        }
    }
    qInfo("%d hostile catalogues used", catalogues);
}

BAHNITO_TEST_MAIN(TestHostileDatabases)
#include "tst_hostiledatabases.moc"
