#include "sets_fixture.h"

#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"

void SetsTest::SetUp() {
    std::string error;
    ASSERT_TRUE(host.LoadDemo(&error)) << error;
    ModuleScope::Attach(host.Services());
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

size_t SetsTest::Boxes(const char* text) const {
    size_t n = 0;
    for (const AfxPrompt& p : prompts.prompts)
        n += p.kind == AfxPrompt::MessageBox && p.text == CString(text);
    return n;
}

void SetsTest::Press(CWnd& window, UINT id) {
    window.SendMessage(WM_COMMAND, MAKEWPARAM(WORD(id), WORD(BN_CLICKED)), 0);
}

void SetsTest::Select(CWnd& window, UINT id, int index) {
    auto* box = static_cast<CComboBox*>(window.GetDlgItem(int(id)));
    box->SetCurSel(index < 0 ? box->GetCount() - 1 : index);
    window.SendMessage(WM_COMMAND, MAKEWPARAM(WORD(id), WORD(CBN_SELCHANGE)), 0);
}
