// Device descriptions: the JSON a product ships, from any source.
#include "FuzzSupport.h"

#include "zorhost/device/DeviceLoader.h"

#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const zorhost::device::LoadResult result = zorhost::device::ParseDeviceJson(
        std::string_view(reinterpret_cast<const char*>(data), size), "fuzz.json");
    // Either a description or a refusal that names where; never both, never neither.
    if (bool(result) == !result.error.message.empty())
        __builtin_trap();
    return 0;
}
