// The live list of the demo servo: the reference host with its drives, the module's
// resources under a handle of the test, and the real frame with its pages inside a
// top-level test window.
#pragma once

#include "module/host/IHostRefreshService.h"
#include "pages/VarTablePage1.h"
#include "table/VarTable.h"
#include "zorhost/ReferenceHost.h"

#include "ModuleScope.h"

#include <afx/afxtest.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace pt {

// Passes every query on to the host and keeps the addresses of the last one.
class RecordingRefresh : public IHostRefreshService {
public:
    explicit RecordingRefresh(zorhost::CHostRefreshService& real) : m_real(real) {}
    void AddRefreshListener(IRefreshQueryEvent* l) override { m_real.AddRefreshListener(l); }
    void RemoveRefreshListener(IRefreshQueryEvent* l) override { m_real.RemoveRefreshListener(l); }
    IHostRefreshQuery* NewQuery() override { return m_real.NewQuery(); }
    void SubmitQuery(IHostRefreshQuery* query) override;

    std::vector<UINT> lastAddresses;
    int submitted = 0;

private:
    zorhost::CHostRefreshService& m_real;
};

class PageTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Opens the frame on the servo; the live list shows all parameters.
    void OpenFrame(const char* moduleKey = "ZD3S");
    void CloseFrame();

    CVarTablePage1& Page() { return *static_cast<CVarTablePage1*>(table->GetPage1()); }
    CVarTableListCtrl_1& List() { return Page().GetPageList(); }
    IVarStore* Store() { return table->GetVarList(); }
    // Shows the group `name` of the fixed groups.
    void ShowGroup(const char* name);
    // The row of `code` among the rows `page` (the first page unless told) shows, -1 when
    // it is not shown.
    int RowOf(const char* code, CVarTablePage* page = nullptr);
    IVarObjEx* Var(const char* code);
    UINT Address(const char* code);
    double DriveValue(const char* code);
    // Runs one read cycle for what the page asked, the way the host's clock does.
    void ReadCycle();
    void Pump();
    // Types `text` into the open numeric edit of the list.
    void TypeIntoEdit(CWnd& edit, const char* text);

    zorhost::ReferenceHost host;
    ModuleScope scope{"pages-test"};
    std::unique_ptr<RecordingRefresh> refresh;
    CDialog parent;
    std::unique_ptr<CVarTable> table;
    zorhost::sim::SimulatedDrive* drive = nullptr;
    IHostDeviceModule* module = nullptr;
};

} // namespace pt
