#include "app/pictureitem.h"

#include "browser/canvastexts.h"
#include "browser/viewholder.h"
#include "store/pictureloader.h"

#include <QIcon>
#include <QPixmap>

#include <cmath>

using namespace Qt::StringLiterals;

QSize groupIconSize(const QSize &picture)
{
    constexpr double Box = PictureItem::IconLength;
    const double w = picture.width();
    const double h = picture.height();
    const auto rounded = [](double length) { return std::max(1, int(std::lround(length))); };
    return h >= w ? QSize(rounded(w / (h / Box)), int(Box)) : QSize(int(Box), rounded(h / (w / Box)));
}

PictureItem::PictureItem(
    int groupId, const QString &name, const QString &picturePath, ViewHolder &holder, QWidget *parent)
    : QToolButton(parent)
    , m_groupId(groupId)
    , m_picturePath(picturePath)
    , m_holder(holder)
{
    setObjectName(u"group%1"_s.arg(groupId));
    setIconSize({ IconLength, IconLength });
    setFixedSize(IconLength + 8, IconLength + 8);
    setAutoRaise(true);
    const QString shownName = CanvasTexts::shown(name);
    setToolTip(u"<p>%1</p>"_s.arg(shownName.toHtmlEscaped())); // as rich text only so that it is plainly escaped
    setAccessibleName(shownName);
    showPicture(shownName);
    connect(this, &QToolButton::clicked, this, [this] { m_holder.searchGroup(m_groupId); });
}

void PictureItem::showPicture(const QString &name)
{
    const double scale = devicePixelRatioF();
    QImage image = loadPicture(m_picturePath, [scale](const QSize &size) { return groupIconSize(size) * scale; });
    if (image.isNull()) {
        // The icon stays empty; the name keeps the button recognisable.
        setToolButtonStyle(Qt::ToolButtonTextOnly);
        setText(fontMetrics().elidedText(name, Qt::ElideRight, IconLength).replace(u'&', u"&&"_s));
        return;
    }
    image.setDevicePixelRatio(scale);
    setIcon(QIcon(QPixmap::fromImage(image)));
}
