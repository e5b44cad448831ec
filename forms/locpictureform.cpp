#include "forms/locpictureform.h"

#include "forms/dialogstyle.h"
#include "forms/formparts.h"
#include "forms/picturechooser.h"
#include "forms/picturepreview.h"
#include "search/folderlister.h"
#include "search/messagebox.h"
#include "search/textcut.h"
#include "store/colorsetting.h"
#include "store/copyfile.h"

#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTextDocument>

using namespace FormParts;
using namespace Qt::StringLiterals;

namespace {

constexpr QSize SmallestForm(600, 600); // pixels
constexpr QSize LargestForm(620, 620);
constexpr QSize PreviewSize(540, 360);

void showPath(QLineEdit *edit, const QString &path)
{
    edit->setText(shownText(path));
    edit->setCursorPosition(0);
    edit->setToolTip(path.isEmpty() ? QString() : Qt::convertFromPlainText(shownText(path)));
}

} // namespace

LocPictureForm::LocPictureForm(int entryId, int pictureId, QWidget *parent)
    : QDialog(parent)
    , m_pictureId(pictureId)
{
    buildWidgets();
    m_picture.entryId = entryId;
    if (pictureId < 1) {
        return;
    }
    const PictureReading stored = readPicture(pictureId);
    if (stored.picture) {
        m_picture = *stored.picture;
        m_storedPicture = m_picture;
        showPaths();
        m_preview->showFile(m_picture.copyPath);
    } else if (stored.errorText.isEmpty()) {
        m_pictureId = -1; // it has vanished: what is chosen now is a new picture
    }
}

LocPictureForm::~LocPictureForm()
{
    m_preview->clear();
    qDebug(" Dtor LocPictureForm");
}

void LocPictureForm::clearInputs()
{
    m_picture.copyPath.clear();
    m_picture.originalPath.clear();
    m_copy = QImage();
    m_chosen = false;
    m_pictureDate.reset();
    m_preview->clear();
    showPaths();
    m_browseButton->setEnabled(true);
    m_saveButton->setEnabled(false);
}

bool LocPictureForm::deletePicture(int pictureId, bool keepCopy, QWidget *parent)
{
    const PictureReading stored = readPicture(pictureId);
    const QString errorText = stored.picture ? removePicture(pictureId, *stored.picture, keepCopy) : stored.errorText;
    if (!errorText.isEmpty()) {
        MessageBox::information(parent, tr("DB-Delete"), errorText);
    }
    return errorText.isEmpty();
}

void LocPictureForm::browsePictures()
{
    const QString path = choosePictureFile(this);
    if (path.isEmpty()) {
        return;
    }
    const QImage copy = reducedPicture(path);
    if (copy.isNull()) {
        MessageBox::information(this, tr("File-Info"), tr("Die Datei ist kein lesbares Bild!"));
        return;
    }
    takeChoice(path, copy);
}

void LocPictureForm::addLocPicture()
{
    if (m_copy.isNull()) {
        return; // nothing chosen, or saved already
    }
    if (m_pictureId >= 1) {
        updateStored();
    } else {
        insertChosen();
    }
}

void LocPictureForm::done(int result)
{
    const bool pathsDiffer
        = m_picture.copyPath != m_storedPicture.copyPath || m_picture.originalPath != m_storedPicture.originalPath;
    if (result == Rejected && m_saved && !m_targetFolder.isEmpty()) {
        takeBack();
    } else if (result == Rejected && !m_copy.isNull()) {
        m_picture = m_storedPicture; // chosen but not saved: the stored picture stays what it was
    } else if (m_pictureId >= 1 && pathsDiffer) {
        updateStored();
    }
    QDialog::done(result);
}

void LocPictureForm::buildWidgets()
{
    setFont(dialogFont());
    setWindowTitle(tr("Edit Bahnito-Bild"));
    setWindowIcon(dialogIcon());
    setMinimumSize(SmallestForm);
    setMaximumSize(LargestForm);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(buildPictureBox(), 1);
    layout->addLayout(closeRow(this));
    connect(m_browseButton, &QPushButton::clicked, this, &LocPictureForm::browsePictures);
    connect(m_saveButton, &QPushButton::clicked, this, &LocPictureForm::addLocPicture);
    m_browseButton->setDefault(true);
    m_browseButton->setFocus();
}

