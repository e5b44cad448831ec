#include "app/applwindow.h"

#include "app/backgroundchooser.h"
#include "app/picturescrolllist.h"
#include "app/startpicture.h"
#include "browser/canvasview.h"
#include "browser/picturescene.h"
#include "browser/viewholder.h"
#include "forms/locgroupform.h"
#include "search/clock.h"
#include "search/messagebox.h"
#include "store/catalogquery.h"
#include "store/colorsetting.h"
#include "store/rowvalue.h"

#include <QAction>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QMenu>
#include <QScrollArea>
#include <QToolBar>
#include <QToolButton>

#include <array>

using namespace Qt::StringLiterals;

namespace {

constexpr int GroupColumnWidth = 152; // pixels
constexpr QSize FirstSize(1280, 850);
constexpr int LargestWidth = 1300;
constexpr int SmallestWidth = 600;
constexpr QSize ToolIconSize(48, 32); // the shape of the colour button's icon; a tool bar has one size for all

struct DisplayFont
{
    const char *style;
    int pointSize;
    int pixelSize;
};

/// The fonts of the canvas; their order is the index that the canvas asks for.
constexpr std::array displayFonts {
    DisplayFont { "bold", 14, 23 },
    DisplayFont { "italic", 12, 20 },
    DisplayFont { "bold", 10, 16 },
    DisplayFont { "italic", 10, 16 },
    DisplayFont { "italic", 9, 15 },
    DisplayFont { "italic", 8, 13 },
};

/// The font database forgets style and size where the family is not installed; then they hold for its substitute.
QFont displayFont(const QString &family, bool isInstalled, const QString &style, int pointSize)
{
    if (isInstalled) {
        return QFontDatabase::font(family, style, pointSize);
    }
    QFont font(family, pointSize);
    font.setBold(style == u"bold"_s);
    font.setItalic(style == u"italic"_s);
    return font;
}

} // namespace

ApplWindow::ApplWindow()
{
    buildActions();
    buildColorButton();
    buildToolBars();
    buildCanvas();
    registerFonts();
    m_viewHolder->paintBackground();
    const int storedPictures = CatalogQuery::instance().countStoredPictures(); // a walk over all, so only once
    drawRandomPicture(storedPictures);
    if (m_randomPicture > 0) {
        showStartPicture(storedPictures);
    }
    buildGroupColumn();
    auto *centre = new QWidget(this);
    auto *layout = new QHBoxLayout(centre);
    layout->addWidget(m_scrollArea);
    layout->addWidget(m_viewHolder->view());
    setCentralWidget(centre);
    orderTabs();
    resize(FirstSize);
    setMaximumWidth(LargestWidth);
    setMinimumWidth(SmallestWidth);
    setWindowTitle(tr("Bahnito App"));
    setContextMenuPolicy(Qt::NoContextMenu); // which could only hide the tool bars, with no way back
}

ApplWindow::~ApplWindow()
{
    ColorSetting::saveAndRelease();
}

void ApplWindow::closeAppl()
{
    close();
}

void ApplWindow::locGroup()
{
    LocGroupForm form(this);
    connect(&form, &LocGroupForm::groupsChanged, m_scrollList, &PictureScrollList::rebuild);
    form.exec();
}

