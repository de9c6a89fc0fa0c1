#include "table/TableResources.h"

#include "table/VarTable.h"

#include <afx/afxres.h>

namespace {

// 16 by 16, drawn small on purpose: a page, a folder, a sheet.
const char* const kFixedIcon[] = {
    "16 16 3 1",        ". c None",         "x c #3A6EA5",      "o c #FFFFFF",
    "................", "..xxxxxxxxx.....", "..xoooooooxx....", "..xoooooooxox...",
    "..xoxxxxooxxxx..", "..xoooooooooox..", "..xoxxxxxxxxox..", "..xoooooooooox..",
    "..xoxxxxxxxxox..", "..xoooooooooox..", "..xoxxxxxxxxox..", "..xoooooooooox..",
    "..xoooooooooox..", "..xxxxxxxxxxxx..", "................", "................"};
const char* const kBranchIcon[] = {
    "16 16 3 1",        ". c None",         "x c #B8860B",      "o c #F4C542",
    "................", "................", ".xxxxx..........", "xoooooxxxxxxxx..",
    "xoooooooooooox..", "xxxxxxxxxxxxxxx.", "xoooooooooooooox", "xoooooooooooooox",
    "xoooooooooooooox", "xoooooooooooooox", "xoooooooooooooox", "xoooooooooooooox",
    "xxxxxxxxxxxxxxxx", "................", "................", "................"};
const char* const kGroupIcon[] = {
    "16 16 3 1",        ". c None",         "x c #2E7D32",      "o c #E8F5E9",
    "................", ".xxxxxxxxxxxxxx.", ".xoooooooooooox.", ".xoxxxxoxxxxxox.",
    ".xoooooooooooox.", ".xoxxxxoxxxxxox.", ".xoooooooooooox.", ".xoxxxxoxxxxxox.",
    ".xoooooooooooox.", ".xoxxxxoxxxxxox.", ".xoooooooooooox.", ".xoxxxxoxxxxxox.",
    ".xoooooooooooox.", ".xxxxxxxxxxxxxx.", "................", "................"};

} // namespace

void RegisterTableResources(HINSTANCE module) {
    if (module == nullptr)
        return;
    // The frame: tree | splitter | stacked area | splitter | description.
    DlgTemplate frame{IDD_VAR_TABLE, "", 900, 570, {}, WS_CHILD | WS_VISIBLE};
    frame.controls = {
        // The tree widens to its labels; the description shows only with a text.
        {IDC_GROUP_TREE, DlgCtl::Tree, "", 0, 0, 150, 570,
         TVS_HASLINES | TVS_HASBUTTONS | TVS_LINESATROOT | TVS_SHOWSELALWAYS},
        {IDC_TREE_SPLITTER, DlgCtl::Custom, "", 150, 0, 4, 570},
        {IDC_STACK_PLACEHOLDER, DlgCtl::Custom, "", 154, 0, 526, 570},
        {IDC_TEXT_SPLITTER, DlgCtl::Custom, "", 680, 0, 4, 570},
        {IDC_VAR_DESCRIPTION, DlgCtl::Edit, "", 684, 0, 216, 570, ES_MULTILINE | ES_READONLY},
    };
    AfxRegisterDialog(module, frame);
    AfxRegisterDialog(module, DlgTemplate{IDD_STACKED_HOST, "", 536, 570, {}, WS_CHILD});

    // Entries at the top level: the skin's popup shows the menu itself.
    AfxRegisterMenu(module, MenuTemplate{IDR_MENU_CUSTOM_TREE,
                                         {
                                             {ID_NEW_CUSTOM_GROUP, "新建自定义组"},
                                             {ID_DELETE_CUSTOM_GROUP, "删除自定义组"},
                                             {ID_EDIT_CUSTOM_GROUP, "编辑自定义组"},
                                             {0, "", MF_SEPARATOR},
                                             {ID_LOAD_CUSTOM_GROUP, "加载自定义组"},
                                             {ID_SAVE_ROWS_AS, "另存为..."},
                                             {ID_EXPORT_ZXD, "导出zxd文件"},
                                         }});
    AfxRegisterMenu(module, MenuTemplate{IDR_MENU_MODIFIED_TREE,
                                         {
                                             {ID_SHOW_MODIFIED_REFRESH, "刷新列表"},
                                             {ID_ADD_TO_CUSTOM_GROUP, "添加到自定义参数组"},
                                             {ID_TOGGLE_MODIFIED_PROMPT, "不再提示更新"},
                                         }});
    AfxRegisterIconXpm(module, IDI_TREE_FIXED, kFixedIcon);
    AfxRegisterIconXpm(module, IDI_TREE_BRANCH, kBranchIcon);
    AfxRegisterIconXpm(module, IDI_TREE_GROUP, kGroupIcon);
}
