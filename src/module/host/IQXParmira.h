// The one interface the module offers: the host drives the parameter view through it.
// Implemented by the module; got by the host with CreateInterFace. No operation gives
// a result. Slot order is fixed.
#pragma once

#include "module/host/BaseInterface.h"

class IQXParmira : public IBaseInterface {
public:
    static constexpr GUID kIID = GuidFromString("9CC81723-4D17-4AA5-9B2B-865BD951DD58");

    // 3. Creates the panel of `moduleKey` in a new tab, or activates the panel that
    //    exists. `viewContext` goes to IHostTabManager::CreateTab unread.
    virtual void ShowPanel(uintptr_t viewContext, const CString& moduleKey) = 0;
    // 4. Runs the recipe dialog of the module modally; nothing for an unknown module.
    virtual void OpenRecipeDialog(const CString& moduleKey) = 0;
    // 5. Reserved; does nothing.
    virtual void Reserved5() = 0;
    // 6. Writes a parameter table of the module to `path` without any window.
    virtual void ExportParameters(const CString& path, const CString& moduleKey) = 0;
    // 7. Brings list page `index` (0 or 1) of the open panel to the top.
    virtual void SelectListPage(int index) = 0;
    // 8. Sets the access level of a module and rebuilds the open panel's tree.
    virtual void SetModuleAccessLevel(const CString& moduleKey, int level) = 0;
    // 9. Reserved; does nothing, arguments not read.
    virtual void Reserved9(uintptr_t a, uintptr_t b, uintptr_t c) = 0;
    // 10. Reserved; does nothing, argument not read.
    virtual void Reserved10(uintptr_t a) = 0;
};

inline constexpr GUID IID_IQXParmira = IQXParmira::kIID;
