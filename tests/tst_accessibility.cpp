#include "app/pictureitem.h"
#include "browser/canvastexts.h"
#include "browser/canvasview.h"
#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "browser/viewholder.h"
#include "tests/support/browserwindow.h"
#include "tests/support/modalscript.h"
#include "tests/support/testmain.h"

#include <QAccessible>
#include <QAccessibleBridge>
#include <QApplication>
#include <QFile>
#include <QHelpEvent>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

QList<QAccessibleInterface *> childrenOf(QAccessibleInterface *parent)
{
    QList<QAccessibleInterface *> children;
    for (int i = 0; i < parent->childCount(); ++i) {
        children.append(parent->child(i));
    }
    return children;
}

/// The names of the children with this role.
QStringList names(QAccessibleInterface *parent, QAccessible::Role role)
{
    QStringList names;
    for (const QAccessibleInterface *child : childrenOf(parent)) {
        if (child->role() == role) {
            names.append(child->text(QAccessible::Name));
        }
    }
    return names;
}

QAccessibleInterface *named(QAccessibleInterface *parent, const QString &name)
{
    for (QAccessibleInterface *child : childrenOf(parent)) {
        if (child->text(QAccessible::Name) == name) {
            return child;
        }
    }
    return nullptr;
}

void press(QAccessibleInterface *interface)
{
    QVERIFY(interface && interface->actionInterface());
    interface->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    QApplication::processEvents();
}

/// Stands where a screen reader's connection stands, and notes what it is told about the keyboard.
class Listener final : public QAccessibleBridge
{
public:
    static QStringList &heard()
    {
        static QStringList names;
        return names;
    }

    void setRootObject(QAccessibleInterface *root) override { Q_UNUSED(root) }

    void notifyAccessibilityUpdate(QAccessibleEvent *event) override
    {
        const QAccessibleInterface *about = event->accessibleInterface();
        if (about && event->type() == QAccessible::Focus) {
            heard().append(about->text(QAccessible::Name));
        }
    }
};

} // namespace

class ListenerPlugin final : public QAccessibleBridgePlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QAccessibleBridgeFactoryInterface_iid FILE "support/listener.json")

public:
    QAccessibleBridge *create(const QString &key) override
    {
        Q_UNUSED(key)
        return new Listener; // Qt keeps it to the end
    }
};

Q_IMPORT_PLUGIN(ListenerPlugin)

class TestAccessibility final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void pageIsReadByName();
    void buttonsAreToldApart();
    void pressingAButtonFiresIt();
    void pressingAPhotographOpensItsSource();
    void turnedPicturesAreRead();
    void missingPhotographIsCalledMissing();
    void formerItemsAreForgotten();
    void childrenStayTheSameOnAPage();
    void placesAreThoseOnTheScreen();
    void focusIsAnnounced();
    void startViewIsReadByName();
    void numberListingIsReadByName();
    void emptyCanvasHasNoChildren();
    void groupButtonsCarryTheGroupsName();
    void groupWithoutClassesTellsTheFirstStep();

private:
    [[nodiscard]] QAccessibleInterface *canvas() const;
    void showWindow();

    std::unique_ptr<TestCatalogue> m_catalogue;
    std::unique_ptr<BrowserWindow> m_browser;
    int m_group = 0;
    int m_model = 0;
};

void TestAccessibility::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    m_group = m_catalogue->addGroup(u"<b>Krokodile</b> & Co"_s);
    m_model = m_catalogue->addModel(u"Ce 6/8"_s, m_group);
    const int rich = m_catalogue->addEntry(u"14253"_s, m_model, u"Erstfeld"_s, QDate(1987, 5, 17), u"<i>Nebel</i>"_s);
    for (int i = 0; i < 3; ++i) {
        m_catalogue->addPicture(rich);
    }
    m_catalogue->addEntry(u"14270"_s, m_model, u"Wassen"_s, QDate(1988, 2, 3), u""_s);
}

void TestAccessibility::cleanup()
{
    m_browser.reset();
    m_catalogue.reset();
}

void TestAccessibility::showWindow()
{
    m_browser = std::make_unique<BrowserWindow>();
}

QAccessibleInterface *TestAccessibility::canvas() const
{
    return QAccessible::queryAccessibleInterface(m_browser->window().viewHolder().view());
}

