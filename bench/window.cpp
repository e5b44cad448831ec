#include "bench/firstpaint.h"

#include <QGraphicsScene>
#include <QGraphicsView>
#include <QMainWindow>

#include <cstdlib>

// bench-window STARTED: the least that a program of this kind can show.
int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    reportFirstPaint(application, argc > 1 ? std::atof(argv[1]) : nowMs());
    QMainWindow window;
    QGraphicsScene scene;
    window.setCentralWidget(new QGraphicsView(&scene));
    window.resize(1280, 850);
    window.show();
    return QApplication::exec();
}
