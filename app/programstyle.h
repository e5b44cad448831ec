#pragma once

#include <QProxyStyle>

/// The desktop's style, with the program's own icons in message boxes: those that come with the toolkit are coarse on
/// dense screens. Buttons of boxes show their text only, as all the other buttons of the program do.
class ProgramStyle final : public QProxyStyle
{
    Q_OBJECT

public:
    [[nodiscard]] QIcon standardIcon(
        StandardPixmap icon, const QStyleOption *option, const QWidget *widget) const override;
    [[nodiscard]] int styleHint(
        StyleHint hint, const QStyleOption *option, const QWidget *widget, QStyleHintReturn *returnData) const override;
};
