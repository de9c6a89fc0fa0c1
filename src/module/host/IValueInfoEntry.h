// One entry of a value meaning list. Which fields count depends on the list:
// enumeration and option entries have text and value; bit entries text and bit; range
// entries text, bit (the first), width and options; digit entries text, bit (the digit
// index) and options. Implemented by the host; owned by its list.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"
#include "module/host/Variant.h"

class IValueInfoEntry : public IBaseInterface {
public:
    // `text` = the entry's name, untranslated.
    virtual void GetText(CString& text) = 0;
    // The value the entry stands for (enumerations and options).
    virtual Variant GetValue() = 0;
    // Bit number, first bit of a range, or digit index.
    virtual int GetBit() = 0;
    // Width of a bit range in bits.
    virtual int GetWidth() = 0;
    // Number of options of a range or digit entry.
    virtual int GetOptionCount() = 0;
    // Option `index` (text and value), or null. Owned by the entry.
    virtual IValueInfoEntry* GetOptionAt(int index) = 0;
};
