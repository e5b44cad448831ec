#include "app/backgroundchooser.h"
#include "app/startup.h"
#include "browser/canvascolors.h"
#include "forms/dialogstyle.h"
#include "forms/locgroupform.h"
#include "forms/locmodelform.h"
#include "forms/locpictureform.h"
#include "forms/locseenform.h"
#include "forms/picturepreview.h"
#include "search/messagebox.h"
#include "search/messagedialog.h"
#include "search/optiondialog.h"
#include "store/catalogquery.h"
#include "store/colorsetting.h"
#include "tests/support/browserwindow.h"
#include "tests/support/modalscript.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QDateEdit>
#include <QImageReader>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>
#include <QSet>
#include <QTableView>
#include <QTest>
#include <QToolTip>

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

const QColor Magenta(200, 0, 200);

QString toolTip(const QWidget &dialog, const QString &name)
{
    return dialog.findChild<QWidget *>(name)->toolTip();
}

} // namespace

Q_DECLARE_METATYPE(std::function<QDialog *()>)

/// How windows, dialogs and boxes look beyond the texts and states that their own tests know.
class TestWindowLooks final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void colourButtonIconHasItsGeometry();
    void colourMenuIconIsFullOfItsColour();
    void aboutBoxShowsItsWholeText();
    void dialogsHaveTheIconOfTheWorkingFolder_data();
    void dialogsHaveTheIconOfTheWorkingFolder();
    void boxesHaveTheProgramsOwnIcons_data();
    void boxesHaveTheProgramsOwnIcons();
    void boxWithoutAWindowHasTheIconOfTheWorkingFolder();
    void programIconHasASizeForEveryPlace();
    void toolBarIconsStandOut_data();
    void toolBarIconsStandOut();
    void pictureButtonsStandUnderTheMiddleOfThePreview();
    void everythingHasOneFont();
    void disabledFieldsStayReadable();
    void buttonsSayWhatTheyNeed();
    void longNamesAreWholeInToolTips();
    void longPathsAreWholeInToolTips();
    void emptyPreviewSaysSo();

private:
    [[nodiscard]] QList<QSqlRecord> classes() const;

    std::unique_ptr<TestCatalogue> m_catalogue;
    int m_group = 0;
    int m_model = 0;
};

void TestWindowLooks::initTestCase()
{
    Startup::speakGerman(*qApp);
    Startup::dress();
}

void TestWindowLooks::init()
{
    m_catalogue = std::make_unique<TestCatalogue>();
    m_group = m_catalogue->addGroup(QString(38, u'W'), u"./Data/Pictures/AuxFolder/2024321405348.jpg"_s);
    m_model = m_catalogue->addModel(u"<b>"_s + QString(30, u'W'), m_group);
}

void TestWindowLooks::cleanup()
{
    ColorSetting::saveAndRelease();
    m_catalogue.reset();
}

QList<QSqlRecord> TestWindowLooks::classes() const
{
    QList<QSqlRecord> classes;
    CatalogQuery::instance().modelsOfGroup(classes, m_group);
    return classes;
}

