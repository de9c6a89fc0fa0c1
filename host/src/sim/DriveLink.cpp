#include "zorhost/sim/DriveLink.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

namespace zorhost::sim {

using device::DataType;

namespace {

bool Integral(double x) {
    return std::isfinite(x) && std::floor(x) == x;
}

template <class T> bool InRange(double x) {
    return Integral(x) && x >= double(std::numeric_limits<T>::min()) &&
           x <= double(std::numeric_limits<T>::max());
}

std::string Figure(double raw, int decimals) {
    char text[64];
    if (decimals > 0)
        std::snprintf(text, sizeof text, "%.*f", decimals, raw / std::pow(10.0, decimals));
    else
        std::snprintf(text, sizeof text, "%.15g", raw);
    return text;
}

} // namespace

void TypeRange(DataType type, double& low, double& high) {
    switch (type) {
    case DataType::Int8:
        low = -128, high = 127;
        return;
    case DataType::UInt8:
        low = 0, high = 255;
        return;
    case DataType::Int16:
        low = -32768, high = 32767;
        return;
    case DataType::UInt16:
        low = 0, high = 65535;
        return;
    case DataType::Int32:
        low = -2147483648.0, high = 2147483647.0;
        return;
    case DataType::UInt32:
        low = 0, high = 4294967295.0;
        return;
    case DataType::Bool:
        low = 0, high = 1;
        return;
    case DataType::Float:
        low = -double(std::numeric_limits<float>::max());
        high = double(std::numeric_limits<float>::max());
        return;
    default:
        low = -std::numeric_limits<double>::max();
        high = std::numeric_limits<double>::max();
        return;
    }
}

std::string LinkResultText(const LinkResult& r, bool en) {
    switch (r.status) {
    case LinkStatus::Ok:
        return {};
    case LinkStatus::Offline:
        return en ? "device offline" : "设备离线";
    case LinkStatus::Timeout:
        return en ? "no answer from the drive in time" : "通讯超时，驱动器无应答";
    case LinkStatus::Error:
        return en ? "communication error" : "通讯错误";
    case LinkStatus::Refused:
        break;
    }
    switch (r.refusal) {
    case Refusal::IllegalAddress:
        return en ? "the drive has no register at this address" : "非法地址";
    case Refusal::WrongLength:
        return en ? "wrong data length" : "数据长度错误";
    case Refusal::ReadOnly:
        return en ? "the parameter can't be changed" : "该参数不可修改";
    case Refusal::WhileRunning:
        return en ? "can only be changed at standstill; stop the drive first"
                  : "运行中不可修改，请先停机";
    case Refusal::OutOfRange: {
        const std::string low = Figure(r.low, r.decimals), high = Figure(r.high, r.decimals);
        return en ? "value out of range (" + low + " to " + high + ")"
                  : "设定值超出范围(" + low + "~" + high + ")";
    }
    case Refusal::AccessDenied:
        return en ? "access level of the drive too low" : "驱动器访问权限不足";
    case Refusal::IllegalFunction:
        return en ? "the drive does not support this request" : "驱动器不支持该功能码";
    case Refusal::IllegalValue:
        return en ? "illegal data value" : "非法数据值";
    case Refusal::DeviceFailure:
        return en ? "the drive failed to carry out the request" : "驱动器执行失败";
    case Refusal::Busy:
        return en ? "the drive is busy; try again later" : "驱动器忙，请稍后再试";
    case Refusal::None:
        break;
    }
    return en ? "refused by the drive" : "驱动器拒绝";
}

bool FitsType(DataType type, double raw) {
    switch (type) {
    case DataType::Int8:
        return InRange<std::int8_t>(raw);
    case DataType::UInt8:
        return InRange<std::uint8_t>(raw);
    case DataType::Int16:
        return InRange<std::int16_t>(raw);
    case DataType::UInt16:
        return InRange<std::uint16_t>(raw);
    case DataType::Int32:
        return InRange<std::int32_t>(raw);
    case DataType::UInt32:
        return InRange<std::uint32_t>(raw);
    case DataType::Bool:
        return raw == 0 || raw == 1;
    case DataType::Float:
        return std::isfinite(raw) && std::fabs(raw) <= double(std::numeric_limits<float>::max());
    case DataType::Double:
    case DataType::Date:
        return std::isfinite(raw);
    case DataType::String:
    case DataType::Unknown:
        return false;
    }
    return false;
}

bool EncodeRaw(DataType type, double raw, std::span<std::uint16_t> words) {
    const int n = RegisterCount(type);
    if (n == 0 || int(words.size()) != n || !FitsType(type, raw))
        return false;
    std::uint64_t bits = 0;
    switch (type) {
    case DataType::Int8:
    case DataType::Int16:
        bits = std::uint16_t(std::int16_t(raw));
        break;
    case DataType::Int32:
        bits = std::uint32_t(std::int32_t(raw));
        break;
    case DataType::Float: {
        const float f = float(raw);
        std::uint32_t u;
        std::memcpy(&u, &f, sizeof u);
        bits = u;
        break;
    }
    case DataType::Double:
    case DataType::Date:
        std::memcpy(&bits, &raw, sizeof bits);
        break;
    default: // unsigned kinds and booleans
        bits = std::uint64_t(raw);
        break;
    }
    for (int i = 0; i < n; ++i)
        words[size_t(i)] = std::uint16_t(bits >> (16 * i));
    return true;
}

double DecodeRaw(DataType type, std::span<const std::uint16_t> words) {
    std::uint64_t bits = 0;
    for (size_t i = 0; i < words.size() && i < 4; ++i)
        bits |= std::uint64_t(words[i]) << (16 * i);
    switch (type) {
    case DataType::Int8:
        return double(std::int8_t(bits & 0xff));
    case DataType::UInt8:
        return double(bits & 0xff);
    case DataType::Int16:
        return double(std::int16_t(bits & 0xffff));
    case DataType::UInt16:
        return double(bits & 0xffff);
    case DataType::Bool:
        return (bits & 0xffff) != 0 ? 1.0 : 0.0;
    case DataType::Int32:
        return double(std::int32_t(bits & 0xffffffffu));
    case DataType::UInt32:
        return double(bits & 0xffffffffu);
    case DataType::Float: {
        const std::uint32_t u = std::uint32_t(bits);
        float f;
        std::memcpy(&f, &u, sizeof f);
        return double(f);
    }
    case DataType::Double:
    case DataType::Date: {
        double d;
        std::memcpy(&d, &bits, sizeof d);
        return d;
    }
    case DataType::String:
    case DataType::Unknown:
        break;
    }
    return 0;
}

LinkResult ReadRaw(DriveLink& link, std::uint32_t address, DataType type, double& raw,
                   int timeout_ms) {
    std::uint16_t words[4] = {};
    const int n = RegisterCount(type);
    if (n == 0)
        return LinkResult::Refuse(Refusal::WrongLength);
    LinkResult r = link.Read(address, std::span<std::uint16_t>(words, size_t(n)), timeout_ms);
    if (r.ok())
        raw = DecodeRaw(type, std::span<const std::uint16_t>(words, size_t(n)));
    return r;
}

LinkResult WriteRaw(DriveLink& link, std::uint32_t address, DataType type, double raw,
                    int timeout_ms) {
    std::uint16_t words[4] = {};
    const int n = RegisterCount(type);
    if (n == 0)
        return LinkResult::Refuse(Refusal::WrongLength);
    if (!EncodeRaw(type, raw, std::span<std::uint16_t>(words, size_t(n)))) {
        // The value has no form in this type: the request can't even be built.
        LinkResult r = LinkResult::Refuse(Refusal::OutOfRange);
        TypeRange(type, r.low, r.high);
        return r;
    }
    return link.Write(address, std::span<const std::uint16_t>(words, size_t(n)), timeout_ms);
}

} // namespace zorhost::sim
