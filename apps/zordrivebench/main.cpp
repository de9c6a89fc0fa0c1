#include <QApplication>
#include <QMainWindow>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QMainWindow w;
    w.setWindowTitle("ZorDriveBench");
    w.resize(1280, 800);
    w.show();
    return app.exec();
}
