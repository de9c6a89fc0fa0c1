// A translator bound to one window: retranslates its texts after a language change.
// Implemented by the host; made by IHostUiService::CreateWindowTranslator and deleted by
// its owner. User-interface thread only.
#pragma once

#include "module/host/BaseInterface.h"

class IHostWindowTranslator : public IBaseInterface {
public:
    // Binds the translator to `window` and remembers its original texts.
    virtual void Attach(HWND window) = 0;
    // Translates the attached window's texts into the current language; `flags` is 0.
    virtual void Retranslate(int flags) = 0;
};
