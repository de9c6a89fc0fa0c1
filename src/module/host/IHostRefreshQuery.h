// One read request of the cyclic refresh. Implemented by the host; made by
// IHostRefreshService::NewQuery and deleted by the caller.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"

class IHostRefreshQuery : public IBaseInterface {
public:
    // Kind of request; 1 in every use.
    virtual void SetKind(int kind) = 0;
    // The module whose variables are read; empty when there is none.
    virtual void SetModuleKey(const CString& moduleKey) = 0;
    // A new, empty item, or null. Owned by the caller until AddItem accepts it.
    virtual IHostRefreshItem* NewItem() = 0;
    // Appends `item`. Nonzero: the query owns the item and deletes it with itself.
    // 0: refused, and the caller deletes the item.
    virtual BOOL AddItem(IHostRefreshItem* item) = 0;
};
