// The integer tags of a Variant and the figures each can hold. Both sides read and check
// values by this one rule, so a figure the module lets through is one the host can store.
#pragma once

#include "module/host/Variant.h"

#include <cstdint>

// The figures an integer tag can hold; false for any other tag.
inline bool IntegerVarTypeRange(int tag, double& lo, double& hi) {
    switch (tag) {
    case VT_I1:
        lo = INT8_MIN, hi = INT8_MAX;
        return true;
    case VT_UI1:
        lo = 0, hi = UINT8_MAX;
        return true;
    case VT_I2:
        lo = INT16_MIN, hi = INT16_MAX;
        return true;
    case VT_UI2:
        lo = 0, hi = UINT16_MAX;
        return true;
    case VT_I4:
        lo = INT32_MIN, hi = INT32_MAX;
        return true;
    case VT_UI4:
        lo = 0, hi = UINT32_MAX;
        return true;
    default:
        return false;
    }
}

inline bool IsIntegerVarType(int tag) {
    double lo = 0, hi = 0;
    return IntegerVarTypeRange(tag, lo, hi);
}
