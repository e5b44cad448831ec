#include "store/colorsetting.h"
#include "store/statement.h"
#include "tests/support/otherconnection.h"
#include "tests/support/testcatalogue.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

class TestColorSetting final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_catalogue = std::make_unique<TestCatalogue>(); }
    void cleanup();

    void newCatalogueStartsGrayAndLight();
    void backgroundGivesTheOtherColours_data();
    void backgroundGivesTheOtherColours();
    void otherColourModelsMeanTheSameColour();
    void paletteKeepsItsOrder();
    void storedBackgroundIsTaken_data();
    void storedBackgroundIsTaken();
    void settingIsReadByCategoryAndName();
    void settingIsWrittenOnlyWhereARowIs();
    void failedWriteIsOnlyLogged();
    void storedChoicesAreLoaded();
    void choicesThatCouldNotBeReadStayAsTheyAre();
    void backgroundChosenUnreadIsStored();
    void unknownChoiceYieldsTheLastOne();
    void choicesReachTheDatabaseOnlyAtTheEnd();
    void foreignBackgroundIsSavedAsTheFirst();
    void lockedCatalogueKeepsItsSettings();
    void releasedSettingsAreMadeAnew();
    void pictureStoreIsReady();

private:
    [[nodiscard]] int stored(const QString &name) const;
    static void store(const QString &name, int value);

    std::unique_ptr<TestCatalogue> m_catalogue;
};

void TestColorSetting::cleanup()
{
    ColorSetting::saveAndRelease();
    m_catalogue.reset();
}

int TestColorSetting::stored(const QString &name) const
{
    return m_catalogue->value(u"SELECT value FROM settings WHERE name = '%1'"_s.arg(name)).toInt();
}

void TestColorSetting::store(const QString &name, int value)
{
    QVERIFY(executeWrite(u"UPDATE settings SET value = %1 WHERE name = '%2'"_s.arg(QString::number(value), name)).done);
}

void TestColorSetting::newCatalogueStartsGrayAndLight()
{
    const ColorSetting &settings = ColorSetting::instance();
    QCOMPARE(settings.scheme().background(), QColor(Qt::gray));
    QCOMPARE(settings.scheme().mode(), ColorScheme::Light);
    QCOMPARE(settings.backgroundIndex(), 0);
    for (const QString &name : { u"SingleOrMulti"_s, u"InclPictures"_s, u"Sort"_s }) {
        QCOMPARE(settings.queryValue(name), 0);
    }
    QVERIFY(settings.fonts().isEmpty());
    QVERIFY(settings.items().isEmpty());
    QVERIFY(settings.view() == nullptr);
    QVERIFY(!settings.once());
}

void TestColorSetting::backgroundGivesTheOtherColours_data()
{
    QTest::addColumn<QColor>("background");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QColor>("box");
    QTest::addColumn<QColor>("text");
    QTest::addColumn<QColor>("accent");
    const QColor box(222, 222, 222);
    const QColor text(12, 15, 118);
    QTest::newRow("black") << QColor(Qt::black) << 102 << QColor(Qt::darkGray) << QColor(Qt::white)
                           << QColor(Qt::white);
    QTest::newRow("gray") << QColor(Qt::gray) << 101 << box << text << QColor(Qt::darkBlue);
    QTest::newRow("white") << QColor(Qt::white) << 101 << box << text << QColor(Qt::darkBlue);
    QTest::newRow("light blue") << QColor(185, 230, 255) << 101 << box << text << QColor(Qt::darkBlue);
    QTest::newRow("light yellow") << QColor(250, 255, 175) << 101 << box << text << QColor(Qt::darkYellow);
    QTest::newRow("light green") << QColor(145, 255, 200) << 101 << box << text << QColor(Qt::darkGreen);
    QTest::newRow("any other") << QColor(1, 2, 3) << 101 << box << text << QColor(Qt::white);
}

void TestColorSetting::backgroundGivesTheOtherColours()
{
    QFETCH(const QColor, background);
    ColorSetting &settings = ColorSetting::instance();
    settings.setBackground(background);
    QCOMPARE(settings.scheme().background(), background);
    QTEST(int(settings.scheme().mode()), "mode");
    QTEST(settings.scheme().boxColor(), "box");
    QTEST(settings.scheme().textColor(), "text");
    QTEST(settings.scheme().accentColor(), "accent");
}

