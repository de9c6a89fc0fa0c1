#include "access_fixture.h"

#include "groups/LoginDialog.h"
#include "module/ParmiraApp.h"
#include "module/host/IVarObjEx.h"
#include "zorhost/device/DeviceLoader.h"

#include <afx/afxres.h>

namespace {

constexpr UINT IDD_BOX_PAGE = 31001;
constexpr UINT IDC_ACCESS_BOX = 1006;

// The module's resources are registered once for the whole run, as the loader would.
class ModuleStart : public ::testing::Environment {
public:
    void SetUp() override { AfxStartApp(&theApp, "QXParmira"); }
    void TearDown() override { AfxStopApp(&theApp); }
};
[[maybe_unused]] ::testing::Environment* const g_moduleStart =
    ::testing::AddGlobalTestEnvironment(new ModuleStart);

zorhost::model::CDeviceModule* AsDevice(const std::vector<zorhost::model::CDeviceModule*>& list,
                                        IHostDeviceModule* module) {
    for (auto* m : list)
        if (static_cast<IHostDeviceModule*>(m) == module)
            return m;
    return nullptr;
}

} // namespace

// ---------------------------------------------------------------- drive
std::vector<std::string> FakeDeviceHelper::WriteLog() const {
    std::vector<std::string> log;
    for (const Write& w : writes) {
        CString entry;
        entry.Format("%s=%.0f", w.name.GetString(), w.value);
        log.push_back(entry.str());
    }
    return log;
}

void FakeDeviceHelper::SetDriveAuthority(zorhost::model::CDeviceModule* module, int level) {
    const auto* named = module->Store().Device().FindNamedVariable("Authority");
    if (named == nullptr)
        return;
    auto* var =
        static_cast<zorhost::model::CVarObj*>(module->Store().FindByAddress(named->address));
    if (var != nullptr)
        var->StoreRead(Variant::UI2(uint16_t(level)));
}

int FakeDeviceHelper::GetProtocolKind(IHostDeviceModule* module) {
    auto* device = AsDevice(modules, module);
    return device != nullptr ? int(device->Store().Device().product.accessModel) : -1;
}

IVarObjEx* FakeDeviceHelper::FindNamedVar(IHostDeviceModule* module, const CString& name) {
    auto* device = AsDevice(modules, module);
    if (device == nullptr)
        return nullptr;
    const auto* named = device->Store().Device().FindNamedVariable(name.str());
    return named != nullptr ? device->Store().FindByAddress(named->address) : nullptr;
}

BOOL FakeDeviceHelper::WriteNamedVar(const CString& moduleKey, const CString& name, double value) {
    writes.push_back({moduleKey, name, value});
    zorhost::model::CDeviceModule* device = nullptr;
    for (auto* m : modules) {
        CString key;
        m->GetModuleKey(key);
        if (key == moduleKey)
            device = m;
    }
    if (device == nullptr || !device->IsOnline())
        return FALSE;
    if (name == "InputPassword") {
        if (value == PARMIRA_TEST_FACTORY_CODE_NUMBER)
            SetDriveAuthority(device, 3);
        else if (value == drivePassword)
            SetDriveAuthority(device, 2);
        else if (value == 65535)
            SetDriveAuthority(device, 1);
    }
    return TRUE;
}

// ---------------------------------------------------------------- frame
void RecordingFrame::ApplyAccessLevel(IHostDeviceModule* m, int level) {
    calls.push_back("apply " + std::to_string(level));
    if (m != nullptr)
        m->SetAccessLevel(level);
}

void RecordingFrame::ApplyAccessLevelToAll(int level) {
    calls.push_back("all " + std::to_string(level));
    if (module != nullptr)
        module->SetAccessLevel(level);
    for (IHostDeviceModule* m : workspace)
        m->SetAccessLevel(level);
}

// ---------------------------------------------------------------- login answers
LoginAnswers::LoginAnswers()
    : m_driver([this](CDialog& dlg) {
          Answer answer{false, ""};
          if (!m_answers.empty()) {
              answer = m_answers.front();
              m_answers.pop_front();
          }
          if (CWnd* edit = dlg.GetDlgItem(IDC_LOGIN_PASSWORD))
              AfxTestTypeText(edit, answer.text.c_str());
          auto* button = static_cast<CButton*>(dlg.GetDlgItem(answer.ok ? IDOK : IDCANCEL));
          if (button != nullptr)
              button->Click();
          else
              dlg.EndDialog(IDCANCEL);
      }) {}

// ---------------------------------------------------------------- page
BoxPage::BoxPage() : CDialog(IDD_BOX_PAGE) {
    DlgTemplate page{IDD_BOX_PAGE, "", 300, 80};
    page.controls = {{IDC_ACCESS_BOX, DlgCtl::ComboDropList, "", 10, 10, 160, 24}};
    AfxRegisterDialog(AfxGetInstanceHandle(), page);
}

BOOL BoxPage::OnInitDialog() {
    CDialog::OnInitDialog();
    box.SubclassDlgItem(IDC_ACCESS_BOX, this);
    return TRUE;
}

BOOL BoxPage::OnCommand(WPARAM wParam, LPARAM lParam) {
    if (LOWORD(wParam) == IDC_ACCESS_BOX && HIWORD(wParam) == CBN_SELCHANGE) {
        if (selector != nullptr)
            selector->OnAccessSelected();
        return TRUE;
    }
    return CDialog::OnCommand(wParam, lParam);
}

// ---------------------------------------------------------------- fixture
void AccessTest::SetUp() {
    services.Register<IHostVarUtil>(&util);
    services.Register<IHostDeviceHelper>(&helper);
    theApp.SetQueryInterfaceCallback(services.Context(), &zorhost::HostServices::Query);
    ASSERT_TRUE(page.Create(IDD_BOX_PAGE));
    page.selector = &selector;
    selector.Attach(&page.box, &frame);
}

void AccessTest::TearDown() {
    page.DestroyWindow();
    theApp.SetQueryInterfaceCallback(0, nullptr);
}

zorhost::model::CDeviceModule* AccessTest::AddModule(const char* file, const char* key, bool online,
                                                     int level) {
    auto loaded =
        zorhost::device::LoadDeviceFile(std::string(PARMIRA_SOURCE_DIR "/devices/") + file);
    EXPECT_TRUE(loaded) << loaded.error.ToString();
    if (!loaded)
        return nullptr;
    owned.push_back(
        std::make_unique<zorhost::model::CDeviceModule>(loaded.device, key, int(owned.size()) + 1));
    auto* module = owned.back().get();
    module->SetOnline(online);
    module->SetAccessLevel(level);
    helper.modules.push_back(module);
    if (frame.module == nullptr)
        frame.module = module;
    frame.workspace.push_back(module);
    return module;
}

void AccessTest::Fill() {
    selector.FillAccessBox();
}

void AccessTest::Choose(int index) {
    page.box.ChooseEntry(index);
}

CString AccessTest::EntryText(int index) const {
    CString text;
    page.box.GetLBText(index, text);
    return text;
}

int AccessTest::SelectedData() const {
    const int index = page.box.GetCurSel();
    return index >= 0 ? int(page.box.GetItemData(index)) : -1;
}
