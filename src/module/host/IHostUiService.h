// Service: texts, translation and look of windows. Implemented by the host; got through
// the query callback under kIID. User-interface thread only.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"

class IHostUiService : public IBaseInterface {
public:
    static constexpr GUID kIID = GuidFromString("01FD0382-4623-44D9-9C76-EBF3B3C919D4");

    // `text` = string `id` of the string table registered under `module` (the module's
    // resource handle), in the current language. `reserved` is 0. Nonzero when found;
    // else `text` is empty.
    virtual BOOL GetString(CString& text, HINSTANCE module, UINT id, int reserved) = 0;
    // A new translator for one window. Owned by the caller, who deletes it.
    virtual IHostWindowTranslator* CreateWindowTranslator() = 0;
    // Translates the texts of `window` and its children into the current language.
    virtual void RetranslateWindow(HWND window) = 0;
    // `translated` = `text` in the current language; `text` itself when there is no
    // translation.
    virtual void TranslateText(CString& translated, const CString& text) = 0;
    // Translates the entries of `menu` (and its popups) in place.
    virtual void TranslateMenu(HMENU menu) = 0;
    // Applies the host's skin to `window`; `style` and `flags` are 0 in every use.
    virtual void ApplySkin(HWND window, int style, int flags) = 0;
};

inline constexpr GUID IID_IHostUiService = IHostUiService::kIID;
