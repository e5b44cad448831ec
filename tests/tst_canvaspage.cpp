#include "browser/canvascolors.h"
#include "browser/canvasview.h"
#include "browser/entryblock.h"
#include "browser/picture.h"
#include "browser/picturescene.h"
#include "browser/textitem.h"
#include "browser/viewholder.h"
#include "search/clock.h"
#include "search/optiondialog.h"
#include "store/colorsetting.h"
#include "store/statement.h"
#include "tests/support/browserwindow.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QPainter>
#include <QPixmapCache>
#include <QProgressDialog>
#include <QPushButton>
#include <QScrollBar>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

/// What an item paints, at its own size.
QImage painted(QGraphicsItem &item)
{
    const QRectF bounds = item.boundingRect();
    QImage image(bounds.size().toSize(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.translate(-bounds.topLeft());
    item.paint(&painter, nullptr, nullptr);
    return image;
}

int leftmostInk(const QImage &image)
{
    for (int x = 0; x < image.width(); ++x) {
        for (int y = 0; y < image.height(); ++y) {
            if (image.pixelColor(x, y).alpha() > 0) {
                return x;
            }
        }
    }
    return image.width();
}

/// A user who presses the button of the progress dialog as soon as it is there, and who has looked at the clock: from
/// the closing of the search dialog, or from now on, until the progress dialog was seen.
class Canceller final : public QObject
{
public:
    Canceller()
    {
        m_timer.start();
        qApp->installEventFilter(this);
    }

    [[nodiscard]] QString label() const { return m_label; }

    /// In milliseconds; -1 as long as no dialog has been seen.
    [[nodiscard]] qint64 shownAfter() const { return m_shownAfter; }

protected:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        if (event->type() == QEvent::Hide && qobject_cast<OptionDialog *>(object)) {
            m_timer.restart();
        }
        auto *dialog = qobject_cast<QProgressDialog *>(object);
        if (dialog && event->type() == QEvent::Show) {
            m_shownAfter = m_timer.elapsed();
            m_label = dialog->labelText();
            QTimer::singleShot(
                0, dialog, [dialog] { QTest::mouseClick(dialog->findChild<QPushButton *>(), Qt::LeftButton); });
        }
        return false;
    }

private:
    QElapsedTimer m_timer;
    QString m_label;
    qint64 m_shownAfter = -1;
};

} // namespace

/// One page of the canvas: its caption, its buttons, where it begins, and a load that the user stops.
class TestCanvasPage final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void captionHasItsFontAndColour_data();
    void captionHasItsFontAndColour();
    void captionTakesNoPart();
    void captionShowsLongNamesInItsRoom_data();
    void captionShowsLongNamesInItsRoom();
    void everyKindShowsItsImageFile_data();
    void everyKindShowsItsImageFile();
    void newPageBeginsAtTheTop();
    void listingBeginsAtTheTop();
    void cancelledPageKeepsItsBlocksWithoutAMoreButton();
    void progressIsSeenOnceLoadingHasTakenTwoSeconds();
    void cancelledListingKeepsItsBlocks();
    void startPictureIsTheOneThatWasDrawn();
    void statisticsHaveTheirFonts();
    void lettersWithoutItalicsStandUpright();
    void textFromRightToLeftBeginsAtTheLeft();

private:
    void addEntries(int count);
    void slowDown(const QString &table, int ms) const;
    [[nodiscard]] TextItem *textItem(const QString &text) const;
    [[nodiscard]] QScrollBar *scrollBar() const;

    std::unique_ptr<TestCatalogue> m_catalogue;
    std::unique_ptr<BrowserWindow> m_browser;
    int m_group = 0;
    int m_model = 0;
};

void TestCanvasPage::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    m_group = m_catalogue->addGroup(u"Krokodile"_s);
    m_model = m_catalogue->addModel(u"Ce 6/8"_s, m_group);
}

void TestCanvasPage::cleanup()
{
    Clock::setSource({});
    m_browser.reset();
    QPixmapCache::clear();
    ColorSetting::saveAndRelease();
    m_catalogue.reset();
}

void TestCanvasPage::addEntries(int count)
{
    for (int i = 0; i < count; ++i) {
        m_catalogue->addEntry(QString::number(100 + i), m_model, u"Bern"_s, QDate(1990, 1, 1).addDays(i));
    }
}