void TestAccessibility::pageIsReadByName()
{
    showWindow();
    QCOMPARE(m_browser->search(m_group), QStringList());
    QCOMPARE(canvas()->text(QAccessible::Name), u"Einträge"_s);
    QCOMPARE(names(canvas(), QAccessible::StaticText), QStringList { u"2 Einträge der Baureihe Ce 6/8"_s });
    const QString first = u"14253, Erstfeld, 17.05.1987, 3 Bilder"_s;
    QCOMPARE(
        names(canvas(), QAccessible::Grouping), (QStringList { first, u"14270, Wassen, 03.02.1988, keine Bilder"_s }));
    QAccessibleInterface *block = named(canvas(), first);
    QCOMPARE(block->text(QAccessible::Description), u"<i>Nebel</i>"_s);
    QCOMPARE(names(block, QAccessible::Button),
        (QStringList { u"Eintrag bearbeiten"_s, u"Eintrag löschen"_s, u"Nächste Bilder"_s }));
    QCOMPARE(names(block, QAccessible::Graphic), (QStringList { u"Bild 1 von 3"_s, u"Bild 2 von 3"_s }));
    QCOMPARE(names(block, QAccessible::StaticText),
        (QStringList { u"14253"_s, u"Erstfeld"_s, u"17.05.1987"_s, u"<i>Nebel</i>"_s, u"Bilder 1 und 2 von 3"_s }));
    for (QAccessibleInterface *child : childrenOf(block)) {
        QCOMPARE(child->parent(), block);
        QCOMPARE(block->indexOfChild(child), childrenOf(block).indexOf(child));
    }
    QCOMPARE(block->parent(), canvas());
}

void TestAccessibility::buttonsAreToldApart()
{
    showWindow();
    QCOMPARE(m_browser->search(m_group), QStringList());
    const QList<QAccessibleInterface *> children = childrenOf(canvas());
    const QAccessibleInterface *edit = named(children.at(2), u"Eintrag bearbeiten"_s);
    QVERIFY(edit);
    QCOMPARE(edit->text(QAccessible::Description), u"14270, Wassen, 03.02.1988, keine Bilder"_s);
}

void TestAccessibility::pressingAButtonFiresIt()
{
    showWindow();
    QCOMPARE(m_browser->search(m_group), QStringList());
    ModalScript script;
    script.box(u"Eintrag Entfernen"_s, u"Eintrag 2 mit der Lok-Nummer 14270 und alle dazugehörenden Bilder löschen?"_s,
        u"Ja"_s);
    press(named(childrenOf(canvas()).at(2), u"Eintrag löschen"_s));
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(m_browser->numbers(), QStringList { u"14253"_s });
    QCOMPARE(names(canvas(), QAccessible::Grouping).size(), 1);
    QVERIFY(!childrenOf(canvas()).first()->actionInterface()); // a text cannot be pressed
}

void TestAccessibility::pressingAPhotographOpensItsSource()
{
    showWindow();
    QVERIFY(QFile::remove(m_catalogue->path(u"source1.jpg"_s)));
    QCOMPARE(m_browser->search(m_group), QStringList());
    ModalScript script;
    script.box(u"Datei-Fehler"_s, u"Bilddatei existiert nicht mehr unter diesem Verzeichnis!"_s);
    press(named(childrenOf(canvas()).at(1), u"Bild 1 von 3"_s));
    QCOMPARE(script.problems(), QStringList());
}

void TestAccessibility::turnedPicturesAreRead()
{
    showWindow();
    QCOMPARE(m_browser->search(m_group), QStringList());
    press(named(childrenOf(canvas()).at(1), u"Nächste Bilder"_s));
    QAccessibleInterface *block = childrenOf(canvas()).at(1);
    QCOMPARE(names(block, QAccessible::Graphic), QStringList { u"Bild 3 von 3"_s });
    QVERIFY(named(block, u"Vorige Bilder"_s));
    QVERIFY(!named(block, u"Nächste Bilder"_s));
}

void TestAccessibility::missingPhotographIsCalledMissing()
{
    QVERIFY(QFile::remove(u"./Data/Pictures/Folder001/copy2.jpg"_s));
    showWindow();
    QCOMPARE(m_browser->search(m_group), QStringList());
    QCOMPARE(names(childrenOf(canvas()).at(1), QAccessible::Graphic),
        (QStringList { u"Bild 1 von 3"_s, u"Bild 2 von 3 (fehlt)"_s }));
}

void TestAccessibility::formerItemsAreForgotten()
{
    showWindow();
    QCOMPARE(m_browser->search(m_group), QStringList());
    QAccessibleInterface *block = childrenOf(canvas()).at(1);
    const QAccessible::Id blockId = QAccessible::uniqueId(block);
    const QAccessible::Id buttonId = QAccessible::uniqueId(named(block, u"Eintrag bearbeiten"_s));
    m_browser->canvas().clearCanvas();
    QVERIFY(!QAccessible::accessibleInterface(blockId));
    QVERIFY(!QAccessible::accessibleInterface(buttonId));
    QCOMPARE(canvas()->childCount(), 0);
}

void TestAccessibility::childrenStayTheSameOnAPage()
{
    showWindow();
    QCOMPARE(m_browser->search(m_group), QStringList());
    const QList<QAccessibleInterface *> children = childrenOf(canvas());
    QCOMPARE(children.size(), 3);
    QTest::keyClick(m_browser->window().viewHolder().view(), Qt::Key_PageDown);
    QCOMPARE(childrenOf(canvas()), children);
}

