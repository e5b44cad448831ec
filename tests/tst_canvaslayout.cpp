#include "browser/canvasview.h"
#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "browser/textitem.h"
#include "browser/viewholder.h"
#include "store/colorsetting.h"
#include "store/statement.h"
#include "tests/support/browserwindow.h"
#include "tests/support/layoutcheck.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QTest>

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

/// As long as the forms can store it, of the widest letter.
QString widest(int length)
{
    return QString(length, u'W');
}

QString caseOf(const QColor &background)
{
    return background == QColor(Qt::black) ? u"dark"_s : u"light"_s;
}

} // namespace

/// Whole canvases with whatever a catalogue can hold.
class TestCanvasLayout final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void wholePagesNeverOverlap_data();
    void wholePagesNeverOverlap();
    void captionStaysAboveTheFirstCard_data();
    void captionStaysAboveTheFirstCard();
    void ordinaryCaptionKeepsItsFont();
    void endlessCaptionIsCut();
    void numberListingNeverOverlaps_data();
    void numberListingNeverOverlaps();
    void startViewNeverOverlaps_data();
    void startViewNeverOverlaps();
    void startViewFitsTheWindow();
    void singlePictureStandsInTheFirstColumn();
    void hostileTextsAreShownAsTheyAre();

private:
    void addBackgrounds() const;
    void openBrowser();
    void addAnyEntries(int entries);
    void addPictureRow(int entry, const QString &copy);
    [[nodiscard]] TextItem *captionItem() const;

    std::unique_ptr<TestCatalogue> m_catalogue;
    std::unique_ptr<BrowserWindow> m_browser;
    QStringList m_pictures;
    int m_group = 0;
    int m_model = 0;
};

void TestCanvasLayout::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    m_pictures = LayoutCheck::anyPictures();
    m_group = m_catalogue->addGroup(u"Krokodile"_s);
    m_model = m_catalogue->addModel(QString(38, u'M'), m_group);
}

void TestCanvasLayout::cleanup()
{
    m_browser.reset();
    m_catalogue.reset();
}

void TestCanvasLayout::addBackgrounds() const
{
    QTest::addColumn<QColor>("background");
    QTest::newRow("light") << QColor(Qt::white);
    QTest::newRow("dark") << QColor(Qt::black);
}

void TestCanvasLayout::openBrowser()
{
    QFETCH(QColor, background);
    ColorSetting::instance().setBackground(background);
    m_browser = std::make_unique<BrowserWindow>();
    QCOMPARE(m_browser->canvas().backgroundBrush().color(), background);
}

void TestCanvasLayout::addPictureRow(int entry, const QString &copy)
{
    QVERIFY(executeWrite(u"INSERT INTO loc_picture (pictAuxPath, pictOrigPath, locpictureid) "
                         "VALUES (:copy, '', :entry)"_s,
        { { u":copy"_s, copy }, { u":entry"_s, entry } })
                .done);
}

void TestCanvasLayout::addAnyEntries(int entries)
{
    QRandomGenerator random(11);
    for (int i = 0; i < entries; ++i) {
        const int entry = m_catalogue->addEntry(random.bounded(3) == 0 ? widest(18) : LayoutCheck::anyText(random, 18),
            m_model, LayoutCheck::anyText(random, 38), QDate(1990, 1, 1).addDays(i), LayoutCheck::anyText(random, 198));
        for (int k = random.bounded(7); k > 0; --k) {
            addPictureRow(entry, m_pictures.at(random.bounded(m_pictures.size())));
        }
    }
}

TextItem *TestCanvasLayout::captionItem() const
{
    const QList<QGraphicsItem *> items = m_browser->canvas().items();
    for (QGraphicsItem *item : items) {
        auto *text = qgraphicsitem_cast<TextItem *>(item);
        if (text && text->scenePos() == QPointF(350, 20)) {
            return text;
        }
    }
    return nullptr;
}

void TestCanvasLayout::wholePagesNeverOverlap_data()
{
    addBackgrounds();
}

