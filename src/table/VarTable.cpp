#include "table/VarTable.h"
#include "table/VarCollector.h"

#include "module/LocalResource.h"
#include "module/ParmiraApp.h"
#include "module/host/IHostAccessService.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostMessageBus.h"
#include "module/host/IHostModuleList.h"
#include "module/host/IHostProject.h"
#include "module/host/IHostRefreshService.h"
#include "module/host/IHostTransferService.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostVarUtil.h"
#include "module/host/IHostWindowTranslator.h"
#include "module/host/IHostWorkspace.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarCatalog.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "table/OldProtocolDevice.h"
#include "table/ParmiraDialog.h"
#include "table/TableResources.h"

VarTablePageFactory CVarTable::s_pageFactory = nullptr;

CVarTable::CVarTable() : CZorSkinPDialog(IDD_VAR_TABLE) {
    oldProtocolDevices = new COldProtocolDeviceAgent;
    LoadDeviceList(oldProtocolDevices, "OldProtocolDevice.ini");
    halfDuplexDevices = new COldProtocolDeviceAgent;
    LoadDeviceList(halfDuplexDevices, "HalfDuplexDevice.ini");
    theApp.AddLanguageListener(this);
}

CVarTable::~CVarTable() {
    theApp.RemoveLanguageListener(this);
    delete oldProtocolDevices;
    oldProtocolDevices = nullptr;
    delete halfDuplexDevices;
    halfDuplexDevices = nullptr;
    CloseCompareDialog();
    delete m_pTranslator;
    m_pTranslator = nullptr;
}

CVarTablePage* CVarTable::NewPage(int style) {
    return s_pageFactory != nullptr ? s_pageFactory(style) : CreateVarTablePage(style);
}

BOOL CVarTable::OnInitDialog() {
    // The tree keeps its width left of the first bar, the text box right of the second.
    m_treeSplitter.Setup(IDC_GROUP_TREE, TRUE);
    m_treeSplitter.SubclassDlgItem(IDC_TREE_SPLITTER, this);
    m_textSplitter.Setup(IDC_VAR_DESCRIPTION, FALSE);
    m_textSplitter.SubclassDlgItem(IDC_TEXT_SPLITTER, this);
    CZorSkinPDialog::OnInitDialog();
    m_hWndForWorker.store(GetSafeHwnd());
    {
        CLocalResource scope(theApp.m_hResource);
        // Images 0, 1 and 2: fixed items; axes and categories; groups.
        m_images.Create(16, 16, ILC_COLOR32 | ILC_MASK, 3, 0);
        for (UINT icon : {IDI_TREE_FIXED, IDI_TREE_BRANCH, IDI_TREE_GROUP})
            m_images.Add(AfxFindIcon(theApp.m_hResource, icon));
        m_tree.SubclassDlgItem(IDC_GROUP_TREE, this);
        m_tree.ApplySkinStyle();
        m_tree.SetImageList(&m_images, TVSIL_NORMAL);
        m_tree.SetItemHeight(20);
        m_tree.SetBkColor(RGB(255, 255, 255));
        m_tree.SetTextColor(RGB(0, 0, 0));

        if (CWnd* placeholder = GetDlgItem(int(IDC_STACK_PLACEHOLDER)))
            m_stack.Create(IDD_STACKED_HOST, placeholder);
        if (m_stack.GetSafeHwnd() != nullptr) {
            if (CVarTablePage* page = NewPage(0)) {
                page->SetTable(this);
                if (m_stack.AddPage(IDD_VAR_TABLE_PAGE1, page))
                    m_pPage1 = page;
            }
            if (CVarTablePage* page = NewPage(1)) {
                page->SetTable(this);
                if (m_stack.AddPage(IDD_VAR_TABLE_PAGE2, page))
                    m_pPage2 = page;
            }
            m_stack.ShowWindow(SW_SHOW);
        }
    }
    if (IHostUiService* ui = theApp.GetUiService())
        ui->ApplySkin(GetSafeHwnd(), 0, 0);
    RecalcLayout();

    BuildTree();
    const int style = GetListStyle();
    if (style == 0)
        m_stack.SetActivePage(IDD_VAR_TABLE_PAGE1);
    else if (style == 1)
        m_stack.SetActivePage(IDD_VAR_TABLE_PAGE2);
    if (m_pModule != nullptr) {
        if (CVarTablePage* page = GetStylePage())
            page->ShowAllParameters(GetVarList());
    }
    // refreshEnabled is 1 since construction, so only the worker is missing here.
    StartWorker();
    if (IHostRefreshService* refresh = theApp.GetRefreshService()) {
        refresh->AddRefreshListener(this);
        m_bRefreshListening = TRUE;
    }
    SetTimer(IDT_AUTHORITY_POLL, AUTHORITY_POLL_PERIOD_MS);

    delete m_pTranslator;
    m_pTranslator = theApp.MakeWindowTranslator(GetSafeHwnd());
    return TRUE;
}

