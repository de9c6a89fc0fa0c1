// One variable of a read request. Implemented by the host; made by
// IHostRefreshQuery::NewItem.
#pragma once

#include "module/host/BaseInterface.h"

class IHostRefreshItem : public IBaseInterface {
public:
    // Communication address of the variable.
    virtual void SetAddress(UINT address) = 0;
    // Data type code of the variable.
    virtual void SetDataType(int dataType) = 0;
    // Length as the variable's attribute gives it (GetValueLength), passed on unread.
    virtual void SetLength(int length) = 0;
};
