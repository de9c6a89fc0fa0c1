// The themed controls: thin classes on the framework with one consistent look.
#pragma once

#include <afx/afxcmn.h>
#include <afx/afxwin.h>

#include <memory>
#include <vector>

// Applies the skin's look to a window and everything inside it.
void ZorSkinApplyStyle(CWnd* pWnd);

// ---------------------------------------------------------------- dialog
// A dialog with the skin's look and anchored layout: an anchored control keeps its
// distances to the dialog's edges in proportion to the anchor points given as
// percentages of the dialog's size (0,0 top left; 100,100 bottom right).
class CZorSkinPDialog : public CDialog {
public:
    static constexpr CSize AnchorTopLeft{0, 0};
    static constexpr CSize AnchorTopRight{100, 0};
    static constexpr CSize AnchorBottomLeft{0, 100};
    static constexpr CSize AnchorBottomRight{100, 100};
    static constexpr CSize AnchorMiddleLeft{0, 50};
    static constexpr CSize AnchorMiddleRight{100, 50};
    static constexpr CSize AnchorTopCenter{50, 0};
    static constexpr CSize AnchorBottomCenter{50, 100};

    CZorSkinPDialog() = default;
    explicit CZorSkinPDialog(UINT nIDTemplate, CWnd* pParent = nullptr)
        : CDialog(nIDTemplate, pParent) {}

    // Top-left corner follows `topLeft`, bottom-right corner follows `bottomRight`.
    BOOL AddAnchor(UINT nID, CSize topLeft, CSize bottomRight);
    BOOL AddAnchor(UINT nID, CSize topLeft) { return AddAnchor(nID, topLeft, topLeft); }
    void RemoveAllAnchors() { m_anchors.clear(); }
    // Re-applies the anchors for the current size.
    void ArrangeLayout();
    void EnableVisualStyle(BOOL bEnable = TRUE);

    BOOL OnInitDialog() override;

protected:
    void OnSize(UINT nType, int cx, int cy) override;

private:
    struct Anchor {
        UINT id;
        CSize tl, br;
        CRect start;
        CSize startClient;
    };
    std::vector<Anchor> m_anchors;
    BOOL m_visualStyle = TRUE;
};

// ---------------------------------------------------------------- list, tree, combo, button
class CZorSkinPListCtrl : public CListCtrl {
public:
    // Whether the header shows which column is sorted.
    void SetMarkSortedColumn(BOOL bMark) { m_markSorted = bMark; }
    // The default sort is stable, so successive sorts nest (the earlier column orders
    // ties); the flag is kept for callers that state it.
    void SetMultiSort(BOOL bMulti) { m_multiSort = bMulti; }
    BOOL IsMultiSort() const { return m_multiSort; }
    // Whether a click on a column header sorts (through SortColumn).
    void EnableHeaderSort(BOOL bEnable) { m_headerSort = bEnable; }
    BOOL IsHeaderSortEnabled() const { return m_headerSort; }
    int GetSortColumn() const { return m_sortColumn; }
    BOOL IsSortAscending() const { return m_sortAscending; }
    // Sorts the rows by a column. The default re-orders the rows of a stored list by
    // text (numbers by value); virtual lists have nothing to re-order here.
    virtual void SortColumn(int nColumn, BOOL bAscending);
    // Applies the skin's list settings (full-row select, grid lines, double buffering).
    void ApplySkinStyle();

protected:
    BOOL OnChildNotify(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* pResult) override;

private:
    BOOL m_markSorted = TRUE;
    BOOL m_multiSort = FALSE;
    BOOL m_headerSort = TRUE;
    int m_sortColumn = -1;
    BOOL m_sortAscending = TRUE;
};

class CZorSkinPTreeCtrl : public CTreeCtrl {
public:
    void ApplySkinStyle();
};

class CZorSkinPComboBox : public CComboBox {};

class CZorSkinPButton : public CButton {
public:
    void SetIcon(HICON hIcon);
    // Paints the button's face in `color` (a state the button stands for, such as a
    // filter in force).
    void SetFaceColor(COLORREF color);
    COLORREF GetFaceColor() const { return m_face; }

private:
    COLORREF m_face = RGB(255, 255, 255);
};

// A button that shows a drop-down menu when pressed. The parent gets BN_CLICKED after the
// menu closed; GetMenuResult tells which command was taken (0 for none).
class CZorSkinPMenuButton : public CZorSkinPButton {
public:
    CZorSkinPMenuButton();
    ~CZorSkinPMenuButton() override;
    // Loads the drop-down menu (its first popup) from the current resource handle.
    BOOL SetMenu(UINT nIDMenu);
    CMenu* GetMenu() { return m_menu.get(); }
    UINT GetMenuResult() const { return m_nMenuResult; }

protected:
    BOOL OnChildNotify(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* pResult) override;

private:
    std::unique_ptr<CMenu> m_menu;
    UINT m_nMenuResult = 0;
};

