#include "table/ParmiraDialog.h"

#include "module/Implementation.h"
#include "module/LocalResource.h"
#include "module/ModuleResources.h"
#include "module/ParmiraApp.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostHelpService.h"
#include "module/host/IHostMessageBus.h"
#include "module/host/IHostModuleList.h"
#include "module/host/IHostProject.h"
#include "module/host/IHostTabManager.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostVarUtil.h"
#include "module/host/IHostWindowTranslator.h"
#include "module/host/IHostWorkspace.h"
#include "table/TableResources.h"
#include "table/VarTable.h"

CParmiraDialog::CParmiraDialog() : CZorSkinPDialog(IDD_PARMIRA_PANEL) {}

CParmiraDialog::~CParmiraDialog() {
    delete m_pTable;
    m_pTable = nullptr;
    delete m_pNotice;
    m_pNotice = nullptr;
    delete m_pTranslator;
    m_pTranslator = nullptr;
}

void CParmiraDialog::SetModuleKey(const CString& moduleKey) {
    m_strModuleKey = moduleKey;
    m_pModule = nullptr;
    if (m_pProject == nullptr)
        return;
    IHostWorkspace* workspace = m_pProject->GetWorkspace();
    IHostModuleList* modules = workspace != nullptr ? workspace->GetModuleList() : nullptr;
    if (modules != nullptr)
        m_pModule = modules->FindModule(moduleKey);
}

HWND CParmiraDialog::GetTabWindow() const {
    CWnd* parent = GetParent();
    return parent != nullptr ? parent->GetSafeHwnd() : nullptr;
}

BOOL CParmiraDialog::HasTableWindow() const {
    return m_pTable != nullptr && m_pTable->GetSafeHwnd() != nullptr;
}

void CParmiraDialog::SelectListPage(int index) {
    if (HasTableWindow())
        m_pTable->SelectListPage(index);
}

void CParmiraDialog::SetModuleAccessLevel(const CString& moduleKey, int level) {
    if (HasTableWindow())
        m_pTable->SetModuleAccessLevel(moduleKey, level);
}

BOOL CParmiraDialog::ExportAllToFile(const CString& path) {
    // A frame that never gets a window: only its collection and writer run.
    CVarTable table;
    table.SetModule(m_pModule);
    return table.ExportAllToFile(path);
}

BOOL CParmiraDialog::OnInitDialog() {
    EnableVisualStyle(TRUE);
    CZorSkinPDialog::OnInitDialog();
    CLocalResource scope(theApp.m_hResource);

    theApp.AddLanguageListener(this);
    if (IHostMessageBus* bus = theApp.GetMessageBus())
        bus->Subscribe(IID_IMessage_ModuleEvent, AsSink<IMessage_ModuleEvent>(this));
    theApp.AddActiveViewListener(this);

    if (m_pTable == nullptr) {
        if (CWnd* placeholder = GetDlgItem(int(IDC_TABLE_PLACEHOLDER))) {
            m_pTable = new CVarTable;
            m_pTable->SetPanel(this);
            m_pTable->SetWorkspace(m_pProject != nullptr ? m_pProject->GetWorkspace() : nullptr);
            m_pTable->SetModule(m_pModule);
            if (m_pTable->Create(IDD_VAR_TABLE, placeholder)) {
                CRect rc;
                placeholder->GetClientRect(&rc);
                m_pTable->MoveWindow(&rc);
            }
        }
    }

    AddAnchor(IDC_TABLE_PLACEHOLDER, AnchorTopLeft, AnchorBottomRight);
    ArrangeStrip();

    delete m_pTranslator;
    m_pTranslator = theApp.MakeWindowTranslator(GetSafeHwnd());
    ShowNotice();
    UpdateData(FALSE);
    return TRUE;
}

void CParmiraDialog::ShowNotice() {
    CString text;
    if (m_pModule != nullptr && !m_pModule->IsOnline()) {
        if (IHostUiService* ui = theApp.GetUiService())
            ui->TranslateText(text, CString("设备离线."));
    } else if (m_pTable != nullptr && m_pTable->IsProductLine13(m_pModule)) {
        if (IHostUiService* ui = theApp.GetUiService())
            ui->GetString(text, theApp.m_hResource, IDS_FACTORY_NOTICE, 0);
    }
    CWnd* strip = GetDlgItem(int(IDC_NOTICE_STRIP));
    if (strip == nullptr)
        return;
    if (m_pNotice == nullptr) {
        m_pNotice = new CZorSkinPTextGauge;
        m_pNotice->Create(strip, 100, 20);
    }
    m_pNotice->SetText(text.GetString());
}

CString CParmiraDialog::GetNoticeText() const {
    return m_pNotice != nullptr ? m_pNotice->GetText() : CString();
}

