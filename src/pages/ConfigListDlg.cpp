#include "pages/ConfigListDlg.h"

#include "module/ParmiraApp.h"
#include "module/host/IHostWindowTranslator.h"

#include <afx/afxres.h>

#include <algorithm>

const CConfigListDlg::Box CConfigListDlg::kBoxes[13] = {
    {1021, "行号", 0},           {1016, "参数", 1},      {2085, "参数名称", 2},
    {2090, "当前值", 3},         {2098, "单位", 4},      {2092, "出厂值", 5},
    {2094, "最小值", 6},         {2096, "最大值", 7},    {2100, "修改方式", 8},
    {2167, "显示方式", 9},       {2102, "生效方式", 10}, {2164, "通讯地址(Dec)", 11},
    {2163, "通讯地址(Hex)", 12},
};

void RegisterConfigListResources(HINSTANCE module) {
    if (module == nullptr || AfxFindDialogTemplate(module, IDD_CONFIG_LIST) != nullptr)
        return;
    DlgTemplate dlg{IDD_CONFIG_LIST, "筛选列", 300, 300};
    for (int i = 0; i < 13; ++i) {
        const CConfigListDlg::Box& box = CConfigListDlg::kBoxes[i];
        dlg.controls.push_back(
            {box.id, DlgCtl::Check, box.label, 20 + (i % 2) * 136, 16 + (i / 2) * 30, 130, 22});
    }
    dlg.controls.push_back({2087, DlgCtl::Check, "设定值", 156, 196, 130, 22, 0, true});
    dlg.controls.push_back(
        {UINT(IDOK), DlgCtl::Button, "确定", 100, 250, 84, 28, BS_DEFPUSHBUTTON});
    dlg.controls.push_back({UINT(IDCANCEL), DlgCtl::Button, "取消", 196, 250, 84, 28});
    AfxRegisterDialog(module, dlg);
}

CConfigListDlg::CConfigListDlg(CWnd* pParent) : CZorSkinPDialog(IDD_CONFIG_LIST, pParent) {
    RegisterConfigListResources(theApp.m_hResource);
}

CConfigListDlg::~CConfigListDlg() {
    delete m_pTranslator;
}

void CConfigListDlg::SetColumnWidths(const int* widths, int count) {
    std::fill(std::begin(m_values), std::end(m_values), 0);
    std::copy(widths, widths + std::clamp(count, 0, CONFIG_LIST_VALUES), m_values);
}

BOOL CConfigListDlg::OnInitDialog() {
    EnableVisualStyle(TRUE);
    CZorSkinPDialog::OnInitDialog();
    delete m_pTranslator;
    m_pTranslator = theApp.MakeWindowTranslator(GetSafeHwnd());
    for (const Box& box : kBoxes)
        CheckDlgButton(int(box.id), m_values[ValueIndex(box)] != 0 ? BST_CHECKED : BST_UNCHECKED);
    return TRUE;
}

void CConfigListDlg::OnOK() {
    for (const Box& box : kBoxes)
        m_values[ValueIndex(box)] = IsDlgButtonChecked(int(box.id)) == BST_CHECKED ? 1 : 0;
    CZorSkinPDialog::OnOK();
}
