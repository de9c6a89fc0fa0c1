#include "sets/ParamCompareDlg.h"
#include "values/ValueText.h"

#include "files/ParamTableWriter.h"
#include "module/ParmiraApp.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostMessageBus.h"
#include "module/host/IHostModuleList.h"
#include "module/host/IHostModuleManager.h"
#include "module/host/IHostProductInfo.h"
#include "module/host/IHostProject.h"
#include "module/host/IHostTransferService.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostVarUtil.h"
#include "module/host/IHostWindowTranslator.h"
#include "module/host/IHostWorkerThread.h"
#include "module/host/IHostWorkspace.h"
#include "module/host/IParamFile.h"

#include <afx/afxdlgs.h>
#include <afx/afxres.h>

#include <string>

namespace {

constexpr UINT IDS_DEVICE_OFFLINE = 2038; // "设备离线."

// The texts the dialog shows that the string table doesn't hold.
const char* const kChooseFile = "选择参数文件";
const char* const kCurrentValue = "当前值";
const char* const kFactoryValue = "出厂值";
const char* const kCompareFinished = "比较结束";

struct CompareColumn {
    const char* title;
    const char* side;
    int width;
};
// The axis columns keep width 0: out of sight.
const CompareColumn kColumns[] = {
    {"行号", "", 70},       {"轴号", "1", 0},       {"参数", "1", 100},
    {"参数名称", "1", 150}, {"比较值", "1", 200},   {"轴号", "2", 0},
    {"参数", "2", 100},     {"参数名称", "2", 150}, {"比较值", "2", 200}};

CString ColumnTitle(const CompareColumn& c) {
    CString title = VarText::Translate(c.title);
    title += c.side;
    return title;
}

CString ModuleKey(IHostDeviceModule* module) {
    CString key;
    if (module != nullptr)
        module->GetModuleKey(key);
    return key;
}

// What a side's two boxes ask for: a VarSource, or 0 when nothing (the file entry
// without a file chosen).
int SourceKind(CComboBox& source, CComboBox& kind, const CString& path) {
    const int sel = source.GetCurSel();
    if (sel >= 0 && sel == source.GetCount() - 1)
        return path.IsEmpty() ? 0 : int(VarSourceFile);
    const int k = kind.GetCurSel();
    return k >= 0 ? int(kind.GetItemData(k)) : 0;
}

enum class SidePick { Ok, NoModule, Offline };

// The module of a side that reads one, with its upload added to `uploads` when its current
// values are to be read: one module is read once, and one end is awaited for it.
SidePick PickModuleSide(CComboBox& source, int kind, int upload, std::vector<CString>& uploads,
                        IHostDeviceModule*& module) {
    module = nullptr;
    if (kind == VarSourceFile)
        return SidePick::Ok;
    const int sel = source.GetCurSel();
    module = sel >= 0 ? static_cast<IHostDeviceModule*>(source.GetItemDataPtr(sel)) : nullptr;
    if (module == nullptr)
        return SidePick::NoModule;
    if (kind != VarSourceCurrent || upload == 0)
        return SidePick::Ok;
    if (!module->IsOnline())
        return SidePick::Offline;
    const CString key = ModuleKey(module);
    for (const CString& k : uploads)
        if (k.CompareNoCase(key) == 0)
            return SidePick::Ok;
    uploads.push_back(key);
    return SidePick::Ok;
}

} // namespace

