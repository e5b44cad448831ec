#include "forms/dialogstyle.h"

using namespace Qt::StringLiterals;

QFont dialogFont(int pointSize)
{
    return { u"Helvetica [Cronyx]"_s, pointSize };
}

QIcon dialogIcon()
{
    return QIcon(u"./Lok.ico"_s);
}
