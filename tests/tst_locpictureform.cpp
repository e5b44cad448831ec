#include "forms/locpictureform.h"
#include "search/clock.h"
#include "store/colorsetting.h"
#include "tests/support/modalscript.h"
#include "tests/support/otherconnection.h"
#include "tests/support/testcatalogue.h"
#include "tests/support/testmain.h"
#include "tests/support/testpictures.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QDir>
#include <QDirIterator>
#include <QFileDialog>
#include <QGraphicsView>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QTest>

#include <memory>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

constexpr int Entry = 1; // the only one

QPushButton *button(const QWidget &form, const QString &name)
{
    return form.findChild<QPushButton *>(name);
}

void press(const QWidget &form, const QString &name)
{
    QVERIFY2(button(form, name)->isEnabled(), qUtf8Printable(name));
    QTest::mouseClick(button(form, name), Qt::LeftButton);
}

QString field(const QWidget &form, const QString &name)
{
    return form.findChild<QLineEdit *>(name)->text();
}

bool showsPicture(const QWidget &form)
{
    return !form.findChild<QGraphicsView *>(u"preview"_s)->scene()->items().isEmpty();
}

QStringList copies()
{
    QStringList paths;
    QDirIterator files(u"./Data/Pictures"_s, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        paths.append(files.next());
    }
    return paths;
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
}

void run(const QString &statement)
{
    QSqlQuery query;
    QVERIFY2(query.exec(statement), qUtf8Printable(query.lastError().text()));
}

const QString CannotSave = u"Die Bild-Datei konnte nicht gespeichert werden!"_s;
const QString NoPicture = u"Die Datei ist kein lesbares Bild!"_s;

} // namespace

class TestLocPictureForm final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void dialogHasItsTexts();
    void slotsAreFoundByTheirNames();
    void onlySavingIsDisabledAtFirst();
    void destructionIsLogged();

    void fileDialogSpeaksGermanAndListsPictures();
    void fileDialogStartsAtThePicturesAndThenWhereItWas();
    void cancelledFileDialogStoresNothing();
    void unreadableFileChangesNothing_data();
    void unreadableFileChangesNothing();
    void choosingShowsPathsAndPicture();
    void pictureDateIsTheDayOfTheLastChange();
    void copyNameIsMadeOfBareNumbers();
    void takenNameIsAvoidedWhenChoosing();
    void nameTakenMeanwhileIsAvoidedWhenSaving();

    void pictureIsReducedIntoTheBox_data();
    void pictureIsReducedIntoTheBox();
    void turnedPhotographIsStoredUpright();
    void pngIsStoredAsJpegOnWhite();
    void rowNamesCopySourceAndEntry();
    void hostileFileNameIsStoredAsItIs_data();
    void hostileFileNameIsStoredAsItIs();
    void chosenPictureIsSavedOnlyOnce();
    void savedCopiesCountForThePictureStore();
    void pictureChosenButNeverSavedLeavesNothing();
    void formAcceptedWithoutAChoiceChangesNothing();
    void returnLeadsThroughTheForm();

    void groupPictureGoesIntoItsFolder();
    void cancelledGroupPictureLeavesNothing();
    void cancelledGroupPictureOfALockedCatalogueIsTold();
    void cancelledPictureOfAnEntryStays();

    void failedInsertLeavesTheFolderUnchanged();
    void entryDeletedMeanwhileIsTold();
    void lockedDatabaseIsToldAndCanBeTriedAgain();
    void failedCommitLeavesNeitherRowNorFile();
    void failedWriteLeavesNeitherRowNorFile();
    void storeWithoutNumberedFoldersGetsItsFirst();
    void folderRemovedByHandIsMadeAgain();

    void storedPictureIsShown();
    void openingAndClosingRewritesNothing_data();
    void openingAndClosingRewritesNothing();
    void replacedPictureChangesItsRow();
    void replacedCopyStaysWhileAnotherRowHasIt_data();
    void replacedCopyStaysWhileAnotherRowHasIt();
    void replacementThatWasNotSavedIsStoredOnClosing();
    void failedReplacementIsToldAndTheFormCloses();
    void clearedPathsAreWrittenOnClosing();
    void vanishedPictureBecomesANewOne();

    void clearingEmptiesBothPaths();
    void deletingRemovesRowAndCopy();
    void deletingCanKeepTheCopy();
    void deletingAnUnknownPictureDoesNothing();
    void deletingNeverTouchesAnotherFile_data();
    void deletingNeverTouchesAnotherFile();
    void failedDeletionIsTold();

private:
    void choose(LocPictureForm &form, const QString &path);
    void choose(LocPictureForm &form) { choose(form, m_source); }
    [[nodiscard]] int rows() const { return m_catalogue->value(u"SELECT COUNT(*) FROM loc_picture"_s).toInt(); }
    [[nodiscard]] QString column(const QString &name) const;

    std::unique_ptr<TestCatalogue> m_catalogue;
    QString m_source;
};

void TestLocPictureForm::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    QCOMPARE(m_catalogue->addEntry(u"14253"_s, m_catalogue->addModel(u"Ce 6/8 II"_s, 1)), Entry);
    m_source = m_catalogue->path(u"Quelle.jpg"_s);
    writeTestJpeg(m_source, { 300, 200 });
}

