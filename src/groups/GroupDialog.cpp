#include "groups/GroupDialog.h"

#include "groups/MultiSelectVarDialog.h"
#include "module/LocalResource.h"
#include "module/ParmiraApp.h"
#include "module/host/IGroupNode.h"
#include "module/host/IGroupSet.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostWindowTranslator.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "values/ValueText.h"

#include <afx/afxres.h>

#include <ctime>

void RegisterGroupDialogResources(HINSTANCE module) {
    if (module == nullptr)
        return;
    // The group tree is wide enough for its labels in English too.
    DlgTemplate picker{IDD_MULTI_SELECT_VAR, "", 940, 420, {}, WS_CHILD};
    picker.controls = {
        {IDC_MSV_TREE, DlgCtl::Tree, "", 0, 0, 320, 390,
         TVS_HASLINES | TVS_HASBUTTONS | TVS_LINESATROOT | TVS_SHOWSELALWAYS},
        {IDC_MSV_LEFT_LIST, DlgCtl::List, "", 326, 0, 310, 390,
         LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS},
        {IDC_MSV_ADD, DlgCtl::Button, ">>", 642, 150, 44, 26},
        {IDC_MSV_REMOVE, DlgCtl::Button, "<<", 642, 190, 44, 26},
        {IDC_MSV_RIGHT_LIST, DlgCtl::List, "", 692, 0, 248, 356,
         LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS},
        {IDC_MSV_UP, DlgCtl::Button, "上移", 692, 362, 110, 26},
        {IDC_MSV_DOWN, DlgCtl::Button, "下移", 808, 362, 110, 26},
        {UINT(IDC_STATIC), DlgCtl::Static, "按住CTRL或SHIFT选中多项", 0, 396, 400, 20},
    };
    AfxRegisterDialog(module, picker);

    DlgTemplate group{IDD_GROUP_DIALOG, "参数组属性", 960, 520};
    group.controls = {
        // Labels leave room for their English.
        {UINT(IDC_STATIC), DlgCtl::Static, "名称", 10, 14, 70, 20},
        {IDC_GROUP_NAME, DlgCtl::Edit, "", 84, 10, 250, 24, ES_AUTOHSCROLL},
        {UINT(IDC_STATIC), DlgCtl::Static, "描述", 350, 14, 90, 20},
        {IDC_GROUP_DESCRIPTION, DlgCtl::Edit, "", 444, 10, 506, 24, ES_AUTOHSCROLL},
        {IDC_GROUP_PICKER_FRAME, DlgCtl::Custom, "", 10, 44, 940, 420},
        {UINT(IDOK), DlgCtl::Button, "确定", 770, 478, 84, 28, BS_DEFPUSHBUTTON},
        {UINT(IDCANCEL), DlgCtl::Button, "取消", 866, 478, 84, 28},
    };
    AfxRegisterDialog(module, group);
}

CGroupDialog::CGroupDialog(CWnd* pParent) : CZorSkinPDialog(IDD_GROUP_DIALOG, pParent) {
    const HINSTANCE module = theApp.m_hResource;
    if (module != nullptr && AfxFindDialogTemplate(module, IDD_GROUP_DIALOG) == nullptr)
        RegisterGroupDialogResources(module);
    theApp.AddLanguageListener(this);
}

CGroupDialog::~CGroupDialog() {
    theApp.RemoveLanguageListener(this);
    delete m_pPicker;
    m_pPicker = nullptr;
    delete m_pTranslator;
    m_pTranslator = nullptr;
}

