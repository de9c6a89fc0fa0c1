#include "zorhost/services/HostMessageBus.h"

#include <afx/afxqt.h>

#include <QCoreApplication>
#include <QMetaObject>
#include <QThread>

#include <algorithm>

namespace zorhost {

namespace {

bool IsKnownEvent(const GUID& id) {
    return id == IMessage_LanguageChanged::kIID || id == IMessage_MDIActive::kIID ||
           id == IMessage_ModuleEvent::kIID || id == IMessage_ModuleUploadEvent::kIID ||
           id == IMessage_ModulePropertyUpdateEvent::kIID;
}

} // namespace

CHostMessageBus::CHostMessageBus() : m_alive(std::make_shared<bool>(true)) {}

CHostMessageBus::~CHostMessageBus() = default;

BOOL CHostMessageBus::Subscribe(const GUID& eventId, IBaseInterface* sink) {
    if (!sink || !IsKnownEvent(eventId))
        return 0;
    std::lock_guard<std::mutex> hold(m_lock);
    m_subscriptions.push_back({eventId, sink, m_nextSerial++});
    return 1;
}

BOOL CHostMessageBus::Unsubscribe(const GUID& eventId, IBaseInterface* sink) {
    std::lock_guard<std::mutex> hold(m_lock);
    auto it = std::find_if(m_subscriptions.begin(), m_subscriptions.end(),
                           [&](const auto& s) { return s.sink == sink && s.eventId == eventId; });
    if (it == m_subscriptions.end())
        return 0;
    m_subscriptions.erase(it);
    return 1;
}

int CHostMessageBus::ListenerCount(const GUID& eventId) const {
    std::lock_guard<std::mutex> hold(m_lock);
    return int(std::count_if(m_subscriptions.begin(), m_subscriptions.end(),
                             [&](const auto& s) { return s.eventId == eventId; }));
}

void CHostMessageBus::Deliver(const GUID& eventId,
                              const std::function<void(IBaseInterface*)>& call) {
    // The listeners of this moment, each called only while it is still subscribed: a
    // listener may unsubscribe itself or another one from inside its handler.
    std::vector<std::uint64_t> serials;
    {
        std::lock_guard<std::mutex> hold(m_lock);
        for (const Subscription& s : m_subscriptions)
            if (s.eventId == eventId)
                serials.push_back(s.serial);
    }
    for (std::uint64_t serial : serials) {
        IBaseInterface* sink = nullptr;
        {
            std::lock_guard<std::mutex> hold(m_lock);
            for (const Subscription& s : m_subscriptions)
                if (s.serial == serial)
                    sink = s.sink;
        }
        if (sink)
            call(sink);
    }
}

void CHostMessageBus::Raise(const GUID& eventId, std::function<void(IBaseInterface*)> call) {
    QCoreApplication* app = QCoreApplication::instance();
    if (!app || QThread::currentThread() == app->thread()) {
        Deliver(eventId, call);
        return;
    }
    std::weak_ptr<bool> alive = m_alive;
    AfxQueueCall(app, [this, alive, eventId, call = std::move(call)]() {
        if (alive.lock())
            Deliver(eventId, call);
    });
}

void CHostMessageBus::RaiseLanguageChanged() {
    Raise(IMessage_LanguageChanged::kIID, [](IBaseInterface* sink) {
        SinkAs<IMessage_LanguageChanged>(sink)->OnLanguageChanged();
    });
}

void CHostMessageBus::RaiseActiveView(uintptr_t view) {
    Raise(IMessage_MDIActive::kIID, [view](IBaseInterface* sink) {
        auto* listener = SinkAs<IMessage_MDIActive>(sink);
        listener->OnActiveViewNotify1(view);
        listener->OnActiveViewNotify2(view);
    });
}

void CHostMessageBus::RaiseModuleRemoved(const CString& moduleKey) {
    Raise(IMessage_ModuleEvent::kIID, [moduleKey](IBaseInterface* sink) {
        SinkAs<IMessage_ModuleEvent>(sink)->OnModuleRemoved(moduleKey);
    });
}

void CHostMessageBus::RaiseModuleRenamed(const CString& moduleKey, const CString& newName) {
    Raise(IMessage_ModuleEvent::kIID, [moduleKey, newName](IBaseInterface* sink) {
        SinkAs<IMessage_ModuleEvent>(sink)->OnModuleRenamed(moduleKey, newName);
    });
}

void CHostMessageBus::RaiseModuleUploaded(const CString& moduleKey, BOOL success) {
    Raise(IMessage_ModuleUploadEvent::kIID, [moduleKey, success](IBaseInterface* sink) {
        SinkAs<IMessage_ModuleUploadEvent>(sink)->OnModuleUploaded(moduleKey, success);
    });
}

void CHostMessageBus::RaiseModuleDownloaded(const CString& moduleKey, BOOL success) {
    Raise(IMessage_ModuleUploadEvent::kIID, [moduleKey, success](IBaseInterface* sink) {
        SinkAs<IMessage_ModuleUploadEvent>(sink)->OnModuleDownloaded(moduleKey, success);
    });
}

void CHostMessageBus::RaiseModulePropertyUpdated(const CString& moduleKey) {
    Raise(IMessage_ModulePropertyUpdateEvent::kIID, [moduleKey](IBaseInterface* sink) {
        SinkAs<IMessage_ModulePropertyUpdateEvent>(sink)->OnModulePropertyUpdated(moduleKey);
    });
}

} // namespace zorhost
