// The access code of the command line: the login box's work without the box.
#include "zorhost/ReferenceHost.h"

#include "zorhost/model/ProjectModel.h"
#include "zorhost/sim/SimulatedDrive.h"

#include <array>
#include <charconv>

namespace zorhost {

namespace {

constexpr int kTopLevel = sim::SimulatedDrive::kFactoryAuthority;
constexpr int kLinkTimeout_ms = 1000;

} // namespace

bool ReferenceHost::EnterAccessCode(const CString& key, const std::string& code, std::string* why) {
    auto fail = [&](std::string text) {
        if (why != nullptr)
            *why = std::move(text);
        return false;
    };
    Station* s = Find(key);
    if (s == nullptr || s->module == nullptr)
        return fail("no module with the key \"" + key.str() + "\"");
    int value = -1;
    const auto [end, ec] = std::from_chars(code.data(), code.data() + code.size(), value);
    if (code.empty() || ec != std::errc() || end != code.data() + code.size() || value < 0 ||
        value > 65535)
        return fail("the access code is a number from 0 to 65535");

    const device::DeviceDescription& d = *s->device;
    if (d.product.accessModel != device::AccessModel::ToolOnly && s->module->IsOnline()) {
        // The drive judges the code; the tool only hands it over.
        for (const device::NamedVariable& v : d.namedVariables) {
            if (d.Text(v.name) != "InputPassword")
                continue;
            std::array<std::uint16_t, 4> words{};
            const int n = sim::RegisterCount(v.dataType);
            if (n <= 0 || !sim::EncodeRaw(v.dataType, value, std::span(words.data(), size_t(n))))
                return fail("the access code does not fit the drive's password register");
            const std::shared_ptr<sim::DriveLink> link = FindLink(key);
            const sim::LinkResult r =
                link != nullptr
                    ? link->Write(v.address, std::span(words.data(), size_t(n)), kLinkTimeout_ms)
                    : sim::LinkResult{sim::LinkStatus::Offline};
            if (!r.ok())
                return fail("the drive did not take the access code: " +
                            sim::LinkResultText(r, true));
            // The window's events ran during the wait; the project may have closed.
            if (!Serves(key, link))
                return fail("the module was closed while the drive took the access code");
            s = Find(key);
            break;
        }
    }
    if (value != sim::SimulatedDrive::kFactoryCode)
        return fail("the access code is not accepted");
    s->module->SetAccessLevel(kTopLevel);
    if (d.product.accessModel != device::AccessModel::ToolOnly && s->module->IsOnline())
        s->module->SetDeviceAuthority(kTopLevel);
    m_access.NotifyAccessLevel(key, kTopLevel);
    m_transfer.NotifyLevelToTransfer(key, kTopLevel);
    return true;
}

} // namespace zorhost