void TestLocPictureForm::cleanup()
{
    Clock::setSource({});
    ColorSetting::saveAndRelease(); // the next catalogue has a picture store of its own
    m_catalogue.reset();
}

void TestLocPictureForm::choose(LocPictureForm &form, const QString &path)
{
    ModalScript script;
    script.chooseFile(path);
    form.show();
    press(form, u"browseButton"_s);
    QCOMPARE(script.problems(), QStringList());
}

QString TestLocPictureForm::column(const QString &name) const
{
    return m_catalogue->value(u"SELECT %1 FROM loc_picture ORDER BY id DESC"_s.arg(name)).toString();
}

void TestLocPictureForm::dialogHasItsTexts()
{
    LocPictureForm form(Entry, -1);
    form.show();
    QCOMPARE(form.windowTitle(), u"Edit Bahnito-Bild"_s);
    QCOMPARE(form.minimumSize(), QSize(600, 600));
    QCOMPARE(form.maximumSize(), QSize(620, 620));
    QVERIFY(form.size().width() >= 600 && form.size().height() <= 620);
    QCOMPARE(form.font().family(), u"Helvetica [Cronyx]"_s);
    QCOMPARE(form.font().pointSize(), 9);
    QCOMPARE(form.findChild<QGroupBox *>()->title(), u"Bild zuweisen"_s);
    QStringList labels;
    for (const QLabel *label : form.findChildren<QLabel *>()) {
        labels.append(label->text());
    }
    QCOMPARE(labels, QStringList({ u"Aktueller Pfad:"_s, u"Ursprünglicher Pfad:"_s }));
    QCOMPARE(button(form, u"browseButton"_s)->text(), u"Bild auswählen"_s);
    QCOMPARE(button(form, u"saveButton"_s)->text(), u"Bild speichern"_s);
    QCOMPARE(button(form, u"closeButton"_s)->text(), u"Schliessen"_s);
}

void TestLocPictureForm::slotsAreFoundByTheirNames()
{
    const QMetaObject &form = LocPictureForm::staticMetaObject;
    for (const char *slot : { "browsePictures()", "addLocPicture()", "accept()", "done(int)" }) {
        QVERIFY2(form.indexOfSlot(slot) >= 0, slot);
    }
}

void TestLocPictureForm::onlySavingIsDisabledAtFirst()
{
    const LocPictureForm form(Entry, -1);
    QVERIFY(button(form, u"browseButton"_s)->isEnabled());
    QVERIFY(!button(form, u"saveButton"_s)->isEnabled());
    QVERIFY(button(form, u"closeButton"_s)->isEnabled());
    QVERIFY(!form.findChild<QLineEdit *>(u"copyPathEdit"_s)->isEnabled());
    QVERIFY(!form.findChild<QLineEdit *>(u"originalPathEdit"_s)->isEnabled());
    QVERIFY(!form.isSaved());
    QVERIFY(!form.hasChosenPicture());
    QVERIFY(!form.pictureDate());
    QCOMPARE(form.copyPath(), QString());
}

void TestLocPictureForm::destructionIsLogged()
{
    QTest::ignoreMessage(QtDebugMsg, " Dtor LocPictureForm");
    const LocPictureForm form(Entry, -1);
}

void TestLocPictureForm::fileDialogSpeaksGermanAndListsPictures()
{
    writeTestJpeg(m_catalogue->path(u"GROSS.JPG"_s), { 30, 20 });
    writeBytes(m_catalogue->path(u"Notiz.txt"_s), "text");
    LocPictureForm form(Entry, -1);
    form.show();
    ModalScript script;
    script.then([this, &script](QWidget *widget) {
        auto *dialog = qobject_cast<QFileDialog *>(widget);
        QVERIFY(dialog != nullptr);
        QCOMPARE(dialog->windowTitle(), u"Open File"_s);
        QCOMPARE(dialog->nameFilters(), QStringList(u"Images (*.png *.jpg)"_s));
        QVERIFY(dialog->sidebarUrls().contains(QUrl::fromLocalFile(QDir::homePath())));
        dialog->setDirectory(m_catalogue->path(u"."_s));
        const QAbstractItemView *list = dialog->findChild<QAbstractItemView *>(u"treeView"_s);
        const auto names = [list] {
            QStringList shown;
            for (int row = 0; row < list->model()->rowCount(list->rootIndex()); ++row) {
                shown.append(list->model()->index(row, 0, list->rootIndex()).data().toString());
            }
            shown.sort();
            return shown;
        };
        QTRY_COMPARE(names(), QStringList({ u"Data"_s, u"GROSS.JPG"_s, u"Quelle.jpg"_s }));
        script.click(widget, u"Abbrechen"_s);
    });
    press(form, u"browseButton"_s);
    QCOMPARE(script.problems(), QStringList());
}