void RegisterParamCompareResources(HINSTANCE module) {
    if (module == nullptr || AfxFindDialogTemplate(module, IDD_PARAM_COMPARE) != nullptr)
        return;
    DlgTemplate dlg{IDD_PARAM_COMPARE, "参数比较", 900, 560};
    dlg.controls = {
        {IDC_COMPARE_LABEL1, DlgCtl::Static, "比较对象1", 10, 14, 80, 20},
        {IDC_COMPARE_SOURCE1, DlgCtl::ComboDropList, "", 92, 10, 260, 24},
        {IDC_COMPARE_KIND1, DlgCtl::ComboDropList, "", 358, 10, 130, 24},
        // Room for the English of the texts.
        {IDC_COMPARE_UPLOAD1, DlgCtl::Check, "比较前上传", 496, 12, 200, 20},
        {IDC_COMPARE_PATH1, DlgCtl::Static, "", 358, 14, 530, 20, 0, true},
        {IDC_COMPARE_LABEL2, DlgCtl::Static, "比较对象2", 10, 46, 80, 20},
        {IDC_COMPARE_SOURCE2, DlgCtl::ComboDropList, "", 92, 42, 260, 24},
        {IDC_COMPARE_KIND2, DlgCtl::ComboDropList, "", 358, 42, 130, 24},
        {IDC_COMPARE_UPLOAD2, DlgCtl::Check, "比较前上传", 496, 44, 200, 20},
        {IDC_COMPARE_PATH2, DlgCtl::Static, "", 358, 46, 530, 20, 0, true},
        {IDC_COMPARE_CONDITION, DlgCtl::Static, "比较条件", 10, 78, 80, 20},
        {IDC_COMPARE_SHOW_DIFFERENT, DlgCtl::Radio, "显示不同", 92, 76, 140, 22, WS_GROUP},
        {IDC_COMPARE_SHOW_SAME, DlgCtl::Radio, "显示相同", 236, 76, 124, 22},
        {IDC_COMPARE_HIDE_READONLY, DlgCtl::Check, "隐藏只读参数", 364, 76, 200, 22, WS_GROUP},
        {IDC_COMPARE_START, DlgCtl::Button, "开始比较", 644, 74, 136, 26},
        {IDC_COMPARE_SAVE, DlgCtl::Button, "保存文件", 788, 74, 100, 26},
        {IDC_COMPARE_LIST, DlgCtl::List, "", 10, 108, 880, 442,
         LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS},
    };
    AfxRegisterDialog(module, dlg);
}

CString CCompareListCtrl::OnGetCellText(int nItem, int nSubItem) {
    return m_pDialog != nullptr ? m_pDialog->GetCellText(nItem, nSubItem) : CString();
}

CParamCompareDlg::CParamCompareDlg(CWnd* pParent) : CZorSkinPDialog(IDD_PARAM_COMPARE, pParent) {
    theApp.AddLanguageListener(this);
}

BOOL CParamCompareDlg::Create(UINT nIDTemplate, CWnd* pParentWnd) {
    RegisterParamCompareResources(theApp.m_hResource);
    return CZorSkinPDialog::Create(nIDTemplate, pParentWnd);
}

CParamCompareDlg::~CParamCompareDlg() {
    theApp.RemoveLanguageListener(this);
    EndWorker();
    ClearResults();
    delete m_pTranslator;
    m_pTranslator = nullptr;
}

void CParamCompareDlg::DoDataExchange(CDataExchange* pDX) {
    CZorSkinPDialog::DoDataExchange(pDX);
    DDX_Control(pDX, int(IDC_COMPARE_SOURCE1), m_source1);
    DDX_Control(pDX, int(IDC_COMPARE_SOURCE2), m_source2);
    DDX_Control(pDX, int(IDC_COMPARE_KIND1), m_kind1);
    DDX_Control(pDX, int(IDC_COMPARE_KIND2), m_kind2);
    DDX_Control(pDX, int(IDC_COMPARE_LIST), m_list);
    DDX_Text(pDX, int(IDC_COMPARE_PATH1), m_strPath1);
    DDX_Text(pDX, int(IDC_COMPARE_PATH2), m_strPath2);
    DDX_Check(pDX, int(IDC_COMPARE_UPLOAD1), m_nUpload1);
    DDX_Check(pDX, int(IDC_COMPARE_UPLOAD2), m_nUpload2);
    DDX_Radio(pDX, int(IDC_COMPARE_SHOW_DIFFERENT), m_nShowSame);
    DDX_Check(pDX, int(IDC_COMPARE_HIDE_READONLY), m_nHideReadOnly);
}

