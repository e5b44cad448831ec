#include "app/startup.h"
#include "browser/picturescene.h"
#include "store/colorsetting.h"
#include "tests/faults/faultfolder.h"
#include "tests/faults/forkedrun.h"
#include "tests/faults/randomuser.h"
#include "tests/faults/samplecatalogue.h"
#include "tests/support/testmain.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMimeDatabase>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTest>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

double megabytesInUse()
{
    QFile file(u"/proc/self/statm"_s);
    if (!file.open(QIODevice::ReadOnly)) {
        return 0;
    }
    return file.readAll().split(' ').value(1).toDouble() * double(sysconf(_SC_PAGESIZE)) / (1024 * 1024);
}

/// What the process has open, sorted.
QStringList openFiles()
{
    QStringList files;
    const QFileInfoList descriptors
        = QDir(u"/proc/self/fd"_s).entryInfoList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot);
    for (const QFileInfo &descriptor : descriptors) {
        files.append(descriptor.symLinkTarget());
    }
    files.sort();
    return files;
}

/// Why another program could not have the catalogue for itself now; empty when it could.
QString obstacleForOthers()
{
    QString reason;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"other"_s);
        database.setDatabaseName(u"Data/bahnakte.dat"_s);
        database.setConnectOptions(u"QSQLITE_BUSY_TIMEOUT=0"_s);
        database.open();
        QSqlQuery query(database);
        if (!query.exec(u"BEGIN EXCLUSIVE"_s) || !query.exec(u"ROLLBACK"_s)) {
            reason = query.lastError().text();
        }
    }
    QSqlDatabase::removeDatabase(u"other"_s);
    return reason;
}

/// Items on the canvas that are not owned by the settings, or owned items that stand on no canvas.
bool itemsAddUp(const RandomUser &user)
{
    const QList<QGraphicsItem *> &owned = ColorSetting::instance().items();
    for (const QGraphicsItem *item : owned) {
        if (!item->scene()) {
            return false;
        }
    }
    const QList<QGraphicsItem *> items = user.browser().canvas().items();
    for (QGraphicsItem *item : items) {
        if (!item->parentItem() && !owned.contains(item)) {
            return false;
        }
    }
    return true;
}

} // namespace

/// A user who never stops.
class TestSoak final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nothingGrowsAndNothingIsLeftOver();

private:
    FaultFolder m_folder;
};

void TestSoak::nothingGrowsAndNothingIsLeftOver()
{
    const int actions = share(2000, 100000);
    const int stretch = actions / 100;
    const quint32 seed = isLongRun() ? QRandomGenerator::global()->generate() : 1;
    qInfo("seed %u", seed);
    QVERIFY(runForked([this] {
        makeSampleCatalogue(m_folder.path(u"work"_s));
        makeSamplePhotographs(m_folder.path(u"photographs"_s));
    }).isGood());
    const QByteArray photographs = folderDigest(m_folder.path(u"photographs"_s));
    const ForkedRun::End end = runForked(
        [&] {
            QDir::setCurrent(m_folder.path(u"work"_s));
            Startup::dress(); // with it the limits that the program sets itself
            RandomUser user(seed, RandomUser::Work, m_folder.path(u"photographs"_s));
            double secondTenth = 0;
            double lastTenth = 0;
            QMimeDatabase().mimeTypeForName(
                u"image/jpeg"_s); // Qt keeps its list of file types open from the first use on
            const QStringList filesAtFirst = openFiles();
            qsizetype boxes = 0;
            for (int i = 0; i < actions; ++i) {
                user.act();
                boxes += user.takeBoxes().size(); // which would be kept otherwise
                if (i % stretch != 0) {
                    continue;
                }
                const int part = i / stretch;
                const double memory = megabytesInUse();
                secondTenth += part >= 10 && part < 20 ? memory / 10 : 0;
                lastTenth += part >= 90 ? memory / 10 : 0;
                const QStringList files = openFiles();
                if (files.size() > filesAtFirst.size()) {
                    ForkedRun::report(u"action %1: %2"_s.arg(QString::number(i), files.join(u' ')));
                }
                const QString obstacle = obstacleForOthers();
                if (!obstacle.isEmpty() || !itemsAddUp(user)) {
                    ForkedRun::report(u"action %1: %2"_s.arg(QString::number(i), obstacle));
                }
            }
            ForkedRun::report(u"memory %1 MB, then %2 MB; %3 boxes answered"_s.arg(
                QString::number(secondTenth, 'f', 1), QString::number(lastTenth, 'f', 1), QString::number(boxes)));
        },
        6 * 3600000);
    QVERIFY2(end.isGood(), qPrintable(end.description()));
    QVERIFY2(end.lines.size() == 1, qPrintable(end.lines.join(u'\n')));
    qInfo("%d actions: %s", actions, qPrintable(end.lines.first()));
    const QStringList words = end.lines.first().split(u' ');
    const double allowed = isSanitized() ? 1e6 : isLongRun() ? 5 : 40; // MB; a short run is still filling its caches
    QVERIFY2(words.at(4).toDouble() - words.at(1).toDouble() < allowed, qPrintable(end.lines.first()));
    QCOMPARE(damages(m_folder.path(u"work"_s)), QStringList());
    QCOMPARE(folderDigest(m_folder.path(u"photographs"_s)), photographs);
}

BAHNITO_TEST_MAIN(TestSoak)
#include "tst_soak.moc"