void CVarTable::OnDestroy() {
    CloseCompareDialog();
    ReleaseWorker();
    CZorSkinPDialog::OnDestroy();
    RemoveRefreshListener();
    StopRefresh();
    UnsubscribeUpload();
    m_hWndForWorker.store(nullptr);
}

void CVarTable::RemoveRefreshListener() {
    if (!m_bRefreshListening)
        return;
    m_bRefreshListening = FALSE;
    if (IHostRefreshService* refresh = theApp.GetRefreshService())
        refresh->RemoveRefreshListener(this);
}

// ---------------------------------------------------------------- what the pages ask

int CVarTable::GetAccessLevel() const {
    return m_pModule != nullptr ? m_pModule->GetAccessLevel() : 0;
}

int CVarTable::GetListStyle() const {
    IHostWorkspace* workspace = m_pWorkspace;
    if (workspace == nullptr) {
        IHostProject* project = theApp.GetProject();
        workspace = project != nullptr ? project->GetWorkspace() : nullptr;
    }
    return workspace != nullptr ? workspace->GetListStyle() : 0;
}

IVarStore* CVarTable::GetVarList() const {
    return m_pModule != nullptr ? m_pModule->GetVarList() : nullptr;
}

CVarTablePage* CVarTable::GetStylePage() const {
    CVarTablePage* page = nullptr;
    switch (GetListStyle()) {
    case 0:
        page = m_pPage1;
        break;
    case 1:
        page = m_pPage2;
        break;
    default:
        break;
    }
    return page != nullptr && page->GetSafeHwnd() != nullptr ? page : nullptr;
}

void CVarTable::PostVarCount(BOOL setTotal, int count) {
    if (m_pPanel != nullptr && m_pPanel->GetSafeHwnd() != nullptr)
        m_pPanel->PostMessage(UM_UPDATE_VAR_COUNT, setTotal ? 1 : 0, count);
}

void CVarTable::ShowVarDescription(IVarObjEx* var) {
    IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
    if (attr == nullptr || GetSafeHwnd() == nullptr)
        return;
    attr->GetInfoText(m_describedText);
    ShowDescribedText();
}

void CVarTable::ShowDescribedText() {
    CString text = m_describedText;
    if (IHostUiService* ui = theApp.GetUiService(); ui != nullptr && !text.IsEmpty()) {
        CString shown;
        ui->TranslateText(shown, text);
        text = shown;
    }
    text.Replace("\n", "\r\n");
    SetDlgItemText(int(IDC_VAR_DESCRIPTION), text.GetString());
    RecalcLayout();
}

IVarCatalog* CVarTable::GetRowCatalog() {
    if (m_pModule == nullptr)
        return nullptr;
    IHostProject* project = theApp.GetProject();
    IHostWorkspace* workspace = project != nullptr ? project->GetWorkspace() : nullptr;
    if (workspace == nullptr || workspace->GetModuleList() == nullptr)
        return nullptr;
    return m_pModule->GetVarCatalog();
}

