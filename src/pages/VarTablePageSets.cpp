// The compare and axis copy buttons of the list pages: the frame does the work.
#include "pages/VarTablePageBase.h"
#include "table/VarTable.h"

namespace {

constexpr UINT IDC_PAGE_COMPARE = 1993;       // "比较"
constexpr UINT IDC_PAGE_PARAM_COMPARE = 2161; // "参数比较" of the staging list
constexpr UINT IDC_PAGE_COMPARE_ALT = 1019;   // the staging list's other compare button
constexpr UINT IDC_PAGE_AXIS_COPY = 1997;     // "轴拷贝"

} // namespace

BOOL CVarTablePageBase::OnSetsCommand(WPARAM wParam) {
    if (HIWORD(wParam) == BN_CLICKED && m_pTable != nullptr) {
        switch (LOWORD(wParam)) {
        case IDC_PAGE_COMPARE:
        case IDC_PAGE_PARAM_COMPARE:
        case IDC_PAGE_COMPARE_ALT:
            m_pTable->OpenCompareDialog();
            return TRUE;
        case IDC_PAGE_AXIS_COPY:
            m_pTable->OpenAxisCopyDialog(this);
            return TRUE;
        default:
            break;
        }
    }
    return FALSE;
}
