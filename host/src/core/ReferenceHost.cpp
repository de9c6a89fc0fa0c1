#include "zorhost/ReferenceHost.h"

#include "zorhost/device/DeviceLoader.h"
#include "zorhost/link/RegisterMap.h"
#include "zorhost/model/CustomGroupStore.h"

#include <afx/afxqt.h>

#include <QApplication>
#include <QProgressDialog>
#include <QTimer>

#include <map>

namespace zorhost {

namespace {

// The host's own progress display for long transfers; short ones finish before it shows.
class DialogProgress : public TransferProgress {
public:
    static constexpr int kShowFrom = 50; // variables
    explicit DialogProgress(const bool& english) : m_english(english) {}

    void Begin(const CString& moduleKey, int total) override {
        m_dialog.reset();
        if (total < kShowFrom || !qobject_cast<QApplication*>(QCoreApplication::instance()))
            return;
        const QString key = QString::fromStdString(moduleKey.str());
        m_dialog = std::make_unique<QProgressDialog>(
            m_english ? QStringLiteral("Reading the parameters of %1 …").arg(key)
                      : QStringLiteral("正在读取 %1 的参数…").arg(key),
            m_english ? QStringLiteral("Cancel") : QStringLiteral("取消"), 0, total);
        m_dialog->setWindowModality(Qt::ApplicationModal);
        m_dialog->setMinimumDuration(300);
    }
    bool Advance(int done) override {
        if (!m_dialog)
            return true;
        m_dialog->setValue(done);
        QCoreApplication::processEvents();
        return !m_dialog->wasCanceled();
    }
    void End() override { m_dialog.reset(); }

private:
    const bool& m_english;
    std::unique_ptr<QProgressDialog> m_dialog;
};

std::string DevicePath(const std::string& file) {
    if (!file.empty() && file.front() == '/')
        return file;
    return device::DefaultDeviceDirectory() + "/" + file;
}

} // namespace

ReferenceHost::ReferenceHost()
    : m_refresh(*this), m_deviceHelper(*this), m_transfer(*this, m_deviceHelper),
      m_commState(m_scope) {
    m_transfer.SetEndNotifier([this](const CString& key, BOOL success, bool download) {
        AnnounceTransferEnd(key, success, download);
    });
    m_scope.SetBusyProbe([this] { return IsAnyOscilloscopeRunning(); });
    m_deviceHelper.SetUiScaleSource([this] { return m_ui.GetUiScale(); });
    RegisterServices();
}

ReferenceHost::~ReferenceHost() {
    StopTimer();
    m_transfer.SetProgress(nullptr);
    CloseProject();
}

void ReferenceHost::RegisterServices() {
    m_services.Register<IHostVarUtil>(&m_varUtil);
    m_services.Register<IHostModuleManager>(&m_moduleManager);
    m_services.Register<IHostProjectRoot>(&m_root);
    m_services.Register<IHostRefreshService>(&m_refresh);
    m_services.Register<IHostDeviceHelper>(&m_deviceHelper);
    m_services.Register<IHostTransferService>(&m_transfer);
    m_services.Register<IHostAccessService>(&m_access);
    m_services.Register<IHostHelpService>(&m_help);
    m_services.Register<IHostVarPicker>(&m_varPicker);
    m_services.Register<IHostMessageBus>(&m_bus);
    m_services.Register<IHostUiService>(&m_ui);
    m_services.Register<IHostProductDb>(&m_productDb);
    m_moduleManager.RegisterModuleInterface(IOscilloscopePanel::kIID, &m_scope);
    // IHostTabManager belongs to the program's main window, which registers it itself.
    m_services.Register<IHostParamRecordFactory>(&m_recordFactory);
    m_transfer.SetModuleManager(&m_moduleManager);
}

void ReferenceHost::SetTransferEndHandler(TransferEndHandler handler) {
    m_transferEnded = std::move(handler);
}

void ReferenceHost::AnnounceTransferEnd(const CString& key, BOOL success, bool download) {
    if (download)
        m_bus.RaiseModuleDownloaded(key, success);
    else
        m_bus.RaiseModuleUploaded(key, success);
    if (m_transferEnded)
        m_transferEnded(key, success, download);
}

ProjectSetup ReferenceHost::DemoProject() {
    ProjectSetup setup;
    setup.modules = {
        {"zd3s_servo.json", "ZD3S", "", 1, true, {}},
        {"zd4m_four_axis.json", "ZD4M", "", 2, true, {}},
        {"zv5_inverter.json", "ZV5", "", 3, true, {}},
    };
    return setup;
}

bool ReferenceHost::LoadProject(const ProjectSetup& setup, std::string* error) {
    CloseProject();
    auto fail = [&](std::string text) {
        CloseProject();
        if (error)
            *error = std::move(text);
        return false;
    };
    auto project = std::make_unique<model::CProject>(setup.directory);
    project->Workspace().SetListStyle(setup.listStyle);
    project->SetCommState(&m_commState);
    std::map<std::string, std::shared_ptr<const device::DeviceDescription>> loaded;
    std::vector<Station> stations;
    int position = 0;
    for (const ModuleSetup& m : setup.modules) {
        ++position;
        const std::string path = DevicePath(m.deviceFile);
        auto& device = loaded[path];
        if (!device) {
            device::LoadResult r = device::LoadDeviceFile(path);
            if (!r)
                return fail(r.error.ToString());
            device = r.device;
            m_productDb.Add(device);
            AddDeviceTranslations(m_ui, *device);
        }
        if (m.key.IsEmpty())
            return fail("module " + std::to_string(position) + ": the key is empty");
        auto module =
            std::make_unique<model::CDeviceModule>(device, m.key, m.number ? m.number : position);
        module->SetDisplayName(m.displayName.IsEmpty()
                                   ? CString(std::string(device->Text(device->product.name)))
                                   : m.displayName);
        module->SetOnline(m.online);
        model::CDeviceModule* added = project->Workspace().Modules().Add(std::move(module));
        if (!added)
            return fail("module " + std::to_string(position) + " \"" + m.key.str() +
                        "\": its key or number is taken already");
        Station s;
        s.key = m.key;
        s.module = added;
        s.device = device;
        s.settings = m.link;
        if (m.link.kind == link::LinkKind::Simulated) {
            s.drive = std::make_shared<sim::SimulatedDrive>(device);
            s.drive->SetConnected(m.online);
            s.drive->SetRealTime(m_realTime);
        } else {
            added->SetOnline(false); // until the drive has answered
            if (m.online)
                StartLink(s);
        }
        stations.push_back(std::move(s));
    }
    m_storeProblems.clear();
    model::LoadCustomGroups(project->Workspace(), m_storeProblems);
    m_root.Open(std::move(project));
    m_stations = std::move(stations);
    m_scope.Watch(m_stations.empty() ? nullptr : m_stations.front().drive.get());
    // A drive that is there answers within one time-out; the project opens with it online.
    for (Station& s : m_stations)
        if (s.modbus)
            s.module->SetOnline(s.modbus->WaitOnline(s.settings.timeout_ms));
    return true;
}

void ReferenceHost::StartLink(Station& s) {
    s.modbus = std::make_shared<link::ModbusLink>(s.device, s.settings);
    std::weak_ptr<ReferenceHost*> self = m_self;
    // The worker only posts; the modules follow on the user-interface thread, through
    // every state in its order, so that a drop the link recovers from at once still shows.
    std::weak_ptr<link::ModbusLink> weak = s.modbus;
    const CString key = s.key;
    s.modbus->SetStateListener([self, weak, key](bool online) {
        QCoreApplication* app = QCoreApplication::instance();
        if (!app)
            return;
        AfxQueueCall(app, [self, weak, key, online] {
            auto host = self.lock();
            if (!host)
                return;
            Station* station = (*host)->Find(key);
            if (station && station->modbus && station->modbus == weak.lock())
                station->module->SetOnline(online);
            if ((*host)->m_linkStateHandler)
                (*host)->m_linkStateHandler();
        });
    });
}

link::ModbusLink* ReferenceHost::FieldLink(const CString& key) {
    Station* s = Find(key);
    return s ? s->modbus.get() : nullptr;
}

void ReferenceHost::SetLinkStateHandler(std::function<void()> handler) {
    m_linkStateHandler = std::move(handler);
}

// A request may be waiting for one of these links further down the stack (this may run
// from an event handled during the wait): closing ends those waits with failure at once,
// and their shares keep the link objects until they have returned.
void ReferenceHost::CloseLinks() {
    for (Station& s : m_stations)
        if (s.modbus)
            s.modbus->Close();
}

void ReferenceHost::CloseProject() {
    CloseLinks();
    m_refresh.Quiesce(); // a refresh read may still be on its way out
    m_scope.Watch(nullptr);
    m_root.Open(nullptr); // the modules go first; the drives have no ties to them
    m_stations.clear();
}

model::CProject* ReferenceHost::Project() {
    return static_cast<model::CProject*>(m_root.GetProject());
}

std::vector<CString> ReferenceHost::ModuleKeys() const {
    std::vector<CString> keys;
    for (const Station& s : m_stations)
        keys.push_back(s.key);
    return keys;
}

ReferenceHost::Station* ReferenceHost::Find(const CString& key) {
    for (Station& s : m_stations)
        if (s.key == key)
            return &s;
    return nullptr;
}

const ReferenceHost::Station* ReferenceHost::Find(const CString& key) const {
    for (const Station& s : m_stations)
        if (s.key == key)
            return &s;
    return nullptr;
}

model::CDeviceModule* ReferenceHost::Module(const CString& key) {
    Station* s = Find(key);
    return s ? s->module : nullptr;
}

sim::SimulatedDrive* ReferenceHost::Drive(const CString& key) {
    Station* s = Find(key);
    return s ? s->drive.get() : nullptr;
}

std::shared_ptr<sim::DriveLink> ReferenceHost::FindLink(const CString& key) {
    Station* s = Find(key);
    if (!s)
        return nullptr;
    if (s->modbus)
        return s->modbus;
    return s->drive;
}

sim::LinkResult ReferenceHost::SetRunning(const CString& key, bool running) {
    Station* s = Find(key);
    if (s && s->drive) {
        s->drive->SetRunning(running);
        return {};
    }
    if (!s || !s->modbus)
        return {sim::LinkStatus::Offline};
    const std::shared_ptr<link::ModbusLink> modbus = s->modbus; // s may go while it waits
    return sim::WriteRaw(*modbus, link::kRunRegister, device::DataType::UInt16, running ? 1 : 0,
                         s->settings.timeout_ms);
}

void ReferenceHost::SetOnline(const CString& key, bool online) {
    Station* s = Find(key);
    if (!s)
        return;
    if (s->drive) {
        s->drive->SetConnected(online);
        s->module->SetOnline(s->drive->IsOnline());
    } else if (s->settings.kind != link::LinkKind::Simulated) {
        // Disconnecting a field-bus module closes its link; connecting opens a new one.
        if (s->modbus)
            s->modbus->Close();
        m_refresh.Quiesce();
        s->modbus.reset();
        if (online) {
            StartLink(*s);
            s->modbus->WaitOnline(s->settings.timeout_ms);
        }
        s->module->SetOnline(s->modbus && s->modbus->IsOnline());
    }
}

void ReferenceHost::SyncOnlineStates() {
    for (Station& s : m_stations)
        if (sim::DriveLink* l =
                s.modbus ? static_cast<sim::DriveLink*>(s.modbus.get()) : s.drive.get())
            s.module->SetOnline(l->IsOnline());
}

void ReferenceHost::Tick(int dt_ms) {
    for (Station& s : m_stations)
        if (s.drive)
            s.drive->Step(dt_ms);
    SyncOnlineStates();
    m_scope.Update();
    m_refresh.RunCycle();
}

void ReferenceHost::StartTimer(int period_ms) {
    StopTimer();
    m_timer = new QTimer;
    QObject::connect(m_timer, &QTimer::timeout, [this, period_ms] { Tick(period_ms); });
    m_timer->start(period_ms);
}

void ReferenceHost::StopTimer() {
    delete m_timer;
    m_timer = nullptr;
}

void ReferenceHost::SetShowTransferProgress(bool show) {
    if (show && !m_progress)
        m_progress = std::make_unique<DialogProgress>(m_english);
    m_transfer.SetProgress(show ? m_progress.get() : nullptr);
}

void ReferenceHost::SetRealTimeDrives(bool realTime) {
    m_realTime = realTime;
    for (Station& s : m_stations)
        if (s.drive)
            s.drive->SetRealTime(realTime);
}

void ReferenceHost::SetEnglish(bool english) {
    m_english = english;
    m_deviceHelper.SetEnglish(english);
    m_moduleManager.SetEnglish(english);
}

bool ReferenceHost::IsAnyOscilloscopeRunning() const {
    for (const Station& s : m_stations)
        if (s.drive && s.drive->IsOscilloscopeRunning())
            return true;
    return false;
}

} // namespace zorhost
