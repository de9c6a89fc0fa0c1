#include "zorhost/services/HostModuleManager.h"

#include "zorhost/files/MemoryStream.h"
#include "zorhost/files/ParamFile.h"
#include "zorhost/services/HostWorkerThread.h"

namespace zorhost {

IBaseInterface* CHostModuleManager::CreateInstance(const GUID& iid) {
    if (iid == IHostWorkerThread::kIID)
        return static_cast<IHostWorkerThread*>(new CHostWorkerThread);
    if (iid == IParamFile::kIID)
        return static_cast<IParamFile*>(new files::CParamFile);
    if (iid == IMemoryStream::kIID)
        return static_cast<IMemoryStream*>(new files::CMemoryStream);
    if (iid == IHostProgressBox::kIID)
        return static_cast<IHostProgressBox*>(new CHostProgressBox(m_progressObserver, m_english));
    return nullptr;
}

BOOL CHostModuleManager::ReleaseInstance(const GUID& iid, IBaseInterface** instance) {
    if (!instance || !*instance)
        return 0;
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_interfaces.find(iid);
    if (it == m_interfaces.end() || it->second != *instance)
        return 0;
    m_interfaces.erase(it);
    return 1;
}

IBaseInterface* CHostModuleManager::GetModuleInterface(const GUID& iid) {
    std::lock_guard<std::mutex> lock(m_mutex);
    auto it = m_interfaces.find(iid);
    return it == m_interfaces.end() ? nullptr : it->second;
}

void CHostModuleManager::RegisterModuleInterface(const GUID& iid, IBaseInterface* object) {
    std::lock_guard<std::mutex> lock(m_mutex);
    if (object)
        m_interfaces[iid] = object;
    else
        m_interfaces.erase(iid);
}

} // namespace zorhost
