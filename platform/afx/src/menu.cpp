#include "controls_p.h"

#include <afx/afxtest.h>

#include <QAction>
#include <QGuiApplication>
#include <QMenu>
#include <QTimer>

#include <cstdio>
#include <vector>

struct HMENU__ {
    struct Item {
        UINT id = 0;
        CString text;
        UINT flags = 0;
        std::unique_ptr<HMENU__> sub;
        std::unique_ptr<CMenu> subWrapper;
    };
    std::vector<Item> items;
};

namespace {

void Fill(HMENU__* m, const std::vector<MenuItemTemplate>& items) {
    for (const auto& t : items) {
        HMENU__::Item it;
        it.id = t.id;
        it.text = t.text ? t.text : "";
        it.flags = t.flags;
        if (t.flags & MF_POPUP) {
            it.sub = std::make_unique<HMENU__>();
            Fill(it.sub.get(), t.items);
        }
        m->items.push_back(std::move(it));
    }
}

// Finds an item by command id (searching popups too) or by position.
HMENU__::Item* Find(HMENU__* m, UINT pos, UINT flags) {
    if (!m)
        return nullptr;
    if (flags & MF_BYPOSITION)
        return pos < m->items.size() ? &m->items[pos] : nullptr;
    for (auto& it : m->items) {
        if (!(it.flags & (MF_POPUP | MF_SEPARATOR)) && it.id == pos)
            return &it;
        if (it.sub)
            if (HMENU__::Item* r = Find(it.sub.get(), pos, flags))
                return r;
    }
    return nullptr;
}

void Describe(HMENU__* m, const CString& prefix, CStringArray& out) {
    for (auto& it : m->items) {
        if (it.flags & MF_SEPARATOR)
            continue;
        if (it.sub) {
            Describe(it.sub.get(), prefix + it.text + ">", out);
            continue;
        }
        CString s;
        s.Format("%s%u:%s", (it.flags & (MF_GRAYED | MF_DISABLED)) ? "-" : "", it.id,
                 (prefix + it.text).GetString());
        out.Add(s);
    }
}

void Build(QMenu* q, HMENU__* m) {
    for (auto& it : m->items) {
        if (it.flags & MF_SEPARATOR) {
            q->addSeparator();
            continue;
        }
        if (it.sub) {
            QMenu* sub = q->addMenu(afxi::Q(it.text));
            sub->setEnabled(!(it.flags & (MF_GRAYED | MF_DISABLED)));
            Build(sub, it.sub.get());
            continue;
        }
        QAction* a = q->addAction(afxi::Q(it.text));
        a->setData(it.id);
        a->setEnabled(!(it.flags & (MF_GRAYED | MF_DISABLED)));
        if (it.flags & MF_CHECKED) {
            a->setCheckable(true);
            a->setChecked(true);
        }
    }
}

} // namespace

CMenu::CMenu() = default;
CMenu::~CMenu() {
    DestroyMenu();
}

CMenu* CMenu::FromHandle(HMENU h) {
    // Menus are owned by their CMenu; a handle alone gets a temporary, non-owning wrapper.
    static thread_local CMenu temp;
    temp.m_hMenu = h;
    temp.m_owned = false;
    return h ? &temp : nullptr;
}

BOOL CMenu::CreatePopupMenu() {
    DestroyMenu();
    m_hMenu = new HMENU__;
    m_owned = true;
    return TRUE;
}

BOOL CMenu::LoadMenu(UINT nIDResource) {
    const MenuTemplate* t = AfxFindMenuTemplate(AfxGetResourceHandle(), nIDResource);
    if (!t)
        return FALSE;
    CreatePopupMenu();
    Fill(m_hMenu, t->items);
    return TRUE;
}

BOOL CMenu::DestroyMenu() {
    if (m_owned)
        delete m_hMenu;
    m_hMenu = nullptr;
    m_owned = false;
    return TRUE;
}

BOOL CMenu::Attach(HMENU h) {
    DestroyMenu();
    m_hMenu = h;
    m_owned = true;
    return h != nullptr;
}

HMENU CMenu::Detach() {
    HMENU h = m_hMenu;
    m_hMenu = nullptr;
    m_owned = false;
    return h;
}

BOOL CMenu::AppendMenu(UINT nFlags, UINT_PTR nIDNewItem, const char* text) {
    return InsertMenu(UINT(-1), nFlags | MF_BYPOSITION, nIDNewItem, text);
}

BOOL CMenu::InsertMenu(UINT nPosition, UINT nFlags, UINT_PTR nIDNewItem, const char* text) {
    if (!m_hMenu)
        return FALSE;
    HMENU__::Item it;
    it.flags = nFlags & ~MF_BYPOSITION;
    it.text = text ? text : "";
    if (nFlags & MF_POPUP) {
        // The popup's handle moves into this menu, as on the home platform.
        HMENU sub = reinterpret_cast<HMENU>(nIDNewItem);
        if (!sub)
            return FALSE;
        it.sub.reset(sub);
    } else {
        it.id = UINT(nIDNewItem);
    }
    size_t at = m_hMenu->items.size();
    if (nFlags & MF_BYPOSITION) {
        at = std::min<size_t>(nPosition, at);
    } else {
        for (size_t i = 0; i < m_hMenu->items.size(); ++i)
            if (m_hMenu->items[i].id == nPosition && !m_hMenu->items[i].sub) {
                at = i;
                break;
            }
    }
    m_hMenu->items.insert(m_hMenu->items.begin() + long(at), std::move(it));
    return TRUE;
}

