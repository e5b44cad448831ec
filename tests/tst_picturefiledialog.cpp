#include "app/startup.h"
#include "forms/picturefiledialog.h"
#include "forms/picturepreview.h"
#include "tests/support/modalscript.h"
#include "tests/support/testcatalogue.h"
#include "tests/support/testmain.h"
#include "tests/support/testpictures.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileSystemModel>
#include <QGraphicsItem>
#include <QLineEdit>
#include <QListView>
#include <QTest>
#include <QToolButton>
#include <QTreeView>
#include <QUrl>

#include <memory>

using namespace Qt::StringLiterals;

/// The dialog that picks a photograph among the user's originals: it shows them and leaves them alone.
class TestPictureFileDialog final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void filesAreListedInGerman();
    void markedFileIsPreviewed();
    void originalsCannotBeDeletedOrRenamed_data();
    void originalsCannotBeDeletedOrRenamed();
    void nothingCanBeDroppedOrMade();
    void sizesKeepAwayFromTheKinds();
    void placesHaveIconsOfOneSize();

private:
    std::unique_ptr<TestCatalogue> m_catalogue;
};

void TestPictureFileDialog::initTestCase()
{
    Startup::speakGerman(*qApp);
    Startup::dress();
}

void TestPictureFileDialog::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    QVERIFY(QDir().mkdir(u"Fotos"_s));
    writeTestJpeg(u"Fotos/a.jpg"_s, { 300, 200 });
}

void TestPictureFileDialog::cleanup()
{
    m_catalogue.reset();
}

void TestPictureFileDialog::filesAreListedInGerman()
{
    QFile file(u"Fotos/a.jpg"_s);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(QDateTime(QDate(1982, 10, 9), QTime(7, 5)), QFile::FileModificationTime));
    file.close();
    const QLocale former;
    QLocale::setDefault(QLocale(QLocale::German));
    PictureFileDialog dialog(nullptr, u"Open File"_s, u"Fotos"_s, u"Images (*.png *.jpg)"_s);
    dialog.show();
    const auto *list = dialog.findChild<QTreeView *>(u"treeView"_s);
    QTRY_COMPARE(list->model()->rowCount(list->rootIndex()), 1);
    const auto cell
        = [list](int column) { return list->model()->index(0, column, list->rootIndex()).data().toString(); };
    QCOMPARE(cell(0), u"a.jpg"_s);
    QTRY_COMPARE(cell(3), u"09.10.1982 07:05"_s);
    QCOMPARE(cell(1), QLocale().formattedDataSize(file.size()));
    QVERIFY(dialog.width() >= 800);
    QLocale::setDefault(former);
}

void TestPictureFileDialog::markedFileIsPreviewed()
{
    QVERIFY(QDir().mkdir(u"Fotos/Ordner"_s));
    QFile broken(u"Fotos/b.jpg"_s);
    QVERIFY(broken.open(QIODevice::WriteOnly));
    broken.write("kein Bild");
    broken.close();
    PictureFileDialog dialog(nullptr, u"Open File"_s, u"Fotos"_s, u"Images (*.png *.jpg)"_s);
    dialog.show();
    auto *list = dialog.findChild<QTreeView *>(u"treeView"_s);
    const auto *preview = dialog.findChild<PicturePreview *>();
    QTRY_COMPARE(list->model()->rowCount(list->rootIndex()), 3); // folder, picture, no picture
    const auto name = [list](int row) { return list->model()->index(row, 0, list->rootIndex()).data().toString(); };
    QTRY_COMPARE((QStringList { name(0), name(1), name(2) }), (QStringList { u"Ordner"_s, u"a.jpg"_s, u"b.jpg"_s }));
    QVERIFY(preview->scene()->items().isEmpty());
    list->setCurrentIndex(list->model()->index(1, 0, list->rootIndex()));
    QTRY_COMPARE(preview->scene()->items().size(), 1);
    list->setCurrentIndex(list->model()->index(2, 0, list->rootIndex()));
    QTRY_VERIFY(preview->scene()->items().isEmpty());
}

void TestPictureFileDialog::originalsCannotBeDeletedOrRenamed_data()
{
    QTest::addColumn<QString>("viewName");
    QTest::addColumn<int>("mode");
    QTest::newRow("details") << u"treeView"_s << int(QFileDialog::Detail);
    QTest::newRow("list") << u"listView"_s << int(QFileDialog::List);
}

