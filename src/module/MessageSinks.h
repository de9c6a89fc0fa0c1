// The two sinks the application object subscribes at the host's bus. Each passes the
// event on to every listener of its list in the application object.
#pragma once

#include "module/host/IMessage_LanguageChanged.h"
#include "module/host/IMessage_MDIActive.h"

class CParmiraApp;

class CMessageLanguageChanged : public IMessage_LanguageChanged {
public:
    explicit CMessageLanguageChanged(CParmiraApp* app) : m_pApp(app) {}
    ~CMessageLanguageChanged() override = default;
    // Ends the sink and clears the application's pointer to it.
    void Release() override;
    void OnLanguageChanged() override;

private:
    CParmiraApp* m_pApp;
};

class CMessageMDIActive : public IMessage_MDIActive {
public:
    explicit CMessageMDIActive(CParmiraApp* app) : m_pApp(app) {}
    ~CMessageMDIActive() override = default;
    void Release() override;
    void OnActiveViewNotify1(uintptr_t view) override;
    void OnActiveViewNotify2(uintptr_t view) override;

private:
    CParmiraApp* m_pApp;
};
