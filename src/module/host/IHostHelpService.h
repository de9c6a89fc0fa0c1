// Service: the host's help viewer. Implemented by the host; got through the query
// callback under kIID.
#pragma once

#include "module/host/BaseInterface.h"

class IHostHelpService : public IBaseInterface {
public:
    static constexpr GUID kIID = GuidFromString("C1F8DB89-3D66-4C18-9DC1-3AF92E268229");

    // Shows help from `helpFile` for the caller named by `context`. `command` is 0 and
    // `data` 15 in the panel's use. Nonzero when help was shown.
    virtual BOOL ShowHelp(int command, const CString& helpFile, const CString& context,
                          int data) = 0;
};

inline constexpr GUID IID_IHostHelpService = IHostHelpService::kIID;
