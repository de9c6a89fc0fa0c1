// Service: the host's event distribution. Implemented by the host; got through the query
// callback under kIID.
#pragma once

#include "module/host/BaseInterface.h"

class IHostMessageBus : public IBaseInterface {
public:
    static constexpr GUID kIID = GuidFromString("8D54542C-6B12-4949-8B8A-2489E0E965E0");

    // Adds `sink` as listener of the event `eventId`. The sink is the IBaseInterface of
    // the listener interface whose kIID is `eventId` (see AsSink); the host converts it
    // back with static_cast to that interface. Not owned. Subscribing a sink twice makes
    // it hear the event twice. Nonzero on success.
    virtual BOOL Subscribe(const GUID& eventId, IBaseInterface* sink) = 0;
    // Removes one subscription of `sink` to `eventId`; nonzero when one was removed.
    virtual BOOL Unsubscribe(const GUID& eventId, IBaseInterface* sink) = 0;
};

inline constexpr GUID IID_IHostMessageBus = IHostMessageBus::kIID;
