// The oscilloscope panel, an interface of another plug-in, reached with
// IHostModuleManager::GetModuleInterface(kIID). The module only asks for its window.
#pragma once

#include "module/host/BaseInterface.h"

class IOscilloscopePanel : public IBaseInterface {
public:
    static constexpr GUID kIID = GuidFromString("52735279-0792-4CE2-B717-6F7911597C61");

    // The panel's window, or null when it has none.
    virtual HWND GetWindow() = 0;
};

inline constexpr GUID IID_IOscilloscopePanel = IOscilloscopePanel::kIID;
