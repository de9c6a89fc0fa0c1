// What the integer attributes of a parameter mean. The interfaces keep them as int, as the
// host hands them over; these names are for reading and comparing them.
#pragma once

// IVarAttr::GetModifyMode
enum VarModifyMode {
    MODIFY_ANY_TIME = 0,       // "任意修改"
    MODIFY_AT_STANDSTILL = 1,  // "停机修改"
    MODIFY_NEVER = 2,          // "不可修改": read-only
    MODIFY_NOT_TRANSFERRED = 3 // left out of lists and transfers
};

// IVarAttr::GetEffectMode
enum VarEffectMode {
    EFFECT_AT_ONCE = 1,           // "立即生效"
    EFFECT_AFTER_POWER_CYCLE = 2, // "再次通电"
    EFFECT_AT_STANDSTILL = 3      // "停机生效"
};

// IVarAttr::GetDisplayFormat
enum VarDisplayFormat {
    FORMAT_DECIMAL = 0,
    FORMAT_HEX = 1,
    FORMAT_PER_UNIT = 2,
    FORMAT_RAW = 3,
    FORMAT_HIDDEN = 4 // "******" wherever the value would stand
};

// IVarObjEx::GetPerUnitMode of a parameter of FORMAT_PER_UNIT (-1 reads as raw too)
enum VarPerUnitMode { PER_UNIT_RAW = 0, PER_UNIT_PERCENT = 1, PER_UNIT_FIRST_BASE = 2 };

// IValueInfo::GetKind; 5 and 6 exist and are read as VALUE_INFO_PLAIN
enum ValueInfoKind {
    VALUE_INFO_PLAIN = 0,
    VALUE_INFO_ENUM = 1,       // (text, value) list: a drop-down
    VALUE_INFO_BITS = 2,       // (text, bit number)
    VALUE_INFO_BIT_RANGES = 3, // (text, first bit, width, options)
    VALUE_INFO_DIGITS = 4      // (text, digit index, options)
};
