#include "module/InterfaceManager.h"

CIIDObj::~CIIDObj() {
    delete instance;
}

CInterfaceManager::~CInterfaceManager() {
    m_objects.DeleteAll();
}

CIIDObj* CInterfaceManager::FindByInstance(const IBaseInterface* instance) const {
    if (instance == nullptr)
        return nullptr;
    for (int i = 0; i < m_objects.GetCount(); ++i) {
        CIIDObj* entry = m_objects.GetAt(i);
        if (entry != nullptr && entry->instance == instance)
            return entry;
    }
    return nullptr;
}

BOOL CInterfaceManager::Destroy(const IBaseInterface* instance) {
    CIIDObj* entry = FindByInstance(instance);
    if (entry == nullptr)
        return FALSE;
    // Out of the list first: the instance's destructor may close windows that call back.
    m_objects.Remove(entry);
    delete entry;
    return TRUE;
}
