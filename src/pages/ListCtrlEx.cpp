#include "pages/ListCtrlEx.h"

namespace {

// A press of the minus key starts a new negative figure: the text becomes "-" and stays
// selected, so the character that follows replaces it rather than doubling it.
void StartNegative(CEdit& edit) {
    edit.SetWindowText("-");
    edit.SetSel(0, -1);
}

// The minus keys of the main row and of the number pad.
constexpr UINT VK_MINUS_MAIN = 0xBD;
constexpr UINT VK_MINUS_PAD = 0x6D;

BOOL IsMinusKey(UINT vk) {
    return vk == VK_MINUS_MAIN || vk == VK_MINUS_PAD;
}

} // namespace

// ---------------------------------------------------------------- CItemEdit
CItemEdit::CItemEdit() {
    SetMaxWholeDigits(9);
    SetMaxDecimalPlaces(4);
}

void CItemEdit::CommitAndClose() {
    if (GetSafeHwnd() == nullptr) {
        m_bOpen = FALSE;
        return;
    }
    CString text;
    GetWindowText(text);
    const BOOL commit = m_bOpen;
    m_bOpen = FALSE;
    DestroyWindow();
    if (commit && m_pList != nullptr)
        m_pList->OnCellEditCommitted(m_nRow, m_nColumn, text);
}

BOOL CItemEdit::PreTranslateMessage(MSG* pMsg) {
    if (pMsg->message == WM_KEYDOWN && m_pList != nullptr) {
        if (pMsg->wParam == VK_RETURN) {
            m_pList->CloseEditors(-1);
            return TRUE;
        }
        if (pMsg->wParam == VK_ESCAPE) {
            m_pList->CloseEditors(-2);
            return TRUE;
        }
    }
    return CAMSNumericEdit::PreTranslateMessage(pMsg);
}

void CItemEdit::OnKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags) {
    // Where negatives are refused the minus would only wipe the figure typed so far.
    if (IsMinusKey(nChar) && IsNegativeAllowed())
        StartNegative(*this);
    CAMSNumericEdit::OnKeyDown(nChar, nRepCnt, nFlags);
}

void CItemEdit::OnKillFocus(CWnd* pNewWnd) {
    CAMSNumericEdit::OnKillFocus(pNewWnd);
    // The focus went elsewhere while the edit was open: that is a commit. The window
    // itself stays until the list closes its editors.
    if (!m_bOpen || m_pList == nullptr)
        return;
    CString text;
    GetWindowText(text);
    m_bOpen = FALSE;
    ShowWindow(SW_HIDE);
    m_pList->OnCellEditCommitted(m_nRow, m_nColumn, text);
}

// ---------------------------------------------------------------- CItemEditEx
CItemEditEx::CItemEditEx() = default;

BOOL CItemEditEx::PreTranslateMessage(MSG* pMsg) {
    if (pMsg->message == WM_KEYDOWN && m_pList != nullptr) {
        if (pMsg->wParam == VK_RETURN) {
            CString text;
            GetWindowText(text);
            CListCtrlEx* list = m_pList;
            const int row = m_nRow;
            const int column = m_nColumn;
            list->CloseEditors(-1);
            list->OnCellEditCommitted(row, column, text);
            return TRUE;
        }
        if (pMsg->wParam == VK_ESCAPE) {
            m_pList->CloseEditors(-1);
            return TRUE;
        }
    }
    return CAMSAlphanumericEdit::PreTranslateMessage(pMsg);
}

void CItemEditEx::OnKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags) {
    if (IsMinusKey(nChar))
        StartNegative(*this);
    CAMSAlphanumericEdit::OnKeyDown(nChar, nRepCnt, nFlags);
}

// ---------------------------------------------------------------- CListCtrlEx
CListCtrlEx::CListCtrlEx() = default;

CListCtrlEx::~CListCtrlEx() {
    // The editors are children of the list; they go first, without any commit.
    if (m_edit.GetSafeHwnd() != nullptr) {
        m_edit.SetCell(nullptr, -1, -1);
        m_edit.DestroyWindow();
    }
    m_editEx.DestroyWindow();
    m_combo.DestroyWindow();
    m_button.DestroyWindow();
}

void CListCtrlEx::AddEditableColumn(int column) {
    if (!IsEditableColumn(column))
        m_editableColumns.AddTail(column);
}

BOOL CListCtrlEx::IsEditableColumn(int column) const {
    return m_editableColumns.Find(column) != nullptr;
}

