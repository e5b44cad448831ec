#include "search/optiondialog.h"

#include "forms/dialogstyle.h"
#include "forms/formparts.h"
#include "forms/locseenform.h"
#include "search/messagebox.h"
#include "search/searchchoice.h"
#include "search/startposition.h"
#include "search/textcut.h"
#include "store/catalogquery.h"
#include "store/colorsetting.h"
#include "store/rowvalue.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFontMetrics>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTextDocument>

using namespace FormParts;
using namespace Qt::StringLiterals;

namespace {

constexpr QSize LargestSize(530, 380);
constexpr int BoxSpacing = 12;
constexpr int CaptionWidth = LargestSize.width() - 40; // what the margins leave

const QString RepeatSetting = u"SingleOrMulti"_s;
const QString PicturesSetting = u"InclPictures"_s;
const QString SortSetting = u"Sort"_s;

/// A box with the items of a search option, preset to the kept choice. A kept value that is no item is the first.
QComboBox *buildChoice(const QStringList &items, const QString &setting, const QString &objectName)
{
    auto *box = new QComboBox;
    box->setObjectName(objectName);
    box->addItems(items);
    const int kept = ColorSetting::instance().queryValue(setting);
    box->setCurrentIndex(kept >= 0 && kept < box->count() ? kept : 0);
    return box;
}

/// The chosen text, after the choice was kept in the settings.
QString keptChoice(const QComboBox *box, const QString &setting)
{
    ColorSetting::instance().setQueryValue(setting, box->currentIndex());
    return box->currentText();
}

QLineEdit *buildField(const QString &objectName)
{
    auto *field = new QLineEdit;
    field->setObjectName(objectName);
    field->setEnabled(false);
    keepReadable(field);
    return field;
}

/// Names are data: a tool tip would read tags in them.
QString plainToolTip(const QString &text)
{
    return Qt::convertFromPlainText(shownText(text));
}

QString nameOfGroup(int groupId)
{
    QList<QSqlRecord> groups;
    CatalogQuery::instance().groups(groups, groupId);
    return groups.size() == 1 ? rowText(groups.first(), u"name"_s) : OptionDialog::tr("Unbekannt");
}

} // namespace

OptionDialog::OptionDialog(const QList<QSqlRecord> &classes, int groupId, QWidget *parent)
    : QDialog(parent)
    , m_groupId(groupId)
    , m_modelBox(new QComboBox(this))
{
    m_modelBox->setObjectName(u"modelBox"_s);
    for (const QSqlRecord &model : classes) {
        const QString name = rowText(model, u"modelname"_s);
        m_modelBox->addItem(shownText(name), name);
        m_modelIds.append(rowId(model, u"id"_s));
    }
    buildWidgets(nameOfGroup(groupId));
    showEntryCount(); // before connecting: filling in is no choice
    connectWidgets();
}

int OptionDialog::selectedModelNumber() const
{
    return m_modelBox->currentIndex() + 1;
}

int OptionDialog::repeatChoiceNumber() const
{
    return m_repeatBox->currentIndex() + 1;
}

int OptionDialog::picturesChoiceNumber() const
{
    return m_picturesBox->currentIndex() + 1;
}

int OptionDialog::sortChoiceNumber() const
{
    return m_sortBox->currentIndex() + 1;
}

int OptionDialog::startEntry() const
{
    return firstEntryFor(m_startBox->currentText().toInt());
}

QString OptionDialog::repeatChoice() const
{
    return keptChoice(m_repeatBox, RepeatSetting);
}

QString OptionDialog::picturesChoice() const
{
    return keptChoice(m_picturesBox, PicturesSetting);
}

QString OptionDialog::sortChoice() const
{
    return keptChoice(m_sortBox, SortSetting);
}

void OptionDialog::locModelSelectionChanged()
{
    showModelName();
    showEntryCount();
}

void OptionDialog::startSearch()
{
    done(1);
}

void OptionDialog::startLocCapture()
{
    const QString modelName = m_modelBox->currentData().toString(); // uncut
    const int modelId = CatalogQuery::instance().modelIdByName(modelName, m_groupId);
    if (modelId == 0) { // removed or moved by someone else: the entry would belong to no class
        MessageBox::warning(this, tr("Keine Daten"),
            tr("Die Baureihe %1 wurde in dieser Gruppe nicht gefunden!").arg(shortened(modelName)));
        return;
    }
    {
        LocseenForm form(-1, modelId, this);
        form.exec();
    }
    const QString start = m_startBox->currentText();
    showEntryCount();
    m_startBox->setCurrentIndex(qMax(0, m_startBox->findText(start)));
}

void OptionDialog::buildWidgets(const QString &groupName)
{
    auto *grid = new QGridLayout(this);
    grid->addWidget(buildCaption(groupName), 0, 1, 1, 2);
    grid->addWidget(buildModelBox(), 1, 1, 1, 2);
    grid->addWidget(new QLabel(u" "_s), 2, 1, 1, 2);
    grid->addWidget(buildQueryBox(), 3, 1);
    grid->addWidget(buildCaptureBox(), 3, 2);
    grid->addLayout(buildButtonRow(), 4, 1, 1, 2);
    grid->setColumnStretch(2, 1);
    setMaximumSize(LargestSize);
    resize(LargestSize.width(), sizeHint().height());
    setWindowIcon(dialogIcon());
    setWindowTitle(tr("Benutzereingabe"));
}

