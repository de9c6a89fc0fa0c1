// A stored variable table of the workspace, with its custom groups. Implemented by the
// host; host-owned, from IHostWorkspace::GetDatabase. The file format is the host's.
#pragma once

#include "module/host/BaseInterface.h"

class IVarDatabase : public IBaseInterface {
public:
    // Writes the table to `path`, replacing the file atomically. Nonzero on success.
    virtual BOOL SaveToFile(const CString& path) = 0;
};
