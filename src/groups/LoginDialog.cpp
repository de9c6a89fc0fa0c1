#include "groups/LoginDialog.h"

#include "module/ParmiraApp.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostWindowTranslator.h"

#include <afx/afxres.h>

void RegisterLoginDialogResources(HINSTANCE module) {
    if (module == nullptr)
        return;
    DlgTemplate login{IDD_LOGIN, "用户权限登录", 320, 116};
    login.controls = {
        {IDC_LOGIN_PROMPT, DlgCtl::Static, kLoginPromptFactoryCode, 20, 4, 280, 20},
        // Labels leave room for their English.
        {UINT(IDC_STATIC), DlgCtl::Static, "密码", 20, 30, 70, 22},
        {IDC_LOGIN_PASSWORD, DlgCtl::Edit, "", 94, 28, 202, 24, ES_PASSWORD | ES_AUTOHSCROLL},
        {IDC_LOGIN_APPLY_ALL, DlgCtl::Check, "应用到项目中所有模块", 94, 56, 202, 20, 0, true},
        {UINT(IDOK), DlgCtl::Button, "确定", 122, 72, 84, 28, BS_DEFPUSHBUTTON},
        {UINT(IDCANCEL), DlgCtl::Button, "取消", 212, 72, 84, 28},
    };
    AfxRegisterDialog(module, login);
}

void CLoginPasswordEdit::OnChar(UINT nChar, UINT nRepCnt, UINT nFlags) {
    // Control characters (backspace and the like) keep their editing role.
    if (nChar < 0x20 || (nChar >= '0' && nChar <= '9'))
        CEdit::OnChar(nChar, nRepCnt, nFlags);
}

CLoginDialog::CLoginDialog(CWnd* pParent) : CZorSkinPDialog(IDD_LOGIN, pParent) {
    // The shell registers the module's resources at start; a module started without them
    // (a test linking the code directly) still finds the template under its handle.
    const HINSTANCE module = theApp.m_hResource;
    if (module != nullptr && AfxFindDialogTemplate(module, IDD_LOGIN) == nullptr)
        RegisterLoginDialogResources(module);
    theApp.AddLanguageListener(this);
}

CLoginDialog::~CLoginDialog() {
    theApp.RemoveLanguageListener(this);
    delete m_pTranslator;
    m_pTranslator = nullptr;
}

BOOL CLoginDialog::OnInitDialog() {
    // Base start with the visual style; it moves the members into the controls.
    EnableVisualStyle(TRUE);
    CZorSkinPDialog::OnInitDialog();
    SetDlgItemText(int(IDC_LOGIN_PROMPT), m_strPrompt.GetString());
    delete m_pTranslator;
    m_pTranslator = theApp.MakeWindowTranslator(GetSafeHwnd());
    return TRUE;
}

void CLoginDialog::DoDataExchange(CDataExchange* pDX) {
    CZorSkinPDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_LOGIN_PASSWORD, m_editPassword);
    DDX_Text(pDX, IDC_LOGIN_PASSWORD, m_strPassword);
    DDX_Check(pDX, IDC_LOGIN_APPLY_ALL, m_nApplyToAll);
}

void CLoginDialog::OnLanguageChanged() {
    if (m_pTranslator != nullptr)
        m_pTranslator->Retranslate(0);
}
