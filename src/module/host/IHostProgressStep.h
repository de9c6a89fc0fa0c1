// One step of a progress box: its text and range. Implemented by the host; made by
// IHostProgressBox::NewStep and deleted by the caller.
#pragma once

#include "module/host/BaseInterface.h"

class IHostProgressStep : public IBaseInterface {
public:
    // The text shown with the bar.
    virtual void SetText(const CString& text) = 0;
    // Position of an empty bar.
    virtual void SetLowest(int position) = 0;
    // Position of a full bar.
    virtual void SetHighest(int position) = 0;
    // How far StepOn moves.
    virtual void SetIncrement(int increment) = 0;
};
