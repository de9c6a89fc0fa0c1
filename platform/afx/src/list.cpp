// CListCtrl and CHeaderCtrl: the MFC-shaped calls on the report list widget (list_view.cpp).
#include "list_p.h"

#include <QHeaderView>
#include <QScrollBar>

using namespace afxi;

// ---------------------------------------------------------------- CHeaderCtrl
int CHeaderCtrl::GetItemCount() const {
    auto* h = WidgetAs<QHeaderView>(m_hWnd);
    return h ? h->count() : 0;
}

BOOL CHeaderCtrl::GetItemRect(int nIndex, RECT* lpRect) const {
    auto* h = WidgetAs<QHeaderView>(m_hWnd);
    if (!h || nIndex < 0 || nIndex >= h->count())
        return FALSE;
    const int x = h->sectionViewportPosition(nIndex);
    *lpRect = CRect(x, 0, x + h->sectionSize(nIndex), h->height());
    return TRUE;
}

void CHeaderCtrl::SetSortArrow(int nColumn, BOOL bAscending) {
    auto* h = WidgetAs<QHeaderView>(m_hWnd);
    if (!h)
        return;
    h->setSortIndicatorShown(nColumn >= 0);
    if (nColumn >= 0)
        h->setSortIndicator(nColumn, bAscending ? Qt::AscendingOrder : Qt::DescendingOrder);
}

// ---------------------------------------------------------------- CListCtrl
CListCtrl::CListCtrl() = default;
CListCtrl::~CListCtrl() {
    DestroyWindow();
}

static AfxListView* ViewOf(HWND h) {
    return WidgetAs<AfxListView>(h);
}

BOOL CListCtrl::Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID) {
    return CreateFromKind(KList, "", dwStyle | LVS_REPORT, rect, pParentWnd, nID);
}

int CListCtrl::OnGetStateImage(int) {
    return -1;
}

CString CListCtrl::OnGetCellText(int nItem, int nSubItem) {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v || v->m_ownerData || nItem < 0 || size_t(nItem) >= v->m_rows.size())
        return CString();
    const auto& texts = v->m_rows[size_t(nItem)].texts;
    return size_t(nSubItem) < texts.size() ? texts[size_t(nSubItem)] : CString();
}

BOOL CListCtrl::OnGetCellColors(int, int, COLORREF&, COLORREF&) {
    return FALSE;
}

DWORD CListCtrl::SetExtendedStyle(DWORD dwNewStyle) {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v)
        return 0;
    const DWORD old = v->m_exStyle;
    v->m_exStyle = dwNewStyle;
    v->setShowGrid(dwNewStyle & LVS_EX_GRIDLINES);
    v->viewport()->update();
    return old;
}

DWORD CListCtrl::GetExtendedStyle() const {
    AfxListView* v = ViewOf(m_hWnd);
    return v ? v->m_exStyle : 0;
}

BOOL CListCtrl::IsOwnerData() const {
    AfxListView* v = ViewOf(m_hWnd);
    return v && v->m_ownerData;
}

int CListCtrl::InsertColumn(int nCol, const char* heading, int nFormat, int nWidth, int) {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v)
        return -1;
    const int at = std::clamp(nCol, 0, int(v->m_columns.size()));
    v->m_model->beginInsertColumns(QModelIndex(), at, at);
    v->m_columns.insert(v->m_columns.begin() + at, {Q(heading), nFormat});
    for (auto& r : v->m_rows)
        if (size_t(at) < r.texts.size())
            r.texts.insert(r.texts.begin() + at, CString());
    v->m_model->endInsertColumns();
    v->setColumnWidth(at, nWidth >= 0 ? nWidth : 100);
    return at;
}

BOOL CListCtrl::DeleteColumn(int nCol) {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v || nCol < 0 || size_t(nCol) >= v->m_columns.size())
        return FALSE;
    v->m_model->beginRemoveColumns(QModelIndex(), nCol, nCol);
    v->m_columns.erase(v->m_columns.begin() + nCol);
    for (auto& r : v->m_rows)
        if (size_t(nCol) < r.texts.size())
            r.texts.erase(r.texts.begin() + nCol);
    v->m_model->endRemoveColumns();
    return TRUE;
}

