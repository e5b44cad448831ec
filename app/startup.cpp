#include "app/startup.h"

#include "app/programstyle.h"
#include "forms/dialogstyle.h"
#include "search/folderlister.h"
#include "store/database.h"

#include <QApplication>
#include <QFile>
#include <QFont>
#include <QLocale>
#include <QPixmapCache>
#include <QSettings>
#include <QTranslator>

using namespace Qt::StringLiterals;

// Outside of any namespace, because the macro declares the generated functions where it stands.
static void initResources()
{
    Q_INIT_RESOURCE(images);
    Q_INIT_RESOURCE(translations);
}

void Startup::registerResources()
{
    initResources();
}

void Startup::setLibraryPaths()
{
    const QString folder = QCoreApplication::applicationDirPath();
    QCoreApplication::setLibraryPaths({ folder });
    QCoreApplication::addLibraryPath(folder + u"/plugins"_s);
}

void Startup::keepNoSettings()
{
    QSettings::setPath(
        QSettings::NativeFormat, QSettings::UserScope, u"/dev/null"_s); // no folder, so nothing gets there
}

void Startup::speakGerman(QApplication &application)
{
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    auto *translator = new QTranslator(&application);
    if (translator->load(u":/translations/qtbase_de.qm"_s)) {
        QCoreApplication::installTranslator(translator);
    }
    QFont::insertSubstitutions(u"IrisUPC"_s, { u"Open Sans"_s, u"Liberation Sans"_s, u"DejaVu Sans"_s });
    QFont::insertSubstitutions(
        u"Helvetica [Cronyx]"_s, { u"Helvetica"_s, u"Open Sans"_s, u"Liberation Sans"_s, u"DejaVu Sans"_s });
}

void Startup::dress()
{
    QApplication::setStyle(new ProgramStyle); // the application owns it
    constexpr int ControlPictures = 2048; // KB of the style's pictures; Qt's own limit would be 10 MB
    QPixmapCache::setCacheLimit(ControlPictures);
    QApplication::setFont(dialogFont());
    QGuiApplication::setDesktopFileName(u"de.bahnito.bahnito"_s); // by which desktops find the icon for the window
}

void Startup::makeDataFolders()
{
    FolderLister(u"./"_s).ensure(u"./"_s, u"Data"_s);
    FolderLister(u"./Data"_s).ensure(u"./Data"_s, u"Pictures"_s);
    const QString store = u"./Data/Pictures"_s;
    const FolderLister lister(store);
    lister.ensure(store, u"AuxFolder"_s);
    lister.ensure(store, u"Folder001"_s);
    lister.ensure(store, u"Folder002"_s);
}

bool Startup::openCatalogue()
{
    const bool isFirstRun = !QFile::exists(databasePath()); // asked first, because opening makes the file
    if (!connectDatabase()) {
        return false;
    }
    if (isFirstRun) {
        createTables(Existing::Keep); // if another program has made the file meanwhile, what it made is there to stay
    }
    return true;
}
