// The module's application object wired to a reference host with the demo drives, for the
// compare and axis copy suites. With PARMIRA_SCREENSHOT_DIR set, tests leave pictures there.
#pragma once

#include "ModuleScope.h"
#include "TempDir.h"

#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"

#include <afx/afxtest.h>
#include <zorhost/ReferenceHost.h>

#include <gtest/gtest.h>

#include <string>

class SetsTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::string error;
        ASSERT_TRUE(host.LoadDemo(&error)) << error;
        ModuleScope::Attach(host.Services());
    }

    // The raw value the simulated drive holds at the parameter with function code `code`.
    double Peek(const CString& key, const CString& code) {
        double raw = -1;
        if (IVarObjEx* var = Find(key, code))
            host.Drive(key)->PeekRaw(var->GetInstanceAddress(), raw);
        return raw;
    }
    // Changes the parameter on the drive itself (as a panel or another tool would).
    UINT Poke(const CString& key, const CString& code, double raw) {
        IVarObjEx* var = Find(key, code);
        if (var == nullptr)
            return 0;
        EXPECT_TRUE(host.Drive(key)->PokeRaw(var->GetInstanceAddress(), raw)) << code;
        return var->GetInstanceAddress();
    }
    // A click on button `id` of `window`.
    static void Press(CWnd& window, UINT id) {
        window.SendMessage(WM_COMMAND, MAKEWPARAM(WORD(id), WORD(BN_CLICKED)), 0);
    }
    // Item `index` (-1: the last) chosen in combo box `id` of `window`.
    static void Select(CWnd& window, UINT id, int index) {
        auto* box = static_cast<CComboBox*>(window.GetDlgItem(int(id)));
        box->SetCurSel(index < 0 ? box->GetCount() - 1 : index);
        window.SendMessage(WM_COMMAND, MAKEWPARAM(WORD(id), WORD(CBN_SELCHANGE)), 0);
    }
    // How many message boxes showed `text`.
    size_t Boxes(const char* text) const {
        size_t n = 0;
        for (const AfxPrompt& p : prompts.prompts)
            n += p.kind == AfxPrompt::MessageBox && p.text == CString(text);
        return n;
    }

    zorhost::ReferenceHost host;
    ModuleScope scope{"sets-test"};
    TempDir dir;
    CAfxRecordingResponder prompts;

private:
    IVarObjEx* Find(const CString& key, const CString& code) {
        IVarObjEx* var = host.Module(key)->GetVarList()->FindByCode(code);
        EXPECT_NE(var, nullptr) << code;
        return var;
    }
};
