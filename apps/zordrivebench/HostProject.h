// Bringing a project file (or the built-in demo) into the reference host.
#pragma once

#include <zorhost/project/ProjectFile.h>

#include <QString>

namespace zorhost {
class ReferenceHost;
}

namespace zordrivebench {

struct LoadedProject {
    zorhost::project::ProjectFile file;
    QString path; // empty for the built-in demo
    // The name shown for the project: its own, else the file's base name, else the demo's.
    QString Title(bool english) const;
};

// The demo as a project file: the three shipped drives, online.
zorhost::project::ProjectFile DemoProjectFile();

// Loads the project file at `path` (empty: the demo) into `host`. On failure the host is
// left without a project and `error` names the file and the place.
bool LoadIntoHost(zorhost::ReferenceHost& host, const QString& path, LoadedProject& loaded,
                  QString* error);

} // namespace zordrivebench
