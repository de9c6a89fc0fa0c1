// Common controls: image list, header, report list (also virtual), tree.
#pragma once

#include <afx/afxwin.h>

// ---------------------------------------------------------------- notification codes
constexpr UINT NM_FIRST = 0u;
constexpr UINT NM_CLICK = NM_FIRST - 2;
constexpr UINT NM_DBLCLK = NM_FIRST - 3;
constexpr UINT NM_RETURN = NM_FIRST - 4;
constexpr UINT NM_RCLICK = NM_FIRST - 5;
constexpr UINT NM_RDBLCLK = NM_FIRST - 6;
constexpr UINT NM_SETFOCUS = NM_FIRST - 7;
constexpr UINT NM_KILLFOCUS = NM_FIRST - 8;

constexpr UINT LVN_FIRST = 0u - 100;
constexpr UINT LVN_COLUMNCLICK = LVN_FIRST - 8;
constexpr UINT LVN_KEYDOWN = LVN_FIRST - 55;

constexpr UINT HDN_FIRST = 0u - 300;
constexpr UINT HDN_ITEMCHANGING = HDN_FIRST - 20;
constexpr UINT HDN_ITEMCHANGED = HDN_FIRST - 21;
constexpr UINT HDN_ENDTRACK = HDN_FIRST - 27;

constexpr UINT TVN_FIRST = 0u - 400;
constexpr UINT TVN_SELCHANGED = TVN_FIRST - 51;
constexpr UINT TVN_KEYDOWN = TVN_FIRST - 12;

// ---------------------------------------------------------------- list constants
constexpr UINT LVIS_FOCUSED = 0x0001;
constexpr UINT LVIS_SELECTED = 0x0002;
constexpr UINT LVIS_STATEIMAGEMASK = 0xF000;
constexpr UINT INDEXTOSTATEIMAGEMASK(UINT i) {
    return i << 12;
}
constexpr UINT LVIF_TEXT = 0x0001;
constexpr UINT LVIF_STATE = 0x0008;
constexpr UINT LVNI_ALL = 0x0000;
constexpr UINT LVNI_FOCUSED = 0x0001;
constexpr UINT LVNI_SELECTED = 0x0002;
constexpr UINT LVNI_BELOW = 0x0200;
constexpr int LVIR_BOUNDS = 0;
constexpr int LVIR_ICON = 1;
constexpr int LVIR_LABEL = 2;
constexpr int LVCFMT_LEFT = 0;
constexpr int LVCFMT_RIGHT = 1;
constexpr int LVCFMT_CENTER = 2;
constexpr UINT LVCF_FMT = 0x0001;
constexpr UINT LVCF_WIDTH = 0x0002;
constexpr UINT LVCF_TEXT = 0x0004;
constexpr UINT LVHT_NOWHERE = 0x0001;
constexpr UINT LVHT_ONITEMICON = 0x0002;
constexpr UINT LVHT_ONITEMLABEL = 0x0004;
constexpr UINT LVHT_ONITEMSTATEICON = 0x0008;
constexpr UINT LVHT_ONITEM = LVHT_ONITEMICON | LVHT_ONITEMLABEL | LVHT_ONITEMSTATEICON;
constexpr UINT LVHT_BELOW = 0x0010;
constexpr int LVSIL_NORMAL = 0;
constexpr int LVSIL_SMALL = 1;
constexpr int LVSIL_STATE = 2;
constexpr DWORD LVSICF_NOINVALIDATEALL = 0x0001;
constexpr DWORD LVSICF_NOSCROLL = 0x0002;

struct LVCOLUMN {
    UINT mask;
    int fmt;
    int cx;
    char* pszText;
    int cchTextMax;
    int iSubItem;
};

struct LVHITTESTINFO {
    POINT pt;
    UINT flags;
    int iItem;
    int iSubItem;
};

struct NMLISTVIEW {
    NMHDR hdr;
    int iItem;
    int iSubItem;
    UINT uNewState;
    UINT uOldState;
    UINT uChanged;
    POINT ptAction;
    LPARAM lParam;
};
typedef NMLISTVIEW* LPNMLISTVIEW;

struct NMITEMACTIVATE {
    NMHDR hdr;
    int iItem;
    int iSubItem;
    UINT uNewState;
    UINT uOldState;
    UINT uChanged;
    POINT ptAction;
    LPARAM lParam;
    UINT uKeyFlags;
};
typedef NMITEMACTIVATE* LPNMITEMACTIVATE;

