// The building of LocseenForm, apart from what it does.

#include "forms/datetyping.h"
#include "forms/dialogstyle.h"
#include "forms/formparts.h"
#include "forms/inputguards.h"
#include "forms/locseenform.h"
#include "forms/picturepreview.h"
#include "forms/picturetable.h"
#include "search/clock.h"

#include <QBoxLayout>
#include <QDateEdit>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTextEdit>

using namespace FormParts;
using namespace Qt::StringLiterals;

namespace {

constexpr QSize LargestForm(1500, 520); // pixels
constexpr QSize FirstSize(1200, 520);
constexpr int CommentWidth = 350; // a whole comment without scrolling
constexpr QSize PreviewSize(375, 250);
constexpr int LargestCommentHeight = 74;

QLineEdit *lineEdit(const QString &objectName)
{
    auto *edit = new QLineEdit;
    edit->setObjectName(objectName);
    return edit;
}

QDateEdit *dateEdit(const QString &objectName)
{
    auto *edit = new QDateEdit(Clock::now().date());
    edit->setObjectName(objectName);
    edit->setDisplayFormat(u"dd.MM.yyyy"_s);
    edit->setCalendarPopup(true);
    InputGuards::ignoreWheelWithoutFocus(edit);
    DateTyping::install(edit);
    return edit;
}

} // namespace

void LocseenForm::buildWidgets()
{
    setFont(dialogFont());
    setWindowTitle(tr("Edit Bahnito-Eintrag"));
    setWindowIcon(dialogIcon());
    setMaximumSize(LargestForm);
    buildFields();

    auto *boxes = new QHBoxLayout;
    boxes->addWidget(buildEntryBox());
    boxes->addWidget(buildPictureBox(), 1);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(boxes, 1);
    layout->addLayout(closeRow(this));
    m_saveButton->setDefault(true); // Return in a field must never close the form and drop a new entry
    setTabOrders();
    resize(FirstSize);
}

void LocseenForm::buildFields()
{
    m_numberEdit = lineEdit(u"numberEdit"_s);
    m_placeEdit = lineEdit(u"placeEdit"_s);
    InputGuards::keepOnOneLine(m_numberEdit);
    InputGuards::keepOnOneLine(m_placeEdit);
    m_commentEdit = new QTextEdit;
    m_commentEdit->setObjectName(u"commentEdit"_s);
    m_commentEdit->setAcceptRichText(false);
    m_commentEdit->setTabChangesFocus(true); // a tab would be stored as a blank anyway
    m_commentEdit->setMaximumHeight(LargestCommentHeight);
    m_commentEdit->setMinimumWidth(CommentWidth);
    m_seenDateEdit = dateEdit(u"seenDateEdit"_s);
    m_startDateEdit = dateEdit(u"startDateEdit"_s);
    m_modelEdit = lineEdit(u"modelEdit"_s);
    showOnly(m_modelEdit);
    for (QWidget *field : { static_cast<QWidget *>(m_numberEdit), static_cast<QWidget *>(m_placeEdit),
             static_cast<QWidget *>(m_commentEdit), static_cast<QWidget *>(m_startDateEdit) }) {
        keepReadable(field);
    }
    m_saveButton = disabledButton(tr("Speichern"), u"saveButton"_s);
    explain(m_saveButton, tr("Ein neuer Eintrag braucht Nummer, Ort und Kommentar."));
}