TextItem *TestCanvasPage::textItem(const QString &text) const
{
    const QList<QGraphicsItem *> items = m_browser->canvas().items();
    for (QGraphicsItem *item : items) {
        auto *found = qgraphicsitem_cast<TextItem *>(item);
        if (found && found->toPlainText() == text) {
            return found;
        }
    }
    return nullptr;
}

QScrollBar *TestCanvasPage::scrollBar() const
{
    return m_browser->window().viewHolder().view()->verticalScrollBar();
}

void TestCanvasPage::captionHasItsFontAndColour_data()
{
    QTest::addColumn<QColor>("background");
    QTest::addColumn<QColor>("text");
    QTest::newRow("light") << QColor(Qt::white) << QColor(12, 15, 118);
    QTest::newRow("dark") << QColor(Qt::black) << QColor(Qt::white);
}

void TestCanvasPage::captionHasItsFontAndColour()
{
    QFETCH(QColor, background);
    ColorSetting::instance().setBackground(background);
    m_browser = std::make_unique<BrowserWindow>();
    QCOMPARE(m_browser->search(m_group), QStringList());
    const TextItem *caption = textItem(u"0 Einträge der Baureihe Ce 6/8"_s);
    QVERIFY(caption);
    QCOMPARE(caption->scenePos(), QPointF(350, 20));
    QCOMPARE(caption->font(), ColorSetting::instance().fontAt(0));
    QCOMPARE(caption->font().pixelSize(), 23);
    QVERIFY(caption->font().bold());
    QTEST(caption->defaultTextColor(), "text");
}

void TestCanvasPage::captionTakesNoPart()
{
    addEntries(1);
    m_browser = std::make_unique<BrowserWindow>();
    QCOMPARE(m_browser->search(m_group), QStringList());
    TextItem *caption = textItem(u"1 Eintrag der Baureihe Ce 6/8"_s);
    QVERIFY(caption);
    QVERIFY(!(caption->flags() & (QGraphicsItem::ItemIsFocusable | QGraphicsItem::ItemIsSelectable)));
    m_browser->doubleClick(caption);
    QTest::keyClicks(m_browser->window().viewHolder().view(), u"x"_s);
    QCOMPARE(caption->toPlainText(), u"1 Eintrag der Baureihe Ce 6/8"_s);
    QVERIFY(!m_browser->canvas().focusItem());
}

void TestCanvasPage::captionShowsLongNamesInItsRoom_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("whole");
    QTest::newRow("as long as a form stores it") << QString(38, u'W') << true;
    QTest::newRow("80 letters") << u"Zahnradlokomotive "_s.repeated(5).left(80) << true;
    QTest::newRow("300 wide letters") << QString(300, u'W') << false;
    QTest::newRow("without end") << QString(100000, u'W') << false;
}

void TestCanvasPage::captionShowsLongNamesInItsRoom()
{
    QFETCH(QString, name);
    QFETCH(bool, whole);
    QVERIFY(executeWrite(u"UPDATE loc_model SET modelname = :name"_s, { { u":name"_s, name } }).done);
    m_browser = std::make_unique<BrowserWindow>();
    QCOMPARE(m_browser->search(m_group), QStringList());
    const QString text = m_browser->caption();
    QVERIFY2(text.startsWith(u"0 Einträge der Baureihe "_s + name.left(50)), qPrintable(text));
    QCOMPARE(text.endsWith(name), whole);
    const TextItem *caption = textItem(text);
    QVERIFY(QRectF(350, 20, 710, 60).contains(caption->sceneBoundingRect())); // above the first block
}

void TestCanvasPage::everyKindShowsItsImageFile_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QSize>("box");
    QTest::newRow("edit") << 1 << u"Bearbeiten-Button.png"_s << QSize(25, 25);
    QTest::newRow("delete") << 2 << u"Loeschen-Button.png"_s << QSize(25, 25);
    QTest::newRow("left arrow") << 3 << u"leftArrow.png"_s << QSize(20, 100);
    QTest::newRow("right arrow") << 4 << u"rightArrow.png"_s << QSize(20, 100);
    QTest::newRow("count") << 5 << u"lokCount.png"_s << QSize(38, 22);
    QTest::newRow("back") << 6 << u"backArrow.png"_s << QSize(100, 40);
    QTest::newRow("more") << 7 << u"more.png"_s << QSize(100, 40);
    QTest::newRow("any other is edit") << 8 << u"Bearbeiten-Button.png"_s << QSize(25, 25);
}

