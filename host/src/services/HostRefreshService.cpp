#include "zorhost/services/HostRefreshService.h"

#include "zorhost/model/ProjectModel.h"
#include "zorhost/services/HostDeviceHelper.h"
#include "zorhost/sim/DriveDirectory.h"
#include "zorhost/sim/DriveLink.h"

#include <algorithm>

namespace zorhost {

BOOL CHostRefreshQuery::AddItem(IHostRefreshItem* item) {
    if (!item || m_items.size() >= kMaxItems)
        return 0;
    // Only items this query made can be taken: their layout is known.
    m_items.emplace_back(static_cast<CHostRefreshItem*>(item));
    return 1;
}

CHostRefreshService::CHostRefreshService(sim::DriveDirectory& drives) : m_drives(drives) {}

void CHostRefreshService::AddRefreshListener(IRefreshQueryEvent* listener) {
    if (!listener)
        return;
    std::lock_guard lock(m_listenerMutex);
    m_listeners.push_back(listener);
}

void CHostRefreshService::RemoveRefreshListener(IRefreshQueryEvent* listener) {
    std::lock_guard lock(m_listenerMutex);
    auto it = std::find(m_listeners.begin(), m_listeners.end(), listener);
    if (it != m_listeners.end())
        m_listeners.erase(it);
}

void CHostRefreshService::SubmitQuery(IHostRefreshQuery* query) {
    if (!query)
        return;
    // NewQuery made it, so it is ours (the contract allows static_cast only).
    auto* q = static_cast<CHostRefreshQuery*>(query);
    Pending pending;
    pending.moduleKey = q->m_moduleKey;
    pending.items.reserve(q->m_items.size());
    for (const auto& item : q->m_items)
        pending.items.push_back(*item);
    std::lock_guard lock(m_pendingMutex);
    m_pending.push_back(std::move(pending));
}

std::size_t CHostRefreshService::PendingQueries() const {
    std::lock_guard lock(m_pendingMutex);
    return m_pending.size();
}

std::vector<UINT> CHostRefreshService::PendingAddresses() const {
    std::vector<UINT> addresses;
    std::lock_guard lock(m_pendingMutex);
    for (const Pending& q : m_pending)
        for (const CHostRefreshItem& item : q.items)
            addresses.push_back(item.m_address);
    return addresses;
}

std::size_t CHostRefreshService::ListenerCount() const {
    std::lock_guard lock(m_listenerMutex);
    return m_listeners.size();
}

int CHostRefreshService::ReadQuery(const Pending& query) {
    model::CDeviceModule* module = m_drives.FindModule(query.moduleKey);
    const std::shared_ptr<sim::DriveLink> link = m_drives.FindLink(query.moduleKey);
    if (!module || !link || !module->IsOnline())
        return 0;
    if (link->ReadBlockLimit() > 1) {
        // A request costs a round trip: the worker reads, the next cycle stores.
        RefreshWorker::Batch batch{query.moduleKey.str(), link, {}};
        for (const CHostRefreshItem& item : query.items)
            if (module->Store().FindByAddress(item.m_address))
                batch.items.push_back({item.m_address, device::DataType(item.m_dataType)});
        m_remote.Submit(std::move(batch));
        return 0;
    }
    int stored = 0;
    for (const CHostRefreshItem& item : query.items) {
        IVarObjEx* var = module->Store().FindByAddress(item.m_address);
        if (!var)
            continue;
        const auto type = device::DataType(item.m_dataType);
        double raw = 0;
        sim::LinkResult r = sim::ReadRaw(*link, item.m_address, type, raw, kReadTimeout_ms);
        if (r.status == sim::LinkStatus::Offline)
            break; // the rest would fail the same way
        if (!r.ok())
            continue; // the variable keeps what it had
        // The store holds only its own variables.
        static_cast<model::CVarObj*>(var)->StoreRead(RawToVariant(type, raw));
        ++stored;
    }
    return stored;
}

// Values read over a link that is still the module's, while the module is online.
int CHostRefreshService::StoreRemoteResults() {
    int stored = 0;
    for (const RefreshWorker::Result& result : m_remote.TakeResults()) {
        const CString key(result.key);
        model::CDeviceModule* module = m_drives.FindModule(key);
        if (!module || !module->IsOnline() || m_drives.FindLink(key).get() != result.link)
            continue;
        for (const RefreshWorker::Value& v : result.values)
            if (IVarObjEx* var = module->Store().FindByAddress(v.address)) {
                static_cast<model::CVarObj*>(var)->StoreRead(RawToVariant(v.type, v.raw));
                ++stored;
            }
    }
    return stored;
}

int CHostRefreshService::RunCycle() {
    std::vector<Pending> pending;
    {
        std::lock_guard lock(m_pendingMutex);
        pending.swap(m_pending);
    }
    int stored = StoreRemoteResults();
    for (const Pending& q : pending)
        stored += ReadQuery(q);
    // By index, re-reading the size: a listener may leave (or another join) from its call.
    std::lock_guard lock(m_listenerMutex);
    for (std::size_t i = 0; i < m_listeners.size(); ++i) {
        IRefreshQueryEvent* listener = m_listeners[i];
        listener->OnRefreshQuery();
        if (i < m_listeners.size() && m_listeners[i] != listener)
            --i; // it removed itself; the next one moved into its place
    }
    return stored;
}

} // namespace zorhost
