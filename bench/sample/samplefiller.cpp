#include "bench/sample/samplefiller.h"

#include "search/clock.h"
#include "store/copyfile.h"
#include "store/transaction.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <deque>
#include <future>
#include <thread>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize CopyBox(750, 500);
constexpr int OriginalQuality = 85;

/// Calls `use` with the painted pictures in their order, while other threads already paint the next ones.
template <typename Paint, typename Use> bool paintInOrder(const QList<PlannedPicture> &pictures, Paint paint, Use use)
{
    const size_t ahead = std::max(2U, std::thread::hardware_concurrency());
    std::deque<decltype(std::async(std::launch::async, paint, Motif()))> running;
    qsizetype next = 0;
    for (const PlannedPicture &picture : pictures) {
        while (running.size() < ahead && next < pictures.size()) {
            running.push_back(std::async(std::launch::async, paint, pictures.at(next++).motif));
        }
        const auto painted = running.front().get();
        running.pop_front();
        if (!use(picture, painted)) {
            return false;
        }
    }
    return true;
}

} // namespace

SampleFiller::SampleFiller(SamplePlan plan)
    : m_plan(std::move(plan))
{ }

bool SampleFiller::fill()
{
    Transaction transaction; // one for all rows: each of its own would wait for the disk
    if (!transaction.isOpen()) {
        return fail(transaction.errorText());
    }
    const bool isFilled = addGroups() && addModels() && addEntries()
        && paintInOrder(m_plan.pictures, &SampleFiller::paint,
            [this](const PlannedPicture &planned, const Painted &painted) { return addPicture(planned, painted); });
    if (!isFilled) {
        return false;
    }
    return transaction.commit() || fail(transaction.errorText());
}

SampleFiller::Painted SampleFiller::paint(const Motif &motif)
{
    const QImage picture = paintPhotograph(motif);
    Painted painted;
    QBuffer buffer(&painted.original);
    picture.save(&buffer, "JPEG", OriginalQuality);
    painted.copy = picture.scaled(CopyBox, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    return painted;
}

bool SampleFiller::addGroups()
{
    return paintInOrder(
        m_plan.groupPictures, &SampleFiller::paint, [this](const PlannedPicture &planned, const Painted &painted) {
            const QString original = QDir::current().absoluteFilePath(u"Originale/"_s + planned.fileName);
            if (!writeOriginal(original, painted.original, Clock::now().date())
                || !storePicture(u"AuxFolder"_s, original, painted.copy, -1)) {
                return false;
            }
            const QString name = groupNames().at(m_groupIds.size());
            m_groupIds.append(insert(u"INSERT INTO locomotive (name, pictPath) VALUES (:nam, :pict) "_s,
                { { u":nam"_s, name }, { u":pict"_s, m_lastCopy } }));
            return m_groupIds.last() > 0;
        });
}

bool SampleFiller::addModels()
{
    for (const LocomotiveClass &type : locomotiveClasses()) {
        m_modelIds.append(insert(u"INSERT INTO loc_model (modelname, locid) VALUES (:modnam, :locid) "_s,
            { { u":modnam"_s, type.name }, { u":locid"_s, m_groupIds.at(type.group) } }));
        if (m_modelIds.last() <= 0) {
            return false;
        }
    }
    return true;
}

bool SampleFiller::addEntries()
{
    for (const PlannedEntry &entry : std::as_const(m_plan.entries)) {
        m_entryIds.append(insert(u"INSERT INTO loc_seen (nummer, locseenid, ort, kommentar, startdate, locseendate) "
                                 "VALUES (:num, :lsid, :ort, :kmt, :sdate, :lsdate)"_s,
            { { u":num"_s, entry.number }, { u":lsid"_s, m_modelIds.at(entry.locomotiveClass) },
                { u":ort"_s, entry.place }, { u":kmt"_s, entry.comment.isNull() ? u""_s : entry.comment },
                { u":sdate"_s, Clock::now().date() }, { u":lsdate"_s, entry.seen } }));
        if (m_entryIds.last() <= 0) {
            return false;
        }
    }
    return true;
}

bool SampleFiller::addPicture(const PlannedPicture &planned, const Painted &painted)
{
    const QString original = QDir::current().absoluteFilePath(u"Originale/"_s + planned.fileName);
    if (!writeOriginal(original, painted.original, m_plan.entries.at(planned.entries.first()).seen)) {
        return false;
    }
    for (const int entry : planned.entries) {
        if (!storePicture(m_pictureStore.currentFolder(), original, painted.copy, m_entryIds.at(entry))) {
            return false;
        }
        m_pictureStore.noteStored(true);
    }
    return true;
}

bool SampleFiller::storePicture(const QString &folder, const QString &original, const QImage &copy, int entryId)
{
    m_lastCopy = freeCopyPath(folder);
    const int id = insert(u"INSERT INTO loc_picture (pictAuxPath, pictOrigPath, pictHeight, pictWidth, locpictureid) "
                          "VALUES (:pap, :pop, :phe, :pwi, :lpi)"_s,
        { { u":pap"_s, m_lastCopy }, { u":pop"_s, original }, { u":phe"_s, copy.height() }, { u":pwi"_s, copy.width() },
            { u":lpi"_s, entryId } });
    if (id <= 0) {
        return false;
    }
    return writeCopy(copy, m_lastCopy) || fail(u"Die Datei \"%1\" konnte nicht geschrieben werden."_s.arg(m_lastCopy));
}

/// A picture's file carries the day on which it was taken, as that of a camera does.
bool SampleFiller::writeOriginal(const QString &path, const QByteArray &bytes, const QDate &taken)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    const bool isWritten = file.open(QIODevice::WriteOnly | QIODevice::NewOnly) && file.write(bytes) == bytes.size()
        && file.flush() && file.setFileTime(QDateTime(taken, QTime(12, 0)), QFileDevice::FileModificationTime);
    return isWritten || fail(u"Die Datei \"%1\" konnte nicht geschrieben werden."_s.arg(path));
}

int SampleFiller::insert(const QString &statement, const QList<BoundValue> &values)
{
    const WriteOutcome outcome = runWrite(statement, values);
    if (!outcome.done) {
        fail(outcome.errorText);
    }
    return outcome.newId;
}

bool SampleFiller::fail(const QString &reason)
{
    m_errorText = reason;
    return false;
}
