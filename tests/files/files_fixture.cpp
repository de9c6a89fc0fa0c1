#include "files_fixture.h"

#include "module/ModuleResources.h"
#include "module/ParmiraApp.h"
#include "table/TableResources.h"

#include <afx/afxres.h>

#include <fstream>
#include <sstream>

namespace ft {

void FilesTest::SetUp() {
    std::string error;
    ASSERT_TRUE(host.LoadDemo(&error)) << error;
    ASSERT_TRUE(dir.isValid());
    module = host.Module("ZD3S");
    ASSERT_NE(module, nullptr);
    HINSTANCE h = AfxCreateResourceHandle("files-test");
    theApp.m_hResource = h;
    RegisterModuleResources(h);
    RegisterTableResources(h);
    theApp.SetQueryInterfaceCallback(host.Services().Context(), &zorhost::HostServices::Query);
}

void FilesTest::TearDown() {
    host.ModuleManager().SetProgressObserver(nullptr);
    theApp.SetQueryInterfaceCallback(0, nullptr);
    theApp.languageListeners.RemoveAll();
    AfxFreeResourceHandle(theApp.m_hResource);
    theApp.m_hResource = nullptr;
}

} // namespace ft
