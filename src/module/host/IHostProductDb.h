// Service: the host's product database, keyed by electronic labels. Implemented by the
// host; got through the query callback under kIID.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"

class IHostProductDb : public IBaseInterface {
public:
    static constexpr GUID kIID = GuidFromString("678878EF-A8D4-44C2-BC34-0D9804200CBF");

    // The product record of the device with electronic label `label` (`size` bytes), or
    // null. Host-owned.
    virtual IHostProductRecord* FindProduct(const BYTE* label, UINT size) = 0;
    // The variable catalog of that device in firmware version `version`, or null.
    // Host-owned.
    virtual IVarCatalog* GetProductCatalog(const BYTE* label, UINT size,
                                           const CString& version) = 0;
};

inline constexpr GUID IID_IHostProductDb = IHostProductDb::kIID;
