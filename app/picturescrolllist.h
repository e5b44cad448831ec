#pragma once

#include <QList>
#include <QPointer>
#include <QWidget>

class QGridLayout;
class QSqlRecord;
class ViewHolder;

/// The column of group picture buttons, ordered by the groups' names.
class PictureScrollList final : public QWidget
{
    Q_OBJECT

public:
    PictureScrollList(ViewHolder &holder, QWidget *parent = nullptr);

    /// Reads the groups anew and makes their buttons; the previous ones are deleted. When the groups cannot be read,
    /// the buttons that are there stay.
    void rebuild();

    /// The keyboard reaches the buttons from `previous`, a widget of the same window, also after a rebuild.
    void setTabOrderAfter(QWidget *previous);

private:
    void addButtons(QGridLayout &grid, const QList<QSqlRecord> &groups);
    void showHint(QGridLayout &grid, const QString &text, const QString &toolTip);

    ViewHolder &m_holder; // outlives the column
    QPointer<QWidget> m_previous; // in the window's tab order
};
