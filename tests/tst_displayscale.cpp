#include "app/backgroundchooser.h"
#include "app/pictureitem.h"
#include "browser/canvasview.h"
#include "browser/entryblock.h"
#include "browser/picturescene.h"
#include "browser/viewholder.h"
#include "forms/picturepreview.h"
#include "tests/support/browserwindow.h"
#include "tests/support/layoutcheck.h"
#include "tests/support/modalscript.h"
#include "tests/support/testmain.h"
#include "tests/support/testpictures.h"

#include <QApplication>
#include <QGraphicsPixmapItem>
#include <QMenu>
#include <QProcess>
#include <QTest>
#include <QToolBar>
#include <QToolButton>

#include <cmath>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

const char *const ScaleVariable = "QT_SCALE_FACTOR";

/// Starts this program once for each scale of the screen, because a process has only one.
class TestDisplayScale final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everythingIsSharpAtScale_data();
    void everythingIsSharpAtScale();
};

void TestDisplayScale::everythingIsSharpAtScale_data()
{
    QTest::addColumn<QString>("scale");
    for (const QString &scale : { u"1"_s, u"1.5"_s, u"2"_s }) {
        QTest::newRow(qPrintable(scale)) << scale;
    }
}

void TestDisplayScale::everythingIsSharpAtScale()
{
    QFETCH(QString, scale);
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QString::fromLatin1(ScaleVariable), scale);
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QCoreApplication::applicationFilePath(), {});
    QVERIFY(process.waitForFinished(120000));
    const QByteArray output = process.readAll();
    QVERIFY2(process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0, output.constData());
    QVERIFY2(output.contains("Totals: 13 passed, 0 failed"), output.constData()); // and not nothing at all
}

/// Black and white lines, each one pixel wide: the least blur turns them grey.
void writeLines(const QString &path, const QSize &size)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            image.setPixel(x, y, x % 2 == 0 ? qRgb(0, 0, 0) : qRgb(255, 255, 255));
        }
    }
    QVERIFY(image.save(path, "PNG"));
}

/// The smallest difference of neighbouring pixels in the middle row of `area`, in device pixels.
int leastStep(const QImage &image, const QRect &area)
{
    int least = 255;
    for (int x = area.left(); x < area.right(); ++x) {
        const int y = area.center().y();
        least = std::min(least, std::abs(qGray(image.pixel(x, y)) - qGray(image.pixel(x + 1, y))));
    }
    return least;
}

/// What is to be seen at one scale.
class TestAtScale final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void scaleIsTheOneAskedFor();
    void buttonsHaveTheScreensPixels();
    void buttonsActOnlyInsideTheirBox();
    void photographsAreSharp();
    void startPictureIsSharp();
    void groupIconsAreSharp();
    void previewsAreEquallyLarge_data();
    void previewsAreEquallyLarge();
    void colourIconsKeepTheirSizes();
    void nothingIsShifted();

private:
    [[nodiscard]] CanvasView *view() const { return m_browser->window().viewHolder().view(); }
    [[nodiscard]] QRect onScreen(const QRectF &sceneRect) const;

    double m_scale = qgetenv(ScaleVariable).toDouble();
    std::unique_ptr<TestCatalogue> m_catalogue;
    std::unique_ptr<BrowserWindow> m_browser;
    int m_group = 0;
};

void TestAtScale::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    writeLines(u"group.png"_s, QSize(120, 120) * m_scale);
    m_group = m_catalogue->addGroup(u"Krokodile"_s, u"group.png"_s);
    const int model = m_catalogue->addModel(u"Ce 6/8"_s, m_group);
    const int first = m_catalogue->addEntry(u"14252"_s, model, u"Bern"_s, QDate(1990, 1, 1), u"Kurz"_s);
    const int second = m_catalogue->addEntry(u"14253"_s, model, u"Bern"_s, QDate(1991, 1, 1),
        u"Ein langer Kommentar über mehrere Zeilen, der die Karte höher macht als ihre Bilder. "_s.repeated(2));
    for (const int entry : { first, first, first, second }) {
        m_catalogue->addPicture(entry);
    }
    for (int i = 1; i <= 4; ++i) {
        writeLines(u"./Data/Pictures/Folder001/copy%1.jpg"_s.arg(i), QSize(322, 214) * m_scale);
    }
    m_browser = std::make_unique<BrowserWindow>();
}

