// Roots of every interface that crosses between the host and the module.
//
// Rules that hold for the whole contract:
// - Interfaces are pure virtual and hold no data. Objects cross as interface pointers;
//   a pointer result may be null and every caller tests it.
// - No exception crosses the boundary; failures come back as results (0, null, FALSE).
// - Texts cross as afx CString: UTF-8 storage, character-indexed. Text results come
//   through a `CString&` out parameter.
// - Values of variables cross as Variant (module/host/Variant.h).
// - Context words and handles are pointer-sized (uintptr_t).
// - Both sides are built with hidden visibility, so type information is not shared:
//   convert between interfaces with static_cast only, never dynamic_cast.
// - Ownership: objects from IHostModuleManager::CreateInstance are given back with
//   Release(). Objects from NewQuery, NewItem, NewParamRecord, NewStep, NewGroup, Clone
//   and CreateWindowTranslator belong to the caller, who deletes them (some hand-over
//   operations take them over; each says so). Everything else stays the host's.
#pragma once

#include <afx/CString.h>
#include <afx/afxtypes.h>

#include <cstdint>

// Root of every interface. The destructor comes first in the table, then Release.
// Release does nothing unless a class overrides it; objects made by CreateInstance
// override it to end themselves.
class IBaseInterface {
public:
    virtual ~IBaseInterface() = default;
    virtual void Release() {}
};

// Root of the refresh listener: a destructor and nothing else.
class IBaseEvent {
public:
    virtual ~IBaseEvent() = default;
};

// A sink is subscribed as the IBaseInterface of the listener interface named by the
// event id. These two keep the conversions right for a class with several listener bases.
template <class Listener> inline IBaseInterface* AsSink(Listener* listener) {
    return static_cast<IBaseInterface*>(listener);
}
template <class Listener> inline Listener* SinkAs(IBaseInterface* sink) {
    return static_cast<Listener*>(sink);
}
