#include "sets/ShaftCopyDialog.h"
#include "values/ValueText.h"

#include "module/ParmiraApp.h"
#include "module/host/IGroupNode.h"
#include "module/host/IGroupSet.h"
#include "module/host/IHostAxis.h"
#include "module/host/IHostAxisList.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostMessageBus.h"
#include "module/host/IHostModuleList.h"
#include "module/host/IHostProject.h"
#include "module/host/IHostTransferService.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostVarUtil.h"
#include "module/host/IHostWindowTranslator.h"
#include "module/host/IHostWorkspace.h"
#include "module/host/IParamFile.h"
#include "module/host/IParamFileTable.h"
#include "module/host/IRWDataItem.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "sets/VarCompare.h"

#include <afx/afxdlgs.h>
#include <afx/afxres.h>

#include <set>

namespace {

constexpr UINT IDS_DEVICE_OFFLINE = 2038; // "设备离线."
constexpr UINT IDS_SAVED_TO = 175;        // "保存到'%s'成功。"
// The wait for the target's upload looks at its event this often.
constexpr DWORD kUploadPoll_ms = 50;

const char* const kOtherSeries = "不同设备之间不能进行轴拷贝！";
const char* const kSameAxis = "不能选择相同的轴,请重新选择.";

CString KeyOf(IHostDeviceModule* module) {
    CString key;
    if (module != nullptr)
        module->GetModuleKey(key);
    return key;
}

CString NameOf(IHostAxis* axis) {
    CString name;
    if (axis != nullptr)
        axis->GetName(name);
    return name;
}

void* SelectedData(const CComboBox& box) {
    const int sel = box.GetSafeHwnd() != nullptr ? box.GetCurSel() : -1;
    return sel >= 0 ? box.GetItemDataPtr(sel) : nullptr;
}

// Copies the visible groups up to `level` under `parent` (a set's root when null).
void CopyGroups(IGroupNode* from, IGroupSet* set, IGroupNode* parent, int level, bool anyLevel) {
    if (from == nullptr || !from->IsGroupVisible() || (!anyLevel && from->GetAccessLevel() > level))
        return;
    IGroupNode* copy = from->Clone();
    if (copy == nullptr)
        return;
    const BOOL added = parent != nullptr ? parent->AddChild(copy) : set->AddGroup(copy);
    if (!added) {
        delete copy;
        return;
    }
    for (int i = 0; i < from->GetChildCount(); ++i)
        CopyGroups(from->GetChildAt(i), set, copy, level, anyLevel);
}

void CollectMemberNames(IGroupNode* group, std::vector<CString>& names) {
    if (group == nullptr)
        return;
    for (int i = 0; i < group->GetMemberCount(); ++i) {
        CString key;
        if (group->GetMemberAt(i, key))
            names.push_back(key);
    }
    for (int i = 0; i < group->GetChildCount(); ++i)
        CollectMemberNames(group->GetChildAt(i), names);
}

} // namespace

