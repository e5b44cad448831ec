#include "app/backgroundchooser.h"

#include "store/colorscheme.h"

#include <QCoreApplication>
#include <QPainter>
#include <QPixmap>

#include <array>

using namespace Qt::StringLiterals;

QList<NamedColor> menuColors()
{
    constexpr std::array names {
        QT_TRANSLATE_NOOP("ApplWindow", "grau"),
        QT_TRANSLATE_NOOP("ApplWindow", "weiss"),
        QT_TRANSLATE_NOOP("ApplWindow", "schwarz"),
        QT_TRANSLATE_NOOP("ApplWindow", "blau"),
        QT_TRANSLATE_NOOP("ApplWindow", "gelb"),
        QT_TRANSLATE_NOOP("ApplWindow", "grün"),
    };
    QList<NamedColor> colors;
    for (std::size_t i = 0; i < names.size(); ++i) {
        colors.append(
            { QCoreApplication::translate("ApplWindow", names.at(i)), ColorScheme::palette().at(qsizetype(i)) });
    }
    return colors;
}

QIcon colorButtonIcon(const QColor &color)
{
    QPixmap pixmap(120, 80);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.fillRect(QRect(0, 60, 88, 80), color);
    painter.drawImage(QRect(0, 0, 90, 60), QImage(u":/images/BGround.png"_s), QRect(0, 0, 100, 67));
    return QIcon(pixmap);
}

QIcon colorMenuIcon(const QColor &color)
{
    QPixmap pixmap(75, 50);
    QPainter painter(&pixmap);
    painter.setPen(Qt::NoPen);
    painter.fillRect(QRect(0, 0, 75, 50), color);
    return QIcon(pixmap);
}