BOOL CParamCompareDlg::OnInitDialog() {
    EnableVisualStyle(TRUE);
    CZorSkinPDialog::OnInitDialog();
    CenterWindow();
    delete m_pTranslator;
    m_pTranslator = theApp.MakeWindowTranslator(GetSafeHwnd());
    // Differing parameters first.
    CheckRadioButton(int(IDC_COMPARE_SHOW_DIFFERENT), int(IDC_COMPARE_SHOW_SAME),
                     int(IDC_COMPARE_SHOW_DIFFERENT));
    FillSourceList(m_source1);
    FillSourceList(m_source2);
    // A fresh dialog sets the shown module's current values against its factory values.
    FillKindList(m_kind1, VarSourceCurrent);
    FillKindList(m_kind2, VarSourceFactory);
    ApplyKindRule(1);
    ApplyKindRule(2);

    m_list.SetOwnerDialog(this);
    m_list.SetExtendedStyle(m_list.GetExtendedStyle() | LVS_EX_FULLROWSELECT);
    int index = 0;
    for (const CompareColumn& c : kColumns)
        m_list.InsertColumn(index++, ColumnTitle(c).GetString(), LVCFMT_LEFT, c.width);
    AddAnchor(IDC_COMPARE_LIST, AnchorTopLeft, AnchorBottomRight);
    return TRUE;
}

CString CParamCompareDlg::ModuleEntryText(IHostDeviceModule* module) {
    CString text;
    if (module == nullptr)
        return text;
    CString name, sub;
    module->GetDisplayName(name);
    // A product's name in the user's language; a name the project gave stays as written.
    name = VarText::Translate(name);
    module->GetSubName(sub);
    IHostProductInfo* info = module->GetProductInfo();
    const int kind = info != nullptr ? info->GetProductKind() : -1;
    if (kind == 0)
        text.Format("%s(%s)", name.GetString(), sub.GetString());
    else if (kind == 5 || kind == 7)
        text.Format("%s(%s_%d)", name.GetString(), sub.GetString(), module->GetAxisIndex());
    else
        text.Format("%s(%d)", name.GetString(), module->GetAxisIndex());
    return text;
}

void CParamCompareDlg::FillSourceList(CComboBox& box) {
    box.ResetContent();
    IHostProject* project = theApp.GetProject();
    IHostWorkspace* workspace = project != nullptr ? project->GetWorkspace() : nullptr;
    IHostModuleList* modules = workspace != nullptr ? workspace->GetModuleList() : nullptr;
    int selected = -1;
    if (modules != nullptr) {
        const int count = modules->GetModuleCount();
        for (int i = 0; i < count; ++i) {
            IHostDeviceModule* module = modules->GetModuleAt(i);
            if (module == nullptr)
                continue;
            const int at = box.AddString(ModuleEntryText(module).GetString());
            box.SetItemDataPtr(at, module);
            if (module == m_pModule)
                selected = at;
        }
    }
    const int file = box.AddString(VarText::Translate(kChooseFile).GetString());
    box.SetItemData(file, 0);
    box.SetCurSel(selected);
}

void CParamCompareDlg::FillKindList(CComboBox& box, int selectedSource) {
    box.ResetContent();
    const int current = box.AddString(VarText::Translate(kCurrentValue).GetString());
    box.SetItemData(current, VarSourceCurrent);
    const int factory = box.AddString(VarText::Translate(kFactoryValue).GetString());
    box.SetItemData(factory, VarSourceFactory);
    box.SetCurSel(selectedSource == VarSourceFactory ? factory : current);
}

void CParamCompareDlg::ApplyKindRule(int object) {
    CComboBox& kind = object == 1 ? m_kind1 : m_kind2;
    const int box = int(object == 1 ? IDC_COMPARE_UPLOAD1 : IDC_COMPARE_UPLOAD2);
    const int sel = kind.GetCurSel();
    const bool current = sel >= 0 && int(kind.GetItemData(sel)) == VarSourceCurrent;
    if (CWnd* upload = GetDlgItem(box))
        upload->ShowWindow(current ? SW_SHOW : SW_HIDE);
    CheckDlgButton(box, current ? BST_CHECKED : BST_UNCHECKED);
}

