#include <skin/ZorSkinLayout.h>

#include <afx/afxqt.h>

#include <QAbstractButton>
#include <QComboBox>
#include <QFontMetrics>
#include <QLabel>
#include <QScrollBar>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QWidget>

#include <algorithm>

namespace {

QWidget* W(CWnd* p) {
    return p != nullptr ? AfxWidgetFromHandle(p->GetSafeHwnd()) : nullptr;
}

} // namespace

CSize ZorSkinPreferredSize(CWnd* pCtrl) {
    QWidget* w = W(pCtrl);
    if (w == nullptr)
        return CSize(0, 0);
    const QSize now = w->size();
    if (qobject_cast<QAbstractButton*>(w) != nullptr || qobject_cast<QLabel*>(w) != nullptr) {
        // The style's hint holds the text, the padding and the frame, lines included.
        const QSize hint = w->sizeHint();
        return CSize(hint.width(), std::max(now.height(), hint.height()));
    }
    if (auto* combo = qobject_cast<QComboBox*>(w); combo != nullptr && !combo->isEditable()) {
        const QSize hint = combo->sizeHint(); // widest entry
        return CSize(std::max(now.width(), hint.width()), now.height());
    }
    return CSize(now.width(), now.height());
}

int ZorSkinTreeContentWidth(CTreeCtrl* pTree) {
    auto* tree = qobject_cast<QTreeWidget*>(W(pTree));
    if (tree == nullptr)
        return 0;
    const QFontMetrics metrics(tree->font());
    int widest = 0;
    for (QTreeWidgetItemIterator it(tree); *it != nullptr; ++it) {
        int depth = 0;
        for (QTreeWidgetItem* p = (*it)->parent(); p != nullptr; p = p->parent())
            ++depth;
        const int icon = (*it)->icon(0).isNull() ? 0 : tree->iconSize().width() + 6;
        widest =
            std::max(widest, (depth + (tree->rootIsDecorated() ? 1 : 0)) * tree->indentation() +
                                 icon + metrics.horizontalAdvance((*it)->text(0)));
    }
    // Item padding and the frame; the vertical scroll bar's share when it shows.
    const QScrollBar* bar = tree->verticalScrollBar();
    return widest + 8 + 2 * tree->frameWidth() + (bar->isVisible() ? bar->width() : 0);
}

int ZorSkinFlowControls(CWnd* pParent, const std::vector<ZorSkinToolSlot>& places,
                        const CRect& area, int gap) {
    if (pParent == nullptr || pParent->GetSafeHwnd() == nullptr)
        return area.top;
    struct Placed {
        const ZorSkinToolSlot* slot;
        CSize size;
    };
    std::vector<std::vector<Placed>> rows(1);
    int x = area.left;
    for (size_t i = 0; i < places.size(); ++i) {
        const ZorSkinToolSlot& slot = places[i];
        CSize size(slot.minWidth, 0);
        for (UINT id : slot.ids) {
            const CSize s = ZorSkinPreferredSize(pParent->GetDlgItem(int(id)));
            size.cx = std::max(size.cx, s.cx);
            size.cy = std::max(size.cy, s.cy);
        }
        if (size.cy == 0)
            continue; // none of its controls exists
        // A caption goes to the next row together with what it names.
        int need = size.cx;
        if (slot.label && i + 1 < places.size()) {
            int next = places[i + 1].minWidth;
            for (UINT id : places[i + 1].ids)
                next = std::max(next, int(ZorSkinPreferredSize(pParent->GetDlgItem(int(id))).cx));
            need += gap + next;
        }
        if (!rows.back().empty() && x + need > area.right) {
            rows.emplace_back();
            x = area.left;
        }
        rows.back().push_back({&slot, size});
        x += size.cx + gap;
    }
    int y = area.top;
    for (const auto& row : rows) {
        int height = 0;
        for (const Placed& p : row)
            height = std::max(height, int(p.size.cy));
        x = area.left;
        for (const Placed& p : row) {
            const int width = std::min(int(p.size.cx), std::max(0, int(area.right) - x));
            for (UINT id : p.slot->ids) {
                CWnd* c = pParent->GetDlgItem(int(id));
                if (c == nullptr)
                    continue;
                const int h = ZorSkinPreferredSize(c).cy;
                c->MoveWindow(x, y + (height - h) / 2, width, h);
            }
            x += p.size.cx + gap;
        }
        y += height + gap;
    }
    return y - gap;
}