QLabel *OptionDialog::buildCaption(const QString &groupName)
{
    auto *caption = new QLabel;
    caption->setObjectName(u"caption"_s);
    caption->setTextFormat(Qt::PlainText);
    caption->setAlignment(Qt::AlignCenter);
    caption->setFont(dialogFont(12));
    const QString text = tr("Gruppe %1").arg(shownText(groupName));
    caption->setText(QFontMetrics(caption->font()).elidedText(text, Qt::ElideRight, CaptionWidth));
    if (caption->text() != text) {
        caption->setToolTip(plainToolTip(text));
    }
    return caption;
}

QGroupBox *OptionDialog::buildModelBox()
{
    m_countField = buildField(u"countField"_s);
    m_startBox = new QComboBox;
    m_startBox->setObjectName(u"startBox"_s);
    // A long class name must not make the dialog wider than it may be.
    m_modelBox->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);

    auto *box = groupBox(tr("Baureihen"), u"modelGroup"_s);
    auto *grid = new QGridLayout(box);
    grid->addWidget(label(tr("Auswahl:"), m_modelBox), 0, 0);
    grid->addWidget(m_modelBox, 0, 1);
    grid->addWidget(label(tr("Anzahl Einträge:"), m_countField), 1, 0);
    grid->addWidget(m_countField, 1, 1);
    grid->addWidget(label(tr("Suche starten ab Eintrag # "), m_startBox), 2, 0);
    grid->addWidget(m_startBox, 2, 1);
    grid->setColumnStretch(1, 1);
    return box;
}

QGroupBox *OptionDialog::buildQueryBox()
{
    using namespace SearchChoice;
    m_repeatBox = buildChoice({ Always.toString(), Once.toString() }, RepeatSetting, u"repeatBox"_s);
    m_picturesBox = buildChoice({ AllEntries.toString(), WithPictures.toString() }, PicturesSetting, u"picturesBox"_s);
    m_sortBox = buildChoice({ ByDate.toString(), ByNumber.toString(), ByPlace.toString() }, SortSetting, u"sortBox"_s);
    m_searchButton = button(tr("Suchen"), u"searchButton"_s);
    m_searchButton->setDefault(true);

    auto *box = groupBox(tr("Abfragen"), u"queryGroup"_s);
    auto *row = new QHBoxLayout(box);
    auto *grid = new QGridLayout;
    grid->setHorizontalSpacing(BoxSpacing);
    grid->addWidget(label(tr("gleiche Lok-Nummer:"), m_repeatBox), 0, 1);
    grid->addWidget(label(tr("nur mit Bilder:"), m_picturesBox), 0, 2);
    grid->addWidget(label(tr("Sortierung:"), m_sortBox), 0, 3);
    grid->addWidget(m_repeatBox, 1, 1);
    grid->addWidget(m_picturesBox, 1, 2);
    grid->addWidget(m_sortBox, 1, 3);
    grid->addWidget(m_searchButton, 2, 1);
    row->addLayout(grid);
    row->addStretch();
    return box;
}

QGroupBox *OptionDialog::buildCaptureBox()
{
    m_modelField = buildField(u"modelField"_s);
    showModelName();
    m_newButton = button(tr("Neue Lok"), u"newButton"_s);

    auto *box = groupBox(tr("Erfassen"), u"captureGroup"_s);
    auto *grid = new QGridLayout(box);
    grid->addWidget(new QLabel(u" "_s), 0, 1);
    grid->addWidget(m_modelField, 1, 0);
    grid->addWidget(m_newButton, 2, 0);
    return box;
}

QLayout *OptionDialog::buildButtonRow()
{
    m_closeButton = button(tr("Schliessen"), u"closeButton"_s);
    m_closeButton->setFont(dialogFont());
    auto *buttons = new QDialogButtonBox;
    buttons->addButton(m_closeButton, QDialogButtonBox::AcceptRole);
    auto *row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(buttons);
    return row;
}

void OptionDialog::connectWidgets()
{
    connect(m_modelBox, &QComboBox::currentIndexChanged, this, &OptionDialog::locModelSelectionChanged);
    connect(m_searchButton, &QPushButton::clicked, this, &OptionDialog::startSearch);
    connect(m_newButton, &QPushButton::clicked, this, &OptionDialog::startLocCapture);
    connect(m_closeButton, &QPushButton::clicked, this, &OptionDialog::close);
}

/// The tool tips help where a wide name finds no room.
void OptionDialog::showModelName()
{
    const QString name = m_modelBox->currentText();
    m_modelField->setText(name);
    m_modelField->setCursorPosition(0);
    for (QWidget *widget : { static_cast<QWidget *>(m_modelBox), static_cast<QWidget *>(m_modelField) }) {
        widget->setToolTip(name.isEmpty() ? QString() : plainToolTip(name));
    }
}

void OptionDialog::showEntryCount()
{
    m_entryCount = CatalogQuery::instance().countEntriesOfModel(m_modelIds.value(m_modelBox->currentIndex()));
    m_countField->setText(QString::number(m_entryCount));
    m_startBox->clear();
    m_startBox->insertItems(0, startPositions(m_entryCount));
}
