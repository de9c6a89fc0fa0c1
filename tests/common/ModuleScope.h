// The module's application object set up for one test, as the loader and the host would
// set it up: its resources (and the frame's) under a handle of the test, and a host's
// services behind the query callback. Everything is given back when the scope ends, so
// declare it after the host it is attached to.
#pragma once

#include "module/ModuleResources.h"
#include "module/ParmiraApp.h"
#include "table/TableResources.h"

#include <afx/afxres.h>
#include <zorhost/HostServices.h>

#include <gtest/gtest.h>

class ModuleScope {
public:
    explicit ModuleScope(const char* name) {
        HINSTANCE h = AfxCreateResourceHandle(name);
        theApp.m_hResource = h;
        RegisterModuleResources(h);
        RegisterTableResources(h);
    }
    ~ModuleScope() {
        Detach();
        theApp.languageListeners.RemoveAll();
        AfxFreeResourceHandle(theApp.m_hResource);
        theApp.m_hResource = nullptr;
    }
    ModuleScope(const ModuleScope&) = delete;
    ModuleScope& operator=(const ModuleScope&) = delete;

    HINSTANCE Handle() const { return theApp.m_hResource; }
    // A top-level window template for the test's frame or panel to live in.
    void AddParentDialog(UINT id, int width, int height) {
        AfxRegisterDialog(Handle(), DlgTemplate{id, "Parmira", width, height, {}, WS_POPUP});
    }
    static void Attach(zorhost::HostServices& services) {
        theApp.SetQueryInterfaceCallback(services.Context(), &zorhost::HostServices::Query);
    }
    static void Detach() { theApp.SetQueryInterfaceCallback(0, nullptr); }
};

// For suites that start the module once for the whole run instead, as the loader would.
class ModuleStartedForTheRun : public ::testing::Environment {
public:
    void SetUp() override { AfxStartApp(&theApp, "QXParmira"); }
    void TearDown() override { AfxStopApp(&theApp); }
};
