#include "zorhost/services/HostAccessService.h"

#include <algorithm>

namespace zorhost {

// The level also reaches the host on the module object (SetAccessLevel), which is where
// the reference host reads it.
void CHostAccessService::NotifyAccessLevel(const CString&, int) {}

void CHostAccessService::AddWatchVars(const CString& moduleKey,
                                      const std::vector<UINT>& addresses) {
    std::lock_guard lock(m_mutex);
    std::vector<UINT>& list = m_watch[moduleKey];
    for (UINT a : addresses)
        if (std::find(list.begin(), list.end(), a) == list.end())
            list.push_back(a);
}

std::vector<UINT> CHostAccessService::WatchList(const CString& moduleKey) const {
    std::lock_guard lock(m_mutex);
    auto it = m_watch.find(moduleKey);
    return it == m_watch.end() ? std::vector<UINT>() : it->second;
}

void CHostAccessService::ClearWatchList(const CString& moduleKey) {
    std::lock_guard lock(m_mutex);
    m_watch.erase(moduleKey);
}

} // namespace zorhost
