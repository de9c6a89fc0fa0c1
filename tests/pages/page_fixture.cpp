#include "page_fixture.h"

#include <cctype>

namespace pt {

namespace {
constexpr UINT IDD_TEST_PARENT = 9951;
}

void PageTest::SetUp() {
    std::string error;
    ASSERT_TRUE(host.LoadDemo(&error)) << error;
    refresh = std::make_unique<FakeRefreshService>(host.Refresh());
    host.Services().Register<IHostRefreshService>(refresh.get());
    scope.AddParentDialog(IDD_TEST_PARENT, 1200, 720);
    ModuleScope::Attach(host.Services());
}

void PageTest::OpenFrame(const char* moduleKey) {
    zorhost::model::CDeviceModule* m = host.Module(moduleKey);
    ASSERT_NE(m, nullptr);
    m->SetAccessLevel(3);
    module = m;
    drive = host.Drive(moduleKey);
    ASSERT_TRUE(parent.Create(IDD_TEST_PARENT, nullptr));
    table = std::make_unique<CVarTable>();
    table->SetWorkspace(host.Project()->GetWorkspace());
    table->SetModule(m);
    ASSERT_TRUE(table->Create(IDD_VAR_TABLE, &parent));
    table->MoveWindow(0, 0, 1200, 720);
    parent.ShowWindow(SW_SHOW);
    ASSERT_NE(table->GetPage1(), nullptr);
    ASSERT_NE(Page().GetSafeHwnd(), nullptr);
}

void PageTest::CloseFrame() {
    if (table != nullptr && table->GetSafeHwnd() != nullptr)
        table->DestroyWindow();
    table.reset();
    if (parent.GetSafeHwnd() != nullptr)
        parent.DestroyWindow();
}

void PageTest::ShowGroup(const char* name, CVarTablePage* page) {
    IGroupSet* root = Store()->GetGroupRoot(0);
    ASSERT_NE(root, nullptr);
    IGroupNode* group = root->FindByName(name);
    ASSERT_NE(group, nullptr) << name;
    (page != nullptr ? page : &Page())->ShowGroup(group, Store());
}

int PageTest::RowOf(const char* code, CVarTablePage* page) {
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

int PageTest::FindRow(const std::function<bool(IVarAttr*)>& match) {
    for (int i = 0; i < Page().GetShownCount(); ++i)
        if (match(Page().GetShownVar(i)->GetAttr()))
            return i;
    return -1;
}

std::vector<UINT> PageTest::Writes() {
    std::vector<UINT> addresses;
    for (const zorhost::sim::DriveRequest& r : drive->TakeRequests())
        if (r.kind == zorhost::sim::DriveRequest::Write)
            addresses.push_back(r.address);
    return addresses;
}

void TypeKeys(CWnd* edit, const CString& text) {
    for (int i = 0; i < text.GetLength(); ++i) {
        const wchar_t ch = text.GetAt(i);
        const UINT vk = ch == L'-' ? 0xBD : ch == L'.' ? 0xBE : UINT(std::toupper(int(ch)));
        AfxTestPressKey(edit, vk, ch);
    }
}

} // namespace pt