void CParamCompareDlg::OnSourceChanged(int object) {
    CComboBox& source = object == 1 ? m_source1 : m_source2;
    CComboBox& kind = object == 1 ? m_kind1 : m_kind2;
    const int uploadId = int(object == 1 ? IDC_COMPARE_UPLOAD1 : IDC_COMPARE_UPLOAD2);
    const int pathId = int(object == 1 ? IDC_COMPARE_PATH1 : IDC_COMPARE_PATH2);
    const bool file = source.GetCount() > 0 && source.GetCurSel() == source.GetCount() - 1;
    kind.ShowWindow(file ? SW_HIDE : SW_SHOW);
    if (CWnd* upload = GetDlgItem(uploadId))
        upload->ShowWindow(file ? SW_HIDE : SW_SHOW);
    CWnd* path = GetDlgItem(pathId);
    if (path != nullptr)
        path->ShowWindow(SW_HIDE);
    if (!file) {
        ApplyKindRule(object);
        return;
    }
    // A file side never uploads, whatever its box showed before.
    CheckDlgButton(uploadId, BST_UNCHECKED);
    SetDlgItemText(pathId, "");
    CFileDialog dialog(TRUE, nullptr, "*.zorparam", OFN_HIDEREADONLY | OFN_FILEMUSTEXIST,
                       "Zorparam Files(*.zorparam)|*.zorparam||", this);
    if (dialog.DoModal() != IDOK)
        return;
    SetDlgItemText(pathId, dialog.GetPathName().GetString());
    if (path != nullptr)
        path->ShowWindow(SW_SHOW);
}

void CParamCompareDlg::EnableControls(BOOL enable) {
    for (UINT id : {IDC_COMPARE_SOURCE1, IDC_COMPARE_SOURCE2, IDC_COMPARE_KIND1, IDC_COMPARE_KIND2,
                    IDC_COMPARE_UPLOAD1, IDC_COMPARE_UPLOAD2, IDC_COMPARE_START})
        if (CWnd* ctl = GetDlgItem(int(id)))
            ctl->EnableWindow(enable);
}

void CParamCompareDlg::Warn(const CString& text) {
    MessageBox(GetSafeHwnd(), text.GetString(), "", MB_OK | MB_ICONWARNING);
}

void CParamCompareDlg::Subscribe() {
    if (m_bSubscribed)
        return;
    if (IHostMessageBus* bus = theApp.GetMessageBus())
        m_bSubscribed = bus->Subscribe(IID_IMessage_ModuleUploadEvent,
                                       AsSink<IMessage_ModuleUploadEvent>(this));
}

void CParamCompareDlg::Unsubscribe() {
    if (!m_bSubscribed)
        return;
    m_bSubscribed = FALSE;
    if (IHostMessageBus* bus = theApp.GetMessageBus())
        bus->Unsubscribe(IID_IMessage_ModuleUploadEvent, AsSink<IMessage_ModuleUploadEvent>(this));
}

void CParamCompareDlg::ClearResults() {
    m_sameList.DeleteAll();
    m_diffList.DeleteAll();
    CVarCompare::FreeFileVars(m_fileVars);
}

const CVarCompareRstList& CParamCompareDlg::GetShownList() const {
    return m_nShowSame == 1 ? m_sameList : m_diffList;
}

void CParamCompareDlg::ShowSelectedList() {
    m_nShowSame = IsDlgButtonChecked(int(IDC_COMPARE_SHOW_SAME)) == BST_CHECKED ? 1 : 0;
    if (m_list.GetSafeHwnd() != nullptr) {
        m_list.SetItemCountEx(GetShownList().GetCount(), 0);
        m_list.Invalidate();
    }
}

