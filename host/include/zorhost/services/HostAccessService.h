// The host's monitor list, and the access levels the module reports (IHostAccessService).
#pragma once

#include "module/host/IHostAccessService.h"

#include <map>
#include <mutex>
#include <vector>

namespace zorhost {

class CHostAccessService : public IHostAccessService {
public:
    void NotifyAccessLevel(const CString& moduleKey, int level) override;
    // Adds the addresses to the module's monitor list, each once, in order of arrival.
    void AddWatchVars(const CString& moduleKey, const std::vector<UINT>& addresses) override;

    std::vector<UINT> WatchList(const CString& moduleKey) const;
    void ClearWatchList(const CString& moduleKey);

private:
    mutable std::mutex m_mutex;
    std::map<CString, std::vector<UINT>> m_watch;
};

} // namespace zorhost
