#include "table_host.h"

#include "module/ParmiraApp.h"
#include "table/VarTable.h"

#include <afx/afxres.h>

#include <filesystem>

namespace tt {

TestPage* g_pages[2] = {nullptr, nullptr};

CVarTablePage* MakeTestPage(int style) {
    auto* page = new TestPage(style == 0 ? IDD_VAR_TABLE_PAGE1 : IDD_VAR_TABLE_PAGE2);
    if (style == 0 || style == 1)
        g_pages[style] = page;
    return page;
}

TableHost::TableHost(bool testPages) {
    std::filesystem::create_directories(tempDir + "/bin");
    std::filesystem::create_directories(tempDir + "/Config");
    util.installDir = CString(tempDir + "/bin");

    services.Register<IHostVarUtil>(&util);
    services.Register<IHostUiService>(&ui);
    helper.acceptWrites = false;
    services.Register<IHostDeviceHelper>(&helper);
    services.Register<IHostProductDb>(&products);
    services.Register<IHostProjectRoot>(&project);
    services.Register<IHostRefreshService>(&refresh);
    services.Register<IHostTransferService>(&transfer);
    services.Register<IHostModuleManager>(&manager);

    HINSTANCE h = scope.Handle();
    if (testPages) {
        AfxRegisterDialog(h, DlgTemplate{IDD_VAR_TABLE_PAGE1, "", 500, 500, {}, WS_CHILD});
        AfxRegisterDialog(h, DlgTemplate{IDD_VAR_TABLE_PAGE2, "", 500, 500, {}, WS_CHILD});
    }
    AfxRegisterDialog(h, DlgTemplate{9901, "frame test", 900, 600, {}, WS_POPUP});
    g_pages[0] = g_pages[1] = nullptr;
    CVarTable::SetPageFactory(testPages ? &MakeTestPage : nullptr);
    ModuleScope::Attach(services);
}

TableHost::~TableHost() {
    ModuleScope::Detach();
    CVarTable::SetPageFactory(nullptr);
}

Module* TableHost::AddModule(const char* key) {
    modules.push_back(std::make_unique<Module>());
    Module* m = modules.back().get();
    m->key = key;
    project.modules.push_back(m);
    return m;
}

} // namespace tt
