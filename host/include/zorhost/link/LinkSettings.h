// How the host reaches one module's drive: the in-process simulated drive, or a Modbus
// link over TCP or a serial line.
#pragma once

#include <string>

namespace zorhost::link {

enum class LinkKind { Simulated, ModbusTcp, ModbusRtu };

struct LinkSettings {
    LinkKind kind = LinkKind::Simulated;
    // Modbus TCP
    std::string host = "127.0.0.1";
    int port = 502;
    // Modbus RTU
    std::string device; // /dev/ttyUSB0, or a pseudo-terminal
    int baud = 115200;
    char parity = 'E'; // 'N', 'E' or 'O'
    // Both
    int unit = 1;         // 1…247
    int timeout_ms = 500; // per answer
    int retries = 2;      // further tries of a request that timed out
    int reconnectMin_ms = 100;
    int reconnectMax_ms = 2000;

    bool operator==(const LinkSettings&) const = default;
};

const char* LinkKindName(LinkKind kind); // "simulated", "modbus-tcp", "modbus-rtu"

} // namespace zorhost::link