void CParmiraDialog::OnSize(UINT nType, int cx, int cy) {
    CZorSkinPDialog::OnSize(nType, cx, cy);
    ArrangeStrip();
    CWnd* placeholder = GetDlgItem(int(IDC_TABLE_PLACEHOLDER));
    if (placeholder != nullptr && HasTableWindow()) {
        CRect rc;
        placeholder->GetClientRect(&rc);
        m_pTable->MoveWindow(&rc);
    }
}

void CParmiraDialog::DoDataExchange(CDataExchange* pDX) {
    CZorSkinPDialog::DoDataExchange(pDX);
    DDX_Text(pDX, int(IDC_TOTAL_COUNT), m_nTotalCount);
    DDX_Text(pDX, int(IDC_CURRENT_COUNT), m_nCurrentCount);
}

void CParmiraDialog::OnDestroy() {
    CZorSkinPDialog::OnDestroy();
    if (m_pTable != nullptr) {
        if (m_pTable->GetSafeHwnd() != nullptr)
            m_pTable->DestroyWindow();
        delete m_pTable;
        m_pTable = nullptr;
    }
    theApp.RemoveLanguageListener(this);
    if (IHostMessageBus* bus = theApp.GetMessageBus())
        bus->Unsubscribe(IID_IMessage_ModuleEvent, AsSink<IMessage_ModuleEvent>(this));
    theApp.RemoveActiveViewListener(this);
    // Last: the owner deletes this object.
    if (CImplementation* owner = m_pOwner) {
        m_pOwner = nullptr;
        owner->OnPanelDestroyed(this);
    }
}

BOOL CParmiraDialog::OnHelpInfo(HELPINFO* pHelpInfo) {
    IHostHelpService* help = theApp.GetHelpService();
    IHostVarUtil* util = theApp.GetVarUtil();
    if (help == nullptr || util == nullptr)
        return CZorSkinPDialog::OnHelpInfo(pHelpInfo);
    CString file;
    util->GetHelpFile(file);
    return help->ShowHelp(0, file, "[Parmira] CPanelMainDialog::OnHelpInfo", 15);
}

LRESULT CParmiraDialog::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == UM_LANGUAGE_CHANGED) {
        OnLanguageChangedMessage();
        return 0;
    }
    if (message == UM_UPDATE_VAR_COUNT) {
        if (wParam != 0)
            m_nTotalCount = int(lParam);
        m_nCurrentCount = int(lParam);
        UpdateData(FALSE);
        return 0;
    }
    return CZorSkinPDialog::WindowProc(message, wParam, lParam);
}

// Only posts: the host raises the event from inside its own work.
void CParmiraDialog::OnLanguageChanged() {
    if (GetSafeHwnd() != nullptr)
        PostMessage(UM_LANGUAGE_CHANGED);
}

void CParmiraDialog::OnLanguageChangedMessage() {
    CLocalResource scope(theApp.m_hResource);
    IHostTabManager* tabs = theApp.GetTabManager();
    IHostUiService* ui = theApp.GetUiService();
    if (tabs != nullptr && ui != nullptr) {
        CString caption;
        ui->GetString(caption, theApp.m_hResource, IDS_PARAMETER_LIST, 0);
        tabs->RenameTab(GetTabWindow(), caption);
        ui->RetranslateWindow(GetSafeHwnd());
    }
    if (m_pTranslator != nullptr)
        m_pTranslator->Retranslate(0);
    // Texts of another length: labels and tools take their new widths.
    ShowNotice();
    ArrangeStrip();
    if (HasTableWindow())
        m_pTable->ShowPagesInLanguage();
}

BOOL CParmiraDialog::IsOwnModule(const CString& moduleKey) const {
    if (m_pModule == nullptr)
        return FALSE;
    CString key;
    m_pModule->GetModuleKey(key);
    return key == moduleKey;
}

void CParmiraDialog::OnModuleRemoved(const CString& moduleKey) {
    if (!IsOwnModule(moduleKey))
        return;
    if (HasTableWindow())
        m_pTable->StopRefresh();
    if (IHostTabManager* tabs = theApp.GetTabManager())
        tabs->CloseTab(GetTabWindow()); // may destroy and delete this panel
}

void CParmiraDialog::OnModuleRenamed(const CString& moduleKey, const CString& newName) {
    if (!IsOwnModule(moduleKey))
        return;
    IHostTabManager* tabs = theApp.GetTabManager();
    if (tabs == nullptr)
        return;
    CString caption;
    if (!newName.IsEmpty())
        caption = "[" + newName + "]";
    if (IHostUiService* ui = theApp.GetUiService()) {
        CString list;
        ui->GetString(list, theApp.m_hResource, IDS_PARAMETER_LIST, 0);
        caption += list;
    }
    tabs->RenameTab(GetTabWindow(), caption);
}