QGroupBox *LocseenForm::buildEntryBox()
{
    auto *hint = new QLabel(tr(" *Datum wird aus dem Bild gelesen!"));
    hint->setObjectName(u"dateHint"_s);
    QGroupBox *box = groupBox(tr("Bahnito erfassen / bearbeiten"), u"entryBox"_s);
    auto *grid = new QGridLayout(box);
    grid->addWidget(label(tr("Nu&mmer:"), m_numberEdit), 0, 0);
    grid->addWidget(m_numberEdit, 0, 1, 1, 2);
    grid->addWidget(label(tr("&Ort:"), m_placeEdit), 1, 0);
    grid->addWidget(m_placeEdit, 1, 1, 1, 2);
    grid->addWidget(label(tr("&Kommentar:"), m_commentEdit), 2, 0, Qt::AlignTop);
    grid->addWidget(m_commentEdit, 2, 1, 1, 2);
    grid->addWidget(label(tr("Gesehen am:"), m_seenDateEdit), 3, 0);
    grid->addWidget(m_seenDateEdit, 3, 1);
    grid->addWidget(label(tr("Erfasst am:"), m_startDateEdit), 4, 0);
    grid->addWidget(m_startDateEdit, 4, 1);
    grid->addWidget(label(tr("Baureihe:"), m_modelEdit), 5, 0);
    grid->addWidget(m_modelEdit, 5, 1, 1, 2);
    grid->addWidget(hint, 6, 1, 1, 2);
    grid->addLayout(buttonRow({ m_saveButton }), 8, 1, 1, 2);
    grid->setRowMinimumHeight(7, 10);
    grid->setRowStretch(9, 1);
    grid->setColumnStretch(2, 1);
    return box;
}

QGroupBox *LocseenForm::buildPictureBox()
{
    m_pictureTable = new PictureTable;
    m_pictureTable->setObjectName(u"pictureTable"_s);
    m_preview = new PicturePreview(nullptr, PreviewSize);
    m_preview->setObjectName(u"preview"_s);
    m_showButton = disabledButton(tr("&Bild zeigen"), u"showPictureButton"_s);
    m_newButton = disabledButton(tr("Neues Bild"), u"newPictureButton"_s);
    m_removeButton = disabledButton(tr("Bild entfernen"), u"removePictureButton"_s);

    explain(m_showButton, tr("Zeigt das Bild, das in der Liste gewählt ist."));
    explain(m_newButton, tr("Fügt einem gespeicherten Eintrag ein Bild hinzu; er fasst sechs."));
    explain(m_removeButton, tr("Entfernt das Bild, das in der Liste gewählt ist."));
    QGroupBox *box = groupBox(tr("Verzeichnisse der Bilder"), u"pictureBox"_s);
    auto *grid = new QGridLayout(box);
    grid->addWidget(m_pictureTable, 0, 0, 1, 3);
    grid->addWidget(m_preview, 1, 0);
    grid->addLayout(buttonColumn({ m_showButton, m_newButton, m_removeButton }), 1, 1);
    grid->setColumnStretch(2, 1);
    grid->setRowStretch(0, 1);
    return box;
}

void LocseenForm::setTabOrders()
{
    const QList<QWidget *> order { m_numberEdit, m_placeEdit, m_commentEdit, m_seenDateEdit, m_startDateEdit,
        m_modelEdit, m_saveButton, m_pictureTable, m_showButton, m_newButton, m_removeButton,
        findChild<QPushButton *>(u"closeButton"_s) };
    for (qsizetype i = 1; i < order.size(); ++i) {
        setTabOrder(order.at(i - 1), order.at(i));
    }
    m_numberEdit->setFocus();
}

void LocseenForm::connectWidgets()
{
    connect(m_numberEdit, &QLineEdit::editingFinished, this, &LocseenForm::checktextEdits);
    connect(m_placeEdit, &QLineEdit::textChanged, this, &LocseenForm::checktextEdits);
    connect(m_commentEdit, &QTextEdit::cursorPositionChanged, this, &LocseenForm::checktextEdits);
    connect(m_seenDateEdit, &QDateEdit::dateChanged, this, &LocseenForm::checktextEdits);
    connect(m_saveButton, &QPushButton::clicked, this, &LocseenForm::addLocseen);
    connect(m_showButton, &QPushButton::clicked, this, &LocseenForm::showLocPicture);
    connect(m_newButton, &QPushButton::clicked, this, &LocseenForm::newLocPicture);
    connect(m_removeButton, &QPushButton::clicked, this, &LocseenForm::deleteLocPicture);
    connect(m_pictureTable, &PictureTable::rowChosen, this, &LocseenForm::getTableViewIndex);
    connect(m_pictureTable, &QTableView::doubleClicked, this, &LocseenForm::showLocPicture);
}