BOOL CListCtrlEx::IsButtonShown() const {
    return m_bButtonOpen && m_button.GetSafeHwnd() != nullptr;
}

void CListCtrlEx::CloseEditors(int keepRow) {
    if (m_edit.GetSafeHwnd() != nullptr && m_edit.m_nRow != keepRow) {
        if (keepRow == -2)
            m_edit.SetWindowText("");
        m_edit.CommitAndClose();
    }
    if (m_editEx.GetSafeHwnd() != nullptr && m_editEx.m_nRow != keepRow)
        m_editEx.DestroyWindow();
    if (m_combo.GetSafeHwnd() != nullptr && m_combo.m_nRow != keepRow)
        m_combo.DestroyWindow();
    if (m_bButtonOpen && m_button.m_nRow != keepRow) {
        m_bButtonOpen = FALSE;
        if (m_button.GetSafeHwnd() != nullptr)
            m_button.ShowWindow(SW_HIDE);
    }
}

// ---- defaults
COLORREF CListCtrlEx::GetCellTextColor(int, int) {
    return RGB(0, 0, 0);
}
COLORREF CListCtrlEx::GetCellBackColor(int, int) {
    return RGB(255, 255, 255);
}
void CListCtrlEx::OnCellButtonClicked(CItemButton*, int, int, const CString&) {}
void CListCtrlEx::OnCellComboSelected(CItemComBox*, int, int, const CString&) {}
void CListCtrlEx::OnCellEditCommitted(int, int, const CString&) {}
void CListCtrlEx::GetCellEditorKind(int&, int, int) {}
BOOL CListCtrlEx::IsRowLocked(int) {
    return FALSE;
}
void CListCtrlEx::GetCellEditKind(int&, int, int) {}
void CListCtrlEx::InitCellEditEx(CItemEditEx*, int, int) {}
void CListCtrlEx::InitCellEdit(CItemEdit*, int, int) {}
void CListCtrlEx::InitCellCombo(CItemComBox*, int, int) {}
void CListCtrlEx::InitCellButton(CItemButton*, int, int) {}

void CListCtrlEx::SortColumn(int, BOOL) {}

BOOL CListCtrlEx::OnGetCellColors(int nItem, int nSubItem, COLORREF& text, COLORREF& back) {
    text = GetCellTextColor(nItem, nSubItem);
    back = GetCellBackColor(nItem, nSubItem);
    return TRUE;
}

BOOL CListCtrlEx::GetCellRect(int row, int column, CRect& rect) const {
    // Column 0's bounds are the whole row; its label is the cell.
    return GetSubItemRect(row, column, column == 0 ? LVIR_LABEL : LVIR_BOUNDS, rect);
}

// ---- mouse and scrolling
void CListCtrlEx::OnLButtonDown(UINT nFlags, CPoint point) {
    CZorSkinPListCtrl::OnLButtonDown(nFlags, point);
    LVHITTESTINFO hit{};
    hit.pt = point;
    SubItemHitTest(&hit);
    CRect window;
    GetClientRect(&window);
    if (!window.PtInRect(point)) {
        CloseEditors(-1);
        m_nCellRow = hit.iItem;
        m_nCellColumn = hit.iSubItem;
        return;
    }
    // A click elsewhere commits what was typed. The numeric edit commits by closing; the
    // text edit is taken here since its closing alone drops the text.
    if (m_editEx.GetSafeHwnd() != nullptr) {
        CString text;
        m_editEx.GetWindowText(text);
        const int row = m_editEx.m_nRow;
        const int column = m_editEx.m_nColumn;
        CloseEditors(-1);
        OnCellEditCommitted(row, column, text);
    }
    CloseEditors(-1);
    m_nCellRow = hit.iItem;
    m_nCellColumn = hit.iSubItem;
    if (hit.iItem >= 0 && hit.iItem < GetItemCount())
        OpenCellEditor(hit.iItem, hit.iSubItem);
}

void CListCtrlEx::OpenCellEditor(int row, int column) {
    if (row < 0 || !IsEditableColumn(column))
        return;
    CRect cell;
    if (!GetCellRect(row, column, cell))
        return;
    int kind = 1;
    GetCellEditorKind(kind, row, column);
    switch (kind) {
    case 1:
        OpenEdit(row, column, cell);
        break;
    case 2:
        OpenCombo(row, column, cell);
        break;
    case 3:
        OpenButton(row, column, cell);
        break;
    default:
        break;
    }
}