void RegisterShaftCopyResources(HINSTANCE module) {
    if (module == nullptr || AfxFindDialogTemplate(module, IDD_SHAFT_COPY) != nullptr)
        return;
    DlgTemplate dlg{IDD_SHAFT_COPY, "轴参数复制", 620, 520};
    dlg.controls = {
        // Labels and choices leave room for their English.
        {IDC_SHAFT_FROM_DEVICE_LABEL, DlgCtl::Static, "从设备", 12, 16, 90, 20},
        {IDC_SHAFT_SOURCE_DEVICE, DlgCtl::ComboDropList, "", 106, 12, 210, 24},
        {IDC_SHAFT_FROM_AXIS_LABEL, DlgCtl::Static, "从轴", 328, 16, 76, 20},
        {IDC_SHAFT_SOURCE_AXIS, DlgCtl::ComboDropList, "", 408, 12, 130, 24},
        {IDC_SHAFT_COPY_TO_LABEL, DlgCtl::Static, "复制到", 12, 50, 90, 20},
        {IDC_SHAFT_TARGET_DEVICE, DlgCtl::ComboDropList, "", 106, 46, 210, 24},
        {IDC_SHAFT_AXIS_LABEL, DlgCtl::Static, "轴", 328, 50, 76, 20},
        {IDC_SHAFT_TARGET_AXIS, DlgCtl::ComboDropList, "", 408, 46, 130, 24},
        {IDC_SHAFT_MODE_DOWNLOAD, DlgCtl::Radio, "直接下载到驱动器", 106, 82, 240, 22, WS_GROUP},
        {IDC_SHAFT_MODE_FILE, DlgCtl::Radio, "保存到参数文件", 356, 82, 220, 22},
        {IDC_SHAFT_GROUP, DlgCtl::GroupBox, "选择要复制的参数", 8, 112, 604, 360},
        {IDC_SHAFT_UPLOAD_FIRST, DlgCtl::Check, "复制前先上传参数", 20, 134, 260, 22, WS_GROUP},
        {IDC_SHAFT_SELECT_ALL, DlgCtl::Check, "全选", 290, 134, 120, 22},
        {IDC_SHAFT_COMPARE, DlgCtl::Button, "比较", 516, 132, 84, 26},
        {IDC_SHAFT_LIST, DlgCtl::List, "", 20, 164, 580, 298,
         LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS},
        {UINT(IDOK), DlgCtl::Button, "确定", 420, 482, 90, 28, BS_DEFPUSHBUTTON},
        {UINT(IDCANCEL), DlgCtl::Button, "取消", 520, 482, 90, 28},
    };
    AfxRegisterDialog(module, dlg);
}

CString CShaftCopyListCtrl::OnGetCellText(int nItem, int nSubItem) {
    return m_pDialog != nullptr ? m_pDialog->GetCellText(nItem, nSubItem) : CString();
}

CShaftCopyDialog::CShaftCopyDialog(CWnd* pParent) : CZorSkinPDialog(IDD_SHAFT_COPY, pParent) {
    theApp.AddLanguageListener(this);
}

INT_PTR CShaftCopyDialog::DoModal() {
    RegisterShaftCopyResources(theApp.m_hResource);
    return CZorSkinPDialog::DoModal();
}

CShaftCopyDialog::~CShaftCopyDialog() {
    theApp.RemoveLanguageListener(this);
    m_rows.DeleteAll();
    delete m_pUploadEvent;
    m_pUploadEvent = nullptr;
    delete m_pTranslator;
    m_pTranslator = nullptr;
}

void CShaftCopyDialog::DoDataExchange(CDataExchange* pDX) {
    CZorSkinPDialog::DoDataExchange(pDX);
    DDX_Control(pDX, int(IDC_SHAFT_SOURCE_DEVICE), m_sourceDevice);
    DDX_Control(pDX, int(IDC_SHAFT_SOURCE_AXIS), m_sourceAxis);
    DDX_Control(pDX, int(IDC_SHAFT_TARGET_DEVICE), m_targetDevice);
    DDX_Control(pDX, int(IDC_SHAFT_TARGET_AXIS), m_targetAxis);
    DDX_Control(pDX, int(IDC_SHAFT_LIST), m_list);
    DDX_Radio(pDX, int(IDC_SHAFT_MODE_DOWNLOAD), m_nMode);
    DDX_Check(pDX, int(IDC_SHAFT_UPLOAD_FIRST), m_nUploadFirst);
    DDX_Check(pDX, int(IDC_SHAFT_SELECT_ALL), m_nSelectAll);
}

