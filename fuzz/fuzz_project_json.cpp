// Project files. What is accepted must also save and read back to the same project.
#include "FuzzSupport.h"

#include "zorhost/project/ProjectFile.h"

#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zorhost::project;
    ProjectFile project;
    ProjectError error;
    if (!ParseProjectJson(std::string_view(reinterpret_cast<const char*>(data), size),
                          "fuzz.zorproj", project, &error))
        return 0;
    ProjectFile again;
    if (!ParseProjectJson(ProjectToJson(project), "saved.zorproj", again, &error) ||
        !(again == project))
        __builtin_trap();
    return 0;
}
