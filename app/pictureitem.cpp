#include "app/pictureitem.h"

#include "browser/canvastexts.h"
#include "browser/focusframe.h"
#include "browser/viewholder.h"
#include "store/catalogquery.h"
#include "store/pictureloader.h"

#include <QIcon>
#include <QIconEngine>
#include <QKeyEvent>
#include <QPainter>
#include <QPixmap>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

/// One picture as it is, for all states of a button. The toolkit's own icons would put each into a cache of theirs and
/// keep its key for ever, with each new picture.
class PictureIcon final : public QIconEngine
{
public:
    explicit PictureIcon(const QPixmap &picture)
        : m_picture(picture)
    { }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override
    {
        Q_UNUSED(mode)
        Q_UNUSED(state)
        painter->drawPixmap(rect, m_picture);
    }
    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        Q_UNUSED(size)
        Q_UNUSED(mode)
        Q_UNUSED(state)
        return m_picture;
    }
    QSize actualSize(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        Q_UNUSED(size)
        Q_UNUSED(mode)
        Q_UNUSED(state)
        return m_picture.size();
    }
    QList<QSize> availableSizes(QIcon::Mode mode, QIcon::State state) override
    {
        Q_UNUSED(mode)
        Q_UNUSED(state)
        return { m_picture.size() };
    }
    [[nodiscard]] QIconEngine *clone() const override { return new PictureIcon(m_picture); }

private:
    QPixmap m_picture;
};

} // namespace

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
    , m_hasPicture(!picturePath.isEmpty())
    , m_holder(holder)
{
    setObjectName(u"group%1"_s.arg(groupId));
    setIconSize({ IconLength, IconLength });
    setFixedSize(IconLength + 8, IconLength + 8);
    setAutoRaise(true);
    const QString shownName = CanvasTexts::shown(name);
    m_nameTip = u"<p>%1</p>"_s.arg(shownName.toHtmlEscaped()); // as rich text only so that it is plainly escaped
    setToolTip(m_nameTip);
    setAccessibleName(shownName);
    if (!m_hasPicture) {
        showName();
    }
    connect(this, &QToolButton::clicked, this, [this] { m_holder.searchGroup(m_groupId); });
}

/// Classes come and go without the column being built anew, so the tool tip looks when it is about to be shown.
bool PictureItem::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip) {
        // Group 0, an id that cannot be read, would count the classes of all groups.
        const bool isEmpty = m_groupId == 0 || CatalogQuery::instance().countModels(m_groupId) == 0;
        setToolTip(isEmpty ? m_nameTip
                    + tr("<p>Noch keine Baureihe: Legen Sie mit „Baureihe-Gruppen bearbeiten“ die erste "
                         "an.</p>")
                           : m_nameTip);
    }
    return QToolButton::event(event);
}

/// A tool button knows only the blank; Return starts the search too, as it does on the canvas.
void PictureItem::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        if (!event->isAutoRepeat()) { // a key held down would answer the dialog and open it again
            click();
        }
        return;
    }
    QToolButton::keyPressEvent(event);
}

/// A long column is mostly out of sight, so a picture's file is opened when its button is painted for the first time,
/// and again on a screen of another scale. The style's mark of the keyboard focus is lost on a picture; the canvas's is
/// not.
void PictureItem::paintEvent(QPaintEvent *event)
{
    if (m_hasPicture && !qFuzzyCompare(m_shownScale, devicePixelRatioF())) {
        showPicture();
    }
    QToolButton::paintEvent(event);
    if (hasFocus()) {
        QPainter painter(this);
        const double margin = FocusFrame::Margin;
        FocusFrame::paint(&painter, QRectF(rect()).adjusted(margin, margin, -margin, -margin));
    }
}

void PictureItem::showPicture()
{
    const double scale = devicePixelRatioF();
    m_shownScale = scale;
    QImage image = loadPicture(
        m_picturePath, [scale](const QSize &size) { return groupIconSize(size) * scale; }, Reduction::Quick);
    if (image.isNull()) {
        m_hasPicture = false;
        setIcon({});
        showName();
        return;
    }
    image.setDevicePixelRatio(scale);
    setIcon(QIcon(new PictureIcon(QPixmap::fromImage(image)))); // the icon owns it
}

/// The icon stays empty; the name keeps the button recognisable.
void PictureItem::showName()
{
    setToolButtonStyle(Qt::ToolButtonTextOnly);
    setText(fontMetrics().elidedText(accessibleName(), Qt::ElideRight, IconLength).replace(u'&', u"&&"_s));
}
