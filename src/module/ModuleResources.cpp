#include "module/ModuleResources.h"

#include <afx/afxres.h>

void RegisterModuleResources(HINSTANCE module) {
    if (module == nullptr)
        return;
    AfxRegisterStringTable(module, {
                                       {IDS_PARAMETER_LIST, "参数列表"},
                                   });
    // The panel: the table frame fills the placeholder, the counts sit in a strip below.
    DlgTemplate panel{IDD_PARMIRA_PANEL, "", 900, 600, {}, WS_CHILD | WS_VISIBLE};
    panel.controls = {
        {IDC_TABLE_PLACEHOLDER, DlgCtl::Custom, "", 0, 0, 900, 570},
        {IDC_TOTAL_LABEL, DlgCtl::Static, "变量总数:", 6, 576, 70, 20},
        {IDC_TOTAL_COUNT, DlgCtl::Edit, "", 78, 574, 70, 22, WS_DISABLED},
        {IDC_CURRENT_LABEL, DlgCtl::Static, "当前变量:", 160, 576, 70, 20},
        {IDC_CURRENT_COUNT, DlgCtl::Edit, "", 232, 574, 70, 22, WS_DISABLED},
        {IDC_NOTICE_STRIP, DlgCtl::Custom, "", 320, 572, 574, 26},
    };
    AfxRegisterDialog(module, panel);
}
