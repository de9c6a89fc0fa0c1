#include "list_p.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>

namespace afxi {
namespace {

QColor ToQColor(COLORREF c) {
    return QColor(GetRValue(c), GetGValue(c), GetBValue(c));
}

constexpr int kCheckWidth = 18;
constexpr int kTextPadding = 4;

// Paints each cell from one text and one colour request, nothing else.
class ListDelegate : public QStyledItemDelegate {
public:
    explicit ListDelegate(AfxListView* view) : QStyledItemDelegate(view), m_view(view) {}

    void paint(QPainter* p, const QStyleOptionViewItem& opt,
               const QModelIndex& idx) const override {
        const int row = idx.row();
        const int col = idx.column();
        const CString text = m_view->CellText(row, col);
        COLORREF fg = CLR_DEFAULT;
        COLORREF bg = CLR_DEFAULT;
        m_view->CellColors(row, col, fg, bg);
        const bool selected = opt.state & QStyle::State_Selected;
        const bool fullRow = m_view->m_exStyle & LVS_EX_FULLROWSELECT;
        QRect r = opt.rect;
        const QPalette& pal = m_view->palette();
        QColor textColor = fg != CLR_DEFAULT ? ToQColor(fg) : pal.color(QPalette::Text);
        if (bg != CLR_DEFAULT)
            p->fillRect(r, ToQColor(bg));
        QRect textRect = r.adjusted(kTextPadding, 0, -kTextPadding, 0);
        const bool checkBox = col == 0 && (m_view->m_exStyle & LVS_EX_CHECKBOXES);
        if (checkBox)
            textRect.setLeft(r.left() + kCheckWidth + 2);
        QPixmap pm;
        QPoint imageAt;
        if (col == 0) {
            pm = ImageListPixmap(m_view->m_images[LVSIL_SMALL], m_view->ItemImage(row));
            if (!pm.isNull()) {
                imageAt = QPoint(textRect.left(), r.top() + (r.height() - pm.height()) / 2);
                textRect.setLeft(textRect.left() + pm.width() + 3);
            }
        }
        // The highlight goes first: the check box and the image of a selected row stay
        // visible over it.
        if (selected && (fullRow || col == 0)) {
            const QRect sel = col == 0 && !fullRow ? textRect.adjusted(-2, 0, 2, 0) : r;
            const bool active =
                m_view->hasFocus() ||
                (m_view->Owner() && (m_view->Owner()->GetStyle() & LVS_SHOWSELALWAYS));
            p->fillRect(sel, active
                                 ? pal.color(QPalette::Active, QPalette::Highlight)
                                 : pal.color(QPalette::Inactive, QPalette::Highlight).lighter(130));
            textColor = pal.color(active ? QPalette::Active : QPalette::Inactive,
                                  QPalette::HighlightedText);
        }
        if (checkBox) {
            QStyleOptionButton box;
            box.rect = QRect(r.left() + 3, r.top() + (r.height() - 13) / 2, 13, 13);
            box.state = QStyle::State_Enabled |
                        (m_view->StateImage(row) == 2 ? QStyle::State_On : QStyle::State_Off);
            m_view->style()->drawPrimitive(QStyle::PE_IndicatorCheckBox, &box, p, m_view);
        }
        if (!pm.isNull())
            p->drawPixmap(imageAt, pm);
        int align = Qt::AlignLeft;
        if (size_t(col) < m_view->m_columns.size()) {
            const int fmt = m_view->m_columns[size_t(col)].fmt & 3;
            align = fmt == LVCFMT_RIGHT ? Qt::AlignRight
                                        : (fmt == LVCFMT_CENTER ? Qt::AlignHCenter : Qt::AlignLeft);
        }
        p->setPen(textColor);
        const QString s = Q(text);
        p->drawText(textRect, align | Qt::AlignVCenter,
                    opt.fontMetrics.elidedText(s, Qt::ElideRight, textRect.width()));
    }

    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override {
        return QSize(60, m_view->RowHeight());
    }

private:
    AfxListView* m_view;
};

} // namespace

AfxListModel::AfxListModel(AfxListView* view) : QAbstractTableModel(view), m_view(view) {}

int AfxListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_view->m_count;
}

int AfxListModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_view->m_columns.size());
}

QVariant AfxListModel::data(const QModelIndex& index, int role) const {
    // Painting goes through the delegate; this serves accessibility and the like.
    if (role == Qt::DisplayRole && index.isValid())
        return Q(m_view->CellText(index.row(), index.column()));
    return QVariant();
}

