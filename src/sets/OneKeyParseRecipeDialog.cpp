#include "sets/OneKeyParseRecipeDialog.h"

#include "module/LocalResource.h"
#include "module/ParmiraApp.h"
#include "module/host/IGroupNode.h"
#include "module/host/IGroupSet.h"
#include "module/host/IHostAxis.h"
#include "module/host/IHostAxisList.h"
#include "module/host/IHostCommState.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostProductDb.h"
#include "module/host/IHostProductRecord.h"
#include "module/host/IHostProgressBox.h"
#include "module/host/IHostProject.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostVarUtil.h"
#include "module/host/IHostWindowTranslator.h"
#include "module/host/IHostWorkerThread.h"
#include "module/host/IParamFile.h"
#include "module/host/IParamFileTable.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarCatalog.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "sets/TranslateFailedDialog.h"
#include "table/OldProtocolDevice.h"
#include "values/ValueText.h"

#include <afx/afxdlgs.h>
#include <afx/afxres.h>
#include <skin/ZorSkinLayout.h>

#include <algorithm>
#include <memory>

namespace {

constexpr int kMaxCellText = 259;
constexpr int kButtonStrip = 34;

CString Tr(const char* text) {
    return VarText::Translate(CString(text));
}

// Limits and factory values: decimal, or a four-digit hexadecimal word for a whole hex
// parameter.
CString RecipeValueText(IVarAttr* attr, const Variant& value) {
    IHostVarUtil* util = theApp.GetVarUtil();
    if (attr == nullptr || util == nullptr)
        return CString();
    CString text;
    const int format = attr->GetDisplayFormat();
    if (format == 0 || (format == 1 && attr->GetDecimals() > 0)) {
        util->FormatVariant(text, value, attr->GetDecimals(), 0);
    } else if (format == 1) {
        const double number = util->VariantToDouble(value, attr->GetDataType(), 0);
        text.Format("0x%04X", unsigned(static_cast<long long>(number)));
    }
    return text;
}

} // namespace

void RegisterRecipeDialogResources(HINSTANCE module) {
    if (module == nullptr || AfxFindDialogTemplate(module, IDD_ONEKEY_RECIPE) != nullptr)
        return;
    DlgTemplate dlg{IDD_ONEKEY_RECIPE, "编辑配方", 1000, 620};
    dlg.controls = {
        {IDC_RECIPE_BACKUP, DlgCtl::Button, "一键备份", 6, 4, 96, 26},
        {IDC_RECIPE_RESTORE, DlgCtl::Button, "一键恢复", 108, 4, 96, 26},
        {IDC_RECIPE_TREE, DlgCtl::Tree, "", 0, kButtonStrip, 220, 620 - kButtonStrip,
         TVS_HASLINES | TVS_HASBUTTONS | TVS_LINESATROOT | TVS_SHOWSELALWAYS},
        {IDC_RECIPE_SPLITTER, DlgCtl::Custom, "", 220, kButtonStrip, 4, 620 - kButtonStrip},
        {IDC_RECIPE_LIST, DlgCtl::List, "", 224, kButtonStrip, 776, 620 - kButtonStrip,
         LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS},
    };
    AfxRegisterDialog(module, dlg);
}

COneKeyParseRecipeDialog::COneKeyParseRecipeDialog(CWnd* pParent)
    : CZorSkinPDialog(IDD_ONEKEY_RECIPE, pParent) {
    RegisterRecipeDialogResources(theApp.m_hResource);
}

COneKeyParseRecipeDialog::~COneKeyParseRecipeDialog() {
    // A dialog that never ran its OnDestroy must not leave a worker behind.
    StopWorker();
    if (IHostProgressBox* box = m_pProgress.exchange(nullptr))
        box->Release();
    for (int i = 0; i < m_treeItems.GetCount(); ++i)
        delete m_treeItems.GetAt(i);
    m_treeItems.RemoveAll();
    CloseRecipe();
}

