#include "sets/VarTableListCtrlOneKey.h"

#include "sets/OneKeyParseRecipeDialog.h"

CString CVarTableListCtrl_OneKey::OnGetCellText(int nItem, int nSubItem) {
    return m_pDialog != nullptr ? m_pDialog->GetCellText(nItem, nSubItem) : CString();
}

COLORREF CVarTableListCtrl_OneKey::GetCellBackColor(int row, int) {
    return m_pDialog != nullptr ? m_pDialog->GetRowBackground(row) : RGB(255, 255, 255);
}
