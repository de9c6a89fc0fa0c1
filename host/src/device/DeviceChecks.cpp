#include "zorhost/device/DeviceChecks.h"

#include <cstdio>

namespace zorhost::device {

namespace {

std::string Hex(std::uint32_t v) {
    char buf[16];
    std::snprintf(buf, sizeof buf, "0x%04X", v);
    return buf;
}

// The place the loader would name: the entry of the file it came from, and its axis.
std::string PlaceOf(const DeviceDescription& d, std::uint32_t index) {
    const ParameterDef& p = d.parameters[index];
    std::string where;
    if (p.axis >= 0 && std::size_t(p.axis) < d.axes.size())
        where = "axisParameters[" + std::to_string(index - d.axes[p.axis].firstParameter) + "]";
    else
        where = "parameters[" + std::to_string(index) + "]";
    where += " \"" + std::string(d.Code(p)) + "\"";
    if (p.axis >= 0)
        where += " on axes[" + std::to_string(p.axis) + "]";
    return where;
}

} // namespace

LoadError CheckRegisterOverlaps(const DeviceDescription& device) {
    LoadError error;
    error.file = device.sourceFile;
    const std::size_t count = device.parameters.size(); // walked in address order
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t parameter = device.ByAddress(i);
        const ParameterDef& p = device.parameters[parameter];
        const std::uint32_t address = p.address;
        const std::uint32_t end = address + std::uint32_t(RegisterSpan(p.dataType));
        const std::string width = std::to_string(DataTypeBits(p.dataType)) + "-bit value";
        if (end > 0x10000) {
            error.place = PlaceOf(device, parameter);
            error.message = "a " + width + " at " + Hex(address) + " runs past address 0xFFFF";
            return error;
        }
        if (i + 1 < count) {
            const std::uint32_t next = device.ByAddress(i + 1);
            const std::uint32_t nextAddress = device.parameters[next].address;
            if (nextAddress < end) {
                error.place = PlaceOf(device, parameter);
                error.message = "a " + width + " at " + Hex(address) + " also covers " +
                                Hex(nextAddress) + ", the address of " + PlaceOf(device, next);
                return error;
            }
        }
    }
    return error;
}

} // namespace zorhost::device
