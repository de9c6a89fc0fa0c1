// CTranslateFailedDialog: the parameters a recipe restore could not write, as a read-only
// table in the order the writes failed. The dialog shows the caller's list and owns
// neither the list nor its variables.
#pragma once

#include "module/host/HostFwd.h"
#include "pages/ListCtrlEx.h"

#include <skin/ZorSkin.h>

#include <vector>

constexpr UINT IDD_TRANSLATE_FAILED = 144;
constexpr UINT IDC_FAILED_LIST = 1015;
// "结果": header of the result column.
constexpr UINT IDS_FAILED_RESULT = 2201;

class CTranslateFailedDialog;

// The table: every cell is asked of the dialog when it is drawn.
class CTranslateFailedListCtrl : public CListCtrlEx {
public:
    void SetDialog(CTranslateFailedDialog* dialog) { m_pDialog = dialog; }
    CString OnGetCellText(int nItem, int nSubItem) override;
    int OnGetItemImage(int nItem) override;

private:
    CTranslateFailedDialog* m_pDialog = nullptr;
};

class CTranslateFailedDialog : public CZorSkinPDialog {
public:
    explicit CTranslateFailedDialog(CWnd* pParent = nullptr);

    // The failed variables; null shows an empty table. Set before DoModal.
    void SetFailedVars(const std::vector<IVarObjEx*>* vars) { m_pFailedVars = vars; }
    // The text of a cell; empty past the end of the list or for a variable without
    // attributes.
    CString GetCellText(int row, int column) const;

    CTranslateFailedListCtrl m_list;

protected:
    BOOL OnInitDialog() override;

private:
    const std::vector<IVarObjEx*>* m_pFailedVars = nullptr;
};

void RegisterTranslateFailedResources(HINSTANCE module);
