#include "zorhost/HostServices.h"

#include <algorithm>

namespace zorhost {

HostServices::Entry* HostServices::Lookup(const GUID& iid) {
    auto it = std::find_if(entries_.begin(), entries_.end(),
                           [&](const Entry& e) { return e.iid == iid; });
    return it == entries_.end() ? nullptr : &*it;
}

void HostServices::RegisterRaw(const GUID& iid, void* service) {
    std::lock_guard<std::mutex> hold(mutex_);
    if (Entry* e = Lookup(iid)) {
        e->service = service;
        return;
    }
    entries_.push_back(Entry{iid, service, false});
}

void HostServices::Unregister(const GUID& iid) {
    std::lock_guard<std::mutex> hold(mutex_);
    entries_.erase(std::remove_if(entries_.begin(), entries_.end(),
                                  [&](const Entry& e) { return e.iid == iid; }),
                   entries_.end());
}

void HostServices::Withhold(const GUID& iid, bool withheld) {
    std::lock_guard<std::mutex> hold(mutex_);
    if (Entry* e = Lookup(iid)) {
        e->withheld = withheld;
        return;
    }
    entries_.push_back(Entry{iid, nullptr, withheld});
}

void* HostServices::Find(const GUID& iid) const {
    std::lock_guard<std::mutex> hold(mutex_);
    for (const Entry& e : entries_)
        if (e.iid == iid)
            return e.withheld ? nullptr : e.service;
    return nullptr;
}

void HostServices::Query(uintptr_t context, const GUID* iid, void** out) {
    if (out == nullptr)
        return;
    *out = nullptr;
    auto* self = reinterpret_cast<const HostServices*>(context);
    if (self == nullptr || iid == nullptr)
        return;
    *out = self->Find(*iid);
}

} // namespace zorhost
