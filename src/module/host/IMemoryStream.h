// A growing block of memory that IParamFile::SerializeTo fills. Implemented by the host;
// made with IHostModuleManager::CreateInstance(kIID) and given back with Release().
#pragma once

#include "module/host/BaseInterface.h"

class IMemoryStream : public IBaseInterface {
public:
    static constexpr GUID kIID = GuidFromString("DC3C2CE9-A05D-4D90-BF9B-8E204E55660B");

    // Empties the stream and sets the position to `position` (0 in every use).
    virtual void Reset(int position) = 0;
    // 1: the stream is written to (the only use).
    virtual void SetMode(int mode) = 0;
    // The contiguous content; valid until the stream changes. Null when empty.
    virtual const BYTE* GetData() = 0;
    // Number of bytes of the content.
    virtual UINT GetSize() = 0;
};

inline constexpr GUID IID_IMemoryStream = IMemoryStream::kIID;
