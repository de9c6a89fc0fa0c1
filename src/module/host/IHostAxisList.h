// The axes of a device. Implemented by the host; owned by its store or catalog.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"

class IHostAxisList : public IBaseInterface {
public:
    // Nonzero for a multi-axis device; zero means the list is to be ignored.
    virtual BOOL IsValid() = 0;
    // Number of axes.
    virtual int GetCount() = 0;
    // Axis `index`, or null.
    virtual IHostAxis* GetAt(int index) = 0;
};