struct NMLVKEYDOWN {
    NMHDR hdr;
    WORD wVKey;
    UINT flags;
};

struct HDITEM {
    UINT mask;
    int cxy;
};
constexpr UINT HDI_WIDTH = 0x0001;
struct NMHEADER {
    NMHDR hdr;
    int iItem;
    int iButton;
    HDITEM* pitem;
};
typedef NMHEADER* LPNMHEADER;

// ---------------------------------------------------------------- tree constants
#define TVI_ROOT (reinterpret_cast<HTREEITEM>(static_cast<ULONG_PTR>(-0x10000)))
#define TVI_FIRST (reinterpret_cast<HTREEITEM>(static_cast<ULONG_PTR>(-0x0FFFF)))
#define TVI_LAST (reinterpret_cast<HTREEITEM>(static_cast<ULONG_PTR>(-0x0FFFE)))
#define TVI_SORT (reinterpret_cast<HTREEITEM>(static_cast<ULONG_PTR>(-0x0FFFD)))
constexpr UINT TVIS_SELECTED = 0x0002;
constexpr UINT TVIS_EXPANDED = 0x0020;
constexpr UINT TVIS_STATEIMAGEMASK = 0xF000;
constexpr UINT TVE_COLLAPSE = 0x0001;
constexpr UINT TVE_EXPAND = 0x0002;
constexpr UINT TVE_TOGGLE = 0x0003;
constexpr UINT TVGN_ROOT = 0x0000;
constexpr UINT TVGN_NEXT = 0x0001;
constexpr UINT TVGN_PARENT = 0x0003;
constexpr UINT TVGN_CHILD = 0x0004;
constexpr UINT TVGN_NEXTVISIBLE = 0x0006;
constexpr UINT TVGN_CARET = 0x0009;
constexpr UINT TVHT_NOWHERE = 0x0001;
constexpr UINT TVHT_ONITEMICON = 0x0002;
constexpr UINT TVHT_ONITEMLABEL = 0x0004;
constexpr UINT TVHT_ONITEMINDENT = 0x0008;
constexpr UINT TVHT_ONITEMBUTTON = 0x0010;
constexpr UINT TVHT_ONITEMRIGHT = 0x0020;
constexpr UINT TVHT_ONITEMSTATEICON = 0x0040;
constexpr UINT TVHT_ONITEM = TVHT_ONITEMICON | TVHT_ONITEMLABEL | TVHT_ONITEMSTATEICON;
constexpr int TVSIL_NORMAL = 0;
constexpr int TVSIL_STATE = 2;
constexpr UINT TVC_UNKNOWN = 0;
constexpr UINT TVC_BYMOUSE = 1;
constexpr UINT TVC_BYKEYBOARD = 2;
constexpr UINT TVIF_HANDLE = 0x0010;
constexpr UINT TVIF_PARAM = 0x0004;
constexpr UINT TVIF_STATE = 0x0008;

struct TVITEM {
    UINT mask;
    HTREEITEM hItem;
    UINT state;
    UINT stateMask;
    char* pszText;
    int cchTextMax;
    int iImage;
    int iSelectedImage;
    int cChildren;
    LPARAM lParam;
};

struct NMTREEVIEW {
    NMHDR hdr;
    UINT action;
    TVITEM itemOld;
    TVITEM itemNew;
    POINT ptDrag;
};
typedef NMTREEVIEW* LPNMTREEVIEW;

struct NMTVKEYDOWN {
    NMHDR hdr;
    WORD wVKey;
    UINT flags;
};

// ---------------------------------------------------------------- image list
constexpr UINT ILC_MASK = 0x0001;
constexpr UINT ILC_COLOR24 = 0x0018;
constexpr UINT ILC_COLOR32 = 0x0020;

class CImageList {
public:
    CImageList();
    ~CImageList();
    CImageList(const CImageList&) = delete;
    CImageList& operator=(const CImageList&) = delete;

    BOOL Create(int cx, int cy, UINT nFlags, int nInitial, int nGrow);
    int Add(HICON hIcon);
    int GetImageCount() const;
    BOOL GetIconSize(int& cx, int& cy) const;
    BOOL Remove(int nImage);
    HIMAGELIST GetSafeHandle() const;

