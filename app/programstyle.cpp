#include "app/programstyle.h"

using namespace Qt::StringLiterals;

QIcon ProgramStyle::standardIcon(StandardPixmap icon, const QStyleOption *option, const QWidget *widget) const
{
    auto known = m_icons.constFind(icon);
    if (known != m_icons.constEnd()) {
        return *known;
    }
    switch (icon) {
    case SP_MessageBoxWarning:
    case SP_MessageBoxCritical:
        known = m_icons.insert(icon, QIcon(u":/images/Warnung.png"_s));
        break;
    case SP_MessageBoxInformation:
    case SP_MessageBoxQuestion:
        known = m_icons.insert(icon, QIcon(u":/images/Hinweis.png"_s));
        break;
    default:
        known = m_icons.insert(icon, QProxyStyle::standardIcon(icon, option, widget));
        break;
    }
    return *known;
}

int ProgramStyle::styleHint(
    StyleHint hint, const QStyleOption *option, const QWidget *widget, QStyleHintReturn *returnData) const
{
    if (hint == SH_DialogButtonBox_ButtonsHaveIcons) {
        return 0;
    }
    return QProxyStyle::styleHint(hint, option, widget, returnData);
}
