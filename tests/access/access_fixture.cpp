#include "access_fixture.h"

#include "groups/LoginDialog.h"
#include "module/ParmiraApp.h"

#include <afx/afxres.h>

namespace {

constexpr UINT IDC_ACCESS_BOX = 1006;

[[maybe_unused]] ::testing::Environment* const g_moduleStart =
    ::testing::AddGlobalTestEnvironment(new ModuleStartedForTheRun);

} // namespace

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
BoxPage::BoxPage() : CDialog(kId) {
    DlgTemplate page{kId, "", 300, 80};
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

void AccessTest::Open(std::vector<TestModule> modules) {
    zorhost::ProjectSetup setup;
    for (const TestModule& m : modules) {
        zorhost::ModuleSetup station;
        station.deviceFile = m.file;
        station.key = m.key;
        station.online = m.online;
        setup.modules.push_back(station);
    }
    std::string error;
    ASSERT_TRUE(host.LoadProject(setup, &error)) << error;
    frame.module = nullptr;
    frame.workspace.clear();
    for (const TestModule& m : modules) {
        auto* module = host.Module(m.key);
        ASSERT_NE(module, nullptr) << m.key;
        module->SetAccessLevel(m.level);
        if (frame.module == nullptr)
            frame.module = module;
        frame.workspace.push_back(module);
    }
}

void AccessTest::ReadAuthority() {
    IVarObjEx* var = host.DeviceHelper().FindNamedVar(frame.module, "Authority");
    ASSERT_NE(var, nullptr);
    IHostRefreshQuery* query = host.Refresh().NewQuery();
    query->SetModuleKey(Key());
    IHostRefreshItem* item = query->NewItem();
    item->SetAddress(var->GetInstanceAddress());
    item->SetDataType(var->GetAttr()->GetDataType());
    item->SetLength(var->GetAttr()->GetValueLength());
    if (!query->AddItem(item))
        delete item;
    host.Refresh().SubmitQuery(query);
    delete query;
    host.Refresh().RunCycle();
}

void AccessTest::DriveReports(int level) {
    const auto* named = host.Module(Key())->Store().Device().FindNamedVariable("Authority");
    ASSERT_NE(named, nullptr);
    ASSERT_TRUE(host.Drive(Key())->PokeRaw(named->address, level));
    ReadAuthority();
}
