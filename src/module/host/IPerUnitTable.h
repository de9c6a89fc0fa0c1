// The per-unit bases of a module: for a parameter of display format 2, the scales it can
// be shown in. Implemented by the host; owned by the module.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"

class IPerUnitTable : public IBaseInterface {
public:
    // The bases of the parameter with function code `code`, or null.
    virtual IPerUnitBase* FindByCode(const CString& code) = 0;
    // The bases with id `baseId` (IVarAttr::GetPerUnitBaseId), or null.
    virtual IPerUnitBase* FindById(int baseId) = 0;
};
