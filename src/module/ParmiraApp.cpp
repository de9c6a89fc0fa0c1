#include "module/ParmiraApp.h"

#include "groups/LoginDialog.h"
#include "groups/MultiSelectVarDialog.h"
#include "module/InterfaceManager.h"
#include "module/MessageSinks.h"
#include "module/ModuleResources.h"
#include "module/host/IHostAccessService.h"
#include "module/host/IHostDeviceHelper.h"
#include "module/host/IHostHelpService.h"
#include "module/host/IHostMessageBus.h"
#include "module/host/IHostModuleList.h"
#include "module/host/IHostModuleManager.h"
#include "module/host/IHostParamRecordFactory.h"
#include "module/host/IHostProductDb.h"
#include "module/host/IHostProgressBox.h"
#include "module/host/IHostProject.h"
#include "module/host/IHostProjectRoot.h"
#include "module/host/IHostRefreshService.h"
#include "module/host/IHostTabManager.h"
#include "module/host/IHostTransferService.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostVarPicker.h"
#include "module/host/IHostVarUtil.h"
#include "module/host/IHostWindowTranslator.h"
#include "module/host/IHostWorkerThread.h"
#include "module/host/IHostWorkspace.h"
#include "module/host/IMemoryStream.h"
#include "module/host/IParamFile.h"
#include "module/host/IQXParmira.h"
#include "pages/PageResources.h"
#include "table/TableResources.h"

#include <afx/afxres.h>

CParmiraApp theApp;

CParmiraApp::CParmiraApp() : CWinApp("Parmira") {
    m_pLanguageSink = new CMessageLanguageChanged(this);
    m_pActiveViewSink = new CMessageMDIActive(this);
    m_pInterfaceManager = new CInterfaceManager;
    if (supportedInterfaces.Find(IID_IQXParmira) == nullptr)
        supportedInterfaces.AddTail(IID_IQXParmira);
}

// Normally ExitInstance has emptied everything; this covers a module never started.
CParmiraApp::~CParmiraApp() {
    delete m_pInterfaceManager;
    m_pInterfaceManager = nullptr;
    delete m_pLanguageSink;
    m_pLanguageSink = nullptr;
    delete m_pActiveViewSink;
    m_pActiveViewSink = nullptr;
}

BOOL CParmiraApp::InitInstance() {
    m_hResource = AfxGetResourceHandle();
    RegisterModuleResources(m_hResource);
    RegisterTableResources(m_hResource);
    RegisterPageResources(m_hResource);
    RegisterLoginDialogResources(m_hResource);
    RegisterGroupDialogResources(m_hResource);
    return CWinApp::InitInstance();
}

int CParmiraApp::ExitInstance() {
    languageListeners.RemoveAll();
    activeViewListeners.RemoveAll();
    if (m_pLanguageSink != nullptr) {
        if (IHostMessageBus* bus = GetMessageBus())
            bus->Unsubscribe(IID_IMessage_LanguageChanged,
                             AsSink<IMessage_LanguageChanged>(m_pLanguageSink));
        m_pLanguageSink->Release();
        m_pLanguageSink = nullptr;
    }
    if (m_pActiveViewSink != nullptr) {
        if (IHostMessageBus* bus = GetMessageBus())
            bus->Unsubscribe(IID_IMessage_MDIActive, AsSink<IMessage_MDIActive>(m_pActiveViewSink));
        m_pActiveViewSink->Release();
        m_pActiveViewSink = nullptr;
    }
    // Closes every panel still open; they still reach the host while they go.
    CInterfaceManager* registry = m_pInterfaceManager;
    m_pInterfaceManager = nullptr;
    delete registry;
    m_context = 0;
    m_pfnQuery = nullptr;
    return CWinApp::ExitInstance();
}

void CParmiraApp::SetQueryInterfaceCallback(uintptr_t context, QueryInterfaceCallback callback) {
    m_context = context;
    m_pfnQuery = callback;
    if (callback == nullptr)
        return;
    // Not guarded against repetition: the host calls this once.
    if (m_pLanguageSink == nullptr)
        m_pLanguageSink = new CMessageLanguageChanged(this);
    if (m_pLanguageSink != nullptr) {
        if (IHostMessageBus* bus = GetMessageBus())
            bus->Subscribe(IID_IMessage_LanguageChanged,
                           AsSink<IMessage_LanguageChanged>(m_pLanguageSink));
    }
    if (m_pActiveViewSink == nullptr)
        m_pActiveViewSink = new CMessageMDIActive(this);
    if (m_pActiveViewSink == nullptr)
        return;
    if (IHostMessageBus* bus = GetMessageBus())
        bus->Subscribe(IID_IMessage_MDIActive, AsSink<IMessage_MDIActive>(m_pActiveViewSink));
}

