// Simulated drives behind Modbus: answers request PDUs for one unit id per drive, with the
// drives' own rules, and with faults a test can set (a slow answer, refused addresses, a
// dropped connection, silence, garbage). The framing (TCP or RTU) is ModbusServer's.
#pragma once

#include "zorhost/link/RegisterMap.h"
#include "zorhost/sim/SimulatedDrive.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <set>
#include <span>
#include <vector>

namespace zorhost::link {

struct ServerFaults {
    int latency_ms = 0;              // every answer waits this long
    std::set<std::uint32_t> refused; // requests touching these registers are refused
    std::uint64_t dropAfter = 0;     // the connection is dropped at this request (once)
    std::uint64_t silentAfter = 0;   // from this request on nothing is answered
    bool silent = false;             // nothing is answered
    bool garbage = false;            // answers come with a function code that was not asked
};

class DriveServer {
public:
    // What the framing does with a request.
    enum class Action { Answer, Ignore, Drop };

    // The drive gets the next unit id, from 1.
    sim::SimulatedDrive& AddDrive(std::shared_ptr<const device::DeviceDescription> device);
    sim::SimulatedDrive* Drive(int unit);
    int DriveCount() const { return int(m_units.size()); }

    void SetFaults(ServerFaults faults);
    ServerFaults Faults() const;

    // Answers the request `pdu` (function code on) for `unit` into `answer` (a PDU too).
    Action Handle(std::uint8_t unit, std::span<const std::uint8_t> pdu,
                  std::vector<std::uint8_t>& answer);

    // Lets every drive's time move on.
    void Step(int dt_ms);
    std::uint64_t Requests() const { return m_requests.load(); }

private:
    struct Unit {
        std::unique_ptr<sim::SimulatedDrive> drive;
        std::uint16_t refusal[kRefusalRegisters] = {};
    };
    sim::LinkResult ReadRegisters(Unit& unit, std::uint32_t address,
                                  std::span<std::uint16_t> words);
    sim::LinkResult WriteRegisters(Unit& unit, std::uint32_t address,
                                   std::span<std::uint16_t> words);

    std::vector<Unit> m_units; // fixed once serving starts
    mutable std::mutex m_mutex;
    ServerFaults m_faults;
    std::atomic<std::uint64_t> m_requests{0};
};

} // namespace zorhost::link
