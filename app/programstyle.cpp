#include "app/programstyle.h"

using namespace Qt::StringLiterals;

QIcon ProgramStyle::standardIcon(StandardPixmap icon, const QStyleOption *option, const QWidget *widget) const
{
    if (!m_icons.contains(icon)) {
        m_icons.insert(icon, newIcon(icon, option, widget));
    }
    return m_icons.value(icon);
}

QIcon ProgramStyle::newIcon(StandardPixmap icon, const QStyleOption *option, const QWidget *widget) const
{
    switch (icon) {
    case SP_MessageBoxWarning:
    case SP_MessageBoxCritical:
        return QIcon(u":/images/Warnung.png"_s);
    case SP_MessageBoxInformation:
    case SP_MessageBoxQuestion:
        return QIcon(u":/images/Hinweis.png"_s);
    default:
        return QProxyStyle::standardIcon(icon, option, widget);
    }
}

int ProgramStyle::styleHint(
    StyleHint hint, const QStyleOption *option, const QWidget *widget, QStyleHintReturn *returnData) const
{
    if (hint == SH_DialogButtonBox_ButtonsHaveIcons) {
        return 0;
    }
    return QProxyStyle::styleHint(hint, option, widget, returnData);
}
