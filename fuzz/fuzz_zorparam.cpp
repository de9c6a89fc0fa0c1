// Parameter files (.zorparam). The first byte picks how the rest is taken: odd, as it is;
// even, with the header's length and checksum made to agree with the payload, so that
// mutations reach the contents behind them.
#include "FuzzSupport.h"

#include "zorhost/files/ParamFile.h"
#include "zorhost/files/ParamFileCodec.h"

#include <zlib.h>

#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zorhost::files;
    if (size == 0)
        return 0;
    std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    if ((data[0] & 1) == 0 && bytes.size() >= kZorparamHeaderBytes) {
        const auto* payload = reinterpret_cast<const Bytef*>(bytes.data() + kZorparamHeaderBytes);
        const auto length = std::uint32_t(bytes.size() - kZorparamHeaderBytes);
        const auto crc = std::uint32_t(crc32(0L, payload, length));
        std::memcpy(&bytes[12], &length, 4);
        std::memcpy(&bytes[16], &crc, 4);
    }
    CParamFile file;
    std::string error;
    if (file.FromBytes(bytes, &error)) {
        // What was read saves, and the saved bytes read back.
        CParamFile again;
        if (!again.FromBytes(file.ToBytes(), &error))
            __builtin_trap();
    } else if (error.empty()) {
        __builtin_trap();
    }
    return 0;
}
