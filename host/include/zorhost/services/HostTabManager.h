// IHostTabManager on a QTabWidget of the host's main window. Each tab is a page widget of
// the host, wrapped as a framework window so that a plug-in can build its panel inside;
// the panel is kept the size of the page. User-interface thread only.
#pragma once

#include "module/host/IHostTabManager.h"

#include <QMetaObject>
#include <QPointer>

#include <functional>
#include <vector>

class QTabWidget;
class QWidget;

namespace zorhost {

class CHostTabManager : public IHostTabManager {
public:
    // The tab widget stays the caller's; tabs made here are closed by the destructor.
    explicit CHostTabManager(QTabWidget* tabs);
    ~CHostTabManager() override;
    CHostTabManager(const CHostTabManager&) = delete;
    CHostTabManager& operator=(const CHostTabManager&) = delete;

    BOOL CreateTab(HWND& parent, RECT& rect, uintptr_t viewContext, const CString& caption,
                   const CString& extra) override;
    void ActivateTab(HWND parent) override;
    void RenameTab(HWND parent, const CString& caption) override;
    void CloseTab(HWND parent) override;

    // Host side.
    int TabCount() const { return int(m_tabs.size()); }
    // The parent window of the tab at `index` of the tab widget; null for a tab not made
    // here.
    HWND ParentAt(int index) const;
    HWND CurrentParent() const;
    QWidget* PageOf(HWND parent) const;
    // The view context the tab was made with; 0 for an unknown parent.
    uintptr_t ContextOf(HWND parent) const;
    // Closes every tab made here (their panels are destroyed).
    void CloseAll();
    // Called with a tab's view context when it becomes the current one.
    void SetActivationHandler(std::function<void(uintptr_t viewContext)> handler) {
        m_onActivated = std::move(handler);
    }

private:
    struct Tab {
        QPointer<QWidget> page; // owned, unless the tab widget took it down first
        HWND handle = nullptr;
        uintptr_t context = 0;
    };
    const Tab* Find(HWND parent) const;
    const Tab* FindPage(const QWidget* page) const;

    QPointer<QTabWidget> m_widget;
    std::vector<Tab> m_tabs;
    std::function<void(uintptr_t)> m_onActivated;
    QMetaObject::Connection m_closeRequested, m_currentChanged;
};

} // namespace zorhost
