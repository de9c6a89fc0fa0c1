#include "groups/AccessSelector.h"

#include "groups/Credentials.h"
#include "groups/LoginDialog.h"
#include "module/LocalResource.h"
#include "module/ParmiraApp.h"
#include "module/host/IHostDeviceHelper.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostVarUtil.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"

#include <afx/afxres.h>

#include <climits>
#include <cmath>

namespace {

// The entry's text from the string table; the text as written when neither the host nor
// the module's table has it, so that the box never shows blank entries.
CString LoadEntryText(UINT id, const char* text) {
    CString result;
    if (IHostUiService* ui = theApp.GetUiService())
        ui->GetString(result, theApp.m_hResource, id, 0);
    if (result.IsEmpty() && theApp.m_hResource != nullptr)
        AfxLoadStringFrom(theApp.m_hResource, id, result);
    if (result.IsEmpty())
        result = text;
    return result;
}

int ClampToInt(double number) {
    if (std::isnan(number))
        return 0;
    if (number >= double(INT_MAX))
        return INT_MAX;
    if (number <= double(INT_MIN))
        return INT_MIN;
    return int(number);
}

} // namespace

int PasswordTextToCode(const CString& text) {
    const std::string& s = text.str();
    size_t i = 0;
    while (i < s.size() && (s[i] == ' ' || s[i] == '\t'))
        ++i;
    bool negative = false;
    if (i < s.size() && (s[i] == '+' || s[i] == '-'))
        negative = s[i++] == '-';
    long long value = 0;
    for (; i < s.size() && s[i] >= '0' && s[i] <= '9'; ++i) {
        value = value * 10 + (s[i] - '0');
        if (value > INT_MAX)
            return negative ? INT_MIN : INT_MAX; // saturates, as the runtime's conversion does
    }
    return int(negative ? -value : value);
}

void CAccessSelector::AddEntry(UINT stringId, const char* text, int level) {
    // Appended in the order given, even if the box was made sorted.
    const int index = m_pBox->InsertString(-1, LoadEntryText(stringId, text).GetString());
    if (index >= 0)
        m_pBox->SetItemData(index, DWORD_PTR(level));
}

void CAccessSelector::FillAccessBox() {
    if (m_pBox == nullptr || m_pFrame == nullptr)
        return;
    IHostDeviceModule* module = m_pFrame->GetModule();
    IHostDeviceHelper* helper = theApp.GetDeviceHelper();
    if (module == nullptr || helper == nullptr)
        return;
    m_pBox->ResetContent();
    const int model = helper->GetProtocolKind(module);
    const int level = module->GetAccessLevel();
    if (model == 0) {
        AddEntry(IDS_ACCESS_ORDINARY_USER, "普通用户", 1);
        AddEntry(IDS_ACCESS_SUPER_ADMIN, "超级管理员", 3);
        SelectEntry(level == 3 ? 1 : 0);
        return;
    }
    if (model != 1 && model != 2)
        return;
    AddEntry(IDS_ACCESS_INSPECTION, "巡视参数", 0);
    AddEntry(IDS_ACCESS_BASIC, "基础参数", 1);
    AddEntry(IDS_ACCESS_EXPERT, "专家参数", 2);
    AddEntry(IDS_ACCESS_FACTORY, "厂家参数", 3);
    if (model == 2)
        AddEntry(IDS_ACCESS_LOG_OUT, "注销登陆", ACCESS_LOG_OUT);
    // Offline the drive can't have granted anything beyond the basic level.
    if (!module->IsOnline() && (level == 0 || level == 1))
        SelectEntry(1);
    else
        SelectEntry(level);
}

void CAccessSelector::SelectEntry(int index) {
    m_pBox->SetCurSel(index);
    // The poll compares the drive's level with what the box shows; a stale index would
    // take a box filled above the drive's level for a rise and never bring it down.
    const int shown = m_pBox->GetCurSel();
    if (m_bFirstPage && shown >= 0)
        m_authorityIndex = shown;
}

BOOL CAccessSelector::RunLogin(CString& password, int& applyToAll) {
    CLoginDialog dlg(m_pBox->GetParent());
    // Online in model 2 the typed figure goes to the drive as its password; everywhere
    // else the module's factory access code is what opens a level.
    IHostDeviceModule* module = m_pFrame != nullptr ? m_pFrame->GetModule() : nullptr;
    IHostDeviceHelper* helper = theApp.GetDeviceHelper();
    if (module != nullptr && helper != nullptr && module->IsOnline() &&
        helper->GetProtocolKind(module) == 2)
        dlg.m_strPrompt = kLoginPromptDrivePassword;
    if (dlg.DoModal() != IDOK)
        return FALSE;
    password = dlg.GetPassword();
    applyToAll = dlg.m_nApplyToAll;
    return TRUE;
}

void CAccessSelector::ShowWrongPassword() {
    CString text = "密码输入错误";
    if (IHostUiService* ui = theApp.GetUiService()) {
        CString translated;
        ui->TranslateText(translated, text);
        if (!translated.IsEmpty())
            text = translated;
    }
    CWnd* parent = m_pBox->GetParent();
    MessageBox(parent != nullptr ? parent->GetSafeHwnd() : nullptr, text.GetString(), "", MB_OK);
}

void CAccessSelector::WriteNamedVar(IHostDeviceModule* module, const char* name, double value) {
    IHostDeviceHelper* helper = theApp.GetDeviceHelper();
    if (helper == nullptr)
        return;
    CString key;
    module->GetModuleKey(key);
    // The drive reports nothing useful back; its authority tells what it made of it.
    helper->WriteNamedVar(key, name, value);
}