void TestAtScale::cleanup()
{
    m_browser.reset();
    m_catalogue.reset();
}

/// Device pixels of the view's picture, some way inside of the rectangle.
QRect TestAtScale::onScreen(const QRectF &sceneRect) const
{
    const QRectF rect(view()->mapFromScene(sceneRect.topLeft()), sceneRect.size());
    const QRectF inside = rect.adjusted(12, 12, -12, -12);
    return QRectF(inside.topLeft() * m_scale, inside.size() * m_scale).toRect();
}

void TestAtScale::scaleIsTheOneAskedFor()
{
    QCOMPARE(view()->devicePixelRatioF(), m_scale);
    QCOMPARE(view()->viewport()->grab().devicePixelRatio(), m_scale);
}

void TestAtScale::buttonsHaveTheScreensPixels()
{
    for (int kind = int(ButtonKind::Edit); kind <= int(ButtonKind::More); ++kind) {
        const QPixmap pixmap = ButtonItem(ButtonKind(kind), 1).pixmap();
        const QSize box = buttonBox(ButtonKind(kind));
        QCOMPARE(pixmap.devicePixelRatio(), m_scale);
        QVERIFY(pixmap.width() <= std::ceil(box.width() * m_scale));
        QVERIFY(pixmap.height() <= std::ceil(box.height() * m_scale));
        QVERIFY(pixmap.width() >= std::floor(box.width() * m_scale)
            || pixmap.height() >= std::floor(box.height() * m_scale));
    }
}

void TestAtScale::buttonsActOnlyInsideTheirBox()
{
    QCOMPARE(m_browser->search(m_group), QStringList());
    const ButtonItem *button = m_browser->button(ButtonKind::Delete, m_browser->block(0));
    const QRect box = view()->mapFromScene(LayoutCheck::shown(button)).boundingRect();
    QCOMPARE(box.size() - QSize(1, 1), buttonBox(ButtonKind::Delete));
    const auto press = [this](const QPoint &point) {
        QTest::mouseClick(view()->viewport(), Qt::LeftButton, {}, point);
        QTest::qWait(20); // a box would be open by now
    };
    ModalScript script;
    const QPoint corner = box.topLeft() + QPoint(25, 25);
    press({ corner.x() + 3, box.center().y() });
    press({ box.center().x(), corner.y() + 3 });
    press(box.topLeft() - QPoint(3, 3));
    QCOMPARE(script.problems(), QStringList()); // else an unexpected question
    script.then([](QWidget *question) { question->close(); });
    press(corner - QPoint(2, 2));
    QCOMPARE(script.problems(), QStringList());
}

void TestAtScale::photographsAreSharp()
{
    QCOMPARE(m_browser->search(m_group), QStringList());
    const QImage image = view()->viewport()->grab().toImage();
    for (const int block : { 0, 1 }) {
        const QList<Picture *> photos = m_browser->photos(m_browser->block(block));
        QVERIFY(!photos.isEmpty());
        for (const Picture *photo : photos) {
            QCOMPARE(photo->frame().size(), QSizeF(332, 224));
            QVERIFY(leastStep(image, onScreen(LayoutCheck::shown(photo))) > 200);
        }
    }
}

void TestAtScale::startPictureIsSharp()
{
    QVERIFY(m_browser->canvas().showsStartPicture());
    const Picture *photo = m_browser->photos(nullptr).first();
    const QSize copy = QSize(322, 214) * m_scale; // shown at this size: at a scale above 1 it is enlarged evenly
    QCOMPARE(photo->frame().size(), QSizeF(copy + QSize(10, 10)));
    if (m_scale == 1) {
        const QImage image = view()->viewport()->grab().toImage();
        QVERIFY(leastStep(image, onScreen(LayoutCheck::shown(photo))) > 200);
    }
}

