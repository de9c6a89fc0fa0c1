// Parameter tables (.csv) as other tools and other versions write them.
#include "FuzzSupport.h"

#include "zorhost/files/ParamFile.h"
#include "zorhost/files/ParamTableReader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zorhost::files::CParamFile file;
    std::string error;
    if (zorhost::files::ReadParamTableText(std::string(reinterpret_cast<const char*>(data), size),
                                           file, nullptr, &error))
        file.ToBytes(); // what was read must also save
    else if (error.empty())
        __builtin_trap(); // a refusal always says why
    return 0;
}
