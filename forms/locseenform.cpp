#include "forms/locseenform.h"

#include "forms/locpictureform.h"
#include "forms/picturepreview.h"
#include "forms/picturetable.h"
#include "search/messagebox.h"
#include "store/catalogquery.h"
#include "store/rowvalue.h"
#include "store/statement.h"
#include "store/textcut.h"

#include <QDateEdit>
#include <QLineEdit>
#include <QPushButton>
#include <QTextEdit>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int LargestPictureCount = 6; // of one entry

/// The comment on one line, as the canvas and the lists show it.
QString storedComment(QString text)
{
    const auto breaksLine = [](QChar character) {
        return character == u'\n' || character == u'\t' || character == u'\r' || character == u'\v'
            || character == u'\f' || character == QChar::LineSeparator || character == QChar::ParagraphSeparator;
    };
    std::replace_if(text.begin(), text.end(), breaksLine, QChar(u' '));
    return cutText(text, TextLimit::Comment);
}

} // namespace

LocseenForm::LocseenForm(int entryId, int modelId, QWidget *parent)
    : QDialog(parent)
    , m_entryId(std::max(entryId, 0))
    , m_modelId(modelId)
    , m_isNew(entryId < 1)
{
    buildWidgets();
    if (!m_isNew) {
        showEntry();
    }
    m_modelEdit->setText(CatalogQuery::instance().modelName(m_modelId));
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
    if (!m_numberEdit->text().isEmpty() && !m_commentEdit->toPlainText().isEmpty() && !m_placeEdit->text().isEmpty()) {
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
    if (CatalogQuery::instance().countPicturesOfEntry(m_entryId) >= LargestPictureCount) {
        MessageBox::information(this, tr("max. Anzahl Bilder"), tr("Es sind max. 6 Bilder pro Eintrag zulässig!"));
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
    m_numberEdit->setText(rowText(entry, u"nummer"_s));
    m_numberEdit->setEnabled(false);
    m_placeEdit->setText(rowText(entry, u"ort"_s));
    m_commentEdit->setPlainText(rowText(entry, u"kommentar"_s));
    m_startDateEdit->setDate(entry.value(u"startdate"_s).toDate());
    m_seenDateEdit->setDate(entry.value(u"locseendate"_s).toDate());
    m_rowSeenDate = entry.value(u"locseendate"_s);
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

/// Keeps what the widgets give back and not what the row holds: a row that they cannot show as it is, with no date or
/// with control characters, would otherwise count as edited as soon as it is opened.
void LocseenForm::keepAsStored()
{
    m_storedNumber = m_numberEdit->text();
    m_storedPlace = m_placeEdit->text();
    m_storedComment = m_commentEdit->toPlainText();
    m_storedSeenDate = m_seenDateEdit->date();
}

bool LocseenForm::isEdited() const
{
    if (!m_storedSeenDate) {
        return false;
    }
    return m_numberEdit->text() != m_storedNumber || m_placeEdit->text() != m_storedPlace
        || m_seenDateEdit->date() != *m_storedSeenDate || m_commentEdit->toPlainText() != m_storedComment;
}

void LocseenForm::insertEntry()
{
    const WriteOutcome outcome
        = executeWrite(u"INSERT INTO loc_seen (nummer, locseenid, ort, kommentar, startdate, locseendate) "
                       "VALUES (:num, :lsid, :ort, :kmt, :sdate, :lsdate)"_s,
            { { u":num"_s, cutText(m_numberEdit->text(), TextLimit::Number) }, { u":lsid"_s, m_modelId },
                { u":ort"_s, cutText(m_placeEdit->text(), TextLimit::Place) },
                { u":kmt"_s, storedComment(m_commentEdit->toPlainText()) }, { u":sdate"_s, m_startDateEdit->date() },
                { u":lsdate"_s, m_seenDateEdit->date() } });
    if (outcome.done) {
        m_entryId = outcome.newId;
        m_modified = true;
        keepAsStored();
        m_newButton->setEnabled(true);
        m_newButton->setFocus();
    } else {
        MessageBox::information(this, tr("DB-Insert"), outcome.errorText);
    }
    m_editable = false;
    m_storedSeenDate = m_seenDateEdit->date();
    lockTexts();
    m_startDateEdit->setEnabled(false);
}

/// False when there are edits that could not be stored; the user has then been told.
bool LocseenForm::updateEntry()
{
    if (m_entryId < 1 || !isEdited()) {
        return true;
    }
    // A date that the field cannot show stays as it is in the row until the user chooses another one.
    const bool dateChosen = m_seenDateEdit->date() != m_storedSeenDate;
    const QVariant seenDate = dateChosen || !m_rowSeenDate ? QVariant(m_seenDateEdit->date()) : *m_rowSeenDate;
    const WriteOutcome outcome = executeWrite(
        u"UPDATE loc_seen SET nummer = :num, ort = :ort, kommentar = :kmt,  locseendate = :seend WHERE id = %1"_s.arg(
            m_entryId),
        { { u":num"_s, cutText(m_numberEdit->text(), TextLimit::Number) },
            { u":ort"_s, cutText(m_placeEdit->text(), TextLimit::Place) },
            { u":kmt"_s, storedComment(m_commentEdit->toPlainText()) }, { u":seend"_s, seenDate } });
    if (!outcome.done || outcome.rows == 0) {
        const QString vanished = tr("Der Eintrag ist nicht mehr vorhanden, er wurde inzwischen gelöscht.");
        MessageBox::information(this, tr("DB-Update"), outcome.done ? vanished : outcome.errorText);
        return false;
    }
    if (dateChosen) {
        m_rowSeenDate.reset();
    }
    m_modified = true;
    keepAsStored(); // else an edit that is taken back later would not be seen as one
    return true;
}

void LocseenForm::takePictureDate(const QDate &date)
{
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
