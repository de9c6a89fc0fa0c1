// Listener: a drive module of the project was removed or renamed. Implemented by each
// panel; subscribed at IHostMessageBus under kIID. Raised on the user-interface thread.
#pragma once

#include "module/host/BaseInterface.h"

class IMessage_ModuleEvent : public IBaseInterface {
public:
    static constexpr GUID kIID = GuidFromString("7F177027-3F12-4997-AF7B-A907B8B3FA7D");

    // Slot 3: a module notification the module ignores; the word is the host's.
    virtual void OnModuleNotify1(uintptr_t word) = 0;
    // Slot 4: the module `moduleKey` left the project.
    virtual void OnModuleRemoved(const CString& moduleKey) = 0;
    // Slot 5: a module notification the module ignores; the word is the host's.
    virtual void OnModuleNotify3(uintptr_t word) = 0;
    // Slot 6: the module `moduleKey` got the display name `newName`.
    virtual void OnModuleRenamed(const CString& moduleKey, const CString& newName) = 0;
};

inline constexpr GUID IID_IMessage_ModuleEvent = IMessage_ModuleEvent::kIID;
