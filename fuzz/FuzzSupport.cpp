#include "FuzzSupport.h"

#include "zorhost/device/DeviceLoader.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <unistd.h>

namespace fuzz {

std::shared_ptr<const zorhost::device::DeviceDescription> ShippedDevice(const char* fileName) {
    static std::map<std::string, std::shared_ptr<const zorhost::device::DeviceDescription>> cache;
    auto& slot = cache[fileName];
    if (!slot) {
        const std::string path =
            zorhost::device::DefaultDeviceDirectory() + "/" + std::string(fileName);
        zorhost::device::LoadResult loaded = zorhost::device::LoadDeviceFile(path);
        if (!loaded) {
            std::fprintf(stderr, "%s\n", loaded.error.ToString().c_str());
            std::abort();
        }
        slot = loaded.device;
    }
    return slot;
}

const std::string& ScratchFile(const std::uint8_t* data, std::size_t size, const char* suffix) {
    static std::map<std::string, std::string> paths;
    std::string& path = paths[suffix];
    if (path.empty()) {
        const char* dir = std::getenv("TMPDIR");
        path = std::string(dir != nullptr && *dir ? dir : "/tmp") + "/parmira-fuzz-" +
               std::to_string(::getpid()) + suffix;
    }
    std::FILE* f = std::fopen(path.c_str(), "wb");
    if (f == nullptr) {
        std::perror(path.c_str());
        std::abort();
    }
    if (size > 0 && std::fwrite(data, 1, size, f) != size)
        std::abort();
    std::fclose(f);
    return path;
}

} // namespace fuzz