void TestLocPictureForm::fileDialogStartsAtThePicturesAndThenWhereItWas()
{
    const QString pictures = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    QString folder;
    QString name;
    const auto look = [&folder, &name](QWidget *widget) {
        folder = qobject_cast<QFileDialog *>(widget)->directory().absolutePath();
        name = widget->findChild<QLineEdit *>(u"fileNameEdit"_s)->text();
        widget->close();
    };
    LocPictureForm form(Entry, -1);
    form.show();
    ModalScript script;
    script.then(look).chooseFile(m_source).then(look);
    press(form, u"browseButton"_s);
    QCOMPARE(folder, QDir(pictures).exists() ? pictures : QDir::homePath());
    QCOMPARE(name, QString());

    press(form, u"browseButton"_s);
    QVERIFY(form.hasChosenPicture());
    LocPictureForm next(Entry, -1);
    next.show();
    press(next, u"browseButton"_s);
    QCOMPARE(folder, QFileInfo(m_source).absolutePath());
    QCOMPARE(script.problems(), QStringList());
}

void TestLocPictureForm::cancelledFileDialogStoresNothing()
{
    LocPictureForm form(Entry, -1);
    choose(form, {});
    QVERIFY(!form.hasChosenPicture());
    QVERIFY(button(form, u"browseButton"_s)->isEnabled());
    QVERIFY(!button(form, u"saveButton"_s)->isEnabled());
    form.addLocPicture();
    press(form, u"closeButton"_s);
    QVERIFY(!form.isSaved());
    QCOMPARE(rows(), 0);
    QCOMPARE(copies(), QStringList());
}

void TestLocPictureForm::unreadableFileChangesNothing_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty file") << QByteArray();
    QTest::newRow("text") << QByteArray("kein Bild");
    QTest::newRow("picture of another kind") << QByteArray("BM\x3A\0\0\0\0\0\0\0\x36\0\0\0", 14);
    QTest::newRow("beginning of a photograph") << QByteArray("\xFF\xD8\xFF\xE0\0\x10JFIF\0", 11);
    QTest::newRow("pipe") << QByteArray("PIPE");
}

void TestLocPictureForm::unreadableFileChangesNothing()
{
    QFETCH(QByteArray, content);
    const QString path = m_catalogue->path(u"kaputt.jpg"_s);
    if (content == "PIPE") {
        QCOMPARE(mkfifo(qPrintable(path), 0600), 0);
    } else {
        writeBytes(path, content);
    }
    LocPictureForm form(Entry, -1);
    form.show();
    ModalScript script;
    script.chooseFile(path).box(u"File-Info"_s, NoPicture);
    press(form, u"browseButton"_s);
    QCOMPARE(script.problems(), QStringList());
    QVERIFY(button(form, u"browseButton"_s)->isEnabled());
    QVERIFY(!button(form, u"saveButton"_s)->isEnabled());
    QVERIFY(!form.hasChosenPicture());
    QVERIFY(!form.pictureDate());
    QCOMPARE(field(form, u"copyPathEdit"_s), QString());
    QCOMPARE(field(form, u"originalPathEdit"_s), QString());
    QVERIFY(!showsPicture(form));
}

void TestLocPictureForm::choosingShowsPathsAndPicture()
{
    LocPictureForm form(Entry, -1);
    choose(form);
    QVERIFY(form.hasChosenPicture());
    QVERIFY(!button(form, u"browseButton"_s)->isEnabled());
    QVERIFY(button(form, u"saveButton"_s)->isEnabled());
    QCOMPARE(field(form, u"originalPathEdit"_s), m_source);
    QCOMPARE(field(form, u"copyPathEdit"_s), form.copyPath());
    QVERIFY(form.copyPath().startsWith(u"./Data/Pictures/Folder001/"_s));
    QVERIFY(form.copyPath().endsWith(u".jpg"_s));
    QVERIFY(showsPicture(form));
    QVERIFY(!form.isSaved());
    QCOMPARE(copies(), QStringList());
}

void TestLocPictureForm::pictureDateIsTheDayOfTheLastChange()
{
    QFile file(m_source);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QVERIFY(file.setFileTime(QDate(1987, 2, 28).startOfDay().addSecs(3600), QFileDevice::FileModificationTime));
    file.close();
    LocPictureForm form(Entry, -1);
    choose(form);
    QCOMPARE(form.pictureDate(), std::optional(QDate(1987, 2, 28)));
}

void TestLocPictureForm::copyNameIsMadeOfBareNumbers()
{
    Clock::setSource([] { return QDateTime({ 2024, 1, 5 }, { 7, 8, 9, 3 }); });
    LocPictureForm form(Entry, -1);
    choose(form);
    QCOMPARE(form.copyPath(), u"./Data/Pictures/Folder001/2024157893.jpg"_s);
}

void TestLocPictureForm::takenNameIsAvoidedWhenChoosing()
{
    int asked = 0;
    Clock::setSource([&asked] { return QDateTime({ 2024, 1, 5 }, { 7, 8, 9, asked++ < 3 ? 3 : 4 }); });
    const QString taken = u"./Data/Pictures/Folder001/2024157893.jpg"_s;
    writeBytes(taken, "anderes Bild");
    writeBytes(u"./Data/Pictures/Folder002/1.jpg"_s, "gleich viele Dateien");
    LocPictureForm form(Entry, -1);
    choose(form);
    QCOMPARE(form.copyPath(), u"./Data/Pictures/Folder001/2024157894.jpg"_s);
    press(form, u"saveButton"_s);
    QCOMPARE(contentOf(taken), QByteArray("anderes Bild"));
}

