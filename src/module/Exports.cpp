// The four functions the host binds by name. Everything else in the module is hidden.
#include "module/Implementation.h"
#include "module/InterfaceManager.h"
#include "module/ParmiraApp.h"

#include <cstring>

#define PARMIRA_EXPORT extern "C" __attribute__((visibility("default")))

PARMIRA_EXPORT void SetQueryInterfaceCallback(uintptr_t context, QueryInterfaceCallback callback) {
    theApp.SetQueryInterfaceCallback(context, callback);
}

PARMIRA_EXPORT int SupportedInterface(const GUID* iid) {
    if (iid == nullptr)
        return 0;
    return theApp.IsSupportedInterface(*iid) ? 1 : 0;
}

PARMIRA_EXPORT IBaseInterface* CreateInterFace(const GUID* iid) {
    CInterfaceManager* registry = theApp.m_pInterfaceManager;
    if (registry == nullptr || iid == nullptr)
        return nullptr;
    // All sixteen bytes must match.
    if (std::memcmp(iid, &IID_IQXParmira, sizeof(GUID)) != 0)
        return nullptr;
    auto* instance = new CImplementation(registry);
    auto* entry = new CIIDObj(*iid, instance);
    if (!registry->Add(entry)) {
        delete entry;
        return nullptr;
    }
    return instance;
}

PARMIRA_EXPORT int SafeRelease(const GUID* /*iid*/, void** instance) {
    CInterfaceManager* registry = theApp.m_pInterfaceManager;
    if (registry == nullptr)
        return 1;
    if (instance == nullptr || *instance == nullptr)
        return 0;
    auto* object = static_cast<IBaseInterface*>(*instance);
    if (!registry->Destroy(object))
        return 0;
    *instance = nullptr;
    return 1;
}
