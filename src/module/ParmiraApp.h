// CParmiraApp: the module's one application object. It holds what the host gave at start
// (context and query callback), the listener lists that the two application sinks fan out
// to, the registry of interface instances and the module's resource handle. Host services
// are asked for afresh on every use and never kept.
#pragma once

#include "module/TemplateList.h"
#include "module/host/HostFwd.h"
#include "module/host/ModuleExports.h"

#include <afx/afxcoll.h>
#include <afx/afxwin.h>

class CInterfaceManager;
class CMessageLanguageChanged;
class CMessageMDIActive;

class CParmiraApp : public CWinApp {
public:
    CParmiraApp();
    ~CParmiraApp() override;

    BOOL InitInstance() override;
    int ExitInstance() override;

    // The export SetQueryInterfaceCallback.
    void SetQueryInterfaceCallback(uintptr_t context, QueryInterfaceCallback callback);
    BOOL IsSupportedInterface(const GUID& iid) const;

    // One accessor per service; null when the host has none or gave no callback yet.
    IHostMessageBus* GetMessageBus() const;
    IHostModuleManager* GetModuleManager() const;
    IHostProjectRoot* GetProjectRoot() const;
    IHostUiService* GetUiService() const;
    // A translator of the host attached to `window` and run once; null without the
    // service. The caller owns it.
    IHostWindowTranslator* MakeWindowTranslator(HWND window) const;
    // The text of string `id` through the host's text service; else the module's own
    // table as written.
    CString LoadText(UINT id) const;
    IHostTabManager* GetTabManager() const;
    IHostVarUtil* GetVarUtil() const;
    IHostDeviceHelper* GetDeviceHelper() const;
    IHostProductDb* GetProductDb() const;
    IHostRefreshService* GetRefreshService() const;
    IHostTransferService* GetTransferService() const;
    IHostAccessService* GetAccessService() const;
    IHostParamRecordFactory* GetParamRecordFactory() const;
    IHostVarPicker* GetVarPicker() const;
    IHostHelpService* GetHelpService() const;

    // Objects made anew by the module manager; the caller gives them back with Release().
    IHostWorkerThread* CreateWorkerThread() const;
    IParamFile* CreateParamFile() const;
    IMemoryStream* CreateMemoryStream() const;
    IHostProgressBox* CreateProgressBox() const;

    BOOL AddLanguageListener(IMessage_LanguageChanged* listener);
    BOOL RemoveLanguageListener(IMessage_LanguageChanged* listener);
    BOOL AddActiveViewListener(IMessage_MDIActive* listener);
    BOOL RemoveActiveViewListener(IMessage_MDIActive* listener);

    // The module the host drives a drive module of, found through the project chain;
    // null at any missing link.
    IHostDeviceModule* FindModule(const CString& moduleKey) const;
    IHostProject* GetProject() const;

    CTemplateList<IMessage_LanguageChanged*, IMessage_LanguageChanged*> languageListeners;
    CTemplateList<IMessage_MDIActive*, IMessage_MDIActive*> activeViewListeners;
    uintptr_t m_context = 0;
    QueryInterfaceCallback m_pfnQuery = nullptr;
    CList<GUID, GUID> supportedInterfaces;
    CInterfaceManager* m_pInterfaceManager = nullptr;
    // Taken in InitInstance; every resource scope of the module opens with it.
    HINSTANCE m_hResource = nullptr;
    CMessageLanguageChanged* m_pLanguageSink = nullptr;
    CMessageMDIActive* m_pActiveViewSink = nullptr;

private:
    void* Query(const GUID& iid) const;
    IBaseInterface* CreateHostObject(const GUID& iid) const;
};

extern CParmiraApp theApp;