void TestLocPictureForm::nameTakenMeanwhileIsAvoidedWhenSaving()
{
    int asked = 0;
    Clock::setSource([&asked] { return QDateTime({ 2024, 1, 5 }, { 7, 8, 9, asked++ == 0 ? 3 : 4 }); });
    LocPictureForm form(Entry, -1);
    choose(form);
    const QString taken = form.copyPath();
    writeBytes(taken, "anderes Bild");
    press(form, u"saveButton"_s);
    QVERIFY(form.isSaved());
    QCOMPARE(form.copyPath(), u"./Data/Pictures/Folder001/2024157894.jpg"_s);
    QCOMPARE(field(form, u"copyPathEdit"_s), form.copyPath());
    QCOMPARE(column(u"pictAuxPath"_s), form.copyPath());
    QVERIFY(!QImage(form.copyPath()).isNull());
    QCOMPARE(contentOf(taken), QByteArray("anderes Bild"));
}

void TestLocPictureForm::pictureIsReducedIntoTheBox_data()
{
    QTest::addColumn<QSize>("source");
    QTest::addColumn<int>("orientation");
    QTest::addColumn<QSize>("copy");
    QTest::newRow("landscape") << QSize(1500, 1000) << 1 << QSize(750, 500);
    QTest::newRow("square") << QSize(1000, 1000) << 1 << QSize(500, 500);
    QTest::newRow("upright") << QSize(1000, 2000) << 1 << QSize(250, 500);
    QTest::newRow("turned by the camera") << QSize(2000, 1000) << 6 << QSize(250, 500);
    QTest::newRow("just fits") << QSize(750, 500) << 1 << QSize(750, 500);
    QTest::newRow("smaller is not enlarged") << QSize(120, 80) << 1 << QSize(120, 80);
    QTest::newRow("very wide") << QSize(3000, 2) << 1 << QSize(750, 1);
}

void TestLocPictureForm::pictureIsReducedIntoTheBox()
{
    QFETCH(QSize, source);
    QFETCH(int, orientation);
    QFETCH(QSize, copy);
    writeTestJpeg(m_source, source, orientation);
    LocPictureForm form(Entry, -1);
    choose(form);
    press(form, u"saveButton"_s);
    QCOMPARE(QImage(form.copyPath()).size(), copy);
    QCOMPARE(column(u"pictWidth"_s).toInt(), copy.width());
    QCOMPARE(column(u"pictHeight"_s).toInt(), copy.height());
}

void TestLocPictureForm::turnedPhotographIsStoredUpright()
{
    writeTestJpeg(m_source, { 900, 600 }, 6); // to be turned clockwise: the blue corner comes to the top left
    LocPictureForm form(Entry, -1);
    choose(form);
    press(form, u"saveButton"_s);
    const QColor corner = QImage(form.copyPath()).pixelColor(20, 20);
    QVERIFY2(corner.blue() > 200 && corner.red() < 60 && corner.green() < 60, qUtf8Printable(corner.name()));
}

void TestLocPictureForm::pngIsStoredAsJpegOnWhite()
{
    const QString png = m_catalogue->path(u"Quelle.png"_s);
    writeTransparentPng(png, { 200, 100 });
    const QByteArray before = contentOf(png);
    LocPictureForm form(Entry, -1);
    choose(form, png);
    press(form, u"saveButton"_s);
    QVERIFY(form.copyPath().endsWith(u".jpg"_s));
    QVERIFY(contentOf(form.copyPath()).startsWith("\xFF\xD8\xFF"));
    const QColor ground = QImage(form.copyPath()).pixelColor(180, 50);
    QVERIFY2(ground.red() > 250 && ground.green() > 250 && ground.blue() > 250, qUtf8Printable(ground.name()));
    QCOMPARE(contentOf(png), before);
}

void TestLocPictureForm::rowNamesCopySourceAndEntry()
{
    const QByteArray before = contentOf(m_source);
    LocPictureForm form(Entry, -1);
    choose(form);
    press(form, u"saveButton"_s);
    QVERIFY(form.isSaved());
    QCOMPARE(rows(), 1);
    QCOMPARE(column(u"pictAuxPath"_s), form.copyPath());
    QCOMPARE(column(u"pictOrigPath"_s), m_source);
    QCOMPARE(column(u"pictHeight"_s), u"200"_s);
    QCOMPARE(column(u"pictWidth"_s), u"300"_s);
    QCOMPARE(column(u"locpictureid"_s).toInt(), Entry);
    QCOMPARE(m_catalogue
                 ->value(u"SELECT typeof(pictHeight) || typeof(pictWidth) || typeof(locpictureid) "
                         "FROM loc_picture"_s)
                 .toString(),
        u"integerintegerinteger"_s);
    QCOMPARE(copies(), QStringList(form.copyPath()));
    QCOMPARE(contentOf(m_source), before);
    QVERIFY(!button(form, u"saveButton"_s)->isEnabled());
}