BOOL CGroupDialog::OnInitDialog() {
    EnableVisualStyle(TRUE);
    CZorSkinPDialog::OnInitDialog();
    CLocalResource scope(theApp.m_hResource);
    if (m_pPicker == nullptr) {
        m_pPicker = new CMultiSelectVarDialog;
        m_pPicker->SetVarStore(m_pStore);
        if (CWnd* frame = GetDlgItem(int(IDC_GROUP_PICKER_FRAME))) {
            m_pPicker->Create(IDD_MULTI_SELECT_VAR, frame);
            CRect inside;
            frame->GetClientRect(&inside);
            m_pPicker->MoveWindow(&inside);
            m_pPicker->ShowWindow(SW_SHOW);
        }
    }
    if (m_pGroup != nullptr && m_pStore != nullptr) {
        m_pGroup->GetName(m_strName);
        if (m_strName.IsEmpty()) {
            // A new group: a name the user may keep as it is.
            const std::time_t now = std::time(nullptr);
            std::tm local{};
            localtime_r(&now, &local);
            m_strName.Format("%d-%02d-%02d_%02d_%02d_%02d", local.tm_year + 1900, local.tm_mon + 1,
                             local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec);
        }
        m_pGroup->GetDescription(m_strDescription);
        // Members the store no longer knows are dropped here, and so from the group at OK.
        CVarRows chosen;
        for (int i = 0; i < m_pGroup->GetMemberCount(); ++i) {
            CString key;
            if (!m_pGroup->GetMemberAt(i, key))
                continue;
            if (IVarObjEx* var = m_pStore->FindByCode(key))
                chosen.Add(var, var);
        }
        m_pPicker->SetChosenVars(chosen);
    }
    delete m_pTranslator;
    m_pTranslator = theApp.MakeWindowTranslator(GetSafeHwnd());
    UpdateData(FALSE);
    return TRUE;
}

void CGroupDialog::OnDestroy() {
    if (m_pPicker != nullptr) {
        m_pPicker->DestroyWindow();
        delete m_pPicker;
        m_pPicker = nullptr;
    }
    CZorSkinPDialog::OnDestroy();
}

void CGroupDialog::DoDataExchange(CDataExchange* pDX) {
    CZorSkinPDialog::DoDataExchange(pDX);
    DDX_Text(pDX, int(IDC_GROUP_NAME), m_strName);
    DDX_Text(pDX, int(IDC_GROUP_DESCRIPTION), m_strDescription);
}

void CGroupDialog::RefuseName(const CString& text) {
    MessageBox(GetSafeHwnd(), VarText::Translate(text).GetString(),
               VarText::Translate("警告").GetString(), MB_OK | MB_ICONWARNING);
    if (auto* edit = static_cast<CEdit*>(GetDlgItem(int(IDC_GROUP_NAME)))) {
        GotoDlgCtrl(edit);
        edit->SetSel(0, -1);
    }
}

void CGroupDialog::OnOK() {
    if (!UpdateData(TRUE))
        return;
    // The members change first, whatever becomes of the name.
    if (m_pStore != nullptr && m_pGroup != nullptr && m_pPicker != nullptr) {
        m_pGroup->ClearMembers();
        CVarRows chosen;
        m_pPicker->GetChosenVars(chosen);
        for (int i = 0; i < chosen.GetCount(); ++i) {
            CString key;
            chosen.GetAt(i)->GetInstanceGuid(key);
            m_pGroup->AddMember(key);
        }
    }
    if (theApp.GetUiService() == nullptr || m_pStore == nullptr)
        return;
    CString name = m_strName;
    name.Trim();
    if (name.IsEmpty()) {
        RefuseName("对象不能为空.");
        return;
    }
    if (m_pGroup != nullptr) {
        CString oldName;
        m_pGroup->GetName(oldName);
        IGroupSet* custom = m_pStore->GetGroupRoot(1);
        if (oldName.CompareNoCase(name) != 0 && custom != nullptr &&
            custom->FindByName(name) != nullptr) {
            CString text;
            text.Format(VarText::Translate("错误,对象'%s'已经存在.").GetString(), name.GetString());
            MessageBox(GetSafeHwnd(), text.GetString(), VarText::Translate("警告").GetString(),
                       MB_OK | MB_ICONWARNING);
            if (auto* edit = static_cast<CEdit*>(GetDlgItem(int(IDC_GROUP_NAME)))) {
                GotoDlgCtrl(edit);
                edit->SetSel(0, -1);
            }
            return;
        }
        m_pGroup->SetName(name);
        m_pGroup->SetDescription(m_strDescription);
    }
    EndDialog(IDOK);
}

void CGroupDialog::OnLanguageChanged() {
    if (m_pTranslator != nullptr)
        m_pTranslator->Retranslate(0);
}