BOOL CVarTable::IsCatalogVar(IVarObjEx* var) {
    return var != nullptr ? CVarCollector::IsCatalogVar(GetRowCatalog(), var) : FALSE;
}

CGroupMembership& CVarTable::Membership() {
    IVarStore* store = GetVarList();
    if (store != m_membership.GetStore())
        m_membership.SetStore(store);
    return m_membership;
}

void CVarTable::ApplyAccessLevel(IHostDeviceModule* module, int level) {
    if (module == nullptr)
        return;
    module->SetAccessLevel(level);
    IHostDeviceModule* shown = m_pModule;
    StopRefresh();
    m_pModule = shown;
    StartRefresh();
    BuildTree();
    OnTreeSelection(m_tree.GetSafeHwnd() != nullptr ? m_tree.GetSelectedItem() : nullptr);
    CString key;
    module->GetModuleKey(key);
    if (IHostAccessService* access = theApp.GetAccessService())
        access->NotifyAccessLevel(key, level);
    if (IHostTransferService* transfer = theApp.GetTransferService())
        transfer->NotifyLevelToTransfer(key, level);
}

void CVarTable::ApplyAccessLevelToAll(int level) {
    ApplyAccessLevel(m_pModule, level);
    IHostProject* project = theApp.GetProject();
    IHostWorkspace* workspace = project != nullptr ? project->GetWorkspace() : nullptr;
    IHostModuleList* modules = workspace != nullptr ? workspace->GetModuleList() : nullptr;
    if (modules == nullptr)
        return;
    for (int i = 0; i < modules->GetModuleCount(); ++i) {
        IHostDeviceModule* module = modules->GetModuleAt(i);
        if (module == nullptr)
            continue;
        if (module->GetAccessLevel() != level)
            module->SetAccessLevel(level);
        CString key;
        module->GetModuleKey(key);
        if (IHostTransferService* transfer = theApp.GetTransferService())
            transfer->NotifyLevelToTransfer(key, level);
    }
}

void CVarTable::ReloadModule() {
    IHostDeviceModule* module = m_pModule;
    // The attributes may have changed: what the pages derived from them goes.
    for (CVarTablePage* page : {m_pPage1, m_pPage2})
        if (page != nullptr)
            page->DropSearchCache();
    StopRefresh();
    m_pModule = module;
    StartRefresh();
    BuildTree();
    lastSelection = m_tree.GetSafeHwnd() != nullptr ? m_tree.GetSelectedItem() : nullptr;
    OnTreeSelection(lastSelection);
    RecalcLayout();
}

void CVarTable::SelectListPage(int index) {
    if (index == 0)
        m_stack.SetActivePage(IDD_VAR_TABLE_PAGE1);
    else if (index == 1)
        m_stack.SetActivePage(IDD_VAR_TABLE_PAGE2);
    else
        return;
    if (m_tree.GetSafeHwnd() == nullptr)
        return;
    // The pages' main columns differ in width.
    FitTreeWidth();
    if (HTREEITEM selected = m_tree.GetSelectedItem())
        OnTreeSelection(selected);
}

void CVarTable::SetModuleAccessLevel(const CString& moduleKey, int level) {
    IHostDeviceModule* module = theApp.FindModule(moduleKey);
    if (module == nullptr)
        return;
    if (module->GetAccessLevel() == level) {
        // The host may have set the level on the module itself before telling the panel:
        // the pages make their search texts for it while idle.
        if (module == m_pModule)
            for (CVarTablePage* page : {m_pPage1, m_pPage2})
                if (page != nullptr)
                    page->PrepareSearchWhenIdle();
        return;
    }
    module->SetAccessLevel(level);
    StopRefresh();
    m_pModule = module;
    StartRefresh();
    BuildTree();
    if (IHostAccessService* access = theApp.GetAccessService())
        access->NotifyAccessLevel(moduleKey, level);
}

// ---------------------------------------------------------------- upload events

