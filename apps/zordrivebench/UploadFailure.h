// How the command-line forms report an upload that did not read every parameter.
#pragma once

#include <QString>

namespace zorhost {
class ReferenceHost;
}

namespace zordrivebench {

// Writes the message for the failed upload of module `key` to stderr and returns the exit
// code: kExitOffline when the drive dropped or never answered, else kExitReadFailed with
// each parameter the drive would not give, by code and address. `consequence` ends the
// first line ("nothing was exported").
int ReportFailedUpload(zorhost::ReferenceHost& host, const QString& key,
                       const QString& consequence);

} // namespace zordrivebench
