// CParmiraDialog: the panel the host embeds in one of its tabs. It holds the status strip
// and the table frame, hears language changes, module removal and renaming, and hands
// itself back to its owner when its window goes.
#pragma once

#include "module/host/HostFwd.h"
#include "module/host/IMessage_LanguageChanged.h"
#include "module/host/IMessage_MDIActive.h"
#include "module/host/IMessage_ModuleEvent.h"

#include <skin/ZorSkin.h>

class CImplementation;
class CVarTable;
class CZorSkinPTextGauge;

// Posted to the panel by OnLanguageChanged; the work runs when it arrives.
constexpr UINT UM_LANGUAGE_CHANGED = 5156;

class CParmiraDialog : public CZorSkinPDialog,
                       public IMessage_LanguageChanged,
                       public IMessage_MDIActive,
                       public IMessage_ModuleEvent {
public:
    CParmiraDialog();
    ~CParmiraDialog() override;

    void SetProject(IHostProject* project) { m_pProject = project; }
    // Remembers the key and resolves it to the module object through the project.
    void SetModuleKey(const CString& moduleKey);
    void SetModule(IHostDeviceModule* module) { m_pModule = module; }
    void SetOwner(CImplementation* owner) { m_pOwner = owner; }

    IHostDeviceModule* GetModule() const { return m_pModule; }
    IHostProject* GetProject() const { return m_pProject; }
    CImplementation* GetOwner() const { return m_pOwner; }
    // The table frame; null before OnInitDialog and after OnDestroy.
    CVarTable* GetTable() const { return m_pTable; }
    // What the notice strip shows: that the drive is offline; else the factory notice
    // of line 13, empty for all others.
    CString GetNoticeText() const;
    // Renews the notice strip for the module's state.
    void ShowNotice();
    const CString& GetModuleKeyText() const { return m_strModuleKey; }
    // The tab's window the panel lives in.
    HWND GetTabWindow() const;

    // Forwarded to the table frame when it has a window.
    void SelectListPage(int index);
    void SetModuleAccessLevel(const CString& moduleKey, int level);
    // Writes the module's parameter table to `path` through a windowless frame; 1 when
    // the file was written.
    BOOL ExportAllToFile(const CString& path);

    // IBaseInterface (shared by the three listener bases): the panel is not released
    // through a listener.
    void Release() override {}
    void OnLanguageChanged() override;
    void OnActiveViewNotify1(uintptr_t) override {}
    void OnActiveViewNotify2(uintptr_t) override {}
    void OnModuleNotify1(uintptr_t) override {}
    void OnModuleRemoved(const CString& moduleKey) override;
    void OnModuleNotify3(uintptr_t) override {}
    void OnModuleRenamed(const CString& moduleKey, const CString& newName) override;

    int m_nTotalCount = 0;
    int m_nCurrentCount = 0;

protected:
    BOOL OnInitDialog() override;
    void OnDestroy() override;
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnHelpInfo(HELPINFO* pHelpInfo) override;
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    void OnSize(UINT nType, int cx, int cy) override;

private:
    void OnLanguageChangedMessage();
    BOOL IsOwnModule(const CString& moduleKey) const;
    BOOL HasTableWindow() const;
    // The counts and the notice along the bottom edge, each label as wide as its text.
    void ArrangeStrip();

    CImplementation* m_pOwner = nullptr;
    IHostProject* m_pProject = nullptr;
    IHostDeviceModule* m_pModule = nullptr;
    CString m_strModuleKey;
    IHostWindowTranslator* m_pTranslator = nullptr;
    CVarTable* m_pTable = nullptr;
    CZorSkinPTextGauge* m_pNotice = nullptr;
};
