#include "app/program.h"

#include "app/applwindow.h"
#include "app/startup.h"
#include "search/messagebox.h"

#include <QApplication>
#include <QIcon>
#include <QPixmap>

using namespace Qt::StringLiterals;

int runProgram(QApplication &application)
{
    Startup::setLibraryPaths();
    Startup::keepNoSettings();
    Startup::speakGerman(application);
    Startup::dress();
    Startup::makeDataFolders();
    if (!Startup::openCatalogue()) {
        MessageBox::warning(nullptr, QCoreApplication::translate("main", "Datenbankfehler Error"),
            QCoreApplication::translate("main", "Das Verbinden funktioniert nicht!"));
        return QApplication::exec();
    }
    ApplWindow window;
    window.setWindowIcon(QIcon(QPixmap(u":/images/Lok.png"_s)));
    window.show();
    return QApplication::exec();
}