void TestLocPictureForm::hostileFileNameIsStoredAsItIs_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("markup") << u"<b>x<b>.jpg"_s;
    QTest::newRow("quote") << u"7'8.jpg"_s;
    QTest::newRow("placeholder") << u"7%2.jpg"_s;
    QTest::newRow("emoji") << u"Zug \U0001F682.jpg"_s;
    QTest::newRow("long") << QString(200, u'x') + u".jpg"_s;
}

void TestLocPictureForm::hostileFileNameIsStoredAsItIs()
{
    QFETCH(QString, name);
    const QString path = m_catalogue->path(name);
    writeTestJpeg(path, { 60, 40 });
    LocPictureForm form(Entry, -1);
    choose(form, path);
    QCOMPARE(field(form, u"originalPathEdit"_s), path);
    QVERIFY(!form.findChild<QLineEdit *>(u"originalPathEdit"_s)->toolTip().contains(u"<b>"_s));
    press(form, u"saveButton"_s);
    QCOMPARE(column(u"pictOrigPath"_s), path);
}

void TestLocPictureForm::chosenPictureIsSavedOnlyOnce()
{
    LocPictureForm form(Entry, -1);
    choose(form);
    press(form, u"saveButton"_s);
    const QString path = form.copyPath();
    const int writes = m_catalogue->value(u"SELECT total_changes()"_s).toInt();
    form.addLocPicture();
    press(form, u"closeButton"_s);
    form.addLocPicture();
    QCOMPARE(m_catalogue->value(u"SELECT total_changes()"_s).toInt(), writes);
    QCOMPARE(form.copyPath(), path);
    QVERIFY(form.isSaved());
    QVERIFY(form.hasChosenPicture());
    QCOMPARE(form.result(), int(QDialog::Accepted));
    QCOMPARE(rows(), 1);
    QCOMPARE(copies().size(), 1);
}

void TestLocPictureForm::savedCopiesCountForThePictureStore()
{
    const PictureStore &store = ColorSetting::instance().pictureStore();
    QCOMPARE(store.currentFolder(), u"Folder001"_s);
    const int other = m_catalogue->addEntry(u"11407"_s, 1); // one alone has no room for ten pictures
    for (int i = 0; i < 10; ++i) {
        QCOMPARE(store.countdown(), 10 - i);
        LocPictureForm form(i % 2 == 0 ? Entry : other, -1);
        choose(form);
        press(form, u"saveButton"_s);
    }
    QCOMPARE(store.countdown(), 10);
    QCOMPARE(store.currentFolder(), u"Folder002"_s); // the first one has ten files now
    LocPictureForm form(Entry, -1);
    choose(form);
    QVERIFY(form.copyPath().startsWith(u"./Data/Pictures/Folder002/"_s));
}

void TestLocPictureForm::pictureChosenButNeverSavedLeavesNothing()
{
    LocPictureForm form(Entry, -1);
    choose(form);
    press(form, u"closeButton"_s);
    QVERIFY(!form.isSaved());
    QCOMPARE(rows(), 0);
    QCOMPARE(copies(), QStringList());
}

void TestLocPictureForm::formAcceptedWithoutAChoiceChangesNothing()
{
    LocPictureForm form(-1, -1);
    form.setTargetFolder(u"AuxFolder"_s);
    form.show();
    press(form, u"closeButton"_s);
    QCOMPARE(form.result(), int(QDialog::Accepted));
    QVERIFY(!form.hasChosenPicture());
    form.addLocPicture();
    QVERIFY(!form.isSaved());
    QCOMPARE(rows(), 0);
    QCOMPARE(copies(), QStringList());
}

void TestLocPictureForm::returnLeadsThroughTheForm()
{
    LocPictureForm form(Entry, -1);
    form.show();
    ModalScript script;
    script.chooseFile(m_source);
    QTest::keyClick(&form, Qt::Key_Return);
    QCOMPARE(script.problems(), QStringList());
    QVERIFY(form.hasChosenPicture());
    QTest::keyClick(&form, Qt::Key_Return);
    QVERIFY(form.isSaved());
    QTest::keyClick(&form, Qt::Key_Return);
    QVERIFY(!form.isVisible());
    QCOMPARE(form.result(), int(QDialog::Accepted));
}

void TestLocPictureForm::groupPictureGoesIntoItsFolder()
{
    LocPictureForm form(-1, -1);
    form.setTargetFolder(u"AuxFolder"_s);
    choose(form);
    press(form, u"closeButton"_s);
    QVERIFY(!form.isSaved());
    form.addLocPicture();
    QVERIFY(form.isSaved());
    QVERIFY(form.copyPath().startsWith(u"./Data/Pictures/AuxFolder/"_s));
    QCOMPARE(copies(), QStringList(form.copyPath()));
    QCOMPARE(column(u"locpictureid"_s), u"-1"_s);
}

void TestLocPictureForm::cancelledGroupPictureLeavesNothing()
{
    LocPictureForm form(-1, -1);
    form.setTargetFolder(u"AuxFolder"_s);
    choose(form);
    press(form, u"saveButton"_s);
    QCOMPARE(rows(), 1);
    QTest::keyClick(&form, Qt::Key_Escape);
    QVERIFY(!form.isVisible());
    QCOMPARE(rows(), 0);
    QCOMPARE(copies(), QStringList());
    QVERIFY(!form.isSaved());
    QVERIFY(QFile::exists(m_source));
}

