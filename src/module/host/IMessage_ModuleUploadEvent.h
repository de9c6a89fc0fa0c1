// Listener: a transfer started through IHostTransferService has ended. Implemented by the
// module's frame, pages and dialogs; subscribed at IHostMessageBus under kIID just before
// a transfer and unsubscribed when its end arrives. Raised on the user-interface thread.
#pragma once

#include "module/host/BaseInterface.h"

class IMessage_ModuleUploadEvent : public IBaseInterface {
public:
    static constexpr GUID kIID = GuidFromString("6FA033D4-5031-4220-BC68-13DF1C35D787");

    // Slot 3: an upload (drive to variable objects) of module `moduleKey` ended;
    // `success` nonzero when it worked.
    virtual void OnModuleUploaded(const CString& moduleKey, BOOL success) = 0;
    // Slot 4: a download (records or a file to the drive) of `moduleKey` ended.
    virtual void OnModuleDownloaded(const CString& moduleKey, BOOL success) = 0;
};

inline constexpr GUID IID_IMessage_ModuleUploadEvent = IMessage_ModuleUploadEvent::kIID;
