// The reference host in one object: a project with its modules, one simulated drive per
// module, and every host service registered in a HostServices table. The desktop program
// and the tests both run the module against it.
//
//     zorhost::ReferenceHost host;
//     host.LoadDemo();                       // or LoadProject(setup)
//     SetQueryInterfaceCallback(host.Services().Context(), &zorhost::HostServices::Query);
//     host.Tick(100);                        // drives move, one refresh cycle runs
#pragma once

#include "module/host/IHostVarPicker.h"
#include "zorhost/HostServices.h"
#include "zorhost/link/ModbusLink.h"
#include "zorhost/model/ProjectModel.h"
#include "zorhost/services/HostAccessService.h"
#include "zorhost/services/HostDeviceHelper.h"
#include "zorhost/services/HostHelpService.h"
#include "zorhost/services/HostMessageBus.h"
#include "zorhost/services/HostModuleManager.h"
#include "zorhost/services/HostProductDb.h"
#include "zorhost/services/HostRefreshService.h"
#include "zorhost/services/HostTransferService.h"
#include "zorhost/services/HostUiService.h"
#include "zorhost/services/HostVarUtil.h"
#include "zorhost/services/Oscilloscope.h"
#include "zorhost/services/ParamRecord.h"
#include "zorhost/sim/DriveDirectory.h"
#include "zorhost/sim/SimulatedDrive.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

class QTimer;

namespace zorhost {

struct ModuleSetup {
    std::string deviceFile; // absolute, or relative to the device folder
    CString key;            // unique in the project
    CString displayName;    // empty: the product's name
    int number = 0;         // station number; 0: the position in the list, from 1
    bool online = true;
    link::LinkSettings link; // the in-process simulated drive unless told otherwise
};

struct ProjectSetup {
    CString directory; // the project's folder (custom groups live there); may be empty
    int listStyle = 0; // 0 live list, 1 staging list
    std::vector<ModuleSetup> modules;
};

class ReferenceHost : public sim::DriveDirectory {
public:
    ReferenceHost();
    ~ReferenceHost() override;
    ReferenceHost(const ReferenceHost&) = delete;
    ReferenceHost& operator=(const ReferenceHost&) = delete;

    // The three shipped drives, online: "ZD3S" (servo, model 2), "ZD4M" (four axes,
    // model 1), "ZV5" (inverter, model 0), numbered 1 to 3.
    static ProjectSetup DemoProject();
    // Replaces the open project. On any failure the host is left without a project and
    // `error` tells which file and why.
    bool LoadProject(const ProjectSetup& setup, std::string* error = nullptr);
    bool LoadDemo(std::string* error = nullptr) { return LoadProject(DemoProject(), error); }
    void CloseProject();
    // What went wrong with the stores of the open project that didn't stop it from
    // opening (a damaged custom group file), one line each; empty when all was well.
    const std::vector<std::string>& StoreProblems() const { return m_storeProblems; }

    // The query callback's table; hand Services().Context() and &HostServices::Query to
    // the plug-in.
    HostServices& Services() { return m_services; }

    model::CProjectRoot& Root() { return m_root; }
    model::CProject* Project();
    std::vector<CString> ModuleKeys() const;
    model::CDeviceModule* Module(const CString& key);
    // The in-process drive of a module; null for a module on a field-bus link.
    sim::SimulatedDrive* Drive(const CString& key);
    // The field-bus link of a module; null for a module on an in-process drive.
    link::ModbusLink* FieldLink(const CString& key);
    // Called on the user-interface thread whenever a field-bus link came up or went down,
    // after the modules followed.
    void SetLinkStateHandler(std::function<void()> handler);

    // sim::DriveDirectory
    model::CDeviceModule* FindModule(const CString& key) override { return Module(key); }
    std::shared_ptr<sim::DriveLink> FindLink(const CString& key) override;

    // Logs the module in with an access code, as its login box would without a window: a
    // drive that keeps a level of its own (access models 1 and 2) gets the code in its
    // password register when online; the factory code raises the module to the top level.
    // False (and `why`) when the code opens nothing or the drive refused it.
    bool EnterAccessCode(const CString& key, const std::string& code, std::string* why);

