// The host's progress box. Implemented by the host; made with
// IHostModuleManager::CreateInstance(kIID) and given back with Release().
// Show and StepOn run on the user-interface thread; IsCancelled may be asked from a
// worker.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"

class IHostProgressBox : public IBaseInterface {
public:
    static constexpr GUID kIID = GuidFromString("EB96A952-A31E-4310-A9B8-D0FD9A70E36F");

    // A new step description. Owned by the caller, who deletes it after AddStep.
    virtual IHostProgressStep* NewStep() = 0;
    // Display mode; 0 in every use.
    virtual void SetMode(int mode) = 0;
    // Appends a copy of `step`; the box starts at its lowest position.
    virtual void AddStep(IHostProgressStep* step) = 0;
    // 5: show the box; 0: hide it. `flags` is 0.
    virtual void Show(int command, int flags) = 0;
    // Advances the current step by its increment.
    virtual void StepOn() = 0;
    // Nonzero once the user pressed the box's cancel button.
    virtual BOOL IsCancelled() = 0;
};

inline constexpr GUID IID_IHostProgressBox = IHostProgressBox::kIID;
