// The function entries of a store (version records, control functions). Implemented by
// the host; owned by its store.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"

class IFunctionTable : public IBaseInterface {
public:
    // The entry named `name` ("FunctionVersion" ...), or null.
    virtual IFunctionEntry* FindFunction(const CString& name) = 0;
};