void TestColorSetting::otherColourModelsMeanTheSameColour()
{
    ColorSetting &settings = ColorSetting::instance();
    settings.setBackground(QColor::fromHsv(0, 0, 0));
    QCOMPARE(settings.scheme().mode(), ColorScheme::Dark);
    QCOMPARE(settings.backgroundIndex(), 2);
}

void TestColorSetting::paletteKeepsItsOrder()
{
    const QList<QColor> expected { QColor(Qt::gray), QColor(Qt::white), QColor(Qt::black), QColor(185, 230, 255),
        QColor(250, 255, 175), QColor(145, 255, 200) };
    QCOMPARE(ColorScheme::palette(), expected);
    ColorSetting &settings = ColorSetting::instance();
    for (int i = 0; i < expected.size(); ++i) {
        settings.setBackground(expected.at(i));
        QCOMPARE(settings.backgroundIndex(), i);
    }
}

void TestColorSetting::storedBackgroundIsTaken_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QColor>("background");
    QTest::newRow("black") << 2 << QColor(Qt::black);
    QTest::newRow("last") << 5 << QColor(145, 255, 200);
    QTest::newRow("beyond the palette") << 6 << QColor(Qt::gray);
    QTest::newRow("negative") << -1 << QColor(Qt::gray);
}

void TestColorSetting::storedBackgroundIsTaken()
{
    QFETCH(const int, index);
    store(u"BG_COLOR"_s, index);
    QTEST(ColorSetting::instance().scheme().background(), "background");
    QCOMPARE(ColorSetting::instance().scheme().mode(), index == 2 ? ColorScheme::Dark : ColorScheme::Light);
}

void TestColorSetting::settingIsReadByCategoryAndName()
{
    store(u"Sort"_s, 2);
    QCOMPARE(ColorSetting::readSetting(u"QUERY-Type"_s, u"Sort"_s), 2);
    QCOMPARE(ColorSetting::readSetting(u"COLOR-SETTING"_s, u"Sort"_s), 0);
    QCOMPARE(ColorSetting::readSetting(u"QUERY-Type"_s, u"Other"_s), 0);
    QCOMPARE(ColorSetting::readSetting(u"it's"_s, u"broken"_s), 0);
}

void TestColorSetting::settingIsWrittenOnlyWhereARowIs()
{
    ColorSetting::writeSetting(u"QUERY-Type"_s, u"Sort"_s, 2);
    ColorSetting::writeSetting(u"QUERY-Type"_s, u"Other"_s, 1);
    ColorSetting::writeSetting(u"COLOR-SETTING"_s, u"InclPictures"_s, 1);
    QCOMPARE(stored(u"Sort"_s), 2);
    QCOMPARE(stored(u"InclPictures"_s), 0);
    QCOMPARE(m_catalogue->value(u"SELECT COUNT(*) FROM settings"_s).toInt(), 4);
}

void TestColorSetting::failedWriteIsOnlyLogged()
{
    QVERIFY(executeWrite(u"ALTER TABLE settings RENAME TO away"_s).done);
    QTest::ignoreMessage(QtDebugMsg, QRegularExpression(u"no such table"_s));
    ColorSetting::writeSetting(u"QUERY-Type"_s, u"Sort"_s, 2);
    QCOMPARE(ColorSetting::instance().queryValue(u"Sort"_s), 0); // and a missing table reads as 0
}

void TestColorSetting::storedChoicesAreLoaded()
{
    store(u"SingleOrMulti"_s, 1);
    store(u"InclPictures"_s, 2);
    store(u"Sort"_s, 3);
    const ColorSetting &settings = ColorSetting::instance();
    QCOMPARE(settings.queryValue(u"SingleOrMulti"_s), 1);
    QCOMPARE(settings.queryValue(u"InclPictures"_s), 2);
    QCOMPARE(settings.queryValue(u"Sort"_s), 3);
}

