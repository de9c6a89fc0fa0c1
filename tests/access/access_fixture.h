// The access tests run against the reference host: modules of the shipped descriptions,
// each with its simulated drive, which grants "Authority" 3 for the factory code and
// falls back to 1 at a log-out. Around it: a frame that records how levels are applied,
// and a page-like window holding the access box.
#pragma once

#include "controls/NoWheelComboBox.h"
#include "groups/AccessSelector.h"
#include "groups/LoginDialog.h"
#include "module/host/HostContract.h"
#include "zorhost/ReferenceHost.h"

#include "FakeDeviceHelper.h"
#include "ModuleScope.h"

#include <afx/afxres.h>
#include <afx/afxtest.h>

#include <gtest/gtest.h>

#include <deque>
#include <memory>
#include <string>
#include <vector>

// The table frame as the box sees it: applies a level to the shown module (or to every
// module of the workspace) and records each call.
class RecordingFrame : public IAccessLevelFrame {
public:
    IHostDeviceModule* module = nullptr;
    std::vector<IHostDeviceModule*> workspace;
    std::vector<std::string> calls; // "apply 2", "all 1"

    IHostDeviceModule* GetModule() override { return module; }
    void ApplyAccessLevel(IHostDeviceModule* m, int level) override {
        calls.push_back("apply " + std::to_string(level));
        if (m != nullptr)
            m->SetAccessLevel(level);
    }
    void ApplyAccessLevelToAll(int level) override {
        calls.push_back("all " + std::to_string(level));
        if (module != nullptr)
            module->SetAccessLevel(level);
        for (IHostDeviceModule* m : workspace)
            m->SetAccessLevel(level);
    }
};

// Answers the login dialogs that open, in order: the text is typed into the password
// edit, then OK or Cancel is clicked. A dialog with no answer left is cancelled. The
// prompt of each dialog is kept.
class LoginAnswers {
public:
    void Ok(const char* text) { m_answers.push_back({true, text}); }
    void Cancel() { m_answers.push_back({false, ""}); }
    int Shown() const { return m_driver.runs; }
    std::vector<CString> prompts;

private:
    struct Answer {
        bool ok;
        std::string text;
    };
    std::deque<Answer> m_answers;
    CAfxModalDriver m_driver{[this](CDialog& dlg) {
        Answer answer{false, ""};
        if (!m_answers.empty()) {
            answer = m_answers.front();
            m_answers.pop_front();
        }
        prompts.push_back(dlg.GetDlgItem(int(IDC_LOGIN_PROMPT))->GetWindowTextString());
        AfxTestTypeText(dlg.GetDlgItem(IDC_LOGIN_PASSWORD), answer.text.c_str());
        static_cast<CButton*>(dlg.GetDlgItem(answer.ok ? IDOK : IDCANCEL))->Click();
    }};
};

// The page's part: a window with box 1006, whose selection change goes to the selector,
// as on a list page.
class BoxPage : public CDialog {
public:
    static constexpr UINT kId = 31001, kBoxId = 1006;
    BoxPage() : CDialog(kId) {
        DlgTemplate page{kId, "", 300, 80};
        page.controls = {{kBoxId, DlgCtl::ComboDropList, "", 10, 10, 160, 24}};
        AfxRegisterDialog(AfxGetInstanceHandle(), page);
    }
    CNoWheelComboBox box;
    CAccessSelector* selector = nullptr;

protected:
    BOOL OnInitDialog() override {
        CDialog::OnInitDialog();
        box.SubclassDlgItem(kBoxId, this);
        return TRUE;
    }
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override {
        if (LOWORD(wParam) != kBoxId || HIWORD(wParam) != CBN_SELCHANGE)
            return CDialog::OnCommand(wParam, lParam);
        if (selector != nullptr)
            selector->OnAccessSelected();
        return TRUE;
    }
};

// One module of a test project.
struct TestModule {
    const char* file; // under devices/, or an absolute path
    const char* key;
    bool online;
    int level;
};

class AccessTest : public ::testing::Test {
protected:
    void SetUp() override {
        host.Services().Register<IHostDeviceHelper>(&helper);
        ModuleScope::Attach(host.Services());
        ASSERT_TRUE(page.Create(BoxPage::kId));
        page.selector = &selector;
        selector.Attach(&page.box, &frame);
    }
    void TearDown() override {
        page.DestroyWindow();
        ModuleScope::Detach();
    }

    // Opens a project of these modules in the reference host, each with its simulated
    // drive; the first is the module on show, all form the workspace.
    void Open(std::vector<TestModule> modules);
    zorhost::model::CDeviceModule* Module(const char* key) { return host.Module(key); }
    zorhost::sim::SimulatedDrive* Drive(const char* key) { return host.Drive(key); }
    // One refresh cycle with the shown module's "Authority" in the query, as the first
    // page keeps it in its reads.
    void ReadAuthority();
    // The drive itself changes the level it grants (another tool, a power cycle).
    void DriveReports(int level);
    void SetOnline(bool online) { host.SetOnline(Key(), online); }
    CString Key() const {
        CString key;
        frame.module->GetModuleKey(key);
        return key;
    }

    void Fill() { selector.FillAccessBox(); }
    // Simulates the user's choice of entry `index`.
    void Choose(int index) { page.box.ChooseEntry(index); }
    CString EntryText(int index) const {
        CString text;
        page.box.GetLBText(index, text);
        return text;
    }
    int Selected() const { return page.box.GetCurSel(); }
    int SelectedData() const {
        return Selected() >= 0 ? int(page.box.GetItemData(Selected())) : -1;
    }

    zorhost::ReferenceHost host;
    FakeDeviceHelper helper{host.DeviceHelper()}; // the host's, with a record of the writes
    RecordingFrame frame;
    BoxPage page;
    CAccessSelector selector{TRUE};
    CAfxRecordingResponder prompts;
};
