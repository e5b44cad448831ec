#include "bench/captureoperations.h"

#include "bench/capture.h"
#include "bench/firstpaint.h"
#include "bench/paintwatch.h"
#include "bench/sources.h"
#include "forms/locpictureform.h"
#include "store/rowvalue.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QGraphicsView>
#include <QLineEdit>
#include <QPushButton>
#include <QSqlQuery>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

const QString Target = u"./Data/Pictures/messung.jpg"_s; // of the floors, beside the folders of the copies

/// Answers the file dialog that is about to open; `chosenAt` becomes the moment of the choice.
void answerFileDialog(const QString &path, double &chosenAt)
{
    QTimer::singleShot(0, qApp, [path, &chosenAt] {
        auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
        if (!dialog) {
            qFatal("The file dialog did not open.");
        }
        QObject::connect(dialog, &QFileDialog::accepted, dialog, [&chosenAt] { chosenAt = nowMs(); });
        dialog->findChild<QLineEdit *>(u"fileNameEdit"_s)->setText(path);
        dialog->findChild<QDialogButtonBox *>()->button(QDialogButtonBox::Open)->click();
    });
}

/// From the choice in the file dialog until the picture is shown, its row stored and its file on the disk.
double capture(const QString &path)
{
    LocPictureForm form(-1, -1);
    form.show();
    auto *preview = form.findChild<QGraphicsView *>(u"preview"_s);
    auto *watch = new PaintWatch(preview); // belongs to the preview
    watch->waitForPaint();
    double chosenAt = 0;
    answerFileDialog(path, chosenAt);
    form.browsePictures();
    watch->waitForPaint();
    form.addLocPicture();
    const double taken = nowMs() - chosenAt;
    if (!form.isSaved() || chosenAt == 0) {
        qFatal("%s was not saved.", qUtf8Printable(path));
    }
    form.done(QDialog::Accepted);
    return taken;
}

int newestPicture()
{
    QSqlQuery query(u"SELECT MAX(id) FROM loc_picture"_s);
    return query.next() ? rowId(query.value(0)) : 0;
}

/// Takes the picture away again, so that the catalogue stays the same.
double captured(const QString &path)
{
    const double taken = capture(path);
    LocPictureForm::deletePicture(newestPicture(), false);
    return taken;
}

} // namespace

Timings measureCapture(const QString &folder, bool isQuick, int repetitions)
{
    QList<Operation> operations;
    const QList<SourcePhoto> photos = sourcePhotos(isQuick);
    for (const SourcePhoto &photo : photos) {
        const QString path = QDir(folder).absoluteFilePath(photo.name);
        operations.append({ photo.name, [path] { return captured(path); } });
        operations.append(
            { photo.name + u" floor"_s, [path] { return elapsed([&path] { capturePlainly(path, Target); }); } });
    }
    const QString first = QDir(folder).absoluteFilePath(photos.first().name);
    const QString target = QFileInfo(Target).absoluteFilePath();
    if (captureWithVips(first, target) >= 0) {
        operations.append({ photos.first().name + u" vips"_s, [=] { return captureWithVips(first, target); } });
    }
    Timings timings = measure(operations, repetitions);
    QFile::remove(Target);
    return timings;
}
