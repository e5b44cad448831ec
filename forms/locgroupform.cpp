#include "forms/locgroupform.h"

#include "forms/locmodelform.h"
#include "forms/locpictureform.h"
#include "forms/picturepreview.h"
#include "forms/rowlist.h"
#include "search/messagebox.h"
#include "search/textcut.h"
#include "store/catalogquery.h"
#include "store/rowvalue.h"
#include "store/statement.h"

#include <QLineEdit>
#include <QPushButton>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

QString groupPictureFolder()
{
    return u"AuxFolder"_s; // keeps group pictures out of the numbered folders and of the statistics
}

} // namespace

LocGroupForm::LocGroupForm(QWidget *parent)
    : QDialog(parent)
{
    buildMaintenance();
}

LocGroupForm::LocGroupForm(int modelId, const QString &modelName, QWidget *parent)
    : QDialog(parent)
    , m_modelId(modelId)
    , m_modelName(shownText(modelName))
{
    buildMove();
}

void LocGroupForm::checktextEdits()
{
    if (!m_assignButton) {
        return; // the move dialog has none
    }
    const bool hasName = !m_nameEdit->text().isEmpty();
    m_assignButton->setEnabled(hasName);
    if (!hasName) {
        m_saveButton->setEnabled(false);
    }
}

void LocGroupForm::addGroup()
{
    const WriteOutcome outcome = executeWrite(u"INSERT INTO locomotive (name, pictPath) VALUES (:nam, :pict) "_s,
        { { u":nam"_s, cutText(m_nameEdit->text(), TextLimit::Name) }, { u":pict"_s, m_picturePath } });
    if (outcome.done) {
        m_unusedPictureId = -1; // the group has it
        m_groupList->refresh();
        m_groupList->showRow(outcome.newId);
        readyForNextGroup();
    } else {
        MessageBox::information(this, tr("DB-Insert"), outcome.errorText);
    }
    Q_EMIT groupsChanged();
}

void LocGroupForm::moveToGroup()
{
    const int groupId = m_groupList->chosenId();
    if (groupId == 0) {
        return;
    }
    const WriteOutcome outcome = executeWrite(u"UPDATE loc_model SET locid = :lid WHERE id = %1"_s.arg(m_modelId),
        { { u":lid"_s, groupId } }, { neededGroup(groupId) });
    if (!outcome.done) {
        MessageBox::information(this, tr("DB-Update"), outcome.errorText);
    } else if (outcome.rows == 0) {
        MessageBox::information(this, tr("DB-Update"), neededModel(m_modelId).missingText);
    } else {
        m_saveButton->setEnabled(false); // the sign that the class has moved
    }
}

void LocGroupForm::showLocPicture()
{
    if (!m_preview) {
        return; // the move dialog has none
    }
    if (m_groupList->chosenId() == 0) {
        tellNothingChosen();
        return;
    }
    showPicture(rowText(m_groupList->chosenRow(), u"pictPath"_s));
}

void LocGroupForm::newLocPicture()
{
    if (!m_preview) {
        return; // the move dialog has none
    }
    int pictureId = -1;
    const QString path = choosePicture(pictureId);
    if (!path.isEmpty()) {
        dropUnusedPicture(); // of an earlier choice
        m_unusedPictureId = pictureId;
        m_picturePath = path;
        m_pictureChosen = true;
    }
    if (!m_nameEdit->text().isEmpty() && m_pictureChosen) {
        m_saveButton->setEnabled(true);
    }
}

void LocGroupForm::changeLocPicture()
{
    const int groupId = m_groupList->chosenId();
    if (groupId == 0 || !m_preview) {
        return;
    }
    int pictureId = -1;
    const QString path = choosePicture(pictureId);
    if (path.isEmpty()) {
        return;
    }
    const WriteOutcome outcome = executeWrite(
        u"UPDATE locomotive SET pictPath = :pict WHERE id = %1"_s.arg(groupId), { { u":pict"_s, path } });
    if (!outcome.done || outcome.rows == 0) {
        MessageBox::information(
            this, tr("DB-Update"), outcome.done ? neededGroup(groupId).missingText : outcome.errorText);
        dropPicture(pictureId, path);
    }
    m_groupList->refresh();
    m_changeButton->setEnabled(false);
    Q_EMIT groupsChanged();
}

