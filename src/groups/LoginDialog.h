// CLoginDialog: asks for the password of a higher access level. The dialog only collects
// the text; the caller decides what it opens.
#pragma once

#include "module/host/HostFwd.h"
#include "module/host/IMessage_LanguageChanged.h"

#include <skin/ZorSkin.h>

constexpr UINT IDD_LOGIN = 1956;
constexpr UINT IDC_LOGIN_PASSWORD = 2069;
constexpr UINT IDC_LOGIN_APPLY_ALL = 2083;
constexpr UINT IDC_LOGIN_PROMPT = 2084;

// What the password field wants. The field takes digits only, so both are numbers.
inline const char* const kLoginPromptFactoryCode = "请输入出厂访问码（4位数字）";
inline const char* const kLoginPromptDrivePassword = "请输入驱动器密码（数字）";

// Registers the dialog's template under `module` (the module's resource handle).
void RegisterLoginDialogResources(HINSTANCE module);

// The password edit: only digits come in from the keyboard; text set by the program or
// pasted is taken as it is.
class CLoginPasswordEdit : public CEdit {
protected:
    void OnChar(UINT nChar, UINT nRepCnt, UINT nFlags) override;
};

class CLoginDialog : public CZorSkinPDialog, public IMessage_LanguageChanged {
public:
    explicit CLoginDialog(CWnd* pParent = nullptr);
    ~CLoginDialog() override;

    // A copy of the password as it stood when OK was pressed.
    CString GetPassword() const { return m_strPassword; }

    // IMessage_LanguageChanged
    void OnLanguageChanged() override;

    // The line above the field that says which credential is wanted; set before the run.
    CString m_strPrompt = kLoginPromptFactoryCode;
    // Bound to edit 2069; empty at first.
    CString m_strPassword;
    // Bound to check box 2083 "apply to all modules of the project". The box is not shown,
    // so a finished dialog always reports 1.
    int m_nApplyToAll = 1;

protected:
    BOOL OnInitDialog() override;
    void DoDataExchange(CDataExchange* pDX) override;

private:
    CLoginPasswordEdit m_editPassword;
    IHostWindowTranslator* m_pTranslator = nullptr;
};
