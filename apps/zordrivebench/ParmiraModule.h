// The parameter-view plug-in as the program sees it: the library loaded once through the
// framework's loader, its four exports, and the IQXParmira instances made from it.
#pragma once

#include "module/host/IQXParmira.h"
#include "module/host/ModuleExports.h"

#include <QString>

#include <vector>

namespace zorhost {
class HostServices;
}

namespace zordrivebench {

class ParmiraModule {
public:
    ParmiraModule() = default;
    // Gives back every instance, then unloads the library (the module leaves the host's
    // bus while the host still exists: destroy this before the host).
    ~ParmiraModule();
    ParmiraModule(const ParmiraModule&) = delete;
    ParmiraModule& operator=(const ParmiraModule&) = delete;

    // Beside the executable, or in the installed tree's modules/ (InstallLayout.h).
    static QString DefaultPath();

    // Loads the library once and hands it the host's query callback. A second call does
    // nothing and succeeds. On failure `error` says why.
    bool Load(const QString& path, zorhost::HostServices& services, QString* error);
    bool IsLoaded() const { return m_handle != nullptr; }

    // A new panel interface, or null (`error` says why).
    IQXParmira* Create(QString* error);
    // Gives an instance back to the module; the pointer is null afterwards.
    void Release(IQXParmira*& instance);

    void Unload();

private:
    HMODULE m_handle = nullptr;
    PFN_SetQueryInterfaceCallback m_setCallback = nullptr;
    PFN_SupportedInterface m_supported = nullptr;
    PFN_CreateInterFace m_create = nullptr;
    PFN_SafeRelease m_release = nullptr;
    std::vector<IQXParmira*> m_instances;
};

} // namespace zordrivebench