BOOL COneKeyParseRecipeDialog::OnInitDialog() {
    m_splitter.Setup(IDC_RECIPE_TREE, TRUE);
    m_splitter.SubclassDlgItem(IDC_RECIPE_SPLITTER, this);
    CZorSkinPDialog::OnInitDialog();
    m_hWndForWorker.store(GetSafeHwnd());
    CLocalResource scope(theApp.m_hResource);
    EnableVisualStyle(TRUE);
    if (IHostUiService* ui = theApp.GetUiService())
        ui->ApplySkin(GetSafeHwnd(), 0, 0);

    m_tree.SubclassDlgItem(IDC_RECIPE_TREE, this);
    m_list.SubclassDlgItem(IDC_RECIPE_LIST, this);
    m_list.SetDialog(this);
    m_list.ApplySkinStyle();
    m_list.SetExtendedStyle(m_list.GetExtendedStyle() | LVS_EX_FULLROWSELECT | LVS_EX_GRIDLINES |
                            LVS_EX_DOUBLEBUFFER);
    struct Column {
        const char* title;
        int width;
    };
    const Column columns[] = {{"行号", 70},    {"轴号", 50},     {"参数", 80},    {"参数名称", 150},
                              {"当前值", 150}, {"出厂值", 80},   {"最小值", 80},  {"最大值", 80},
                              {"单位", 50},    {"修改方式", 80}, {"生效方式", 80}};
    int index = 0;
    for (const Column& c : columns)
        m_list.InsertColumn(index++, Tr(c.title).GetString(), LVCFMT_LEFT, c.width);

    m_hRoot = m_tree.InsertItem(Tr("所有参数").GetString(), TVI_ROOT);
    BuildTree();
    m_tree.Expand(m_hRoot, TVE_EXPAND);

    if (m_pModule != nullptr) {
        BuildRecipeRows(m_pModule->GetVarList());
        m_list.SetItemCountEx(GetRowCount(), 0);
    }
    // Its title and buttons in the user's language; the dialog is modal, so once is enough.
    const std::unique_ptr<IHostWindowTranslator> translated(
        theApp.MakeWindowTranslator(GetSafeHwnd()));
    // The tree as wide as its labels need (longer in English), up to a third of the dialog.
    CRect client, tree;
    GetClientRect(&client);
    m_tree.GetWindowRect(&tree);
    const int wanted = std::min(ZorSkinTreeContentWidth(&m_tree), int(client.Width()) / 3);
    if (wanted > tree.Width())
        m_tree.MoveWindow(0, kButtonStrip, wanted, tree.Height());
    Layout();
    return TRUE;
}

void COneKeyParseRecipeDialog::OnSize(UINT nType, int cx, int cy) {
    CZorSkinPDialog::OnSize(nType, cx, cy);
    Layout();
}

// The buttons keep their place; the tree keeps its width and takes the height; the list
// takes the rest.
void COneKeyParseRecipeDialog::Layout() {
    CWnd* tree = GetDlgItem(int(IDC_RECIPE_TREE));
    CWnd* bar = GetDlgItem(int(IDC_RECIPE_SPLITTER));
    CWnd* list = GetDlgItem(int(IDC_RECIPE_LIST));
    if (tree == nullptr || bar == nullptr || list == nullptr)
        return;
    CRect client, r;
    GetClientRect(&client);
    tree->GetWindowRect(&r);
    const int treeWidth = r.Width();
    bar->GetWindowRect(&r);
    const int barWidth = r.Width();
    const int h = std::max(0, int(client.Height()) - kButtonStrip);
    tree->MoveWindow(0, kButtonStrip, treeWidth, h);
    bar->MoveWindow(treeWidth, kButtonStrip, barWidth, h);
    list->MoveWindow(treeWidth + barWidth, kButtonStrip,
                     std::max(0, int(client.Width()) - treeWidth - barWidth), h);
}

void COneKeyParseRecipeDialog::OnDestroy() {
    for (int i = 0; i < m_treeItems.GetCount(); ++i)
        delete m_treeItems.GetAt(i);
    m_treeItems.RemoveAll();
    StopWorker();
    m_hWndForWorker.store(nullptr);
    // A job cut short by the close never got to hide its box.
    if (IHostProgressBox* box = m_pProgress.exchange(nullptr)) {
        box->Show(0, 0);
        box->Release();
    }
    CZorSkinPDialog::OnDestroy();
}

// ---------------------------------------------------------------- tree and rows

