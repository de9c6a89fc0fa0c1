#include "afxres_p.h"

#include <afx/afxqt.h>
#include <afx/afxwin.h>

#include <QApplication>
#include <QCursor>
#include <QGuiApplication>

#include <dlfcn.h>

#include <mutex>

namespace {
std::mutex g_appMutex;
CWinApp* g_pending = nullptr;
CWinApp* g_current = nullptr;
CString g_loadError;
} // namespace

CWinApp::CWinApp(const char* lpszAppName) : m_pszAppName(lpszAppName) {
    std::lock_guard<std::mutex> lock(g_appMutex);
    g_pending = this;
}

CWinApp::~CWinApp() {
    std::lock_guard<std::mutex> lock(g_appMutex);
    if (g_pending == this)
        g_pending = nullptr;
    if (g_current == this)
        g_current = nullptr;
}

BOOL CWinApp::InitInstance() {
    return TRUE;
}
int CWinApp::ExitInstance() {
    return 0;
}

CWinApp* AfxGetApp() {
    std::lock_guard<std::mutex> lock(g_appMutex);
    return g_current ? g_current : g_pending;
}

HINSTANCE AfxStartApp(CWinApp* app, const char* name) {
    if (!app)
        return nullptr;
    HINSTANCE h = AfxCreateResourceHandle(name);
    h->app = app;
    app->m_hInstance = h;
    {
        std::lock_guard<std::mutex> lock(g_appMutex);
        if (g_pending == app)
            g_pending = nullptr;
    }
    const HINSTANCE previous = AfxGetResourceHandle();
    AfxSetResourceHandle(h);
    const BOOL ok = app->InitInstance();
    AfxSetResourceHandle(previous == h ? AfxGetInstanceHandle() : previous);
    if (!ok) {
        app->m_hInstance = nullptr;
        AfxFreeResourceHandle(h);
        return nullptr;
    }
    std::lock_guard<std::mutex> lock(g_appMutex);
    g_current = app;
    return h;
}

int AfxStopApp(CWinApp* app) {
    if (!app || !app->m_hInstance)
        return -1;
    HINSTANCE h = app->m_hInstance;
    const HINSTANCE previous = AfxGetResourceHandle();
    AfxSetResourceHandle(h);
    const int r = app->ExitInstance();
    AfxSetResourceHandle(previous == h ? AfxGetInstanceHandle() : previous);
    app->m_hInstance = nullptr;
    {
        std::lock_guard<std::mutex> lock(g_appMutex);
        if (g_current == app)
            g_current = nullptr;
    }
    AfxFreeResourceHandle(h);
    return r;
}

HMODULE AfxLoadLibrary(const char* path) {
    {
        std::lock_guard<std::mutex> lock(g_appMutex);
        g_pending = nullptr;
    }
    void* lib = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (!lib) {
        const char* err = dlerror();
        g_loadError = err ? err : "cannot open library";
        return nullptr;
    }
    CWinApp* app = nullptr;
    {
        // The library's static constructors have just registered its application object.
        std::lock_guard<std::mutex> lock(g_appMutex);
        app = g_pending;
    }
    HINSTANCE h = nullptr;
    if (app) {
        h = AfxStartApp(app, path);
        if (!h) {
            g_loadError = "the module's InitInstance failed";
            dlclose(lib);
            return nullptr;
        }
    } else {
        h = AfxCreateResourceHandle(path);
    }
    h->library = lib;
    g_loadError.Empty();
    return h;
}

BOOL AfxFreeLibrary(HMODULE h) {
    if (!h || !h->library)
        return FALSE;
    void* lib = h->library;
    if (h->app)
        AfxStopApp(h->app); // frees the handle
    else
        AfxFreeResourceHandle(h);
    // The handle, and the texts it held, are gone before the library's memory is.
    return dlclose(lib) == 0;
}

void* GetProcAddress(HMODULE h, const char* name) {
    return h && h->library ? dlsym(h->library, name) : nullptr;
}

CString AfxGetLoadError() {
    return g_loadError;
}

const char* AfxGetAppName() {
    CWinApp* app = AfxGetApp();
    return app && app->m_pszAppName ? app->m_pszAppName : "";
}

CWnd* AfxGetMainWnd() {
    if (CWinApp* app = AfxGetApp(); app && app->m_pMainWnd)
        return app->m_pMainWnd;
    QWidget* active = qApp ? QApplication::activeWindow() : nullptr;
    return active ? CWnd::FromHandle(AfxHandleFromWidget(active)) : nullptr;
}

BOOL GetCursorPos(POINT* lpPoint) {
    if (!lpPoint)
        return FALSE;
    const QPoint p = QCursor::pos();
    lpPoint->x = p.x();
    lpPoint->y = p.y();
    return TRUE;
}

SHORT GetKeyState(int nVirtKey) {
    const Qt::KeyboardModifiers m = QGuiApplication::queryKeyboardModifiers();
    bool down = false;
    if (nVirtKey == int(VK_SHIFT))
        down = m & Qt::ShiftModifier;
    else if (nVirtKey == int(VK_CONTROL))
        down = m & Qt::ControlModifier;
    else if (nVirtKey == int(VK_MENU))
        down = m & Qt::AltModifier;
    return down ? SHORT(0x8000) : SHORT(0);
}

CWaitCursor::CWaitCursor() {
    if (qApp) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        m_active = true;
    }
}

CWaitCursor::~CWaitCursor() {
    Restore();
}

void CWaitCursor::Restore() {
    if (m_active) {
        QApplication::restoreOverrideCursor();
        m_active = false;
    }
}