    struct Impl;
    Impl* impl() const { return m_impl.get(); }

private:
    std::unique_ptr<Impl> m_impl;
};

// ---------------------------------------------------------------- header
class CHeaderCtrl : public CWnd {
public:
    int GetItemCount() const;
    BOOL GetItemRect(int nIndex, RECT* lpRect) const;
    // Marks column nColumn as sorted (ascending or not); -1 removes the mark.
    void SetSortArrow(int nColumn, BOOL bAscending);
};

// ---------------------------------------------------------------- report list
// A report-view list. Without LVS_OWNERDATA it stores items and texts (InsertItem,
// SetItemText). With LVS_OWNERDATA it stores only the item count and the item states;
// the texts and colours come from the virtual callbacks below, asked for each cell
// only when the cell is painted (or GetItemText is called).
class CListCtrl : public CWnd {
public:
    CListCtrl();
    ~CListCtrl() override;

    BOOL Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);

    // ---- owner-data callbacks (also used for stored lists: the default reads the store)
    virtual CString OnGetCellText(int nItem, int nSubItem);
    // Fills text and background colour of a cell; FALSE keeps both defaults.
    virtual BOOL OnGetCellColors(int nItem, int nSubItem, COLORREF& text, COLORREF& back);
    // The item's picture in the small image list (drawn in column 0), -1 for none.
    virtual int OnGetItemImage(int nItem);
    // The item's state image (1 unchecked, 2 checked) when the owner keeps the check
    // marks itself; -1 uses the state stored in the list.
    virtual int OnGetStateImage(int nItem);

    // ---- styles
    DWORD SetExtendedStyle(DWORD dwNewStyle);
    DWORD GetExtendedStyle() const;
    BOOL IsOwnerData() const;

    // ---- columns
    int InsertColumn(int nCol, const char* heading, int nFormat = LVCFMT_LEFT, int nWidth = -1,
                     int nSubItem = -1);
    BOOL DeleteColumn(int nCol);
    int GetColumnCount() const;
    BOOL SetColumnWidth(int nCol, int cx);
    int GetColumnWidth(int nCol) const;
    BOOL GetColumn(int nCol, LVCOLUMN* pColumn) const;
    BOOL SetColumn(int nCol, const LVCOLUMN* pColumn);
    CString GetColumnText(int nCol) const;
    CHeaderCtrl* GetHeaderCtrl();

    // ---- items
    BOOL SetItemCount(int nItems);
    BOOL SetItemCountEx(int nItems, DWORD dwFlags = LVSICF_NOINVALIDATEALL);
    int GetItemCount() const;
    int InsertItem(int nItem, const char* text);
    BOOL SetItemImage(int nItem, int nImage);
    BOOL SetItemText(int nItem, int nSubItem, const char* text);
    CString GetItemText(int nItem, int nSubItem) const;
    BOOL SetItemData(int nItem, DWORD_PTR dwData);
    DWORD_PTR GetItemData(int nItem) const;

    // ---- states, selection, check boxes
    BOOL SetItemState(int nItem, UINT nState, UINT nMask); // nItem -1: all items
    UINT GetItemState(int nItem, UINT nMask) const;
    UINT GetSelectedCount() const;
    POSITION GetFirstSelectedItemPosition() const;
    int GetNextSelectedItem(POSITION& pos) const;
    int GetNextItem(int nItem, int nFlags) const;
    int GetSelectionMark() const;
    int SetSelectionMark(int iIndex);
    BOOL GetCheck(int nItem) const;
    BOOL SetCheck(int nItem, BOOL fCheck = TRUE);

    // ---- geometry and scrolling (client coordinates)
    int GetTopIndex() const;
    int GetCountPerPage() const;
    BOOL EnsureVisible(int nItem, BOOL bPartialOK);
    BOOL GetItemRect(int nItem, RECT* lpRect, UINT nCode) const;
    BOOL GetSubItemRect(int iItem, int iSubItem, int nArea, CRect& ref) const;
    int HitTest(CPoint pt, UINT* pFlags = nullptr) const;
    int HitTest(LVHITTESTINFO* pHitTestInfo) const;
    int SubItemHitTest(LVHITTESTINFO* pInfo) const;
    BOOL Update(int nItem);
    // For a live list: compares every cell on screen (text, colours, row images) with what
    // was last painted there and invalidates only the cells that differ. Returns how many.
    int InvalidateChangedCells();
    CImageList* SetImageList(CImageList* pImageList, int nImageListType);
    COLORREF SetBkColor(COLORREF cr);
    COLORREF SetTextColor(COLORREF cr);

    // Simulated user actions (also used by tests): a click on a cell with mouse button
    // `button` (MK_LBUTTON / MK_RBUTTON), as the list receives it.
    void ClickCell(int nItem, int nSubItem, UINT button = MK_LBUTTON);

