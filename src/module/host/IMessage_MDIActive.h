// Listener: the host's active view changed. Implemented by the module; subscribed at
// IHostMessageBus under kIID. Raised on the user-interface thread. The module's handlers
// do nothing with it, but the subscription and the slot order are part of the contract.
#pragma once

#include "module/host/BaseInterface.h"

class IMessage_MDIActive : public IBaseInterface {
public:
    static constexpr GUID kIID = GuidFromString("3FDE7323-6371-4880-95D8-D71E13E8DBDD");

    // Slot 3: first active-view notification; the word is the host's.
    virtual void OnActiveViewNotify1(uintptr_t view) = 0;
    // Slot 4: second active-view notification; the word is the host's.
    virtual void OnActiveViewNotify2(uintptr_t view) = 0;
};

inline constexpr GUID IID_IMessage_MDIActive = IMessage_MDIActive::kIID;