void TestAtScale::groupIconsAreSharp()
{
    auto *button = m_browser->window().findChild<PictureItem *>();
    const QPixmap icon = button->icon().pixmap(button->iconSize(), m_scale);
    QCOMPARE(icon.devicePixelRatio(), m_scale);
    QCOMPARE(icon.size(), QSize(120, 120) * m_scale);
    const QImage image = button->grab().toImage();
    const QRectF inside = QRectF(button->rect()).adjusted(16, 16, -16, -16);
    QVERIFY(leastStep(image, QRectF(inside.topLeft() * m_scale, inside.size() * m_scale).toRect()) > 200);
}

void TestAtScale::previewsAreEquallyLarge_data()
{
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<QSizeF>("shown");
    QTest::newRow("a copy fills the preview") << QSize(750, 500) << QSizeF(330, 220);
    QTest::newRow("a photograph too") << QSize(3000, 2000) << QSizeF(330, 220);
    QTest::newRow("a small picture keeps its size") << QSize(90, 60) << QSizeF(90, 60);
}

void TestAtScale::previewsAreEquallyLarge()
{
    QFETCH(QSize, picture);
    QFETCH(QSizeF, shown);
    writeTestJpeg(u"a.jpg"_s, picture);
    PicturePreview preview;
    preview.show();
    QCOMPARE(preview.devicePixelRatioF(), m_scale);
    QVERIFY(preview.showFile(u"a.jpg"_s));
    auto *item = qgraphicsitem_cast<QGraphicsPixmapItem *>(preview.scene()->items().constFirst());
    QCOMPARE(item->pixmap().deviceIndependentSize(), shown);
    QCOMPARE(item->pixmap().devicePixelRatio(), m_scale);
}

void TestAtScale::colourIconsKeepTheirSizes()
{
    QCOMPARE(colorButtonIcon(Qt::red).availableSizes(), QList<QSize> { QSize(120, 80) });
    QCOMPARE(colorMenuIcon(Qt::red).availableSizes(), QList<QSize> { QSize(75, 50) });
    const QList<QToolBar *> bars = m_browser->window().findChildren<QToolBar *>();
    for (const QToolBar *bar : bars) {
        const QSize shown = bar->iconSize() * m_scale;
        const QList<QAction *> actions = bar->actions();
        for (QAction *action : actions) {
            const auto *button = qobject_cast<QToolButton *>(bar->widgetForAction(action));
            if (!button) {
                continue; // a separator
            }
            const QSize stored = button->icon().availableSizes().first();
            QVERIFY(stored.width() >= shown.width() || stored.height() >= shown.height()); // nothing is enlarged
        }
    }
}

void TestAtScale::nothingIsShifted()
{
    QCOMPARE(LayoutCheck::pageFault(m_browser->canvas()), QString());
    QCOMPARE(m_browser->search(m_group, { u""_s, u"nur einmal"_s }), QStringList());
    QCOMPARE(LayoutCheck::pageFault(m_browser->canvas()), QString());
    QCOMPARE(m_browser->block(0)->scenePos(), QPointF(20, 80));
    QCOMPARE(m_browser->photos(m_browser->block(0)).first()->scenePos(), QPointF(342, 96));
    const QRect box = view()->mapFromScene(LayoutCheck::shown(m_browser->block(0))).boundingRect();
    const QImage image = view()->viewport()->grab().toImage();
    const QPoint inside = box.topLeft() + QPoint(4, 20);
    QVERIFY(image.pixelColor(inside * m_scale) != image.pixelColor((inside - QPoint(8, 0)) * m_scale));
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    prepareTestApplication(application);
    if (qEnvironmentVariableIsSet(ScaleVariable)) {
        TestAtScale test;
        return QTest::qExec(&test, argc, argv);
    }
    TestDisplayScale test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_displayscale.moc"
