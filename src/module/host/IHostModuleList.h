// The drive modules of a workspace. Implemented by the host; host-owned.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"

class IHostModuleList : public IBaseInterface {
public:
    // The module whose key equals `moduleKey` exactly, or null. Host-owned.
    virtual IHostDeviceModule* FindModule(const CString& moduleKey) = 0;
    // The module with the station number `number`, or null. Host-owned.
    virtual IHostDeviceModule* FindModuleByNumber(int number) = 0;
    // Number of modules.
    virtual int GetModuleCount() = 0;
    // Module `index` in workspace order, or null outside the list. Host-owned.
    virtual IHostDeviceModule* GetModuleAt(int index) = 0;
};