QVariant AfxListModel::headerData(int section, Qt::Orientation o, int role) const {
    if (o != Qt::Horizontal || size_t(section) >= m_view->m_columns.size())
        return QVariant();
    if (role == Qt::DisplayRole)
        return m_view->m_columns[size_t(section)].text;
    if (role == Qt::TextAlignmentRole) {
        const int fmt = m_view->m_columns[size_t(section)].fmt & 3;
        return int((fmt == LVCFMT_RIGHT
                        ? Qt::AlignRight
                        : (fmt == LVCFMT_CENTER ? Qt::AlignHCenter : Qt::AlignLeft)) |
                   Qt::AlignVCenter);
    }
    return QVariant();
}

Qt::ItemFlags AfxListModel::flags(const QModelIndex& index) const {
    return index.isValid() ? Qt::ItemIsEnabled | Qt::ItemIsSelectable : Qt::NoItemFlags;
}

AfxListView::AfxListView(DWORD style, QWidget* parent)
    : QTableView(parent), m_model(new AfxListModel(this)), m_ownerData(style & LVS_OWNERDATA) {
    setModel(m_model);
    setItemDelegate(new ListDelegate(this));
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode((style & LVS_SINGLESEL) ? QAbstractItemView::SingleSelection
                                             : QAbstractItemView::ExtendedSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setShowGrid(false);
    setWordWrap(false);
    setCornerButtonEnabled(false);
    setTabKeyNavigation(false);
    setFocusPolicy(Qt::StrongFocus);
    verticalHeader()->hide();
    verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    verticalHeader()->setMinimumSectionSize(12);
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    horizontalHeader()->setSectionResizeMode(QHeaderView::Interactive);
    horizontalHeader()->setStretchLastSection(false);
    horizontalHeader()->setHighlightSections(false);
    horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    horizontalHeader()->setSectionsClickable(!(style & LVS_NOSORTHEADER));
    if (style & LVS_NOCOLUMNHEADER)
        horizontalHeader()->hide();
    setStyleSheet("QTableView { gridline-color: #d8dce2; }");
}

CListCtrl* AfxListView::Owner() const {
    WindowData* d = Lookup(m_self);
    return d ? dynamic_cast<CListCtrl*>(d->wnd ? d->wnd : d->standIn.get()) : nullptr;
}

CString AfxListView::CellText(int row, int col) {
    if (CListCtrl* owner = Owner())
        return owner->OnGetCellText(row, col);
    if (!m_ownerData && size_t(row) < m_rows.size() &&
        size_t(col) < m_rows[size_t(row)].texts.size())
        return m_rows[size_t(row)].texts[size_t(col)];
    return CString();
}

int AfxListView::ItemImage(int row) {
    if (!m_images[LVSIL_SMALL])
        return -1;
    CListCtrl* owner = Owner();
    return owner ? owner->OnGetItemImage(row) : -1;
}

bool AfxListView::CellColors(int row, int col, COLORREF& text, COLORREF& back) {
    CListCtrl* owner = Owner();
    return owner && owner->OnGetCellColors(row, col, text, back);
}

UINT AfxListView::StateImage(int row) const {
    if (CListCtrl* owner = Owner())
        if (const int image = owner->OnGetStateImage(row); image >= 0)
            return UINT(image);
    const auto it = m_stateImages.find(row);
    if (it != m_stateImages.end())
        return it->second;
    return (m_exStyle & LVS_EX_CHECKBOXES) ? 1 : 0;
}

void AfxListView::SetStateImage(int row, UINT index, bool notify) {
    const UINT old = StateImage(row);
    if (old == index)
        return;
    m_stateImages[row] = index;
    viewport()->update();
    if (notify)
        NotifyItemChanged(row, INDEXTOSTATEIMAGEMASK(index), INDEXTOSTATEIMAGEMASK(old),
                          LVIF_STATE);
}

int AfxListView::NextSelected(int from) const {
    int best = -1;
    if (!selectionModel())
        return -1;
    for (const QItemSelectionRange& r : selectionModel()->selection()) {
        int candidate = -1;
        if (r.bottom() < from)
            continue;
        candidate = std::max(r.top(), from);
        if (best < 0 || candidate < best)
            best = candidate;
    }
    return best;
}

void AfxListView::NotifyItemChanged(int row, UINT newState, UINT oldState, UINT changed) {
    HWND h = HandleOf(this);
    if (!h || m_suppressNotify)
        return;
    NMLISTVIEW nm{};
    nm.hdr.code = LVN_ITEMCHANGED;
    nm.iItem = row;
    nm.uNewState = newState;
    nm.uOldState = oldState;
    nm.uChanged = changed;
    NotifyHdr(h, &nm.hdr);
}

void AfxListView::NotifyClick(UINT code, QPoint vp) {
    HWND h = HandleOf(this);
    if (!h)
        return;
    NMITEMACTIVATE nm{};
    nm.hdr.code = code;
    const QModelIndex idx = indexAt(vp);
    nm.iItem = idx.isValid() ? idx.row() : -1;
    nm.iSubItem = idx.isValid() ? idx.column() : (columnAt(vp.x()) >= 0 ? columnAt(vp.x()) : 0);
    const QPoint client = vp + ViewportOffset();
    nm.ptAction = POINT{client.x(), client.y()};
    NotifyHdr(h, &nm.hdr);
}

void AfxListView::mousePressEvent(QMouseEvent* e) {
    const QPoint vp = e->position().toPoint();
    const QModelIndex idx = indexAt(vp);
    if (idx.isValid() && idx.column() == 0 && (m_exStyle & LVS_EX_CHECKBOXES) &&
        e->button() == Qt::LeftButton && vp.x() - visualRect(idx).left() < kCheckWidth) {
        SetStateImage(idx.row(), StateImage(idx.row()) == 2 ? 1 : 2, true);
    }
    QPointer<AfxListView> self(this);
    QTableView::mousePressEvent(e);
    if (!self)
        return;
    if (idx.isValid() && !(e->modifiers() & Qt::ShiftModifier))
        m_selectionMark = idx.row();
    if (e->button() == Qt::LeftButton)
        NotifyClick(NM_CLICK, vp);
    else if (e->button() == Qt::RightButton)
        NotifyClick(NM_RCLICK, vp);
}

void AfxListView::mouseDoubleClickEvent(QMouseEvent* e) {
    QPointer<AfxListView> self(this);
    QTableView::mouseDoubleClickEvent(e);
    if (self && e->button() == Qt::LeftButton)
        NotifyClick(NM_DBLCLK, e->position().toPoint());
}

void AfxListView::keyPressEvent(QKeyEvent* e) {
    if (HWND h = HandleOf(this)) {
        NMLVKEYDOWN nm{};
        nm.hdr.code = LVN_KEYDOWN;
        nm.wVKey = WORD(e->key() == Qt::Key_Space ? VK_SPACE : (e->key() & 0xFFFF));
        if (e->key() == Qt::Key_Delete)
            nm.wVKey = WORD(VK_DELETE);
        else if (e->key() == Qt::Key_Up)
            nm.wVKey = WORD(VK_UP);
        else if (e->key() == Qt::Key_Down)
            nm.wVKey = WORD(VK_DOWN);
        else if (e->key() == Qt::Key_Return || e->key() == Qt::Key_Enter)
            nm.wVKey = WORD(VK_RETURN);
        NotifyHdr(h, &nm.hdr);
        if (!Lookup(h))
            return;
    }
    if (e->key() == Qt::Key_Space && (m_exStyle & LVS_EX_CHECKBOXES) && currentIndex().isValid()) {
        const int row = currentIndex().row();
        SetStateImage(row, StateImage(row) == 2 ? 1 : 2, true);
        return;
    }
    QTableView::keyPressEvent(e);
    if (currentIndex().isValid() && !(e->modifiers() & Qt::ShiftModifier))
        m_selectionMark = currentIndex().row();
}

QWidget* MakeListWidget(DWORD style, QWidget* parent) {
    return new AfxListView(style, parent);
}

void ConnectList(HWND h) {
    auto* v = WidgetAs<AfxListView>(h);
    if (!v)
        return;
    v->m_self = h;
    QObject::connect(v->selectionModel(), &QItemSelectionModel::selectionChanged, v,
                     [v](const QItemSelection& sel, const QItemSelection& desel) {
                         auto rows = [](const QItemSelection& s) {
                             long n = 0;
                             for (const auto& r : s)
                                 n += r.height();
                             return n;
                         };
                         if (rows(sel) + rows(desel) > 256) {
                             v->NotifyItemChanged(-1, 0, 0, LVIF_STATE);
                             return;
                         }
                         for (const auto& r : desel)
                             for (int row = r.top(); row <= r.bottom(); ++row)
                                 if (!v->selectionModel()->isRowSelected(row, QModelIndex()))
                                     v->NotifyItemChanged(row, 0, LVIS_SELECTED, LVIF_STATE);
                         for (const auto& r : sel)
                             for (int row = r.top(); row <= r.bottom(); ++row)
                                 v->NotifyItemChanged(row, LVIS_SELECTED, 0, LVIF_STATE);
                     });
    QObject::connect(v->selectionModel(), &QItemSelectionModel::currentRowChanged, v,
                     [v](const QModelIndex& now, const QModelIndex& before) {
                         if (before.isValid())
                             v->NotifyItemChanged(before.row(), 0, LVIS_FOCUSED, LVIF_STATE);
                         if (now.isValid())
                             v->NotifyItemChanged(now.row(), LVIS_FOCUSED, 0, LVIF_STATE);
                     });
    QObject::connect(v->horizontalHeader(), &QHeaderView::sectionClicked, v, [v](int section) {
        HWND list = HandleOf(v);
        NMLISTVIEW nm{};
        nm.hdr.code = LVN_COLUMNCLICK;
        nm.iItem = -1;
        nm.iSubItem = section;
        NotifyHdr(list, &nm.hdr);
    });
    // The header is a window of its own, child of the list, as its notifications expect.
    v->m_header = Register(v->horizontalHeader(), KHeader, 0, WS_CHILD | WS_VISIBLE);
    HWND header = v->m_header;
    QObject::connect(v->horizontalHeader(), &QHeaderView::sectionResized, v,
                     [header](int section, int, int size) {
                         HDITEM item{HDI_WIDTH, size};
                         NMHEADER nm{};
                         nm.iItem = section;
                         nm.pitem = &item;
                         nm.hdr.code = HDN_ITEMCHANGING;
                         NotifyHdr(header, &nm.hdr);
                         nm.hdr.code = HDN_ITEMCHANGED;
                         NotifyHdr(header, &nm.hdr);
                     });
    auto scrolled = [v](bool vertical) {
        HWND list = HandleOf(v);
        if (!list)
            return;
        NMLVSCROLL nm{};
        nm.hdr.code = LVN_BEGINSCROLL;
        NotifyHdr(list, &nm.hdr);
        if (!Lookup(list))
            return;
        const int pos =
            vertical ? v->verticalScrollBar()->value() : v->horizontalScrollBar()->value();
        Send(list, vertical ? WM_VSCROLL : WM_HSCROLL, MAKEWPARAM(SB_THUMBPOSITION, WORD(pos)), 0);
        if (!Lookup(list))
            return;
        nm.hdr.code = LVN_ENDSCROLL;
        NotifyHdr(list, &nm.hdr);
    };
    QObject::connect(v->verticalScrollBar(), &QScrollBar::valueChanged, v,
                     [scrolled] { scrolled(true); });
    QObject::connect(v->horizontalScrollBar(), &QScrollBar::valueChanged, v,
                     [scrolled] { scrolled(false); });
}

} // namespace afxi

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

