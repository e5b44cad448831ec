#include "tests/support/testmain.h"

#include <QApplication>
#include <QLocale>
#include <QTranslator>

using namespace Qt::StringLiterals;

void prepareTestApplication(QApplication &application)
{
    Q_INIT_RESOURCE(images);
    Q_INIT_RESOURCE(translations);
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    auto *translator = new QTranslator(&application);
    if (translator->load(u":/translations/qtbase_de.qm"_s)) {
        QApplication::installTranslator(translator);
    }
}