BOOL CShaftCopyDialog::OnInitDialog() {
    EnableVisualStyle(TRUE);
    // The base start moves the members into the controls; the lists are filled after.
    CZorSkinPDialog::OnInitDialog();
    IHostProject* project = theApp.GetProject();
    IHostWorkspace* workspace = project != nullptr ? project->GetWorkspace() : nullptr;
    IHostModuleList* modules = workspace != nullptr ? workspace->GetModuleList() : nullptr;
    const int count = modules != nullptr ? modules->GetModuleCount() : 0;
    for (int i = 0; i < count; ++i) {
        IHostDeviceModule* module = modules->GetModuleAt(i);
        if (module == nullptr)
            continue;
        CString name, text;
        module->GetDisplayName(name);
        // A product's name in the user's language; a name the project gave stays as written.
        text.Format("%s[%d]", VarText::Translate(name).GetString(), module->GetAxisIndex());
        for (CComboBox* box :
             {static_cast<CComboBox*>(&m_sourceDevice), static_cast<CComboBox*>(&m_targetDevice)}) {
            const int at = box->AddString(text.GetString());
            box->SetItemDataPtr(at, module);
            if (module == m_pModule)
                box->SetCurSel(at);
        }
    }
    FillAxisList(m_sourceAxis, GetSourceDevice());
    FillAxisList(m_targetAxis, GetTargetDevice());

    m_list.SetOwnerDialog(this);
    m_list.SetExtendedStyle(m_list.GetExtendedStyle() | LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT);
    const struct {
        const char* title;
        int width;
    } columns[] = {
        {"行号", 50}, {"参数", 150}, {"参数名称", 150}, {"当前值", 100}, {"目标值", 100}};
    int index = 0;
    for (const auto& c : columns)
        m_list.InsertColumn(index++, VarText::Translate(c.title).GetString(), LVCFMT_LEFT, c.width);

    if (IHostMessageBus* bus = theApp.GetMessageBus())
        m_bSubscribed = bus->Subscribe(IID_IMessage_ModuleUploadEvent,
                                       AsSink<IMessage_ModuleUploadEvent>(this));
    m_nUploadFirst = 1;
    m_nSelectAll = 1;
    if (IHostUiService* ui = theApp.GetUiService())
        ui->ApplySkin(GetSafeHwnd(), 0, 0);
    UpdateData(FALSE);
    delete m_pTranslator;
    m_pTranslator = theApp.MakeWindowTranslator(GetSafeHwnd());
    return TRUE;
}

IHostDeviceModule* CShaftCopyDialog::GetSourceDevice() const {
    return static_cast<IHostDeviceModule*>(SelectedData(m_sourceDevice));
}
IHostDeviceModule* CShaftCopyDialog::GetTargetDevice() const {
    return static_cast<IHostDeviceModule*>(SelectedData(m_targetDevice));
}
IHostAxis* CShaftCopyDialog::GetSourceAxis() const {
    return static_cast<IHostAxis*>(SelectedData(m_sourceAxis));
}
IHostAxis* CShaftCopyDialog::GetTargetAxis() const {
    return static_cast<IHostAxis*>(SelectedData(m_targetAxis));
}

void CShaftCopyDialog::FillAxisList(CComboBox& box, IHostDeviceModule* device) {
    box.ResetContent();
    IVarStore* store = device != nullptr ? device->GetVarList() : nullptr;
    IHostAxisList* axes = store != nullptr ? store->GetAxisList() : nullptr;
    if (axes == nullptr || !axes->IsValid())
        return;
    for (int i = 0; i < axes->GetCount(); ++i) {
        IHostAxis* axis = axes->GetAt(i);
        if (axis == nullptr)
            continue;
        const int at = box.AddString(VarText::Translate(NameOf(axis)).GetString());
        box.SetItemDataPtr(at, axis);
    }
    if (box.GetCount() > 0)
        box.SetCurSel(0);
}

BOOL CShaftCopyDialog::IsSameDeviceSeries(IHostDeviceModule* a, IHostDeviceModule* b) {
    IHostVarUtil* util = theApp.GetVarUtil();
    if (a == nullptr || b == nullptr || util == nullptr)
        return FALSE;
    if (a == b)
        return TRUE;
    const BYTE* la = a->GetElecLabel();
    const BYTE* lb = b->GetElecLabel();
    const UINT size = a->GetElecLabelSize();
    if (la == nullptr || lb == nullptr || size != b->GetElecLabelSize())
        return FALSE;
    // The first three 16-bit pairs, high byte first, name the series.
    for (UINT i = 0; i < 6; i += 2) {
        const int wa = (util->ByteAt(la, size, i) << 8) | util->ByteAt(la, size, i + 1);
        const int wb = (util->ByteAt(lb, size, i) << 8) | util->ByteAt(lb, size, i + 1);
        if (wa != wb)
            return FALSE;
    }
    return TRUE;
}

void CShaftCopyDialog::Warn(const CString& text) {
    MessageBox(GetSafeHwnd(), text.GetString(), "", MB_OK | MB_ICONWARNING);
}

