// How the host's services find a module and the link to its drive by the module's key.
#pragma once

#include <afx/CString.h>

namespace zorhost::model {
class CDeviceModule;
}

namespace zorhost::sim {

class DriveLink;

class DriveDirectory {
public:
    virtual ~DriveDirectory() = default;
    // Null when the project has no module of that key.
    virtual model::CDeviceModule* FindModule(const CString& key) = 0;
    // Null when the module has no drive behind it.
    virtual DriveLink* FindLink(const CString& key) = 0;
};

} // namespace zorhost::sim
