// The frame's side of the dialogs that work on whole parameter sets: the compare dialog it
// owns, and the axis copy it runs for a page.
#include "module/LocalResource.h"
#include "module/ParmiraApp.h"
#include "sets/ParamCompareDlg.h"
#include "sets/ShaftCopyDialog.h"
#include "table/VarTable.h"

void CVarTable::OpenCompareDialog() {
    CLocalResource scope(theApp.m_hResource);
    if (m_pCompareDlg == nullptr) {
        auto* dialog = new CParamCompareDlg(this);
        dialog->SetModule(m_pModule);
        if (!dialog->Create(IDD_PARAM_COMPARE, this)) {
            delete dialog;
            return;
        }
        m_pCompareDlg = dialog;
    }
    m_pCompareDlg->ShowWindow(SW_SHOW);
}

void CVarTable::CloseCompareDialog() {
    CParamCompareDlg* dialog = m_pCompareDlg;
    m_pCompareDlg = nullptr;
    if (dialog == nullptr)
        return;
    if (dialog->GetSafeHwnd() != nullptr)
        dialog->DestroyWindow();
    delete dialog;
}

void CVarTable::OpenAxisCopyDialog(CWnd* parent) {
    CLocalResource scope(theApp.m_hResource);
    CShaftCopyDialog dialog(parent != nullptr ? parent : this);
    dialog.SetModule(m_pModule);
    dialog.DoModal();
}
