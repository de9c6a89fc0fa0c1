// Where a project keeps the custom groups of each module, and their loading when the
// project opens. The module writes the file (through IVarDatabase::SaveToFile); the host
// reads it back here.
#pragma once

#include "zorhost/model/ProjectModel.h"

#include <string>
#include <vector>

namespace zorhost::model {

inline constexpr const char* kCustomGroupFileName = "Variables.dat";
// What a damaged store is renamed to, beside it, so that the next save can't destroy the
// only copy of the user's groups.
inline constexpr const char* kDamagedSuffix = ".damaged";

// "<project dir>/<display name>_<module key>/Variables.dat"; empty without a project dir.
std::string CustomGroupFile(const CString& projectDir, IHostDeviceModule& module);

// Reads the custom groups of every module of `workspace` from the project folder. A
// missing file means no groups. A damaged file is renamed to "Variables.dat.damaged", its
// module starts without custom groups, and one line of `problems` names the file, the
// place and the reason. Nothing here stops the project from opening.
void LoadCustomGroups(CWorkspace& workspace, std::vector<std::string>& problems);

} // namespace zorhost::model
