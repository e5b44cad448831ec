#include "forms/picturefiledialog.h"

#include "forms/picturepreview.h"
#include "store/pictureloader.h"

#include <QDateTime>
#include <QFileSystemModel>
#include <QGridLayout>
#include <QHeaderView>
#include <QIdentityProxyModel>
#include <QListView>
#include <QSplitter>
#include <QStyle>
#include <QTimer>
#include <QTreeView>

using namespace Qt::StringLiterals;

namespace {

enum Column { Name, Size, Kind, Modified };

constexpr QSize FirstSize(1100, 600);
constexpr QSize PreviewSize(300, 200);
constexpr int SidebarWidth = 150;
constexpr int PauseBeforeShowing = 120; // ms; whoever walks through a folder must not wait for each picture

/// Sizes and dates in German, which the toolkit gives in the system's language.
class GermanFiles final : public QIdentityProxyModel
{
public:
    using QIdentityProxyModel::QIdentityProxyModel;

    /// Without the toolkit's own empty picture before the names, which it makes anew each time that it is painted.
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        return role == Qt::DecorationRole ? QVariant() : QIdentityProxyModel::headerData(section, orientation, role);
    }

    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override
    {
        if (role == Qt::TextAlignmentRole && index.column() == Size) {
            return int(Qt::AlignLeft | Qt::AlignVCenter); // at the right it would run into the kind behind it
        }
        const auto *files = qobject_cast<const QFileSystemModel *>(sourceModel());
        if (role != Qt::DisplayRole || !files) {
            return QIdentityProxyModel::data(index, role);
        }
        const QModelIndex file = mapToSource(index);
        if (index.column() == Modified) {
            return files->lastModified(file).toString(u"dd.MM.yyyy hh:mm"_s);
        }
        if (index.column() == Size && !files->isDir(file)) {
            return QLocale().formattedDataSize(files->size(file));
        }
        return QIdentityProxyModel::data(index, role);
    }
};

} // namespace

PictureFileDialog::PictureFileDialog(
    QWidget *parent, const QString &title, const QString &folder, const QString &filter)
    : QFileDialog(parent, title, folder, filter)
{
    setOption(DontUseNativeDialog);
    setFileMode(ExistingFile);
    setProxyModel(new GermanFiles(this));
    widenList();
    addPreview();
    resize(FirstSize);
    setOption(ReadOnly); // of the model as well, so it comes last: the originals are never deleted or renamed
}

void PictureFileDialog::widenList()
{
    if (auto *sidebar = findChild<QListView *>(u"sidebar"_s)) {
        const int side = style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, sidebar);
        sidebar->setIconSize({ side, side }); // else each has the size that its source happens to have
    }
    if (auto *splitter = findChild<QSplitter *>()) {
        splitter->setSizes({ SidebarWidth, FirstSize.width() - SidebarWidth - PreviewSize.width() });
    }
    if (const auto *list = findChild<QTreeView *>(u"treeView"_s)) {
        const QFontMetrics metrics = list->fontMetrics();
        list->header()->setSectionResizeMode(Name, QHeaderView::Stretch);
        list->header()->resizeSection(Size, metrics.horizontalAdvance(u"1023,99 MiB   "_s));
        list->header()->resizeSection(Kind, metrics.horizontalAdvance(u"Verzeichnis    "_s));
        list->header()->resizeSection(Modified, metrics.horizontalAdvance(u"31.12.2000 23:59    "_s));
    }
}

void PictureFileDialog::addPreview()
{
    auto *grid = qobject_cast<QGridLayout *>(layout());
    if (!grid) {
        return; // another toolkit's dialog; it works without a preview
    }
    m_preview = new PicturePreview(this, PreviewSize);
    m_preview->setObjectName(u"filePreview"_s);
    grid->addWidget(m_preview, 1, grid->columnCount(), Qt::AlignTop);
    m_pause = new QTimer(this);
    m_pause->setSingleShot(true);
    m_pause->setInterval(PauseBeforeShowing);
    connect(m_pause, &QTimer::timeout, this, &PictureFileDialog::showMarked);
    connect(this, &QFileDialog::currentChanged, this, [this](const QString &path) {
        m_marked = path;
        m_pause->start();
    });
}

void PictureFileDialog::showMarked()
{
    if (isSlowToRead(m_marked)) {
        m_preview->clear(tr("Zu gross für die Vorschau"));
    } else if (!m_preview->showFile(m_marked)) {
        m_preview->clear();
    }
}
