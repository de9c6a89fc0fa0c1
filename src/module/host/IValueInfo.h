// The meaning of a parameter's value. Implemented by the host; owned by its attribute.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"

class IValueInfo : public IBaseInterface {
public:
    // 0 plain number, 1 enumeration, 2 bits, 3 bit ranges, 4 digits, 5 and 6 unused.
    virtual int GetKind() = 0;
    // Kind 1: entries of (text, value). Null for other kinds. Owned by the info.
    virtual IValueInfoList* GetEnumList() = 0;
    // Kind 2: entries of (text, bit number). Null for other kinds.
    virtual IValueInfoList* GetBitList() = 0;
    // Kind 3: entries of (text, first bit, width, options). Null for other kinds.
    virtual IValueInfoList* GetBitRangeList() = 0;
    // Kind 4: entries of (text, digit index, options). Null for other kinds.
    virtual IValueInfoList* GetDigitList() = 0;
};
