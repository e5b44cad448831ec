#pragma once

#include <QWidget>

class ViewHolder;

/// The column of group picture buttons, ordered by the groups' names.
class PictureScrollList final : public QWidget
{
    Q_OBJECT

public:
    PictureScrollList(ViewHolder &holder, QWidget *parent = nullptr);

    /// Reads the groups anew and makes their buttons; the previous ones are deleted.
    void rebuild();

private:
    ViewHolder &m_holder; // outlives the column
};
