#include "app/program.h"
#include "app/startup.h"
#include "bench/firstpaint.h"

#include <QApplication>

#include <cstdlib>

// bench-start STARTED: the program on the working folder, as its own main() runs it, until it is painted.
int main(int argc, char *argv[])
{
    Startup::registerResources();
    QApplication application(argc, argv);
    reportFirstPaint(application, argc > 1 ? std::atof(argv[1]) : nowMs());
    return runProgram(application);
}
