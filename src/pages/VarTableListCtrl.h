// The lists of the two pages: each question of the list goes to its page.
#pragma once

#include "pages/ListCtrlEx.h"

class CVarTablePageBase;

class CVarTableListCtrlBase : public CListCtrlEx {
public:
    void SetPage(CVarTablePageBase* page) { m_pPage = page; }
    CVarTablePageBase* GetPage() const { return m_pPage; }

    CString OnGetCellText(int nItem, int nSubItem) override;
    COLORREF GetCellTextColor(int row, int column) override;
    COLORREF GetCellBackColor(int row, int column) override;
    void OnCellButtonClicked(CItemButton* button, int row, int column,
                             const CString& text) override;
    void OnCellComboSelected(CItemComBox* combo, int row, int column, const CString& text) override;
    void OnCellEditCommitted(int row, int column, const CString& text) override;
    void GetCellEditorKind(int& kind, int row, int column) override;
    void GetCellEditKind(int& kind, int row, int column) override;
    void InitCellEditEx(CItemEditEx* edit, int row, int column) override;
    void InitCellEdit(CItemEdit* edit, int row, int column) override;
    void InitCellCombo(CItemComBox* combo, int row, int column) override;
    void InitCellButton(CItemButton* button, int row, int column) override;

protected:
    CVarTablePageBase* m_pPage = nullptr;
};

class CVarTableListCtrl_1 : public CVarTableListCtrlBase {
public:
    // The tip over the cell under the mouse, renewed only when cell or text changed.
    const CString& GetToolTipText() const { return m_tipText; }
    const CToolTipCtrl& GetToolTip() const { return m_toolTip; }

protected:
    void OnMouseMove(UINT nFlags, CPoint point) override;

private:
    int m_tipRow = -1;
    int m_tipColumn = -1;
    CString m_tipText;
    // Made on the first mouse move.
    CToolTipCtrl m_toolTip;
};

// The staging list: its check boxes show the check marks the host keeps per variable.
class CVarTableListCtrl_2 : public CVarTableListCtrlBase {
public:
    int OnGetStateImage(int nItem) override;
};