int CListCtrl::GetColumnCount() const {
    AfxListView* v = ViewOf(m_hWnd);
    return v ? int(v->m_columns.size()) : 0;
}

BOOL CListCtrl::SetColumnWidth(int nCol, int cx) {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v || nCol < 0 || size_t(nCol) >= v->m_columns.size())
        return FALSE;
    v->setColumnWidth(nCol, std::max(0, cx));
    return TRUE;
}

int CListCtrl::GetColumnWidth(int nCol) const {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v || nCol < 0 || size_t(nCol) >= v->m_columns.size())
        return 0;
    return v->columnWidth(nCol);
}

BOOL CListCtrl::GetColumn(int nCol, LVCOLUMN* c) const {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v || !c || nCol < 0 || size_t(nCol) >= v->m_columns.size())
        return FALSE;
    if (c->mask & LVCF_FMT)
        c->fmt = v->m_columns[size_t(nCol)].fmt;
    if (c->mask & LVCF_WIDTH)
        c->cx = v->columnWidth(nCol);
    if ((c->mask & LVCF_TEXT) && c->pszText && c->cchTextMax > 0) {
        const std::string s = v->m_columns[size_t(nCol)].text.toStdString();
        const size_t n = std::min(s.size(), size_t(c->cchTextMax - 1));
        s.copy(c->pszText, n);
        c->pszText[n] = '\0';
    }
    return TRUE;
}

BOOL CListCtrl::SetColumn(int nCol, const LVCOLUMN* c) {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v || !c || nCol < 0 || size_t(nCol) >= v->m_columns.size())
        return FALSE;
    if (c->mask & LVCF_FMT)
        v->m_columns[size_t(nCol)].fmt = c->fmt;
    if (c->mask & LVCF_TEXT)
        v->m_columns[size_t(nCol)].text = Q(c->pszText);
    if (c->mask & LVCF_WIDTH)
        v->setColumnWidth(nCol, c->cx);
    emit v->m_model->headerDataChanged(Qt::Horizontal, nCol, nCol);
    return TRUE;
}

CString CListCtrl::GetColumnText(int nCol) const {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v || nCol < 0 || size_t(nCol) >= v->m_columns.size())
        return CString();
    return C(v->m_columns[size_t(nCol)].text);
}

CHeaderCtrl* CListCtrl::GetHeaderCtrl() {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v)
        return nullptr;
    if (!m_header.m_hWnd) {
        WindowData* d = Lookup(v->m_header);
        if (d && d->wnd)
            return dynamic_cast<CHeaderCtrl*>(d->wnd);
        m_header.Attach(v->m_header);
    }
    return &m_header;
}

BOOL CListCtrl::SetItemCount(int nItems) {
    return SetItemCountEx(nItems);
}

BOOL CListCtrl::SetItemCountEx(int nItems, DWORD) {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v || nItems < 0)
        return FALSE;
    if (!v->m_ownerData) {
        v->m_rows.reserve(size_t(nItems));
        return TRUE;
    }
    const int old = v->m_count;
    if (nItems > old) {
        v->m_model->beginInsertRows(QModelIndex(), old, nItems - 1);
        v->m_count = nItems;
        v->m_model->endInsertRows();
    } else if (nItems < old) {
        // Rows that stay keep their selection.
        QItemSelection keep;
        for (const auto& r : v->selectionModel()->selection())
            if (r.top() < nItems)
                keep.select(v->m_model->index(r.top(), 0),
                            v->m_model->index(std::min(r.bottom(), nItems - 1), 0));
        v->m_model->beginRemoveRows(QModelIndex(), nItems, old - 1);
        v->m_count = nItems;
        for (auto it = v->m_stateImages.begin(); it != v->m_stateImages.end();)
            it = it->first >= nItems ? v->m_stateImages.erase(it) : std::next(it);
        v->m_model->endRemoveRows();
        v->selectionModel()->select(keep, QItemSelectionModel::ClearAndSelect |
                                              QItemSelectionModel::Rows);
        if (v->m_selectionMark >= nItems)
            v->m_selectionMark = -1;
    }
    v->viewport()->update();
    return TRUE;
}

int CListCtrl::GetItemCount() const {
    AfxListView* v = ViewOf(m_hWnd);
    return v ? v->m_count : 0;
}

