// A program with one empty window that ends when the window has been painted: the least that a start can cost.
#include "quit_when_painted.h"

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QWidget window;
    window.resize(1000, 460);
    new QuitWhenPainted(window);
    window.show();
    return QApplication::exec();
}