void TestAccessibility::placesAreThoseOnTheScreen()
{
    showWindow();
    QCOMPARE(m_browser->search(m_group), QStringList());
    const QWidget *viewport = m_browser->window().viewHolder().view()->viewport();
    QAccessibleInterface *block = childrenOf(canvas()).at(1);
    QAccessibleInterface *edit = named(block, u"Eintrag bearbeiten"_s);
    const QPointF corner = m_browser->button(ButtonKind::Edit, m_browser->block(0))->scenePos();
    QCOMPARE(edit->rect(), QRect(viewport->mapToGlobal(corner.toPoint()), QSize(25, 25)));
    QCOMPARE(canvas()->childAt(edit->rect().center().x(), edit->rect().center().y()), block);
    QCOMPARE(block->childAt(edit->rect().center().x(), edit->rect().center().y()), edit);
    QVERIFY(!edit->state().offscreen);
}

void TestAccessibility::focusIsAnnounced()
{
    showWindow();
    QCOMPARE(m_browser->search(m_group), QStringList());
    CanvasView *view = m_browser->window().viewHolder().view();
    m_browser->activate();
    QVERIFY(view->hasFocus());
    Listener::heard().clear();
    QTest::keyClick(view, Qt::Key_Tab);
    QTest::keyClick(view, Qt::Key_Right);
    QTest::keyClick(view, Qt::Key_Tab);
    QCOMPARE(Listener::heard(), (QStringList { u"Eintrag bearbeiten"_s, u"Eintrag löschen"_s, u"Bild 1 von 3"_s }));
    QAccessibleInterface *focused = canvas()->focusChild();
    QVERIFY(focused && focused->state().focused);
    QCOMPARE(focused->text(QAccessible::Name), u"Bild 1 von 3"_s);
    QAccessibleInterface *edit = named(childrenOf(canvas()).at(2), u"Eintrag bearbeiten"_s);
    edit->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    QCOMPARE(canvas()->focusChild(), edit);
}

void TestAccessibility::startViewIsReadByName()
{
    showWindow();
    QVERIFY(m_browser->canvas().showsStartPicture());
    QCOMPARE(names(canvas(), QAccessible::Graphic), QStringList { u"Foto von Ce 6/8 14253"_s });
    QCOMPARE(names(canvas(), QAccessible::StaticText),
        (QStringList { u"Ce 6/8  14253"_s, u"Erstfeld, 17.05.1987"_s, u"<i>Nebel</i>"_s, u"Aktueller Bestand:"_s,
            u"1 Baureihen in 1 Gruppen"_s, u"3 Bilder in 2 Einträgen"_s }));
}

void TestAccessibility::numberListingIsReadByName()
{
    showWindow();
    QCOMPARE(m_browser->search(m_group, { u""_s, u"nur einmal"_s }), QStringList());
    press(named(childrenOf(canvas()).at(1), u"Alle Einträge dieser Nummer"_s));
    QCOMPARE(names(canvas(), QAccessible::Button), QStringList { u"Zurück zur Liste"_s });
    QCOMPARE(names(canvas(), QAccessible::StaticText), QStringList { u"1 Einträge der Ce 6/8 14253"_s });
    press(named(canvas(), u"Zurück zur Liste"_s));
    QCOMPARE(names(canvas(), QAccessible::Grouping).size(), 2);
}

void TestAccessibility::emptyCanvasHasNoChildren()
{
    m_catalogue.reset(); // its connection has to be gone first
    m_catalogue = std::make_unique<TestCatalogue>();
    showWindow();
    QCOMPARE(canvas()->childCount(), 0);
    QVERIFY(!canvas()->focusChild());
}

void TestAccessibility::groupButtonsCarryTheGroupsName()
{
    showWindow();
    auto *button = m_browser->window().findChild<PictureItem *>();
    QCOMPARE(QAccessible::queryAccessibleInterface(button)->text(QAccessible::Name), u"<b>Krokodile</b> & Co"_s);
    QVERIFY(button->toolTip().contains(u"&lt;b&gt;Krokodile"_s));
}

void TestAccessibility::groupWithoutClassesTellsTheFirstStep()
{
    const int empty = m_catalogue->addGroup(u"Neu & leer"_s);
    showWindow();
    const auto tipOf = [this](int group) {
        auto *button = m_browser->window().findChild<PictureItem *>(u"group%1"_s.arg(group));
        QHelpEvent asks(QEvent::ToolTip, QPoint(20, 20), button->mapToGlobal(QPoint(20, 20)));
        QApplication::sendEvent(button, &asks);
        return button->toolTip();
    };
    QVERIFY(tipOf(empty).contains(u"Noch keine Baureihe"_s));
    QVERIFY(!tipOf(m_group).contains(u"Noch keine Baureihe"_s));
    m_catalogue->addModel(u"Ae 6/6"_s, empty);
    QCOMPARE(tipOf(empty), u"<p>Neu &amp; leer</p>"_s);
}

BAHNITO_TEST_MAIN(TestAccessibility)
#include "tst_accessibility.moc"
