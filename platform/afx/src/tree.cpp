#include "tree_p.h"

#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QHeaderView>
#include <QMouseEvent>
#include <QStyledItemDelegate>

namespace afxi {
namespace {

constexpr int kDataRole = Qt::UserRole;
constexpr int kImageRole = Qt::UserRole + 1;
constexpr int kSelImageRole = Qt::UserRole + 2;
constexpr int kStateRole = Qt::UserRole + 3;

QTreeWidgetItem* ItemOf(HTREEITEM h) {
    return reinterpret_cast<QTreeWidgetItem*>(h);
}
HTREEITEM HandleOfItem(QTreeWidgetItem* i) {
    return reinterpret_cast<HTREEITEM>(i);
}

class TreeDelegate : public QStyledItemDelegate {
public:
    explicit TreeDelegate(AfxTree* tree) : QStyledItemDelegate(tree), m_tree(tree) {}
    QSize sizeHint(const QStyleOptionViewItem& opt, const QModelIndex& idx) const override {
        QSize s = QStyledItemDelegate::sizeHint(opt, idx);
        if (m_tree->m_itemHeight > 0)
            s.setHeight(m_tree->m_itemHeight);
        return s;
    }

private:
    AfxTree* m_tree;
};

TVITEM ItemInfo(QTreeWidgetItem* i) {
    TVITEM t{};
    t.mask = TVIF_HANDLE | TVIF_PARAM | TVIF_STATE;
    t.hItem = HandleOfItem(i);
    if (i) {
        t.lParam = LPARAM(i->data(0, kDataRole).value<qulonglong>());
        t.iImage = i->data(0, kImageRole).toInt();
        t.iSelectedImage = i->data(0, kSelImageRole).toInt();
        t.state = (i->isSelected() ? TVIS_SELECTED : 0) | (i->isExpanded() ? TVIS_EXPANDED : 0);
    }
    return t;
}

} // namespace

AfxTree::AfxTree(DWORD style, QWidget* parent) : QTreeWidget(parent) {
    setHeaderHidden(true);
    setColumnCount(1);
    setRootIsDecorated(style & (TVS_LINESATROOT | TVS_HASBUTTONS));
    setItemDelegate(new TreeDelegate(this));
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setUniformRowHeights(true);
    setExpandsOnDoubleClick(true);
    setIconSize(QSize(16, 16));
    header()->setStretchLastSection(true);
    setFocusPolicy(Qt::StrongFocus);
}

void AfxTree::RefreshIcon(QTreeWidgetItem* item) {
    CImageList* list = m_images[TVSIL_NORMAL];
    const int image = item->data(0, kImageRole).toInt();
    const int selImage = item->data(0, kSelImageRole).toInt();
    if (!list || image < 0 || image >= list->GetImageCount()) {
        item->setIcon(0, QIcon());
        return;
    }
    QIcon icon(ImageListPixmap(list, image));
    if (selImage >= 0 && selImage < list->GetImageCount() && selImage != image)
        icon.addPixmap(ImageListPixmap(list, selImage), QIcon::Selected);
    item->setIcon(0, icon);
}

void AfxTree::NotifyClick(UINT code) {
    if (HWND h = HandleOf(this)) {
        NMHDR nm{};
        nm.code = code;
        NotifyHdr(h, &nm);
    }
}

void AfxTree::mousePressEvent(QMouseEvent* e) {
    QPointer<AfxTree> self(this);
    QTreeWidget::mousePressEvent(e);
    if (!self)
        return;
    if (e->button() == Qt::LeftButton)
        NotifyClick(NM_CLICK);
    else if (e->button() == Qt::RightButton)
        NotifyClick(NM_RCLICK);
}

void AfxTree::mouseDoubleClickEvent(QMouseEvent* e) {
    QPointer<AfxTree> self(this);
    QTreeWidget::mouseDoubleClickEvent(e);
    if (self && e->button() == Qt::LeftButton)
        NotifyClick(NM_DBLCLK);
}

void AfxTree::keyPressEvent(QKeyEvent* e) {
    if (HWND h = HandleOf(this)) {
        NMTVKEYDOWN nm{};
        nm.hdr.code = TVN_KEYDOWN;
        nm.wVKey = WORD(e->key() & 0xFFFF);
        NotifyHdr(h, &nm.hdr);
        if (!Lookup(h))
            return;
    }
    QTreeWidget::keyPressEvent(e);
}

QWidget* MakeTreeWidget(DWORD style, QWidget* parent) {
    return new AfxTree(style, parent);
}

void ConnectTree(HWND h) {
    auto* t = WidgetAs<AfxTree>(h);
    if (!t)
        return;
    QObject::connect(t, &QTreeWidget::currentItemChanged, t,
                     [t](QTreeWidgetItem* now, QTreeWidgetItem* before) {
                         NMTREEVIEW nm{};
                         nm.hdr.code = TVN_SELCHANGED;
                         nm.action = TVC_UNKNOWN;
                         nm.itemOld = ItemInfo(before);
                         nm.itemNew = ItemInfo(now);
                         NotifyHdr(HandleOf(t), &nm.hdr);
                     });
}

} // namespace afxi

