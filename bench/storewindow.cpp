#include "bench/firstpaint.h"
#include "bench/storefloor.h"

#include <QGraphicsScene>
#include <QGraphicsView>
#include <QMainWindow>

#include <cstdlib>

// bench-storewindow STARTED: an empty window that has asked the catalogue in the working folder what it must know.
int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    reportFirstPaint(application, argc > 1 ? std::atof(argv[1]) : nowMs());
    if (StoreFloor::countPictures() == 0 || StoreFloor::countFiles() == 0) {
        return 1; // a floor that found nothing to do would be too low
    }
    QMainWindow window;
    QGraphicsScene scene;
    window.setCentralWidget(new QGraphicsView(&scene));
    window.resize(1280, 850);
    window.show();
    return QApplication::exec();
}