void CAccessSelector::WriteFactoryAccessCode(IHostDeviceModule* module) {
    IHostDeviceHelper* helper = theApp.GetDeviceHelper();
    if (module == nullptr || helper == nullptr)
        return;
    const char* name = nullptr;
    switch (helper->GetProtocolKind(module)) {
    case 0:
    case 1:
        name = "Factory";
        break;
    case 2:
        name = "TempAuthority";
        break;
    default:
        return;
    }
    CString key;
    module->GetModuleKey(key);
    helper->WriteNamedVar(key, name, GetFactoryAccessCode());
}

void CAccessSelector::OnAccessSelected() {
    if (m_pBox == nullptr)
        return;
    const int index = m_pBox->GetCurSel();
    if (index < 0)
        return;
    if (m_bFirstPage)
        m_authorityIndex = index;
    if (m_pFrame == nullptr)
        return;
    IHostDeviceModule* module = m_pFrame->GetModule();
    IHostDeviceHelper* helper = theApp.GetDeviceHelper();
    if (module == nullptr || helper == nullptr)
        return;
    CLocalResource scope(theApp.m_hResource);
    const int level = int(m_pBox->GetItemData(index));
    switch (helper->GetProtocolKind(module)) {
    case 0:
        SelectedModel0(module, level);
        break;
    case 1:
        SelectedModel1(module, level);
        break;
    case 2:
        SelectedModel2(module, level);
        break;
    default:
        break;
    }
}

void CAccessSelector::SelectedModel0(IHostDeviceModule* module, int level) {
    // The tool alone keeps the level; the ordinary level is for everyone, at once.
    if (level != 3) {
        m_pFrame->ApplyAccessLevelToAll(level);
        return;
    }
    CString password;
    int applyToAll = 0;
    if (!RunLogin(password, applyToAll)) {
        SelectEntry(0);
        return;
    }
    if (!IsAccessPasswordValid(password)) {
        ShowWrongPassword();
        SelectEntry(0);
        return;
    }
    if (applyToAll != 0)
        m_pFrame->ApplyAccessLevelToAll(3);
    else
        m_pFrame->ApplyAccessLevel(module, 3);
}

void CAccessSelector::SelectedModel1(IHostDeviceModule* module, int level) {
    if (level == 0 || level == 1) {
        m_pFrame->ApplyAccessLevel(module, level);
        return;
    }
    if (level != 2 && level != 3)
        return;
    CString password;
    int applyToAll = 0;
    if (!RunLogin(password, applyToAll)) {
        SelectEntry(0);
        return;
    }
    if (module->IsOnline()) {
        // Online the drive decides: it is given the stored code, whatever was typed, and
        // the tool's level stays where it is.
        const double code = GetFactoryAccessCode();
        if (level == 3)
            WriteNamedVar(module, "Factory", code);
        WriteNamedVar(module, "InputPassword", code);
        return;
    }
    if (IsAccessPasswordValid(password)) {
        m_pFrame->ApplyAccessLevel(module, level);
        return;
    }
    ShowWrongPassword();
    SelectEntry(0);
}

void CAccessSelector::SelectedModel2(IHostDeviceModule* module, int level) {
    if (level == ACCESS_LOG_OUT) {
        if (module->IsOnline()) {
            // The drive drops its authority; the poll brings the tool's level down after it.
            WriteNamedVar(module, "InputPassword", ACCESS_LOG_OUT_CODE);
            m_relockPending = 1;
        } else {
            m_pFrame->ApplyAccessLevel(module, 1);
        }
        return;
    }
    // A level the drive has granted already needs no password.
    if (level <= module->GetDeviceAuthority()) {
        m_pFrame->ApplyAccessLevel(module, level);
        m_relockPending = 0;
        return;
    }
    CString password;
    int applyToAll = 0;
    if (!RunLogin(password, applyToAll))
        return; // the box keeps the chosen entry; the level stays
    if (module->IsOnline()) {
        WriteNamedVar(module, "InputPassword", PasswordTextToCode(password));
        m_relockPending = 1;
    }
    if (IsAccessPasswordValid(password)) {
        module->SetAccessLevel(level);
        m_pFrame->ApplyAccessLevel(module, level);
        m_relockPending = 1;
        return;
    }
    // A code that only the drive knows still raises its authority; the poll follows.
    ShowWrongPassword();
    SelectEntry(0);
}

void CAccessSelector::PollAuthority() {
    if (m_pBox == nullptr || m_pFrame == nullptr)
        return;
    IHostDeviceModule* module = m_pFrame->GetModule();
    if (module == nullptr || !module->IsOnline())
        return;
    IHostVarUtil* util = theApp.GetVarUtil();
    IHostDeviceHelper* helper = theApp.GetDeviceHelper();
    if (util == nullptr || helper == nullptr || helper->GetProtocolKind(module) != 2)
        return;
    IVarObjEx* var = helper->FindNamedVar(module, "Authority");
    if (var == nullptr)
        return;
    const Variant value = var->GetValue();
    IVarAttr* attr = var->GetAttr();
    const double number =
        attr != nullptr ? util->VariantToDouble(value, attr->GetDataType(), attr->GetDecimals())
                        : util->VariantToDouble(value, int(value.vt), 0);
    module->SetDeviceAuthority(ClampToInt(number));

    const int authority = module->GetDeviceAuthority();
    int shown = m_authorityIndex;
    if (!m_bFirstPage) {
        const int index = m_pBox->GetCurSel();
        shown = index >= 0 ? int(m_pBox->GetItemData(index)) : -1;
    }
    if (authority == shown)
        return;
    // A fall always reaches the tool; a rise only right after a password went out.
    if (authority < shown || m_relockPending != 0) {
        SelectEntry(authority);
        if (m_bFirstPage)
            m_authorityIndex = authority;
        m_pFrame->ApplyAccessLevel(module, authority);
        m_relockPending = 0;
    }
}
