// Listener: the user interface language changed. Implemented by the module; subscribed
// at IHostMessageBus under kIID. Raised on the user-interface thread.
#pragma once

#include "module/host/BaseInterface.h"

class IMessage_LanguageChanged : public IBaseInterface {
public:
    static constexpr GUID kIID = GuidFromString("143F0B44-B385-4E14-A4F8-758944AC368E");

    // Slot 3: texts must be translated anew.
    virtual void OnLanguageChanged() = 0;
};

inline constexpr GUID IID_IMessage_LanguageChanged = IMessage_LanguageChanged::kIID;
