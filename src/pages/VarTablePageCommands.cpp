// The commands that reach both list pages from their controls and context menus.
#include "module/LocalResource.h"
#include "module/ParmiraApp.h"
#include "pages/ConfigListDlg.h"
#include "pages/RowCommands.h"
#include "pages/VarTablePage1.h"
#include "pages/VarTablePageBase.h"
#include "values/ValueText.h"

#include <algorithm>

BOOL CVarTablePageBase::OnCommand(WPARAM wParam, LPARAM lParam) {
    const UINT id = LOWORD(wParam);
    const UINT code = HIWORD(wParam);
    if (id == IDC_PAGE1_SEARCH && lParam != 0) {
        if (code == CBN_SELENDOK)
            OnSearchPicked();
        return TRUE;
    }
    // Menu commands that reach the page as WM_COMMAND (from a host's menu, or a test).
    if (lParam == 0 && code == 0 &&
        (id == ID_CHOOSE_COLUMNS || id == ID_ADD_TO_MONITOR || id == ID_REMOVE_ROWS))
        return RunRowCommand(id);
    if (OnSetsCommand(wParam))
        return TRUE;
    return CVarTablePage::OnCommand(wParam, lParam);
}

int CVarTablePageBase::ColumnOfLabel(const char* label) {
    CListCtrlEx& list = GetList();
    const CString shown = VarText::Translate(label);
    for (int i = 0; i < list.GetColumnCount(); ++i) {
        const CString text = list.GetColumnText(i);
        if (text == label || text == shown)
            return i;
    }
    return -1;
}

void CVarTablePageBase::ChooseColumns() {
    CListCtrlEx& list = GetList();
    if (list.GetSafeHwnd() == nullptr)
        return;
    CLocalResource scope(theApp.m_hResource);
    CConfigListDlg dialog(this);
    dialog.SetMultiAxis(GetMultiAxisFlag() == 1 ? TRUE : FALSE);
    // The boxes go by their labels: each one stands for the column that bears it.
    int widths[CONFIG_LIST_VALUES] = {};
    int columns[CONFIG_LIST_VALUES];
    std::fill(std::begin(columns), std::end(columns), -1);
    for (const CConfigListDlg::Box& box : CConfigListDlg::kBoxes) {
        const int column = ColumnOfLabel(box.label);
        const int value = dialog.ValueIndex(box);
        columns[value] = column;
        if (column >= 0)
            widths[value] = list.GetColumnWidth(column);
    }
    dialog.SetColumnWidths(widths, CONFIG_LIST_VALUES);
    if (dialog.DoModal() != IDOK)
        return;
    for (int value = 0; value < CONFIG_LIST_VALUES; ++value) {
        const int column = columns[value];
        if (column < 0 || column >= list.GetColumnCount())
            continue;
        if (dialog.m_values[value] == 0) {
            list.SetColumnWidth(column, 0);
        } else if (list.GetColumnWidth(column) == 0) {
            // Back at the width of creation, not at a width dragged since.
            if (size_t(column) < m_columnWidths.size()) {
                if (m_columnWidths[size_t(column)] == 0)
                    m_columnWidths[size_t(column)] = 80;
                list.SetColumnWidth(column, m_columnWidths[size_t(column)]);
            } else {
                list.SetColumnWidth(column, 80);
            }
        }
    }
}
