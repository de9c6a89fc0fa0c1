// One product of the host's product database: the numbers that sort a device.
// Implemented by the host; host-owned.
#pragma once

#include "module/host/BaseInterface.h"

class IHostProductRecord : public IBaseInterface {
public:
    // Product line id (13 and 11 get a treatment of their own).
    virtual DWORD GetLineId() = 0;
    // Product id within the line.
    virtual DWORD GetProductId() = 0;
    // Sub-product id.
    virtual DWORD GetSubProductId() = 0;
};