int CListCtrl::InsertItem(int nItem, const char* text) {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v || v->m_ownerData)
        return -1;
    const int at = std::clamp(nItem, 0, v->m_count);
    v->m_model->beginInsertRows(QModelIndex(), at, at);
    AfxListView::Row row;
    row.texts.resize(std::max<size_t>(1, v->m_columns.size()));
    row.texts[0] = text ? text : "";
    v->m_rows.insert(v->m_rows.begin() + at, std::move(row));
    ++v->m_count;
    // States keyed by row shift with the rows.
    std::unordered_map<int, UINT> moved;
    for (const auto& [r, s] : v->m_stateImages)
        moved[r >= at ? r + 1 : r] = s;
    v->m_stateImages.swap(moved);
    v->m_model->endInsertRows();
    return at;
}

BOOL CListCtrl::SetItemImage(int nItem, int nImage) {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v || v->m_ownerData || nItem < 0 || size_t(nItem) >= v->m_rows.size())
        return FALSE;
    v->m_rows[size_t(nItem)].image = nImage;
    v->viewport()->update();
    return TRUE;
}

int CListCtrl::OnGetItemImage(int nItem) {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v || v->m_ownerData || nItem < 0 || size_t(nItem) >= v->m_rows.size())
        return -1;
    return v->m_rows[size_t(nItem)].image;
}

BOOL CListCtrl::SetItemText(int nItem, int nSubItem, const char* text) {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v || v->m_ownerData || nItem < 0 || size_t(nItem) >= v->m_rows.size() || nSubItem < 0)
        return FALSE;
    auto& texts = v->m_rows[size_t(nItem)].texts;
    if (size_t(nSubItem) >= texts.size())
        texts.resize(size_t(nSubItem) + 1);
    texts[size_t(nSubItem)] = text ? text : "";
    v->viewport()->update();
    return TRUE;
}

CString CListCtrl::GetItemText(int nItem, int nSubItem) const {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v || nItem < 0 || nItem >= v->m_count)
        return CString();
    return v->CellText(nItem, nSubItem);
}

BOOL CListCtrl::SetItemData(int nItem, DWORD_PTR dwData) {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v || v->m_ownerData || nItem < 0 || size_t(nItem) >= v->m_rows.size())
        return FALSE;
    v->m_rows[size_t(nItem)].data = dwData;
    return TRUE;
}

DWORD_PTR CListCtrl::GetItemData(int nItem) const {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v || v->m_ownerData || nItem < 0 || size_t(nItem) >= v->m_rows.size())
        return 0;
    return v->m_rows[size_t(nItem)].data;
}

BOOL CListCtrl::SetItemState(int nItem, UINT nState, UINT nMask) {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v || nItem < -1 || nItem >= v->m_count)
        return FALSE;
    QItemSelectionModel* sm = v->selectionModel();
    if (nMask & LVIS_SELECTED) {
        if (nItem < 0) {
            if ((nState & LVIS_SELECTED) && v->m_count > 0)
                sm->select(
                    QItemSelection(v->m_model->index(0, 0), v->m_model->index(v->m_count - 1, 0)),
                    QItemSelectionModel::Select | QItemSelectionModel::Rows);
            else
                sm->clearSelection();
        } else {
            sm->select(v->m_model->index(nItem, 0),
                       ((nState & LVIS_SELECTED) ? QItemSelectionModel::Select
                                                 : QItemSelectionModel::Deselect) |
                           QItemSelectionModel::Rows);
        }
    }
    if ((nMask & LVIS_FOCUSED) && nItem >= 0) {
        if (nState & LVIS_FOCUSED)
            sm->setCurrentIndex(v->m_model->index(nItem, 0), QItemSelectionModel::NoUpdate);
        else if (sm->currentIndex().row() == nItem)
            sm->setCurrentIndex(QModelIndex(), QItemSelectionModel::NoUpdate);
    }
    if (nMask & LVIS_STATEIMAGEMASK) {
        const UINT index = (nState & LVIS_STATEIMAGEMASK) >> 12;
        if (nItem < 0)
            for (int r = 0; r < v->m_count; ++r)
                v->SetStateImage(r, index);
        else
            v->SetStateImage(nItem, index);
    }
    return TRUE;
}