private:
    CHeaderCtrl m_header;
};

// ---------------------------------------------------------------- tree
class CTreeCtrl : public CWnd {
public:
    BOOL Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);

    HTREEITEM InsertItem(const char* text, HTREEITEM hParent = TVI_ROOT,
                         HTREEITEM hInsertAfter = TVI_LAST);
    HTREEITEM InsertItem(const char* text, int nImage, int nSelectedImage,
                         HTREEITEM hParent = TVI_ROOT, HTREEITEM hInsertAfter = TVI_LAST);
    BOOL DeleteItem(HTREEITEM hItem);
    BOOL DeleteAllItems();
    UINT GetCount() const;

    HTREEITEM GetRootItem() const;
    HTREEITEM GetChildItem(HTREEITEM hItem) const;
    HTREEITEM GetNextSiblingItem(HTREEITEM hItem) const;
    HTREEITEM GetParentItem(HTREEITEM hItem) const;
    HTREEITEM GetNextItem(HTREEITEM hItem, UINT nCode) const;
    HTREEITEM GetNextVisibleItem(HTREEITEM hItem) const;
    HTREEITEM GetSelectedItem() const;
    BOOL SelectItem(HTREEITEM hItem);
    BOOL Expand(HTREEITEM hItem, UINT nCode);
    BOOL EnsureVisible(HTREEITEM hItem);

    CString GetItemText(HTREEITEM hItem) const;
    BOOL SetItemText(HTREEITEM hItem, const char* text);
    DWORD_PTR GetItemData(HTREEITEM hItem) const;
    BOOL SetItemData(HTREEITEM hItem, DWORD_PTR dwData);
    BOOL SetItemImage(HTREEITEM hItem, int nImage, int nSelectedImage);
    UINT GetItemState(HTREEITEM hItem, UINT nStateMask) const;
    BOOL SetItemState(HTREEITEM hItem, UINT nState, UINT nStateMask);
    BOOL GetItemRect(HTREEITEM hItem, RECT* lpRect, BOOL bTextOnly) const;
    HTREEITEM HitTest(CPoint pt, UINT* pFlags = nullptr) const;

    CImageList* SetImageList(CImageList* pImageList, int nImageListType);
    SHORT SetItemHeight(SHORT cyHeight);
    SHORT GetItemHeight() const;
    COLORREF SetBkColor(COLORREF clr);
    COLORREF SetTextColor(COLORREF clr);

    // Simulated user click on an item (selects it, NM_CLICK / NM_RCLICK to the parent).
    void ClickItem(HTREEITEM hItem, UINT button = MK_LBUTTON);
};

// ---------------------------------------------------------------- tool tip
// One tip window for a control: the control renews the text as the mouse moves, and the
// tip shows at the cursor after the initial delay. An empty text hides it.
class CToolTipCtrl {
public:
    CToolTipCtrl();
    ~CToolTipCtrl();
    CToolTipCtrl(const CToolTipCtrl&) = delete;
    CToolTipCtrl& operator=(const CToolTipCtrl&) = delete;

    // Binds the tip to `pOwner`'s window; FALSE without one.
    BOOL Create(CWnd* pOwner);
    BOOL IsCreated() const;
    // Widest line in pixels before the text wraps; returns the old width (-1: none).
    int SetMaxTipWidth(int iWidth);
    // The initial delay in milliseconds.
    void SetDelayTime(UINT nDelay);
    // New text for the tip over `pWnd` (the owner when null).
    void UpdateTipText(const char* text, CWnd* pWnd = nullptr);
    CString GetText() const;
    // Whether the tip is on screen now.
    BOOL IsTipShown() const;

    struct Impl;

private:
    std::unique_ptr<Impl> m_impl;
};
