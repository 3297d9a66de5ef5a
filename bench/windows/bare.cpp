// The least that a Qt program does: shows an empty window and ends as soon as it has been painted.

#include "OncePainted.h"

#include <QApplication>
#include <QWidget>

#include <cstdlib>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QWidget window;
    window.resize(900, 680);
    const velmora::OncePainted end(window, [] { std::_Exit(0); });
    window.show();
    return QApplication::exec();
}
