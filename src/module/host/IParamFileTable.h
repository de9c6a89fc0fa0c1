// The variable table of a parameter file: a variable store that can be filled.
// Implemented by the host; owned by its IParamFile.
#pragma once

#include "module/host/IVarStore.h"

class IParamFileTable : public IVarStore {
public:
    // Takes copies of all variables and groups of `store` (a module's variable list).
    virtual void CopyFrom(IVarStore* store) = 0;
    // The firmware version text recorded in the table.
    virtual void SetVersionText(const CString& version) = 0;
    // Appends `var`, a clone. Nonzero: the table owns it. 0: refused, the caller deletes
    // it.
    virtual BOOL AddVar(IVarObjEx* var) = 0;
};
