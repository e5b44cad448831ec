#include "tests/support/testmain.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

/// Starts of the names of libraries that speak to other computers. A local message bus is not among them.
constexpr std::array networkLibraries { "libQt6Network", "libQt6Http", "libQt6WebSockets", "libQt6WebEngine",
    "libQt6WebView", "libQt6Mqtt", "libQt6Coap", "libQt6Grpc", "libcurl", "libsoup", "libneon", "libssl", "libgnutls",
    "libnghttp", "libssh", "libproxy", "libgiognutls", "libgiolibproxy", "libKF5KIO", "libKF6KIO" };

bool isNetworkLibrary(const QString &name)
{
    return std::any_of(networkLibraries.begin(), networkLibraries.end(),
        [&name](const char *start) { return name.startsWith(QLatin1StringView(start)); });
}

QString fileName(const QString &path)
{
    return path.section(u'/', -1);
}

QStringList networkLibrariesAmong(const QStringList &names)
{
    QStringList found;
    std::copy_if(names.begin(), names.end(), std::back_inserter(found), isNetworkLibrary);
    return found;
}

/// The libraries of the program and of these libraries in turn, as the dynamic loader would load them.
QStringList neededLibraries()
{
    QProcess loader;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"LD_TRACE_LOADED_OBJECTS"_s, u"1"_s);
    loader.setProcessEnvironment(environment);
    loader.start(QStringLiteral(BAHNITO_PROGRAM), QStringList());
    if (!loader.waitForFinished()) {
        return {};
    }
    QStringList names;
    const QStringList lines = QString::fromLocal8Bit(loader.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
    for (const QString &line : lines) {
        names.append(fileName(line.trimmed().section(u' ', 0, 0)));
    }
    return names;
}

/// All files that are mapped into a running process, plug-ins too.
QStringList loadedFiles(qint64 process)
{
    QFile maps(u"/proc/%1/maps"_s.arg(process));
    if (!maps.open(QIODevice::ReadOnly)) {
        return {};
    }
    QStringList names;
    const QStringList lines = QString::fromLocal8Bit(maps.readAll()).split(u'\n');
    for (const QString &line : lines) {
        if (line.contains(u'/')) {
            names.append(fileName(line));
        }
    }
    names.removeDuplicates();
    return names;
}

bool has(const QStringList &names, const QString &start)
{
    return std::any_of(names.begin(), names.end(), [&start](const QString &name) { return name.startsWith(start); });
}

} // namespace

/// Nothing is sent anywhere: the program has nothing that it could send with.
class TestPrivacy final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void networkLibrariesAreRecognised_data();
    void networkLibrariesAreRecognised();
    void programNeedsNoNetworkLibrary();
    void runningProgramHasLoadedNone();
};

void TestPrivacy::networkLibrariesAreRecognised_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("recognised");
    QTest::newRow("the toolkit's own") << u"libQt6Network.so.6"_s << true;
    QTest::newRow("a library for downloads") << u"libcurl.so.4"_s << true;
    QTest::newRow("encryption of connections") << u"libssl.so.3"_s << true;
    QTest::newRow("widgets") << u"libQt6Widgets.so.6"_s << false;
    QTest::newRow("the C library") << u"libc.so.6"_s << false;
}

void TestPrivacy::networkLibrariesAreRecognised()
{
    QFETCH(QString, name);
    QTEST(isNetworkLibrary(name), "recognised");
}

void TestPrivacy::programNeedsNoNetworkLibrary()
{
    const QStringList names = neededLibraries();
    QVERIFY(has(names, u"libQt6Widgets"_s)); // else the list itself would be wrong
    QVERIFY(has(names, u"libc.so"_s));
    QCOMPARE(networkLibrariesAmong(names), QStringList());
}

void TestPrivacy::runningProgramHasLoadedNone()
{
    const QTemporaryDir folder;
    QProcess program;
    program.setWorkingDirectory(folder.path());
    program.start(QStringLiteral(BAHNITO_PROGRAM), QStringList());
    QVERIFY(program.waitForStarted());
    QTRY_VERIFY_WITH_TIMEOUT(has(loadedFiles(program.processId()), u"libqsqlite"_s), 20000);
    QTest::qWait(1000); // the window is being shown and loads what it needs
    const QStringList names = loadedFiles(program.processId());
    program.kill();
    program.waitForFinished();
    QVERIFY(has(names, u"libqjpeg"_s) || has(names, u"libqico"_s)); // image formats come with the window
    QCOMPARE(networkLibrariesAmong(names), QStringList());
}

BAHNITO_TEST_MAIN(TestPrivacy)
#include "tst_privacy.moc"