void TestLocPictureForm::cancelledGroupPictureOfALockedCatalogueIsTold()
{
    LocPictureForm form(-1, -1);
    form.setTargetFolder(u"AuxFolder"_s);
    choose(form);
    press(form, u"saveButton"_s);
    {
        const OtherConnection writer(u"BEGIN EXCLUSIVE"_s);
        QVERIFY(writer.works());
        ModalScript script;
        script.anyBox(u"DB-Delete"_s);
        form.reject();
        QCOMPARE(script.problems(), QStringList());
    }
    QVERIFY(form.isSaved());
    QCOMPARE(rows(), 1);
    QCOMPARE(copies().size(), 1);
}

void TestLocPictureForm::cancelledPictureOfAnEntryStays()
{
    LocPictureForm form(Entry, -1);
    choose(form);
    press(form, u"saveButton"_s);
    form.close();
    QVERIFY(form.isSaved());
    QCOMPARE(rows(), 1);
    QCOMPARE(copies().size(), 1);
}

void TestLocPictureForm::failedInsertLeavesTheFolderUnchanged()
{
    run(u"CREATE TEMP TRIGGER refuse BEFORE INSERT ON loc_picture BEGIN SELECT RAISE(ABORT, 'abgelehnt'); END"_s);
    LocPictureForm form(Entry, -1);
    choose(form);
    ModalScript script;
    script.then([](QWidget *box) {
        QCOMPARE(box->windowTitle(), u"DB-Insert"_s);
        QVERIFY(qobject_cast<QMessageBox *>(box)->text().contains(u"abgelehnt"_s));
        box->close();
    });
    press(form, u"saveButton"_s);
    QCOMPARE(script.problems(), QStringList());
    QVERIFY(form.isVisible());
    QVERIFY(!form.isSaved());
    QCOMPARE(copies(), QStringList());
    QCOMPARE(ColorSetting::instance().pictureStore().countdown(), 10);
}

void TestLocPictureForm::entryDeletedMeanwhileIsTold()
{
    LocPictureForm form(Entry, -1);
    choose(form);
    run(u"DELETE FROM loc_seen"_s);
    ModalScript script;
    script.box(u"DB-Insert"_s, u"Der Eintrag ist nicht mehr vorhanden, er wurde inzwischen gelöscht."_s);
    press(form, u"saveButton"_s);
    QCOMPARE(script.problems(), QStringList());
    QVERIFY(!form.isSaved());
    QCOMPARE(rows(), 0);
    QCOMPARE(copies(), QStringList());
}

void TestLocPictureForm::lockedDatabaseIsToldAndCanBeTriedAgain()
{
    LocPictureForm form(Entry, -1);
    choose(form);
    {
        const OtherConnection writer(u"BEGIN IMMEDIATE"_s);
        QVERIFY(writer.works());
        ModalScript script;
        script.anyBox(u"DB-Insert"_s);
        press(form, u"saveButton"_s);
        QCOMPARE(script.problems(), QStringList());
    }
    QVERIFY(!form.isSaved());
    QCOMPARE(copies(), QStringList());
    press(form, u"saveButton"_s);
    QVERIFY(form.isSaved());
    QCOMPARE(rows(), 1);
    QCOMPARE(copies().size(), 1);
}

void TestLocPictureForm::failedCommitLeavesNeitherRowNorFile()
{
    LocPictureForm form(Entry, -1);
    choose(form);
    {
        const OtherConnection reader(u"SELECT * FROM settings"_s); // half read: lets others write, but not commit
        QVERIFY(reader.works());
        ModalScript script;
        script.anyBox(u"DB-Insert"_s);
        press(form, u"saveButton"_s);
        QCOMPARE(script.problems(), QStringList());
    }
    QVERIFY(!form.isSaved());
    QCOMPARE(rows(), 0);
    QCOMPARE(copies(), QStringList());
    QCOMPARE(ColorSetting::instance().pictureStore().countdown(), 10);
    press(form, u"saveButton"_s);
    QCOMPARE(rows(), 1);
    QCOMPARE(copies().size(), 1);
}

void TestLocPictureForm::failedWriteLeavesNeitherRowNorFile()
{
    LocPictureForm form(Entry, -1);
    choose(form);
    QVERIFY(QDir().rmdir(u"./Data/Pictures/Folder001"_s));
    writeBytes(u"./Data/Pictures/Folder001"_s, "im Weg");
    ModalScript script;
    script.box(u"File-Info"_s, CannotSave);
    press(form, u"saveButton"_s);
    QCOMPARE(script.problems(), QStringList());
    QVERIFY(form.isVisible());
    QVERIFY(!form.isSaved());
    QCOMPARE(rows(), 0);
    QCOMPARE(ColorSetting::instance().pictureStore().countdown(), 10);

    QVERIFY(QFile::remove(u"./Data/Pictures/Folder001"_s));
    QVERIFY(QDir().mkdir(u"./Data/Pictures/Folder001"_s));
    press(form, u"saveButton"_s);
    QVERIFY(form.isSaved());
    QCOMPARE(rows(), 1);
    QCOMPARE(copies(), QStringList(form.copyPath()));
    QCOMPARE(ColorSetting::instance().pictureStore().countdown(), 9);
}

