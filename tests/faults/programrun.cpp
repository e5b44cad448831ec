#include "tests/faults/programrun.h"

#include <QDir>

#include <unistd.h>

using namespace Qt::StringLiterals;

void becomeProgram(const QString &folder, const QString &photograph)
{
    QDir::setCurrent(folder);
    qputenv("QT_PLUGIN_PATH", BAHNITO_USER_PLUGINS);
    qputenv("QT_QPA_GENERIC_PLUGINS", "scripteduser:" + photograph.toUtf8());
    ForkedRun::reportStandardOutput();
    execl(BAHNITO_PROGRAM, BAHNITO_PROGRAM, nullptr);
    qFatal("no program %s", BAHNITO_PROGRAM);
}
