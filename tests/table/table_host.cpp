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

namespace {

// The texts the frame shows, as the string table holds them.
void RegisterTextsIfMissing(HINSTANCE h) {
    const std::pair<UINT, const char*> texts[] = {
        {IDS_TREE_ROOT, "参数组"},
        {IDS_TREE_MODIFIED, "已修改参数"},
        {IDS_TREE_CUSTOM, "自定义"},
        {IDS_TREE_ALL, "所有参数"},
        {IDS_FACTORY_NOTICE,
         "注：H00、H01组为厂家参数，请慎重修改，\n如需操作请先输入厂家密码（功能码H0241）！"},
        {IDS_OLD_PROTOCOL_REFUSED, "老设备协议不支持该操作."},
        {2013, "参数"},
        {2014, "参数名称"},
        {2009, "当前值"},
        {2016, "出厂值"},
        {2019, "单位"},
        {2017, "最小值"},
        {2018, "最大值"},
        {2020, "修改方式"},
        {2022, "通讯地址(Dec)"},
        {2023, "变量类型"},
    };
    for (const auto& [id, text] : texts) {
        CString have;
        if (!AfxLoadStringFrom(h, id, have))
            AfxRegisterString(h, id, text);
    }
}

} // namespace

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
    RegisterTextsIfMissing(h);
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
