// How the host's services find a module and the link to its drive by the module's key.
#pragma once

#include <afx/CString.h>

#include <memory>

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
    // Null when the module has no drive behind it. A service keeps the link it was given
    // for as long as it uses it: a request may wait on the window thread while the window's
    // events run, and one of them may close the project.
    virtual std::shared_ptr<DriveLink> FindLink(const CString& key) = 0;
    // Whether `link` is still the link of the module `key`; a service that waited for a
    // drive asks before it touches the module again. Held links keep their addresses, so
    // the link of another project never passes for it.
    bool Serves(const CString& key, const std::shared_ptr<DriveLink>& link) {
        return link && FindLink(key) == link;
    }
};

} // namespace zorhost::sim
