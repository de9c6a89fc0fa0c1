#include "sets_fixture.h"

#include "module/ModuleResources.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "table/TableResources.h"

#include <afx/afxres.h>

#include <cstdlib>
#include <filesystem>

void SetsTest::SetUp() {
    char pattern[] = "/tmp/parmira-sets-XXXXXX";
    ASSERT_NE(::mkdtemp(pattern), nullptr);
    dir = pattern;
    HINSTANCE h = AfxCreateResourceHandle("sets-test");
    theApp.m_hResource = h;
    RegisterModuleResources(h);
    std::string error;
    ASSERT_TRUE(host.LoadDemo(&error)) << error;
    theApp.SetQueryInterfaceCallback(host.Services().Context(), &zorhost::HostServices::Query);
}

void SetsTest::TearDown() {
    theApp.SetQueryInterfaceCallback(0, nullptr);
    theApp.languageListeners.RemoveAll();
    AfxFreeResourceHandle(theApp.m_hResource);
    theApp.m_hResource = nullptr;
    std::error_code ec;
    std::filesystem::remove_all(dir, ec);
}

double SetsTest::Peek(const CString& key, const CString& code) {
    IVarObjEx* var = host.Module(key)->GetVarList()->FindByCode(code);
    double raw = -1;
    EXPECT_NE(var, nullptr) << code;
    if (var != nullptr)
        host.Drive(key)->PeekRaw(var->GetInstanceAddress(), raw);
    return raw;
}

UINT SetsTest::Poke(const CString& key, const CString& code, double raw) {
    IVarObjEx* var = host.Module(key)->GetVarList()->FindByCode(code);
    EXPECT_NE(var, nullptr) << code;
    if (var == nullptr)
        return 0;
    EXPECT_TRUE(host.Drive(key)->PokeRaw(var->GetInstanceAddress(), raw)) << code;
    return var->GetInstanceAddress();
}

void SetsTest::Picture(CWnd* wnd, const char* name) {
    const char* out = std::getenv("PARMIRA_SCREENSHOT_DIR");
    if (out == nullptr || *out == '\0')
        return;
    const std::string path = std::string(out) + "/" + name;
    EXPECT_TRUE(AfxTestGrabWindow(wnd, path.c_str())) << path;
}
