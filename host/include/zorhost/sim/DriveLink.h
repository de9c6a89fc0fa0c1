// The host's link to one drive: blocks of 16-bit registers read and written by address.
// The simulated drive implements it; a real field-bus link can take its place without the
// services above noticing.
#pragma once

#include "zorhost/device/DeviceDescription.h"

#include <cstdint>
#include <span>
#include <string>

namespace zorhost::sim {

enum class LinkStatus : std::uint8_t {
    Ok,
    Offline, // no answer at all: the link is down
    Timeout, // the answer did not come within the caller's time-out
    Error,   // an answer came, but garbled or with a communication fault
    Refused, // the drive understood the request and said no; see Refusal
};

// Why a drive refused a request. Each is the drive's own decision, not the host's.
enum class Refusal : std::uint8_t {
    None,
    IllegalAddress, // no register at that address
    WrongLength,    // the block does not match the parameter's size
    ReadOnly,       // 不可修改
    WhileRunning,   // 停机修改 while the drive runs
    OutOfRange,     // outside the parameter's limits (low, high as raw values)
    AccessDenied,   // the drive's authority is below the parameter's level
    // Reasons a field-bus drive gives without saying more (Modbus exceptions).
    IllegalFunction, // the drive does not know the request
    IllegalValue,    // the value or the length of the request is not acceptable
    DeviceFailure,   // the drive failed to carry the request out
    Busy,            // the drive is busy; the request may pass later
};

struct LinkResult {
    LinkStatus status = LinkStatus::Ok;
    Refusal refusal = Refusal::None;
    // For OutOfRange: the limits the drive applied, raw, and the decimals to show them with.
    double low = 0;
    double high = 0;
    int decimals = 0;

    bool ok() const { return status == LinkStatus::Ok; }
    // Worth another try: the request may pass the next time.
    bool transient() const { return status == LinkStatus::Timeout || status == LinkStatus::Error; }
    static LinkResult Refuse(Refusal why) { return {LinkStatus::Refused, why}; }
};

class DriveLink {
public:
    virtual ~DriveLink() = default;
    virtual bool IsOnline() const = 0;
    // Reads words.size() registers from `address` on. May be called from any thread.
    virtual LinkResult Read(std::uint32_t address, std::span<std::uint16_t> words,
                            int timeout_ms) = 0;
    // Writes words.size() registers from `address` on; the drive checks the value.
    virtual LinkResult Write(std::uint32_t address, std::span<const std::uint16_t> words,
                             int timeout_ms) = 0;
    // Registers one read may carry across neighbouring parameters. Bulk transfers group
    // by it where a request costs a round trip; 1 keeps one request per parameter.
    virtual int ReadBlockLimit() const { return 1; }
    // The same for writes: registers one write may carry across parameters.
    virtual int WriteBlockLimit() const { return 1; }
};

// The message for a failed request, in Chinese as the drive documents it or in English.
std::string LinkResultText(const LinkResult& result, bool english);

using device::RegisterCount;
using device::RegisterSpan;
// Packs a raw value into `words` (RegisterCount(type) of them). False when the value does
// not fit the type or the type has no register form.
bool EncodeRaw(device::DataType type, double raw, std::span<std::uint16_t> words);
double DecodeRaw(device::DataType type, std::span<const std::uint16_t> words);
// The lowest and highest raw value of `type`.
void TypeRange(device::DataType type, double& low, double& high);
// Whether `raw` is a value of `type` (integral and within its range for the integer types).
bool FitsType(device::DataType type, double raw);

// Typed access over a link, one try each.
LinkResult ReadRaw(DriveLink& link, std::uint32_t address, device::DataType type, double& raw,
                   int timeout_ms);
LinkResult WriteRaw(DriveLink& link, std::uint32_t address, device::DataType type, double raw,
                    int timeout_ms);

} // namespace zorhost::sim
