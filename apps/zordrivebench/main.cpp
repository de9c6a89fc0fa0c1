// ZorDriveBench: the reference host for the Parmira module.
//
//   zordrivebench [--devices DIR] [--screenshot FILE.png]
//
// With --screenshot (or on the offscreen platform) the main window is rendered to
// FILE.png after start-up and the program exits.

#include <zorhost/device/DeviceLoader.h>

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QLabel>
#include <QMainWindow>
#include <QMenuBar>
#include <QSplitter>
#include <QStatusBar>
#include <QTabWidget>
#include <QTimer>
#include <QTreeWidget>

#include <cstdio>
#include <string>

namespace {

struct Options {
    QString devicesDir;
    QString screenshot;
};

bool ParseOptions(const QStringList& args, Options& options, QString& error) {
    for (int i = 1; i < args.size(); ++i) {
        const QString& a = args[i];
        auto value = [&](QString& into) {
            if (i + 1 >= args.size()) {
                error = QStringLiteral("%1 needs a value").arg(a);
                return false;
            }
            into = args[++i];
            return true;
        };
        if (a == QLatin1String("--devices")) {
            if (!value(options.devicesDir))
                return false;
        } else if (a == QLatin1String("--screenshot")) {
            if (!value(options.screenshot))
                return false;
        } else {
            error = QStringLiteral("unknown argument: %1").arg(a);
            return false;
        }
    }
    return true;
}

QString Qs(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// The project tree lists the drives of the demo project, one module per product.
QTreeWidget* BuildProjectTree(const zorhost::device::DeviceLibrary& library) {
    auto* tree = new QTreeWidget;
    tree->setHeaderLabels({QStringLiteral("工程"), QStringLiteral("参数")});
    tree->header()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    auto* project = new QTreeWidgetItem(tree, {QStringLiteral("演示工程")});
    int number = 1;
    for (const auto& device : library.Devices()) {
        const auto& product = device->product;
        QString name = QStringLiteral("%1 %2").arg(number++).arg(Qs(device->Text(product.name)));
        auto* item =
            new QTreeWidgetItem(project, {name, QString::number(device->parameters.size())});
        item->setToolTip(0, QFileInfo(QString::fromStdString(device->sourceFile)).fileName());
    }
    tree->expandAll();
    return tree;
}

} // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("ZorDriveBench"));

    Options options;
    QString error;
    if (!ParseOptions(QApplication::arguments(), options, error)) {
        std::fprintf(stderr, "zordrivebench: %s\n", error.toLocal8Bit().constData());
        return 2;
    }
    if (options.screenshot.isEmpty() &&
        QGuiApplication::platformName() == QLatin1String("offscreen"))
        options.screenshot = QStringLiteral("zordrivebench.png");

    zorhost::device::DeviceLibrary library;
    const std::string dir = options.devicesDir.isEmpty() ? zorhost::device::DefaultDeviceDirectory()
                                                         : options.devicesDir.toStdString();
    for (const auto& refusal : library.AddDirectory(dir))
        std::fprintf(stderr, "zordrivebench: %s\n", refusal.ToString().c_str());

    QMainWindow window;
    window.setWindowTitle(QStringLiteral("ZorDriveBench"));
    window.menuBar()->addMenu(QStringLiteral("工程"));
    window.menuBar()->addMenu(QStringLiteral("设备"));
    window.menuBar()->addMenu(QStringLiteral("帮助"));

    auto* splitter = new QSplitter;
    splitter->addWidget(BuildProjectTree(library));
    auto* tabs = new QTabWidget;
    tabs->setDocumentMode(true);
    auto* start = new QLabel(QStringLiteral("在工程树中选择一个驱动器模块。"));
    start->setAlignment(Qt::AlignCenter);
    tabs->addTab(start, QStringLiteral("起始页"));
    splitter->addWidget(tabs);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({300, 980});
    window.setCentralWidget(splitter);
    window.statusBar()->showMessage(
        QStringLiteral("%1 个设备描述已载入").arg(library.Devices().size()));
    window.resize(1280, 800);
    window.show();

    if (!options.screenshot.isEmpty()) {
        QTimer::singleShot(0, &window, [&] {
            const QString path = QFileInfo(options.screenshot).absoluteFilePath();
            QDir().mkpath(QFileInfo(path).absolutePath());
            if (!window.grab().save(path)) {
                std::fprintf(stderr, "zordrivebench: could not write %s\n",
                             path.toLocal8Bit().constData());
                QApplication::exit(1);
                return;
            }
            std::printf("Screenshot of the main window: %s\n", path.toLocal8Bit().constData());
            QApplication::exit(0);
        });
    }
    return app.exec();
}
