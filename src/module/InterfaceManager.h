// The registry of interface instances handed to the host. It owns every CIIDObj and,
// through it, the instance.
#pragma once

#include "module/TemplateList.h"
#include "module/host/BaseInterface.h"

class CIIDObj {
public:
    CIIDObj(const GUID& requested, IBaseInterface* object) : iid(requested), instance(object) {}
    virtual ~CIIDObj();
    CIIDObj(const CIIDObj&) = delete;
    CIIDObj& operator=(const CIIDObj&) = delete;

    GUID iid;
    IBaseInterface* instance;
};

class CInterfaceManager {
public:
    CInterfaceManager() = default;
    virtual ~CInterfaceManager();
    CInterfaceManager(const CInterfaceManager&) = delete;
    CInterfaceManager& operator=(const CInterfaceManager&) = delete;

    BOOL Add(CIIDObj* entry) { return m_objects.Add(entry, entry); }
    // The entry whose instance is `instance`, from the front; null when none or null.
    CIIDObj* FindByInstance(const IBaseInterface* instance) const;
    // Takes the entry of `instance` out and deletes it with its instance. 0 when the
    // registry doesn't hold it.
    BOOL Destroy(const IBaseInterface* instance);
    int GetCount() const { return m_objects.GetCount(); }

    CTemplateList<CIIDObj*, CIIDObj*> m_objects;
};
