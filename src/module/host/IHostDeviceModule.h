// One drive module of the project, as the host holds it. Implemented by the host;
// host-owned, from IHostModuleList. User-interface thread, except the getters of names,
// key and label, which workers may read.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"

class IHostDeviceModule : public IBaseInterface {
public:
    // `key` = the key by which the host names the module.
    virtual void GetModuleKey(CString& key) = 0;
    // `name` = the module's display name.
    virtual void GetDisplayName(CString& name) = 0;
    // `name` = the module's sub name (shown for some product kinds).
    virtual void GetSubName(CString& name) = 0;
    // The module's axis (station) index.
    virtual int GetAxisIndex() = 0;
    // The module's product information, or null. Host-owned.
    virtual IHostProductInfo* GetProductInfo() = 0;
    // Nonzero while the drive is online.
    virtual BOOL IsOnline() = 0;
    // The user's access level for this module.
    virtual int GetAccessLevel() = 0;
    // Sets the user's access level for this module.
    virtual void SetAccessLevel(int level) = 0;
    // The level the drive last granted through its "Authority" variable.
    virtual int GetDeviceAuthority() = 0;
    // Stores the level the drive reports.
    virtual void SetDeviceAuthority(int level) = 0;
    // The module's variables with their groups, or null. Host-owned.
    virtual IVarStore* GetVarList() = 0;
    // The module's variable catalog, or null. Host-owned.
    virtual IVarCatalog* GetVarCatalog() = 0;
    // The electronic label (at most 32 bytes in practice), or null. Host-owned.
    virtual const BYTE* GetElecLabel() = 0;
    // Number of bytes of the electronic label.
    virtual UINT GetElecLabelSize() = 0;
    // The label of the primary unit of a composite device, or null when there is none.
    virtual const BYTE* GetPrimaryElecLabel() = 0;
    // Number of bytes of the primary label.
    virtual UINT GetPrimaryElecLabelSize() = 0;
    // `version` = the firmware version text.
    virtual void GetVersionText(CString& version) = 0;
    // Number of axes parameters can be copied between; 0 hides axis copy.
    virtual int GetAxisCopyCount() = 0;
    // The table of per-unit bases of the module, or null. Host-owned.
    virtual IPerUnitTable* GetPerUnitTable() = 0;
};
