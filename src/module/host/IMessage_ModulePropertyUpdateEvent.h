// Listener: properties (attributes, groups) of a module changed at the host. Implemented
// by the list pages; subscribed at IHostMessageBus under kIID. Raised on the
// user-interface thread.
#pragma once

#include "module/host/BaseInterface.h"

class IMessage_ModulePropertyUpdateEvent : public IBaseInterface {
public:
    static constexpr GUID kIID = GuidFromString("9D815A3A-4E82-4A58-A320-8911100F9F31");

    // Slot 3: the module `moduleKey` has new properties; views of it reload.
    virtual void OnModulePropertyUpdated(const CString& moduleKey) = 0;
};

inline constexpr GUID IID_IMessage_ModulePropertyUpdateEvent =
    IMessage_ModulePropertyUpdateEvent::kIID;
