// Internal: the storage behind a resource handle.
#pragma once

#include <afx/afxres.h>

#include <map>
#include <mutex>
#include <string>

struct HINSTANCE__ {
    std::string name;
    std::map<UINT, std::string> strings;
};

namespace afx_internal {
// Guards every resource table; registration may happen on a loader thread.
std::mutex& ResourceMutex();
} // namespace afx_internal