int CListCtrl::InsertItem(int nItem, const char* text, int nImage) {
    const int at = InsertItem(nItem, text);
    if (at >= 0)
        SetItemImage(at, nImage);
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

BOOL CListCtrl::DeleteItem(int nItem) {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v || nItem < 0 || nItem >= v->m_count)
        return FALSE;
    v->m_model->beginRemoveRows(QModelIndex(), nItem, nItem);
    if (!v->m_ownerData)
        v->m_rows.erase(v->m_rows.begin() + nItem);
    --v->m_count;
    std::unordered_map<int, UINT> moved;
    for (const auto& [r, s] : v->m_stateImages)
        if (r != nItem)
            moved[r > nItem ? r - 1 : r] = s;
    v->m_stateImages.swap(moved);
    v->m_model->endRemoveRows();
    return TRUE;
}

BOOL CListCtrl::DeleteAllItems() {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v)
        return FALSE;
    v->m_model->beginResetModel();
    v->m_rows.clear();
    v->m_count = 0;
    v->m_stateImages.clear();
    v->m_selectionMark = -1;
    v->m_model->endResetModel();
    return TRUE;
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
                v->SetStateImage(r, index, true);
        else
            v->SetStateImage(nItem, index, true);
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
                         vp.x() - v->columnViewportPosition(0) < kCheckWidth;
    info->flags = onCheck ? LVHT_ONITEMSTATEICON : LVHT_ONITEMLABEL;
    return row;
}

BOOL CListCtrl::Scroll(CSize size) {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v)
        return FALSE;
    if (size.cy)
        v->verticalScrollBar()->setValue(v->verticalScrollBar()->value() +
                                         size.cy / std::max(1, v->RowHeight()));
    if (size.cx)
        v->horizontalScrollBar()->setValue(v->horizontalScrollBar()->value() + size.cx);
    return TRUE;
}

BOOL CListCtrl::RedrawItems(int, int) {
    AfxListView* v = ViewOf(m_hWnd);
    if (!v)
        return FALSE;
    v->viewport()->update();
    return TRUE;
}

BOOL CListCtrl::Update(int nItem) {
    return RedrawItems(nItem, nItem);
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
