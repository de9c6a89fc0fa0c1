#include "module/Implementation.h"

#include "module/InterfaceManager.h"
#include "module/LocalResource.h"
#include "module/ModuleResources.h"
#include "module/ParmiraApp.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostModuleManager.h"
#include "module/host/IHostProductInfo.h"
#include "module/host/IHostTabManager.h"
#include "module/host/IHostUiService.h"
#include "sets/OneKeyParseRecipeDialog.h"
#include "table/ParmiraDialog.h"

CImplementation::~CImplementation() {
    if (m_pPanel == nullptr)
        return;
    CLocalResource scope(theApp.m_hResource);
    // Destroying the window runs the panel's OnDestroy, which hands it back to
    // OnPanelDestroyed; whatever is left (a panel without window) goes here.
    if (m_pPanel->GetSafeHwnd() != nullptr)
        m_pPanel->DestroyWindow();
    delete m_pPanel;
    m_pPanel = nullptr;
}

void CImplementation::Release() {
    CInterfaceManager* manager = m_pManager;
    if (manager == nullptr)
        return;
    CIIDObj* entry = manager->FindByInstance(this);
    if (entry == nullptr)
        return;
    if (IHostModuleManager* host = theApp.GetModuleManager()) {
        IBaseInterface* self = this;
        host->ReleaseInstance(GUID(entry->iid), &self);
    }
    // The host may have given us back through SafeRelease meanwhile; look again.
    manager->Destroy(this); // deletes this
}

void CImplementation::OnPanelDestroyed(CParmiraDialog* panel) {
    if (panel == nullptr || panel != m_pPanel)
        return;
    m_pPanel = nullptr;
    delete panel;
}

namespace {

// "%s(%s_%d)" for the product kinds that carry a sub name, else "%s(%d)"; empty when the
// module or its product can't be had.
CString DeviceCaption(IHostDeviceModule* module) {
    CString caption;
    if (module == nullptr)
        return caption;
    IHostProductInfo* product = module->GetProductInfo();
    if (product == nullptr)
        return caption;
    CString name;
    module->GetDisplayName(name);
    const int kind = product->GetProductKind();
    if (kind == 0 || kind == 5 || kind == 7) {
        CString sub;
        module->GetSubName(sub);
        caption.Format("%s(%s_%d)", name.GetString(), sub.GetString(), module->GetAxisIndex());
    } else {
        caption.Format("%s(%d)", name.GetString(), module->GetAxisIndex());
    }
    return caption;
}

CString ParameterListText() {
    CString text;
    if (IHostUiService* ui = theApp.GetUiService())
        ui->GetString(text, theApp.m_hResource, IDS_PARAMETER_LIST, 0);
    return text;
}

} // namespace

void CImplementation::ShowPanel(uintptr_t viewContext, const CString& moduleKey) {
    CLocalResource scope(theApp.m_hResource);
    if (m_pPanel != nullptr) {
        if (IHostTabManager* tabs = theApp.GetTabManager())
            tabs->ActivateTab(m_pPanel->GetTabWindow());
        return;
    }
    IHostTabManager* tabs = theApp.GetTabManager();
    if (tabs == nullptr)
        return;
    CString caption = DeviceCaption(theApp.FindModule(moduleKey));
    caption += ParameterListText();

    HWND parent = nullptr;
    RECT rect{0, 0, 0, 0};
    tabs->CreateTab(parent, rect, viewContext, caption, CString());
    if (parent == nullptr)
        return;
    CWnd* parentWnd = CWnd::FromHandle(parent);
    if (parentWnd == nullptr)
        return;

    auto* panel = new CParmiraDialog;
    panel->SetProject(theApp.GetProject());
    panel->SetModuleKey(moduleKey);
    panel->SetOwner(this);
    m_pPanel = panel;
    if (!panel->Create(IDD_PARMIRA_PANEL, parentWnd)) {
        // No window means no OnDestroy will come to hand it back.
        if (m_pPanel == panel) {
            m_pPanel = nullptr;
            delete panel;
        }
        return;
    }
    if (m_pPanel == panel && panel->GetSafeHwnd() != nullptr)
        panel->MoveWindow(&rect);
}

void CImplementation::OpenRecipeDialog(const CString& moduleKey) {
    CLocalResource scope(theApp.m_hResource);
    IHostDeviceModule* module = theApp.FindModule(moduleKey);
    if (module == nullptr)
        return;
    // No panel is needed: the dialog works on the module alone.
    COneKeyParseRecipeDialog dialog;
    dialog.SetModule(module);
    dialog.DoModal();
}

void CImplementation::ExportParameters(const CString& path, const CString& moduleKey) {
    CLocalResource scope(theApp.m_hResource);
    // A panel that never gets a window: it only carries the module to the table.
    CParmiraDialog panel;
    panel.SetModule(theApp.FindModule(moduleKey));
    panel.ExportAllToFile(path);
}

void CImplementation::SelectListPage(int index) {
    CLocalResource scope(theApp.m_hResource);
    if (m_pPanel == nullptr || m_pPanel->GetSafeHwnd() == nullptr)
        return;
    m_pPanel->SelectListPage(index);
}

void CImplementation::SetModuleAccessLevel(const CString& moduleKey, int level) {
    CLocalResource scope(theApp.m_hResource);
    if (m_pPanel == nullptr || m_pPanel->GetSafeHwnd() == nullptr)
        return;
    m_pPanel->SetModuleAccessLevel(moduleKey, level);
}
