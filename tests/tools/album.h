#pragma once

#include <QDir>

#include <functional>

class QWidget;

/// Writes what windows show into the picture files of one folder.
class Album final
{
public:
    explicit Album(const QString &folder)
        : m_folder(folder)
    { }

    void add(QWidget *widget, const QString &name);

    /// Runs `open`, which opens a modal window, and takes its picture after `prepare`; then closes it.
    void addModal(
        const QString &name, const std::function<void()> &open, const std::function<void(QWidget *)> &prepare = {});

    /// Clicks a row of the dialog's only list, counted from 0.
    static void clickRow(const QWidget *dialog, int row);

private:
    QDir m_folder;
};