    // Runs or stops a module's drive: an in-process drive at once, a drive on a field-bus
    // link by its run command (one request, bounded by the link's time-out).
    sim::LinkResult SetRunning(const CString& key, bool running);

    // Connect or disconnect a drive; the module follows at once.
    void SetOnline(const CString& key, bool online);
    // Lets every module's online state follow its drive (a drive may fail on its own).
    void SyncOnlineStates();
    // One tick of the host: every drive advances dt_ms, modules follow their drives'
    // online states, the oscilloscope redraws and one refresh cycle runs.
    void Tick(int dt_ms);
    // Runs Tick from a Qt timer on the user-interface thread (the program's way).
    void StartTimer(int period_ms = 200);
    void StopTimer();

    // Makes every drive (of this and later projects) hold its callers for its latency, as
    // a real link does; off by default, so that tests never wait.
    void SetRealTimeDrives(bool realTime);
    // Uses a Qt progress dialog for long transfers (the program; tests show none).
    void SetShowTransferProgress(bool show);
    // Language of texts the host makes itself (drive refusals, progress). The program
    // switches Ui() and raises the language event on Bus() itself.
    void SetEnglish(bool english);
    // Where the end of every transfer is told besides the message bus: (module key,
    // success, download).
    using TransferEndHandler =
        std::function<void(const CString& moduleKey, BOOL success, bool download)>;
    void SetTransferEndHandler(TransferEndHandler handler);
    // Whether any drive's oscilloscope samples now.
    bool IsAnyOscilloscopeRunning() const;

    CHostVarUtil& VarUtil() { return m_varUtil; }
    CHostModuleManager& ModuleManager() { return m_moduleManager; }
    CHostRefreshService& Refresh() { return m_refresh; }
    CHostDeviceHelper& DeviceHelper() { return m_deviceHelper; }
    CHostTransferService& Transfer() { return m_transfer; }
    CHostAccessService& Access() { return m_access; }
    CHostHelpService& Help() { return m_help; }
    COscilloscopePanel& Oscilloscope() { return m_scope; }
    CHostCommState& CommState() { return m_commState; }
    CHostMessageBus& Bus() { return m_bus; }
    CHostUiService& Ui() { return m_ui; }
    CHostProductDb& ProductDb() { return m_productDb; }

private:
    struct Station {
        CString key;
        model::CDeviceModule* module = nullptr; // owned by the project
        // Shared with the requests in flight: see CloseProject.
        std::shared_ptr<sim::SimulatedDrive> drive; // or
        std::shared_ptr<link::ModbusLink> modbus;
        std::shared_ptr<const device::DeviceDescription> device;
        link::LinkSettings settings;
    };
    void StartLink(Station& s);
    void CloseLinks();
    Station* Find(const CString& key);
    const Station* Find(const CString& key) const;
    void RegisterServices();
    void AnnounceTransferEnd(const CString& key, BOOL success, bool download);

    HostServices m_services;
    CHostMessageBus m_bus; // before everything that raises events on it
    CHostUiService m_ui;
    CHostProductDb m_productDb;
    model::CProjectRoot m_root;
    std::vector<Station> m_stations;
    CHostVarUtil m_varUtil;
    CHostModuleManager m_moduleManager;
    CHostRefreshService m_refresh;
    CHostDeviceHelper m_deviceHelper;
    CHostTransferService m_transfer;
    CHostAccessService m_access;
    CHostHelpService m_help;
    // The module asks for the picker but calls none of its operations, so an object of the
    // contract's own class is all the host has to offer.
    IHostVarPicker m_varPicker;
    COscilloscopePanel m_scope;
    CHostCommState m_commState;
    CHostParamRecordFactory m_recordFactory;
    std::unique_ptr<TransferProgress> m_progress;
    TransferEndHandler m_transferEnded;
    std::vector<std::string> m_storeProblems;
    bool m_english = false;
    bool m_realTime = false;
    QTimer* m_timer = nullptr; // owned
    std::function<void()> m_linkStateHandler;
    // Posted link events hold it weakly, so that none outlives the host.
    std::shared_ptr<ReferenceHost*> m_self = std::make_shared<ReferenceHost*>(this);
};

} // namespace zorhost
