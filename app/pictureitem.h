#pragma once

#include <QSize>
#include <QToolButton>

class ViewHolder;

/// The size of a group's icon: the picture's size fitted into 120 x 120 with its aspect ratio kept, enlarged if need
/// be, each side rounded to the nearest whole number.
[[nodiscard]] QSize groupIconSize(const QSize &picture);

/// The button of one class group, with the group's picture; a left click starts a search in the group.
class PictureItem final : public QToolButton
{
    Q_OBJECT

public:
    static constexpr int IconLength = 120; // pixels, both ways

    PictureItem(int groupId, const QString &name, const QString &picturePath, ViewHolder &holder, QWidget *parent);

    [[nodiscard]] int groupId() const { return m_groupId; }
    [[nodiscard]] QString picturePath() const { return m_picturePath; }

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void showPicture();
    void showName();

    int m_groupId;
    QString m_picturePath;
    QString m_nameTip; // the group's name as tool tip
    bool m_hasPicture; // as far as is known before it was decoded
    double m_shownScale = 0; // of the screen that the picture was decoded for; 0 before it was
    ViewHolder &m_holder; // outlives the button
};
