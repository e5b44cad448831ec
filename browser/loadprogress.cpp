#include "browser/loadprogress.h"

#include <QCoreApplication>

namespace {

constexpr int SmallestWidth = 360; // pixels

} // namespace

LoadProgress::LoadProgress(const QString &label, int rows, QWidget *parent, int showAfter)
    : m_dialog(label, QCoreApplication::translate("PictureScene", "abbrechen"), 0, rows, parent)
    , m_showAfter(showAfter)
{
    m_dialog.setWindowModality(Qt::WindowModal);
    m_dialog.setMinimumDuration(showAfter);
    m_dialog.setWindowTitle(QCoreApplication::translate("PictureScene", "Einträge laden"));
    m_dialog.setMinimumWidth(SmallestWidth);
    m_dialog.setValue(0);
    m_running.start();
}

LoadProgress::~LoadProgress()
{
    if (m_dialog.isVisible()) {
        m_dialog.setValue(m_dialog.maximum());
    } else {
        m_dialog.reset(); // setting the end would show the dialog for an instant
    }
}

bool LoadProgress::advance(int row)
{
    if (m_running.elapsed() >= m_showAfter) {
        m_dialog.setValue(row);
    }
    return !m_dialog.wasCanceled();
}
