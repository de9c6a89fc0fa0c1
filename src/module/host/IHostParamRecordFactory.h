// Service: makes write records. Implemented by the host; got through the query callback
// under kIID.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"

class IHostParamRecordFactory : public IBaseInterface {
public:
    static constexpr GUID kIID = GuidFromString("1C5FD4C7-417D-4512-8E52-D7013129063D");

    // A new, empty write record, or null. Owned by the caller, who deletes it.
    virtual IRWDataItem* NewParamRecord() = 0;
};

inline constexpr GUID IID_IHostParamRecordFactory = IHostParamRecordFactory::kIID;
