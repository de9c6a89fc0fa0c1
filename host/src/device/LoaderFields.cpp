#include "Loader.h"

#include <algorithm>
#include <cctype>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace zorhost::device {

void Refuse(const std::string& place, const std::string& message) {
    throw Refusal{place, message};
}

std::string Origin::Where(const char* field) const {
    return place + field + (axis >= 0 ? " on axes[" + std::to_string(axis) + "]" : "");
}

namespace {

struct TypeName {
    const char* name;
    DataType type;
};
constexpr TypeName kTypeNames[] = {
    {"i16", DataType::Int16},  {"i32", DataType::Int32},  {"f32", DataType::Float},
    {"f64", DataType::Double}, {"date", DataType::Date},  {"string", DataType::String},
    {"bool", DataType::Bool},  {"i8", DataType::Int8},    {"u8", DataType::UInt8},
    {"u16", DataType::UInt16}, {"u32", DataType::UInt32},
};

} // namespace

DataType TypeFromName(std::string_view name) {
    for (const TypeName& t : kTypeNames) {
        if (name == t.name)
            return t.type;
    }
    return DataType::Unknown;
}

bool IsIntegerType(DataType t) {
    switch (t) {
    case DataType::Int8:
    case DataType::UInt8:
    case DataType::Int16:
    case DataType::UInt16:
    case DataType::Int32:
    case DataType::UInt32:
    case DataType::Bool:
        return true;
    default:
        return false;
    }
}

void TypeRange(DataType t, double& lo, double& hi) {
    switch (t) {
    case DataType::Int8:
        lo = -128, hi = 127;
        return;
    case DataType::UInt8:
        lo = 0, hi = 255;
        return;
    case DataType::Int16:
        lo = -32768, hi = 32767;
        return;
    case DataType::UInt16:
        lo = 0, hi = 65535;
        return;
    case DataType::Bool:
        lo = 0, hi = 1;
        return;
    case DataType::Int32:
        lo = -2147483648.0, hi = 2147483647.0;
        return;
    case DataType::UInt32:
        lo = 0, hi = 4294967295.0;
        return;
    case DataType::Float:
        lo = -double(FLT_MAX), hi = double(FLT_MAX);
        return;
    default:
        lo = -DBL_MAX, hi = DBL_MAX;
        return;
    }
}

std::string Hex(std::uint32_t v) {
    char buf[16];
    std::snprintf(buf, sizeof buf, "0x%04X", v);
    return buf;
}

// A key the object may not hold is named; of several, the first in key order.
void Loader::Keys(const Object& o, const std::string& place,
                  std::initializer_list<std::string_view> allowed) {
    std::string_view unknown;
    bool found = false;
    for (std::uint32_t i = 0; i < o.Size(); ++i) {
        const std::string_view key = o.KeyAt(i);
        const bool known = std::any_of(allowed.begin(), allowed.end(), [&](std::string_view a) {
            return a.size() == key.size() && a[0] == key[0] && a == key;
        });
        if (known)
            continue;
        if (!found || key < unknown)
            unknown = key;
        found = true;
    }
    if (found)
        Refuse(place, "unknown key \"" + std::string(unknown) + "\"");
}

json::Value Loader::Need(const Object& o, const char* key, const std::string& place) {
    Value v = o.Find(key);
    if (v.IsUndefined())
        Refuse(place, std::string("missing \"") + key + "\"");
    return v;
}

std::string_view Loader::String(const Object& o, const char* key, const std::string& place,
                                bool required) {
    Value v = required ? Need(o, key, place) : o.Find(key);
    if (v.IsUndefined())
        return {};
    if (!v.IsString())
        Refuse(place + "." + key, "expected a text");
    return v.Text();
}

std::string_view Loader::OneLine(const Object& o, const char* key, const std::string& place,
                                 bool required) {
    std::string_view s = String(o, key, place, required);
    for (char c : s)
        if (c == '\t' || c == '\n' || c == '\r')
            Refuse(place + "." + key, std::string("holds a ") + (c == '\t' ? "tab" : "line break") +
                                          "; it must be one line of text");
    return s;
}

// The place of an error is only put together when there is one.
double Loader::Number(const Value& v, const std::string& place, const char* key) {
    if (v.IsNumber())
        return v.Number();
    if (v.IsString()) {
        // Hexadecimal is allowed as a text, "0x0229", since JSON has no such literal.
        const std::string s(v.Text());
        if (s.size() > 2 && s[0] == '0' && (s[1] == 'x' || s[1] == 'X') && s.size() <= 10) {
            char* end = nullptr;
            unsigned long value = std::strtoul(s.c_str() + 2, &end, 16);
            if (end && *end == '\0')
                return double(value);
        }
        Refuse(key ? place + "." + key : place, "\"" + s + "\" is not a number");
    }
    Refuse(key ? place + "." + key : place, "expected a number");
}

double Loader::Number(const Object& o, const char* key, const std::string& place, double fallback,
                      bool required) {
    Value v = required ? Need(o, key, place) : o.Find(key);
    if (v.IsUndefined())
        return fallback;
    return Number(v, place, key);
}

long Loader::Integer(const Object& o, const char* key, const std::string& place, long fallback,
                     long lo, long hi, bool required) {
    double v = Number(o, key, place, double(fallback), required);
    if (v != std::floor(v) || v < double(lo) || v > double(hi))
        Refuse(place + "." + key,
               "expected a whole number from " + std::to_string(lo) + " to " + std::to_string(hi));
    return long(v);
}

bool Loader::Flag(const Object& o, const char* key, const std::string& place, bool fallback) {
    Value v = o.Find(key);
    if (v.IsUndefined())
        return fallback;
    if (!v.IsBool())
        Refuse(place + "." + key, "expected true or false");
    return v.Bool();
}

json::Array Loader::ArrayOf(const Object& o, const char* key, const std::string& place,
                            bool required) {
    Value v = required ? Need(o, key, place) : o.Find(key);
    if (v.IsUndefined())
        return {};
    if (!v.IsArray())
        Refuse(place + "." + key, "expected a list");
    return v.ToArray();
}

json::Object Loader::ObjectOf(const Value& v, const std::string& place) {
    if (!v.IsObject())
        Refuse(place, "expected an object");
    return v.ToObject();
}

// A label is written as hexadecimal bytes, blanks between them allowed.
std::vector<std::uint8_t> Loader::Label(const Object& o, const char* key, const std::string& place,
                                        bool required) {
    std::vector<std::uint8_t> bytes;
    if (!required && !o.Contains(key))
        return bytes;
    const std::string at = place + "." + key;
    std::string_view label = String(o, key, place, required);
    std::string digits;
    for (char c : label) {
        if (c == ' ')
            continue;
        if (!std::isxdigit(static_cast<unsigned char>(c)))
            Refuse(at, "not a hexadecimal byte list");
        digits += c;
    }
    if (digits.size() % 2 != 0 || digits.empty() || digits.size() > 64)
        Refuse(at, "expected 1 to 32 whole bytes");
    for (std::size_t i = 0; i < digits.size(); i += 2)
        bytes.push_back(std::uint8_t(std::strtoul(digits.substr(i, 2).c_str(), nullptr, 16)));
    return bytes;
}

} // namespace zorhost::device
