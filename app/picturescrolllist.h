#pragma once

#include <QPointer>
#include <QWidget>

class QGridLayout;
class ViewHolder;

/// The column of group picture buttons, ordered by the groups' names.
class PictureScrollList final : public QWidget
{
    Q_OBJECT

public:
    PictureScrollList(ViewHolder &holder, QWidget *parent = nullptr);

    /// Reads the groups anew and makes their buttons; the previous ones are deleted.
    void rebuild();

    /// The keyboard reaches the buttons from `previous`, a widget of the same window, also after a rebuild.
    void setTabOrderAfter(QWidget *previous);

private:
    void showFirstStep(QGridLayout &grid);

    ViewHolder &m_holder; // outlives the column
    QPointer<QWidget> m_previous; // in the window's tab order
};