void COneKeyParseRecipeDialog::AddGroupItems(IGroupNode* group, HTREEITEM parent) {
    if (group == nullptr || !group->IsGroupVisible())
        return;
    CString name, description;
    group->GetName(name);
    group->GetDescription(description);
    if (!description.IsEmpty())
        name += "[" + VarText::Translate(description) + "]";
    HTREEITEM item = m_tree.InsertItem(name.GetString(), parent);
    auto* record = new CTreeItemData(1, group);
    if (item != nullptr && m_treeItems.Add(record, record))
        m_tree.SetItemData(item, reinterpret_cast<DWORD_PTR>(record));
    else
        delete record;
    for (int i = 0; i < group->GetChildCount(); ++i)
        AddGroupItems(group->GetChildAt(i), item);
}

void COneKeyParseRecipeDialog::BuildTree() {
    IHostProductDb* db = theApp.GetProductDb();
    if (m_pModule == nullptr || db == nullptr)
        return;
    CString version;
    m_pModule->GetVersionText(version);
    IVarCatalog* catalog =
        db->GetProductCatalog(m_pModule->GetElecLabel(), m_pModule->GetElecLabelSize(), version);
    if (catalog == nullptr)
        return;
    if (IGroupSet* groups = catalog->GetGroupSet())
        for (int i = 0; i < groups->GetCount(); ++i)
            AddGroupItems(groups->GetAt(i), m_hRoot);
    IHostAxisList* axes = catalog->GetAxisList();
    if (axes == nullptr || !axes->IsValid())
        return;
    for (int a = 0; a < axes->GetCount(); ++a) {
        IHostAxis* axis = axes->GetAt(a);
        if (axis == nullptr)
            continue;
        CString name;
        axis->GetName(name);
        HTREEITEM item = m_tree.InsertItem(VarText::Translate(name).GetString(), m_hRoot);
        auto* record = new CTreeItemData(0, axis);
        if (item != nullptr && m_treeItems.Add(record, record))
            m_tree.SetItemData(item, reinterpret_cast<DWORD_PTR>(record));
        else
            delete record;
        if (IGroupSet* groups = axis->GetGroupSet())
            for (int i = 0; i < groups->GetCount(); ++i)
                AddGroupItems(groups->GetAt(i), item);
        m_tree.Expand(item, TVE_EXPAND);
    }
}

void COneKeyParseRecipeDialog::CollectGroupRows(IVarStore* store, IGroupNode* group,
                                                CTemplateList<IVarObjEx*, IVarObjEx*>& rows) {
    if (store == nullptr || group == nullptr || !group->IsGroupVisible())
        return;
    for (int i = 0; i < group->GetMemberCount(); ++i) {
        CString code;
        if (!group->GetMemberAt(i, code))
            continue;
        IVarObjEx* var = store->FindByCode(code);
        IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
        if (attr != nullptr && attr->IsTransferable())
            rows.Add(var, var); // a variable already there is refused, as it should be
    }
    for (int i = 0; i < group->GetChildCount(); ++i)
        CollectGroupRows(store, group->GetChildAt(i), rows);
}

void COneKeyParseRecipeDialog::CollectSetRows(IVarStore* store, IGroupSet* set,
                                              CTemplateList<IVarObjEx*, IVarObjEx*>& rows) {
    if (set == nullptr)
        return;
    for (int i = 0; i < set->GetCount(); ++i)
        CollectGroupRows(store, set->GetAt(i), rows);
}

void COneKeyParseRecipeDialog::BuildRecipeRows(IVarStore* store) {
    CTemplateList<IVarObjEx*, IVarObjEx*> rows;
    if (store != nullptr) {
        // The module's own groups first: a single-axis drive keeps all its parameters
        // there and has no axis list at all.
        CollectSetRows(store, store->GetGroupRoot(0), rows);
        if (IHostAxisList* axes = store->GetAxisList())
            for (int a = 0; a < axes->GetCount(); ++a)
                if (IHostAxis* axis = axes->GetAt(a))
                    CollectSetRows(store, axis->GetGroupSet(), rows);
    }
    ReplaceRows(rows);
}

void COneKeyParseRecipeDialog::ReplaceRows(const CTemplateList<IVarObjEx*, IVarObjEx*>& rows) {
    std::lock_guard<std::mutex> hold(m_rowsLock);
    m_rows.RemoveAll();
    for (int i = 0; i < rows.GetCount(); ++i)
        m_rows.Add(rows.GetAt(i), rows.GetAt(i));
}

