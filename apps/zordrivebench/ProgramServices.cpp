#include "ProgramServices.h"

#include <zorhost/ReferenceHost.h>
#include <zorhost/services/HostMessageBus.h>
#include <zorhost/services/HostUiService.h>

namespace zordrivebench {

ProgramServices::ProgramServices(zorhost::ReferenceHost& host) : m_host(host) {
    zorhost::HostServices& services = host.Services();
    if (services.Get<IHostUiService>() == nullptr) {
        m_ui = std::make_unique<zorhost::CHostUiService>();
        services.Register<IHostUiService>(m_ui.get());
    }
    if (services.Get<IHostMessageBus>() == nullptr) {
        m_bus = std::make_unique<zorhost::CHostMessageBus>();
        services.Register<IHostMessageBus>(m_bus.get());
        // The ends of transfers reach the plug-ins as events of this bus.
        host.SetTransferEndHandler(
            [bus = m_bus.get()](const CString& key, BOOL success, bool download) {
                if (download)
                    bus->RaiseModuleDownloaded(key, success);
                else
                    bus->RaiseModuleUploaded(key, success);
            });
    }
}

ProgramServices::~ProgramServices() {
    if (m_bus) {
        m_host.SetTransferEndHandler(nullptr);
        m_host.Services().Unregister(IID_IHostMessageBus);
    }
    if (m_ui)
        m_host.Services().Unregister(IID_IHostUiService);
}

// Registered by the host or by this object, these are the classes behind the interfaces.
zorhost::CHostMessageBus& ProgramServices::Bus() const {
    return *static_cast<zorhost::CHostMessageBus*>(m_host.Services().Get<IHostMessageBus>());
}

zorhost::CHostUiService& ProgramServices::Ui() const {
    return *static_cast<zorhost::CHostUiService*>(m_host.Services().Get<IHostUiService>());
}

} // namespace zordrivebench
