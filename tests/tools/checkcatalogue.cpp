#include "tests/support/cataloguecheck.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTextStream>

using namespace Qt::StringLiterals;

namespace {

enum ExitCode { Sound = 0, Damaged = 1, NotChecked = 2 };

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QTextStream out(stdout);
    QTextStream err(stderr);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.size() != 1 || arguments.first().startsWith(u'-')) {
        err << u"Aufruf: check-catalogue ORDNER\nPrüft den Katalog in ORDNER und nennt jeden Fehler in einer Zeile.\n"_s;
        return NotChecked;
    }
    if (!QFile::exists(QDir(arguments.first()).filePath(u"Data/bahnakte.dat"_s))) {
        err << u"In \"%1\" ist kein Katalog.\n"_s.arg(arguments.first());
        return NotChecked;
    }
    const QStringList findings = catalogueFindings(arguments.first());
    for (const QString &finding : findings) {
        out << finding << '\n';
    }
    return findings.isEmpty() ? Sound : Damaged;
}
