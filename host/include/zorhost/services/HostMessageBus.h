// The host's event distribution. Listeners subscribe by event id; the host raises events
// from any thread and every listener hears them on the user-interface thread, in the
// order they subscribed.
#pragma once

#include "module/host/IHostMessageBus.h"
#include "module/host/IMessage_LanguageChanged.h"
#include "module/host/IMessage_MDIActive.h"
#include "module/host/IMessage_ModuleEvent.h"
#include "module/host/IMessage_ModulePropertyUpdateEvent.h"
#include "module/host/IMessage_ModuleUploadEvent.h"

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace zorhost {

class CHostMessageBus : public IHostMessageBus {
public:
    CHostMessageBus();
    ~CHostMessageBus() override;
    CHostMessageBus(const CHostMessageBus&) = delete;
    CHostMessageBus& operator=(const CHostMessageBus&) = delete;

    // Only the five listener ids above are known; anything else is refused.
    BOOL Subscribe(const GUID& eventId, IBaseInterface* sink) override;
    BOOL Unsubscribe(const GUID& eventId, IBaseInterface* sink) override;
    // Number of subscriptions to `eventId`.
    int ListenerCount(const GUID& eventId) const;

    // Raised on the user-interface thread the call runs there and then; from another
    // thread it is queued to the user-interface thread and the call returns at once.
    // Without a Qt application events are delivered on the calling thread.
    void RaiseLanguageChanged();
    void RaiseActiveView(uintptr_t view); // the first, then the second notification
    void RaiseModuleRemoved(const CString& moduleKey);
    void RaiseModuleRenamed(const CString& moduleKey, const CString& newName);
    void RaiseModuleUploaded(const CString& moduleKey, BOOL success);
    void RaiseModuleDownloaded(const CString& moduleKey, BOOL success);
    void RaiseModulePropertyUpdated(const CString& moduleKey);

private:
    struct Subscription {
        GUID eventId;
        IBaseInterface* sink;
        std::uint64_t serial; // order of subscription
    };
    // Runs `call` for each listener of `eventId` on the user-interface thread. A listener
    // unsubscribed while the event is delivered is not called any more.
    void Raise(const GUID& eventId, std::function<void(IBaseInterface*)> call);
    void Deliver(const GUID& eventId, const std::function<void(IBaseInterface*)>& call);

    mutable std::mutex m_lock;
    std::vector<Subscription> m_subscriptions;
    std::uint64_t m_nextSerial = 1;
    std::shared_ptr<bool> m_alive; // queued deliveries check it after the bus died
};

} // namespace zorhost
