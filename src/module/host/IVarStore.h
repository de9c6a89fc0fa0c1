// The variables of a module (or of a parameter file) with their group structure.
// Implemented by the host; host-owned. Variables, groups and axes got from it stay the
// store's.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"

class IVarStore : public IBaseInterface {
public:
    // Number of variables.
    virtual int GetCount() = 0;
    // Variable `index` in store order, or null outside the store.
    virtual IVarObjEx* GetAt(int index) = 0;
    // The first variable whose function code or instance key (GetInstanceGuid) equals
    // `key`, or null. Group members are such keys.
    virtual IVarObjEx* FindByCode(const CString& key) = 0;
    // The first variable at communication address `address`, or null.
    virtual IVarObjEx* FindByAddress(UINT address) = 0;
    // Group root `which`: 0 the fixed groups of the device, 1 the custom groups. Null
    // when there is none.
    virtual IGroupSet* GetGroupRoot(int which) = 0;
    // The axes of a multi-axis device; an invalid or null list for a single axis.
    virtual IHostAxisList* GetAxisList() = 0;
    // Function table `which` (0 the only one used), or null.
    virtual IFunctionTable* GetFunctionTable(int which) = 0;
    // The module the store belongs to; null for a file's table.
    virtual IHostDeviceModule* GetOwnerModule() = 0;
    // The catalog the store was built from, or null.
    virtual IVarCatalog* GetStoreCatalog() = 0;
    // The electronic label of the store's device, or null.
    virtual const BYTE* GetElecLabel() = 0;
    // Number of bytes of that label.
    virtual UINT GetElecLabelSize() = 0;
    // `version` = the firmware version text of the store's device.
    virtual void GetVersionText(CString& version) = 0;
};
