// The commands that reach both list pages from their controls and context menus.
#include "pages/VarTablePage1.h"
#include "pages/VarTablePageBase.h"

BOOL CVarTablePageBase::OnCommand(WPARAM wParam, LPARAM lParam) {
    const UINT id = LOWORD(wParam);
    const UINT code = HIWORD(wParam);
    if (id == IDC_PAGE1_SEARCH && lParam != 0) {
        if (code == CBN_SELENDOK)
            OnSearchPicked();
        return TRUE;
    }
    return CVarTablePage::OnCommand(wParam, lParam);
}
