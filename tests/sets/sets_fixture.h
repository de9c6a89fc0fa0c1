// The module's application object wired to a reference host with the demo drives, for the
// compare and axis copy suites. With PARMIRA_SCREENSHOT_DIR set, tests leave pictures there.
#pragma once

#include "ModuleScope.h"
#include "TempDir.h"

#include <afx/afxtest.h>
#include <zorhost/ReferenceHost.h>

#include <gtest/gtest.h>

#include <string>

class SetsTest : public ::testing::Test {
protected:
    void SetUp() override;

    // The raw value the simulated drive holds at the parameter with function code `code`.
    double Peek(const CString& key, const CString& code);
    // Changes the parameter on the drive itself (as a panel or another tool would).
    UINT Poke(const CString& key, const CString& code, double raw);
    // A click on button `id` of `window`.
    static void Press(CWnd& window, UINT id);
    // Item `index` (-1: the last) chosen in combo box `id` of `window`.
    static void Select(CWnd& window, UINT id, int index);
    // How many message boxes showed `text`.
    size_t Boxes(const char* text) const;

    zorhost::ReferenceHost host;
    ModuleScope scope{"sets-test"};
    TempDir dir;
    CAfxRecordingResponder prompts;
};
