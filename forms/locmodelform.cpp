#include "forms/locmodelform.h"

#include "forms/dialogstyle.h"
#include "forms/formparts.h"
#include "forms/inputguards.h"
#include "forms/locgroupform.h"
#include "forms/rowlist.h"
#include "search/messagebox.h"
#include "search/textcut.h"
#include "store/catalogquery.h"
#include "store/rowvalue.h"
#include "store/statement.h"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using namespace FormParts;
using namespace Qt::StringLiterals;

namespace {

void warnOfEntries()
{
    MessageBox::warning(nullptr, LocModelForm::tr("Daten vorhanden"),
        LocModelForm::tr("Die Baureihe kann nicht entfernt werden, da sich noch Lok-Einträge darunter befinden!"));
}

} // namespace

LocModelForm::LocModelForm(int groupId, QWidget *parent)
    : QDialog(parent)
    , m_groupId(groupId)
{
    buildWidgets();
    connectWidgets();
    const NeededRow group = neededGroup(m_groupId);
    if (reasonAgainst(group) == group.missingText) { // when it cannot be found out now, saving asks once more
        refuseNewModels();
    }
}

void LocModelForm::checktextEdits()
{
    m_saveButton->setEnabled(!m_nameEdit->text().isEmpty());
}

void LocModelForm::addModel()
{
    const WriteOutcome outcome = executeWrite(u"INSERT INTO loc_model (modelname, locid) VALUES (:modnam, :locid) "_s,
        { { u":modnam"_s, cutText(m_nameEdit->text(), TextLimit::Name) }, { u":locid"_s, m_groupId } },
        { neededGroup(m_groupId) });
    if (outcome.done) {
        m_modelList->refresh();
        m_modelList->showRow(outcome.newId);
        CatalogQuery::instance().reloadModels();
    } else {
        MessageBox::information(this, tr("DB-Insert"), outcome.errorText);
    }
    m_nameEdit->clear();
    m_nameEdit->setEnabled(false);
    m_saveButton->setEnabled(false);
}

void LocModelForm::moveModel()
{
    const int modelId = m_modelList->chosenId();
    if (modelId == 0) {
        return;
    }
    {
        LocGroupForm form(modelId, rowText(m_modelList->chosenRow(), u"modelname"_s), this);
        form.exec();
    }
    m_moveButton->setEnabled(false);
    m_modelList->refresh();
}

void LocModelForm::deleteModel()
{
    const int modelId = m_modelList->chosenId();
    if (modelId == 0) {
        return;
    }
    if (CatalogQuery::instance().countEntriesOfModel(modelId) >= 1) {
        warnOfEntries();
        return;
    }
    if (!MessageBox::confirm(this, tr("Baureihe entfernen"), tr("Soll die gewählte Baureihe gelöscht werden?"))) {
        return;
    }
    const DeletionOutcome outcome
        = deleteUnlessUsed(u"SELECT COUNT(*) FROM loc_seen WHERE locseenid = '%1'"_s.arg(modelId),
            u"DELETE FROM loc_model WHERE id = %1"_s.arg(modelId));
    if (outcome.result == DeletionResult::StillUsed) {
        warnOfEntries();
        return;
    }
    if (outcome.result == DeletionResult::Failed) {
        MessageBox::information(this, tr("DB-Delete"), outcome.errorText);
    }
    m_moveButton->setEnabled(false);
    m_deleteButton->setEnabled(false);
    m_modelList->refresh();
}

void LocModelForm::getTableViewIndex()
{
    m_moveButton->setEnabled(true);
    m_deleteButton->setEnabled(true);
}

void LocModelForm::buildWidgets()
{
    QGroupBox *box = groupBox(tr("Baureihe erfassen / entfernen"), u"modelBox"_s);
    auto *inner = new QVBoxLayout(box);
    inner->addLayout(buildNameRow());
    inner->addWidget(new QLabel(u" "_s));
    inner->addWidget(buildList());

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(box);
    layout->addLayout(closeRow(this));
    m_saveButton->setDefault(true);
    setWindowTitle(tr("Baureihen"));
    setWindowIcon(dialogIcon());
    resize(600, 440); // room for a name of 38 characters
}

QLayout *LocModelForm::buildNameRow()
{
    m_nameEdit = new QLineEdit;
    m_nameEdit->setObjectName(u"nameEdit"_s);
    InputGuards::keepOnOneLine(m_nameEdit);
    m_saveButton = disabledButton(tr("Speichern"), u"saveButton"_s);
    explain(m_saveButton, tr("Eine neue Baureihe braucht einen Namen."));
    auto *row = new QHBoxLayout;
    row->addWidget(label(tr("Name der neuen Baureihe:"), m_nameEdit));
    row->addWidget(m_nameEdit, 1);
    row->addWidget(buttonBox({ m_saveButton }));
    return row;
}

QGroupBox *LocModelForm::buildList()
{
    m_modelList = new RowList(u"loc_model"_s, { { u"modelname"_s, tr("Name") } }, u"locid = %1 "_s.arg(m_groupId));
    m_modelList->setObjectName(u"modelList"_s);
    m_moveButton = disabledButton(tr("Baureihe verschieben"), u"moveButton"_s);
    m_deleteButton = disabledButton(tr("Baureihe entfernen"), u"deleteButton"_s);
    explain(m_moveButton, tr("Verschiebt die Baureihe, die in der Liste gewählt ist, in eine andere Gruppe."));
    explain(m_deleteButton, tr("Entfernt die Baureihe, die in der Liste gewählt ist."));

    QGroupBox *box = groupBox(tr("Liste der Baureihen"), u"listBox"_s);
    auto *layout = new QVBoxLayout(box);
    layout->addWidget(m_modelList);
    layout->addLayout(buttonRow({ m_moveButton, m_deleteButton }));
    return box;
}

void LocModelForm::connectWidgets()
{
    connect(m_nameEdit, &QLineEdit::textEdited, this, &LocModelForm::checktextEdits);
    connect(m_saveButton, &QPushButton::clicked, this, &LocModelForm::addModel);
    connect(m_modelList, &RowList::rowChosen, this, &LocModelForm::getTableViewIndex);
    connect(m_moveButton, &QPushButton::clicked, this, &LocModelForm::moveModel);
    connect(m_deleteButton, &QPushButton::clicked, this, &LocModelForm::deleteModel);
}

void LocModelForm::refuseNewModels()
{
    m_nameEdit->setEnabled(false);
    m_nameEdit->setPlaceholderText(tr("Die Gruppe gibt es nicht mehr."));
}