std::vector<IVarObjEx*> COneKeyParseRecipeDialog::SnapshotRows() const {
    std::lock_guard<std::mutex> hold(m_rowsLock);
    std::vector<IVarObjEx*> rows;
    rows.reserve(std::size_t(m_rows.GetCount()));
    for (int i = 0; i < m_rows.GetCount(); ++i)
        rows.push_back(m_rows.GetAt(i));
    return rows;
}

int COneKeyParseRecipeDialog::GetRowCount() const {
    std::lock_guard<std::mutex> hold(m_rowsLock);
    return m_rows.GetCount();
}

IVarObjEx* COneKeyParseRecipeDialog::GetRow(int row) const {
    std::lock_guard<std::mutex> hold(m_rowsLock);
    return m_rows.GetAt(row);
}

void COneKeyParseRecipeDialog::OnTreeSelection(HTREEITEM item) {
    if (item == nullptr || item == m_hRoot || m_pModule == nullptr)
        return;
    auto* record = reinterpret_cast<CTreeItemData*>(m_tree.GetItemData(item));
    IVarStore* store = m_pModule->GetVarList();
    CTemplateList<IVarObjEx*, IVarObjEx*> rows;
    if (record != nullptr && record->m_nKind == 0)
        CollectSetRows(store, static_cast<IHostAxis*>(record->m_pObject)->GetGroupSet(), rows);
    else if (record != nullptr && record->m_nKind == 1)
        CollectGroupRows(store, static_cast<IGroupNode*>(record->m_pObject), rows);
    ReplaceRows(rows);
    m_list.SetItemCountEx(rows.GetCount(), 0);
    m_list.Invalidate();
}

COLORREF COneKeyParseRecipeDialog::GetRowBackground(int row) const {
    return row % 2 == 0 ? COLORREF(0xF5FAE4) : COLORREF(0xF0F0C8);
}

CString COneKeyParseRecipeDialog::GetCellText(int row, int column) {
    IVarObjEx* var = GetRow(row);
    IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
    if (attr == nullptr)
        return CString();
    CString text;
    switch (column) {
    case 0:
        text.Format("%03d", row + 1);
        return text;
    case 1:
        attr->GetGroupText(text);
        return VarText::Translate(text);
    case 2:
        attr->GetCode(text);
        return text;
    case 3:
        attr->GetName(text);
        text = VarText::Translate(text);
        return text.GetLength() > kMaxCellText ? text.Left(kMaxCellText) : text;
    case 4:
        return VarText::ItemValueText(var);
    case 5:
        return RecipeValueText(attr, attr->GetFactoryValue());
    case 6:
        return RecipeValueText(attr, attr->GetMinValue());
    case 7:
        return RecipeValueText(attr, attr->GetMaxValue());
    case 8:
        attr->GetUnit(text);
        return VarText::Translate(text);
    case 9:
        return VarText::Translate(VarText::ModifyModeText(attr));
    case 10:
        return VarText::Translate(VarText::EffectModeText(attr));
    default:
        return CString();
    }
}

// ---------------------------------------------------------------- commands

BOOL COneKeyParseRecipeDialog::OnCommand(WPARAM wParam, LPARAM lParam) {
    if (HIWORD(wParam) == BN_CLICKED) {
        if (LOWORD(wParam) == IDC_RECIPE_BACKUP) {
            OnBackup();
            return TRUE;
        }
        if (LOWORD(wParam) == IDC_RECIPE_RESTORE) {
            OnRestore();
            return TRUE;
        }
    }
    return CZorSkinPDialog::OnCommand(wParam, lParam);
}

BOOL COneKeyParseRecipeDialog::OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* pResult) {
    const auto* header = reinterpret_cast<const NMHDR*>(lParam);
    if (header != nullptr && header->idFrom == IDC_RECIPE_TREE && header->code == TVN_SELCHANGED) {
        OnTreeSelection(reinterpret_cast<const NMTREEVIEW*>(lParam)->itemNew.hItem);
        return TRUE;
    }
    return CZorSkinPDialog::OnNotify(wParam, lParam, pResult);
}