void CListCtrlEx::OnRButtonDown(UINT nFlags, CPoint point) {
    CZorSkinPListCtrl::OnRButtonDown(nFlags, point);
    m_nMouseFlag = 1;
    LVHITTESTINFO hit{};
    hit.pt = point;
    SubItemHitTest(&hit);
    CloseEditors(-1);
    m_nCellRow = hit.iItem;
    m_nCellColumn = hit.iSubItem;
}

void CListCtrlEx::OnVScroll(UINT nSBCode, UINT nPos, CWnd* pScrollBar) {
    CloseEditors(-1);
    CZorSkinPListCtrl::OnVScroll(nSBCode, nPos, pScrollBar);
}

void CListCtrlEx::OnHScroll(UINT nSBCode, UINT nPos, CWnd* pScrollBar) {
    CloseEditors(-1);
    CZorSkinPListCtrl::OnHScroll(nSBCode, nPos, pScrollBar);
}

BOOL CListCtrlEx::OnMouseWheel(UINT nFlags, short zDelta, CPoint pt) {
    CloseEditors(-1);
    return CZorSkinPListCtrl::OnMouseWheel(nFlags, zDelta, pt);
}

void CListCtrlEx::OnKillFocus(CWnd* pNewWnd) {
    CZorSkinPListCtrl::OnKillFocus(pNewWnd);
    // Focus lost to another window while the mouse is away: forget the cell.
    CPoint cursor;
    GetCursorPos(&cursor);
    CRect r;
    GetWindowRect(&r);
    if (pNewWnd != nullptr && IsChild(pNewWnd))
        return;
    if (!r.PtInRect(cursor)) {
        m_nCellRow = -1;
        m_nCellColumn = -1;
        m_nMouseFlag = 0;
        Invalidate(FALSE);
    }
}

// ---- opening
void CListCtrlEx::OpenEdit(int row, int column, const CRect& cell) {
    int editKind = 0;
    GetCellEditKind(editKind, row, column);
    if (editKind != 0 && editKind != 1)
        return;
    CEdit* edit = editKind == 0 ? static_cast<CEdit*>(&m_edit) : static_cast<CEdit*>(&m_editEx);
    if (edit->GetSafeHwnd() != nullptr || IsRowLocked(row))
        return;
    CRect r(cell.left + 4, cell.top, cell.right - 4, cell.bottom);
    if (editKind == 0) {
        m_edit.SetCell(this, row, column);
        if (!m_edit.Create(WS_CHILD | ES_AUTOHSCROLL, r, this, IDC_CELL_EDIT))
            return;
        InitCellEdit(&m_edit, row, column);
        m_edit.MarkOpen();
    } else {
        m_editEx.SetCell(this, row, column);
        if (!m_editEx.Create(WS_CHILD | ES_AUTOHSCROLL, r, this, IDC_CELL_EDIT_EX))
            return;
        InitCellEditEx(&m_editEx, row, column);
    }
    edit->SetFont(GetFont());
    edit->SetWindowText(GetItemText(row, column));
    edit->ShowWindow(SW_SHOW);
    edit->SetFocus();
    edit->SetSel(0, -1);
}

void CListCtrlEx::OpenCombo(int row, int column, const CRect& cell) {
    if (m_combo.GetSafeHwnd() != nullptr)
        return;
    m_combo.SetCell(this, row, column);
    m_bComboConfirmed = FALSE;
    if (!m_combo.Create(WS_CHILD | WS_VISIBLE | CBS_DROPDOWNLIST, cell, this, IDC_CELL_COMBO))
        return;
    m_combo.SetFont(GetFont());
    m_combo.ResetContent();
    InitCellCombo(&m_combo, row, column);
    const CString cellText = GetItemText(row, column);
    int match = -1;
    for (int i = 0; i < m_combo.GetCount() && match < 0; ++i) {
        CString entry;
        m_combo.GetLBText(i, entry);
        if (entry == cellText)
            match = i;
    }
    m_combo.SetCurSel(match);
    m_combo.SetFocus();
    m_combo.ShowDropDown(TRUE);
}

void CListCtrlEx::OpenButton(int row, int column, const CRect& cell) {
    CRect r = cell;
    r.left = cell.IsRectEmpty() ? cell.left + 30 : cell.left + cell.Width() / 3;
    m_button.SetCell(this, row, column);
    if (m_button.GetSafeHwnd() == nullptr) {
        if (!m_button.Create("...", WS_CHILD | BS_PUSHBUTTON, r, this, IDC_CELL_BUTTON))
            return;
        m_button.SetFont(GetFont());
    } else {
        m_button.MoveWindow(&r);
    }
    InitCellButton(&m_button, row, column);
    m_button.ShowWindow(SW_SHOW);
    m_bButtonOpen = TRUE;
}

