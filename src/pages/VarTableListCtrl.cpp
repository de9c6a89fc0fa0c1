#include "pages/VarTableListCtrl.h"

#include "module/host/IVarObjEx.h"
#include "pages/VarTablePageBase.h"

CString CVarTableListCtrlBase::OnGetCellText(int nItem, int nSubItem) {
    return m_pPage != nullptr ? m_pPage->GetCellText(nItem, nSubItem) : CString();
}

COLORREF CVarTableListCtrlBase::GetCellTextColor(int row, int column) {
    return m_pPage != nullptr ? m_pPage->GetCellTextColor(row, column)
                              : CListCtrlEx::GetCellTextColor(row, column);
}

COLORREF CVarTableListCtrlBase::GetCellBackColor(int row, int column) {
    return m_pPage != nullptr ? m_pPage->GetCellBackColor(row, column)
                              : CListCtrlEx::GetCellBackColor(row, column);
}

void CVarTableListCtrlBase::OnCellButtonClicked(CItemButton* button, int row, int column,
                                                const CString& text) {
    if (m_pPage != nullptr)
        m_pPage->OnCellButtonClicked(button, row, column, text);
}

void CVarTableListCtrlBase::OnCellComboSelected(CItemComBox* combo, int row, int column,
                                                const CString& text) {
    if (m_pPage != nullptr)
        m_pPage->OnCellComboSelected(combo, row, column, text);
}

void CVarTableListCtrlBase::OnCellEditCommitted(int row, int column, const CString& text) {
    if (m_pPage != nullptr)
        m_pPage->OnCellEditCommitted(row, column, text);
}

void CVarTableListCtrlBase::GetCellEditorKind(int& kind, int row, int column) {
    if (m_pPage != nullptr)
        m_pPage->GetCellEditorKind(kind, row, column);
}

void CVarTableListCtrlBase::GetCellEditKind(int& kind, int row, int column) {
    if (m_pPage != nullptr)
        m_pPage->GetCellEditKind(kind, row, column);
}

void CVarTableListCtrlBase::InitCellEditEx(CItemEditEx* edit, int row, int column) {
    if (m_pPage != nullptr)
        m_pPage->InitCellEditEx(edit, row, column);
}

void CVarTableListCtrlBase::InitCellEdit(CItemEdit* edit, int row, int column) {
    if (m_pPage != nullptr)
        m_pPage->InitCellEdit(edit, row, column);
}

void CVarTableListCtrlBase::InitCellCombo(CItemComBox* combo, int row, int column) {
    if (m_pPage != nullptr)
        m_pPage->InitCellCombo(combo, row, column);
}

void CVarTableListCtrlBase::InitCellButton(CItemButton* button, int row, int column) {
    if (m_pPage != nullptr)
        m_pPage->InitCellButton(button, row, column);
}

void CVarTableListCtrl_1::OnMouseMove(UINT nFlags, CPoint point) {
    CVarTableListCtrlBase::OnMouseMove(nFlags, point);
    if (m_pPage == nullptr)
        return;
    if (!m_toolTip.IsCreated() && m_toolTip.Create(this)) {
        m_toolTip.SetMaxTipWidth(500);
        m_toolTip.SetDelayTime(100);
    }
    LVHITTESTINFO hit{};
    hit.pt = point;
    SubItemHitTest(&hit);
    if (hit.iItem == m_tipRow && hit.iSubItem == m_tipColumn)
        return;
    m_tipRow = hit.iItem;
    m_tipColumn = hit.iSubItem;
    const CString text =
        hit.iItem >= 0 ? m_pPage->GetToolTipText(hit.iItem, hit.iSubItem) : CString();
    if (text != m_tipText) {
        m_tipText = text;
        m_toolTip.UpdateTipText(m_tipText.GetString(), this);
    }
}

int CVarTableListCtrl_2::OnGetStateImage(int nItem) {
    IVarObjEx* var = m_pPage != nullptr && nItem >= 0 && nItem < m_pPage->GetShownCount()
                         ? m_pPage->GetShownVar(nItem)
                         : nullptr;
    if (var == nullptr)
        return -1;
    return var->IsChecked() ? 2 : 1;
}