void LocGroupForm::deleteGroup()
{
    const int groupId = m_groupList->chosenId();
    if (groupId == 0) {
        tellNothingChosen();
        return;
    }
    if (CatalogQuery::instance().countModels(groupId) >= 1) {
        warnOfModels();
        return;
    }
    if (!MessageBox::confirm(this, tr("Gruppe entfernen"), tr("Soll die gewählte Gruppe gelöscht werden?"))) {
        return;
    }
    const DeletionOutcome outcome
        = deleteUnlessUsed(u"SELECT COUNT(*) FROM loc_model WHERE locid = '%1'"_s.arg(groupId),
            u"DELETE FROM locomotive WHERE id = %1"_s.arg(groupId));
    if (outcome.result == DeletionResult::StillUsed) {
        warnOfModels();
        return;
    }
    if (outcome.result == DeletionResult::Failed) {
        MessageBox::information(this, tr("DB-Delete"), outcome.errorText);
    }
    m_groupList->refresh();
    Q_EMIT groupsChanged();
}

void LocGroupForm::editLocModel()
{
    const int groupId = m_groupList->chosenId();
    if (groupId == 0) {
        return;
    }
    LocModelForm form(groupId, this);
    form.exec();
}

void LocGroupForm::getTableViewIndex()
{
    for (QPushButton *button : m_rowButtons) {
        button->setEnabled(true);
    }
}

void LocGroupForm::tellNothingChosen()
{
    MessageBox::information(this, tr("File-Info"),
        tr("Die Bild-Datei konnte nicht gefunden\n-> klicken Sie auf einen Verzeichnis-Eintrag!"));
}

void LocGroupForm::warnOfModels()
{
    MessageBox::warning(nullptr, tr("Daten vorhanden"),
        tr("Die Gruppe kann nicht entfernt werden, da sich noch Baureihen darunter befinden!"));
}

void LocGroupForm::done(int result)
{
    dropUnusedPicture();
    QDialog::done(result);
}

/// A picture that was assigned to a group which was then never added would stay in the store for ever.
void LocGroupForm::dropUnusedPicture()
{
    if (m_unusedPictureId >= 1) {
        dropPicture(std::exchange(m_unusedPictureId, -1), m_picturePath);
    }
}

/// Asks the database for groups with this picture, because a write may be stored although it was reported as failed.
void LocGroupForm::dropPicture(int pictureId, const QString &path)
{
    if (!mayBelongToGroup(path)) {
        LocPictureForm::deletePicture(pictureId, false, this); // which tells the user when it fails
    }
}

/// Lets the user choose and store a group picture; returns the path of its copy, empty when there is none, and its id.
QString LocGroupForm::choosePicture(int &pictureId)
{
    LocPictureForm form(-1, -1, this);
    form.setTargetFolder(groupPictureFolder());
    if (form.exec() != QDialog::Accepted || !form.hasChosenPicture()) {
        return {};
    }
    form.addLocPicture();
    if (!form.isSaved()) {
        return {};
    }
    pictureId = form.pictureId();
    m_groupList->refresh();
    showPicture(form.copyPath());
    return form.copyPath();
}

void LocGroupForm::showPicture(const QString &path)
{
    m_preview->clear();
    if (!m_preview->showFile(path)) {
        MessageBox::information(this, tr("File-Info"), tr("Die Datei konnte nicht gefunden werden!"));
    }
}

/// A second "Speichern" would add the same group again: name, picture and button start anew.
void LocGroupForm::readyForNextGroup()
{
    m_picturePath.clear();
    m_pictureChosen = false;
    m_preview->clear();
    m_nameEdit->clear();
    m_nameEdit->setFocus();
    checktextEdits();
}