using namespace afxi;

static AfxTree* TreeOf(HWND h) {
    return WidgetAs<AfxTree>(h);
}

BOOL CTreeCtrl::Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID) {
    return CreateFromKind(KTree, "", dwStyle, rect, pParentWnd, nID);
}

HTREEITEM CTreeCtrl::InsertItem(const char* text, HTREEITEM hParent, HTREEITEM hInsertAfter) {
    return InsertItem(text, -1, -1, hParent, hInsertAfter);
}

HTREEITEM CTreeCtrl::InsertItem(const char* text, int nImage, int nSelectedImage, HTREEITEM hParent,
                                HTREEITEM hInsertAfter) {
    AfxTree* t = TreeOf(m_hWnd);
    if (!t)
        return nullptr;
    auto* item = new QTreeWidgetItem(QStringList(Q(text)));
    item->setData(0, kDataRole, qulonglong(0));
    item->setData(0, kImageRole, nImage);
    item->setData(0, kSelImageRole, nSelectedImage);
    QTreeWidgetItem* parent = (hParent == TVI_ROOT || !hParent) ? nullptr : ItemOf(hParent);
    const int count = parent ? parent->childCount() : t->topLevelItemCount();
    int at = count;
    if (hInsertAfter == TVI_FIRST) {
        at = 0;
    } else if (hInsertAfter == TVI_SORT) {
        at = 0;
        while (at < count) {
            QTreeWidgetItem* s = parent ? parent->child(at) : t->topLevelItem(at);
            if (QString::compare(s->text(0), item->text(0), Qt::CaseInsensitive) > 0)
                break;
            ++at;
        }
    } else if (hInsertAfter != TVI_LAST && hInsertAfter) {
        QTreeWidgetItem* after = ItemOf(hInsertAfter);
        const int i = parent ? parent->indexOfChild(after) : t->indexOfTopLevelItem(after);
        if (i >= 0)
            at = i + 1;
    }
    if (parent)
        parent->insertChild(at, item);
    else
        t->insertTopLevelItem(at, item);
    t->RefreshIcon(item);
    return HandleOfItem(item);
}

BOOL CTreeCtrl::DeleteItem(HTREEITEM hItem) {
    AfxTree* t = TreeOf(m_hWnd);
    if (!t || !hItem)
        return FALSE;
    if (hItem == TVI_ROOT)
        return DeleteAllItems();
    delete ItemOf(hItem);
    return TRUE;
}

BOOL CTreeCtrl::DeleteAllItems() {
    AfxTree* t = TreeOf(m_hWnd);
    if (!t)
        return FALSE;
    t->clear();
    return TRUE;
}

UINT CTreeCtrl::GetCount() const {
    AfxTree* t = TreeOf(m_hWnd);
    if (!t)
        return 0;
    UINT n = 0;
    for (QTreeWidgetItemIterator it(t); *it; ++it)
        ++n;
    return n;
}

HTREEITEM CTreeCtrl::GetRootItem() const {
    AfxTree* t = TreeOf(m_hWnd);
    return t && t->topLevelItemCount() ? HandleOfItem(t->topLevelItem(0)) : nullptr;
}

HTREEITEM CTreeCtrl::GetChildItem(HTREEITEM hItem) const {
    if (!hItem || hItem == TVI_ROOT)
        return GetRootItem();
    QTreeWidgetItem* i = ItemOf(hItem);
    return i->childCount() ? HandleOfItem(i->child(0)) : nullptr;
}

HTREEITEM CTreeCtrl::GetNextSiblingItem(HTREEITEM hItem) const {
    AfxTree* t = TreeOf(m_hWnd);
    if (!t || !hItem)
        return nullptr;
    QTreeWidgetItem* i = ItemOf(hItem);
    QTreeWidgetItem* p = i->parent();
    const int at = p ? p->indexOfChild(i) : t->indexOfTopLevelItem(i);
    const int count = p ? p->childCount() : t->topLevelItemCount();
    if (at < 0 || at + 1 >= count)
        return nullptr;
    return HandleOfItem(p ? p->child(at + 1) : t->topLevelItem(at + 1));
}

