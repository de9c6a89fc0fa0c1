#include "pages/PageResources.h"

#include "pages/ConfigListDlg.h"
#include "pages/RowCommands.h"
#include "pages/VarTablePage1.h"
#include "pages/VarTablePage2.h"
#include "table/VarTable.h"

#include <afx/afxres.h>
#include <afx/afxwin.h>

#include <cstdint>
#include <vector>

namespace {

// The state images: none, an empty box and a ticked box.
void RegisterStateIcon(HINSTANCE module, UINT id, int kind) {
    if (AfxFindIcon(module, id) != nullptr)
        return;
    std::vector<uint32_t> pixels(16 * 16, 0x00000000);
    if (kind > 0) {
        for (int y = 2; y < 14; ++y)
            for (int x = 2; x < 14; ++x) {
                const bool edge = x == 2 || x == 13 || y == 2 || y == 13;
                pixels[size_t(y) * 16 + size_t(x)] = edge ? 0xFF404040 : 0xFFFFFFFF;
            }
    }
    if (kind == 2) {
        for (int i = 0; i < 4; ++i) {
            pixels[size_t(8 + i) * 16 + size_t(4 + i)] = 0xFF202020;
            pixels[size_t(11 - i * 2) * 16 + size_t(8 + i)] = 0xFF202020;
        }
    }
    AfxRegisterIconPixels(module, id, 16, 16, pixels.data());
}

} // namespace

void RegisterPageResources(HINSTANCE module) {
    if (module == nullptr)
        return;
    if (AfxFindDialogTemplate(module, IDD_VAR_TABLE_PAGE1) == nullptr) {
        DlgTemplate page{IDD_VAR_TABLE_PAGE1, "", 900, 520, {}, WS_CHILD | WS_VISIBLE};
        page.controls = {
            {IDC_PAGE1_UPLOAD_SAVE, DlgCtl::Button, "上传并保存", 4, 3, 84, 24},
            {IDC_PAGE1_OPEN_DOWNLOAD, DlgCtl::Button, "打开并下载", 92, 3, 84, 24},
            {IDC_PAGE1_COMPARE, DlgCtl::Button, "比较", 180, 3, 60, 24},
            {IDC_PAGE1_FIND_LABEL, DlgCtl::Static, "查找", 250, 7, 34, 20},
            {IDC_PAGE1_SEARCH, DlgCtl::ComboDropDown, "", 286, 3, 160, 24},
            {IDC_PAGE1_AXIS_COPY, DlgCtl::Button, "轴拷贝", 452, 3, 64, 24},
            {UINT(IDC_STATIC), DlgCtl::Static, "访问权限", 524, 7, 60, 20},
            {IDC_PAGE_ACCESS, DlgCtl::ComboDropList, "", 586, 3, 110, 24},
            {IDC_PAGE_UPDATE_ATTRIBUTES, DlgCtl::Button, "更新属性", 702, 3, 76, 24},
            {IDC_PAGE_SAVE_CHECKED, DlgCtl::Button, "保存勾选项", 784, 3, 84, 24, 0, true},
            {IDC_PAGE_LIST, DlgCtl::List, "", 0, 30, 900, 490,
             LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS},
        };
        AfxRegisterDialog(module, page);
    }
    if (AfxFindDialogTemplate(module, IDD_VAR_TABLE_PAGE2) == nullptr) {
        DlgTemplate page{IDD_VAR_TABLE_PAGE2, "", 900, 520, {}, WS_CHILD | WS_VISIBLE};
        page.controls = {
            {IDC_PAGE2_UPLOAD_SAVE, DlgCtl::Button, "上传并保存\n（当前页所有）", 4, 3, 96, 38},
            {IDC_PAGE2_OPEN_RECIPE, DlgCtl::Button, "打开配方", 104, 3, 70, 38},
            {IDC_PAGE2_WRITE_CHECKED, DlgCtl::Button, "写入\n（当前页所有）", 178, 3, 90, 38},
            {IDC_PAGE2_FILTER, DlgCtl::Button, "筛选", 272, 3, 64, 38},
            {IDC_PAGE2_SELECT_ALL, DlgCtl::Check, "全选(当前页)", 340, 12, 96, 20},
            {IDC_PAGE_UPDATE_ATTRIBUTES, DlgCtl::Button, "更新属性", 440, 3, 66, 38},
            {IDC_PAGE2_COMPARE, DlgCtl::Button, "参数比较", 510, 3, 66, 38},
            {IDC_PAGE2_AXIS_COPY, DlgCtl::Button, "轴拷贝", 580, 3, 56, 38},
            {IDC_PAGE_ACCESS, DlgCtl::ComboDropList, "", 640, 10, 100, 24},
            {IDC_PAGE2_FIND_LABEL, DlgCtl::Static, "查找", 746, 14, 30, 20},
            {IDC_PAGE2_SEARCH, DlgCtl::ComboDropDown, "", 778, 10, 118, 24},
            {IDC_PAGE_SAVE_CHECKED, DlgCtl::Button, "上传并保存\n(所有勾选项)", 4, 3, 96, 38, 0,
             true},
            {IDC_PAGE2_SAVE_SET_VALUES, DlgCtl::Button, "保存设定值\n(所有勾选项)", 4, 3, 96, 38, 0,
             true},
            {IDC_PAGE2_WRITE_ALL, DlgCtl::Button, "写入全部\n(除H00和H01組)", 4, 3, 96, 38, 0,
             true},
            {IDC_PAGE_LIST, DlgCtl::List, "", 0, 44, 900, 476,
             LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS},
        };
        AfxRegisterDialog(module, page);
    }
    if (AfxFindMenuTemplate(module, IDR_PAGE2_FILTER_MENU) == nullptr)
        AfxRegisterMenu(module, MenuTemplate{IDR_PAGE2_FILTER_MENU,
                                             {{0,
                                               "筛选",
                                               MF_POPUP,
                                               {{ID_FILTER_SET_NOT_CURRENT, "设定值与当前值不同"},
                                                {ID_FILTER_MODIFIED, "当前值与出厂值不同"},
                                                {ID_FILTER_SET_NOT_FACTORY, "设定值与出厂值不同"},
                                                {ID_FILTER_CHECKED, "仅显示勾选项"}}}}});
    RegisterRowCommandResources(module);
    RegisterConfigListResources(module);
    RegisterStateIcon(module, IDI_STATE_NONE, 0);
    RegisterStateIcon(module, IDI_STATE_UNCHECKED, 1);
    RegisterStateIcon(module, IDI_STATE_CHECKED, 2);
}
