// The frame's part of a list page's context menu: translation, the custom groups in the
// add-to-group popup, showing it.
#include "module/LocalResource.h"
#include "module/ParmiraApp.h"
#include "module/host/IGroupNode.h"
#include "module/host/IGroupSet.h"
#include "module/host/IHostUiService.h"
#include "module/host/IVarStore.h"
#include "table/VarTable.h"

#include <algorithm>

namespace {

constexpr UINT kFirstGroupCommand = 4000;
constexpr UINT kNewSubgroupCommand = 32845;

} // namespace

void CVarTable::FillGroupPopup(CMenu& popup, IGroupNode* group, UINT& counter) {
    CString name;
    group->GetName(name);
    const UINT id = kFirstGroupCommand + counter++;
    if (group->GetChildCount() == 0) {
        popup.AppendMenu(MF_STRING, id, name.GetString());
        m_menuGroups[id] = group;
        return;
    }
    CMenu sub;
    sub.CreatePopupMenu();
    CString text = theApp.LoadText(208);
    sub.AppendMenu(MF_STRING, id, text.GetString());
    m_menuSubGroups[id] = group;
    const UINT direct = kFirstGroupCommand + counter++;
    text = theApp.LoadText(207);
    sub.AppendMenu(MF_STRING, direct, text.GetString());
    m_menuGroups[direct] = group;
    for (int i = 0; i < group->GetChildCount(); ++i)
        if (IGroupNode* child = group->GetChildAt(i))
            FillGroupPopup(sub, child, counter);
    popup.AppendMenu(MF_POPUP, UINT_PTR(sub.Detach()), name.GetString());
}

UINT CVarTable::TrackPageMenu(UINT menuId, CPoint screen, CWnd* owner,
                              const std::vector<UINT>& grayed, BOOL groupEntries) {
    CLocalResource scope(theApp.m_hResource);
    CZorSkinPPopupMenu menu;
    if (!menu.LoadMenu(menuId))
        return 0;
    m_menuGroups.clear();
    m_menuSubGroups.clear();
    // The add-to-group popup holds "新建子组"; the custom groups follow it.
    for (int pos = 0; pos < menu.GetMenuItemCount(); ++pos) {
        CMenu* popup = menu.GetSubMenu(pos);
        if (popup == nullptr || popup->GetMenuItemID(0) != kNewSubgroupCommand)
            continue;
        IVarStore* store = GetVarList();
        IGroupSet* root = store != nullptr ? store->GetGroupRoot(1) : nullptr;
        UINT counter = 1;
        if (root != nullptr)
            for (int i = 0; i < root->GetCount(); ++i)
                if (IGroupNode* group = root->GetAt(i))
                    FillGroupPopup(*popup, group, counter);
    }
    if (IHostUiService* ui = theApp.GetUiService())
        ui->TranslateMenu(menu.GetSafeHmenu());
    for (UINT id : grayed)
        menu.EnableMenuItem(id, MF_BYCOMMAND | MF_GRAYED);
    if (!groupEntries) {
        for (const auto& entry : m_menuGroups)
            menu.EnableMenuItem(entry.first, MF_BYCOMMAND | MF_GRAYED);
        for (const auto& entry : m_menuSubGroups)
            menu.EnableMenuItem(entry.first, MF_BYCOMMAND | MF_GRAYED);
    }
    contextMenuOpen = 1;
    const UINT command = menu.Track(owner != nullptr ? owner : this, screen);
    contextMenuOpen = 0;
    if (std::find(grayed.begin(), grayed.end(), command) != grayed.end())
        return 0;
    return command;
}
