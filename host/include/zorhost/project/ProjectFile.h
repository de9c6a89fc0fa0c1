// A ZorDriveBench project file: which drives a project holds, where it keeps its files and
// which list page its panels use. JSON, for example:
//
//     {
//       "format": "zordrivebench-project",
//       "version": 1,
//       "name": "Line 2",
//       "directory": "line2",
//       "listStyle": "staging",
//       "modules": [
//         { "key": "ZD3S", "deviceFile": "zd3s_servo.json", "displayName": "Spindle",
//           "number": 1, "online": true }
//       ]
//     }
//
// Only "format", "version" and "modules" with each module's "key" and "deviceFile" are
// required. Unknown keys are refused, so that a misspelt key never falls back to a default
// unnoticed. Relative paths are relative to the folder of the project file; a bare device
// file name that isn't there is looked for among the shipped device descriptions.
#pragma once

#include "zorhost/link/LinkSettings.h"

#include <string>
#include <string_view>
#include <vector>

namespace zorhost::project {

inline constexpr const char* kProjectFormat = "zordrivebench-project";
inline constexpr int kProjectVersion = 1;

// Which list page the panels of a project use; the numbers are those the workspace reports.
enum class ListStyle { Live = 0, Staging = 1 };

struct ModuleEntry {
    std::string key;         // unique in the project, compared case-sensitively
    std::string deviceFile;  // as written in the file
    std::string displayName; // empty: the product's name
    int number = 0;          // station number; 0: the position in the list, from 1
    bool online = true;
    // "link": {"type": "simulated"} (the default), {"type": "modbus-tcp", "host": "10.0.0.5",
    // "port": 502, "unit": 1, "timeout": 500} or {"type": "modbus-rtu", "device":
    // "/dev/ttyUSB0", "baud": 115200, "parity": "E", "unit": 1, "timeout": 500}.
    link::LinkSettings link;

    bool operator==(const ModuleEntry&) const = default;
};

struct ProjectFile {
    std::string name;      // empty: the file's base name
    std::string directory; // as written in the file; empty: the project has no folder
    ListStyle listStyle = ListStyle::Live;
    std::vector<ModuleEntry> modules;

    bool operator==(const ProjectFile&) const = default;
};

struct ProjectError {
    std::string file;
    std::string place; // "line 3, column 7" for broken JSON, else a path such as modules[1].key
    std::string message;
    std::string ToString() const; // "file: place: message", without empty parts
};

// Parses and checks a project. On failure `project` is left as it was.
bool ParseProjectJson(std::string_view json, const std::string& sourceName, ProjectFile& project,
                      ProjectError* error = nullptr);
bool LoadProjectFile(const std::string& path, ProjectFile& project, ProjectError* error = nullptr);

// The file's text: indented JSON with every field written, so a saved project reads back
// equal.
std::string ProjectToJson(const ProjectFile& project);
// Writes atomically: an old file stays whole when the write fails.
bool SaveProjectFile(const std::string& path, const ProjectFile& project,
                     std::string* error = nullptr);

// `path` made absolute against `baseDir` (the folder of the project file); empty stays
// empty.
std::string ResolvePath(const std::string& baseDir, const std::string& path);
// The device description a module names: relative to `baseDir`, else, for a bare file name
// missing there, the one of that name in `devicesDir`.
std::string ResolveDeviceFile(const std::string& baseDir, const std::string& devicesDir,
                              const std::string& deviceFile);

const char* ListStyleName(ListStyle style); // "live", "staging"

} // namespace zorhost::project