void TestPictureFileDialog::originalsCannotBeDeletedOrRenamed()
{
    QFETCH(QString, viewName);
    QFETCH(int, mode);
    PictureFileDialog dialog(nullptr, u"Open File"_s, u"Fotos"_s, u"Images (*.png *.jpg)"_s);
    dialog.setViewMode(QFileDialog::ViewMode(mode));
    dialog.show();
    auto *view = dialog.findChild<QAbstractItemView *>(viewName);
    QVERIFY(view->isVisible());
    QTRY_COMPARE(view->model()->rowCount(view->rootIndex()), 1);
    const QModelIndex file = view->model()->index(0, 0, view->rootIndex());
    view->setFocus();
    view->setCurrentIndex(file);
    QVERIFY(!file.flags().testFlag(Qt::ItemIsEditable));
    ModalScript script; // a question would be an unexpected dialog
    QTest::keyClick(view, Qt::Key_Delete);
    QTest::keyClick(view, Qt::Key_F2);
    QVERIFY(!view->isPersistentEditorOpen(file) && !view->findChild<QLineEdit *>());
    for (const QString &name : { u"qt_delete_action"_s, u"qt_rename_action"_s }) {
        QVERIFY2(!dialog.findChild<QAction *>(name)->isEnabled(), qPrintable(name));
    }
    QTest::qWait(20);
    QCOMPARE(script.problems(), QStringList());
    QVERIFY(QFile::exists(u"Fotos/a.jpg"_s));
}

void TestPictureFileDialog::nothingCanBeDroppedOrMade()
{
    PictureFileDialog dialog(nullptr, u"Open File"_s, u"."_s, u"Images (*.png *.jpg)"_s);
    dialog.show();
    auto *view = dialog.findChild<QTreeView *>(u"treeView"_s);
    QTRY_VERIFY(view->model()->rowCount(view->rootIndex()) > 0);
    QVERIFY(!dialog.findChild<QToolButton *>(u"newFolderButton"_s)->isEnabled());
    QVERIFY(!view->model()->index(0, 0, view->rootIndex()).flags().testFlag(Qt::ItemIsDropEnabled));
    QVERIFY(dialog.findChild<QFileSystemModel *>()->isReadOnly());
    dialog.setDirectory(QDir::current().absoluteFilePath(u"Fotos"_s)); // no other folder allows it again
    QTRY_COMPARE(view->model()->rowCount(view->rootIndex()), 1);
    QVERIFY(!dialog.findChild<QToolButton *>(u"newFolderButton"_s)->isEnabled());
}

void TestPictureFileDialog::sizesKeepAwayFromTheKinds()
{
    PictureFileDialog dialog(nullptr, u"Open File"_s, u"Fotos"_s, u"Images (*.png *.jpg)"_s);
    const auto *list = dialog.findChild<QTreeView *>(u"treeView"_s);
    QTRY_COMPARE(list->model()->rowCount(list->rootIndex()), 1);
    const QVariant alignment = list->model()->index(0, 1, list->rootIndex()).data(Qt::TextAlignmentRole);
    QVERIFY(Qt::Alignment(alignment.toInt()).testFlag(Qt::AlignLeft));
    QVERIFY(!Qt::Alignment(alignment.toInt()).testFlag(Qt::AlignRight));
}

void TestPictureFileDialog::placesHaveIconsOfOneSize()
{
    PictureFileDialog dialog(nullptr, u"Open File"_s, u"Fotos"_s, u"Images (*.png *.jpg)"_s);
    dialog.setSidebarUrls({ QUrl::fromLocalFile(QDir::homePath()), QUrl::fromLocalFile(QDir::currentPath()) });
    const auto *places = dialog.findChild<QListView *>(u"sidebar"_s);
    QCOMPARE(places->model()->rowCount(), 2);
    QList<QSize> sizes;
    for (int row = 0; row < 2; ++row) {
        const auto icon = places->model()->index(row, 0).data(Qt::DecorationRole).value<QIcon>();
        sizes.append(icon.actualSize(places->iconSize()));
    }
    QVERIFY(places->iconSize().isValid()); // else each icon would have its own
    QCOMPARE(sizes, (QList<QSize> { places->iconSize(), places->iconSize() }));
}

BAHNITO_TEST_MAIN(TestPictureFileDialog)
#include "tst_picturefiledialog.moc"
