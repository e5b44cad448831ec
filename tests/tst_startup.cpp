#include "app/startup.h"
#include "store/database.h"
#include "store/statement.h"
#include "tests/support/modalscript.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileDialog>
#include <QFontInfo>
#include <QImageReader>
#include <QImageWriter>
#include <QLocale>
#include <QProcess>
#include <QPushButton>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>
#include <QTextStream>

#include <memory>

using namespace Qt::StringLiterals;

class TestStartup final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void emptyFolderBecomesACatalogue();
    void secondStartChangesNothing();
    void onlyMissingFoldersAreMade_data();
    void onlyMissingFoldersAreMade();
    void furtherNumberedFoldersAreNotMade();
    void folderNamesAreComparedCaseSensitively();
    void emptyDatabaseFileIsUsedAsItIs();
    void damagedDatabaseFileIsLeftAsItIs();
    void failedConnectionIsTold();
    void libraryPathsAreTheProgramsOwnFolders();
    void pluginsAreFoundBesideTheProgram();
    void withoutPluginsNothingIsFound();
    void resourcesAreCompiledIn();
    void fileDialogKeepsNothingOutsideTheCatalogue();
    void qtSpeaksGerman();
    void missingFontsHaveSubstitutes();

private:
    [[nodiscard]] static QStringList everything();
    [[nodiscard]] static QVariant value(const QString &statement);
    [[nodiscard]] static QString probe(const QString &program);

    QString m_formerFolder;
    std::unique_ptr<QTemporaryDir> m_folder;
};

namespace {

const QString ProbeArgument = u"--plugin-probe"_s;

/// Takes the program's first steps in their order and prints what Qt finds after them.
int printPlugins(int argc, char **argv)
{
    Startup::registerResources();
    const QApplication application(argc, argv);
    Startup::setLibraryPaths();
    QTextStream out(stdout);
    out << "drivers:" << QSqlDatabase::drivers().join(u',') << '\n';
    out << "reads:" << QImageReader::supportedImageFormats().join(',') << '\n';
    out << "writes:" << QImageWriter::supportedImageFormats().join(',') << '\n';
    return 0;
}

QStringList line(const QString &output, const QString &start)
{
    for (const QString &text : output.split(u'\n')) {
        if (text.startsWith(start)) {
            return text.mid(start.size()).split(u',');
        }
    }
    return {};
}

} // namespace

void TestStartup::init()
{
    m_formerFolder = QDir::currentPath();
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir::setCurrent(m_folder->path()));
}

void TestStartup::cleanup()
{
    QSqlDatabase::removeDatabase(QLatin1StringView(QSqlDatabase::defaultConnection));
    QVERIFY(QDir::setCurrent(m_formerFolder));
    m_folder.reset();
}

QStringList TestStartup::everything()
{
    QStringList names;
    QDirIterator files(u"."_s, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        names.append(files.next());
    }
    names.sort();
    return names;
}

QVariant TestStartup::value(const QString &statement)
{
    QSqlQuery query;
    return query.exec(statement) && query.next() ? query.value(0) : QVariant();
}

QString TestStartup::probe(const QString &program)
{
    QProcess process;
    process.start(program, { ProbeArgument });
    process.waitForFinished();
    return QString::fromUtf8(process.readAllStandardOutput());
}

void TestStartup::emptyFolderBecomesACatalogue()
{
    Startup::makeDataFolders();
    QVERIFY(Startup::openCatalogue());
    QCOMPARE(everything(),
        QStringList({ u"./Data"_s, u"./Data/Pictures"_s, u"./Data/Pictures/AuxFolder"_s, u"./Data/Pictures/Folder001"_s,
            u"./Data/Pictures/Folder002"_s, u"./Data/bahnakte.dat"_s }));
    QCOMPARE(value(u"SELECT COUNT(*) FROM sqlite_master WHERE name NOT LIKE 'sqlite_%'"_s).toInt(), 5);
    QCOMPARE(value(u"SELECT COUNT(*) FROM settings"_s).toInt(), 4);
}

void TestStartup::secondStartChangesNothing()
{
    Startup::makeDataFolders();
    QVERIFY(Startup::openCatalogue());
    QVERIFY(executeWrite(u"INSERT INTO locomotive (name) VALUES ('Krokodile')"_s).done);
    QVERIFY(executeWrite(u"DELETE FROM settings WHERE id = 4"_s).done);
    QSqlDatabase::database().close();
    const QStringList before = everything();
    QFile file(databasePath());
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();

    Startup::makeDataFolders();
    QVERIFY(Startup::openCatalogue());
    QCOMPARE(everything(), before);
    QVERIFY(file.seek(0));
    QCOMPARE(file.readAll(), bytes);
    QCOMPARE(value(u"SELECT name FROM locomotive"_s).toString(), u"Krokodile"_s);
    QCOMPARE(value(u"SELECT COUNT(*) FROM settings"_s).toInt(), 3);
}

void TestStartup::onlyMissingFoldersAreMade_data()
{
    QTest::addColumn<QString>("present");
    QTest::newRow("Data") << u"Data"_s;
    QTest::newRow("Pictures") << u"Data/Pictures"_s;
    QTest::newRow("one picture folder") << u"Data/Pictures/Folder002"_s;
}

void TestStartup::onlyMissingFoldersAreMade()
{
    QFETCH(const QString, present);
    QVERIFY(QDir().mkpath(present));
    QFile file(present + u"/mine.txt"_s);
    QVERIFY(file.open(QIODevice::WriteOnly));
    Startup::makeDataFolders();
    QVERIFY(file.exists());
    QCOMPARE(QDir(u"Data/Pictures"_s).entryList(QDir::AllDirs | QDir::NoDotAndDotDot),
        QStringList({ u"AuxFolder"_s, u"Folder001"_s, u"Folder002"_s }));
}

