#include "app/program.h"
#include "app/startup.h"

#include <QApplication>

int main(int argc, char *argv[])
{
    Startup::registerResources();
    QApplication application(argc, argv);
    return runProgram(application);
}
