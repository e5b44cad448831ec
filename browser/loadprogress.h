#pragma once

#include <QElapsedTimer>
#include <QProgressDialog>

/// The progress dialog of a page that is being loaded. It is shown only when loading has really taken longer than
/// `showAfter`: the dialog itself would guess, and flash for the first rows of every large class.
class LoadProgress final
{
public:
    static constexpr int ShowAfter = 2000; // ms

    /// `parent` is the window whose input waits until the page is there.
    LoadProgress(const QString &label, int rows, QWidget *parent, int showAfter = ShowAfter);
    ~LoadProgress();
    Q_DISABLE_COPY_MOVE(LoadProgress)

    /// Called between rows; false once the user has cancelled.
    [[nodiscard]] bool advance(int row);

private:
    QProgressDialog m_dialog;
    QElapsedTimer m_running;
    int m_showAfter;
};