LRESULT COneKeyParseRecipeDialog::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case UM_RECIPE_RESULT:
        OnRecipeResult(wParam, lParam);
        return 0;
    case UM_RECIPE_PROGRESS:
        OnRecipeProgress(wParam, lParam);
        return 0;
    case UM_RECIPE_ROWS:
        m_list.SetItemCountEx(GetRowCount(), 0);
        m_list.Invalidate();
        return 0;
    case UM_SPLITTER_MOVED:
        Layout();
        return 0;
    default:
        return CZorSkinPDialog::WindowProc(message, wParam, lParam);
    }
}

void COneKeyParseRecipeDialog::EnableButtons(BOOL enable) {
    for (UINT id : {IDC_RECIPE_BACKUP, IDC_RECIPE_RESTORE})
        if (CWnd* button = GetDlgItem(int(id)))
            button->EnableWindow(enable);
}

void COneKeyParseRecipeDialog::OnBackup() {
    if (m_bRunning) // one job at a time; its buttons are disabled anyway
        return;
    EnableButtons(FALSE);
    CFileDialog dialog(FALSE, nullptr, "AllVar", OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT,
                       "Zorparam Files(*.zorparam)|*.zorparam||", this);
    const BOOL chosen = dialog.DoModal() == IDOK;
    if (chosen)
        m_strBackupPath = dialog.GetPathName();
    if (m_pModule == nullptr || !chosen) {
        EnableButtons(TRUE);
        return;
    }
    if (IsOscilloscopeBusy(m_pModule)) {
        MessageBox(GetSafeHwnd(), Tr("示波器正在运行,请先停止").GetString(), "", MB_OK);
        EnableButtons(TRUE);
        return;
    }
    if (!StartWorker(&COneKeyParseRecipeDialog::BackupProc))
        EnableButtons(TRUE);
}

void COneKeyParseRecipeDialog::CloseRecipe() {
    m_pRecipe = nullptr;
    if (m_pRecipeFile != nullptr) {
        m_pRecipeFile->Release();
        m_pRecipeFile = nullptr;
    }
}

void COneKeyParseRecipeDialog::OnRestore() {
    if (m_bRunning)
        return;
    EnableButtons(FALSE);
    CFileDialog dialog(TRUE, "zorparam", nullptr, OFN_HIDEREADONLY | OFN_FILEMUSTEXIST,
                       "zorparam files (*.zorparam)|*.zorparam||", this);
    if (dialog.DoModal() != IDOK) {
        EnableButtons(TRUE);
        return;
    }
    IParamFile* file = theApp.CreateParamFile();
    if (file == nullptr || !file->Open(dialog.GetPathName())) {
        if (file != nullptr)
            file->Release();
        MessageBox(GetSafeHwnd(), Tr("文件打开失败！").GetString(), "", MB_OK);
        EnableButtons(TRUE);
        return;
    }
    // The rows of an earlier recipe may be on show: they go before its file does.
    if (m_pRecipe != nullptr && m_pModule != nullptr) {
        BuildRecipeRows(m_pModule->GetVarList());
        m_list.SetItemCountEx(GetRowCount(), 0);
    }
    CloseRecipe();
    m_pRecipeFile = file;
    m_pRecipe = file->GetVarList();
    if (!IsSameSeries(m_pRecipe)) {
        const int answer = MessageBox(
            GetSafeHwnd(), Tr("打开配方与当前设备不属于同一系列，是否继续下载？").GetString(),
            Tr("警告").GetString(), MB_YESNO | MB_ICONWARNING);
        if (answer != IDYES) {
            EnableButtons(TRUE);
            return;
        }
    }
    if (IsOscilloscopeBusy(m_pModule)) {
        MessageBox(GetSafeHwnd(), Tr("示波器正在运行,请先停止").GetString(), "", MB_OK);
        EnableButtons(TRUE);
        return;
    }
    if (!StartWorker(&COneKeyParseRecipeDialog::RestoreProc))
        EnableButtons(TRUE);
}

