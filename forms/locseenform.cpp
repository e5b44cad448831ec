#include "forms/locseenform.h"

#include "forms/locpictureform.h"
#include "forms/picturepreview.h"
#include "forms/picturetable.h"
#include "search/messagebox.h"
#include "search/textcut.h"
#include "store/catalogquery.h"
#include "store/neededrow.h"
#include "store/rowvalue.h"

#include <QDateEdit>
#include <QLineEdit>
#include <QPushButton>
#include <QTextEdit>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype LongestShown = 1000; // characters in a field; what only another program can store may be millions

} // namespace

LocseenForm::LocseenForm(int entryId, int modelId, QWidget *parent)
    : QDialog(parent)
    , m_entryId(std::max(entryId, 0))
    , m_modelId(modelId)
    , m_isNew(entryId == -1)
{
    buildWidgets();
    if (!m_isNew) {
        showEntry();
    }
    m_modelEdit->setText(shownText(CatalogQuery::instance().modelName(m_modelId)));
    m_modelEdit->setCursorPosition(0);
    connectWidgets(); // after filling, which is no edit
}

LocseenForm::~LocseenForm()
{
    m_numberEdit->disconnect(this); // losing the focus while it dies, it would still announce the end of editing
}

void LocseenForm::checktextEdits()
{
    if (!m_editable) {
        return;
    }
    if (!m_isNew) {
        m_saveButton->setEnabled(isEdited());
        return;
    }
    if (!m_numberEdit->text().isEmpty() && !commentText().isEmpty() && !m_placeEdit->text().isEmpty()) {
        m_saveButton->setEnabled(true);
    }
}

void LocseenForm::addLocseen()
{
    if (m_entryId == 0) {
        insertEntry();
    } else {
        updateEntry();
    }
    m_saveButton->setEnabled(false);
}

void LocseenForm::showLocPicture()
{
    if (const auto choice = m_pictureTable->choice()) {
        showPicture(choice->picture.copyPath);
    } else {
        tellNothingChosen();
    }
}

void LocseenForm::newLocPicture()
{
    if (CatalogQuery::instance().countPicturesOfEntry(m_entryId) >= MostPictures) {
        MessageBox::information(this, tr("max. Anzahl Bilder"), neededRoom(m_entryId).missingText);
        return;
    }
    LocPictureForm form(m_entryId, -1, this);
    form.exec();
    if (!form.isSaved()) {
        return;
    }
    m_modified = true;
    m_pictureTable->showEntry(m_entryId);
    showPicture(form.copyPath());
    if (const std::optional<QDate> date = form.pictureDate()) {
        takePictureDate(*date);
    }
}

void LocseenForm::deleteLocPicture()
{
    const auto choice = m_pictureTable->choice();
    if (!choice) {
        tellNothingChosen();
        return;
    }
    if (!MessageBox::confirm(this, tr("Bild Entfernen"), tr("Soll das gewählte Bild gelöscht werden?"))) {
        return;
    }
    const QString errorText = removePicture(choice->id, choice->picture, false);
    if (!errorText.isEmpty()) {
        MessageBox::information(this, tr("DB-Delete"), errorText);
    }
    m_pictureTable->showEntry(m_entryId);
    m_preview->clear();
    m_modified = true;
}

void LocseenForm::getTableViewIndex()
{
    m_showButton->setEnabled(true);
    m_removeButton->setEnabled(true);
}

void LocseenForm::done(int result)
{
    if (m_entryId > 0 && !updateEntry() && !m_closingFailed) {
        m_closingFailed = true; // the edits are still here to be saved later; a second closing gives them up
        return;
    }
    if (isEdited() || m_modified) {
        m_changed = true;
    }
    QDialog::done(result);
}

void LocseenForm::showEntry()
{
    m_startDateEdit->setEnabled(false); // written once, when the entry is inserted
    QList<QSqlRecord> rows;
    CatalogQuery::instance().entryById(rows, m_entryId);
    if (rows.isEmpty()) {
        lockTexts(); // the entry has vanished meanwhile: there is nothing to edit
        m_seenDateEdit->setEnabled(false);
        m_editable = false;
        return;
    }
    const QSqlRecord &entry = rows.first();
    m_row = entry;
    m_numberEdit->setText(cutText(rowText(entry, u"nummer"_s), LongestShown));
    m_numberEdit->setEnabled(false);
    m_placeEdit->setText(cutText(rowText(entry, u"ort"_s), LongestShown));
    m_commentEdit->setPlainText(cutText(rowText(entry, u"kommentar"_s), LongestShown));
    m_startDateEdit->setDate(entry.value(u"startdate"_s).toDate());
    m_seenDateEdit->setDate(entry.value(u"locseendate"_s).toDate());
    m_modelId = rowId(entry, u"locseenid"_s);
    keepAsStored();
    m_newButton->setEnabled(true);
    m_pictureTable->showEntry(m_entryId);
    m_placeEdit->setFocus();
}

void LocseenForm::lockTexts()
{
    m_numberEdit->setEnabled(false);
    m_placeEdit->setEnabled(false);
    m_commentEdit->setEnabled(false);
}

/// Keeps what the widgets give back and not what the row holds: a row that they cannot show as it is, with no date,
/// with control characters or with too long a text, would otherwise count as edited as soon as it is opened.
void LocseenForm::keepAsStored()
{
    m_storedNumber = m_numberEdit->text();
    m_storedPlace = m_placeEdit->text();
    m_storedComment = commentText();
    m_storedSeenDate = m_seenDateEdit->date();
}

bool LocseenForm::isEdited() const
{
    if (!m_storedSeenDate) {
        return false;
    }
    return m_numberEdit->text() != m_storedNumber || m_placeEdit->text() != m_storedPlace
        || m_seenDateEdit->date() != *m_storedSeenDate || commentText() != m_storedComment;
}

void LocseenForm::takePictureDate(const QDate &date)
{
    if (m_storedSeenDate && m_row.value(u"locseendate"_s).toDate() != *m_storedSeenDate) {
        m_storedSeenDate = QDate(); // the row has a date that the field cannot show: any day is an edit of it
    }
    m_seenDateEdit->setDate(date);
    if (m_storedSeenDate && *m_storedSeenDate != date) {
        m_saveButton->setEnabled(true);
    }
}

void LocseenForm::showPicture(const QString &path)
{
    if (!m_preview->showFile(path)) {
        MessageBox::information(this, tr("File-Info"), tr("Die Datei konnte nicht gefunden werden!"));
    }
}

void LocseenForm::tellNothingChosen()
{
    MessageBox::information(this, tr("File-Info"),
        tr("Die Bild-Datei konnte nicht gefunden\n-> klicken Sie auf einen Verzeichnis-Eintrag!"));
}