void ApplWindow::aboutApplication()
{
    MessageBox::about(this, tr("Info zu Bahnito App"),
        tr("Version 1.1.<p><b>Einleitung</b><p>Die Anwendung soll dazu dienen, dass Fotos einer bereits vorliegenden "
           "Fotosammlung, anhand von Angaben wie Baureihe und Nummer zusammengeführt werden können. Dies wird damit "
           "erreicht, dass ein einzelnes sogenanntes Fotoereignis dokumentiert und mit den dazugehörenden Fotos "
           "erfasst wird. Somit wird gewährleistet, dass diese, auch 'Einträge' genannt, nach gewissen Suchkriterien "
           "dargestellt werden können. Dem Benutzer wird damit ermöglicht, dass er z.B. sämtliche Einträge einer "
           "Lokomotive mit einer bestimmten Nummer, die er im Laufe der Zeit mehrere Male abgelichtet hat, auf einen "
           "Blick zu sehen bekommt.</p><p><b>Aufbaustruktur</b><p>Damit eine optimale Übersicht erreicht werden kann, "
           "wird folgende Aufbaustruktur vorgegeben: Baureihe-Gruppen welche eine oder mehrere Baureihen beinhalten. "
           "Z.B. kann eine Gruppe mit 'Krokodile' benannt werden, darunter sind dann Baureihen wie 'Ce 6/8, Be 6/8 "
           "etc.' eingetragen. Unter einer 'Baureihe' werden dann die entsprechenden 'Einträge' erfasst. Ein 'Eintrag' "
           "hält Name, Nummer, Ort, Datum und einen bis 200 Zeichen langen Kommentar fest, sowie max. 6 Fotos.</p> "));
}

void ApplWindow::itemColorChanged()
{
    m_colorChosen = true;
    m_colorAction = qobject_cast<QAction *>(sender());
    showButtonColor(m_colorAction->data().value<QColor>());
    backgroundButtonTriggered();
}

/// Each icon is made once: the toolkit keeps the name of every new one for ever.
void ApplWindow::showButtonColor(const QColor &color)
{
    QIcon &icon = m_colorIcons[color.rgb()];
    if (icon.isNull()) {
        icon = colorButtonIcon(color);
    }
    m_colorButton->setIcon(icon);
}

void ApplWindow::backgroundButtonTriggered()
{
    if (!m_colorChosen) {
        return;
    }
    const auto color = m_colorAction->data().value<QColor>();
    ColorSetting &setting = ColorSetting::instance();
    const bool isSame = color == setting.scheme().background();
    setting.setBackground(color); // also when it is the same, for a stored one may not have been read
    if (isSame) {
        return;
    }
    m_viewHolder->paintBackground();
    redrawCanvas();
}

void ApplWindow::updateActions()
{ }

void ApplWindow::buildActions()
{
    m_exitAction = new QAction(QIcon(u":/images/exit.png"_s), tr("Beenden"), this);
    m_exitAction->setShortcut(QKeySequence(tr("Ctrl+Q")));
    connect(m_exitAction, &QAction::triggered, this, &ApplWindow::closeAppl);
    m_groupAction = new QAction(QIcon(u":/images/br-gruppe.png"_s), tr("Baureihe-Gruppen bearbeiten"), this);
    connect(m_groupAction, &QAction::triggered, this, &ApplWindow::locGroup);
    m_aboutAction = new QAction(QIcon(u":/images/User.png"_s), tr("Info"), this);
    connect(m_aboutAction, &QAction::triggered, this, &ApplWindow::aboutApplication);
}

void ApplWindow::buildColorButton()
{
    m_colorButton = new QToolButton(this);
    m_colorButton->setObjectName(u"colorButton"_s);
    m_colorButton->setPopupMode(QToolButton::MenuButtonPopup);
    m_colorButton->setToolTip(u"Hintergrundfarbe"_s);
    m_colorButton->setAccessibleName(u"Hintergrundfarbe"_s);
    auto *menu = new QMenu(m_colorButton);
    for (const NamedColor &named : menuColors()) {
        QAction *entry = menu->addAction(colorMenuIcon(named.color), named.name, this, &ApplWindow::itemColorChanged);
        entry->setData(named.color);
        if (named.color == QColor(Qt::gray)) {
            menu->setDefaultAction(entry);
        }
    }
    QPalette palette = menu->palette();
    palette.setColor(QPalette::Base, palette.color(QPalette::Base).darker(125)); // else the white patch is not seen
    menu->setPalette(palette);
    m_colorButton->setMenu(menu);
    m_colorAction = menu->defaultAction();
    showButtonColor(ColorSetting::instance().scheme().background());
    connect(m_colorButton, &QToolButton::clicked, this, &ApplWindow::backgroundButtonTriggered);
}