void CShaftCopyDialog::Compare() {
    UpdateData(TRUE);
    m_rows.DeleteAll();
    m_list.SetItemCountEx(0, 0);
    IHostDeviceModule* source = GetSourceDevice();
    IHostDeviceModule* target = GetTargetDevice();
    if (source == nullptr || target == nullptr)
        return;
    if (!IsSameDeviceSeries(source, target)) {
        Warn(VarText::Translate(kOtherSeries));
        return;
    }
    IHostAxis* sourceAxis = GetSourceAxis();
    IHostAxis* targetAxis = GetTargetAxis();
    if (sourceAxis == targetAxis) {
        Warn(VarText::Translate(kSameAxis));
        return;
    }
    if (m_nUploadFirst != 0) {
        if (!target->IsOnline()) {
            Warn(theApp.LoadText(IDS_DEVICE_OFFLINE));
            return;
        }
        // The rows would be compared against values the host may not hold yet, or shown
        // in a dialog on its way out.
        if (!UploadAndWait(KeyOf(target)))
            return;
    }
    IHostTransferService* transfer = theApp.GetTransferService();
    if (transfer == nullptr)
        return;
    std::vector<IRWDataItem*> rows;
    transfer->CompareAxes(KeyOf(source), KeyOf(target), NameOf(sourceAxis), NameOf(targetAxis),
                          rows);
    for (IRWDataItem* row : rows) {
        if (row == nullptr)
            continue;
        row->SetRecordChecked(m_nSelectAll != 0 ? 1 : 0);
        if (!m_rows.Add(row, row))
            delete row; // the same object twice: it is held once already
    }
    m_list.SetItemCountEx(m_rows.GetCount(), 0);
    for (int i = 0; i < m_rows.GetCount(); ++i)
        m_list.SetCheck(i, m_rows.GetAt(i)->IsRecordChecked());
}

BOOL CShaftCopyDialog::UploadAndWait(const CString& targetKey) {
    if (m_pUploadEvent == nullptr)
        m_pUploadEvent = new CEvent(FALSE, FALSE);
    IHostTransferService* transfer = theApp.GetTransferService();
    if (transfer == nullptr || !transfer->UploadModule(GetSafeHwnd(), targetKey))
        return TRUE; // no upload runs, so no end will come
    // The window stays live while the drive is read. The end of the upload, the end of the
    // dialog ("取消", a close, its window destroyed) or the application quitting stops the
    // wait; nothing else does.
    for (;;) {
        const DWORD woke = AfxWaitPumping(*m_pUploadEvent, kUploadPoll_ms);
        if (m_bClosing || GetSafeHwnd() == nullptr || woke == WAIT_QUIT)
            return FALSE;
        if (woke == WAIT_OBJECT_0)
            return TRUE;
    }
}

void CShaftCopyDialog::SignalUpload() {
    if (m_pUploadEvent != nullptr)
        m_pUploadEvent->SetEvent();
}

void CShaftCopyDialog::OnModuleUploaded(const CString& moduleKey, BOOL) {
    if (moduleKey == KeyOf(GetTargetDevice()))
        SignalUpload();
}

IVarAttr* CShaftCopyDialog::RowAttr(int row) {
    IRWDataItem* item = m_rows.GetAt(row);
    IHostDeviceModule* target = GetTargetDevice();
    IVarStore* store = target != nullptr ? target->GetVarList() : nullptr;
    IVarObjEx* var = item != nullptr && store != nullptr
                         ? store->FindByAddress(item->GetRecordAddress())
                         : nullptr;
    return var != nullptr ? var->GetAttr() : nullptr;
}

CString CShaftCopyDialog::GetCellText(int row, int column) {
    CString text;
    IRWDataItem* item = m_rows.GetAt(row);
    IVarAttr* attr = RowAttr(row);
    if (item == nullptr || attr == nullptr)
        return text;
    switch (column) {
    case 0:
        text.Format("%03d", row + 1);
        break;
    case 1:
        attr->GetCode(text);
        break;
    case 2:
        attr->GetName(text);
        break;
    case 3:
        text = CVarCompare::CompareNumberText(theApp.GetVarUtil(), attr, item->GetRecordOldValue());
        break;
    case 4:
        text = CVarCompare::CompareNumberText(theApp.GetVarUtil(), attr, item->GetRecordValue());
        break;
    default:
        break;
    }
    return text;
}

