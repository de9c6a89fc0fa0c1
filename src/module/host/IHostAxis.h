// One axis of a multi-axis device, with its own groups. Implemented by the host; owned
// by its axis list or set.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"

class IHostAxis : public IBaseInterface {
public:
    // `name` = the axis name.
    virtual void GetName(CString& name) = 0;
    // Renames the axis.
    virtual void SetName(const CString& name) = 0;
    // `key` = the axis key.
    virtual void GetKey(CString& key) = 0;
    // Sets the axis key.
    virtual void SetKey(const CString& key) = 0;
    // Offset of the axis's addresses: a parameter lies at its address minus this base
    // plus another axis's base on that axis.
    virtual UINT GetAddressBase() = 0;
    // The axis's groups, or null.
    virtual IGroupSet* GetGroupSet() = 0;
};
