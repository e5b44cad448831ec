#include "tests/faults/soakrun.h"

#include "browser/entryblock.h"
#include "browser/pager.h"
#include "browser/picturescene.h"
#include "browser/viewholder.h"
#include "store/colorsetting.h"
#include "tests/faults/forkedrun.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMimeDatabase>
#include <QSet>
#include <QSqlDatabase>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlQuery>
#include <QVariant>

#include <sqlite3.h>
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

sqlite3 *programsConnection()
{
    return *static_cast<sqlite3 *const *>(QSqlDatabase::database().driver()->handle().constData());
}

/// Statements that the program has prepared and not given back.
QStringList openStatements()
{
    QStringList statements;
    for (sqlite3_stmt *statement = sqlite3_next_stmt(programsConnection(), nullptr); statement;
         statement = sqlite3_next_stmt(programsConnection(), statement)) {
        statements.append(QString::fromUtf8(sqlite3_sql(statement)));
    }
    return statements;
}

/// What stands on a canvas beside what its page shows; empty when there is nothing.
QString leftOverOn(const PictureScene &canvas, bool isListing)
{
    QSet<int> entries;
    int blocks = 0;
    int others = 0;
    const QList<QGraphicsItem *> items = canvas.items();
    for (QGraphicsItem *item : items) {
        if (item->parentItem()) {
            continue;
        }
        if (!ColorSetting::instance().items().contains(item)) {
            return u"an item that nobody owns"_s;
        }
        if (const auto *block = qgraphicsitem_cast<EntryBlock *>(item)) {
            entries.insert(block->card().id);
            ++blocks;
        } else {
            ++others;
        }
    }
    // Photograph, frame, plate, three lines each of the entry and the statistics; or a caption and one button.
    const int mostOthers = canvas.showsStartPicture() ? 9 : 2;
    const bool isPage = blocks == canvas.blocks().size() && blocks == entries.size()
        && (isListing || blocks <= Pager::PageSize) && (blocks == 0 || !canvas.showsStartPicture());
    return isPage && others <= mostOthers
        ? QString()
        : u"%1 cards of %2 entries, %3 in the page, and %4 other items"_s.arg(QString::number(blocks),
            QString::number(entries.size()), QString::number(canvas.blocks().size()), QString::number(others));
}

QString leftOver(const RandomUser &user)
{
    const QList<QGraphicsItem *> &owned = ColorSetting::instance().items();
    for (const QGraphicsItem *item : owned) {
        if (!item->scene()) {
            return u"an item on no canvas"_s;
        }
    }
    const ViewHolder &holder = user.browser().window().viewHolder();
    const QString onResults = leftOverOn(holder.results(), false);
    return onResults.isEmpty() && holder.showsListing() ? leftOverOn(holder.current(), true) : onResults;
}

/// Whether a box may come where nothing is wrong with the catalogue or the disk.
bool isExpected(const QString &box)
{
    const QStringList expected { u"Keine Daten"_s, u"Daten vorhanden"_s, u"max. Anzahl Bilder"_s };
    return expected.contains(box.section(u'|', 0, 0))
        || box.startsWith(u"Open File|fehlt.jpg"_s) // Qt's own, of a file that there is not
        || box.contains(u"klicken Sie auf einen Verzeichnis-Eintrag!"_s); // nothing was chosen in the list
}

} // namespace

SoakRun::SoakRun(quint32 seed, const QString &photographs)
    : m_user(seed, RandomUser::Work, photographs)
{
    QMimeDatabase().mimeTypeForName(u"image/jpeg"_s); // Qt keeps its list of file types open from the first use on
    m_filesAtFirst = openFiles();
    m_statementsAtFirst = openStatements();
    sqlite3_update_hook(programsConnection(), &SoakRun::note, this);
}

void SoakRun::act()
{
    m_user.act();
    for (const Belief &belief : m_user.takeBeliefs()) {
        ++m_beliefs[belief.write];
    }
    for (const QString &box : m_user.takeBoxes()) {
        ++m_boxes[box.section(u'|', 0, 0)];
        if (!isExpected(box)) {
            ForkedRun::report(u"finding\tbox "_s + box.simplified());
        }
    }
}

void SoakRun::look(int action, int part)
{
    const double memory = megabytesInUse();
    m_secondTenth += part >= 10 && part < 20 ? memory / 10 : 0;
    m_lastTenth += part >= 90 ? memory / 10 : 0;
    const QStringList files = openFiles();
    const QStringList statements = openStatements();
    QStringList findings { obstacleForOthers(), leftOver(m_user) };
    findings += files.size() > m_filesAtFirst.size() ? files : QStringList();
    findings += statements.size() > m_statementsAtFirst.size() ? statements : QStringList();
    findings.removeAll(QString());
    for (const QString &finding : std::as_const(findings)) {
        ForkedRun::report(u"finding\taction %1: "_s.arg(action) + finding);
    }
}

void SoakRun::report() const
{
    const auto reportAll = [](const QString &tag, const QMap<QString, int> &counts) {
        for (const QString &line : RandomUser::deedLines(counts)) {
            ForkedRun::report(tag + u'\t' + line);
        }
    };
    reportAll(u"deed"_s, m_user.deeds());
    reportAll(u"box"_s, m_boxes);
    reportAll(u"write"_s, m_writes);
    reportAll(u"belief"_s, m_beliefs);
    ForkedRun::report(u"memory\t%1 MB, then %2 MB"_s.arg(
        QString::number(m_secondTenth, 'f', 1), QString::number(m_lastTenth, 'f', 1)));
}

void SoakRun::note(void *run, int operation, const char *database, const char *table, long long row)
{
    Q_UNUSED(database)
    Q_UNUSED(row)
    const QString kind = operation == SQLITE_INSERT ? u"INSERT "_s
        : operation == SQLITE_DELETE                ? u"DELETE "_s
                                                    : u"UPDATE "_s;
    ++static_cast<SoakRun *>(run)->m_writes[kind + QString::fromLatin1(table)];
}