HTREEITEM CTreeCtrl::GetParentItem(HTREEITEM hItem) const {
    return hItem && hItem != TVI_ROOT ? HandleOfItem(ItemOf(hItem)->parent()) : nullptr;
}

HTREEITEM CTreeCtrl::GetNextItem(HTREEITEM hItem, UINT nCode) const {
    switch (nCode) {
    case TVGN_ROOT:
        return GetRootItem();
    case TVGN_NEXT:
        return GetNextSiblingItem(hItem);
    case TVGN_PARENT:
        return GetParentItem(hItem);
    case TVGN_CHILD:
        return GetChildItem(hItem);
    case TVGN_CARET:
        return GetSelectedItem();
    case TVGN_NEXTVISIBLE:
        return GetNextVisibleItem(hItem);
    default:
        return nullptr;
    }
}

HTREEITEM CTreeCtrl::GetNextVisibleItem(HTREEITEM hItem) const {
    AfxTree* t = TreeOf(m_hWnd);
    if (!t || !hItem)
        return nullptr;
    return HandleOfItem(t->itemBelow(ItemOf(hItem)));
}

HTREEITEM CTreeCtrl::GetSelectedItem() const {
    AfxTree* t = TreeOf(m_hWnd);
    return t ? HandleOfItem(t->currentItem()) : nullptr;
}

BOOL CTreeCtrl::SelectItem(HTREEITEM hItem) {
    AfxTree* t = TreeOf(m_hWnd);
    if (!t)
        return FALSE;
    if (!hItem) {
        t->setCurrentItem(nullptr);
        t->clearSelection();
        return TRUE;
    }
    // Selecting an item shows it: its ancestors open.
    for (QTreeWidgetItem* p = ItemOf(hItem)->parent(); p; p = p->parent())
        p->setExpanded(true);
    t->setCurrentItem(ItemOf(hItem));
    return TRUE;
}

BOOL CTreeCtrl::Expand(HTREEITEM hItem, UINT nCode) {
    if (!TreeOf(m_hWnd) || !hItem || hItem == TVI_ROOT)
        return FALSE;
    QTreeWidgetItem* i = ItemOf(hItem);
    switch (nCode & 3) {
    case TVE_EXPAND:
        i->setExpanded(true);
        break;
    case TVE_COLLAPSE:
        i->setExpanded(false);
        break;
    case TVE_TOGGLE:
        i->setExpanded(!i->isExpanded());
        break;
    default:
        return FALSE;
    }
    return TRUE;
}

BOOL CTreeCtrl::EnsureVisible(HTREEITEM hItem) {
    AfxTree* t = TreeOf(m_hWnd);
    if (!t || !hItem)
        return FALSE;
    t->scrollToItem(ItemOf(hItem));
    return TRUE;
}

CString CTreeCtrl::GetItemText(HTREEITEM hItem) const {
    return hItem && hItem != TVI_ROOT ? C(ItemOf(hItem)->text(0)) : CString();
}

BOOL CTreeCtrl::SetItemText(HTREEITEM hItem, const char* text) {
    if (!hItem || hItem == TVI_ROOT)
        return FALSE;
    ItemOf(hItem)->setText(0, Q(text));
    return TRUE;
}

DWORD_PTR CTreeCtrl::GetItemData(HTREEITEM hItem) const {
    if (!hItem || hItem == TVI_ROOT)
        return 0;
    return DWORD_PTR(ItemOf(hItem)->data(0, kDataRole).value<qulonglong>());
}

BOOL CTreeCtrl::SetItemData(HTREEITEM hItem, DWORD_PTR dwData) {
    if (!hItem || hItem == TVI_ROOT)
        return FALSE;
    ItemOf(hItem)->setData(0, kDataRole, qulonglong(dwData));
    return TRUE;
}

BOOL CTreeCtrl::SetItemImage(HTREEITEM hItem, int nImage, int nSelectedImage) {
    AfxTree* t = TreeOf(m_hWnd);
    if (!t || !hItem || hItem == TVI_ROOT)
        return FALSE;
    ItemOf(hItem)->setData(0, kImageRole, nImage);
    ItemOf(hItem)->setData(0, kSelImageRole, nSelectedImage);
    t->RefreshIcon(ItemOf(hItem));
    return TRUE;
}

UINT CTreeCtrl::GetItemState(HTREEITEM hItem, UINT nStateMask) const {
    if (!hItem || hItem == TVI_ROOT)
        return 0;
    QTreeWidgetItem* i = ItemOf(hItem);
    UINT s = 0;
    if (i->isSelected() || HandleOfItem(i) == GetSelectedItem())
        s |= TVIS_SELECTED;
    if (i->isExpanded())
        s |= TVIS_EXPANDED;
    s |= UINT(i->data(0, kStateRole).toUInt()) << 12;
    return s & nStateMask;
}

