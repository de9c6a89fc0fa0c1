// The Config/*.ini files: device lists (one device per line) and the attribute update list,
// read by the host's text line reader and the module's line parser.
#include "FuzzSupport.h"

#include "table/OldProtocolDevice.h"
#include "zorhost/services/HostVarUtil.h"

#include <memory>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static zorhost::CHostVarUtil util;
    std::vector<CString> lines;
    zorhost::CHostVarUtil::SplitTextLines(std::string(reinterpret_cast<const char*>(data), size),
                                          lines);
    COldProtocolDeviceAgent agent;
    for (const CString& line : lines)
        if (COldProtocolDevice* device = COldProtocolDeviceAgent::ParseLine(line, &util))
            agent.AddDevice(device);
    agent.IsOldProtocolDevice(1, 2);
    util.IniInt(lines, "ProtocalType", "0x000B_0x011A", -1);
    return 0;
}