void TestStartup::furtherNumberedFoldersAreNotMade()
{
    QVERIFY(QDir().mkpath(u"Data/Pictures/Folder007"_s));
    Startup::makeDataFolders();
    QCOMPARE(QDir(u"Data/Pictures"_s).entryList(QDir::AllDirs | QDir::NoDotAndDotDot),
        QStringList({ u"AuxFolder"_s, u"Folder001"_s, u"Folder002"_s, u"Folder007"_s }));
}

void TestStartup::folderNamesAreComparedCaseSensitively()
{
    QVERIFY(QDir().mkpath(u"data"_s));
    Startup::makeDataFolders();
    QVERIFY(QDir(u"Data/Pictures/AuxFolder"_s).exists());
    QVERIFY(QDir(u"data"_s).isEmpty());
}

void TestStartup::emptyDatabaseFileIsUsedAsItIs()
{
    Startup::makeDataFolders();
    QFile file(databasePath());
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    QVERIFY(Startup::openCatalogue());
    QVERIFY(QSqlDatabase::database().tables().isEmpty());
    QCOMPARE(file.size(), 0);
}

void TestStartup::damagedDatabaseFileIsLeftAsItIs()
{
    Startup::makeDataFolders();
    QFile file(databasePath());
    const QByteArray bytes(5000, 'x');
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    file.close();
    QVERIFY(Startup::openCatalogue()); // the statements fail later
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), bytes);
}

void TestStartup::failedConnectionIsTold()
{
    ModalScript script; // without the folder "Data" no file can be made
    script.anyBox(u"Database Error"_s);
    QVERIFY(!Startup::openCatalogue());
    QCOMPARE(script.problems(), QStringList());
    QVERIFY(everything().isEmpty());
}

void TestStartup::libraryPathsAreTheProgramsOwnFolders()
{
    const QStringList former = QCoreApplication::libraryPaths();
    Startup::setLibraryPaths();
    const QString folder = QCoreApplication::applicationDirPath();
    QStringList paths = QCoreApplication::libraryPaths();
    QCoreApplication::setLibraryPaths(former);
    paths.sort();
    QStringList expected { folder, QDir(folder + u"/plugins"_s).canonicalPath() };
    expected.sort();
    QCOMPARE(paths, expected);
}

void TestStartup::pluginsAreFoundBesideTheProgram()
{
    const QString found = probe(QCoreApplication::applicationFilePath());
    QVERIFY(line(found, u"drivers:"_s).contains(u"QSQLITE"_s));
    for (const QString &format : { u"jpeg"_s, u"jpg"_s, u"ico"_s, u"png"_s }) {
        QVERIFY2(line(found, u"reads:"_s).contains(format), qPrintable(format));
    }
    QVERIFY(line(found, u"writes:"_s).contains(u"jpeg"_s));
}

void TestStartup::withoutPluginsNothingIsFound()
{
    // The same program in a folder of its own: what the other test finds comes from the plug-ins beside it alone.
    const QString copy = m_folder->filePath(u"alone"_s);
    QVERIFY(QFile::copy(QCoreApplication::applicationFilePath(), copy));
    const QString found = probe(copy);
    QVERIFY(!found.isEmpty());
    QCOMPARE(line(found, u"drivers:"_s), QStringList(QString()));
    QVERIFY(!line(found, u"reads:"_s).contains(u"jpeg"_s));
    QVERIFY(!line(found, u"reads:"_s).contains(u"ico"_s));
}

void TestStartup::resourcesAreCompiledIn()
{
    Startup::registerResources();
    QVERIFY(!QImage(u":/images/Lok.png"_s).isNull());
    QVERIFY(QFile::exists(u":/translations/qtbase_de.qm"_s));
}

void TestStartup::fileDialogKeepsNothingOutsideTheCatalogue()
{
    const QByteArray former = qgetenv("XDG_CONFIG_HOME");
    const QString config = m_folder->filePath(u"config"_s);
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(config));
    Startup::keepNoSettings();
    {
        QFileDialog dialog(nullptr, {}, m_folder->path());
        dialog.setOption(QFileDialog::DontUseNativeDialog);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    }
    qputenv("XDG_CONFIG_HOME", former);
    QVERIFY(!QFile::exists(config));
}

void TestStartup::qtSpeaksGerman()
{
    Startup::speakGerman(*qApp);
    QCOMPARE(QLocale().toString(QDate(2024, 3, 5), QLocale::ShortFormat), u"05.03.24"_s);
    QCOMPARE(QLocale().dayName(1), u"Montag"_s);
    const QDialogButtonBox box(QDialogButtonBox::Cancel | QDialogButtonBox::Yes);
    QCOMPARE(box.button(QDialogButtonBox::Cancel)->text(), u"Abbrechen"_s);
    QCOMPARE(box.button(QDialogButtonBox::Yes)->text().remove(u'&'), u"Ja"_s);
}

void TestStartup::missingFontsHaveSubstitutes()
{
    Startup::speakGerman(*qApp);
    for (const QString &family : { u"IrisUPC"_s, u"Helvetica [Cronyx]"_s }) {
        QVERIFY(!QFont::substitutes(family).isEmpty());
        QFont font(family, 9, QFont::Bold, true);
        const QFontInfo shown(font);
        QVERIFY2(shown.bold() && shown.italic(), qPrintable(family));
        QCOMPARE(shown.pointSize(), 9);
    }
}

int main(int argc, char *argv[])
{
    if (argc == 2 && ProbeArgument == QLatin1StringView(argv[1])) {
        return printPlugins(argc, argv);
    }
    const QApplication application(argc, argv);
    TestStartup test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_startup.moc"
