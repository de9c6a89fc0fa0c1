// CListCtrlEx: a report list that opens one editor at a time over a cell: a numeric edit,
// a text edit, a drop-down list or a small button. The list knows nothing of what the
// cells hold; it asks its subclass through virtual operations which editor a cell gets
// and hands the result back through them.
#pragma once

#include "controls/AMSEdit.h"

#include <afx/afxcmn.h>
#include <skin/ZorSkin.h>

class CListCtrlEx;

// Control ids of the editors inside the list.
constexpr UINT IDC_CELL_EDIT = 0x7F01;
constexpr UINT IDC_CELL_EDIT_EX = 0x7F02;
constexpr UINT IDC_CELL_COMBO = 0x7F03;
constexpr UINT IDC_CELL_BUTTON = 0x7F04;
// Posted to the list to close the drop-down after its own notification ended.
constexpr UINT UM_CLOSE_CELL_COMBO = 0x0400 + 0x3F1;

// What each editor remembers: its cell and its list.
struct CCellEditorSite {
    int m_nRow = -1;
    int m_nColumn = -1;
    CListCtrlEx* m_pList = nullptr;
    void SetCell(CListCtrlEx* list, int row, int column) {
        m_pList = list;
        m_nRow = row;
        m_nColumn = column;
    }
};

// Kind 0: the numeric edit. It commits at the loss of its focus, which is also what
// closing it means; Escape empties it first so that the commit passes an empty text.
class CItemEdit : public CAMSNumericEdit, public CCellEditorSite {
public:
    CItemEdit();
    // Takes the text and hands it to the list once per opening; the window goes away.
    void CommitAndClose();
    BOOL IsOpen() const { return m_bOpen; }
    void MarkOpen() { m_bOpen = TRUE; }
    BOOL PreTranslateMessage(MSG* pMsg) override;

protected:
    void OnKillFocus(CWnd* pNewWnd) override;
    void OnKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags) override;

private:
    BOOL m_bOpen = FALSE;
};

// Kind 1: the text edit. Only Enter commits; a loss of focus drops the text.
class CItemEditEx : public CAMSAlphanumericEdit, public CCellEditorSite {
public:
    CItemEditEx();
    BOOL PreTranslateMessage(MSG* pMsg) override;

protected:
    void OnKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags) override;
};

class CItemComBox : public CZorSkinPComboBox, public CCellEditorSite {};

class CItemButton : public CZorSkinPButton, public CCellEditorSite {};

class CListCtrlEx : public CZorSkinPListCtrl {
public:
    CListCtrlEx();
    ~CListCtrlEx() override;

    // Columns in which a click may open an editor.
    void AddEditableColumn(int column);
    void RemoveAllEditableColumns() { m_editableColumns.RemoveAll(); }
    BOOL IsEditableColumn(int column) const;

    // Closes every open editor whose row differs from `keepRow`; -1 closes all. -2 closes
    // all too, and empties the numeric edit first: that is how an edit is cancelled.
    void CloseEditors(int keepRow);

    int GetCellRow() const { return m_nCellRow; }
    int GetCellColumn() const { return m_nCellColumn; }
    int GetMouseFlag() const { return m_nMouseFlag; }

    CItemEdit& GetItemEdit() { return m_edit; }
    CItemEditEx& GetItemEditEx() { return m_editEx; }
    CItemComBox& GetItemCombo() { return m_combo; }
    CItemButton& GetItemButton() { return m_button; }
    BOOL IsButtonShown() const;

    // ---- what a subclass answers (defaults: no colour, no action, an edit box)
    virtual COLORREF GetCellTextColor(int row, int column);
    virtual COLORREF GetCellBackColor(int row, int column);
    virtual void OnCellButtonClicked(CItemButton* button, int row, int column, const CString& text);
    virtual void OnCellComboSelected(CItemComBox* combo, int row, int column, const CString& text);
    virtual void OnCellEditCommitted(int row, int column, const CString& text);
    virtual void GetCellEditorKind(int& kind, int row, int column);
    virtual BOOL IsRowLocked(int row);
    virtual void GetCellEditKind(int& kind, int row, int column);
    virtual void InitCellEditEx(CItemEditEx* edit, int row, int column);
    virtual void InitCellEdit(CItemEdit* edit, int row, int column);
    virtual void InitCellCombo(CItemComBox* combo, int row, int column);
    virtual void InitCellButton(CItemButton* button, int row, int column);

    // Rows always stand in the order they were given.
    void SortColumn(int nColumn, BOOL bAscending) override;

    BOOL OnGetCellColors(int nItem, int nSubItem, COLORREF& text, COLORREF& back) override;

    // The editor for a cell, as a click opens it (also for keyboard-driven opening).
    void OpenCellEditor(int row, int column);

protected:
    void OnLButtonDown(UINT nFlags, CPoint point) override;
    void OnRButtonDown(UINT nFlags, CPoint point) override;
    void OnVScroll(UINT nSBCode, UINT nPos, CWnd* pScrollBar) override;
    void OnHScroll(UINT nSBCode, UINT nPos, CWnd* pScrollBar) override;
    BOOL OnMouseWheel(UINT nFlags, short zDelta, CPoint pt) override;
    void OnKillFocus(CWnd* pNewWnd) override;
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override;
    BOOL OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* pResult) override;
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    BOOL GetCellRect(int row, int column, CRect& rect) const;
    void OpenEdit(int row, int column, const CRect& cell);
    void OpenCombo(int row, int column, const CRect& cell);
    void OpenButton(int row, int column, const CRect& cell);
    void PlaceEditors();
    void CloseCombo();

    CList<int, int> m_editableColumns;
    int m_nCellRow = -1;
    int m_nCellColumn = -1;
    int m_nMouseFlag = 0;
    CItemEdit m_edit;
    CItemEditEx m_editEx;
    CItemComBox m_combo;
    CItemButton m_button;
    BOOL m_bButtonOpen = FALSE;
    BOOL m_bComboConfirmed = FALSE;
};

// A list that sorts by a column on a click on its header; column 0 never sorts.
class CVarListCtrlEx : public CListCtrlEx {
public:
    void SortColumn(int nColumn, BOOL bAscending) override;
    int GetSortedColumn() const { return m_nSortColumn; }
    BOOL IsSortedAscending() const { return m_bAscending; }

protected:
    BOOL OnChildNotify(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* pResult) override;

private:
    int m_nSortColumn = -1;
    BOOL m_bAscending = TRUE;
};