// The skin's popup menu: a menu shown at a point that returns the command taken.
class CZorSkinPPopupMenu : public CMenu {
public:
    // 0 when nothing was taken.
    UINT Track(CWnd* pOwner, CPoint screenPoint);
};

// ---------------------------------------------------------------- text gauge
// Draws a (multi-line) text centred on a canvas of unitsX by unitsY units that is
// stretched over its container control; the text takes the largest size that fits.
class CZorSkinPTextGauge : public CWnd {
public:
    // Creates the gauge inside pContainer, filling it.
    BOOL Create(CWnd* pContainer, int unitsX = 100, int unitsY = 20);
    CSize GetUnits() const { return m_units; }
    void SetText(const char* text);
    CString GetText() const { return m_text; }
    void SetTextColor(COLORREF c);

private:
    CString m_text;
    CSize m_units{100, 20};
};

// ---------------------------------------------------------------- grid
class CZorSkinPGridCtrl;

// A grid cell holding a value chosen from an in-place drop-down list.
class CZorSkinPGridItem {
public:
    explicit CZorSkinPGridItem(const char* value = "");
    virtual ~CZorSkinPGridItem();
    CZorSkinPGridItem(const CZorSkinPGridItem&) = delete;
    CZorSkinPGridItem& operator=(const CZorSkinPGridItem&) = delete;

    void AddOption(const char* text);
    void RemoveAllOptions();
    int GetOptionCount() const { return int(m_options.size()); }
    CString GetOption(int i) const;
    // -1 when the value is not one of the options.
    int FindOption(const char* text) const;

    CString GetValue() const { return m_value; }
    // Sets the shown value without telling anyone.
    void SetValue(const char* text);
    // The user's choice of option nIndex: sets the value and calls OnValueChanged.
    void ChooseOption(int nIndex);

    BOOL IsEditable() const { return m_editable; }
    void SetEditable(BOOL b) { m_editable = b; }
    void SetData(DWORD_PTR d) { m_data = d; }
    DWORD_PTR GetData() const { return m_data; }
    CZorSkinPGridCtrl* GetGrid() const { return m_grid; }
    int GetRow() const { return m_row; }
    int GetColumn() const { return m_col; }

protected:
    // After the user changed the value; the value is set already.
    virtual void OnValueChanged();

private:
    friend class CZorSkinPGridCtrl;
    CString m_value;
    std::vector<CString> m_options;
    BOOL m_editable = TRUE;
    DWORD_PTR m_data = 0;
    CZorSkinPGridCtrl* m_grid = nullptr;
    int m_row = -1;
    int m_col = -1;
};

// A grid of rows and fixed columns with a row header; cells hold texts or items.
class CZorSkinPGridCtrl : public CWnd {
public:
    CZorSkinPGridCtrl();
    ~CZorSkinPGridCtrl() override;
    BOOL Create(const RECT& rect, CWnd* pParent, UINT nID, DWORD dwStyle = WS_CHILD | WS_VISIBLE);

    int InsertColumn(int nCol, const char* title, int width);
    int GetColumnCount() const;
    int GetColumnWidth(int nCol) const;
    // Cells of a column that is not editable never open their list.
    void SetColumnEditable(int nCol, BOOL bEditable);
    BOOL IsColumnEditable(int nCol) const;
    void SetRowHeaderWidth(int width);
    int GetRowHeaderWidth() const;
    void ShowHeader(BOOL bShow);
    void SetSortMarker(BOOL bShow);
    void SetZoomRange(double minZoom, double maxZoom);
    // Clamped to the zoom range; scales the font.
    void SetZoom(double zoom);
    double GetZoom() const;

    int AddRow();
    int GetRowCount() const;
    void SetCellText(int row, int col, const char* text);
    CString GetCellText(int row, int col) const;
    // The grid owns the item from then on.
    void SetCellItem(int row, int col, CZorSkinPGridItem* item);
    CZorSkinPGridItem* GetCellItem(int row, int col) const;
    void SetRowData(int row, DWORD_PTR data);
    DWORD_PTR GetRowData(int row) const;

    // Internal: the item's value changed on screen.
    void ItemChanged(CZorSkinPGridItem* item);

private:
    struct Impl;
    std::unique_ptr<Impl> m_impl;
};