void TestCanvasLayout::wholePagesNeverOverlap()
{
    addAnyEntries(110);
    openBrowser();
    QCOMPARE(m_browser->search(m_group), QStringList());
    for (const int onPage : { 40, 40, 30 }) {
        QCOMPARE(m_browser->canvas().blocks().size(), onPage);
        QCOMPARE(LayoutCheck::pageFault(m_browser->canvas()), QString());
        if (ButtonItem *more = m_browser->button(ButtonKind::More)) {
            m_browser->click(more);
        }
    }
    QCOMPARE(m_browser->search(m_group, { u""_s, u"nur einmal"_s, u"ja"_s, u"Nummer"_s }), QStringList());
    QVERIFY(m_browser->canvas().blocks().size() > 10);
    QCOMPARE(LayoutCheck::pageFault(m_browser->canvas()), QString());
}

void TestCanvasLayout::captionStaysAboveTheFirstCard_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("widest letters without a break") << widest(38);
    QTest::newRow("widest words") << u"WWWW WWWW WWWW WWWW WWWW WWWW WWWW WWWW"_s.left(38);
    QTest::newRow("emoji") << u"🚂"_s.repeated(19);
    QTest::newRow("another script") << u"机"_s.repeated(38);
    QTest::newRow("right to left") << u"קטר "_s.repeated(9);
    QTest::newRow("tags") << u"<h1>x</h1>"_s.repeated(4).left(38);
}

void TestCanvasLayout::captionStaysAboveTheFirstCard()
{
    QFETCH(QString, name);
    const int model = m_catalogue->addModel(name, m_group);
    m_catalogue->addEntry(widest(18), model);
    m_browser = std::make_unique<BrowserWindow>();
    const int classes = 2;
    const auto check = [this, &name] {
        TextItem *caption = captionItem();
        QVERIFY(caption);
        QVERIFY(caption->sceneBoundingRect().bottom() <= 80);
        QVERIFY(caption->sceneBoundingRect().right() <= 1060);
        QVERIFY(caption->toPlainText().contains(name)); // made smaller, but not cut
        QVERIFY(caption->font().pixelSize() >= 13);
        QCOMPARE(LayoutCheck::pageFault(m_browser->canvas()), QString());
    };
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM loc_model"_s).toInt(), classes);
    QCOMPARE(m_browser->search(m_group, { name, u"nur einmal"_s }), QStringList());
    check();
    m_browser->click(m_browser->button(ButtonKind::Count, m_browser->block(0)));
    QCOMPARE(m_browser->caption(), u"1 Einträge der %1 %2"_s.arg(name, widest(18)));
    check();
}

void TestCanvasLayout::ordinaryCaptionKeepsItsFont()
{
    const int model = m_catalogue->addModel(u"Re 4/4 II"_s, m_group);
    m_catalogue->addEntry(u"11108"_s, model);
    m_browser = std::make_unique<BrowserWindow>();
    QCOMPARE(m_browser->search(m_group, { u"Re 4/4 II"_s }), QStringList());
    QCOMPARE(captionItem()->font(), ColorSetting::instance().fontAt(0));
}

void TestCanvasLayout::endlessCaptionIsCut()
{
    TextItem text(widest(2000), ColorSetting::instance().fontAt(0), Qt::black, 710);
    text.fitInto(56);
    QVERIFY(text.height() <= 56);
    QVERIFY(text.toPlainText().endsWith(u'…'));
    QVERIFY(text.toPlainText().size() > 50);
    TextItem locomotives(u"🚂"_s.repeated(1000), ColorSetting::instance().fontAt(0), Qt::black, 710);
    locomotives.fitInto(56);
    QVERIFY(locomotives.height() <= 56);
    QVERIFY(locomotives.toPlainText().endsWith(u"🚂…"_s)); // no half of one
}

void TestCanvasLayout::numberListingNeverOverlaps_data()
{
    addBackgrounds();
}

void TestCanvasLayout::numberListingNeverOverlaps()
{
    addAnyEntries(60);
    openBrowser();
    QCOMPARE(m_browser->search(m_group, { u""_s, u"nur einmal"_s }), QStringList());
    const QStringList numbers = m_browser->numbers();
    m_browser->click(m_browser->button(ButtonKind::Count, m_browser->block(int(numbers.indexOf(widest(18))))));
    QVERIFY(m_browser->window().viewHolder().showsListing());
    QVERIFY(m_browser->canvas().blocks().size() > 10);
    QCOMPARE(LayoutCheck::pageFault(m_browser->canvas()), QString());
}

