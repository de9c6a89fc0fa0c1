// One connector group: up to 100 consecutive connector values. Implemented by the host;
// owned by its connector table.
#pragma once

#include "module/host/BaseInterface.h"

class IConnectorGroup : public IBaseInterface {
public:
    // `name` = the group's connector name.
    virtual void GetName(CString& name) = 0;
    // `key` = the name of the group in the catalog's group set.
    virtual void GetGroupKey(CString& key) = 0;
    // The value of the group's first connector.
    virtual LONGLONG GetBase() = 0;
};
