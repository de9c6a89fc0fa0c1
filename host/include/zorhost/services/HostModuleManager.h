// The host's object factory and plug-in interface registry (IHostModuleManager).
#pragma once

#include "module/host/IHostModuleManager.h"

#include <map>
#include <mutex>

namespace zorhost {

class CHostModuleManager : public IHostModuleManager {
public:
    // Makes worker threads; the other factory interfaces are not offered yet (null).
    IBaseInterface* CreateInstance(const GUID& iid) override;
    BOOL ReleaseInstance(const GUID& iid, IBaseInterface** instance) override;
    IBaseInterface* GetModuleInterface(const GUID& iid) override;

    // A plug-in's interface that others may reach; null removes it.
    void RegisterModuleInterface(const GUID& iid, IBaseInterface* object);

private:
    std::mutex m_mutex;
    std::map<GUID, IBaseInterface*> m_interfaces;
};

} // namespace zorhost
