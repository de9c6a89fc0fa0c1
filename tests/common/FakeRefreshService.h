// The one stand-in for the host's refresh service that suites and benchmarks share. Over
// the real host's service (`inner`) it passes every call on and records the queries; on
// its own it keeps the listeners, reads nothing and records the queries.
#pragma once

#include "module/host/IHostRefreshItem.h"
#include "module/host/IHostRefreshQuery.h"
#include "module/host/IHostRefreshService.h"

#include <algorithm>
#include <memory>
#include <vector>

class FakeRefreshService : public IHostRefreshService {
public:
    FakeRefreshService() = default;
    explicit FakeRefreshService(IHostRefreshService& real) : inner(&real) {}

    IHostRefreshService* inner = nullptr;
    std::vector<IRefreshQueryEvent*> listeners;
    int submitted = 0;
    std::vector<UINT> lastAddresses; // of the last query submitted, in order

    void AddRefreshListener(IRefreshQueryEvent* l) override {
        listeners.push_back(l);
        if (inner != nullptr)
            inner->AddRefreshListener(l);
    }
    void RemoveRefreshListener(IRefreshQueryEvent* l) override {
        std::erase(listeners, l);
        if (inner != nullptr)
            inner->RemoveRefreshListener(l);
    }
    IHostRefreshQuery* NewQuery() override { return new Query(inner); }
    void SubmitQuery(IHostRefreshQuery* query) override {
        auto* q = static_cast<Query*>(query);
        ++submitted;
        lastAddresses.clear();
        for (const auto& item : q->items)
            lastAddresses.push_back(item->address);
        if (q->real != nullptr)
            inner->SubmitQuery(q->real.get());
    }

private:
    // Over a real service each query and item builds the real one alongside.
    struct Item : IHostRefreshItem {
        UINT address = 0;
        std::unique_ptr<IHostRefreshItem> real; // until the real query takes it
        void SetAddress(UINT a) override {
            address = a;
            if (real != nullptr)
                real->SetAddress(a);
        }
        void SetDataType(int t) override {
            if (real != nullptr)
                real->SetDataType(t);
        }
        void SetLength(int l) override {
            if (real != nullptr)
                real->SetLength(l);
        }
    };
    struct Query : IHostRefreshQuery {
        explicit Query(IHostRefreshService* inner)
            : real(inner != nullptr ? inner->NewQuery() : nullptr) {}
        std::unique_ptr<IHostRefreshQuery> real;
        std::vector<std::unique_ptr<Item>> items;
        void SetKind(int kind) override {
            if (real != nullptr)
                real->SetKind(kind);
        }
        void SetModuleKey(const CString& key) override {
            if (real != nullptr)
                real->SetModuleKey(key);
        }
        IHostRefreshItem* NewItem() override {
            auto* item = new Item;
            if (real != nullptr)
                item->real.reset(real->NewItem());
            return item;
        }
        BOOL AddItem(IHostRefreshItem* item) override {
            auto* mine = static_cast<Item*>(item);
            if (real != nullptr) {
                if (!real->AddItem(mine->real.get()))
                    return 0;
                mine->real.release();
            }
            items.emplace_back(mine);
            return 1;
        }
    };
};
