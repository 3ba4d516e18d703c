// SPDX-License-Identifier: MIT
// A window of the toolkit with nothing in it: what any program of its kind takes to start.
#include <QApplication>
#include <QWidget>

int main(int argc, char** argv) {
    const QApplication application{argc, argv};
    QWidget window;
    window.resize(640, 480);
    window.show();
    return QApplication::exec();
}
