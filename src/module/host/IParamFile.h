// A parameter file object (.zorparam, or a parameter table read by
// IHostDeviceHelper::ReadCsvParamFile). Implemented by the host; made with
// IHostModuleManager::CreateInstance(kIID) and given back with Release(), which also
// frees its table. The byte format is the host's.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"

class IParamFile : public IBaseInterface {
public:
    static constexpr GUID kIID = GuidFromString("58053A56-E8CC-41B9-90D6-1E848D60C176");

    // Writes the whole object into `stream`. Nonzero on success.
    virtual BOOL SerializeTo(IMemoryStream* stream) = 0;
    // The electronic label, valid until the object changes; null when there is none.
    virtual const BYTE* GetElecLabel() = 0;
    // Number of bytes of the label.
    virtual UINT GetElecLabelSize() = 0;
    // Copies `size` bytes of `label` into the object.
    virtual void SetElecLabel(const BYTE* label, UINT size) = 0;
    // The access level under which the file is written.
    virtual void SetAccessLevel(int level) = 0;
    // The firmware version text of the device.
    virtual void SetVersionText(const CString& version) = 0;
    // Reads the file at `path` into the object. Nonzero on success.
    virtual BOOL Open(const CString& path) = 0;
    // Writes the object to `path` (replacing a file there). Nonzero on success.
    virtual BOOL Save(const CString& path) = 0;
    // The object's variable table, or null. Owned by the file object.
    virtual IParamFileTable* GetVarList() = 0;
    // Binds the object to `module` (may be null) before reading.
    virtual void LoadContext(IHostDeviceModule* module) = 0;
};

inline constexpr GUID IID_IParamFile = IParamFile::kIID;