CString CParamCompareDlg::GetCellText(int row, int column) const {
    CString text;
    const CVarCompareRst* r = GetShownList().GetAt(row);
    if (r == nullptr)
        return text;
    if (column == 0)
        text.Format("%03d", row + 1);
    else
        text = r->GetText(theApp.GetVarUtil(), column);
    return text;
}

void CParamCompareDlg::StartCompare() {
    UpdateData(TRUE);
    m_nUploadCount = 0;
    m_pendingUploads.clear();
    m_bUploadFailed = FALSE;
    // A run still going belongs to the old question; its results would mix with the new.
    EndWorker();
    ClearResults();
    m_list.SetItemCountEx(0, 0);
    IHostTransferService* transfer = theApp.GetTransferService();
    if (theApp.GetVarUtil() == nullptr || theApp.GetUiService() == nullptr)
        return;
    m_pModule1 = nullptr;
    m_pModule2 = nullptr;

    const int kind1 = SourceKind(m_source1, m_kind1, m_strPath1);
    const int kind2 = SourceKind(m_source2, m_kind2, m_strPath2);
    if (kind1 == 0 || kind2 == 0)
        return;
    m_nSource1 = kind1;
    m_nSource2 = kind2;
    Subscribe();

    // Decide everything first and ask for the uploads last: a host may end an upload
    // inside the call, and the end must find both modules chosen.
    std::vector<CString> uploads;
    IHostDeviceModule* module1 = nullptr;
    IHostDeviceModule* module2 = nullptr;
    SidePick pick = PickModuleSide(m_source1, kind1, m_nUpload1, uploads, module1);
    if (pick == SidePick::Ok)
        pick = PickModuleSide(m_source2, kind2, m_nUpload2, uploads, module2);
    if (pick != SidePick::Ok) {
        Unsubscribe();
        if (pick == SidePick::Offline)
            Warn(theApp.LoadText(IDS_DEVICE_OFFLINE));
        return;
    }
    m_pModule1 = module1;
    m_pModule2 = module2;
    EnableControls(FALSE);
    if (uploads.empty()) {
        Unsubscribe();
        StartWorker();
        return;
    }
    m_nUploadCount = int(uploads.size());
    m_pendingUploads.insert(uploads.begin(), uploads.end());
    for (const CString& key : uploads) {
        const BOOL started = transfer != nullptr && transfer->UploadModule(GetSafeHwnd(), key);
        // An upload that never started ends nowhere else: count it as failed here.
        if (!started && m_pendingUploads.count(key) != 0)
            OnModuleUploaded(key, FALSE);
    }
}

void CParamCompareDlg::OnModuleUploaded(const CString& moduleKey, BOOL success) {
    if (m_nUploadCount <= 0)
        return;
    auto it = m_pendingUploads.end();
    for (auto i = m_pendingUploads.begin(); i != m_pendingUploads.end(); ++i)
        if (i->CompareNoCase(moduleKey) == 0)
            it = i;
    if (it == m_pendingUploads.end())
        return; // some other flow's upload
    m_pendingUploads.erase(it);
    if (!success)
        m_bUploadFailed = TRUE;
    if (--m_nUploadCount > 0)
        return;
    Unsubscribe();
    // Values of a drive that did not answer every read are not the drive's: no compare.
    if (m_bUploadFailed) {
        EnableControls(TRUE);
        Warn(theApp.LoadText(IDS_DEVICE_OFFLINE));
        return;
    }
    StartWorker();
}

