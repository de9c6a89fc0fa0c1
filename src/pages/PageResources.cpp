#include "pages/PageResources.h"

#include "pages/ConfigListDlg.h"
#include "pages/RowCommands.h"
#include "pages/VarTablePage1.h"
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
                pixels[size_t(y * 16 + x)] = edge ? 0xFF404040 : 0xFFFFFFFF;
            }
    }
    if (kind == 2) {
        for (int i = 0; i < 4; ++i) {
            pixels[size_t((8 + i) * 16 + 4 + i)] = 0xFF202020;
            pixels[size_t((11 - i * 2) * 16 + 8 + i)] = 0xFF202020;
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
            {IDC_PAGE_SAVE_CHECKED, DlgCtl::Button, "保存勾选项", 4, 3, 84, 24},
            {IDC_PAGE_UPDATE_ATTRIBUTES, DlgCtl::Button, "更新属性", 92, 3, 76, 24},
            {IDC_PAGE1_FIND_LABEL, DlgCtl::Static, "查找", 176, 7, 34, 20},
            {IDC_PAGE1_SEARCH, DlgCtl::ComboDropDown, "", 212, 3, 160, 24},
            {IDC_PAGE_LIST, DlgCtl::List, "", 0, 32, 900, 488,
             LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS},
        };
        AfxRegisterDialog(module, page);
    }
    RegisterRowCommandResources(module);
    RegisterConfigListResources(module);
    RegisterStateIcon(module, IDI_STATE_NONE, 0);
    RegisterStateIcon(module, IDI_STATE_UNCHECKED, 1);
    RegisterStateIcon(module, IDI_STATE_CHECKED, 2);
}
