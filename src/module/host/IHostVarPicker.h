// Service: the host's variable picker. The module asks for it by this id but calls none
// of its operations, so the contract declares none.
#pragma once

#include "module/host/BaseInterface.h"

class IHostVarPicker : public IBaseInterface {
public:
    static constexpr GUID kIID = GuidFromString("285C1407-8294-4E30-94D0-51D8047EE5BB");
};

inline constexpr GUID IID_IHostVarPicker = IHostVarPicker::kIID;
