// Soak run of the program's window against drives on Modbus TCP (scripts/soak.sh starts
// the simulator and writes the project):
//
//     link_soak --project FILE --seconds N [--period MS] [--panels 0|1]
//
// Opens the panel of every module of the project, runs refresh cycles every MS (default
// 50, four times the program's own rate), writes one parameter of each module every
// second, alternating its value, and at the end prints resident memory at the start and
// the end and what went wrong. Exit code 0 when nothing did.
#include "MainWindow.h"
#include "ParmiraModule.h"
#include "ProgramServices.h"

#include "zorhost/ReferenceHost.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTimer>

#include <cstdio>
#include <fstream>
#include <map>
#include <string>

namespace {

long ResidentKb() {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
        if (line.rfind("VmRSS:", 0) == 0)
            return std::stol(line.substr(6));
    return -1;
}

struct Counts {
    long cycles = 0;
    long stored = 0;
    long writes = 0;
    long failedWrites = 0;
    long wrongValues = 0; // a write that was taken but did not read back
    long offline = 0;     // times a module was seen offline
};

} // namespace

int main(int argc, char** argv) {
    QString project;
    int seconds = 600, period_ms = 50;
    bool panels = true; // without them: a baseline of the host alone
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string a = argv[i];
        if (a == "--project")
            project = QString::fromLocal8Bit(argv[i + 1]);
        else if (a == "--seconds")
            seconds = std::atoi(argv[i + 1]);
        else if (a == "--period")
            period_ms = std::atoi(argv[i + 1]);
        else if (a == "--panels")
            panels = std::atoi(argv[i + 1]) != 0;
    }
    if (project.isEmpty() || seconds <= 0 || period_ms < 0) {
        std::fprintf(stderr, "usage: link_soak --project FILE --seconds N [--period MS]\n");
        return 2;
    }
    QApplication app(argc, argv);
    zorhost::ReferenceHost host;
    zordrivebench::ProgramServices services(host);
    zordrivebench::ParmiraModule plugin;
    Counts counts;
    long rssStart = 0, rssEnd = 0;
    std::size_t modules = 0;
    int code = 0;
    {
        zordrivebench::MainWindow window(host, services, plugin);
        QString error;
        if (!window.OpenProject(project, &error)) {
            std::fprintf(stderr, "link_soak: %s\n", error.toLocal8Bit().constData());
            return 3;
        }
        window.show();
        const std::vector<CString> keys = host.ModuleKeys();
        modules = keys.size();
        for (const CString& key : keys)
            if (panels && !window.OpenModule(key, &error)) {
                std::fprintf(stderr, "link_soak: %s\n", error.toLocal8Bit().constData());
                return 6;
            }

        QTimer refresh;
        QObject::connect(&refresh, &QTimer::timeout, [&] {
            host.SyncOnlineStates();
            counts.stored += host.Refresh().RunCycle();
            ++counts.cycles;
        });
        refresh.start(period_ms);

        // One parameter each module's drive takes in any state, written every second.
        const char* code_ = "H02-09";
        std::map<std::string, bool> wasOnline;
        long second = 0;
        QTimer writes;
        QObject::connect(&writes, &QTimer::timeout, [&] {
            ++second;
            for (const CString& key : keys) {
                zorhost::model::CDeviceModule* module = host.Module(key);
                const bool online = module->IsOnline();
                if (!online && wasOnline[key.str()])
                    ++counts.offline;
                wasOnline[key.str()] = online;
                IVarObjEx* var = module->Store().FindByCode(code_);
                if (!var)
                    continue;
                const double value = 100 + double(second % 2);
                ++counts.writes;
                if (!host.DeviceHelper().WriteParameter(key, var->GetInstanceAddress(), value)) {
                    ++counts.failedWrites;
                    continue;
                }
                double back = 0;
                if (!host.DeviceHelper().ReadParameter(key, var->GetInstanceAddress(), back) ||
                    back != value)
                    ++counts.wrongValues;
            }
        });
        writes.start(1000);

        // Memory is taken once the panels have settled, and at the very end.
        QTimer::singleShot(5000, [&] { rssStart = ResidentKb(); });
        QTimer::singleShot(5000 + seconds * 1000, [&] {
            rssEnd = ResidentKb();
            app.quit();
        });
        for (const CString& key : keys)
            wasOnline[key.str()] = host.Module(key)->IsOnline();
        app.exec();
        refresh.stop();
        writes.stop();
    }
    std::printf("modules %zu, %d s, refresh every %d ms\n", modules, seconds, period_ms);
    std::printf("resident memory: %ld kB at the start, %ld kB at the end (%+ld kB)\n", rssStart,
                rssEnd, rssEnd - rssStart);
    std::printf("refresh cycles %ld, values stored %ld\n", counts.cycles, counts.stored);
    std::printf("writes %ld, refused or lost %ld, read back wrong %ld, modules seen offline %ld\n",
                counts.writes, counts.failedWrites, counts.wrongValues, counts.offline);
    if (counts.failedWrites || counts.wrongValues || counts.offline || counts.stored == 0)
        code = 1;
    return code;
}