void TestCanvasPage::everyKindShowsItsImageFile()
{
    QFETCH(int, kind);
    QFETCH(QString, file);
    QFETCH(QSize, box);
    QPixmapCache::clear();
    QVERIFY(QDir().mkdir(u"images"_s));
    QImage image(box * 3, QImage::Format_RGB32);
    image.fill(QColor(200, 0, 200));
    QVERIFY(image.save(u"images/"_s + file));
    ButtonItem button(ButtonKind(kind), 1);
    const QImage shown = painted(button);
    const QRect area = QRect(QPoint(0, 0), box).translated(-button.boundingRect().topLeft().toPoint());
    for (const QPoint &corner : { area.topLeft(), area.bottomRight(), area.center() }) {
        QCOMPARE(shown.pixelColor(corner), QColor(200, 0, 200));
    }
    QCOMPARE(shown.pixelColor(area.bottomRight() + QPoint(1, 1)).alpha(), 0);
}

void TestCanvasPage::newPageBeginsAtTheTop()
{
    addEntries(50);
    m_browser = std::make_unique<BrowserWindow>();
    QCOMPARE(m_browser->search(m_group), QStringList());
    QCOMPARE(scrollBar()->value(), 0);
    m_browser->click(m_browser->button(ButtonKind::More));
    QTRY_COMPARE(m_browser->numbers().size(), 10);
    QVERIFY(scrollBar()->maximum() > 0);
    QCOMPARE(scrollBar()->value(), 0);
    scrollBar()->setValue(scrollBar()->maximum());
    QCOMPARE(m_browser->search(m_group), QStringList());
    QCOMPARE(scrollBar()->value(), 0);
    QCOMPARE(m_browser->window().viewHolder().view()->horizontalScrollBar()->value(), 0);
}

void TestCanvasPage::listingBeginsAtTheTop()
{
    addEntries(20);
    for (int i = 0; i < 20; ++i) {
        m_catalogue->addEntry(u"119"_s, m_model);
    }
    m_browser = std::make_unique<BrowserWindow>();
    QCOMPARE(m_browser->search(m_group, { {}, u"nur einmal"_s }), QStringList());
    scrollBar()->setValue(scrollBar()->maximum());
    QVERIFY(scrollBar()->value() > 0);
    m_browser->click(m_browser->button(ButtonKind::Count, m_browser->block(19)));
    QTRY_COMPARE(m_browser->numbers().size(), 21);
    QVERIFY(scrollBar()->maximum() > 0);
    QCOMPARE(scrollBar()->value(), 0);
}

/// Puts a view in place of the table that takes this time at each statement, as a slow disk would. An empty table stays
/// quick.
void TestCanvasPage::slowDown(const QString &table, int ms) const
{
    const QString steps = u"(WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c WHERE x < %1) "
                          "SELECT COUNT(*) FROM c)"_s;
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(m_catalogue->value(u"SELECT "_s + steps.arg(1000000)).toInt(), 1000000);
    const qint64 perMillion = std::max<qint64>(1, timer.elapsed());
    QVERIFY(executeWrite(u"CREATE TEMP VIEW %1 AS SELECT * FROM main.%1 WHERE %2 > 0"_s.arg(
                             table, steps.arg(ms * Q_INT64_C(1000000) / perMillion)))
                .done);
}

void TestCanvasPage::cancelledPageKeepsItsBlocksWithoutAMoreButton()
{
    addEntries(60);
    m_browser = std::make_unique<BrowserWindow>();
    m_catalogue->addPicture(m_catalogue->addEntry(u"1"_s, m_model));
    slowDown(u"loc_picture"_s, 4000); // the progress dialog comes after 2000
    const Canceller user;
    QCOMPARE(m_browser->search(m_group), QStringList());
    QCOMPARE(user.label(), u"40 von 61 Einträge laden..."_s);
    const qsizetype blocks = m_browser->numbers().size();
    QVERIFY2(blocks > 0 && blocks < 40, qPrintable(QString::number(blocks)));
    QVERIFY(!m_browser->button(ButtonKind::More));
    QCOMPARE(m_browser->caption(), u"61 Einträge der Baureihe Ce 6/8"_s);
    const EntryBlock *last = m_browser->block(int(blocks) - 1);
    QCOMPARE(m_browser->canvas().sceneRect().bottom(), last->scenePos().y() + last->height() + 30);
}

