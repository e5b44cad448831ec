#include "tests/faults/pictureuse.h"

#include "forms/locpictureform.h"
#include "forms/storedpicture.h"
#include "store/copyfile.h"
#include "store/pictureloader.h"
#include "tests/faults/dialoganswerer.h"
#include "tests/faults/faultfolder.h"
#include "tests/faults/forkedrun.h"

#include <QFile>

#include <algorithm>
#include <ctime>

#include <sys/resource.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize PreviewBox(540, 360);
constexpr unsigned LongestWait = 60; // seconds by the clock: so long a file takes only when its reading is blocked

} // namespace

void PictureUse::write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        qFatal("cannot write %s", qUtf8Printable(path));
    }
}

bool PictureUse::readAndStore(const QString &path)
{
    const QSize size = pictureSize(path);
    const QImage preview = loadPicture(path, PreviewBox);
    const QImage copy = reducedPicture(path);
    if (copy.isNull()) {
        return false;
    }
    const QString target = path + u".kopie"_s;
    const bool isWritten = writeCopy(copy, target) && QImage(target).size() == copy.size();
    QFile::remove(target);
    return size.isValid() && !preview.isNull() && isWritten;
}

bool PictureUse::useInForm(const QString &path, DialogAnswerer &answers)
{
    answers.setFile(path);
    answers.on(u"Edit Bahnito-Bild"_s, [](QWidget *form) {
        DialogAnswerer::click(form, u"Bild auswählen"_s);
        DialogAnswerer::click(form, u"Bild speichern"_s);
        DialogAnswerer::click(form, u"Schliessen"_s);
    });
    LocPictureForm form(1, -1);
    form.exec();
    const QString boxes = answers.takeBoxes().join(u'/');
    if (boxes != (form.isSaved() ? QString() : u"File-Info|Die Datei ist kein lesbares Bild!"_s)) {
        qFatal("unexpected boxes: %s", qUtf8Printable(boxes));
    }
    if (!form.isSaved()) {
        return false;
    }
    if (QImage(form.copyPath()).isNull() || !damages(u"."_s).isEmpty()) {
        qFatal("a damaged copy: %s", qUtf8Printable(damages(u"."_s).join(u'/')));
    }
    LocPictureForm::deletePicture(form.pictureId(), false);
    return true;
}

PictureUse::Figures PictureUse::figuresOf(
    const QString &path, int files, const std::function<void(int)> &make, const Use &use)
{
    const ForkedRun::End end = runForked(
        [&] {
            Figures figures;
            for (int i = 0; i < files; ++i) {
                make(i);
                alarm(LongestWait);
                const std::clock_t start = std::clock(); // not the time of day: others use the machine too
                figures.readable += use(path) ? 1 : 0;
                alarm(0);
                figures.slowest = std::max(figures.slowest, int((std::clock() - start) * 1000 / CLOCKS_PER_SEC));
            }
            rusage usage {};
            getrusage(RUSAGE_SELF, &usage);
            ForkedRun::report(u"%1 %2 %3"_s.arg(QString::number(figures.readable), QString::number(figures.slowest),
                QString::number(usage.ru_maxrss / 1024)));
        },
        (files + 1) * int(LongestWait) * 1000);
    const QStringList words = end.lines.value(0).split(u' ');
    if (!end.isGood() || words.size() != 3) {
        qFatal("%s: %s", qUtf8Printable(path), qUtf8Printable(end.description()));
    }
    return { words.at(0).toInt(), words.at(1).toInt(), words.at(2).toDouble() };
}
