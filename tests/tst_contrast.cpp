#include "app/picturescrolllist.h"
#include "browser/canvascolors.h"
#include "browser/canvasview.h"
#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "browser/textitem.h"
#include "browser/viewholder.h"
#include "store/colorsetting.h"
#include "tests/support/browserwindow.h"
#include "tests/support/testmain.h"
#include "tests/support/testpictures.h"

#include <QApplication>
#include <QHash>
#include <QLabel>
#include <QPainter>
#include <QTest>

#include <algorithm>
#include <cmath>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr double Readable = 4.5; // WCAG 2 for texts

// How far an image must keep from its ground: on average in RGB, where black and white are 441 apart, and the share of
// its pixels that stand out by themselves.
constexpr double MeanDistance = 70;
constexpr double PixelDistance = 50;
constexpr double DiscernibleShare = 0.6;

double distance(const QColor &first, const QColor &second)
{
    return std::hypot(first.red() - second.red(), first.green() - second.green(), first.blue() - second.blue());
}

struct Difference
{
    double meanDistance = 0;
    double discernibleShare = 0;

    [[nodiscard]] bool isDistinguishable() const
    {
        return meanDistance >= MeanDistance && discernibleShare >= DiscernibleShare;
    }
};

/// How the image differs from the ground on which it is drawn, over all its pixels.
Difference differenceFrom(const QColor &ground, const QImage &image)
{
    QImage drawn(image.size(), QImage::Format_RGB32);
    drawn.fill(ground);
    QPainter(&drawn).drawImage(0, 0, image);
    Difference difference;
    const double pixels = drawn.width() * drawn.height();
    for (int y = 0; y < drawn.height(); ++y) {
        for (int x = 0; x < drawn.width(); ++x) {
            const QColor pixel = drawn.pixelColor(x, y);
            difference.meanDistance += distance(pixel, ground) / pixels;
            difference.discernibleShare += (distance(pixel, ground) >= PixelDistance ? 1 : 0) / pixels;
        }
    }
    return difference;
}

/// The canvas as it is painted, one pixel for each of the scene's.
QImage painted(PictureScene &canvas)
{
    QImage image(canvas.sceneRect().size().toSize(), QImage::Format_RGB32);
    QPainter painter(&image);
    canvas.render(&painter, image.rect(), canvas.sceneRect());
    return image;
}

QColor mostFrequent(const QImage &image, const QRect &area)
{
    QHash<QRgb, int> counts;
    QRgb most = 0;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            if (++counts[pixel] > counts.value(most)) {
                most = pixel;
            }
        }
    }
    return QColor::fromRgb(most);
}

/// The best contrast of any pixel of the area with the ground that most of it shows: that of the text on it.
double textContrast(const QImage &image, const QRect &area)
{
    const QColor ground = mostFrequent(image, area);
    double best = 1;
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            best = std::max(best, contrast(ground, image.pixelColor(x, y)));
        }
    }
    return best;
}

} // namespace

class TestContrast final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void everyTextIsReadable_data() { addBackgrounds(); }
    void everyTextIsReadable();
    void everyButtonIsDistinguishable_data() { addBackgrounds(); }
    void everyButtonIsDistinguishable();
    void similarImageWouldFail_data() { addBackgrounds(); }
    void similarImageWouldFail();
    void buttonsStandOutOnTheCanvas_data() { addBackgrounds(); }
    void buttonsStandOutOnTheCanvas();
    void cardsStandOut_data() { addBackgrounds(); }
    void cardsStandOut();
    void placeholderNoticeIsReadable();
    void firstStepIsReadable();

private:
    static void addBackgrounds();
    QStringList unreadableTexts();

    std::unique_ptr<TestCatalogue> m_catalogue;
    std::unique_ptr<BrowserWindow> m_browser;
    int m_group = 0;
};

void TestContrast::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    m_group = m_catalogue->addGroup(u"Krokodile"_s);
    const int model = m_catalogue->addModel(u"Ce 6/8"_s, m_group);
    const int rich = m_catalogue->addEntry(u"14253"_s, model);
    for (int i = 0; i < 3; ++i) {
        m_catalogue->addPicture(rich);
    }
    for (int i = 0; i < 45; ++i) {
        m_catalogue->addEntry(QString::number(14254 + i), model, u"Bern"_s, QDate(2002, 1, 1).addDays(i));
    }
}

void TestContrast::cleanup()
{
    m_browser.reset();
    m_catalogue.reset();
}

void TestContrast::addBackgrounds()
{
    QTest::addColumn<QColor>("background");
    for (const QColor &color : ColorScheme::palette()) {
        QTest::newRow(qPrintable(color.name())) << color;
    }
}

/// The texts of the canvas that are painted in a colour too close to their ground, each with its contrast.
QStringList TestContrast::unreadableTexts()
{
    QStringList unreadable;
    int texts = 0;
    const QImage image = painted(m_browser->canvas());
    const QList<QGraphicsItem *> items = m_browser->canvas().items();
    for (const QGraphicsItem *item : items) {
        const auto *text = qgraphicsitem_cast<const TextItem *>(item);
        if (!text) {
            continue;
        }
        ++texts;
        const QRect area = text->sceneBoundingRect().toAlignedRect().intersected(image.rect());
        const double ratio = contrast(mostFrequent(image, area), text->defaultTextColor());
        if (ratio < Readable) {
            unreadable.append(u"%1: %2"_s.arg(text->toPlainText()).arg(ratio));
        }
    }
    return texts < 3 ? QStringList { u"no texts"_s } : unreadable;
}

