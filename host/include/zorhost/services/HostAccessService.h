// Access levels as the host hears of them, and the host's monitor list
// (IHostAccessService).
#pragma once

#include "module/host/IHostAccessService.h"

#include <functional>
#include <map>
#include <mutex>
#include <vector>

namespace zorhost {

class CHostAccessService : public IHostAccessService {
public:
    // Told of every change, e.g. for the program's status bar.
    using LevelListener = std::function<void(const CString& moduleKey, int level)>;

    void SetLevelListener(LevelListener listener) { m_listener = std::move(listener); }

    void NotifyAccessLevel(const CString& moduleKey, int level) override;
    // Adds the addresses to the module's monitor list, each once, in order of arrival.
    void AddWatchVars(const CString& moduleKey, const std::vector<UINT>& addresses) override;

    // -1 when the module never reported one.
    int NotifiedLevel(const CString& moduleKey) const;
    std::vector<UINT> WatchList(const CString& moduleKey) const;
    void ClearWatchList(const CString& moduleKey);

private:
    mutable std::mutex m_mutex;
    std::map<CString, int> m_levels;
    std::map<CString, std::vector<UINT>> m_watch;
    LevelListener m_listener;
};

} // namespace zorhost
