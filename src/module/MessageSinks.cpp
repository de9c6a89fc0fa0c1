#include "module/MessageSinks.h"

#include "module/ParmiraApp.h"

void CMessageLanguageChanged::Release() {
    if (m_pApp != nullptr && m_pApp->m_pLanguageSink == this)
        m_pApp->m_pLanguageSink = nullptr;
    delete this;
}

// Listeners may take themselves out while they hear the event; Walk re-reads the length.
void CMessageLanguageChanged::OnLanguageChanged() {
    if (m_pApp == nullptr)
        return;
    m_pApp->languageListeners.Walk([](IMessage_LanguageChanged* l) { l->OnLanguageChanged(); });
}

void CMessageMDIActive::Release() {
    if (m_pApp != nullptr && m_pApp->m_pActiveViewSink == this)
        m_pApp->m_pActiveViewSink = nullptr;
    delete this;
}

void CMessageMDIActive::OnActiveViewNotify1(uintptr_t view) {
    if (m_pApp == nullptr)
        return;
    m_pApp->activeViewListeners.Walk(
        [view](IMessage_MDIActive* l) { l->OnActiveViewNotify1(view); });
}

void CMessageMDIActive::OnActiveViewNotify2(uintptr_t view) {
    if (m_pApp == nullptr)
        return;
    m_pApp->activeViewListeners.Walk(
        [view](IMessage_MDIActive* l) { l->OnActiveViewNotify2(view); });
}
