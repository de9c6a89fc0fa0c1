// The windowless forms of the program, for scripts: --list, --export and --download.
#pragma once

#include "Options.h"

namespace zorhost {
class ReferenceHost;
}

namespace zordrivebench {

// --access-code: logs every module of the loaded project in. kExitOk, or kExitAccessCode
// with a message on stderr.
int EnterAccessCode(zorhost::ReferenceHost& host, const Options& options);

// Each returns the process's exit code; results go to stdout, problems to stderr.
int RunList(const Options& options);
int RunExport(const Options& options);
int RunDownload(const Options& options);
// Defined in CompareCommand.cpp.
int RunCompare(const Options& options);

} // namespace zordrivebench
