// The context menus of the list pages and their command ids.
#pragma once

#include <afx/afxwin.h>

constexpr UINT IDR_MENU_PAGE1 = 2049;
constexpr UINT IDR_MENU_PAGE2 = 2050;
constexpr UINT IDR_MENU_PAGE1_CUSTOM = 2051;
constexpr UINT IDR_MENU_PAGE2_CUSTOM = 2052;

constexpr UINT ID_ADD_TO_MONITOR = 2004;
constexpr UINT ID_EXPORT_LIST = 2107;
constexpr UINT ID_NEW_SUBGROUP = 32845;
constexpr UINT ID_EDIT_LIST = 2097;
constexpr UINT ID_REMOVE_ROWS = 2109;
constexpr UINT ID_DOWNLOAD_CHECKED = 2105;
constexpr UINT ID_CHECK_ALL = 2103;
constexpr UINT ID_CLEAR_CHECKS = 2099;
constexpr UINT ID_SHOW_CHECKED_ONLY = 32802;
constexpr UINT ID_SHOW_ALL_ROWS = 32805;
constexpr UINT ID_MENU_GROUP_FIRST = 4000;
constexpr UINT ID_MENU_GROUP_LAST = 4500;

// Registers the four menus under `module` (the module's resource handle).
void RegisterRowCommandResources(HINSTANCE module);
// The menu of a page: by page and by whether the selection lies in the custom groups or
// in "已修改参数".
UINT RowMenuId(BOOL firstPage, int inCustomOrModified);
