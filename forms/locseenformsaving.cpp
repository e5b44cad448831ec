#include "forms/locseenform.h"

#include "search/messagebox.h"
#include "search/textcut.h"
#include "store/statement.h"
#include "store/transaction.h"

#include <QDateEdit>
#include <QLineEdit>
#include <QPushButton>
#include <QSqlError>
#include <QSqlField>
#include <QSqlQuery>
#include <QTextDocument>
#include <QTextEdit>

#include <algorithm>

using namespace Qt::StringLiterals;

// How what was typed gets into the database.

namespace {

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

/// With the text control's own signs for the ends of lines. Its plain text has blanks in the place of no-break spaces:
/// an edit of one word would replace all of them in the comment, and putting one in would be no edit.
QString LocseenForm::commentText() const
{
    return m_commentEdit->document()->toRawText();
}

/// The columns as they are stored, of what the fields hold now.
QSqlRecord LocseenForm::fieldValues() const
{
    QSqlRecord row;
    const auto add = [&row](const QString &column, const QVariant &value) {
        QSqlField field(column, value.metaType());
        field.setValue(value);
        row.append(field);
    };
    add(u"nummer"_s, cutText(m_numberEdit->text(), TextLimit::Number));
    add(u"ort"_s, cutText(m_placeEdit->text(), TextLimit::Place));
    add(u"kommentar"_s, storedComment(commentText()));
    add(u"locseendate"_s, m_seenDateEdit->date());
    return row;
}

/// What the user has not touched stays as it is `stored`: a field may be unable to show it, and another window may have
/// changed it meanwhile.
QSqlRecord LocseenForm::editedRow(const QSqlRecord &stored) const
{
    QSqlRecord row = fieldValues();
    const auto keepUnless = [&stored, &row](bool isFieldEdited, const QString &column) {
        if (!isFieldEdited && stored.contains(column)) {
            row.setValue(column, stored.value(column));
        }
    };
    keepUnless(m_numberEdit->text() != m_storedNumber, u"nummer"_s);
    keepUnless(m_placeEdit->text() != m_storedPlace, u"ort"_s);
    keepUnless(commentText() != m_storedComment, u"kommentar"_s);
    keepUnless(m_seenDateEdit->date() != m_storedSeenDate, u"locseendate"_s);
    return row;
}

void LocseenForm::insertEntry()
{
    const QSqlRecord row = fieldValues();
    const WriteOutcome outcome
        = executeWrite(u"INSERT INTO loc_seen (nummer, locseenid, ort, kommentar, startdate, locseendate) "
                       "VALUES (:num, :lsid, :ort, :kmt, :sdate, :lsdate)"_s,
            { { u":num"_s, row.value(u"nummer"_s) }, { u":lsid"_s, m_modelId }, { u":ort"_s, row.value(u"ort"_s) },
                { u":kmt"_s, row.value(u"kommentar"_s) }, { u":sdate"_s, m_startDateEdit->date() },
                { u":lsdate"_s, row.value(u"locseendate"_s) } },
            { neededModel(m_modelId) });
    if (outcome.done) {
        m_entryId = outcome.newId;
        m_row = row;
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

/// Writes the edits over the row as it is now, in one transaction; `m_row` is then what was written.
WriteOutcome LocseenForm::storeEdits()
{
    Transaction transaction;
    if (!transaction.isOpen()) {
        return { false, transaction.errorText() };
    }
    QSqlQuery stored(u"SELECT * FROM loc_seen WHERE id = %1"_s.arg(m_entryId));
    if (!stored.next()) { // what this window has read before must not be written over what another one has stored
        const bool couldBeRead = !stored.lastError().isValid();
        return { false, couldBeRead ? neededEntry(m_entryId).missingText : stored.lastError().text() };
    }
    const QSqlRecord row = editedRow(stored.record());
    stored.finish();
    WriteOutcome outcome = runWrite(
        u"UPDATE loc_seen SET nummer = :num, ort = :ort, kommentar = :kmt,  locseendate = :seend WHERE id = %1"_s.arg(
            m_entryId),
        { { u":num"_s, row.value(u"nummer"_s) }, { u":ort"_s, row.value(u"ort"_s) },
            { u":kmt"_s, row.value(u"kommentar"_s) }, { u":seend"_s, row.value(u"locseendate"_s) } });
    if (!outcome.done) {
        return outcome;
    }
    if (outcome.rows == 0) {
        return { false, neededEntry(m_entryId).missingText };
    }
    if (!transaction.commit()) {
        return { false, transaction.errorText() };
    }
    m_row = row;
    return outcome;
}

/// False when there are edits that could not be stored; the user has then been told.
bool LocseenForm::updateEntry()
{
    if (m_entryId < 1 || !isEdited()) {
        return true;
    }
    const WriteOutcome outcome = storeEdits();
    if (!outcome.done) {
        MessageBox::information(this, tr("DB-Update"), outcome.errorText);
        return false;
    }
    m_modified = true;
    m_closingFailed = false;
    keepAsStored(); // else an edit that is taken back later would not be seen as one
    return true;
}
