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

constexpr UINT kNewSubgroupCommand = 32845;

} // namespace

UINT CVarTable::TrackPageMenu(UINT menuId, CPoint screen, CWnd* owner,
                              const std::vector<UINT>& grayed, BOOL groupEntries) {
    CLocalResource scope(theApp.m_hResource);
    CZorSkinPPopupMenu menu;
    if (!menu.LoadMenu(menuId))
        return 0;
    // The add-to-group popup holds "新建子组"; the custom groups follow it.
    for (int pos = 0; pos < menu.GetMenuItemCount(); ++pos) {
        CMenu* popup = menu.GetSubMenu(pos);
        if (popup == nullptr || popup->GetMenuItemID(0) != kNewSubgroupCommand)
            continue;
        FillAddToGroupMenu(*popup);
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