BOOL CTreeCtrl::SetItemState(HTREEITEM hItem, UINT nState, UINT nStateMask) {
    if (!hItem || hItem == TVI_ROOT)
        return FALSE;
    QTreeWidgetItem* i = ItemOf(hItem);
    if (nStateMask & TVIS_EXPANDED)
        i->setExpanded(nState & TVIS_EXPANDED);
    if (nStateMask & TVIS_SELECTED) {
        if (nState & TVIS_SELECTED)
            SelectItem(hItem);
        else
            i->setSelected(false);
    }
    if (nStateMask & TVIS_STATEIMAGEMASK)
        i->setData(0, kStateRole, (nState & TVIS_STATEIMAGEMASK) >> 12);
    return TRUE;
}

BOOL CTreeCtrl::GetItemRect(HTREEITEM hItem, RECT* lpRect, BOOL bTextOnly) const {
    AfxTree* t = TreeOf(m_hWnd);
    if (!t || !hItem || hItem == TVI_ROOT)
        return FALSE;
    QRect r = t->visualItemRect(ItemOf(hItem));
    if (r.isEmpty())
        return FALSE;
    if (!bTextOnly)
        r.setLeft(0);
    r.translate(t->viewport()->geometry().topLeft());
    *lpRect = CRect(r.left(), r.top(), r.right() + 1, r.bottom() + 1);
    return TRUE;
}

HTREEITEM CTreeCtrl::HitTest(CPoint pt, UINT* pFlags) const {
    AfxTree* t = TreeOf(m_hWnd);
    if (pFlags)
        *pFlags = TVHT_NOWHERE;
    if (!t)
        return nullptr;
    const QPoint vp = QPoint(pt.x, pt.y) - t->viewport()->geometry().topLeft();
    QTreeWidgetItem* i = t->viewport()->rect().contains(vp) ? t->itemAt(vp) : nullptr;
    if (i && pFlags) {
        const QRect r = t->visualItemRect(i);
        *pFlags = vp.x() < r.left() ? TVHT_ONITEMINDENT : TVHT_ONITEMLABEL;
    }
    return HandleOfItem(i);
}

CImageList* CTreeCtrl::SetImageList(CImageList* pImageList, int nImageListType) {
    AfxTree* t = TreeOf(m_hWnd);
    if (!t || nImageListType < 0 || nImageListType > 2)
        return nullptr;
    CImageList* old = t->m_images[nImageListType];
    t->m_images[nImageListType] = pImageList;
    if (pImageList) {
        int cx = 16, cy = 16;
        pImageList->GetIconSize(cx, cy);
        t->setIconSize(QSize(cx, cy));
    }
    for (QTreeWidgetItemIterator it(t); *it; ++it)
        t->RefreshIcon(*it);
    return old;
}

SHORT CTreeCtrl::SetItemHeight(SHORT cyHeight) {
    AfxTree* t = TreeOf(m_hWnd);
    if (!t)
        return 0;
    const SHORT old = GetItemHeight();
    t->m_itemHeight = cyHeight;
    t->doItemsLayout();
    return old;
}

SHORT CTreeCtrl::GetItemHeight() const {
    AfxTree* t = TreeOf(m_hWnd);
    if (!t)
        return 0;
    return SHORT(t->m_itemHeight > 0 ? t->m_itemHeight : t->fontMetrics().height() + 4);
}

COLORREF CTreeCtrl::SetBkColor(COLORREF clr) {
    AfxTree* t = TreeOf(m_hWnd);
    if (!t)
        return CLR_NONE;
    QPalette p = t->palette();
    p.setColor(QPalette::Base, QColor(GetRValue(clr), GetGValue(clr), GetBValue(clr)));
    t->setPalette(p);
    return CLR_DEFAULT;
}

COLORREF CTreeCtrl::SetTextColor(COLORREF clr) {
    AfxTree* t = TreeOf(m_hWnd);
    if (!t)
        return CLR_NONE;
    QPalette p = t->palette();
    p.setColor(QPalette::Text, QColor(GetRValue(clr), GetGValue(clr), GetBValue(clr)));
    t->setPalette(p);
    return CLR_DEFAULT;
}

void CTreeCtrl::ClickItem(HTREEITEM hItem, UINT button) {
    AfxTree* t = TreeOf(m_hWnd);
    if (!t || !hItem)
        return;
    t->scrollToItem(ItemOf(hItem));
    const QRect r = t->visualItemRect(ItemOf(hItem));
    SendClick(t->viewport(), r.center(), button);
}
