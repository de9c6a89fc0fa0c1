// Service: access levels and the monitor view of the host. Implemented by the host; got
// through the query callback under kIID.
#pragma once

#include "module/host/BaseInterface.h"

#include <vector>

class IHostAccessService : public IBaseInterface {
public:
    static constexpr GUID kIID = GuidFromString("84ECB726-1736-404D-806B-9FE2AEA2ABB6");

    // Tells the host that module `moduleKey` now has access level `level`.
    virtual void NotifyAccessLevel(const CString& moduleKey, int level) = 0;
    // Hands the variables at `addresses` of module `moduleKey` to the host's monitor view.
    virtual void AddWatchVars(const CString& moduleKey, const std::vector<UINT>& addresses) = 0;
};

inline constexpr GUID IID_IHostAccessService = IHostAccessService::kIID;
