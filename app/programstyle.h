#pragma once

#include <QHash>
#include <QIcon>
#include <QProxyStyle>

/// The desktop's style, with the program's own icons in message boxes: those that come with the toolkit are coarse on
/// dense screens. Buttons of boxes show their text only, as all the other buttons of the program do. Each icon is made
/// once: the toolkit keeps something of every new one for ever.
class ProgramStyle final : public QProxyStyle
{
    Q_OBJECT

public:
    [[nodiscard]] QIcon standardIcon(
        StandardPixmap icon, const QStyleOption *option, const QWidget *widget) const override;
    [[nodiscard]] int styleHint(
        StyleHint hint, const QStyleOption *option, const QWidget *widget, QStyleHintReturn *returnData) const override;

private:
    [[nodiscard]] QIcon newIcon(StandardPixmap icon, const QStyleOption *option, const QWidget *widget) const;

    mutable QHash<StandardPixmap, QIcon> m_icons;
};