void TestContrast::everyTextIsReadable()
{
    QFETCH(QColor, background);
    ColorSetting::instance().setBackground(background);
    m_browser = std::make_unique<BrowserWindow>();
    QVERIFY(m_browser->canvas().showsStartPicture());
    QCOMPARE(unreadableTexts(), QStringList());
    QCOMPARE(m_browser->search(m_group, { u""_s, u"nur einmal"_s }), QStringList());
    QCOMPARE(unreadableTexts(), QStringList());
    m_browser->click(m_browser->button(ButtonKind::Count, m_browser->block(0)));
    QVERIFY(m_browser->window().viewHolder().showsListing());
    QCOMPARE(unreadableTexts(), QStringList());
}

void TestContrast::everyButtonIsDistinguishable()
{
    QFETCH(QColor, background);
    const QColor card = CardColors(ColorScheme(background)).ground;
    for (int kind = int(ButtonKind::Edit); kind <= int(ButtonKind::More); ++kind) {
        const QImage image = ButtonItem(ButtonKind(kind), 1).pixmap().toImage();
        for (const QColor &ground : { background, card }) {
            const Difference difference = differenceFrom(ground, image);
            QVERIFY2(difference.isDistinguishable(),
                qPrintable(u"%1 on %2: distance %3, share %4"_s.arg(buttonName(ButtonKind(kind)), ground.name())
                               .arg(difference.meanDistance)
                               .arg(difference.discernibleShare)));
        }
    }
}

void TestContrast::similarImageWouldFail()
{
    QFETCH(QColor, background);
    const bool isDark = background.lightness() < 128;
    QImage similar(25, 25, QImage::Format_ARGB32);
    similar.fill(isDark ? QColor(40, 40, 40) : background.darker(118));
    QVERIFY(!differenceFrom(background, similar).isDistinguishable());
    similar.fill(background);
    QCOMPARE(differenceFrom(background, similar).meanDistance, 0.0);
    QImage outline(25, 25, QImage::Format_ARGB32); // only a few pixels are different enough
    outline.fill(background);
    QPainter(&outline).drawRect(0, 0, 24, 24);
    QVERIFY(!differenceFrom(background, outline).isDistinguishable());
}

void TestContrast::buttonsStandOutOnTheCanvas()
{
    QFETCH(QColor, background);
    ColorSetting::instance().setBackground(background);
    m_browser = std::make_unique<BrowserWindow>();
    QCOMPARE(m_browser->search(m_group, { u""_s, u"nur einmal"_s }), QStringList());
    const QImage image = painted(m_browser->canvas());
    int buttons = 0;
    const QList<QGraphicsItem *> items = m_browser->canvas().focusItems();
    for (const QGraphicsItem *item : items) {
        const auto *button = qgraphicsitem_cast<const ButtonItem *>(item);
        if (!button) {
            continue;
        }
        ++buttons;
        const QRect box(button->scenePos().toPoint(), buttonBox(button->kind()));
        const QColor ground = image.pixelColor(box.topLeft() - QPoint(2, -box.height() / 2));
        QVERIFY(differenceFrom(ground, image.copy(box)).isDistinguishable());
    }
    QVERIFY(buttons > 100);
}

void TestContrast::cardsStandOut()
{
    QFETCH(QColor, background);
    const CardColors card { ColorScheme(background) };
    QVERIFY(distance(card.ground, background) >= 40);
    QVERIFY(distance(card.frame, card.ground) >= 40);
}

void TestContrast::placeholderNoticeIsReadable()
{
    Picture picture({ u"missing.jpg"_s, {} }, { 332, 226 });
    QImage image(332, 226, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    picture.paint(&painter, nullptr, nullptr);
    painter.end();
    QVERIFY(picture.isPlaceholder());
    QVERIFY(textContrast(image, QRect(100, 170, 132, 24)) >= Readable);
}

void TestContrast::firstStepIsReadable()
{
    m_catalogue.reset(); // its connection has to be gone first
    m_catalogue = std::make_unique<TestCatalogue>();
    m_browser = std::make_unique<BrowserWindow>();
    auto *hint = m_browser->window().findChild<QLabel *>(u"hint"_s);
    QVERIFY(hint && hint->isVisible());
    QVERIFY(hint->text().contains(u"Baureihe-Gruppen bearbeiten"_s));
    QVERIFY(!hint->toolTip().isEmpty());
    const QImage image = m_browser->window().grab().toImage();
    const QRect area(hint->mapTo(&m_browser->window(), QPoint(0, 0)), hint->size());
    QVERIFY(textContrast(image, area) >= Readable);
    m_catalogue->addGroup(u"Krokodile"_s);
    m_browser->window().findChild<PictureScrollList *>()->rebuild();
    QVERIFY(!m_browser->window().findChild<QLabel *>(u"hint"_s));
}

BAHNITO_TEST_MAIN(TestContrast)
#include "tst_contrast.moc"
