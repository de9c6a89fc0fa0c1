// The host's object factory and plug-in interface registry (IHostModuleManager).
#pragma once

#include "module/host/IHostModuleManager.h"
#include "zorhost/services/HostProgressBox.h"

#include <map>
#include <mutex>

namespace zorhost {

class CHostModuleManager : public IHostModuleManager {
public:
    // Makes worker threads, parameter files, memory streams and progress boxes.
    IBaseInterface* CreateInstance(const GUID& iid) override;
    BOOL ReleaseInstance(const GUID& iid, IBaseInterface** instance) override;
    IBaseInterface* GetModuleInterface(const GUID& iid) override;

    // A plug-in's interface that others may reach; null removes it.
    void RegisterModuleInterface(const GUID& iid, IBaseInterface* object);
    // Told of every change of every progress box made from now on (tests watch and cancel
    // boxes through it); null for none.
    void SetProgressObserver(CHostProgressBox::Observer observer) {
        m_progressObserver = std::move(observer);
    }
    // Language of the texts of the boxes made from now on.
    void SetEnglish(bool english) { m_english = english; }

private:
    std::mutex m_mutex;
    std::map<GUID, IBaseInterface*> m_interfaces;
    CHostProgressBox::Observer m_progressObserver;
    bool m_english = false;
};

} // namespace zorhost
