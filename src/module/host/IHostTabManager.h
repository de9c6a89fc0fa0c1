// Service: tabs of the host's main window that hold module panels. Implemented by the
// host; got through the query callback under kIID. User-interface thread only.
#pragma once

#include "module/host/BaseInterface.h"

class IHostTabManager : public IBaseInterface {
public:
    static constexpr GUID kIID = GuidFromString("4BC9363D-E913-4E0C-A9C4-E1C7D23087E4");

    // Opens a tab with `caption`. `parent` receives the window a panel is created in
    // (null on failure), `rect` its client rectangle. `viewContext` is the word the host
    // gave to IQXParmira::ShowPanel; `extra` is empty in every use. Nonzero on success.
    virtual BOOL CreateTab(HWND& parent, RECT& rect, uintptr_t viewContext, const CString& caption,
                           const CString& extra) = 0;
    // Brings the tab whose parent window is `parent` to the front.
    virtual void ActivateTab(HWND parent) = 0;
    // Sets the caption of the tab of `parent`.
    virtual void RenameTab(HWND parent, const CString& caption) = 0;
    // Closes the tab of `parent`; its windows are destroyed.
    virtual void CloseTab(HWND parent) = 0;
};

inline constexpr GUID IID_IHostTabManager = IHostTabManager::kIID;
