// The module's application object wired to a reference host with the demo drives, for the
// compare and axis copy suites. With PARMIRA_SCREENSHOT_DIR set, tests leave pictures there.
#pragma once

#include "module/ParmiraApp.h"

#include <afx/afxtest.h>
#include <zorhost/ReferenceHost.h>

#include <gtest/gtest.h>

#include <string>

class SetsTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // The raw value the simulated drive holds at the parameter with function code `code`.
    double Peek(const CString& key, const CString& code);
    // Changes the parameter on the drive itself (as a panel or another tool would).
    UINT Poke(const CString& key, const CString& code, double raw);
    // Leaves a picture of `wnd` when PARMIRA_SCREENSHOT_DIR is set.
    static void Picture(CWnd* wnd, const char* name);

    zorhost::ReferenceHost host;
    std::string dir; // a fresh temporary folder
};
