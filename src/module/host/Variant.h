// Variant: a value of a drive variable, with the type tags of the automation VARIANT.
// A plain value type: copyable, no conversions. Number/text conversions and comparisons
// with scaling are the host's IHostVarUtil.
#pragma once

#include <afx/CString.h>
#include <afx/afxtypes.h>

#include <cstdint>

typedef unsigned short VARTYPE;

enum : VARTYPE {
    VT_EMPTY = 0, // no value
    VT_NULL = 1,  // no value
    VT_I2 = 2,    // signed 16-bit
    VT_I4 = 3,    // signed 32-bit
    VT_R4 = 4,    // float
    VT_R8 = 5,    // double
    VT_DATE = 7,  // date as a double (days)
    VT_BSTR = 8,  // text
    VT_BOOL = 11, // boolean: -1 true, 0 false
    VT_I1 = 16,   // signed 8-bit
    VT_UI1 = 17,  // unsigned 8-bit
    VT_UI2 = 18,  // unsigned 16-bit
    VT_UI4 = 19,  // unsigned 32-bit
};

constexpr int16_t VARIANT_TRUE = -1;
constexpr int16_t VARIANT_FALSE = 0;

class Variant {
public:
    VARTYPE vt = VT_EMPTY;
    // Payload of the numeric tags; only the member of the present tag is meaningful.
    union {
        int16_t iVal;
        int32_t lVal;
        float fltVal;
        double dblVal;
        double date;
        int16_t boolVal;
        int8_t cVal;
        uint8_t bVal;
        uint16_t uiVal;
        uint32_t ulVal;
    };
    // Payload of VT_BSTR.
    CString bstrVal;

    Variant() : dblVal(0) {}

    // A variant of tag `tag` with a zero payload: the "tag preset" form that
    // IHostVarUtil::DoubleToVariant fills.
    static Variant OfType(VARTYPE tag) {
        Variant v;
        v.vt = tag;
        return v;
    }
    static Variant Null() { return OfType(VT_NULL); }
    static Variant I2(int16_t x) {
        Variant v = OfType(VT_I2);
        v.iVal = x;
        return v;
    }
    static Variant I4(int32_t x) {
        Variant v = OfType(VT_I4);
        v.lVal = x;
        return v;
    }
    static Variant R4(float x) {
        Variant v = OfType(VT_R4);
        v.fltVal = x;
        return v;
    }
    static Variant R8(double x) {
        Variant v = OfType(VT_R8);
        v.dblVal = x;
        return v;
    }
    static Variant Date(double days) {
        Variant v = OfType(VT_DATE);
        v.date = days;
        return v;
    }
    static Variant Str(const CString& text) {
        Variant v = OfType(VT_BSTR);
        v.bstrVal = text;
        return v;
    }
    static Variant Bool(bool x) {
        Variant v = OfType(VT_BOOL);
        v.boolVal = x ? VARIANT_TRUE : VARIANT_FALSE;
        return v;
    }
    static Variant I1(int8_t x) {
        Variant v = OfType(VT_I1);
        v.cVal = x;
        return v;
    }
    static Variant UI1(uint8_t x) {
        Variant v = OfType(VT_UI1);
        v.bVal = x;
        return v;
    }
    static Variant UI2(uint16_t x) {
        Variant v = OfType(VT_UI2);
        v.uiVal = x;
        return v;
    }
    static Variant UI4(uint32_t x) {
        Variant v = OfType(VT_UI4);
        v.ulVal = x;
        return v;
    }

    // Tag 0 only.
    bool IsEmpty() const { return vt == VT_EMPTY; }
    // Tag 0 or 1: "no value" in most places.
    bool IsEmptyOrNull() const { return vt == VT_EMPTY || vt == VT_NULL; }
    // Back to tag 0 with no payload.
    void Clear() { *this = Variant(); }

    // Same tag and same payload, bit for bit for the numbers. No conversion: I4 1 and
    // UI4 1 differ. Two empty (or two null) variants are equal.
    bool operator==(const Variant& o) const {
        if (vt != o.vt)
            return false;
        switch (vt) {
        case VT_I2:
            return iVal == o.iVal;
        case VT_I4:
            return lVal == o.lVal;
        case VT_R4:
            return fltVal == o.fltVal;
        case VT_R8:
            return dblVal == o.dblVal;
        case VT_DATE:
            return date == o.date;
        case VT_BSTR:
            return bstrVal == o.bstrVal;
        case VT_BOOL:
            return boolVal == o.boolVal;
        case VT_I1:
            return cVal == o.cVal;
        case VT_UI1:
            return bVal == o.bVal;
        case VT_UI2:
            return uiVal == o.uiVal;
        case VT_UI4:
            return ulVal == o.ulVal;
        default:
            return true; // empty, null, or a tag without a payload of ours
        }
    }
    bool operator!=(const Variant& o) const { return !(*this == o); }
};