// Same series: the first three 16-bit words of both labels agree.
BOOL COneKeyParseRecipeDialog::IsSameSeries(IParamFileTable* recipe) {
    IHostVarUtil* util = theApp.GetVarUtil();
    if (util == nullptr || recipe == nullptr || m_pModule == nullptr)
        return FALSE;
    const BYTE* mine = m_pModule->GetElecLabel();
    const UINT mineSize = m_pModule->GetElecLabelSize();
    const BYTE* theirs = recipe->GetElecLabel();
    const UINT theirSize = recipe->GetElecLabelSize();
    if (mine == nullptr || theirs == nullptr || mineSize < 6 || theirSize < 6)
        return FALSE;
    for (UINT i = 0; i < 6; i += 2) {
        const int a = util->ByteAt(mine, mineSize, i) * 256 + util->ByteAt(mine, mineSize, i + 1);
        const int b =
            util->ByteAt(theirs, theirSize, i) * 256 + util->ByteAt(theirs, theirSize, i + 1);
        if (a != b)
            return FALSE;
    }
    return TRUE;
}

// The frame's test, with the host's current project: this dialog has no frame.
BOOL COneKeyParseRecipeDialog::IsOscilloscopeBusy(IHostDeviceModule* module) {
    IHostProject* project = theApp.GetProject();
    if (module == nullptr || project == nullptr)
        return FALSE;
    IHostCommState* comm = project->GetCommState();
    const BOOL running = comm != nullptr && comm->IsOscilloscopeRunning() ? TRUE : FALSE;
    if (!running)
        return FALSE;
    DWORD lineId = 0, productId = 0;
    IHostProductDb* db = theApp.GetProductDb();
    const BYTE* label = module->GetElecLabel();
    IHostProductRecord* record = db != nullptr && label != nullptr
                                     ? db->FindProduct(label, module->GetElecLabelSize())
                                     : nullptr;
    if (record != nullptr) {
        lineId = record->GetLineId();
        productId = record->GetProductId();
    }
    const int connection = project->GetConnectionKind();
    // Line 13 shares the bus with the oscilloscope on connection 2 without harm.
    if ((lineId != 13 && connection == 2) || connection == 6)
        return TRUE;
    COldProtocolDeviceAgent halfDuplex;
    CVarTable::LoadDeviceList(&halfDuplex, "HalfDuplexDevice.ini");
    return halfDuplex.IsOldProtocolDevice(lineId, productId);
}

// ---------------------------------------------------------------- worker reports

void COneKeyParseRecipeDialog::OnRecipeResult(WPARAM kind, LPARAM payload) {
    CString message;
    switch (kind) {
    case 0: {
        CString code;
        if (auto* var = reinterpret_cast<IVarObjEx*>(payload))
            var->GetInstanceCode(code);
        message.Format(Tr("%s上传失败！").GetString(), code.GetString());
        break;
    }
    case 1: {
        CTranslateFailedDialog failed(this);
        failed.SetFailedVars(&m_failedVars);
        failed.DoModal();
        m_failedVars.clear();
        break;
    }
    case 2:
        message = Tr(payload != 0 ? "配方保存成功！" : "配方保存失败！");
        break;
    case 4:
        message = Tr("厂家密码写失败!");
        break;
    default:
        break;
    }
    m_bRunning = FALSE;
    m_list.SetItemCountEx(GetRowCount(), 0);
    m_list.Invalidate();
    EnableButtons(TRUE);
    if (!message.IsEmpty())
        MessageBox(GetSafeHwnd(), message.GetString(), "", MB_OK);
}

void COneKeyParseRecipeDialog::OnRecipeProgress(WPARAM kind, LPARAM payload) {
    auto* box = reinterpret_cast<IHostProgressBox*>(payload);
    // Only the box of this dialog's job is touched; one given back already is not.
    if (box == nullptr || box != m_pProgress.load())
        return;
    // A box may run the event loop while it draws; the end of the job must not take the
    // box away from under its own call.
    if (kind == 1 && m_nInProgressBox > 0) {
        m_bHidePending = TRUE;
        return;
    }
    ++m_nInProgressBox;
    switch (kind) {
    case 0:
        box->Show(5, 0);
        break;
    case 2:
        box->StepOn();
        break;
    default:
        break;
    }
    --m_nInProgressBox;
    if (kind == 1 || (m_bHidePending && m_nInProgressBox == 0)) {
        m_bHidePending = FALSE;
        box->Show(0, 0);
        if (m_pProgress.compare_exchange_strong(box, nullptr))
            box->Release();
    }
}
