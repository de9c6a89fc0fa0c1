// The host's cyclic reading (IHostRefreshService). One cycle reads what the previous
// queries asked for, stores the values in the variables, then asks every listener for the
// next query. The program runs cycles from its timer; tests call RunCycle.
#pragma once

#include "module/host/IHostRefreshItem.h"
#include "module/host/IHostRefreshQuery.h"
#include "module/host/IHostRefreshService.h"
#include "module/host/IRefreshQueryEvent.h"
#include "zorhost/services/RefreshWorker.h"

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

namespace zorhost {

namespace sim {
class DriveDirectory;
}

class CHostRefreshItem : public IHostRefreshItem {
public:
    void SetAddress(UINT address) override { m_address = address; }
    void SetDataType(int dataType) override { m_dataType = dataType; }
    void SetLength(int length) override { m_length = length; }

    UINT m_address = 0;
    int m_dataType = 0;
    int m_length = 0;
};

class CHostRefreshQuery : public IHostRefreshQuery {
public:
    // A query holds at most this many items; the rest are refused.
    static constexpr std::size_t kMaxItems = 4096;

    void SetKind(int kind) override { m_kind = kind; }
    void SetModuleKey(const CString& moduleKey) override { m_moduleKey = moduleKey; }
    IHostRefreshItem* NewItem() override { return new CHostRefreshItem; }
    BOOL AddItem(IHostRefreshItem* item) override;

    int m_kind = 0;
    CString m_moduleKey;
    std::vector<std::unique_ptr<CHostRefreshItem>> m_items;
};

class CHostRefreshService : public IHostRefreshService {
public:
    static constexpr int kReadTimeout_ms = 200;

    explicit CHostRefreshService(sim::DriveDirectory& drives);

    void AddRefreshListener(IRefreshQueryEvent* listener) override;
    void RemoveRefreshListener(IRefreshQueryEvent* listener) override;
    IHostRefreshQuery* NewQuery() override { return new CHostRefreshQuery; }
    // Queries from a foreign implementation are ignored: the host reads only its own.
    void SubmitQuery(IHostRefreshQuery* query) override;

    // Reads the queries submitted since the last cycle, then calls OnRefreshQuery of every
    // listener. Returns the number of values stored. A module behind a field-bus link is
    // read on a worker instead: the cycle stores what its last read brought and never
    // waits for the drive.
    int RunCycle();
    // Returns once no field-bus read is running; what was on its way is dropped. Called
    // before links go.
    void Quiesce() { m_remote.Quiesce(); }
    std::size_t PendingQueries() const;
    // The addresses the queries not yet read ask for, in the order they were submitted.
    std::vector<UINT> PendingAddresses() const;
    std::size_t ListenerCount() const;

private:
    struct Pending {
        CString moduleKey;
        std::vector<CHostRefreshItem> items;
    };
    int ReadQuery(const Pending& query);
    int StoreRemoteResults();

    sim::DriveDirectory& m_drives;
    mutable std::mutex m_pendingMutex;
    std::vector<Pending> m_pending;
    // Held while a listener is called, so that after RemoveRefreshListener returns the
    // listener hears nothing more; recursive because a listener may leave from its call.
    mutable std::recursive_mutex m_listenerMutex;
    std::vector<IRefreshQueryEvent*> m_listeners;
    RefreshWorker m_remote; // last: it stops before the rest goes
};

} // namespace zorhost
