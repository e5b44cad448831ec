#include "app/pictureitem.h"
#include "browser/canvasview.h"
#include "browser/viewholder.h"
#include "tests/support/browserwindow.h"
#include "tests/support/testmain.h"
#include "tests/support/testpictures.h"

#include <QApplication>
#include <QFile>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <QWindow>

#include <memory>

using namespace Qt::StringLiterals;

/// Two screens side by side, the right one with twice as many pixels.
class TestScreenChange final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void groupIconsAreDecodedForTheScreenThatTheyComeTo();

private:
    std::unique_ptr<TestCatalogue> m_catalogue;
    std::unique_ptr<BrowserWindow> m_browser;
};

void TestScreenChange::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    writeTestJpeg(u"group.jpg"_s, { 600, 600 });
    m_catalogue->addGroup(u"Krokodile"_s, u"group.jpg"_s);
    m_browser = std::make_unique<BrowserWindow>();
}

void TestScreenChange::cleanup()
{
    m_browser.reset();
    m_catalogue.reset();
}

void TestScreenChange::groupIconsAreDecodedForTheScreenThatTheyComeTo()
{
    const QList<QScreen *> screens = QGuiApplication::screens();
    QCOMPARE(screens.size(), 2);
    QCOMPARE(screens.last()->devicePixelRatio(), 2.0);
    auto *button = m_browser->window().findChild<PictureItem *>();
    const auto decoded = [button] { return button->icon().availableSizes().value(0); };
    QTRY_COMPARE(decoded(), QSize(120, 120));
    for (const auto &[screen, pixels] : { std::pair { 1, 240 }, { 0, 120 } }) {
        m_browser->window().move(screens.at(screen)->geometry().topLeft() + QPoint(10, 10));
        QTRY_COMPARE(button->devicePixelRatioF(), screens.at(screen)->devicePixelRatio());
        button->update();
        QTRY_COMPARE(decoded(), QSize(pixels, pixels));
    }
}

int main(int argc, char *argv[])
{
    const QTemporaryDir folder;
    QFile screens(folder.filePath(u"screens.json"_s));
    if (!screens.open(QIODevice::WriteOnly)) {
        return 1;
    }
    screens.write(R"({ "screens": [
        { "name": "left", "x": 0, "y": 0, "width": 1600, "height": 1000, "dpr": 1 },
        { "name": "right", "x": 1600, "y": 0, "width": 1600, "height": 1000, "dpr": 2 } ] })");
    screens.close();
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + QFile::encodeName(screens.fileName()));
    QApplication application(argc, argv);
    prepareTestApplication(application);
    TestScreenChange test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_screenchange.moc"
