#include "zorhost/services/HostTabManager.h"

#include <afx/afxqt.h>

#include <QResizeEvent>
#include <QTabWidget>
#include <QWidget>

#include <algorithm>

namespace zorhost {

namespace {

// A tab's page: keeps the framework windows built inside it as large as the page, as a
// view fills its frame.
class TabPage : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void resizeEvent(QResizeEvent* event) override {
        QWidget::resizeEvent(event);
        for (QWidget* child : findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
            HWND h = AfxHandleFromWidget(child);
            CWnd* wnd = h != nullptr ? CWnd::FromHandle(h) : nullptr;
            if (wnd != nullptr)
                wnd->MoveWindow(0, 0, width(), height(), TRUE);
        }
    }
};

} // namespace

CHostTabManager::CHostTabManager(QTabWidget* tabs) : m_widget(tabs) {
    if (tabs == nullptr)
        return;
    tabs->setTabsClosable(true);
    m_closeRequested = QObject::connect(tabs, &QTabWidget::tabCloseRequested, tabs, [this](int i) {
        if (HWND h = ParentAt(i))
            CloseTab(h);
    });
    m_currentChanged = QObject::connect(tabs, &QTabWidget::currentChanged, tabs, [this](int i) {
        if (!m_onActivated)
            return;
        if (const Tab* tab = Find(ParentAt(i)))
            m_onActivated(tab->context);
    });
}

CHostTabManager::~CHostTabManager() {
    QObject::disconnect(m_closeRequested);
    QObject::disconnect(m_currentChanged);
    CloseAll();
}

const CHostTabManager::Tab* CHostTabManager::Find(HWND parent) const {
    if (parent == nullptr)
        return nullptr;
    auto it = std::find_if(m_tabs.begin(), m_tabs.end(),
                           [&](const Tab& t) { return t.handle == parent; });
    return it != m_tabs.end() ? &*it : nullptr;
}

const CHostTabManager::Tab* CHostTabManager::FindPage(const QWidget* page) const {
    if (page == nullptr)
        return nullptr;
    auto it =
        std::find_if(m_tabs.begin(), m_tabs.end(), [&](const Tab& t) { return t.page == page; });
    return it != m_tabs.end() ? &*it : nullptr;
}

BOOL CHostTabManager::CreateTab(HWND& parent, RECT& rect, uintptr_t viewContext,
                                const CString& caption, const CString& /*extra*/) {
    parent = nullptr;
    if (m_widget == nullptr)
        return FALSE;
    auto* page = new TabPage;
    // The page takes the size of the tab area before the panel is built in it, so that the
    // rectangle handed out is the one the panel will have.
    page->resize(m_widget->currentWidget() != nullptr ? m_widget->currentWidget()->size()
                                                      : m_widget->size());
    Tab tab;
    tab.page = page;
    tab.context = viewContext;
    tab.handle = AfxWrapHostWidget(page);
    if (tab.handle == nullptr) {
        delete page;
        return FALSE;
    }
    m_tabs.push_back(tab);
    const int index = m_widget->addTab(tab.page, AfxToQString(caption));
    m_widget->setCurrentIndex(index);
    parent = tab.handle;
    rect = RECT{0, 0, tab.page->width(), tab.page->height()};
    return TRUE;
}

void CHostTabManager::ActivateTab(HWND parent) {
    if (const Tab* tab = Find(parent); tab != nullptr && m_widget != nullptr)
        m_widget->setCurrentWidget(tab->page);
}

void CHostTabManager::RenameTab(HWND parent, const CString& caption) {
    const Tab* tab = Find(parent);
    if (tab == nullptr || m_widget == nullptr)
        return;
    const int index = m_widget->indexOf(tab->page);
    if (index >= 0)
        m_widget->setTabText(index, AfxToQString(caption));
}

void CHostTabManager::CloseTab(HWND parent) {
    auto it = std::find_if(m_tabs.begin(), m_tabs.end(),
                           [&](const Tab& t) { return t.handle == parent && parent != nullptr; });
    if (it == m_tabs.end())
        return;
    // Out of the list first: a panel's destruction may call back into the manager.
    const Tab tab = *it;
    m_tabs.erase(it);
    AfxReleaseHostWidget(tab.handle);
    if (m_widget != nullptr && tab.page != nullptr) {
        const int index = m_widget->indexOf(tab.page);
        if (index >= 0)
            m_widget->removeTab(index);
    }
    delete tab.page.data();
}

void CHostTabManager::CloseAll() {
    while (!m_tabs.empty())
        CloseTab(m_tabs.back().handle);
}

HWND CHostTabManager::ParentAt(int index) const {
    if (m_widget == nullptr)
        return nullptr;
    const Tab* tab = FindPage(m_widget->widget(index));
    return tab != nullptr ? tab->handle : nullptr;
}

HWND CHostTabManager::CurrentParent() const {
    return m_widget != nullptr ? ParentAt(m_widget->currentIndex()) : nullptr;
}

QWidget* CHostTabManager::PageOf(HWND parent) const {
    const Tab* tab = Find(parent);
    return tab != nullptr ? tab->page : nullptr;
}

uintptr_t CHostTabManager::ContextOf(HWND parent) const {
    const Tab* tab = Find(parent);
    return tab != nullptr ? tab->context : 0;
}

} // namespace zorhost