void TestWindowLooks::colourButtonIconHasItsGeometry()
{
    const QIcon icon = colorButtonIcon(Magenta);
    QCOMPARE(icon.availableSizes(), QList<QSize> { QSize(120, 80) });
    const QImage image = icon.pixmap(120, 80).toImage();
    for (int y = 60; y < 80; ++y) { // the bar of colour
        QCOMPARE(image.pixelColor(0, y), Magenta);
        QCOMPARE(image.pixelColor(87, y), Magenta);
        QCOMPARE(image.pixelColor(88, y).alpha(), 0);
    }
    QImage drawing(120, 80, QImage::Format_ARGB32_Premultiplied);
    drawing.fill(Qt::transparent);
    QPainter painter(&drawing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(QRect(0, 0, 90, 60), QImage(u":/images/BGround.png"_s), QRect(0, 0, 100, 67));
    painter.end();
    const QRect above(0, 0, 120, 60);
    QCOMPARE(image.copy(above).convertToFormat(QImage::Format_ARGB32),
        drawing.copy(above).convertToFormat(QImage::Format_ARGB32));
    QVERIFY(image.pixelColor(45, 30).alpha() > 0);
    QCOMPARE(image.pixelColor(91, 30).alpha(), 0);
}

void TestWindowLooks::colourMenuIconIsFullOfItsColour()
{
    const QIcon icon = colorMenuIcon(Magenta);
    QCOMPARE(icon.availableSizes(), QList<QSize> { QSize(75, 50) });
    QImage full(75, 50, QImage::Format_ARGB32);
    full.fill(Magenta);
    QCOMPARE(icon.pixmap(75, 50).toImage().convertToFormat(QImage::Format_ARGB32), full);
}

void TestWindowLooks::aboutBoxShowsItsWholeText()
{
    const QString text
        = u"Version 1.1.<p><b>Einleitung</b><p>Die Anwendung soll dazu dienen, dass Fotos einer bereits "
          "vorliegenden Fotosammlung, anhand von Angaben wie Baureihe und Nummer zusammengeführt werden "
          "können. Dies wird damit erreicht, dass ein einzelnes sogenanntes Fotoereignis dokumentiert und mit "
          "den dazugehörenden Fotos erfasst wird. Somit wird gewährleistet, dass diese, auch 'Einträge' "
          "genannt, nach gewissen Suchkriterien dargestellt werden können. Dem Benutzer wird damit "
          "ermöglicht, dass er z.B. sämtliche Einträge einer Lokomotive mit einer bestimmten Nummer, die er "
          "im Laufe der Zeit mehrere Male abgelichtet hat, auf einen Blick zu sehen "
          "bekommt.</p><p><b>Aufbaustruktur</b><p>Damit eine optimale Übersicht erreicht werden kann, wird "
          "folgende Aufbaustruktur vorgegeben: Baureihe-Gruppen welche eine oder mehrere Baureihen "
          "beinhalten. Z.B. kann eine Gruppe mit 'Krokodile' benannt werden, darunter sind dann Baureihen wie "
          "'Ce 6/8, Be 6/8 etc.' eingetragen. Unter einer 'Baureihe' werden dann die entsprechenden "
          "'Einträge' erfasst. Ein 'Eintrag' hält Name, Nummer, Ort, Datum und einen bis 200 Zeichen langen "
          "Kommentar fest, sowie max. 6 Fotos.</p> "_s;
    const BrowserWindow browser;
    ModalScript script;
    script.box(u"Info zu Bahnito App"_s, text);
    browser.window().aboutApplication();
    QCOMPARE(script.problems(), QStringList());
}

void TestWindowLooks::dialogsHaveTheIconOfTheWorkingFolder_data()
{
    QTest::addColumn<std::function<QDialog *()>>("dialog");
    const auto add = [](const char *name, std::function<QDialog *()> make) { QTest::newRow(name) << std::move(make); };
    add("search", [this] { return new OptionDialog(classes(), m_group); });
    add("entry", [this] { return new LocseenForm(-1, m_model, nullptr); });
    add("picture", [] { return new LocPictureForm(-1, -1, nullptr); });
    add("groups", [] { return new LocGroupForm; });
    add("move", [this] { return new LocGroupForm(m_model, u"Ce 6/8"_s, nullptr); });
    add("classes", [this] { return new LocModelForm(m_group, nullptr); });
}

void TestWindowLooks::dialogsHaveTheIconOfTheWorkingFolder()
{
    QFETCH(std::function<QDialog *()>, dialog);
    const std::unique_ptr<QDialog> without(dialog());
    QVERIFY(without->windowIcon().pixmap(32, 32).isNull());
    QImage drawing(32, 32, QImage::Format_ARGB32);
    drawing.fill(Magenta);
    QVERIFY(drawing.save(u"./Lok.ico"_s, "ICO"));
    const std::unique_ptr<QDialog> with(dialog());
    QCOMPARE(with->windowIcon().pixmap(32, 32).toImage().pixelColor(16, 16), Magenta);
}

void TestWindowLooks::boxesHaveTheProgramsOwnIcons_data()
{
    QTest::addColumn<std::function<void()>>("show");
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("image");
    const auto add = [](const char *name, std::function<void()> show, QMessageBox::Icon kind, const QString &image) {
        QTest::newRow(name) << std::move(show) << int(kind) << image;
    };
    const QString warning = u":/images/Warnung.png"_s;
    add(
        "warning", [] { MessageBox::warning(nullptr, u"t"_s, u"x"_s); }, QMessageBox::Warning, warning);
    add(
        "question", [] { (void)MessageBox::confirm(nullptr, u"t"_s, u"x"_s); }, QMessageBox::Warning, warning);
    add(
        "information", [] { MessageBox::information(nullptr, u"t"_s, u"x"_s); }, QMessageBox::Information,
        u":/images/Hinweis.png"_s);
}

void TestWindowLooks::boxesHaveTheProgramsOwnIcons()
{
    QFETCH(std::function<void()>, show);
    QFETCH(int, kind);
    QFETCH(QString, image);
    int seenKind = 0;
    QPixmap seenIcon;
    bool areButtonsPlain = true;
    ModalScript script;
    script.then([&](QWidget *widget) {
        auto *box = qobject_cast<QMessageBox *>(widget);
        seenKind = box->icon();
        seenIcon = box->iconPixmap();
        const QList<QAbstractButton *> buttons = box->buttons();
        areButtonsPlain = std::all_of(
            buttons.begin(), buttons.end(), [](const QAbstractButton *button) { return button->icon().isNull(); });
        box->reject();
    });
    show();
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(seenKind, kind);
    QVERIFY(seenIcon.width() >= 32);
    QCOMPARE(seenIcon.toImage(), QIcon(image).pixmap(seenIcon.size()).toImage());
    QVERIFY(QImage(image).width() >= 3 * 32); // still sharp on a screen of scale 3
    QVERIFY(areButtonsPlain);
}

void TestWindowLooks::boxWithoutAWindowHasTheIconOfTheWorkingFolder()
{
    QImage drawing(32, 32, QImage::Format_ARGB32);
    drawing.fill(Magenta);
    QVERIFY(drawing.save(u"./Lok.ico"_s, "ICO"));
    QWidget window;
    QPixmap green(32, 32);
    green.fill(Qt::green);
    window.setWindowIcon(green);
    QList<QColor> colors;
    ModalScript script;
    for (int boxes = 0; boxes < 3; ++boxes) {
        script.then([&colors](QWidget *box) {
            colors.append(box->windowIcon().pixmap(32, 32).toImage().pixelColor(16, 16));
            box->close();
        });
    }
    const MessageDialog dialog(u"t"_s, u"x"_s);
    MessageBox::warning(nullptr, u"t"_s, u"x"_s);
    MessageBox::warning(&window, u"t"_s, u"x"_s);
    QCOMPARE(script.problems(), QStringList());
    QCOMPARE(colors, (QList<QColor> { Magenta, Magenta, Qt::green }));
}

void TestWindowLooks::programIconHasASizeForEveryPlace()
{
    QImageReader reader(QApplication::applicationDirPath() + u"/Lok.ico"_s);
    QSet<int> widths;
    for (int i = 0; i < reader.imageCount() && reader.jumpToImage(i); ++i) {
        const QImage image = reader.read();
        QCOMPARE(image.width(), image.height());
        QVERIFY(image.hasAlphaChannel());
        widths.insert(image.width());
    }
    for (const int width : { 16, 32, 48, 256 }) { // title bar, task bar, desktop, file manager
        QVERIFY2(widths.contains(width), qPrintable(QString::number(width)));
    }
}

void TestWindowLooks::toolBarIconsStandOut_data()
{
    QTest::addColumn<QColor>("ground");
    QTest::newRow("light") << QColor(239, 239, 239);
    QTest::newRow("dark") << QColor(50, 50, 50);
}

void TestWindowLooks::toolBarIconsStandOut()
{
    QFETCH(QColor, ground);
    for (const QString &name : { u"exit"_s, u"br-gruppe"_s, u"User"_s, u"BGround"_s }) {
        const QImage icon = QIcon(u":/images/%1.png"_s.arg(name)).pixmap(48, 48).toImage();
        QImage drawn(icon.size(), QImage::Format_RGB32);
        drawn.fill(ground);
        QPainter(&drawn).drawImage(0, 0, icon);
        int clear = 0;
        for (int y = 0; y < drawn.height(); ++y) {
            for (int x = 0; x < drawn.width(); ++x) {
                clear += contrast(drawn.pixelColor(x, y), ground) >= 3 ? 1 : 0; // what WCAG 2 asks of symbols
            }
        }
        QVERIFY2(clear >= drawn.width() * drawn.height() / 6, qPrintable(u"%1: %2"_s.arg(name).arg(clear)));
    }
}

void TestWindowLooks::pictureButtonsStandUnderTheMiddleOfThePreview()
{
    LocGroupForm form;
    form.show();
    const auto placeOf = [&form](const QString &name) {
        const auto *widget = form.findChild<QWidget *>(name);
        return QRect(widget->mapTo(&form, QPoint(0, 0)), widget->size());
    };
    const QRect preview = placeOf(u"preview"_s);
    const int left = placeOf(u"showPictureButton"_s).left() - preview.left();
    const int right = preview.right() - placeOf(u"changePictureButton"_s).right();
    QVERIFY(left >= 0);
    QVERIFY2(std::abs(left - right) <= 1, qPrintable(u"%1 and %2"_s.arg(left).arg(right)));
}

void TestWindowLooks::everythingHasOneFont()
{
    const QFont wanted = dialogFont();
    const BrowserWindow browser;
    const LocGroupForm form;
    QMessageBox box;
    for (const QFont &font : { QApplication::font(), QToolTip::font(), browser.window().font(), box.font(),
             form.findChild<QLineEdit *>()->font(), QApplication::font("QMenu"), QApplication::font("QLabel") }) {
        QCOMPARE(font.family(), wanted.family());
        QCOMPARE(font.pointSize(), 9);
    }
}

void TestWindowLooks::disabledFieldsStayReadable()
{
    const int entry = m_catalogue->addEntry(u"14253"_s, m_model);
    const LocseenForm entryForm(entry, -1, nullptr);
    const LocPictureForm pictureForm(entry, -1, nullptr);
    const OptionDialog search(classes(), m_group);
    for (const auto &[dialog, name] : { std::pair<const QWidget *, QString> { &entryForm, u"numberEdit"_s },
             { &entryForm, u"startDateEdit"_s }, { &pictureForm, u"copyPathEdit"_s },
             { &pictureForm, u"originalPathEdit"_s }, { &search, u"countField"_s }, { &search, u"modelField"_s } }) {
        const auto *field = dialog->findChild<QWidget *>(name);
        QVERIFY2(!field->isEnabled(), qPrintable(name));
        const QWidget *shown = qobject_cast<const QDateEdit *>(field) ? field->findChild<QLineEdit *>() : field;
        const QPalette palette = shown->palette();
        const QColor text = palette.color(QPalette::Disabled, QPalette::Text);
        QVERIFY2(contrast(text, palette.color(QPalette::Disabled, QPalette::Base)) >= 4.5, qPrintable(name));
    }
}

void TestWindowLooks::buttonsSayWhatTheyNeed()
{
    const LocGroupForm groups;
    QCOMPARE(toolTip(groups, u"saveButton"_s), u"Eine neue Gruppe braucht einen Namen und ein Bild."_s);
    QVERIFY(toolTip(groups, u"assignPictureButton"_s).contains(u"Name"_s));
    QVERIFY(toolTip(groups, u"modelsButton"_s).contains(u"in der Liste gewählt"_s));
    const LocModelForm models(m_group, nullptr);
    QCOMPARE(toolTip(models, u"saveButton"_s), u"Eine neue Baureihe braucht einen Namen."_s);
    const LocseenForm entry(-1, m_model, nullptr);
    QCOMPARE(toolTip(entry, u"saveButton"_s), u"Ein neuer Eintrag braucht Nummer, Ort und Kommentar."_s);
    QVERIFY(toolTip(entry, u"newPictureButton"_s).contains(u"gespeicherten Eintrag"_s));
}

void TestWindowLooks::longNamesAreWholeInToolTips()
{
    const OptionDialog dialog(classes(), m_group);
    QVERIFY(dialog.findChild<QLabel *>(u"caption"_s)->text().endsWith(u'…'));
    QVERIFY(toolTip(dialog, u"caption"_s).contains(QString(38, u'W')));
    for (const QString &name : { u"modelBox"_s, u"modelField"_s }) {
        QVERIFY(toolTip(dialog, name).contains(u"&lt;b&gt;"_s + QString(30, u'W'))); // text, no markup
    }
}

void TestWindowLooks::longPathsAreWholeInToolTips()
{
    LocGroupForm dialog(m_model, u"Ce 6/8"_s, nullptr);
    const QAbstractItemModel *rows = dialog.findChild<QTableView *>(u"groupList"_s)->model();
    QStringList tips;
    for (int column = 0; column < rows->columnCount(); ++column) {
        tips.append(rows->index(0, column).data(Qt::ToolTipRole).toString());
    }
    QVERIFY(tips.join(u' ').contains(u"./Data/Pictures/AuxFolder/2024321405348.jpg"_s));
}

void TestWindowLooks::emptyPreviewSaysSo()
{
    const auto hasInk = [](PicturePreview &preview) {
        const QImage image = preview.grab().toImage();
        const QColor ground = image.pixelColor(20, 20);
        for (int x = 20; x < image.width() - 20; ++x) {
            if (contrast(image.pixelColor(x, image.height() / 2), ground) > 3) {
                return true;
            }
        }
        return false;
    };
    PicturePreview preview;
    QVERIFY(hasInk(preview));
    QImage plain(PicturePreview::DefaultSize, QImage::Format_RGB32);
    plain.fill(preview.scene()->backgroundBrush().color());
    QVERIFY(preview.showImage(plain));
    QVERIFY(!hasInk(preview));
    preview.clear();
    QVERIFY(hasInk(preview));
}

BAHNITO_TEST_MAIN(TestWindowLooks)
#include "tst_windowlooks.moc"
