// Product information of a module. Implemented by the host; host-owned.
#pragma once

#include "module/host/BaseInterface.h"

class IHostProductInfo : public IBaseInterface {
public:
    // Kind of product; 0, 5 and 7 show the sub name in captions.
    virtual int GetProductKind() = 0;
};
