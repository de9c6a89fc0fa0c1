#include "zorhost/link/RegisterMap.h"

#include <algorithm>
#include <cstring>

namespace zorhost::link {

using sim::LinkResult;
using sim::LinkStatus;
using sim::Refusal;

Exception ExceptionFor(const LinkResult& r) {
    if (r.ok())
        return Exception::None;
    if (r.status != LinkStatus::Refused)
        return Exception::DeviceFailure;
    switch (r.refusal) {
    case Refusal::IllegalAddress:
        return Exception::IllegalAddress;
    case Refusal::IllegalFunction:
        return Exception::IllegalFunction;
    case Refusal::WrongLength:
    case Refusal::OutOfRange:
    case Refusal::IllegalValue:
        return Exception::IllegalValue;
    case Refusal::WhileRunning:
    case Refusal::Busy:
        return Exception::Busy;
    case Refusal::ReadOnly:
    case Refusal::AccessDenied:
    case Refusal::DeviceFailure:
    case Refusal::None:
        break;
    }
    return Exception::DeviceFailure;
}

LinkResult ResultFor(Exception e) {
    switch (e) {
    case Exception::None:
        return {};
    case Exception::IllegalFunction:
        return LinkResult::Refuse(Refusal::IllegalFunction);
    case Exception::IllegalAddress:
        return LinkResult::Refuse(Refusal::IllegalAddress);
    case Exception::IllegalValue:
        return LinkResult::Refuse(Refusal::IllegalValue);
    case Exception::Busy:
        return LinkResult::Refuse(Refusal::Busy);
    case Exception::DeviceFailure:
        break;
    }
    return LinkResult::Refuse(Refusal::DeviceFailure);
}

namespace {

void PutDouble(double x, std::span<std::uint16_t> words) {
    std::uint64_t bits;
    std::memcpy(&bits, &x, sizeof bits);
    for (int i = 0; i < 4; ++i)
        words[size_t(i)] = std::uint16_t(bits >> (16 * i));
}

double GetDouble(std::span<const std::uint16_t> words) {
    std::uint64_t bits = 0;
    for (int i = 0; i < 4; ++i)
        bits |= std::uint64_t(words[size_t(i)]) << (16 * i);
    double x;
    std::memcpy(&x, &bits, sizeof x);
    return x;
}

} // namespace

void EncodeRefusal(const LinkResult& r, std::span<std::uint16_t, kRefusalRegisters> words) {
    std::fill(words.begin(), words.end(), 0);
    if (r.status != LinkStatus::Refused)
        return;
    words[0] = std::uint16_t(r.refusal);
    words[1] = std::uint16_t(std::int16_t(r.decimals));
    PutDouble(r.low, words.subspan(2, 4));
    PutDouble(r.high, words.subspan(6, 4));
}

LinkResult DecodeRefusal(std::span<const std::uint16_t, kRefusalRegisters> words) {
    if (words[0] == 0 || words[0] > std::uint16_t(Refusal::Busy))
        return {};
    LinkResult r = LinkResult::Refuse(Refusal(words[0]));
    r.decimals = std::int16_t(words[1]);
    r.low = GetDouble(words.subspan(2, 4));
    r.high = GetDouble(words.subspan(6, 4));
    return r;
}

void PackBytes(std::span<const std::uint8_t> bytes, std::span<std::uint16_t> words) {
    for (size_t i = 0; i < words.size(); ++i) {
        const std::uint8_t hi = 2 * i < bytes.size() ? bytes[2 * i] : 0;
        const std::uint8_t lo = 2 * i + 1 < bytes.size() ? bytes[2 * i + 1] : 0;
        words[i] = std::uint16_t(hi << 8 | lo);
    }
}

std::vector<std::uint8_t> UnpackBytes(std::span<const std::uint16_t> words) {
    std::vector<std::uint8_t> bytes;
    for (std::uint16_t w : words) {
        bytes.push_back(std::uint8_t(w >> 8));
        bytes.push_back(std::uint8_t(w & 0xff));
    }
    return bytes;
}

void SwapToWireOrder(const device::DeviceDescription& device, std::uint32_t address,
                     std::span<std::uint16_t> words) {
    if (device.product.wordOrder != device::WordOrder::HighFirst)
        return;
    for (std::uint32_t i = 0; i < words.size();) {
        const std::uint32_t index = device.FindByAddress(address + i);
        const int n =
            index == device::kNoIndex ? 1 : sim::RegisterSpan(device.parameters[index].dataType);
        if (n > 1 && i + std::uint32_t(n) <= words.size())
            std::reverse(words.begin() + i, words.begin() + i + std::uint32_t(n));
        i += std::uint32_t(n);
    }
}

} // namespace zorhost::link
