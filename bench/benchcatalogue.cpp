#include "bench/benchcatalogue.h"

#include "bench/sample/railwaytables.h"
#include "bench/sources.h"
#include "search/picturestore.h"
#include "store/copyfile.h"
#include "store/transaction.h"

#include <QDir>
#include <QFile>

#include <algorithm>

#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int BaseCopies = 200;
constexpr int ClassesPerGroup = 5;
constexpr int Classes = BenchCatalogue::Groups * ClassesPerGroup;
constexpr int FilesPerFolder = 200; // as the program itself fills many folders

/// Numbers of a class; those of few numbers come again and again.
int numbersOf(int modelId)
{
    if (modelId == BenchCatalogue::LongClass) {
        return 400;
    }
    return modelId == BenchCatalogue::LongestClass ? 1500 : 60;
}

} // namespace

BenchCatalogue::BenchCatalogue(QString baseFolder, int entries)
    : m_baseFolder(std::move(baseFolder))
    , m_entries(entries)
    , m_clock(QDate(CopyYear, 2, 3), QTime(4, 5))
    , m_random(quint32(entries))
{ }

int BenchCatalogue::groupOf(int modelId)
{
    return (modelId - 1) / ClassesPerGroup + 1;
}

bool BenchCatalogue::fill()
{
    if (!makeBaseCopies(m_baseFolder, BaseCopies)) {
        return false;
    }
    Transaction transaction;
    addGroupsAndClasses();
    const QList<int> classes = shuffledClasses();
    for (const int modelId : classes) {
        if (m_failed) {
            break;
        }
        addEntry(modelId);
    }
    return !m_failed && transaction.commit();
}

/// The class of each entry: rows of one class lie all over the table, as they do when a collection has grown for years.
QList<int> BenchCatalogue::shuffledClasses()
{
    QList<int> classes(std::min(m_entries, LongClassRows), LongClass);
    if (m_entries > 2 * LongestClassRows) {
        classes += QList<int>(LongestClassRows, LongestClass);
    }
    if (m_entries > LongClassRows + FullClassRows) {
        classes += QList<int>(FullClassRows, FullClass);
    }
    while (classes.size() < m_entries) {
        classes.append(m_random.bounded(FullClass + 1, Classes + 1));
    }
    std::shuffle(classes.begin(), classes.end(), m_random);
    return classes;
}

void BenchCatalogue::addGroupsAndClasses()
{
    for (int group = 0; group < Groups; ++group) {
        insert(u"INSERT INTO locomotive (name, pictPath) VALUES (:nam, :pict) "_s,
            { { u":nam"_s, u"Gruppe %1"_s.arg(group + 1, 2, 10, QChar(u'0')) },
                { u":pict"_s, linkCopy(u"AuxFolder"_s) } });
    }
    for (int i = 0; i < Classes; ++i) {
        const QString &name = locomotiveClasses().at(i % locomotiveClasses().size()).name;
        insert(u"INSERT INTO loc_model (modelname, locid) VALUES (:modnam, :locid) "_s,
            { { u":modnam"_s, u"%1 (%2)"_s.arg(name).arg(i + 1) }, { u":locid"_s, groupOf(i + 1) } });
    }
}

void BenchCatalogue::addEntry(int modelId)
{
    QString comment;
    for (int sentences = m_random.bounded(4); sentences > 0; --sentences) {
        const QString longer = comment + oneOf(remarks()) + u' ';
        comment = longer.size() < 198 ? longer : comment;
    }
    const QDate seen = QDate(1979, 1, 1).addDays(m_random.bounded(14600));
    const int id = insert(u"INSERT INTO loc_seen (nummer, locseenid, ort, kommentar, startdate, locseendate) "
                          "VALUES (:num, :lsid, :ort, :kmt, :sdate, :lsdate)"_s,
        { { u":num"_s, QString::number(11000 + m_random.bounded(numbersOf(modelId))) }, { u":lsid"_s, modelId },
            { u":ort"_s, oneOf(placesOf(Country::Switzerland)) },
            { u":kmt"_s, comment.isEmpty() ? u""_s : comment.trimmed() }, { u":sdate"_s, QDate(2020, 1, 1) },
            { u":lsdate"_s, seen } });
    const int pictures = modelId == FullClass ? MostPictures : id % (MostPictures + 1); // three on average
    for (int i = 0; i < pictures; ++i) {
        addPicture(id);
    }
}

void BenchCatalogue::addPicture(int entryId)
{
    const QString copy = linkCopy(nextFolder());
    insert(u"INSERT INTO loc_picture (pictAuxPath, pictOrigPath, pictHeight, pictWidth, locpictureid) "
           "VALUES (:pap, :pop, :phe, :pwi, :lpi)"_s,
        { { u":pap"_s, copy },
            { u":pop"_s, u"/home/anna/Bilder/Eisenbahn/%1/DSC_%2.JPG"_s.arg(1979 + entryId % 40).arg(m_copies) },
            { u":phe"_s, 500 }, { u":pwi"_s, 750 }, { u":lpi"_s, entryId } });
}

/// Its path as the program would have named it.
QString BenchCatalogue::linkCopy(const QString &folder)
{
    const QByteArray base = QFile::encodeName(baseCopy(m_baseFolder, m_copies % BaseCopies));
    ++m_copies;
    QString path;
    do {
        m_clock = m_clock.addMSecs(61017);
        path = copyPath(folder, m_clock);
    } while (::link(base.constData(), QFile::encodeName(path).constData()) != 0 && errno == EEXIST);
    if (!QFile::exists(path)) {
        m_failed = true;
    }
    return path;
}

QString BenchCatalogue::nextFolder()
{
    if (m_filesInFolder == FilesPerFolder) {
        m_filesInFolder = 0;
        ++m_folder;
    }
    ++m_filesInFolder;
    QString name = folderName(m_folder);
    if (m_filesInFolder == 1) {
        QDir(u"./Data/Pictures"_s).mkdir(name);
    }
    return name;
}

int BenchCatalogue::insert(const QString &statement, const QList<BoundValue> &values)
{
    const WriteOutcome outcome = runWrite(statement, values);
    if (!outcome.done) {
        qCritical().noquote() << outcome.errorText;
        m_failed = true;
    }
    return outcome.newId;
}

QString BenchCatalogue::oneOf(const QStringList &list)
{
    return list.at(m_random.bounded(int(list.size())));
}