void CParamCompareDlg::StartWorker() {
    m_bHideReadOnly = IsDlgButtonChecked(int(IDC_COMPARE_HIDE_READONLY)) == BST_CHECKED;
    EndWorker();
    auto job = std::make_unique<Job>();
    job->source1 = m_nSource1;
    job->source2 = m_nSource2;
    job->path1 = m_strPath1;
    job->path2 = m_strPath2;
    job->key1 = ModuleKey(m_pModule1);
    job->key2 = ModuleKey(m_pModule2);
    job->module2Given = m_pModule2 != nullptr;
    job->hideReadOnly = m_bHideReadOnly;
    job->window = GetSafeHwnd();
    job->serial = ++m_nSerial;
    // Services are taken here, on the window thread: the worker asks the host nothing.
    job->util = theApp.GetVarUtil();
    job->transfer = theApp.GetTransferService();
    job->manager = theApp.GetModuleManager();
    m_bDone = FALSE;
    IHostWorkerThread* worker = theApp.CreateWorkerThread();
    if (worker == nullptr) {
        m_pJob = std::move(job);
        PostMessage(UM_COMPARE_DONE, m_nSerial, 0);
        return;
    }
    worker->SetUserData(job.get());
    worker->SetWaitTimeout(-1);
    m_pJob = std::move(job);
    m_pWorker = worker;
    worker->Start(&CParamCompareDlg::CompareWorker, 0, worker);
}

void CParamCompareDlg::EndWorker() {
    if (m_pWorker != nullptr) {
        IHostWorkerThread* worker = m_pWorker;
        m_pWorker = nullptr;
        worker->RequestStop(1);
        worker->Release(); // returns once the worker function has ended
    }
    m_pJob.reset();
    m_bDone = TRUE;
}

void CParamCompareDlg::LoadSet(Job& job, IHostWorkerThread* thread, int source, const CString& path,
                               const CString& key, std::vector<IVarObjEx*>& vars) {
    if (source != VarSourceFile) {
        if (job.transfer != nullptr)
            job.transfer->GetModuleVars(key, vars);
        return;
    }
    if (job.manager == nullptr || thread->IsStopRequested())
        return;
    auto* file = static_cast<IParamFile*>(job.manager->CreateInstance(IParamFile::kIID));
    if (file == nullptr)
        return;
    // A file that can't be opened is an empty set.
    if (file->Open(path))
        CVarCompare::CloneFileVars(file, vars);
    file->Release();
}

UINT CParamCompareDlg::CompareWorker(void* arg) {
    auto* thread = static_cast<IHostWorkerThread*>(arg);
    Job* job = thread != nullptr ? static_cast<Job*>(thread->GetUserData()) : nullptr;
    if (job == nullptr)
        return 0;
    auto done = [job] { ::PostMessage(job->window, UM_COMPARE_DONE, job->serial, 0); };
    if (job->util == nullptr) {
        done();
        return 0;
    }
    std::vector<IVarObjEx*> set1, set2;
    if (job->source1 == VarSourceFile && job->path1.IsEmpty()) {
        done();
        return 0;
    }
    LoadSet(*job, thread, job->source1, job->path1, job->key1, set1);
    bool ended = false;
    if (job->source2 == VarSourceFile)
        ended = job->path2.IsEmpty();
    else
        ended = job->module2Given == FALSE;
    if (!ended) {
        LoadSet(*job, thread, job->source2, job->path2, job->key2, set2);
        CVarCompare compare(job->util);
        compare.SetStopTest([thread] { return thread->IsStopRequested() != 0; });
        compare.SetHideReadOnly(job->hideReadOnly);
        compare.Run(set1, job->source1, set2, job->source2, job->same, job->diff);
    }
    // Rows make their texts from these attributes when shown: they go with the rows.
    if (job->source1 == VarSourceFile)
        job->fileVars.insert(job->fileVars.end(), set1.begin(), set1.end());
    if (job->source2 == VarSourceFile)
        job->fileVars.insert(job->fileVars.end(), set2.begin(), set2.end());
    done();
    return 0;
}

void CParamCompareDlg::OnCompareDone(WPARAM serial) {
    // A late word from a run that was ended meanwhile.
    if (serial != m_nSerial || m_pJob == nullptr)
        return;
    if (m_pWorker != nullptr) {
        IHostWorkerThread* worker = m_pWorker;
        m_pWorker = nullptr;
        worker->Release();
    }
    ClearResults();
    m_sameList = m_pJob->same;
    m_diffList = m_pJob->diff;
    m_pJob->same.RemoveAll();
    m_pJob->diff.RemoveAll();
    m_fileVars.swap(m_pJob->fileVars);
    m_pJob.reset();
    m_bDone = TRUE;
    ShowSelectedList();
    EnableControls(TRUE);
    MessageBox(GetSafeHwnd(), VarText::Translate(kCompareFinished).GetString(), "",
               MB_OK | MB_ICONINFORMATION);
}