void TestCanvasLayout::startViewNeverOverlaps_data()
{
    QTest::addColumn<QColor>("background");
    QTest::addColumn<int>("picture");
    QTest::addColumn<QString>("text");
    for (const QColor &background : { QColor(Qt::white), QColor(Qt::black) }) {
        for (int picture = 0; picture < 8; ++picture) {
            for (const QString &text : { widest(198), u"Krokodil "_s.repeated(22), u""_s, u"🚂"_s.repeated(99) }) {
                QTest::addRow("%s, picture %d, %d characters of \"%s\"", qPrintable(caseOf(background)), picture,
                    int(text.size()), qPrintable(text.left(2)))
                    << background << picture << text;
            }
        }
    }
}

void TestCanvasLayout::startViewNeverOverlaps()
{
    QFETCH(int, picture);
    QFETCH(QString, text);
    const int entry = m_catalogue->addEntry(text.left(18), m_model, text.left(38), QDate(1999, 9, 9), text);
    addPictureRow(entry, m_pictures.at(picture));
    openBrowser();
    const PictureScene &canvas = m_browser->canvas();
    QVERIFY(canvas.showsStartPicture());
    QCOMPARE(LayoutCheck::pageFault(canvas), QString());
    QCOMPARE(m_browser->photos(nullptr).first()->isPlaceholder(), picture == 7);
    const QList<QGraphicsItem *> items = canvas.items();
    for (const QGraphicsItem *item : items) {
        if (item->type() == TextItem::Type) {
            const bool hasGround = std::any_of(items.begin(), items.end(), [item](const QGraphicsItem *ground) {
                return ground->type() == QGraphicsItem::UserType
                    && ground->sceneBoundingRect().contains(item->sceneBoundingRect());
            });
            QVERIFY(hasGround);
        }
    }
}

void TestCanvasLayout::startViewFitsTheWindow()
{
    const int entry = m_catalogue->addEntry(u"14253"_s, m_model, u"Erstfeld"_s, QDate(1999, 9, 9), widest(40));
    addPictureRow(entry, m_pictures.first()); // 750 x 500, the largest there is
    m_browser = std::make_unique<BrowserWindow>();
    m_browser->window().resize(1280, 850);
    const QSize room = m_browser->window().viewHolder().view()->viewport()->size();
    QVERIFY(m_browser->canvas().sceneRect().height() <= room.height());
    QVERIFY(m_browser->canvas().sceneRect().width() <= room.width());
}

void TestCanvasLayout::singlePictureStandsInTheFirstColumn()
{
    addPictureRow(m_catalogue->addEntry(u"1"_s, m_model), m_pictures.first());
    const int two = m_catalogue->addEntry(u"2"_s, m_model);
    addPictureRow(two, m_pictures.first());
    addPictureRow(two, m_pictures.first());
    m_browser = std::make_unique<BrowserWindow>();
    QCOMPARE(m_browser->search(m_group), QStringList());
    const double single = m_browser->photos(m_browser->block(0)).first()->scenePos().x();
    const QList<Picture *> pair = m_browser->photos(m_browser->block(1));
    QCOMPARE(single, pair.first()->scenePos().x());
    QVERIFY(pair.last()->scenePos().x() > single + 300);
}

void TestCanvasLayout::hostileTextsAreShownAsTheyAre()
{
    const QString markup = u"<b>x</b><img src='source1.jpg'>"_s;
    m_catalogue->addEntry(u"7'8 <u>"_s, m_model, u"שלום &amp; 7%2"_s, QDate(1999, 9, 9), markup);
    m_browser = std::make_unique<BrowserWindow>();
    QCOMPARE(m_browser->search(m_group), QStringList());
    const QStringList texts = m_browser->texts();
    for (const QString &text : { u"7'8 <u>"_s, u"שלום &amp; 7%2"_s, markup }) {
        QVERIFY2(texts.contains(text), qPrintable(text));
    }
}

BAHNITO_TEST_MAIN(TestCanvasLayout)
#include "tst_canvaslayout.moc"
