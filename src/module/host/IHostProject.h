// The open project of the host. Implemented by the host; host-owned, from
// IHostProjectRoot::GetProject.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"

class IHostProject : public IBaseInterface {
public:
    // The project's workspace, or null. Host-owned.
    virtual IHostWorkspace* GetWorkspace() = 0;
    // The state of the project's communication, or null. Host-owned.
    virtual IHostCommState* GetCommState() = 0;
    // Kind of the connection to the drives (2 and 6 matter to the oscilloscope guard).
    virtual int GetConnectionKind() = 0;
};
