#include "zorhost/InstallLayout.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace zorhost::layout {

namespace {

constexpr const char* kModuleFile = "QXParmira.so";

std::string Root() {
    return (std::filesystem::path(ProgramDir()) / "..").lexically_normal().string();
}

} // namespace

std::string ProgramDir() {
    char buf[4096];
    const ssize_t n = ::readlink("/proc/self/exe", buf, sizeof buf - 1);
    if (n <= 0)
        return ".";
    const std::string exe(buf, std::size_t(n));
    const std::size_t slash = exe.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? std::string("/") : exe.substr(0, slash);
}

std::string ModuleLibraryPath() {
    const std::filesystem::path beside = std::filesystem::path(ProgramDir()) / kModuleFile;
    std::error_code ec;
    if (std::filesystem::exists(beside, ec))
        return beside.string();
    return (std::filesystem::path(Root()) / "modules" / kModuleFile).string();
}

std::string DevicesDir() {
    if (const char* env = std::getenv("ZOR_DEVICES_DIR"); env != nullptr && *env != '\0')
        return env;
    return (std::filesystem::path(Root()) / "devices").string();
}

} // namespace zorhost::layout
