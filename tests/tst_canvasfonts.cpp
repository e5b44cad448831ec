#include "store/colorsetting.h"
#include "tests/support/testcatalogue.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QFontDatabase>
#include <QGraphicsRectItem>
#include <QGraphicsScene>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

class TestCanvasFonts final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_catalogue = std::make_unique<TestCatalogue>(); }
    void cleanup();

    void preferredFamiliesKeepTheirOrder();
    void fontRecordTakesThePixelSize();
    void fontsAreFoundByTheirPlace();
    void divisorIsThatOfTheFirstEqualFont();
    void charMetricsDivideTheWidthOnly();
    void itemsAreDeletedTogether();
    void itemsOfOneCanvasAreDeleted();
    void endOfTheSettingsIsLogged();

private:
    std::unique_ptr<TestCatalogue> m_catalogue;
};

void TestCanvasFonts::cleanup()
{
    ColorSetting::saveAndRelease();
    m_catalogue.reset();
}

void TestCanvasFonts::preferredFamiliesKeepTheirOrder()
{
    const ColorSetting &settings = ColorSetting::instance();
    QCOMPARE(settings.preferredFamilies(),
        QStringList({ u"IrisUPC"_s, u"French Script MT"_s, u"Comic Sans MS"_s, u"Bradley Hand ITC"_s, u"Batang"_s,
            u"Arabic Typesetting"_s, u"Arial"_s }));
    QCOMPARE(settings.fontFamily(), u"IrisUPC"_s);
    QCOMPARE(settings.families(), QFontDatabase::families(QFontDatabase::Latin));
}

void TestCanvasFonts::fontRecordTakesThePixelSize()
{
    QFont font(u"Arial"_s, 12);
    const FontRecord record(font, 30, { 1, 1, 1, 10 }, u"bold"_s, 12, 26);
    QVERIFY(record.valid);
    QCOMPARE(record.font.pixelSize(), 26);
    QCOMPARE(record.divisor, 30);
    QCOMPARE(record.rect, QRectF(1, 1, 1, 10));
    QCOMPARE(record.styleWord, u"bold"_s);
    QCOMPARE(record.pointSize, 12);
    QCOMPARE(record.pixelSize, 26);
    font.setPixelSize(26);
    QCOMPARE(FontRecord(font, 30, { 1, 1, 1, 10 }, u"bold"_s, 12, 26).font, font);
}

void TestCanvasFonts::fontsAreFoundByTheirPlace()
{
    ColorSetting &settings = ColorSetting::instance();
    settings.addFont(QFont(u"Arial"_s), 30, { 1, 1, 1, 10 }, u"bold"_s, 12, 26);
    settings.addFont(QFont(u"Batang"_s), 30, { 1, 1, 1, 10 }, u"italic"_s, 12, 20);
    QCOMPARE(settings.fonts().size(), 2);
    QCOMPARE(settings.fontAt(0).family(), u"Arial"_s);
    QCOMPARE(settings.fontAt(0).pixelSize(), 26);
    QCOMPARE(settings.fontAt(1).family(), u"Batang"_s);
    QCOMPARE(settings.fontAt(2), QFont(u"IrisUPC"_s));
    QCOMPARE(settings.fontAt(-1), QFont(u"IrisUPC"_s));
}

void TestCanvasFonts::divisorIsThatOfTheFirstEqualFont()
{
    ColorSetting &settings = ColorSetting::instance();
    QFont font(u"Arial"_s);
    font.setPixelSize(26);
    QCOMPARE(settings.divisorOf(font), 0);
    settings.addFont(QFont(u"Batang"_s), 40, { 1, 1, 1, 10 }, u"bold"_s, 12, 26);
    settings.addFont(font, 30, { 1, 1, 1, 10 }, u"bold"_s, 12, 26);
    settings.addFont(font, 50, { 1, 1, 1, 10 }, u"bold"_s, 12, 26);
    QCOMPARE(settings.divisorOf(font), 30);
    font.setPixelSize(27);
    QCOMPARE(settings.divisorOf(font), 0);
}

void TestCanvasFonts::charMetricsDivideTheWidthOnly()
{
    ColorSetting &settings = ColorSetting::instance();
    settings.addFont(QFont(u"Arial"_s), 30, { 1, 1, 60, 10 }, u"bold"_s, 12, 26);
    QCOMPARE(settings.charMetrics(0), QSizeF(2, 10));
    QCOMPARE(settings.charMetrics(1), QSizeF(0, 0));
    QCOMPARE(settings.charMetrics(-1), QSizeF(0, 0));
}

void TestCanvasFonts::itemsAreDeletedTogether()
{
    QGraphicsScene canvas;
    ColorSetting &settings = ColorSetting::instance();
    for (int i = 0; i < 3; ++i) {
        settings.addItem(canvas.addRect(0, 0, 1, 1));
    }
    settings.clearItems();
    QVERIFY(settings.items().isEmpty());
    QVERIFY(canvas.items().isEmpty());
    settings.clearItems();

    settings.addItem(canvas.addRect(0, 0, 1, 1));
    ColorSetting::saveAndRelease();
    QVERIFY(canvas.items().isEmpty());
}

void TestCanvasFonts::itemsOfOneCanvasAreDeleted()
{
    QGraphicsScene first;
    QGraphicsScene second;
    ColorSetting &settings = ColorSetting::instance();
    settings.addItem(first.addRect(0, 0, 1, 1));
    settings.addItem(second.addRect(0, 0, 1, 1));
    ColorSetting::clearItemsOf(&first);
    QVERIFY(first.items().isEmpty());
    QCOMPARE(settings.items(), second.items());
    ColorSetting::saveAndRelease();
    ColorSetting::clearItemsOf(&second); // a canvas that is destroyed last finds the settings gone
    QVERIFY(second.items().isEmpty());
}

void TestCanvasFonts::endOfTheSettingsIsLogged()
{
    ColorSetting::instance().addFont(QFont(u"Arial"_s), 30, { 1, 1, 60, 10 }, u"bold"_s, 12, 26);
    QTest::ignoreMessage(QtDebugMsg, "\"Arial\" - W/H 1 Char: 2 10 - Ps: 26");
    QTest::ignoreMessage(QtDebugMsg, "ColorSetting Dtor done!");
    ColorSetting::saveAndRelease();
}

BAHNITO_TEST_MAIN(TestCanvasFonts)
#include "tst_canvasfonts.moc"
