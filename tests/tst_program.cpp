#include "app/program.h"
#include "tests/support/modalscript.h"
#include "tests/support/testcatalogue.h"
#include "tests/support/testmain.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <memory>

using namespace Qt::StringLiterals;

/// Runs the real program in its own process. A window manager and a screen are not needed for what is seen here.
class TestProgram final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }
    void cleanup();

    void firstStartMakesFoldersAndTables();
    void secondStartChangesNothing();
    void missingPictureFoldersAreMadeAgain();
    void foreignFileIsUsedAsItIs();
    void failedConnectionShowsTwoBoxesAndRunsWithoutAWindow();
    void windowHasTheProgramsIcon();

private:
    void start();
    [[nodiscard]] QString path(const QString &name) const { return m_folder->filePath(name); }
    [[nodiscard]] QStringList tables() const;

    std::unique_ptr<QTemporaryDir> m_folder;
    QProcess m_program;
};

void TestProgram::start()
{
    m_program.setWorkingDirectory(m_folder->path());
    m_program.start(QStringLiteral(BAHNITO_PROGRAM), QStringList());
    QVERIFY(m_program.waitForStarted());
}

void TestProgram::cleanup()
{
    if (m_program.state() != QProcess::NotRunning) {
        m_program.kill();
        m_program.waitForFinished();
    }
    m_folder.reset();
}

QStringList TestProgram::tables() const
{
    QStringList names;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, u"look"_s);
        database.setDatabaseName(path(u"Data/bahnakte.dat"_s));
        database.setConnectOptions(u"QSQLITE_OPEN_READONLY"_s);
        if (database.open()) {
            QSqlQuery query(u"SELECT name FROM sqlite_master WHERE name NOT LIKE 'sqlite%' ORDER BY name"_s, database);
            while (query.next()) {
                names.append(query.value(0).toString());
            }
        }
    }
    QSqlDatabase::removeDatabase(u"look"_s);
    return names;
}

void TestProgram::firstStartMakesFoldersAndTables()
{
    start();
    const QStringList all { u"loc_model"_s, u"loc_picture"_s, u"loc_seen"_s, u"locomotive"_s, u"settings"_s };
    QTRY_COMPARE_WITH_TIMEOUT(tables(), all, 20000);
    QCOMPARE(QDir(path(u"Data/Pictures"_s)).entryList(QDir::AllDirs | QDir::NoDotAndDotDot),
        (QStringList { u"AuxFolder"_s, u"Folder001"_s, u"Folder002"_s }));
    QCOMPARE(m_program.state(), QProcess::Running);
}

void TestProgram::secondStartChangesNothing()
{
    start();
    QTRY_COMPARE_WITH_TIMEOUT(tables().size(), 5, 20000);
    m_program.kill();
    QVERIFY(m_program.waitForFinished());
    QFile file(path(u"Data/bahnakte.dat"_s));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray before = file.readAll();
    QVERIFY(QDir(path(u"Data/Pictures"_s)).rmdir(u"AuxFolder"_s)); // tells when the start has passed the folders
    start();
    QTRY_VERIFY_WITH_TIMEOUT(QDir(path(u"Data/Pictures/AuxFolder"_s)).exists(), 20000);
    QTest::qWait(500);
    QVERIFY(file.seek(0));
    QCOMPARE(file.readAll(), before);
}

void TestProgram::missingPictureFoldersAreMadeAgain()
{
    QVERIFY(QDir(m_folder->path()).mkdir(u"Data"_s));
    start();
    QTRY_COMPARE_WITH_TIMEOUT(tables().size(), 5, 20000);
    QCOMPARE(QDir(path(u"Data"_s)).entryList(QDir::AllDirs | QDir::NoDotAndDotDot), QStringList { u"Pictures"_s });
}

void TestProgram::foreignFileIsUsedAsItIs()
{
    QVERIFY(QDir(m_folder->path()).mkdir(u"Data"_s));
    const QByteArray text("Das ist keine Datenbank, sondern ein Brief an die Nachwelt.\n");
    QFile file(path(u"Data/bahnakte.dat"_s));
    QVERIFY(file.open(QIODevice::ReadWrite));
    file.write(text);
    file.flush();
    start();
    QTRY_VERIFY_WITH_TIMEOUT(QDir(path(u"Data/Pictures/Folder002"_s)).exists(), 20000);
    QTest::qWait(1000);
    QCOMPARE(m_program.state(), QProcess::Running);
    QVERIFY(file.seek(0));
    QCOMPARE(file.readAll(), text);
}

void TestProgram::failedConnectionShowsTwoBoxesAndRunsWithoutAWindow()
{
    const QString formerFolder = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_folder->path()));
    QVERIFY(QDir().mkpath(u"Data/bahnakte.dat"_s)); // a folder cannot be opened as a database
    ModalScript script;
    script.anyBox(u"Database Error"_s)
        .box(u"Datenbankfehler Error"_s, u"Das Verbinden funktioniert nicht!"_s)
        .then([](QWidget *) { QFAIL("a third dialog"); });
    bool stillRunning = false;
    bool anyWindow = true;
    QTimer::singleShot(1500, qApp, [&] {
        stillRunning = true;
        const QWidgetList windows = QApplication::topLevelWidgets();
        anyWindow = std::any_of(windows.cbegin(), windows.cend(), [](QWidget *window) { return window->isVisible(); });
        QApplication::exit(7);
    });
    QCOMPARE(runProgram(*qApp), 7);
    QVERIFY(stillRunning);
    QVERIFY(!anyWindow);
    QCOMPARE(script.problems(), QStringList { u"1 expected dialogs never appeared"_s });
    QSqlDatabase::removeDatabase(QLatin1StringView(QSqlDatabase::defaultConnection));
    QDir::setCurrent(formerFolder);
}

void TestProgram::windowHasTheProgramsIcon()
{
    const TestCatalogue catalogue(TestCatalogue::FoldersOnly);
    bool shown = false;
    QTimer::singleShot(500, qApp, [&] {
        const QWidget *window = QApplication::activeWindow();
        shown = window && window->windowTitle() == u"Bahnito App"_s && !window->windowIcon().isNull()
            && !window->isMaximized();
        QApplication::closeAllWindows();
    });
    QCOMPARE(runProgram(*qApp), 0); // closing the window ends the program
    QVERIFY(shown);
    QCOMPARE(QLocale().name(), u"de_DE"_s);
    QCOMPARE(catalogue.value(u"SELECT COUNT(*) FROM settings WHERE value = 0"_s).toInt(), 4);
}

BAHNITO_TEST_MAIN(TestProgram)
#include "tst_program.moc"
