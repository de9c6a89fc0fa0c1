// Internal: the storage behind a resource handle.
#pragma once

#include <afx/afxres.h>
#include <afx/afxwin.h>

#include <QPixmap>

#include <map>
#include <memory>
#include <mutex>
#include <string>

struct HICON__ {
    QPixmap pixmap;
};

struct HINSTANCE__ {
    std::string name;
    std::map<UINT, std::string> strings;
    std::map<UINT, std::unique_ptr<DlgTemplate>> dialogs;
    std::map<UINT, std::unique_ptr<MenuTemplate>> menus;
    std::map<UINT, std::unique_ptr<HICON__>> icons;
    // Module libraries only:
    void* library = nullptr;
    CWinApp* app = nullptr;
};

namespace afx_internal {
// Guards every resource table; registration may happen on a loader thread.
std::mutex& ResourceMutex();
// Every live handle, oldest first (the program's own first).
std::vector<HINSTANCE> AllHandles();
} // namespace afx_internal
