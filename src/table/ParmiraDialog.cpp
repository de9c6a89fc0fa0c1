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

CParmiraDialog::CParmiraDialog() : CZorSkinPDialog(IDD_PARMIRA_PANEL) {}

CParmiraDialog::~CParmiraDialog() {
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

// NOT DONE: the table frame is not written yet. Until it is, the panel has no frame, so
// these three find nothing to forward to.
void CParmiraDialog::SelectListPage(int /*index*/) {}

void CParmiraDialog::SetModuleAccessLevel(const CString& /*moduleKey*/, int /*level*/) {}

BOOL CParmiraDialog::ExportAllToFile(const CString& /*path*/) {
    return FALSE;
}

BOOL CParmiraDialog::OnInitDialog() {
    EnableVisualStyle(TRUE);
    CZorSkinPDialog::OnInitDialog();
    CLocalResource scope(theApp.m_hResource);

    theApp.AddLanguageListener(this);
    if (IHostMessageBus* bus = theApp.GetMessageBus())
        bus->Subscribe(IID_IMessage_ModuleEvent, AsSink<IMessage_ModuleEvent>(this));
    theApp.AddActiveViewListener(this);

    AddAnchor(IDC_TABLE_PLACEHOLDER, AnchorTopLeft, AnchorBottomRight);
    for (UINT id :
         {IDC_TOTAL_LABEL, IDC_TOTAL_COUNT, IDC_CURRENT_LABEL, IDC_CURRENT_COUNT, IDC_NOTICE_STRIP})
        AddAnchor(id, AnchorBottomLeft);

    if (IHostUiService* ui = theApp.GetUiService()) {
        delete m_pTranslator;
        m_pTranslator = ui->CreateWindowTranslator();
        if (m_pTranslator != nullptr) {
            m_pTranslator->Attach(GetSafeHwnd());
            m_pTranslator->Retranslate(0);
        }
    }
    // The factory notice needs the frame's device lists; without a frame it stays empty.
    UpdateData(FALSE);
    return TRUE;
}

void CParmiraDialog::DoDataExchange(CDataExchange* pDX) {
    CZorSkinPDialog::DoDataExchange(pDX);
    DDX_Text(pDX, int(IDC_TOTAL_COUNT), m_nTotalCount);
    DDX_Text(pDX, int(IDC_CURRENT_COUNT), m_nCurrentCount);
}

void CParmiraDialog::OnDestroy() {
    CZorSkinPDialog::OnDestroy();
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
    // NOT DONE: the table frame detaches from the module here once it exists.
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