void CShaftCopyDialog::OnListClick(const NMITEMACTIVATE* item) {
    LVHITTESTINFO hit{};
    hit.pt = item->ptAction;
    const int row = m_list.HitTest(&hit);
    if (row >= 0 && (hit.flags & LVHT_ONITEMSTATEICON) != 0) {
        // The list has turned its box already; the record follows it.
        if (IRWDataItem* rec = m_rows.GetAt(row)) {
            rec->SetRecordChecked(m_list.GetCheck(row));
            m_list.SetCheck(row, rec->IsRecordChecked());
            m_list.Update(row);
        }
    }
    if (row >= 0) {
        m_list.SetItemState(row, LVIS_FOCUSED, LVIS_FOCUSED);
        m_list.SetSelectionMark(row);
    } else {
        m_list.SetItemState(-1, 0, LVIS_FOCUSED | LVIS_SELECTED);
        m_list.SetSelectionMark(-1);
    }
}

void CShaftCopyDialog::OnSelectAll() {
    m_nSelectAll = IsDlgButtonChecked(int(IDC_SHAFT_SELECT_ALL)) == BST_CHECKED ? 1 : 0;
    for (int i = 0; i < m_rows.GetCount(); ++i) {
        m_rows.GetAt(i)->SetRecordChecked(m_nSelectAll);
        m_list.SetCheck(i, m_nSelectAll);
    }
    m_list.Invalidate();
}

BOOL CShaftCopyDialog::OnCommand(WPARAM wParam, LPARAM lParam) {
    const UINT id = LOWORD(wParam);
    const UINT code = HIWORD(wParam);
    if (code == CBN_SELCHANGE && id == IDC_SHAFT_SOURCE_DEVICE) {
        FillAxisList(m_sourceAxis, GetSourceDevice());
        return TRUE;
    }
    if (code == CBN_SELCHANGE && id == IDC_SHAFT_TARGET_DEVICE) {
        FillAxisList(m_targetAxis, GetTargetDevice());
        return TRUE;
    }
    if (code == BN_CLICKED && id == IDC_SHAFT_COMPARE) {
        Compare();
        return TRUE;
    }
    if (code == BN_CLICKED && id == IDC_SHAFT_SELECT_ALL) {
        OnSelectAll();
        return TRUE;
    }
    return CZorSkinPDialog::OnCommand(wParam, lParam);
}

BOOL CShaftCopyDialog::OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* pResult) {
    const auto* hdr = reinterpret_cast<const NMHDR*>(lParam);
    if (hdr != nullptr && hdr->idFrom == IDC_SHAFT_LIST && hdr->code == NM_CLICK) {
        OnListClick(reinterpret_cast<const NMITEMACTIVATE*>(lParam));
        return TRUE;
    }
    return CZorSkinPDialog::OnNotify(wParam, lParam, pResult);
}

void CShaftCopyDialog::OnOK() {
    UpdateData(TRUE);
    IHostAxis* sourceAxis = GetSourceAxis();
    IHostAxis* targetAxis = GetTargetAxis();
    if (sourceAxis == targetAxis) {
        Warn(VarText::Translate(kSameAxis));
        return;
    }
    IHostDeviceModule* target = GetTargetDevice();
    if (m_nMode == 1) {
        if (sourceAxis != nullptr && targetAxis != nullptr) {
            CFileDialog dialog(FALSE, "zorparam", NameOf(targetAxis).GetString(),
                               OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT,
                               "zorparam Files |*.zorparam|zorparam (*.zorparam)|*.zorparam||",
                               this);
            if (dialog.DoModal() == IDOK)
                SaveAxisFile(sourceAxis, targetAxis, dialog.GetPathName());
        }
    } else {
        if (target == nullptr || !target->IsOnline()) {
            Warn(theApp.LoadText(IDS_DEVICE_OFFLINE));
            return;
        }
        // A view of the ticked rows; the dialog keeps owning them.
        std::vector<IRWDataItem*> ticked;
        for (int i = 0; i < m_rows.GetCount(); ++i)
            if (m_rows.GetAt(i)->IsRecordChecked())
                ticked.push_back(m_rows.GetAt(i));
        if (IHostTransferService* transfer = theApp.GetTransferService())
            transfer->DownloadAxisRecords(GetSafeHwnd(), KeyOf(target), NameOf(targetAxis), ticked);
    }
    m_bClosing = TRUE;
    SignalUpload();
    EndDialog(IDOK);
}