BOOL CMenu::ModifyMenu(UINT nPosition, UINT nFlags, UINT_PTR nIDNewItem, const char* text) {
    HMENU__::Item* it = Find(m_hMenu, nPosition, nFlags);
    if (!it)
        return FALSE;
    it->flags = (nFlags & ~MF_BYPOSITION) | (it->sub ? MF_POPUP : 0);
    if (!it->sub)
        it->id = UINT(nIDNewItem);
    if (text)
        it->text = text;
    return TRUE;
}

BOOL CMenu::DeleteMenu(UINT nPosition, UINT nFlags) {
    if (!m_hMenu)
        return FALSE;
    if (nFlags & MF_BYPOSITION) {
        if (nPosition >= m_hMenu->items.size())
            return FALSE;
        m_hMenu->items.erase(m_hMenu->items.begin() + nPosition);
        return TRUE;
    }
    for (size_t i = 0; i < m_hMenu->items.size(); ++i) {
        if (m_hMenu->items[i].id == nPosition && !m_hMenu->items[i].sub &&
            !(m_hMenu->items[i].flags & MF_SEPARATOR)) {
            m_hMenu->items.erase(m_hMenu->items.begin() + long(i));
            return TRUE;
        }
    }
    return FALSE;
}

UINT CMenu::EnableMenuItem(UINT nIDEnableItem, UINT nEnable) {
    HMENU__::Item* it = Find(m_hMenu, nIDEnableItem, nEnable);
    if (!it)
        return UINT(-1);
    const UINT old = it->flags & (MF_GRAYED | MF_DISABLED);
    it->flags = (it->flags & ~(MF_GRAYED | MF_DISABLED)) | (nEnable & (MF_GRAYED | MF_DISABLED));
    return old;
}

UINT CMenu::CheckMenuItem(UINT nIDCheckItem, UINT nCheck) {
    HMENU__::Item* it = Find(m_hMenu, nIDCheckItem, nCheck);
    if (!it)
        return UINT(-1);
    const UINT old = it->flags & MF_CHECKED;
    it->flags = (it->flags & ~MF_CHECKED) | (nCheck & MF_CHECKED);
    return old;
}

UINT CMenu::GetMenuState(UINT nID, UINT nFlags) const {
    HMENU__::Item* it = Find(m_hMenu, nID, nFlags);
    return it ? it->flags : UINT(-1);
}

int CMenu::GetMenuItemCount() const {
    return m_hMenu ? int(m_hMenu->items.size()) : -1;
}

UINT CMenu::GetMenuItemID(int nPos) const {
    if (!m_hMenu || nPos < 0 || size_t(nPos) >= m_hMenu->items.size())
        return UINT(-1);
    const auto& it = m_hMenu->items[size_t(nPos)];
    if (it.sub)
        return UINT(-1);
    return (it.flags & MF_SEPARATOR) ? 0 : it.id;
}

int CMenu::GetMenuString(UINT nIDItem, CString& text, UINT nFlags) const {
    HMENU__::Item* it = Find(m_hMenu, nIDItem, nFlags);
    text = it ? it->text : CString();
    return text.GetLength();
}

CMenu* CMenu::GetSubMenu(int nPos) const {
    if (!m_hMenu || nPos < 0 || size_t(nPos) >= m_hMenu->items.size())
        return nullptr;
    auto& it = m_hMenu->items[size_t(nPos)];
    if (!it.sub)
        return nullptr;
    if (!it.subWrapper) {
        it.subWrapper = std::make_unique<CMenu>();
        it.subWrapper->m_hMenu = it.sub.get();
    }
    return it.subWrapper.get();
}

UINT CMenu::TrackPopupMenu(UINT, int x, int y, CWnd* pWnd, const RECT*) {
    if (!m_hMenu)
        return FALSE;
    UINT chosen = 0;
    if (IAfxPromptResponder* r = AfxGetPromptResponder()) {
        AfxPrompt p;
        p.kind = AfxPrompt::PopupMenu;
        Describe(m_hMenu, CString(), p.menuItems);
        chosen = r->OnPopupMenu(p);
    } else {
        QWidget* parent = pWnd ? afxi::WidgetOf(pWnd->m_hWnd) : nullptr;
        QMenu menu(parent);
        Build(&menu, m_hMenu);
        if (QGuiApplication::platformName() == QLatin1String("offscreen")) {
            // Nobody can pick on the offscreen platform: close after a while, never hang.
            QTimer::singleShot(10000, &menu, &QMenu::close);
        }
        if (QAction* a = menu.exec(QPoint(x, y)))
            chosen = a->data().toUInt();
    }
    return chosen;
}
