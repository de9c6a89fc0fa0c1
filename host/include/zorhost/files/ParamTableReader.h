// Reads a parameter table (.csv) into a parameter file object.
#pragma once

#include "module/host/HostFwd.h"

#include <afx/CString.h>

#include <string>

namespace zorhost::files {

class CParamFile;

// Reads the table at `path` into `file`, replacing what it held. Parameters that `module`
// (may be null) knows by code and address take its attributes; the others get what the
// row states. The label of line 5 becomes the file's label. On failure the file stays as
// it was and `error` names the path and the line.
bool ReadParamTable(const CString& path, CParamFile& file, IHostDeviceModule* module,
                    std::string* error);

} // namespace zorhost::files