void TestLocPictureForm::storeWithoutNumberedFoldersGetsItsFirst()
{
    QVERIFY(QDir().rmdir(u"./Data/Pictures/Folder001"_s));
    QVERIFY(QDir().rmdir(u"./Data/Pictures/Folder002"_s));
    LocPictureForm form(Entry, -1);
    choose(form);
    press(form, u"saveButton"_s);
    QVERIFY(form.isSaved());
    QVERIFY(form.copyPath().startsWith(u"./Data/Pictures/Folder001/"_s));
}

void TestLocPictureForm::folderRemovedByHandIsMadeAgain()
{
    QCOMPARE(ColorSetting::instance().pictureStore().currentFolder(), u"Folder001"_s); // chosen, and then
    QVERIFY(QDir().rmdir(u"./Data/Pictures/Folder001"_s));
    LocPictureForm form(Entry, -1);
    choose(form);
    press(form, u"saveButton"_s);
    QVERIFY(form.isSaved());
    QVERIFY(QFile::exists(form.copyPath()));
}

void TestLocPictureForm::storedPictureIsShown()
{
    const int picture = m_catalogue->addPicture(Entry);
    const LocPictureForm form(Entry, picture);
    QCOMPARE(field(form, u"copyPathEdit"_s), u"./Data/Pictures/Folder001/copy1.jpg"_s);
    QCOMPARE(field(form, u"originalPathEdit"_s), m_catalogue->path(u"source1.jpg"_s));
    QCOMPARE(form.copyPath(), u"./Data/Pictures/Folder001/copy1.jpg"_s);
    QVERIFY(showsPicture(form));
    QVERIFY(!form.isSaved());
}

void TestLocPictureForm::openingAndClosingRewritesNothing_data()
{
    QTest::addColumn<QString>("values");
    QTest::newRow("usual row") << u"'./Data/Pictures/Folder001/a.jpg', '/tmp/a.jpg', 50, 75"_s;
    QTest::newRow("no values") << u"NULL, NULL, NULL, NULL"_s;
    QTest::newRow("control characters") << u"'a' || char(10) || 'b', 'c' || char(9), 'hoch', -1"_s;
}

void TestLocPictureForm::openingAndClosingRewritesNothing()
{
    QFETCH(QString, values);
    run(u"INSERT INTO loc_picture (pictAuxPath, pictOrigPath, pictHeight, pictWidth, locpictureid) VALUES (%1, 7)"_s
            .arg(values));
    const int before = m_catalogue->value(u"SELECT total_changes()"_s).toInt();
    LocPictureForm form(Entry, 1);
    form.show();
    press(form, u"closeButton"_s);
    QCOMPARE(m_catalogue->value(u"SELECT total_changes()"_s).toInt(), before);
}

void TestLocPictureForm::replacedPictureChangesItsRow()
{
    const int picture = m_catalogue->addPicture(Entry);
    const QString former = column(u"pictAuxPath"_s);
    LocPictureForm form(Entry, picture);
    choose(form);
    press(form, u"saveButton"_s);
    press(form, u"closeButton"_s);
    QCOMPARE(rows(), 1);
    QCOMPARE(column(u"id"_s).toInt(), picture);
    QCOMPARE(column(u"pictAuxPath"_s), form.copyPath());
    QCOMPARE(column(u"pictOrigPath"_s), m_source);
    QCOMPARE(column(u"pictHeight"_s), u"200"_s);
    QCOMPARE(column(u"pictWidth"_s), u"300"_s);
    QCOMPARE(column(u"locpictureid"_s).toInt(), Entry);
    QVERIFY(!QFile::exists(former));
    QCOMPARE(copies(), QStringList(form.copyPath()));
    QVERIFY(QFile::exists(m_catalogue->path(u"source1.jpg"_s)));
}

void TestLocPictureForm::replacedCopyStaysWhileAnotherRowHasIt_data()
{
    QTest::addColumn<QString>("statement");
    QTest::newRow("picture") << u"INSERT INTO loc_picture (pictAuxPath, locpictureid) "
                                "SELECT pictAuxPath, 2 FROM loc_picture"_s;
    QTest::newRow("group") << u"INSERT INTO locomotive (name, pictPath) SELECT 'g', pictAuxPath FROM loc_picture"_s;
}

void TestLocPictureForm::replacedCopyStaysWhileAnotherRowHasIt()
{
    QFETCH(const QString, statement);
    const int picture = m_catalogue->addPicture(Entry);
    const QString former = column(u"pictAuxPath"_s);
    run(statement);
    LocPictureForm form(Entry, picture);
    choose(form);
    press(form, u"saveButton"_s);
    QVERIFY(form.copyPath() != former);
    QVERIFY(QFile::exists(former));
}

