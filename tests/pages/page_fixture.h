// The live list of the demo servo: the reference host with its drives, the module's
// resources under a handle of the test, and the real frame with its pages inside a
// top-level test window.
#pragma once

#include "module/host/HostContract.h"
#include "pages/VarTablePage1.h"
#include "pages/VarTablePage2.h"
#include "table/VarTable.h"
#include "zorhost/ReferenceHost.h"
#include "zorhost/sim/SimulatedDrive.h"

#include "DriveWrites.h"
#include "ModuleScope.h"

#include <afx/afxtest.h>

#include <gtest/gtest.h>

#include <cctype>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace pt {

// The value column of the single-axis live list.
constexpr int kValueColumn = 3;

class PageTest : public ::testing::Test {
protected:
    static constexpr UINT kParentId = 9951;

    void SetUp() override {
        std::string error;
        ASSERT_TRUE(host.LoadDemo(&error)) << error;
        scope.AddParentDialog(kParentId, 1200, 720);
        ModuleScope::Attach(host.Services());
    }
    void TearDown() override { CloseFrame(); }

    // Opens the frame on the servo; the live list shows all parameters.
    void OpenFrame(const char* moduleKey = "ZD3S") {
        zorhost::model::CDeviceModule* m = host.Module(moduleKey);
        ASSERT_NE(m, nullptr);
        m->SetAccessLevel(3);
        module = m;
        drive = host.Drive(moduleKey);
        ASSERT_TRUE(parent.Create(kParentId, nullptr));
        table = std::make_unique<CVarTable>();
        table->SetWorkspace(host.Project()->GetWorkspace());
        table->SetModule(m);
        ASSERT_TRUE(table->Create(IDD_VAR_TABLE, &parent));
        table->MoveWindow(0, 0, 1200, 720);
        parent.ShowWindow(SW_SHOW);
        ASSERT_NE(table->GetPage1(), nullptr);
        ASSERT_NE(Page().GetSafeHwnd(), nullptr);
    }
    void CloseFrame() {
        if (table != nullptr && table->GetSafeHwnd() != nullptr)
            table->DestroyWindow();
        table.reset();
        if (parent.GetSafeHwnd() != nullptr)
            parent.DestroyWindow();
    }

    CVarTablePage1& Page() { return *static_cast<CVarTablePage1*>(table->GetPage1()); }
    CVarTablePage2& Page2() { return *static_cast<CVarTablePage2*>(table->GetPage2()); }
    CVarTableListCtrl_1& List() { return Page().GetPageList(); }
    IVarStore* Store() { return table->GetVarList(); }
    // Shows the group `name` of the fixed groups on `page` (the first page unless told).
    void ShowGroup(const char* name, CVarTablePage* page = nullptr) {
        IGroupSet* root = Store()->GetGroupRoot(0);
        ASSERT_NE(root, nullptr);
        IGroupNode* group = root->FindByName(name);
        ASSERT_NE(group, nullptr) << name;
        (page != nullptr ? page : &Page())->ShowGroup(group, Store());
    }
    // The row of `code` among the rows `page` (the first page unless told) shows, -1 when
    // it is not shown.
    int RowOf(const char* code, CVarTablePage* page = nullptr) {
        if (page == nullptr)
            page = &Page();
        for (int i = 0; i < page->GetShownCount(); ++i) {
            CString c;
            page->GetShownVar(i)->GetAttr()->GetCode(c);
            if (c == code)
                return i;
        }
        return -1;
    }
    // The first row of the first page whose parameter matches, -1 when none does.
    int FindRow(const std::function<bool(IVarAttr*)>& match) {
        for (int i = 0; i < Page().GetShownCount(); ++i)
            if (match(Page().GetShownVar(i)->GetAttr()))
                return i;
        return -1;
    }
    // The kind of a parameter's value meaning, 0 for a plain number.
    static int Kind(IVarAttr* a) {
        return a->GetValueInfo() != nullptr ? a->GetValueInfo()->GetKind() : 0;
    }
    IVarObjEx* Var(const char* code) { return Store()->FindByCode(code); }
    UINT Address(const char* code) {
        IVarObjEx* var = Var(code);
        return var != nullptr ? var->GetInstanceAddress() : 0;
    }
    double DriveValue(const char* code) {
        double raw = -12345;
        drive->PeekRaw(Address(code), raw);
        return raw;
    }
    // The addresses the drive was asked to write since the last call, in order.
    std::vector<UINT> Writes() { return TakeWrites(*drive); }
    // Runs one read cycle for what the page asked, the way the host's clock does.
    void ReadCycle() {
        Page().SubmitRefreshQuery();
        host.Refresh().RunCycle();
        Pump();
    }
    void Pump() {
        int n = 0;
        AfxPumpMessagesUntil([&] { return ++n > 3; }, 200);
    }

    zorhost::ReferenceHost host;
    ModuleScope scope{"pages-test"};
    CDialog parent;
    std::unique_ptr<CVarTable> table;
    zorhost::sim::SimulatedDrive* drive = nullptr;
    IHostDeviceModule* module = nullptr;
    CAfxRecordingResponder prompts;
};

// The live list of the demo servo, open from the start.
class ServoPageTest : public PageTest {
protected:
    void SetUp() override {
        PageTest::SetUp();
        OpenFrame();
    }
};

// Types `text` key by key into `edit`, as a user does.
inline void TypeKeys(CWnd* edit, const CString& text) {
    for (int i = 0; i < text.GetLength(); ++i) {
        const wchar_t ch = text.GetAt(i);
        const UINT vk = ch == L'-' ? 0xBD : ch == L'.' ? 0xBE : UINT(std::toupper(int(ch)));
        AfxTestPressKey(edit, vk, ch);
    }
}
inline void ClickOk(CDialog& dialog) {
    static_cast<CButton*>(dialog.GetDlgItem(IDOK))->Click();
}

} // namespace pt
