// CVarTableListCtrl_OneKey: the recipe dialog's row list. It stores nothing: cell texts
// and row colours are asked of the dialog whenever the list draws.
#pragma once

#include "pages/ListCtrlEx.h"

class COneKeyParseRecipeDialog;

class CVarTableListCtrl_OneKey : public CListCtrlEx {
public:
    void SetDialog(COneKeyParseRecipeDialog* dialog) { m_pDialog = dialog; }
    COneKeyParseRecipeDialog* GetDialog() const { return m_pDialog; }

    CString OnGetCellText(int nItem, int nSubItem) override;
    COLORREF GetCellBackColor(int row, int column) override;

private:
    COneKeyParseRecipeDialog* m_pDialog = nullptr;
};
