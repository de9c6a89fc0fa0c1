// The simulator's side of the field bus: request PDUs from any client, to a fresh servo
// drive and a four-axis drive (units 1 and 2; other units are nobody's).
#include "FuzzSupport.h"

#include "zorhost/link/DriveServer.h"

#include <span>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using zorhost::link::DriveServer;
    if (size == 0)
        return 0;
    // Built once: making two drives costs far more than a request. What one input writes
    // stays for the next, as it would on a drive that serves many clients.
    static DriveServer& server = []() -> DriveServer& {
        static DriveServer s;
        s.AddDrive(fuzz::ShippedDevice("zd3s_servo.json"));
        s.AddDrive(fuzz::ShippedDevice("zd4m_four_axis.json"));
        return s;
    }();
    // Several requests in a row, each behind its length byte, so that a write can be
    // followed by the read that sees it.
    std::size_t at = 1;
    const std::uint8_t unit = data[0] % 4;
    while (at < size) {
        const std::size_t length = std::min<std::size_t>(data[at], size - at - 1);
        const std::span<const std::uint8_t> pdu(data + at + 1, length);
        std::vector<std::uint8_t> answer;
        if (server.Handle(unit, pdu, answer) == DriveServer::Action::Answer &&
            (answer.empty() || answer.size() > 253))
            __builtin_trap(); // an answer is a PDU the framing can send
        at += 1 + length;
    }
    server.Step(10);
    return 0;
}
