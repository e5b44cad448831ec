#include "forms/picturechooser.h"

#include "forms/picturefiledialog.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>
#include <QUrl>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QString picturesFolder()
{
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    return QDir(pictures).exists() ? pictures : QDir::homePath();
}

/// Without that drive the text would be taken for a file name.
QString firstFolder()
{
    const QString drive = u"C:"_s;
    const QFileInfoList drives = QDir::drives();
    const bool hasDrive = std::any_of(drives.begin(), drives.end(),
        [&drive](const QFileInfo &root) { return root.path().startsWith(drive, Qt::CaseInsensitive); });
    return hasDrive ? drive : picturesFolder();
}

QString &lastFolder()
{
    static QString folder;
    return folder;
}

QString startFolder()
{
    return !lastFolder().isEmpty() && QDir(lastFolder()).exists() ? lastFolder() : firstFolder();
}

} // namespace

QString choosePictureFile(QWidget *parent)
{
    PictureFileDialog dialog(parent, QCoreApplication::translate("LocPictureForm", "Open File"), startFolder(),
        QCoreApplication::translate("LocPictureForm", "Images (*.png *.jpg)"));
    dialog.setSidebarUrls({ QUrl::fromLocalFile(QDir::homePath()), QUrl::fromLocalFile(picturesFolder()) });
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) {
        return {};
    }
    QString path = dialog.selectedFiles().first();
    lastFolder() = QFileInfo(path).absolutePath(); // not the dialog's folder, for a path may have been typed
    return path;
}