UINT CListCtrl::GetItemState(int nItem, UINT nMask) const {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v || nItem < 0 || nItem >= v->m_count)
        return 0;
    UINT s = 0;
    if ((nMask & LVIS_SELECTED) && v->selectionModel()->isRowSelected(nItem, QModelIndex()))
        s |= LVIS_SELECTED;
    if ((nMask & LVIS_FOCUSED) && v->selectionModel()->currentIndex().row() == nItem)
        s |= LVIS_FOCUSED;
    if (nMask & LVIS_STATEIMAGEMASK)
        s |= INDEXTOSTATEIMAGEMASK(v->StateImage(nItem));
    return s;
}

UINT CListCtrl::GetSelectedCount() const {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v)
        return 0;
    UINT n = 0;
    for (const auto& r : v->selectionModel()->selection())
        n += UINT(r.height());
    return n;
}

POSITION CListCtrl::GetFirstSelectedItemPosition() const {
    AfxListView* v = ViewOf(m_hWnd);
    const int first = v ? v->NextSelected(0) : -1;
    return first < 0 ? nullptr : reinterpret_cast<POSITION>(uintptr_t(first) + 1);
}

int CListCtrl::GetNextSelectedItem(POSITION& pos) const {
    const int row = int(reinterpret_cast<uintptr_t>(pos)) - 1;
    AfxListView* v = ViewOf(m_hWnd);
    const int next = v ? v->NextSelected(row + 1) : -1;
    pos = next < 0 ? nullptr : reinterpret_cast<POSITION>(uintptr_t(next) + 1);
    return row;
}

int CListCtrl::GetNextItem(int nItem, int nFlags) const {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v)
        return -1;
    if (nFlags & int(LVNI_FOCUSED)) {
        const int cur = v->selectionModel()->currentIndex().row();
        return cur > nItem || (nItem < 0 && cur >= 0) ? cur : -1;
    }
    if (nFlags & int(LVNI_SELECTED))
        return v->NextSelected(nItem + 1);
    return nItem + 1 < v->m_count ? nItem + 1 : -1;
}

int CListCtrl::GetSelectionMark() const {
    AfxListView* v = ViewOf(m_hWnd);
    return v ? v->m_selectionMark : -1;
}

int CListCtrl::SetSelectionMark(int iIndex) {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v)
        return -1;
    const int old = v->m_selectionMark;
    v->m_selectionMark = iIndex;
    return old;
}

BOOL CListCtrl::GetCheck(int nItem) const {
    AfxListView* v = ViewOf(m_hWnd);
    return v && nItem >= 0 && nItem < v->m_count && v->StateImage(nItem) == 2;
}

BOOL CListCtrl::SetCheck(int nItem, BOOL fCheck) {
    return SetItemState(nItem, INDEXTOSTATEIMAGEMASK(fCheck ? 2 : 1), LVIS_STATEIMAGEMASK);
}

int CListCtrl::GetTopIndex() const {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v || v->m_count == 0)
        return 0;
    const int r = v->rowAt(0);
    return r < 0 ? 0 : r;
}

int CListCtrl::GetCountPerPage() const {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v)
        return 0;
    return std::max(0, v->viewport()->height() / std::max(1, v->RowHeight()));
}

BOOL CListCtrl::EnsureVisible(int nItem, BOOL) {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v || nItem < 0 || nItem >= v->m_count)
        return FALSE;
    v->doItemsLayout(); // the scroll range may still wait for a layout pass
    v->scrollTo(v->m_model->index(nItem, 0), QAbstractItemView::EnsureVisible);
    return TRUE;
}

BOOL CListCtrl::GetItemRect(int nItem, RECT* lpRect, UINT nCode) const {
    CRect r;
    if (!GetSubItemRect(nItem, 0, nCode == UINT(LVIR_BOUNDS) ? LVIR_BOUNDS : LVIR_LABEL, r))
        return FALSE;
    *lpRect = r;
    return TRUE;
}

