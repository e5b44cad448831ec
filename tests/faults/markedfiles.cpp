#include "tests/faults/markedfiles.h"

#include "forms/picturepreview.h"

#include <QTest>
#include <QTreeView>

using namespace Qt::StringLiterals;

MarkedFiles::MarkedFiles(const QString &folder, int files)
    : m_dialog(nullptr, u"Open File"_s, folder, u"Images (*.png *.jpg)"_s)
    , m_list(m_dialog.findChild<QTreeView *>(u"treeView"_s))
    , m_preview(m_dialog.findChild<PicturePreview *>(u"filePreview"_s))
{
    m_dialog.show();
    const auto rows = [this] { return m_list->model()->rowCount(m_list->rootIndex()); };
    if (!QTest::qWaitFor([&] { return rows() == files; })) {
        qFatal("%d files are listed", rows());
    }
}

MarkedFiles::Outcome MarkedFiles::mark(const QString &name)
{
    m_preview->clear(u"..."_s); // which the preview never says of itself
    const QImage untouched = m_preview->grab().toImage();
    const QModelIndex first = m_list->model()->index(0, 0, m_list->rootIndex());
    const QModelIndex file = m_list->model()->match(first, Qt::DisplayRole, name).value(0); // rows are sorted later
    m_list->setCurrentIndex(file);
    if (!QTest::qWaitFor([&] { return m_preview->grab().toImage() != untouched; })) {
        return Nothing;
    }
    return m_preview->scene()->items().isEmpty() ? Notice : Picture;
}
