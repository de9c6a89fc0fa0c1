// The variable catalog of a device type: its group structure, axes and connectors.
// Implemented by the host; host-owned, the same object for the life of the module.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"

class IVarCatalog : public IBaseInterface {
public:
    // The catalog's groups (and categories), or null.
    virtual IGroupSet* GetGroupSet() = 0;
    // The catalog's axes; an invalid or null list for a single axis.
    virtual IHostAxisList* GetAxisList() = 0;
    // The connector index, or null.
    virtual IConnectorTable* GetConnectorTable() = 0;
    // The attribute of the parameter with function code `code`, or null.
    virtual IVarAttr* FindAttrByCode(const CString& code) = 0;
    // The attribute of the first parameter at `address`, or null.
    virtual IVarAttr* FindAttrByAddress(UINT address) = 0;
};
