#include "sets/TranslateFailedDialog.h"

#include "module/LocalResource.h"
#include "module/ParmiraApp.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostVarUtil.h"
#include "module/host/IHostWindowTranslator.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "values/ValueText.h"

#include <afx/afxres.h>

#include <memory>

namespace {

// Longest text a cell shows; longer ones are cut without a mark.
constexpr int kMaxCellText = 259;

CString Cut(const CString& text) {
    return text.GetLength() > kMaxCellText ? text.Left(kMaxCellText) : text;
}

} // namespace

void RegisterTranslateFailedResources(HINSTANCE module) {
    if (module == nullptr || AfxFindDialogTemplate(module, IDD_TRANSLATE_FAILED) != nullptr)
        return;
    DlgTemplate dlg{IDD_TRANSLATE_FAILED, "读写失败信息", 760, 420};
    dlg.controls = {
        {IDC_FAILED_LIST, DlgCtl::List, "", 8, 8, 744, 364,
         LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS},
        {UINT(IDOK), DlgCtl::Button, "确定", 668, 382, 84, 28, BS_DEFPUSHBUTTON},
    };
    AfxRegisterDialog(module, dlg);
}

CString CTranslateFailedListCtrl::OnGetCellText(int nItem, int nSubItem) {
    return m_pDialog != nullptr ? m_pDialog->GetCellText(nItem, nSubItem) : CString();
}

int CTranslateFailedListCtrl::OnGetItemImage(int) {
    return 0;
}

CTranslateFailedDialog::CTranslateFailedDialog(CWnd* pParent)
    : CZorSkinPDialog(IDD_TRANSLATE_FAILED, pParent) {
    RegisterTranslateFailedResources(theApp.m_hResource);
}

BOOL CTranslateFailedDialog::OnInitDialog() {
    CZorSkinPDialog::OnInitDialog();
    CLocalResource scope(theApp.m_hResource);
    m_list.SubclassDlgItem(IDC_FAILED_LIST, this);
    m_list.SetDialog(this);
    m_list.SetExtendedStyle(m_list.GetExtendedStyle() | LVS_EX_GRIDLINES | LVS_EX_FULLROWSELECT);
    m_list.SetBkColor(RGB(255, 255, 255));
    // Headers come from the host's text service; without it the table has no columns.
    IHostUiService* ui = theApp.GetUiService();
    if (ui != nullptr) {
        struct Column {
            UINT text;
            int width;
        };
        const Column columns[] = {{2011, 50}, {2013, 80}, {2014, 250},
                                  {2022, 80}, {2015, 80}, {IDS_FAILED_RESULT, 450}};
        int index = 0;
        for (const Column& c : columns) {
            CString header;
            if (!ui->GetString(header, theApp.m_hResource, c.text, 0))
                AfxLoadStringFrom(theApp.m_hResource, c.text, header);
            m_list.InsertColumn(index++, header.GetString(), LVCFMT_LEFT, c.width);
        }
    }
    m_list.SetItemCountEx(m_pFailedVars != nullptr ? int(m_pFailedVars->size()) : 0, 0);
    AddAnchor(IDC_FAILED_LIST, AnchorTopLeft, AnchorBottomRight);
    AddAnchor(IDOK, AnchorBottomRight);
    // Title and button in the user's language; the dialog is modal, so once is enough.
    const std::unique_ptr<IHostWindowTranslator> translated(
        theApp.MakeWindowTranslator(GetSafeHwnd()));
    return TRUE;
}

CString CTranslateFailedDialog::GetCellText(int row, int column) const {
    if (m_pFailedVars == nullptr || row < 0 || row >= int(m_pFailedVars->size()) ||
        theApp.GetUiService() == nullptr)
        return CString();
    IVarObjEx* var = (*m_pFailedVars)[std::size_t(row)];
    IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
    if (attr == nullptr)
        return CString();
    CString text;
    switch (column) {
    case 0:
        text.Format("%04d", row + 1);
        return text;
    case 1:
        var->GetInstanceCode(text);
        return text;
    case 2:
        attr->GetName(text);
        return Cut(VarText::Translate(text));
    case 3:
        text.Format("%d", int(var->GetInstanceAddress()));
        return text;
    case 4:
        if (IHostVarUtil* util = theApp.GetVarUtil())
            util->FormatVariant(text, var->GetValue(), attr->GetDecimals(), FALSE);
        return Cut(text);
    case 5:
        return Cut(VarText::Translate("下载失败！"));
    default:
        return CString();
    }
}
