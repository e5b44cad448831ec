#include "browser/canvascolors.h"
#include "browser/canvastexts.h"
#include "store/colorscheme.h"

#include <QTest>

using namespace Qt::StringLiterals;

class TestCanvasTexts final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pageLabel_data();
    void pageLabel();
    void progressLabelBeginsWithABlankWithoutAPageLabel();
    void captionCountsEntriesOfTheClass();
    void oneEntryIsAnEintrag();
    void listingCaptionNamesClassAndNumber();
    void captionsTakeTextsAsTheyAre();
    void controlCharactersBecomeBlanks();
    void endlessTextsAreCutBetweenCharacters();
    void datesAreGerman();
    void picturesAreCounted();
    void everyCardTextIsReadableInAllBackgrounds_data();
    void everyCardTextIsReadableInAllBackgrounds();
};

void TestCanvasTexts::pageLabel_data()
{
    QTest::addColumn<int>("entries");
    QTest::addColumn<int>("position");
    QTest::addColumn<bool>("once");
    QTest::addColumn<QString>("label");
    QTest::newRow("40 fit on one page") << 40 << 1 << false << QString();
    QTest::newRow("41 first page") << 41 << 1 << false << u"40 von"_s;
    QTest::newRow("41 first page once") << 41 << 1 << true << u"20*n von"_s;
    QTest::newRow("41 second page") << 41 << 41 << false << u"Weitere 40 von"_s;
    QTest::newRow("second page once") << 100 << 45 << true << u"Weitere 20*n von"_s;
    QTest::newRow("position 2 is a further page") << 100 << 2 << false << u"Weitere 40 von"_s;
    QTest::newRow("position below 1") << 100 << 0 << false << QString();
}

void TestCanvasTexts::pageLabel()
{
    QFETCH(int, entries);
    QFETCH(int, position);
    QFETCH(bool, once);
    QTEST(CanvasTexts::pageLabel(entries, position, once), "label");
}

void TestCanvasTexts::progressLabelBeginsWithABlankWithoutAPageLabel()
{
    QCOMPARE(CanvasTexts::progressLabel(12, 1, false), u" 12 Einträge laden..."_s);
    QCOMPARE(CanvasTexts::progressLabel(41, 1, false), u"40 von 41 Einträge laden..."_s);
}

void TestCanvasTexts::captionCountsEntriesOfTheClass()
{
    QCOMPARE(CanvasTexts::resultCaption(41, u"Re 4/4"_s), u"41 Einträge der Baureihe Re 4/4"_s);
    QCOMPARE(CanvasTexts::resultCaption(0, u"Re 4/4"_s), u"0 Einträge der Baureihe Re 4/4"_s);
}

void TestCanvasTexts::oneEntryIsAnEintrag()
{
    QCOMPARE(CanvasTexts::resultCaption(1, u"Re 4/4"_s), u"1 Eintrag der Baureihe Re 4/4"_s);
}

void TestCanvasTexts::listingCaptionNamesClassAndNumber()
{
    QCOMPARE(CanvasTexts::listingCaption(3, u"Re 4/4"_s, u"11108"_s), u"3 Einträge der Re 4/4 11108"_s);
}

void TestCanvasTexts::captionsTakeTextsAsTheyAre()
{
    QCOMPARE(CanvasTexts::resultCaption(2, u"%1 <b>%2</b>"_s), u"2 Einträge der Baureihe %1 <b>%2</b>"_s);
    QCOMPARE(CanvasTexts::listingCaption(2, u"%3"_s, u"7%2"_s), u"2 Einträge der %3 7%2"_s);
}

void TestCanvasTexts::controlCharactersBecomeBlanks()
{
    QCOMPARE(CanvasTexts::shown(u"a\nb\tc\u2028d\u2029e\0f"_s), u"a b c d e f"_s);
}

void TestCanvasTexts::endlessTextsAreCutBetweenCharacters()
{
    const QString locomotive = u"🚂"_s; // two code units
    const QString text = CanvasTexts::shown(u"x"_s + locomotive.repeated(500));
    QVERIFY(text.size() <= 301); // with the sign that it goes on
    QVERIFY(text.endsWith(locomotive + u'…'));
    QCOMPARE(CanvasTexts::shown(u"a"_s.repeated(300)), u"a"_s.repeated(300));
}

void TestCanvasTexts::datesAreGerman()
{
    QCOMPARE(CanvasTexts::date(QDate(1987, 5, 7)), u"07.05.1987"_s);
    QCOMPARE(CanvasTexts::date(QDate()), u"Datum unbekannt"_s);
}

void TestCanvasTexts::picturesAreCounted()
{
    QCOMPARE(CanvasTexts::pictureCount(0), u"keine Bilder"_s);
    QCOMPARE(CanvasTexts::pictureCount(1), u"1 Bild"_s);
    QCOMPARE(CanvasTexts::picturesShown(0, 2), u"2 Bilder"_s);
    QCOMPARE(CanvasTexts::picturesShown(2, 6), u"Bilder 3 und 4 von 6"_s);
    QCOMPARE(CanvasTexts::picturesShown(4, 5), u"Bild 5 von 5"_s);
}

void TestCanvasTexts::everyCardTextIsReadableInAllBackgrounds_data()
{
    QTest::addColumn<QColor>("background");
    for (const QColor &color : ColorScheme::palette()) {
        QTest::addRow("%s", qUtf8Printable(color.name())) << color;
    }
}

void TestCanvasTexts::everyCardTextIsReadableInAllBackgrounds()
{
    QFETCH(QColor, background);
    const ColorScheme scheme(background);
    const CardColors card(scheme);
    QVERIFY(contrast(card.ground, card.text) >= 4.5);
    QVERIFY(contrast(card.ground, card.accent) >= 4.5);
    QVERIFY(contrast(background, scheme.textColor()) >= 4.5); // the caption
}

QTEST_APPLESS_MAIN(TestCanvasTexts)
#include "tst_canvastexts.moc"
