// Resources of the table frame: its dialogs, the tree's menus and icons, and the ids of
// the texts and commands it uses. The texts themselves live in the module's string table.
#pragma once

#include <afx/afxtypes.h>

// Tree images: fixed items; axes and categories; groups.
constexpr UINT IDI_TREE_FIXED = 1992;
constexpr UINT IDI_TREE_BRANCH = 2056;
constexpr UINT IDI_TREE_GROUP = 2057;

constexpr UINT IDS_TREE_ROOT = 2027;     // "参数组"
constexpr UINT IDS_TREE_MODIFIED = 184;  // "已修改参数"
constexpr UINT IDS_TREE_CUSTOM = 2029;   // "自定义"
constexpr UINT IDS_TREE_ALL = 2028;      // "所有参数"
constexpr UINT IDS_FACTORY_NOTICE = 152; // factory groups notice of line 13
constexpr UINT IDS_OSCILLOSCOPE_RUNNING = 150;
constexpr UINT IDS_OLD_PROTOCOL_REFUSED = 1978;

// Tree menus: the custom branch and the modified item.
constexpr UINT IDR_MENU_CUSTOM_TREE = 1980;
constexpr UINT IDR_MENU_MODIFIED_TREE = 162;

// Commands of the frame.
constexpr UINT ID_NEW_CUSTOM_GROUP = 2108;
constexpr UINT ID_DELETE_CUSTOM_GROUP = 2101;
constexpr UINT ID_EDIT_CUSTOM_GROUP = 2106;
constexpr UINT ID_LOAD_CUSTOM_GROUP = 2145;
constexpr UINT ID_SAVE_ROWS_AS = 2146;
constexpr UINT ID_EXPORT_ZXD = 32857;
constexpr UINT ID_SHOW_MODIFIED_REFRESH = 32836;
constexpr UINT ID_ADD_TO_CUSTOM_GROUP = 32848;
constexpr UINT ID_TOGGLE_MODIFIED_PROMPT = 32853;
// Sent by the list pages; no menu carries it.
constexpr UINT ID_OLD_PROTOCOL_CHECK = 2095;

// Registers the frame's dialogs (1953, 2158), menus and icons under `module`.
void RegisterTableResources(HINSTANCE module);