BOOL CParmiraApp::IsSupportedInterface(const GUID& iid) const {
    return supportedInterfaces.Find(iid) != nullptr;
}

void* CParmiraApp::Query(const GUID& iid) const {
    void* out = nullptr;
    if (m_pfnQuery == nullptr)
        return nullptr;
    m_pfnQuery(m_context, &iid, &out);
    return out;
}

IBaseInterface* CParmiraApp::CreateHostObject(const GUID& iid) const {
    IHostModuleManager* manager = GetModuleManager();
    if (manager == nullptr)
        return nullptr;
    return manager->CreateInstance(iid);
}

// The second argument of both makers is a type name, which takes no parentheses.
// NOLINTBEGIN(bugprone-macro-parentheses)
#define PARMIRA_SERVICE(Getter, Interface)                                                         \
    Interface* CParmiraApp::Getter() const {                                                       \
        return static_cast<Interface*>(Query(Interface::kIID));                                    \
    }

PARMIRA_SERVICE(GetMessageBus, IHostMessageBus)
PARMIRA_SERVICE(GetModuleManager, IHostModuleManager)
PARMIRA_SERVICE(GetProjectRoot, IHostProjectRoot)
PARMIRA_SERVICE(GetUiService, IHostUiService)
PARMIRA_SERVICE(GetTabManager, IHostTabManager)
PARMIRA_SERVICE(GetVarUtil, IHostVarUtil)
PARMIRA_SERVICE(GetDeviceHelper, IHostDeviceHelper)
PARMIRA_SERVICE(GetProductDb, IHostProductDb)
PARMIRA_SERVICE(GetRefreshService, IHostRefreshService)
PARMIRA_SERVICE(GetTransferService, IHostTransferService)
PARMIRA_SERVICE(GetAccessService, IHostAccessService)
PARMIRA_SERVICE(GetParamRecordFactory, IHostParamRecordFactory)
PARMIRA_SERVICE(GetVarPicker, IHostVarPicker)
PARMIRA_SERVICE(GetHelpService, IHostHelpService)
#undef PARMIRA_SERVICE

#define PARMIRA_HOST_OBJECT(Creator, Interface)                                                    \
    Interface* CParmiraApp::Creator() const {                                                      \
        return static_cast<Interface*>(CreateHostObject(Interface::kIID));                         \
    }

PARMIRA_HOST_OBJECT(CreateWorkerThread, IHostWorkerThread)
PARMIRA_HOST_OBJECT(CreateParamFile, IParamFile)
PARMIRA_HOST_OBJECT(CreateMemoryStream, IMemoryStream)
PARMIRA_HOST_OBJECT(CreateProgressBox, IHostProgressBox)
#undef PARMIRA_HOST_OBJECT
// NOLINTEND(bugprone-macro-parentheses)

BOOL CParmiraApp::AddLanguageListener(IMessage_LanguageChanged* listener) {
    if (listener == nullptr)
        return FALSE;
    return languageListeners.Add(listener, listener);
}

BOOL CParmiraApp::RemoveLanguageListener(IMessage_LanguageChanged* listener) {
    if (listener == nullptr)
        return FALSE;
    return languageListeners.Remove(listener);
}

BOOL CParmiraApp::AddActiveViewListener(IMessage_MDIActive* listener) {
    if (listener == nullptr)
        return FALSE;
    return activeViewListeners.Add(listener, listener);
}

BOOL CParmiraApp::RemoveActiveViewListener(IMessage_MDIActive* listener) {
    if (listener == nullptr)
        return FALSE;
    return activeViewListeners.Remove(listener);
}

IHostProject* CParmiraApp::GetProject() const {
    IHostProjectRoot* root = GetProjectRoot();
    return root != nullptr ? root->GetProject() : nullptr;
}

IHostDeviceModule* CParmiraApp::FindModule(const CString& moduleKey) const {
    IHostProject* project = GetProject();
    if (project == nullptr)
        return nullptr;
    IHostWorkspace* workspace = project->GetWorkspace();
    if (workspace == nullptr)
        return nullptr;
    IHostModuleList* modules = workspace->GetModuleList();
    if (modules == nullptr)
        return nullptr;
    return modules->FindModule(moduleKey);
}

IHostWindowTranslator* CParmiraApp::MakeWindowTranslator(HWND window) const {
    IHostUiService* ui = GetUiService();
    IHostWindowTranslator* translator = ui != nullptr ? ui->CreateWindowTranslator() : nullptr;
    if (translator != nullptr) {
        translator->Attach(window);
        translator->Retranslate(0);
    }
    return translator;
}

CString CParmiraApp::LoadText(UINT id) const {
    CString text;
    if (IHostUiService* ui = GetUiService())
        if (ui->GetString(text, m_hResource, id, 0))
            return text;
    AfxLoadStringFrom(m_hResource, id, text);
    return text;
}