QGroupBox *LocPictureForm::buildPictureBox()
{
    m_copyEdit = new QLineEdit;
    m_originalEdit = new QLineEdit;
    m_copyEdit->setObjectName(u"copyPathEdit"_s);
    m_originalEdit->setObjectName(u"originalPathEdit"_s);
    for (QLineEdit *edit : { m_copyEdit, m_originalEdit }) {
        edit->setEnabled(false);
        keepReadable(edit);
    }
    m_preview = new PicturePreview(nullptr, PreviewSize);
    m_preview->setObjectName(u"preview"_s);
    m_browseButton = button(tr("Bild auswählen"), u"browseButton"_s);
    m_saveButton = disabledButton(tr("Bild speichern"), u"saveButton"_s);

    QGroupBox *box = groupBox(tr("Bild zuweisen"), u"pictureBox"_s);
    auto *grid = new QGridLayout(box);
    grid->addWidget(label(tr("Aktueller Pfad:"), m_copyEdit), 0, 0);
    grid->addWidget(m_copyEdit, 0, 1);
    grid->addWidget(label(tr("Ursprünglicher Pfad:"), m_originalEdit), 1, 0);
    grid->addWidget(m_originalEdit, 1, 1);
    grid->addWidget(m_preview, 2, 0, 1, 2, Qt::AlignCenter);
    grid->addLayout(buttonRow({ m_browseButton, m_saveButton }), 3, 0, 1, 2);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(2, 1);
    return box;
}

void LocPictureForm::showPaths()
{
    showPath(m_copyEdit, m_picture.copyPath);
    showPath(m_originalEdit, m_picture.originalPath);
}

void LocPictureForm::takeChoice(const QString &path, const QImage &copy)
{
    const QDate date = QFileInfo(path).lastModified().date();
    m_pictureDate = date.isValid() ? std::optional(date) : std::nullopt;
    m_copy = copy;
    m_chosen = true;
    m_picture.originalPath = path;
    m_picture.copyPath = freeCopyPath(copyFolder());
    m_picture.height = copy.height();
    m_picture.width = copy.width();
    showPaths();
    m_preview->showImage(copy); // reading a large photograph a second time would double the wait
    m_browseButton->setEnabled(false);
    m_saveButton->setEnabled(true);
    m_saveButton->setDefault(true);
    m_saveButton->setFocus();
}

/// The folder for the copy, made again if it was removed by hand meanwhile.
QString LocPictureForm::copyFolder() const
{
    QString folder = m_targetFolder;
    if (folder.isEmpty()) {
        const PictureStore &store = ColorSetting::instance().pictureStore();
        folder = store.currentFolder();
        if (folder.isEmpty()) {
            return store.makeFolder(1); // there is no numbered folder at all
        }
    }
    makeFolder(u"./Data/Pictures"_s, folder);
    return folder;
}

/// Between choosing and saving somebody else may have taken the name.
void LocPictureForm::takeFreeName()
{
    if (isTaken(m_picture.copyPath)) {
        m_picture.copyPath = freeCopyPath(copyFolder());
        showPaths();
    }
}

void LocPictureForm::insertChosen()
{
    takeFreeName();
    const PictureOutcome outcome = insertPicture(m_picture, m_copy);
    if (!isStored(outcome, tr("DB-Insert"))) {
        return;
    }
    m_pictureId = outcome.id;
    m_saved = true;
    settle();
}

/// A stored picture gets another file, or has lost its paths.
void LocPictureForm::updateStored()
{
    const bool replaced = !m_copy.isNull();
    if (replaced) {
        takeFreeName();
    }
    if (!isStored(updatePicture(m_pictureId, m_picture, m_copy), tr("DB-Update"))) {
        return;
    }
    if (replaced) {
        removeReplacedCopy(m_storedPicture);
    }
    settle();
}

/// Whether it was stored; the user is told why not.
bool LocPictureForm::isStored(const PictureOutcome &outcome, const QString &failureTitle)
{
    if (!m_copy.isNull() && outcome.result != PictureOutcome::StatementFailed) {
        ColorSetting::instance().pictureStore().noteStored(outcome.result == PictureOutcome::Stored);
    }
    if (outcome.result == PictureOutcome::StatementFailed) {
        MessageBox::information(this, failureTitle, outcome.errorText);
    } else if (outcome.result == PictureOutcome::FileFailed) {
        MessageBox::information(this, tr("File-Info"), tr("Die Bild-Datei konnte nicht gespeichert werden!"));
    }
    return outcome.result == PictureOutcome::Stored;
}

/// The fields and the row now agree.
void LocPictureForm::settle()
{
    m_copy = QImage();
    m_storedPicture = m_picture;
    m_saveButton->setEnabled(false);
    auto *close = findChild<QPushButton *>(u"closeButton"_s);
    close->setDefault(true);
    close->setFocus();
}

/// A cancelled group picture must not stay behind: no group refers to it.
void LocPictureForm::takeBack()
{
    if (deletePicture(m_pictureId, false, this)) {
        m_pictureId = -1;
        m_saved = false;
        m_chosen = false;
    }
}
