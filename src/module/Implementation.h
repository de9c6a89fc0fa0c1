// CImplementation: the module's IQXParmira. It owns at most one panel at a time.
#pragma once

#include "module/host/IQXParmira.h"

class CInterfaceManager;
class CParmiraDialog;

class CImplementation : public IQXParmira {
public:
    explicit CImplementation(CInterfaceManager* manager) : m_pManager(manager) {}
    ~CImplementation() override;
    CImplementation(const CImplementation&) = delete;
    CImplementation& operator=(const CImplementation&) = delete;

    void Release() override;
    void ShowPanel(uintptr_t viewContext, const CString& moduleKey) override;
    void OpenRecipeDialog(const CString& moduleKey) override;
    void Reserved5() override {}
    void ExportParameters(const CString& path, const CString& moduleKey) override;
    void SelectListPage(int index) override;
    void SetModuleAccessLevel(const CString& moduleKey, int level) override;
    void Reserved9(uintptr_t, uintptr_t, uintptr_t) override {}
    void Reserved10(uintptr_t) override {}

    // Called by the panel as the last step of its OnDestroy: deletes it.
    void OnPanelDestroyed(CParmiraDialog* panel);

    CParmiraDialog* GetPanel() const { return m_pPanel; }

private:
    CInterfaceManager* m_pManager;
    CParmiraDialog* m_pPanel = nullptr;
};
