// The services the program adds to the reference host when the host has none of its own:
// the text service and the message bus. Both forms of the program (window and command
// line) run the plug-in against the same set.
#pragma once

#include <memory>

namespace zorhost {
class ReferenceHost;
class CHostMessageBus;
class CHostUiService;
} // namespace zorhost

namespace zordrivebench {

class ProgramServices {
public:
    explicit ProgramServices(zorhost::ReferenceHost& host);
    // Takes back what it registered; the plug-in must be unloaded before.
    ~ProgramServices();
    ProgramServices(const ProgramServices&) = delete;
    ProgramServices& operator=(const ProgramServices&) = delete;

    // The host's services, whoever made them; never null.
    zorhost::CHostMessageBus& Bus() const;
    zorhost::CHostUiService& Ui() const;

private:
    zorhost::ReferenceHost& m_host;
    std::unique_ptr<zorhost::CHostMessageBus> m_bus;
    std::unique_ptr<zorhost::CHostUiService> m_ui;
};

} // namespace zordrivebench