/// The count of a number that is not plain ASCII takes a statement, so that this page asks its dialog every 200 ms.
void TestCanvasPage::progressIsSeenOnceLoadingHasTakenTwoSeconds()
{
    for (int i = 0; i < 41; ++i) {
        m_catalogue->addEntry(u"Ü%1"_s.arg(i), m_model, u"Bern"_s, QDate(1990, 1, 1).addDays(i));
    }
    m_browser = std::make_unique<BrowserWindow>();
    slowDown(u"loc_seen"_s, 200);
    const Canceller user;
    QCOMPARE(m_browser->search(m_group, { {}, u"nur einmal"_s }), QStringList());
    QCOMPARE(user.label(), u"20*n von 41 Einträge laden..."_s);
    QVERIFY2(user.shownAfter() >= 2000, qPrintable(QString::number(user.shownAfter())));
    const qsizetype blocks = m_browser->numbers().size();
    QVERIFY2(blocks > 1 && blocks < 40, qPrintable(QString::number(blocks))); // else it was not asked in between
}

void TestCanvasPage::cancelledListingKeepsItsBlocks()
{
    for (int i = 0; i < 60; ++i) {
        m_catalogue->addEntry(u"119"_s, m_model);
    }
    m_browser = std::make_unique<BrowserWindow>();
    QCOMPARE(m_browser->search(m_group, { {}, u"nur einmal"_s }), QStringList());
    m_catalogue->addPicture(1);
    slowDown(u"loc_picture"_s, 4000);
    const Canceller user;
    m_browser->click(m_browser->button(ButtonKind::Count, m_browser->block(0)));
    QTRY_COMPARE(user.label(), u"60 Einträge laden..."_s);
    QVERIFY(m_browser->window().viewHolder().showsListing());
    const qsizetype blocks = m_browser->numbers().size();
    QVERIFY2(blocks > 0 && blocks < 60, qPrintable(QString::number(blocks)));
    QCOMPARE(m_browser->caption(), u"60 Einträge der Ce 6/8 119"_s);
    QVERIFY(m_browser->button(ButtonKind::Back));
}

void TestCanvasPage::startPictureIsTheOneThatWasDrawn()
{
    m_catalogue->addPicture(m_catalogue->addEntry(u"14252"_s, m_model));
    const int entry = m_catalogue->addEntry(u"14253"_s, m_model);
    for (int i = 0; i < 4; ++i) {
        m_catalogue->addPicture(entry);
    }
    Clock::setSource([] { return QDateTime(QDate(2024, 5, 17), QTime(12, 0, 11, 303)); }); // 3333 modulo 5 is 3
    m_browser = std::make_unique<BrowserWindow>();
    QCOMPARE(m_browser->window().startPictureNumber(), 3);
    const QList<Picture *> photos = m_browser->photos(nullptr);
    QCOMPARE(photos.size(), 1);
    QCOMPARE(photos.first()->sourcePath(), m_catalogue->path(u"source4.jpg"_s)); // rows are counted from 0
}

void TestCanvasPage::statisticsHaveTheirFonts()
{
    m_catalogue->addPicture(m_catalogue->addEntry(u"14253"_s, m_model));
    m_browser = std::make_unique<BrowserWindow>();
    const ColorSetting &setting = ColorSetting::instance();
    QCOMPARE(textItem(u"Aktueller Bestand:"_s)->font(), setting.fontAt(2));
    for (const QString &line : { u"1 Baureihen in 1 Gruppen"_s, u"1 Bilder in 1 Einträgen"_s }) {
        const QFont font = textItem(line)->font();
        QCOMPARE(font, setting.fontAt(3));
        QVERIFY(font.italic());
        QCOMPARE(font.pixelSize(), 16);
    }
}

void TestCanvasPage::lettersWithoutItalicsStandUpright()
{
    m_browser = std::make_unique<BrowserWindow>();
    const QFont italic = ColorSetting::instance().fontAt(4);
    QVERIFY(italic.italic());
    QVERIFY(TextItem(u"Größe – „gut“ …"_s, italic, Qt::black).font().italic());
    QVERIFY(
        !TextItem(u"هذا تعليق"_s, italic, Qt::black).font().italic()); // the fonts that are needed have no such italics
}

void TestCanvasPage::textFromRightToLeftBeginsAtTheLeft()
{
    m_browser = std::make_unique<BrowserWindow>();
    constexpr double Width = 400;
    TextItem item(u"ירושלים"_s, ColorSetting::instance().fontAt(2), Qt::black, Width);
    QVERIFY(leftmostInk(painted(item)) < 10);
}

BAHNITO_TEST_MAIN(TestCanvasPage)
#include "tst_canvaspage.moc"
