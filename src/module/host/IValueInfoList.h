// A list of value meanings (enumeration, bits, ranges, digits, options). Implemented by
// the host; owned by its IValueInfo or entry.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"

class IValueInfoList : public IBaseInterface {
public:
    // Number of entries.
    virtual int GetCount() = 0;
    // Entry `index`, or null (outside the list, or a gap the caller passes over).
    virtual IValueInfoEntry* GetAt(int index) = 0;
};
