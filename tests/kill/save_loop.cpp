// The saving side of the kill test. Sets up a host with two generated drives (ROWS and
// ROWS / 2 parameters), writes the two versions of one kind of file to ref0/ and ref1/,
// prints "ready" and the microseconds one save took, then serves the test on stdin and
// stdout: at each "g" it forks a saver that writes the two versions over DIR/NAME in turn
// until it is killed, prints "pid N", and, once the test has killed it, reaps it and
// prints "dead". End of input ends it.
//
//     save_loop KIND DIR NAME ROWS
#include "files/ListExportWriter.h"
#include "files/ParamTableWriter.h"
#include "files/ZxdExport.h"
#include "module/ModuleResources.h"
#include "module/ParmiraApp.h"
#include "module/host/IParamFile.h"
#include "module/host/IParamFileTable.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarStore.h"
#include "sets/OneKeyParseRecipeDialog.h"
#include "sets/VarCompare.h"
#include "table/TableResources.h"
#include "zorhost/ReferenceHost.h"
#include "zorhost/device/DeviceGenerator.h"
#include "zorhost/model/VarDatabase.h"
#include "zorhost/project/ProjectFile.h"

#include <afx/afxres.h>
#include <afx/afxtest.h>

#include <QApplication>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <functional>
#include <string>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Saver = std::function<bool(const std::string& path, int version)>;

struct Scene {
    zorhost::ReferenceHost host;
    zorhost::model::CDeviceModule* modules[2] = {};
    std::vector<IVarObjEx*> vars[2];
    CVarCompareRstList compared[2];
    std::unique_ptr<zorhost::model::CVarDatabase> databases[2];
    zorhost::project::ProjectFile projects[2];
    const SYSTEMTIME stamp{2026, 5, 0, 4, 3, 2, 1, 0};
    CAfxRecordingResponder prompts;

    ~Scene() {
        for (auto& list : compared)
            list.DeleteAll();
    }
};

bool Setup(Scene& s, const std::string& dir, int rows) {
    zorhost::ProjectSetup setup;
    for (int i = 0; i < 2; ++i) {
        const std::string device = dir + "/device" + std::to_string(i) + ".json";
        std::ofstream(device) << zorhost::device::GenerateDeviceJson(i == 0 ? rows : rows / 2);
        zorhost::ModuleSetup m;
        m.deviceFile = device;
        m.key = i == 0 ? "BIG" : "HALF";
        setup.modules.push_back(m);
    }
    std::string error;
    if (!s.host.LoadProject(setup, &error)) {
        std::fprintf(stderr, "save_loop: %s\n", error.c_str());
        return false;
    }
    HINSTANCE h = AfxCreateResourceHandle("save-loop");
    theApp.m_hResource = h;
    RegisterModuleResources(h);
    RegisterTableResources(h);
    theApp.SetQueryInterfaceCallback(s.host.Services().Context(), &zorhost::HostServices::Query);
    for (int v = 0; v < 2; ++v) {
        const char* key = v == 0 ? "BIG" : "HALF";
        s.modules[v] = s.host.Module(key);
        s.host.Transfer().GetModuleVars(key, s.vars[v]);
        auto& store = s.modules[v]->Store();
        for (IVarObjEx* var : s.vars[v]) {
            CString key;
            var->GetInstanceGuid(key);
            store.CustomGroups().AddMember(key);
            IVarAttr* attr = var->GetAttr();
            auto* row = new CVarCompareRst;
            row->m_pAttr1 = row->m_pAttr2 = attr;
            row->m_nAddress = attr->GetAddress();
            row->m_value1 = Variant::I4(1);
            row->m_value2 = Variant::I4(2);
            s.compared[v].Add(row, row);
        }
        s.databases[v] = std::make_unique<zorhost::model::CVarDatabase>(store);
        for (size_t i = 0; i < s.vars[v].size() / 4; ++i) {
            zorhost::project::ModuleEntry entry;
            entry.key = "M" + std::to_string(i);
            entry.deviceFile = "devices/drive-" + std::to_string(i) + ".json";
            s.projects[v].modules.push_back(entry);
        }
    }
    return true;
}

Saver SaverOf(Scene& s, const std::string& kind) {
    if (kind == "table")
        return [&s](const std::string& path, int v) {
            return WriteParamTableList(CString(path), s.vars[v], s.modules[v], &s.stamp) != 0;
        };
    if (kind == "list")
        return [&s](const std::string& path, int v) {
            s.prompts.prompts.clear();
            return WriteListExport(nullptr, CString(path), s.vars[v], nullptr) != 0;
        };
    if (kind == "compare")
        return [&s](const std::string& path, int v) {
            const std::string text =
                CVarCompare::CsvText(theApp.GetVarUtil(), s.compared[v], s.stamp);
            return WriteFileReplacing(CString(path), text) != 0;
        };
    if (kind == "zxd")
        return [&s](const std::string& path, int v) {
            return WriteZxdFile(path, s.modules[v], s.vars[v]) == ZxdResult::Written;
        };
    if (kind == "zorparam")
        return [&s](const std::string& path, int v) {
            IParamFile* file = theApp.CreateParamFile();
            for (IVarObjEx* var : s.vars[v])
                file->GetVarList()->AddVar(var->Clone());
            const bool saved = file->Save(CString(path)) != 0;
            file->Release();
            return saved;
        };
    if (kind == "recipe")
        return [&s](const std::string& path, int v) {
            COneKeyParseRecipeDialog dialog;
            dialog.SetModule(s.modules[v]);
            return dialog.SaveRecipeFile(CString(path)) != 0;
        };
    if (kind == "groups")
        return [&s](const std::string& path, int v) {
            return s.databases[v]->SaveToFile(CString(path)) != 0;
        };
    if (kind == "project")
        return [&s](const std::string& path, int v) {
            return zorhost::project::SaveProjectFile(path, s.projects[v]);
        };
    return {};
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 5) {
        std::fprintf(stderr, "usage: save_loop KIND DIR NAME ROWS\n");
        return 2;
    }
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    // Nothing is ever shown: the export's message boxes go to a recording responder.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const std::string kind = argv[1], dir = argv[2], name = argv[3];
    Scene scene;
    if (!Setup(scene, dir, std::atoi(argv[4])))
        return 1;
    const Saver save = SaverOf(scene, kind);
    if (!save)
        return 2;
    // The time of one save, for the test to kill within a few of them.
    const auto begin = std::chrono::steady_clock::now();
    for (int v = 0; v < 2; ++v) {
        const std::string folder = dir + "/ref" + std::to_string(v);
        ::mkdir(folder.c_str(), 0777);
        if (!save(folder + "/" + name, v))
            return 1;
    }
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    const auto took = std::chrono::steady_clock::now() - begin;
    std::printf("ready %lld\n",
                (long long)std::chrono::duration_cast<std::chrono::microseconds>(took).count() / 2);
    const std::string target = dir + "/" + name;
    for (int c; (c = std::getchar()) != EOF;) {
        if (c != 'g')
            continue;
        const pid_t saver = ::fork();
        if (saver == 0) {
            // Never outlives the server, nor runs long if the test forgets it.
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
            const time_t end = ::time(nullptr) + 20;
            for (int i = 0; ::time(nullptr) < end; ++i)
                save(target, i % 2);
            ::_exit(3);
        }
        std::printf("pid %d\n", int(saver));
        int status = 0;
        ::waitpid(saver, &status, 0);
        std::printf("dead\n");
    }
    return 0;
}
