// The connector index of a catalog: which parameter a connector value names.
// Connector kinds 1 "B", 2 "K", 3 "F". Implemented by the host; owned by its catalog.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"

class IConnectorTable : public IBaseInterface {
public:
    // Number of connector groups of `kind` (1 to 3).
    virtual int GetEntryCount(int kind) = 0;
    // Connector group `index` of `kind`, or null.
    virtual IConnectorGroup* GetEntry(int index, int kind) = 0;
    // The attribute of the parameter a connector value (as text) points to, or null.
    virtual IVarAttr* FindByValueText(const CString& valueText) = 0;
    // The connector value that stands for the parameter `code` in kind `kind`; the
    // inverse of FindByValueText.
    virtual LONGLONG ValueFromCode(const CString& code, int kind) = 0;
};
