// The least that a Qt program does: shows an empty window and ends as soon as it has been painted.

#include "EndOncePainted.h"

#include <QApplication>
#include <QWidget>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QWidget window;
    window.resize(900, 680);
    const velmora::bench::EndOncePainted end(window);
    window.show();
    return QApplication::exec();
}
