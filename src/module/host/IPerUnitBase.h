// The per-unit scales of one parameter. The entries stand for the per-unit modes 2,
// 3, ...: entry of mode m is GetEntry(m). Implemented by the host; owned by its table.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"

class IPerUnitBase : public IBaseInterface {
public:
    // Number of entries; modes 2 to 1 + count exist.
    virtual int GetEntryCount() = 0;
    // The entry of per-unit mode `mode` (2 and above), or null.
    virtual IPerUnitEntry* GetEntry(int mode) = 0;
};
