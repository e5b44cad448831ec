#include "browser/pictureopener.h"

#include "search/messagebox.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QFile>
#include <QFileInfo>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

bool canBeRead(const QString &path)
{
    QFile file(path);
    return QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly); // opening a pipe would block for ever
}

QString tr(const char *text)
{
    return QCoreApplication::translate("Picture", text);
}

} // namespace

void openSourcePicture(const QString &path, QWidget *parent)
{
    if (canBeRead(path)) {
        QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath()));
        return;
    }
    const bool isSample = path.contains(u"xabe/Pictures/02Bahnito"_s);
    MessageBox::warning(parent, tr("Datei-Fehler"),
        isSample ? tr("Bilddatei stammt aus den mitgelieferten Testdaten, das Original ist nicht vorhanden!")
                 : tr("Bilddatei existiert nicht mehr unter diesem Verzeichnis!"));
}