void CParamCompareDlg::SaveShownList() {
    CFileDialog dialog(FALSE, "csv", "Var_Offline", OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT,
                       "CSV Files (*.csv)|*.csv||", this);
    if (dialog.DoModal() != IDOK)
        return;
    IHostVarUtil* util = theApp.GetVarUtil();
    if (util == nullptr)
        return;
    SYSTEMTIME now{};
    GetLocalTime(&now);
    // Gathered in memory and written in one go; a failure is not reported.
    WriteFileReplacing(dialog.GetPathName(), CVarCompare::CsvText(util, GetShownList(), now));
}

BOOL CParamCompareDlg::OnCommand(WPARAM wParam, LPARAM lParam) {
    const UINT id = LOWORD(wParam);
    const UINT code = HIWORD(wParam);
    if (code == CBN_SELCHANGE) {
        if (id == IDC_COMPARE_SOURCE1 || id == IDC_COMPARE_SOURCE2) {
            OnSourceChanged(id == IDC_COMPARE_SOURCE1 ? 1 : 2);
            return TRUE;
        }
        if (id == IDC_COMPARE_KIND1 || id == IDC_COMPARE_KIND2) {
            ApplyKindRule(id == IDC_COMPARE_KIND1 ? 1 : 2);
            return TRUE;
        }
    }
    if (code == BN_CLICKED) {
        switch (id) {
        case IDC_COMPARE_SHOW_DIFFERENT:
        case IDC_COMPARE_SHOW_SAME:
            ShowSelectedList();
            return TRUE;
        case IDC_COMPARE_START:
            StartCompare();
            return TRUE;
        case IDC_COMPARE_SAVE:
            SaveShownList();
            return TRUE;
        default:
            break;
        }
    }
    return CZorSkinPDialog::OnCommand(wParam, lParam);
}

LRESULT CParamCompareDlg::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == UM_COMPARE_DONE) {
        OnCompareDone(wParam);
        return 0;
    }
    return CZorSkinPDialog::WindowProc(message, wParam, lParam);
}

void CParamCompareDlg::OnCancel() {
    OnClose();
}

void CParamCompareDlg::OnClose() {
    EndWorker();
    ClearResults();
    if (m_list.GetSafeHwnd() != nullptr)
        m_list.SetItemCountEx(0, 0);
    // The dialog no longer waits for an upload under way.
    m_nUploadCount = 0;
    m_pendingUploads.clear();
    Unsubscribe();
    EnableControls(TRUE);
    ShowWindow(SW_HIDE);
}

void CParamCompareDlg::OnDestroy() {
    EndWorker();
    ClearResults();
    Unsubscribe();
    CZorSkinPDialog::OnDestroy();
}

void CParamCompareDlg::OnLanguageChanged() {
    if (m_pTranslator != nullptr)
        m_pTranslator->Retranslate(0);
    if (GetSafeHwnd() == nullptr)
        return;
    // Lists and column titles are the dialog's own texts: they are made anew, with the
    // choices as they were.
    for (CComboBox* box : {&m_source1, &m_source2}) {
        const int sel = box->GetCurSel();
        FillSourceList(*box);
        box->SetCurSel(sel);
    }
    for (CComboBox* box : {&m_kind1, &m_kind2}) {
        const int sel = box->GetCurSel();
        FillKindList(*box, sel >= 0 ? int(box->GetItemData(sel)) : VarSourceCurrent);
    }
    int index = 0;
    for (const CompareColumn& c : kColumns) {
        std::string title = ColumnTitle(c).GetString();
        LVCOLUMN column{};
        column.mask = LVCF_TEXT;
        column.pszText = title.data();
        m_list.SetColumn(index++, &column);
    }
}