void CListCtrlEx::PlaceEditors() {
    CRect cell;
    if (m_edit.GetSafeHwnd() != nullptr && GetCellRect(m_edit.m_nRow, m_edit.m_nColumn, cell))
        m_edit.MoveWindow(cell.left + 4, cell.top, cell.Width() - 8, cell.Height());
    if (m_editEx.GetSafeHwnd() != nullptr && GetCellRect(m_editEx.m_nRow, m_editEx.m_nColumn, cell))
        m_editEx.MoveWindow(cell.left + 4, cell.top, cell.Width() - 8, cell.Height());
    if (m_combo.GetSafeHwnd() != nullptr && GetCellRect(m_combo.m_nRow, m_combo.m_nColumn, cell))
        m_combo.MoveWindow(&cell);
    if (m_bButtonOpen && m_button.GetSafeHwnd() != nullptr &&
        GetCellRect(m_button.m_nRow, m_button.m_nColumn, cell))
        m_button.MoveWindow(cell.right - 20, cell.top, 20, cell.Height());
}

void CListCtrlEx::CloseCombo() {
    if (m_combo.GetSafeHwnd() != nullptr)
        m_combo.DestroyWindow();
}

// ---- notifications of the editors and the header
BOOL CListCtrlEx::OnCommand(WPARAM wParam, LPARAM lParam) {
    const UINT id = LOWORD(wParam);
    const UINT code = HIWORD(wParam);
    if (id == IDC_CELL_COMBO && m_combo.GetSafeHwnd() != nullptr) {
        if (code == CBN_SELENDOK) {
            const int sel = m_combo.GetCurSel();
            CString text;
            if (sel >= 0)
                m_combo.GetLBText(sel, text);
            m_bComboConfirmed = TRUE;
            OnCellComboSelected(&m_combo, m_combo.m_nRow, m_combo.m_nColumn, text);
            PostMessage(UM_CLOSE_CELL_COMBO);
            return TRUE;
        }
        if (code == CBN_CLOSEUP) {
            PostMessage(UM_CLOSE_CELL_COMBO);
            return TRUE;
        }
        return TRUE;
    }
    if (id == IDC_CELL_BUTTON && code == BN_CLICKED) {
        OnCellButtonClicked(&m_button, m_button.m_nRow, m_button.m_nColumn, CString());
        return TRUE;
    }
    return CZorSkinPListCtrl::OnCommand(wParam, lParam);
}

BOOL CListCtrlEx::OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* pResult) {
    const NMHDR* hdr = reinterpret_cast<const NMHDR*>(lParam);
    if (hdr != nullptr && (hdr->code == HDN_ITEMCHANGING || hdr->code == HDN_ITEMCHANGED))
        PlaceEditors();
    return CZorSkinPListCtrl::OnNotify(wParam, lParam, pResult);
}

LRESULT CListCtrlEx::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == UM_CLOSE_CELL_COMBO) {
        CloseCombo();
        return 0;
    }
    return CZorSkinPListCtrl::WindowProc(message, wParam, lParam);
}

// ---------------------------------------------------------------- CVarListCtrlEx
void CVarListCtrlEx::SortColumn(int nColumn, BOOL bAscending) {
    // The skin's sort, past CListCtrlEx's empty one, which stands for lists that don't sort.
    CZorSkinPListCtrl::SortColumn(nColumn, bAscending); // NOLINT(bugprone-parent-virtual-call)
}

BOOL CVarListCtrlEx::OnChildNotify(UINT message, WPARAM, LPARAM lParam, LRESULT*) {
    if (message != WM_NOTIFY)
        return FALSE;
    const auto* nm = reinterpret_cast<const NMLISTVIEW*>(lParam);
    if (nm->hdr.code != LVN_COLUMNCLICK || nm->iSubItem <= 0)
        return FALSE;
    const int column = nm->iSubItem;
    m_bAscending = column == m_nSortColumn ? !m_bAscending : TRUE;
    m_nSortColumn = column;
    {
        CWaitCursor wait;
        SortColumn(column, m_bAscending);
    }
    if (CHeaderCtrl* header = GetHeaderCtrl())
        header->SetSortArrow(column, m_bAscending);
    Invalidate(FALSE);
    return FALSE;
}