void ApplWindow::buildToolBars()
{
    m_toolBar = addToolBar(tr("Exit"));
    m_toolBar->setIconSize(ToolIconSize);
    m_toolBar->addAction(m_exitAction);
    m_toolBar->addSeparator();
    m_toolBar = addToolBar(tr("Hintergrund"));
    m_toolBar->setIconSize(ToolIconSize);
    m_toolBar->addWidget(m_colorButton);
    m_toolBar->addSeparator();
    for (QAction *action : { m_groupAction, m_aboutAction }) {
        m_toolBar->addAction(action);
        m_toolBar->addSeparator();
    }
}

/// Tool bar, groups, canvas. Tool bars keep the keyboard out of their buttons, but only the exit has a shortcut.
void ApplWindow::orderTabs()
{
    QList<QWidget *> order;
    const QList<QToolBar *> bars = findChildren<QToolBar *>();
    for (const QToolBar *bar : bars) {
        const QList<QAction *> actions = bar->actions();
        for (QAction *action : actions) {
            if (!action->isSeparator()) {
                order.append(bar->widgetForAction(action));
            }
        }
    }
    for (QWidget *button : std::as_const(order)) {
        button->setFocusPolicy(Qt::TabFocus);
    }
    order.append(m_viewHolder->view());
    for (qsizetype i = 1; i < order.size(); ++i) {
        setTabOrder(order.at(i - 1), order.at(i));
    }
    m_scrollList->setTabOrderAfter(order.at(order.size() - 2));
}

void ApplWindow::buildCanvas()
{
    m_viewHolder = new ViewHolder(this);
    ColorSetting::instance().setView(m_viewHolder->view());
}

void ApplWindow::registerFonts()
{
    ColorSetting &setting = ColorSetting::instance();
    const QString family = setting.fontFamily();
    const bool isInstalled = QFontDatabase::hasFamily(family); // a list of all families, so only once
    for (const DisplayFont &font : displayFonts) {
        const QString style = QString::fromLatin1(font.style);
        setting.addFont(displayFont(family, isInstalled, style, font.pointSize), 30, QRectF(1, 1, 1, 10), style,
            font.pointSize, font.pixelSize);
    }
}

void ApplWindow::buildGroupColumn()
{
    m_scrollList = new PictureScrollList(*m_viewHolder);
    auto *area = new QScrollArea(this);
    area->setWidget(m_scrollList);
    area->viewport()->setBackgroundRole(QPalette::Dark);
    area->viewport()->setAutoFillBackground(true);
    area->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    area->setFixedWidth(GroupColumnWidth);
    area->setFocusPolicy(Qt::NoFocus); // the keyboard goes to the buttons in it
    m_scrollArea = area;
}

void ApplWindow::drawRandomPicture(int storedPictures)
{
    m_randomPicture = randomPictureNumber(Clock::now().time(), storedPictures);
}

void ApplWindow::showStartPicture(int storedPictures)
{
    const CatalogQuery &catalog = CatalogQuery::instance();
    QList<QSqlRecord> pictures;
    catalog.storedPictureAt(pictures, m_randomPicture);
    if (pictures.isEmpty()) {
        return;
    }
    QList<QSqlRecord> entries;
    catalog.entryById(entries, rowId(pictures.first(), u"locpictureid"_s));
    if (!entries.isEmpty()) {
        m_viewHolder->results().showStartView(pictures.first(), entries.first(), storedPictures);
    }
}

void ApplWindow::redrawCanvas()
{
    if (m_viewHolder->showsListing()) {
        m_viewHolder->current().redraw();
    } else if (m_viewHolder->results().showsStartPicture()) {
        showStartPicture(CatalogQuery::instance().countStoredPictures());
    } else {
        m_viewHolder->results().restartSearch();
    }
}
