// Listener: the host is ready for the next cyclic read request. Implemented by the
// module's frame; added with IHostRefreshService::AddRefreshListener (not through the
// message bus). May be raised on any thread: the handler only posts a window message.
#pragma once

#include "module/host/BaseInterface.h"

class IRefreshQueryEvent : public IBaseEvent {
public:
    static constexpr GUID kIID = GuidFromString("B887EE8B-00B7-4735-B2B7-8D1B6FE60C67");

    // Slot 2: submit the variables to read now.
    virtual void OnRefreshQuery() = 0;
};

inline constexpr GUID IID_IRefreshQueryEvent = IRefreshQueryEvent::kIID;
