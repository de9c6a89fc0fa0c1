// ZorDriveBench: the reference host for the parameter-view plug-in, with simulated drives.
//
// Without a display (or with --screenshot) the main window is rendered to a PNG once the
// first module's panel is up, and the program exits. Options and exit codes: Options.cpp.

#include "CommandLine.h"
#include "DisplayProbe.h"
#include "MainWindow.h"
#include "ModuleFileCheck.h"
#include "Options.h"
#include "ParmiraModule.h"
#include "WindowSettings.h"

#include <zorhost/ReferenceHost.h>

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QSettings>
#include <QTimer>

#include <cstdio>

using namespace zordrivebench;

namespace {

constexpr int kPanelWait_ms = 20000;
// After the panel is up: a few refresh cycles, so that the values are on screen.
constexpr int kSettle_ms = 1500;

void Print(std::FILE* to, const QString& text) {
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), to);
    std::fflush(to);
}

void CriticalOnly(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtCriticalMsg || type == QtFatalMsg)
        Print(stderr, message + QLatin1Char('\n'));
}

bool HasDisplay() {
    return !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

// Without a display nothing could be shown: render off screen and save a picture. A
// $DISPLAY with no X server behind it would abort inside Qt; it is said and passed over.
void ChoosePlatform() {
    if (!qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        return;
    if (!HasDisplay()) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        return;
    }
    if (qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") && !XServerAnswers()) {
        Print(stderr, QStringLiteral("zordrivebench: no X server answers at DISPLAY=%1; "
                                     "rendering off screen instead\n")
                          .arg(qEnvironmentVariable("DISPLAY")));
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
}

// The picture is written at the end; a place it can't go is refused before anything starts.
bool CanWriteScreenshot(const QString& file, QString* why) {
    const QFileInfo target(file);
    const QString folder = target.absolutePath();
    if (!QDir().mkpath(folder)) {
        *why = QStringLiteral("%1: the folder can't be made").arg(folder);
        return false;
    }
    if (target.exists() ? !target.isFile() || !target.isWritable()
                        : !QFileInfo(folder).isWritable()) {
        *why = QStringLiteral("%1: can't be written").arg(target.absoluteFilePath());
        return false;
    }
    return true;
}

// Waits for the panel, lets it settle, saves the window and ends the event loop.
void ScheduleScreenshot(MainWindow& window, const QString& file) {
    auto* clock = new QElapsedTimer;
    clock->start();
    auto* poll = new QTimer(&window);
    QObject::connect(poll, &QTimer::timeout, &window, [&window, poll, clock, file] {
        const bool up = window.IsPanelUp();
        if (!up && clock->elapsed() < kPanelWait_ms)
            return;
        poll->stop();
        delete clock;
        if (!up)
            Print(stderr, QStringLiteral("zordrivebench: no panel came up; the picture shows "
                                         "the window without it\n"));
        QTimer::singleShot(up ? kSettle_ms : 0, &window, [&window, file, up] {
            const QString path = QFileInfo(file).absoluteFilePath();
            QDir().mkpath(QFileInfo(path).absolutePath());
            if (!window.grab().save(path)) {
                Print(stderr, QStringLiteral("zordrivebench: could not write %1\n").arg(path));
                QApplication::exit(kExitNoPanel);
                return;
            }
            Print(stdout, QStringLiteral("Screenshot of the main window: %1\n").arg(path));
            QApplication::exit(up ? kExitOk : kExitNoPanel);
        });
    });
    poll->start(50);
}

} // namespace

int main(int argc, char** argv) {
    QStringList args;
    for (int i = 1; i < argc; ++i)
        args << QString::fromLocal8Bit(argv[i]);
    Options options;
    QString error;
    if (!ParseOptions(args, options, error)) {
        Print(stderr, QStringLiteral("zordrivebench: %1\n%2").arg(error, UsageText()));
        return kExitUsage;
    }
    if (options.help) {
        Print(stdout, QString::fromUtf8(UsageText()));
        return kExitOk;
    }
    if (options.version) {
        Print(stdout, VersionText() + QLatin1Char('\n'));
        return kExitOk;
    }
    if (options.list) {
        QCoreApplication app(argc, argv);
        return RunList(options);
    }
    if (!options.downloadKey.isEmpty()) {
        QCoreApplication app(argc, argv);
        return RunDownload(options);
    }
    if (!options.compareA.isEmpty()) {
        QCoreApplication app(argc, argv);
        return RunCompare(options);
    }
    if (!options.exportKey.isEmpty()) {
        // The plug-in's windowless export still makes pictures: a GUI application, off screen.
        // Its notes about the environment would only bury the program's own message.
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        qInstallMessageHandler(CriticalOnly);
        QApplication app(argc, argv);
        return RunExport(options);
    }
    if (!options.screenshot.isEmpty() && !CanWriteScreenshot(options.screenshot, &error)) {
        Print(stderr, QStringLiteral("zordrivebench: --screenshot %1\n").arg(error));
        return kExitNoPanel;
    }
    // Without the module there is no panel to wait for.
    if (!CheckModuleFile(ParmiraModule::DefaultPath(), &error)) {
        Print(stderr,
              QStringLiteral("zordrivebench: %1: %2\n").arg(ParmiraModule::DefaultPath(), error));
        return kExitPlugin;
    }
    ChoosePlatform();

    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("ZorDriveBench"));
    QApplication::setOrganizationName(QStringLiteral("ZorDriveBench"));

    if (options.screenshot.isEmpty() &&
        QGuiApplication::platformName() == QLatin1String("offscreen"))
        options.screenshot = QStringLiteral("zordrivebench.png");

    // A picture is rendered the same on every machine: it neither reads nor keeps what an
    // interactive session remembers.
    const bool interactive = options.screenshot.isEmpty();
    QSettings settings;
    QString project = options.projectFile;
    const bool remembered = interactive && project.isEmpty() && !LastProject(settings).isEmpty();
    if (remembered)
        project = LastProject(settings);

    zorhost::ReferenceHost host;
    ProgramServices services(host);
    ParmiraModule plugin; // unloaded after the window, before the services and the host
    int code = kExitOk;
    {
        MainWindow window(host, services, plugin);
        if (!window.OpenProject(project, &error)) {
            Print(stderr, QStringLiteral("zordrivebench: %1\n").arg(error));
            // The remembered project may have broken since; the demo opens instead.
            if (!remembered || !window.OpenProject(QString(), &error))
                return kExitProject;
        }
        if (interactive)
            RestoreWindowSettings(settings, window);
        host.StartTimer();
        window.show();
        if (!window.OpenFirstModule(&error)) {
            Print(stderr, QStringLiteral("zordrivebench: %1\n").arg(error));
            // A library the system loader refused (a missing dependency, a missing symbol)
            // will not come up later either.
            if (!plugin.IsLoaded() && !host.ModuleKeys().empty()) {
                host.StopTimer();
                return kExitPlugin;
            }
        }
        if (!interactive)
            ScheduleScreenshot(window, options.screenshot);
        code = QApplication::exec();
        host.StopTimer();
        if (interactive)
            SaveWindowSettings(settings, window);
    }
    return code;
}
