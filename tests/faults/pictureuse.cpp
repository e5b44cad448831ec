#include "tests/faults/pictureuse.h"

#include "forms/locpictureform.h"
#include "forms/storedpicture.h"
#include "store/copyfile.h"
#include "store/pictureloader.h"
#include "tests/faults/dialoganswerer.h"
#include "tests/faults/faultfolder.h"
#include "tests/faults/forkedrun.h"
#include "tests/faults/pictureforgery.h"
#include "tests/faults/sleepwatch.h"

#include <QFile>

#include <algorithm>
#include <ctime>

#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize PreviewBox(540, 360);
constexpr QSize LargestCopy(750, 500);

int longestLook = 0; // ms, of the use that is going on; 0 when it does not look more than once

int computed(std::clock_t start) // and not by the time of day: others use the machine too
{
    return int((std::clock() - start) * 1000 / CLOCKS_PER_SEC);
}

/// One of the times that a use makes its user wait.
template <typename Look> auto timed(Look look)
{
    const std::clock_t start = std::clock();
    const auto result = look();
    longestLook = std::max(longestLook, computed(start));
    return result;
}

/// As the manual promises it: fitted into the largest copy and never enlarged.
QSize sizeOfCopy(const QSize &picture)
{
    const bool fits = picture.width() <= LargestCopy.width() && picture.height() <= LargestCopy.height();
    return fits ? picture : picture.scaled(LargestCopy, Qt::KeepAspectRatio).expandedTo({ 1, 1 });
}

/// A use is reported before it begins, so that the last one of a process that has crashed is known.
QString lastUse(const ForkedRun::End &end)
{
    ForkedRun::End bare = end;
    bare.lines.clear();
    return u"file %1: "_s.arg(end.lines.size() - 1) + bare.description();
}

} // namespace

void PictureUse::write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        qFatal("cannot write %s", qUtf8Printable(path));
    }
}

void PictureUse::Figures::add(const Figures &more)
{
    tried += more.tried;
    readable += more.readable;
    slowest = std::max(slowest, more.slowest);
    memory = std::max(memory, more.memory);
}

QString PictureUse::Figures::text() const
{
    return u"%1 tried, %2 readable, slowest %3 ms, at most %4 MB"_s.arg(
        QString::number(tried), QString::number(readable), QString::number(slowest), QString::number(memory, 'f', 0));
}

bool PictureUse::readAndStore(const QString &path)
{
    const QSize size = pictureSize(path);
    const QImage preview = timed([&path] { return loadPicture(path, PreviewBox); });
    const QImage copy = timed([&path] { return reducedPicture(path); });
    if (copy.isNull()) {
        return false;
    }
    if (!size.isValid() || preview.isNull() || copy.size() != sizeOfCopy(size)) {
        qFatal("%s is read, but its size or its preview is wrong", qUtf8Printable(path));
    }
    const QString target = path + u".kopie"_s;
    if (!writeCopy(copy, target) || QImage(target).size() != copy.size() || !QFile::remove(target)) {
        qFatal("%s is read, but has no whole copy", qUtf8Printable(path));
    }
    return true;
}

QList<QByteArray> PictureUse::makeSamples(const QString &folder)
{
    const auto path = [&folder](int sample) -> QString { return folder + u'/' + QString::number(sample); };
    const ForkedRun::End end = runForked([&path] { // painting starts threads, which the later forks would miss
        for (int i = 0; const QByteArray &sample : PictureForgery::samples()) {
            write(path(i++), sample);
        }
    });
    QList<QByteArray> samples;
    for (int i = 0; i < PictureForgery::SampleCount; ++i) {
        QFile file(path(i));
        if (!end.isGood() || !file.open(QIODevice::ReadOnly)) {
            qFatal("no sample pictures: %s", qUtf8Printable(end.description()));
        }
        samples.append(file.readAll());
    }
    return samples;
}

PictureUse::FormResult PictureUse::chooseInForm(const QString &path, DialogAnswerer &answers)
{
    answers.setFile(path);
    answers.on(u"Edit Bahnito-Bild"_s, [](QWidget *form) {
        DialogAnswerer::click(form, u"Bild auswählen"_s);
        DialogAnswerer::click(form, u"Bild speichern"_s);
        DialogAnswerer::click(form, u"Schliessen"_s);
    });
    LocPictureForm form(1, -1);
    form.exec();
    const FormResult result { answers.takeBoxes().join(u'/'), form.isSaved(), QImage(form.copyPath()) };
    if (!damages(u"."_s).isEmpty()) {
        qFatal("a damaged copy: %s", qUtf8Printable(damages(u"."_s).join(u'/')));
    }
    if (form.isSaved()) {
        LocPictureForm::deletePicture(form.pictureId(), false);
    }
    return result;
}

bool PictureUse::useInForm(const QString &path, DialogAnswerer &answers)
{
    const FormResult result = chooseInForm(path, answers);
    if (result.boxes != (result.isSaved ? QString() : Unreadable)) {
        qFatal("unexpected boxes: %s", qUtf8Printable(result.boxes));
    }
    if (result.isSaved == result.copy.isNull()) {
        qFatal("the copy and its row do not agree");
    }
    return result.isSaved;
}

PictureUse::Figures PictureUse::figuresOf(
    const QString &path, int files, const std::function<void(int)> &make, const Use &use)
{
    const ForkedRun::End end = runForked(
        [&] {
            Figures figures;
            for (int i = 0; i < files; ++i) {
                ForkedRun::report(QString::number(i));
                make(i);
                const SleepWatch watch;
                longestLook = 0;
                const std::clock_t start = std::clock();
                figures.readable += use(path) ? 1 : 0;
                figures.slowest = std::max(figures.slowest, longestLook > 0 ? longestLook : computed(start));
            }
            rusage usage {};
            getrusage(RUSAGE_SELF, &usage);
            ForkedRun::report(u"%1 %2 %3"_s.arg(QString::number(figures.readable), QString::number(figures.slowest),
                QString::number(usage.ru_maxrss / 1024)));
        },
        (files + 1) * SleepWatch::LongestTime * 1000);
    const QStringList words = end.lines.value(files).split(u' ');
    if (!end.isGood() || words.size() != 3) {
        qFatal("%s, %s", qUtf8Printable(path), qUtf8Printable(lastUse(end)));
    }
    return { files, words.at(0).toInt(), words.at(1).toInt(), words.at(2).toDouble() };
}