BOOL CListCtrl::GetSubItemRect(int iItem, int iSubItem, int nArea, CRect& ref) const {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v || iItem < 0 || iItem >= v->m_count || iSubItem < 0 ||
        size_t(iSubItem) >= std::max<size_t>(1, v->m_columns.size()))
        return FALSE;
    const QPoint off = v->ViewportOffset();
    const int top = v->rowViewportPosition(iItem) + off.y();
    const int height = v->RowHeight();
    if (v->m_columns.empty()) {
        ref = CRect(off.x(), top, off.x() + v->viewport()->width(), top + height);
        return TRUE;
    }
    int left = v->columnViewportPosition(iSubItem) + off.x();
    int right = left + v->columnWidth(iSubItem);
    // Sub-item 0's bounds are the whole row, as the home platform reports them.
    if (iSubItem == 0 && nArea == LVIR_BOUNDS) {
        const int last = int(v->m_columns.size()) - 1;
        right = v->columnViewportPosition(last) + v->columnWidth(last) + off.x();
    }
    ref = CRect(left, top, right, top + height);
    return TRUE;
}

int CListCtrl::HitTest(CPoint pt, UINT* pFlags) const {
    LVHITTESTINFO info{pt, 0, -1, 0};
    const int r = HitTest(&info);
    if (pFlags)
        *pFlags = info.flags;
    return r;
}

int CListCtrl::HitTest(LVHITTESTINFO* info) const {
    SubItemHitTest(info);
    return info->iItem;
}

int CListCtrl::SubItemHitTest(LVHITTESTINFO* info) const {
    AfxListView* v = ViewOf(m_hWnd);
    info->iItem = -1;
    info->iSubItem = 0;
    info->flags = LVHT_NOWHERE;
    if (!v)
        return -1;
    const QPoint vp = QPoint(info->pt.x, info->pt.y) - v->ViewportOffset();
    if (!v->viewport()->rect().contains(vp))
        return -1;
    const int row = v->rowAt(vp.y());
    const int col = v->columnAt(vp.x());
    if (row < 0) {
        info->flags = LVHT_NOWHERE | (vp.y() >= 0 ? LVHT_BELOW : 0);
        return -1;
    }
    if (col < 0)
        return -1;
    info->iItem = row;
    info->iSubItem = col;
    const bool onCheck = col == 0 && (v->m_exStyle & LVS_EX_CHECKBOXES) &&
                         vp.x() - v->columnViewportPosition(0) < AfxListView::kCheckWidth;
    info->flags = onCheck ? LVHT_ONITEMSTATEICON : LVHT_ONITEMLABEL;
    return row;
}

BOOL CListCtrl::Update(int) {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v)
        return FALSE;
    v->viewport()->update();
    return TRUE;
}

int CListCtrl::InvalidateChangedCells() {
    AfxListView* v = ViewOf(m_hWnd);
    return v ? v->UpdateChangedCells() : 0;
}

CImageList* CListCtrl::SetImageList(CImageList* pImageList, int nImageListType) {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v || nImageListType < 0 || nImageListType > 2)
        return nullptr;
    CImageList* old = v->m_images[nImageListType];
    v->m_images[nImageListType] = pImageList;
    return old;
}

COLORREF CListCtrl::SetBkColor(COLORREF cr) {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v)
        return CLR_NONE;
    QPalette p = v->palette();
    const QColor old = p.color(QPalette::Base);
    p.setColor(QPalette::Base, QColor(GetRValue(cr), GetGValue(cr), GetBValue(cr)));
    v->setPalette(p);
    return RGB(old.red(), old.green(), old.blue());
}

COLORREF CListCtrl::SetTextColor(COLORREF cr) {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v)
        return CLR_NONE;
    QPalette p = v->palette();
    const QColor old = p.color(QPalette::Text);
    p.setColor(QPalette::Text, QColor(GetRValue(cr), GetGValue(cr), GetBValue(cr)));
    v->setPalette(p);
    return RGB(old.red(), old.green(), old.blue());
}

void CListCtrl::ClickCell(int nItem, int nSubItem, UINT button) {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v)
        return;
    EnsureVisible(nItem, FALSE);
    CRect r;
    if (!GetSubItemRect(nItem, nSubItem, LVIR_LABEL, r))
        return;
    SendClick(v->viewport(), QPoint(r.CenterPoint().x, r.CenterPoint().y) - v->ViewportOffset(),
              button);
}