void TestLocPictureForm::replacementThatWasNotSavedIsStoredOnClosing()
{
    const int picture = m_catalogue->addPicture(Entry);
    LocPictureForm form(Entry, picture);
    choose(form);
    press(form, u"closeButton"_s);
    QCOMPARE(column(u"pictAuxPath"_s), form.copyPath());
    QCOMPARE(copies(), QStringList(form.copyPath()));
    QVERIFY(!QImage(form.copyPath()).isNull());
}

void TestLocPictureForm::failedReplacementIsToldAndTheFormCloses()
{
    const int picture = m_catalogue->addPicture(Entry);
    const QString former = column(u"pictAuxPath"_s);
    run(u"CREATE TEMP TRIGGER refuse BEFORE UPDATE ON loc_picture BEGIN SELECT RAISE(ABORT, 'abgelehnt'); END"_s);
    LocPictureForm form(Entry, picture);
    choose(form);
    ModalScript script;
    script.anyBox(u"DB-Update"_s);
    press(form, u"closeButton"_s);
    QCOMPARE(script.problems(), QStringList());
    QVERIFY(!form.isVisible());
    QCOMPARE(column(u"pictAuxPath"_s), former);
    QCOMPARE(copies(), QStringList(former));
}

void TestLocPictureForm::clearedPathsAreWrittenOnClosing()
{
    const int picture = m_catalogue->addPicture(Entry);
    LocPictureForm form(Entry, picture);
    form.show();
    form.clearInputs();
    press(form, u"closeButton"_s);
    QCOMPARE(column(u"pictAuxPath || pictOrigPath || '-' || pictHeight"_s), u"-50"_s); // empty texts, not NULL
    QCOMPARE(copies().size(), 1);
}

void TestLocPictureForm::vanishedPictureBecomesANewOne()
{
    LocPictureForm form(Entry, 4711);
    QCOMPARE(field(form, u"copyPathEdit"_s), QString());
    choose(form);
    press(form, u"saveButton"_s);
    QVERIFY(form.isSaved());
    QCOMPARE(rows(), 1);
    QCOMPARE(copies().size(), 1);
}

void TestLocPictureForm::clearingEmptiesBothPaths()
{
    LocPictureForm form(Entry, -1);
    choose(form);
    form.clearInputs();
    QCOMPARE(field(form, u"copyPathEdit"_s), QString());
    QCOMPARE(field(form, u"originalPathEdit"_s), QString());
    QCOMPARE(form.copyPath(), QString());
    QVERIFY(!form.hasChosenPicture());
    form.addLocPicture();
    QCOMPARE(rows(), 0);
    choose(form);
    press(form, u"saveButton"_s);
    QVERIFY(form.isSaved());
}

void TestLocPictureForm::deletingRemovesRowAndCopy()
{
    const int picture = m_catalogue->addPicture(Entry);
    const int other = m_catalogue->addPicture(Entry);
    LocPictureForm::deletePicture(picture, false);
    QCOMPARE(rows(), 1);
    QCOMPARE(column(u"id"_s).toInt(), other);
    QCOMPARE(copies(), QStringList(u"./Data/Pictures/Folder001/copy2.jpg"_s));
    QVERIFY(QFile::exists(m_catalogue->path(u"source1.jpg"_s)));
}

void TestLocPictureForm::deletingCanKeepTheCopy()
{
    const int picture = m_catalogue->addPicture(Entry);
    LocPictureForm::deletePicture(picture, true);
    QCOMPARE(rows(), 0);
    QCOMPARE(copies().size(), 1);
}

void TestLocPictureForm::deletingAnUnknownPictureDoesNothing()
{
    m_catalogue->addPicture(Entry);
    ModalScript script;
    LocPictureForm::deletePicture(4711, false);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(rows(), 1);
    QCOMPARE(copies().size(), 1);
}

void TestLocPictureForm::deletingNeverTouchesAnotherFile_data()
{
    QTest::addColumn<QString>("copyPath");
    QTest::newRow("a file of the user") << u"./Quelle.jpg"_s;
    QTest::newRow("a way out of the store") << u"./Data/Pictures/Folder001/../../../Quelle.jpg"_s;
    QTest::newRow("the database") << u"./Data/bahnakte.dat"_s;
}

void TestLocPictureForm::deletingNeverTouchesAnotherFile()
{
    QFETCH(QString, copyPath);
    const int picture = m_catalogue->addPicture(Entry);
    run(u"UPDATE loc_picture SET pictAuxPath = '%1'"_s.arg(copyPath));
    LocPictureForm::deletePicture(picture, false);
    QCOMPARE(rows(), 0);
    QVERIFY(QFile::exists(copyPath));
}

void TestLocPictureForm::failedDeletionIsTold()
{
    const int picture = m_catalogue->addPicture(Entry);
    run(u"CREATE TEMP TRIGGER refuse BEFORE DELETE ON loc_picture BEGIN SELECT RAISE(ABORT, 'abgelehnt'); END"_s);
    ModalScript script;
    script.anyBox(u"DB-Delete"_s);
    LocPictureForm::deletePicture(picture, false);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(rows(), 1);
    QCOMPARE(copies().size(), 1);
}

BAHNITO_TEST_MAIN(TestLocPictureForm)
#include "tst_locpictureform.moc"
