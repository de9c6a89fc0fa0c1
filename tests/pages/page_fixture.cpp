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

void TypeKeys(CWnd* edit, const CString& text) {
    for (int i = 0; i < text.GetLength(); ++i) {
        const wchar_t ch = text.GetAt(i);
        const UINT vk = ch == L'-' ? 0xBD : ch == L'.' ? 0xBE : UINT(std::toupper(int(ch)));
        AfxTestPressKey(edit, vk, ch);
    }
}

} // namespace pt