void TestColorSetting::choicesThatCouldNotBeReadStayAsTheyAre()
{
    for (const QString &name : { u"SingleOrMulti"_s, u"InclPictures"_s, u"Sort"_s, u"BG_COLOR"_s }) {
        store(name, 2);
    }
    {
        const OtherConnection other(u"BEGIN EXCLUSIVE"_s);
        QVERIFY(other.works());
        QCOMPARE(ColorSetting::instance().queryValue(u"InclPictures"_s), 0);
    }
    ColorSetting::instance().setQueryValue(u"Sort"_s, 1);
    ColorSetting::saveAndRelease();
    QCOMPARE(stored(u"SingleOrMulti"_s), 2);
    QCOMPARE(stored(u"InclPictures"_s), 2);
    QCOMPARE(stored(u"Sort"_s), 1); // a choice of the user's
    QCOMPARE(stored(u"BG_COLOR"_s), 2);
}

void TestColorSetting::backgroundChosenUnreadIsStored()
{
    {
        const OtherConnection other(u"BEGIN EXCLUSIVE"_s);
        ColorSetting::instance().setBackground(Qt::white);
    }
    ColorSetting::saveAndRelease();
    QCOMPARE(stored(u"BG_COLOR"_s), 1);
}

void TestColorSetting::unknownChoiceYieldsTheLastOne()
{
    ColorSetting &settings = ColorSetting::instance();
    settings.setQueryValue(u"SingleOrMulti"_s, 1);
    settings.setQueryValue(u"Sort"_s, 2);
    settings.setQueryValue(u"Unknown"_s, 7);
    QCOMPARE(settings.queryValue(u"Unknown"_s), 2);
    QCOMPARE(settings.queryValue(u"sort"_s), 2);
    QCOMPARE(settings.queryValue(u"SingleOrMulti"_s), 1);
    QCOMPARE(settings.queryValue(u"InclPictures"_s), 0);
}

void TestColorSetting::choicesReachTheDatabaseOnlyAtTheEnd()
{
    ColorSetting &settings = ColorSetting::instance();
    settings.setQueryValue(u"SingleOrMulti"_s, 1);
    settings.setQueryValue(u"InclPictures"_s, 1);
    settings.setQueryValue(u"Sort"_s, 2);
    settings.setBackground(QColor(250, 255, 175));
    QCOMPARE(m_catalogue->value(u"SELECT SUM(value) FROM settings"_s).toInt(), 0);
    ColorSetting::saveAndRelease();
    QCOMPARE(stored(u"BG_COLOR"_s), 4);
    QCOMPARE(stored(u"SingleOrMulti"_s), 1);
    QCOMPARE(stored(u"InclPictures"_s), 1);
    QCOMPARE(stored(u"Sort"_s), 2);
}

void TestColorSetting::foreignBackgroundIsSavedAsTheFirst()
{
    store(u"BG_COLOR"_s, 3);
    ColorSetting::instance().setBackground(QColor(1, 2, 3));
    QCOMPARE(ColorSetting::instance().backgroundIndex(), 0);
    ColorSetting::saveAndRelease();
    QCOMPARE(stored(u"BG_COLOR"_s), 0);
}

void TestColorSetting::lockedCatalogueKeepsItsSettings()
{
    ColorSetting::instance().setQueryValue(u"Sort"_s, 2);
    {
        QSqlDatabase other = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"other"_s);
        other.setDatabaseName(u"./Data/bahnakte.dat"_s);
        QVERIFY(other.open());
        QVERIFY(QSqlQuery(other).exec(u"BEGIN IMMEDIATE"_s));
        QTest::ignoreMessage(QtDebugMsg, QRegularExpression(u"locked"_s));
        ColorSetting::saveAndRelease();
    }
    QSqlDatabase::removeDatabase(u"other"_s);
    QCOMPARE(stored(u"Sort"_s), 0);
}

void TestColorSetting::releasedSettingsAreMadeAnew()
{
    ColorSetting::instance().setQueryValue(u"Sort"_s, 2);
    ColorSetting::instance().setOnce(true);
    ColorSetting::saveAndRelease();
    ColorSetting::saveAndRelease(); // there is nothing to save any more
    store(u"Sort"_s, 1);
    QCOMPARE(ColorSetting::instance().queryValue(u"Sort"_s), 1);
    QVERIFY(!ColorSetting::instance().once());
}

void TestColorSetting::pictureStoreIsReady()
{
    QCOMPARE(ColorSetting::instance().pictureStore().currentFolder(), u"Folder001"_s);
}

BAHNITO_TEST_MAIN(TestColorSetting)
#include "tst_colorsetting.moc"
