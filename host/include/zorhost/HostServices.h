#pragma once

#include <cstdint>
#include <mutex>
#include <vector>

#include "module/host/BaseInterface.h"

namespace zorhost {

// The host's answer to a plug-in's query callback: a table from interface id to the
// service that implements it. Services are not owned. Any service can be withheld, so
// that tests can run a plug-in against a host that lacks it.
class HostServices {
public:
    // Registers `service` under its interface's id; the pointer handed out is the one of
    // that interface, as the plug-in casts the answer straight to it.
    template <class Interface> void Register(Interface* service) {
        RegisterRaw(Interface::kIID, static_cast<void*>(service));
    }
    template <class Interface> void Withhold(bool withheld = true) {
        Withhold(Interface::kIID, withheld);
    }
    template <class Interface> Interface* Get() const {
        return static_cast<Interface*>(Find(Interface::kIID));
    }

    void RegisterRaw(const GUID& iid, void* service);
    void Unregister(const GUID& iid);
    void Withhold(const GUID& iid, bool withheld = true);
    // The registered pointer, or null when absent or withheld.
    void* Find(const GUID& iid) const;

    // The pair handed to SetQueryInterfaceCallback.
    uintptr_t Context() const { return reinterpret_cast<uintptr_t>(this); }
    static void Query(uintptr_t context, const GUID* iid, void** out);

private:
    struct Entry {
        GUID iid;
        void* service = nullptr;
        bool withheld = false;
    };
    Entry* Lookup(const GUID& iid);
    // Plug-ins may ask from their workers (recipe jobs do).
    mutable std::mutex mutex_;
    std::vector<Entry> entries_;
};

} // namespace zorhost