void CVarTable::SubscribeUpload() {
    if (IHostMessageBus* bus = theApp.GetMessageBus())
        bus->Subscribe(IID_IMessage_ModuleUploadEvent, AsSink<IMessage_ModuleUploadEvent>(this));
}

void CVarTable::UnsubscribeUpload() {
    if (IHostMessageBus* bus = theApp.GetMessageBus())
        bus->Unsubscribe(IID_IMessage_ModuleUploadEvent, AsSink<IMessage_ModuleUploadEvent>(this));
}

void CVarTable::OnModuleDownloaded(const CString& /*moduleKey*/, BOOL /*success*/) {
    UnsubscribeUpload();
}

void CVarTable::OnLanguageChanged() {
    if (m_pTranslator != nullptr)
        m_pTranslator->Retranslate(0);
    RetranslateTree();
    // The description pane is an edit, which the translator leaves alone.
    if (GetSafeHwnd() != nullptr)
        ShowDescribedText();
    // The names as shown changed: the pages make their search texts again while idle.
    for (CVarTablePage* page : {m_pPage1, m_pPage2})
        if (page != nullptr)
            page->PrepareSearchWhenIdle();
}

// ---------------------------------------------------------------- window

void CVarTable::OnSize(UINT nType, int cx, int cy) {
    CZorSkinPDialog::OnSize(nType, cx, cy);
    RecalcLayout();
    // Another width leaves another room for the tree beside the list's main columns.
    FitTreeWidth();
}

void CVarTable::OnSetFocus(CWnd* pOldWnd) {
    CZorSkinPDialog::OnSetFocus(pOldWnd);
    Invalidate(FALSE);
}

BOOL CVarTable::PreTranslateMessage(MSG* pMsg) {
    // An embedded dialog must not end on Enter or Escape.
    if (pMsg != nullptr && pMsg->message == WM_KEYDOWN &&
        (pMsg->wParam == VK_RETURN || pMsg->wParam == VK_ESCAPE))
        return TRUE;
    return CZorSkinPDialog::PreTranslateMessage(pMsg);
}

LRESULT CVarTable::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case UM_REFRESH_TICK:
        OnRefreshTick();
        return 0;
    case UM_REFRESH_QUERY:
        OnRefreshQueryMessage();
        return 0;
    case UM_RELOAD_MODULE:
        ReloadModule();
        return 0;
    case UM_SPLITTER_MOVED:
        RecalcLayout();
        return 0;
    default:
        return CZorSkinPDialog::WindowProc(message, wParam, lParam);
    }
}

void CVarTable::OnTimer(UINT_PTR nIDEvent) {
    if (nIDEvent != IDT_AUTHORITY_POLL) {
        CZorSkinPDialog::OnTimer(nIDEvent);
        return;
    }
    if (GetListStyle() == 0 && m_pPage1 != nullptr && m_pPage1->GetSafeHwnd() != nullptr)
        m_pPage1->PollAuthority();
}

BOOL CVarTable::OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* pResult) {
    const auto* header = reinterpret_cast<const NMHDR*>(lParam);
    if (header != nullptr && header->idFrom == IDC_GROUP_TREE) {
        if (header->code == TVN_SELCHANGED) {
            const auto* change = reinterpret_cast<const NMTREEVIEW*>(lParam);
            if (!m_bRebuilding)
                OnTreeSelection(change->itemNew.hItem);
            return TRUE;
        }
        if (header->code == NM_RCLICK) {
            CPoint point;
            GetCursorPos(&point);
            m_tree.ScreenToClient(&point);
            OnTreeContextMenu(point);
            if (pResult != nullptr)
                *pResult = 1;
            return TRUE;
        }
    }
    return CZorSkinPDialog::OnNotify(wParam, lParam, pResult);
}

BOOL CVarTable::OnCommand(WPARAM wParam, LPARAM lParam) {
    if (lParam == 0 && OnFrameCommand(UINT(LOWORD(wParam))))
        return TRUE;
    return CZorSkinPDialog::OnCommand(wParam, lParam);
}
