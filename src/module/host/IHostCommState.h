// State of the project's communication. Implemented by the host; host-owned.
#pragma once

#include "module/host/BaseInterface.h"

class IHostCommState : public IBaseInterface {
public:
    // Nonzero while the oscilloscope samples a drive.
    virtual BOOL IsOscilloscopeRunning() = 0;
};
