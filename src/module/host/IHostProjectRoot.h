// Service: the entry to the host's object model (project, workspace, modules).
// Implemented by the host; got through the query callback under kIID.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"

class IHostProjectRoot : public IBaseInterface {
public:
    static constexpr GUID kIID = GuidFromString("9499D7D1-08EE-418F-8806-500F61DA68CB");

    // The open project, or null when none is open. Host-owned.
    virtual IHostProject* GetProject() = 0;
};

inline constexpr GUID IID_IHostProjectRoot = IHostProjectRoot::kIID;
