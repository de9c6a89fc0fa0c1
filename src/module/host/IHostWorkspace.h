// The workspace of a project: its modules, its folder and its stored variable tables.
// Implemented by the host; host-owned.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"

class IHostWorkspace : public IBaseInterface {
public:
    // The project's drive modules, or null. Host-owned.
    virtual IHostModuleList* GetModuleList() = 0;
    // Which list page the panels use: 0 the live list, 1 the staging list.
    virtual int GetListStyle() = 0;
    // `dir` = the project's folder. 0 (and an empty text) when the project has none.
    virtual BOOL GetProjectDir(CString& dir) = 0;
    // The stored variable table (with its custom groups) of the device of `label`
    // (`size` bytes) in firmware `version`, or null. Host-owned.
    virtual IVarDatabase* GetDatabase(const BYTE* label, UINT size, const CString& version) = 0;
};
