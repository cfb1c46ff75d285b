// What kavro's start is compared with: the least that a program with a window does.

#include <QApplication>
#include <QWidget>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QWidget window;
    window.resize(640, 480);
    window.show();
    return QApplication::exec();
}
