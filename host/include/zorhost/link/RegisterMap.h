// How a drive's memory looks on Modbus. See host/src/link/README.md for the register table.
//
// A parameter's communication address is its holding register; a value of several
// registers takes that many neighbouring registers, in the product's word order. The
// fixed registers at the top of the address space answer what the description alone can't:
// the drive's identity and the exact reason of its last refusal.
#pragma once

#include "zorhost/device/DeviceDescription.h"
#include "zorhost/sim/DriveLink.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace zorhost::link {

// Highest register a parameter may have; everything above is the drive's own.
inline constexpr std::uint32_t kLastParameterRegister = 0xFEFF;
// Run command: writing 1 runs the drive, 0 stops it; a read tells whether it runs.
inline constexpr std::uint32_t kRunRegister = 0xFFC0;
// Last refusal of the unit: reason (sim::Refusal), decimals, low and high limit as doubles
// (four registers each, low word first). Read-only; all zero before the first refusal.
inline constexpr std::uint32_t kRefusalRegister = 0xFFD0;
inline constexpr int kRefusalRegisters = 10;
// Electronic label: 32 bytes, two per register, first byte in the high half; zero padded.
inline constexpr std::uint32_t kLabelRegister = 0xFFE0;
inline constexpr int kLabelRegisters = 16;
// Firmware version text, ASCII, as the label; zero padded.
inline constexpr std::uint32_t kVersionRegister = 0xFFF0;
inline constexpr int kVersionRegisters = 16;

// Request limits of the protocol: registers per read (function 3) and per write (16).
inline constexpr int kMaxReadRegisters = 125;
inline constexpr int kMaxWriteRegisters = 123;

// Modbus exception codes as the drives use them.
enum class Exception : std::uint8_t {
    None = 0,
    IllegalFunction = 1,
    IllegalAddress = 2,
    IllegalValue = 3,
    DeviceFailure = 4,
    Busy = 6,
};

// The exception a drive answers a failed request with. Reasons without an exception of
// their own go out as the nearest one; kRefusalRegister tells the exact reason.
Exception ExceptionFor(const sim::LinkResult& result);
// What an exception means when the drive can't say more.
sim::LinkResult ResultFor(Exception exception);

void EncodeRefusal(const sim::LinkResult& result,
                   std::span<std::uint16_t, kRefusalRegisters> words);
// The refusal the registers hold; status Ok when they hold none.
sim::LinkResult DecodeRefusal(std::span<const std::uint16_t, kRefusalRegisters> words);

// Bytes two per register, first in the high half, zero padded to `words.size()` registers.
void PackBytes(std::span<const std::uint8_t> bytes, std::span<std::uint16_t> words);
std::vector<std::uint8_t> UnpackBytes(std::span<const std::uint16_t> words);

// Turns a block between the drive's memory order (low word first) and the wire order of
// `device`: the words of every multi-register parameter that lies wholly in the block are
// reversed when the product sends the high word first. Its own inverse.
void SwapToWireOrder(const device::DeviceDescription& device, std::uint32_t address,
                     std::span<std::uint16_t> words);

} // namespace zorhost::link
