// Service: makes host objects anew and reaches other plug-ins. Implemented by the host;
// got through the query callback under kIID.
#pragma once

#include "module/host/BaseInterface.h"

class IHostModuleManager : public IBaseInterface {
public:
    static constexpr GUID kIID = GuidFromString("1FD1DEC4-82D2-411E-85CE-4827D77B0E17");

    // A new object of the interface `iid` (IHostWorkerThread, IParamFile, IMemoryStream,
    // IHostProgressBox), as its IBaseInterface; static_cast it to that interface. Null
    // for an unknown iid. Owned by the caller, given back with its Release().
    virtual IBaseInterface* CreateInstance(const GUID& iid) = 0;
    // The module gives back an instance of its own interface `iid` that the host holds;
    // *instance points to it. The host forgets it; the module deletes it afterwards if it
    // still holds it. Nonzero when the host knew the instance.
    virtual BOOL ReleaseInstance(const GUID& iid, IBaseInterface** instance) = 0;
    // The interface `iid` offered by another loaded plug-in, or null. Not owned.
    virtual IBaseInterface* GetModuleInterface(const GUID& iid) = 0;
};

inline constexpr GUID IID_IHostModuleManager = IHostModuleManager::kIID;
