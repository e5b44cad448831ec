// The building of both dialogs of LocGroupForm, apart from what they do.

#include "forms/dialogstyle.h"
#include "forms/formparts.h"
#include "forms/inputguards.h"
#include "forms/locgroupform.h"
#include "forms/picturepreview.h"
#include "forms/rowlist.h"

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

constexpr QSize MaintenanceSize(900, 540);
constexpr QSize MoveSize(600, 440);
constexpr int NameColumnWidth = 200;

} // namespace

void LocGroupForm::buildMaintenance()
{
    QGroupBox *box = groupBox(tr("Gruppe erfassen / entfernen"), u"groupBox"_s);
    auto *grid = new QGridLayout(box);
    grid->addLayout(buildNameRow(), 0, 0, 1, 2);
    grid->addWidget(new QLabel(u" "_s), 1, 0, 1, 2);
    grid->addWidget(buildMaintainedList(), 2, 0);
    grid->addLayout(buildPictureColumn(), 2, 1);
    grid->setColumnStretch(0, 1);
    grid->setRowMinimumHeight(3, 10);
    finish(box, tr("Baureihe-Gruppen (mit Bild)"));
    resize(MaintenanceSize);
}

void LocGroupForm::buildMove()
{
    QGroupBox *box = groupBox(tr("Baureihe verschieben"), u"groupBox"_s);
    m_nameEdit = new QLineEdit(m_modelName);
    m_nameEdit->setObjectName(u"modelNameEdit"_s);
    showOnly(m_nameEdit);
    m_nameEdit->setCursorPosition(0);
    m_saveButton = disabledButton(tr("Speichern"), u"saveButton"_s);
    explain(m_saveButton, tr("Verschiebt die Baureihe in die Gruppe, die in der Liste gewählt ist."));
    m_rowButtons = { m_saveButton };
    connect(m_saveButton, &QPushButton::clicked, this, &LocGroupForm::moveToGroup);

    auto *grid = new QGridLayout(box);
    grid->addWidget(label(tr("Baureihe:"), m_nameEdit), 0, 0);
    grid->addWidget(m_nameEdit, 0, 1);
    grid->addWidget(buttonBox({ m_saveButton }), 0, 2);
    grid->addWidget(new QLabel(u" "_s), 1, 0, 1, 3);
    grid->addWidget(buildList(), 2, 0, 1, 3);
    grid->setColumnStretch(1, 1);
    finish(box, tr("Baureihe-Gruppen"));
    resize(MoveSize);
    m_groupList->setFocus();
}

QLayout *LocGroupForm::buildNameRow()
{
    m_nameEdit = new QLineEdit;
    m_nameEdit->setObjectName(u"nameEdit"_s);
    InputGuards::keepOnOneLine(m_nameEdit);
    m_saveButton = disabledButton(tr("Speichern"), u"saveButton"_s);
    explain(m_saveButton, tr("Eine neue Gruppe braucht einen Namen und ein Bild."));
    connect(m_nameEdit, &QLineEdit::textEdited, this, &LocGroupForm::checktextEdits);
    connect(m_saveButton, &QPushButton::clicked, this, &LocGroupForm::addGroup);

    auto *row = new QHBoxLayout;
    row->addWidget(label(tr("Name der neuen Gruppe:"), m_nameEdit));
    row->addWidget(m_nameEdit, 1);
    row->addWidget(buttonBox({ m_saveButton }));
    return row;
}

QGroupBox *LocGroupForm::buildList()
{
    m_groupList = new RowList(u"locomotive"_s, { { u"name"_s, tr("Name") }, { u"pictPath"_s, tr("Bild-Datei") } });
    m_groupList->setObjectName(u"groupList"_s);
    m_groupList->setColumnWidth(m_groupList->model()->columnCount() - 2, NameColumnWidth);
    connect(m_groupList, &RowList::rowChosen, this, &LocGroupForm::getTableViewIndex);

    QGroupBox *box = groupBox(tr("Liste der Gruppen"), u"listBox"_s);
    (new QVBoxLayout(box))->addWidget(m_groupList);
    return box;
}

QGroupBox *LocGroupForm::buildMaintainedList()
{
    QGroupBox *box = buildList();
    QPushButton *models = disabledButton(tr("Baureihen"), u"modelsButton"_s);
    QPushButton *remove = disabledButton(tr("Gruppe entfernen"), u"deleteButton"_s);
    explain(models, tr("Öffnet die Baureihen der Gruppe, die in der Liste gewählt ist."));
    explain(remove, tr("Entfernt die Gruppe, die in der Liste gewählt ist."));
    m_rowButtons.append({ models, remove });
    connect(models, &QPushButton::clicked, this, &LocGroupForm::editLocModel);
    connect(remove, &QPushButton::clicked, this, &LocGroupForm::deleteGroup);

    static_cast<QBoxLayout *>(box->layout())->addLayout(buttonRow({ models, remove }));
    return box;
}

QLayout *LocGroupForm::buildPictureColumn()
{
    m_preview = new PicturePreview;
    m_preview->setObjectName(u"preview"_s);
    QPushButton *show = disabledButton(tr("Bild zeigen"), u"showPictureButton"_s);
    m_assignButton = disabledButton(tr("Bild zuweisen"), u"assignPictureButton"_s);
    m_changeButton = disabledButton(tr("Bild austauschen"), u"changePictureButton"_s);
    explain(show, tr("Zeigt das Bild der Gruppe, die in der Liste gewählt ist."));
    explain(m_assignButton, tr("Wählt das Bild der neuen Gruppe; ihr Name kommt zuerst."));
    explain(m_changeButton, tr("Gibt der Gruppe, die in der Liste gewählt ist, ein anderes Bild."));
    m_rowButtons.append({ show, m_changeButton });
    connect(show, &QPushButton::clicked, this, &LocGroupForm::showLocPicture);
    connect(m_assignButton, &QPushButton::clicked, this, &LocGroupForm::newLocPicture);
    connect(m_changeButton, &QPushButton::clicked, this, &LocGroupForm::changeLocPicture);

    auto *column = new QVBoxLayout;
    column->addWidget(m_preview);
    QDialogButtonBox *buttons = buttonBox({ show, m_assignButton, m_changeButton });
    buttons->setCenterButtons(true);
    column->addWidget(buttons);
    column->addStretch();
    return column;
}

void LocGroupForm::finish(QGroupBox *box, const QString &title)
{
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(box);
    layout->addLayout(closeRow(this));
    m_saveButton->setDefault(true);
    setWindowTitle(title);
    setWindowIcon(dialogIcon());
}