void CShaftCopyDialog::OnCancel() {
    m_bClosing = TRUE;
    SignalUpload();
    EndDialog(IDCANCEL);
}

void CShaftCopyDialog::OnDestroy() {
    m_bClosing = TRUE;
    SignalUpload();
    if (m_bSubscribed) {
        m_bSubscribed = FALSE;
        if (IHostMessageBus* bus = theApp.GetMessageBus())
            bus->Unsubscribe(IID_IMessage_ModuleUploadEvent,
                             AsSink<IMessage_ModuleUploadEvent>(this));
    }
    CZorSkinPDialog::OnDestroy();
    m_rows.DeleteAll();
}

BOOL CShaftCopyDialog::SaveAxisFile(IHostAxis* source, IHostAxis* target, const CString& path) {
    IHostDeviceModule* sourceDevice = GetSourceDevice();
    IHostDeviceModule* targetDevice = GetTargetDevice();
    if (source == nullptr || target == nullptr || sourceDevice == nullptr ||
        targetDevice == nullptr)
        return FALSE;
    IVarStore* sourceStore = sourceDevice->GetVarList();
    IVarStore* targetStore = targetDevice->GetVarList();
    if (sourceStore == nullptr || targetStore == nullptr)
        return FALSE;
    // Unsigned arithmetic wraps, so a source below the target shifts down correctly.
    const UINT offset = source->GetAddressBase() - target->GetAddressBase();
    CString version;
    targetDevice->GetVersionText(version);
    IParamFile* file = theApp.CreateParamFile();
    if (file == nullptr)
        return FALSE;
    file->SetVersionText(version);
    file->SetElecLabel(targetDevice->GetElecLabel(), targetDevice->GetElecLabelSize());
    file->SetAccessLevel(targetDevice->GetAccessLevel());
    IParamFileTable* table = file->GetVarList();
    IGroupSet* root = table != nullptr ? table->GetGroupRoot(0) : nullptr;
    IHostAxis* axis = root != nullptr ? root->AddAxis() : nullptr;
    if (axis == nullptr) {
        file->Release();
        return FALSE;
    }
    CString key;
    target->GetKey(key);
    axis->SetName(NameOf(target));
    axis->SetKey(key);

    // The groups the shown module's level lets the user see.
    const bool anyLevel = m_pModule == nullptr;
    const int level = m_pModule != nullptr ? m_pModule->GetAccessLevel() : 0;
    IGroupSet* from = target->GetGroupSet();
    IGroupSet* into = axis->GetGroupSet();
    if (from != nullptr && into != nullptr)
        for (int i = 0; i < from->GetCount(); ++i)
            CopyGroups(from->GetAt(i), into, nullptr, level, anyLevel);

    std::vector<CString> names;
    if (into != nullptr)
        for (int i = 0; i < into->GetCount(); ++i)
            CollectMemberNames(into->GetAt(i), names);
    std::set<IVarObjEx*> seen;
    for (const CString& name : names) {
        IVarObjEx* var = targetStore->FindByCode(name);
        if (var == nullptr || !seen.insert(var).second)
            continue;
        IVarAttr* attr = var->GetAttr();
        if (attr != nullptr &&
            (!attr->IsTransferable() || (!anyLevel && attr->GetAccessLevel() > level)))
            continue;
        IVarObjEx* copy = var->Clone();
        if (copy == nullptr)
            continue;
        IVarObjEx* pattern = sourceStore->FindByAddress(copy->GetInstanceAddress() + offset);
        // A parameter the source axis lacks goes into the file without a value.
        copy->SetValue(pattern != nullptr ? pattern->GetValue() : Variant());
        if (!table->AddVar(copy))
            delete copy;
    }
    const BOOL saved = file->Save(path);
    if (saved) {
        CString format = theApp.LoadText(IDS_SAVED_TO);
        CString text;
        text.Format(format.GetString(), path.GetString());
        MessageBox(GetSafeHwnd(), text.GetString(), "", MB_OK | MB_ICONINFORMATION);
    }
    file->Release();
    return saved;
}

void CShaftCopyDialog::OnLanguageChanged() {
    if (m_pTranslator != nullptr)
        m_pTranslator->Retranslate(0);
}
