// Service: the host's cyclic reading of variables. Implemented by the host; got through
// the query callback under kIID.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"

class IHostRefreshService : public IBaseInterface {
public:
    static constexpr GUID kIID = GuidFromString("B403A28C-CE26-4AA7-AAB5-E3DA0B5A6534");

    // Adds `listener`, which then hears OnRefreshQuery once per cycle, on any thread.
    // Not owned.
    virtual void AddRefreshListener(IRefreshQueryEvent* listener) = 0;
    // Removes `listener`; after the call returns it hears nothing more.
    virtual void RemoveRefreshListener(IRefreshQueryEvent* listener) = 0;
    // A new, empty read request, or null. Owned by the caller, who deletes it after
    // SubmitQuery.
    virtual IHostRefreshQuery* NewQuery() = 0;
    // Reads the request's variables into their IVarObjEx objects, now or in the host's
    // next cycle. The host copies what it needs; the caller still owns `query`.
    virtual void SubmitQuery(IHostRefreshQuery* query) = 0;
};

inline constexpr GUID IID_IHostRefreshService = IHostRefreshService::kIID;
