// One function entry: a named variable of the device. Implemented by the host; owned by
// its table.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"

class IFunctionEntry : public IBaseInterface {
public:
    // Communication address of the entry's variable.
    virtual UINT GetAddress() = 0;
    // The entry's variable, or null. Host-owned.
    virtual IVarObjEx* GetVar() = 0;
};
