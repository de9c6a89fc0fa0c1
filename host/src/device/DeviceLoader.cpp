#include "zorhost/device/DeviceLoader.h"
#include "zorhost/InstallLayout.h"
#include "zorhost/device/DeviceChecks.h"
#include "zorhost/device/JsonShape.h"
#include "zorhost/files/BoundedRead.h"

#include <QByteArray>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonParseError>
#include <QJsonValue>

#include <algorithm>
#include <cctype>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <map>
#include <unordered_map>

namespace zorhost::device {

namespace {

// Thrown inside the loader only; ParseDeviceJson turns it into a LoadError.
struct Refusal {
    std::string place;
    std::string message;
};

[[noreturn]] void Refuse(const std::string& place, const std::string& message) {
    throw Refusal{place, message};
}

std::string Std(const QString& s) {
    return s.toStdString();
}

// Where an entry came from, kept only while loading, for messages.
struct Origin {
    std::string place; // parameters[3] "H02-01"
    int axis = kCommonScope;
    std::string Where(const char* field = "") const {
        return place + field + (axis >= 0 ? " on axes[" + std::to_string(axis) + "]" : "");
    }
};

struct PendingLinks {
    std::string minLink;
    std::string maxLink;
};

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

// "H02-41" -> group 0x02, index 41; the group is hexadecimal, the index decimal.
bool AddressFromCode(std::string_view code, std::uint32_t& address) {
    std::size_t dash = code.find('-');
    if (code.size() < 4 || code[0] != 'H' || dash == std::string_view::npos || dash < 2 ||
        dash > 3 || code.size() - dash - 1 < 2 || code.size() - dash - 1 > 3)
        return false;
    std::uint32_t group = 0;
    for (std::size_t i = 1; i < dash; ++i) {
        char c = code[i];
        int v = c >= '0' && c <= '9' ? c - '0' : c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
        if (v < 0)
            return false;
        group = group * 16 + std::uint32_t(v);
    }
    std::uint32_t index = 0;
    for (std::size_t i = dash + 1; i < code.size(); ++i) {
        if (code[i] < '0' || code[i] > '9')
            return false;
        index = index * 10 + std::uint32_t(code[i] - '0');
    }
    if (index > 255)
        return false;
    address = group * 256 + index;
    return true;
}

std::string Hex(std::uint32_t v) {
    char buf[16];
    std::snprintf(buf, sizeof buf, "0x%04X", v);
    return buf;
}

class Loader {
public:
    explicit Loader(DeviceDescription& d) : d_(d) {}

    void Load(const QJsonObject& root);

private:
    DeviceDescription& d_;
    std::unordered_map<std::string, TextRef> interned_;
    std::map<std::string, std::uint32_t> valueInfoIds_;
    std::vector<Origin> origins_; // one per parameter
    std::vector<PendingLinks> links_;

    TextRef Intern(const std::string& s);
    void Keys(const QJsonObject& o, const std::string& place,
              std::initializer_list<const char*> allowed);
    const QJsonValue Need(const QJsonObject& o, const char* key, const std::string& place);
    std::string String(const QJsonObject& o, const char* key, const std::string& place,
                       bool required = false);
    TextRef Text(const QJsonObject& o, const char* key, const std::string& place,
                 bool required = false) {
        return Intern(String(o, key, place, required));
    }
    // A name, key or code: lists, tables and tab-separated output show it on one line.
    std::string OneLine(const QJsonObject& o, const char* key, const std::string& place,
                        bool required = false);
    TextRef OneLineText(const QJsonObject& o, const char* key, const std::string& place,
                        bool required = false) {
        return Intern(OneLine(o, key, place, required));
    }
    double Number(const QJsonValue& v, const std::string& place, const char* key = nullptr);
    double Number(const QJsonObject& o, const char* key, const std::string& place, double fallback,
                  bool required = false);
    long Integer(const QJsonObject& o, const char* key, const std::string& place, long fallback,
                 long lo, long hi, bool required = false);
    bool Flag(const QJsonObject& o, const char* key, const std::string& place, bool fallback);
    QJsonArray Array(const QJsonObject& o, const char* key, const std::string& place,
                     bool required = false);
    QJsonObject Object(const QJsonValue& v, const std::string& place);

    std::vector<std::uint8_t> Label(const QJsonObject& o, const char* key, const std::string& place,
                                    bool required);
    void LoadProduct(const QJsonObject& o);
    std::uint32_t LoadValueInfo(const QJsonObject& o, const std::string& place);
    std::vector<ValueOption> LoadOptions(const QJsonArray& a, const std::string& place);
    void CheckValueInfo(const ParameterDef& p, const std::string& place);
    ParameterDef LoadParameter(const QJsonObject& o, const std::string& place, PendingLinks& l);
    void LoadParameters(const QJsonObject& root);
    void BuildIndexes();
    void ResolveLinks();
    std::uint32_t ResolveCode(const std::string& code, int scope) const;
    std::uint32_t LoadGroup(const QJsonObject& o, const std::string& place, int scope);
    void LoadGroupSet(const QJsonArray& groups, const std::string& groupsPlace,
                      const QJsonArray& categories, const std::string& categoriesPlace, int scope,
                      GroupSet& set);
    void LoadNamed(const QJsonArray& a, const std::string& place, std::vector<NamedVariable>& out);
    void LoadConnectors(const QJsonArray& a);
    void LoadPerUnit(const QJsonArray& a);
    void CheckTables(); // per-unit ids and connector kinds that parameters rely on
};

TextRef Loader::Intern(const std::string& s) {
    if (s.empty())
        return {};
    auto it = interned_.find(s);
    if (it != interned_.end())
        return it->second;
    TextRef ref{std::uint32_t(d_.textPool.size()), std::uint32_t(s.size())};
    d_.textPool += s;
    interned_.emplace(s, ref);
    return ref;
}

void Loader::Keys(const QJsonObject& o, const std::string& place,
                  std::initializer_list<const char*> allowed) {
    for (auto it = o.begin(); it != o.end(); ++it) {
        QString key = it.key();
        bool known = std::any_of(allowed.begin(), allowed.end(),
                                 [&](const char* k) { return key == QLatin1String(k); });
        if (!known)
            Refuse(place, "unknown key \"" + Std(key) + "\"");
    }
}

const QJsonValue Loader::Need(const QJsonObject& o, const char* key, const std::string& place) {
    QJsonValue v = o.value(QLatin1String(key));
    if (v.isUndefined())
        Refuse(place, std::string("missing \"") + key + "\"");
    return v;
}

std::string Loader::String(const QJsonObject& o, const char* key, const std::string& place,
                           bool required) {
    QJsonValue v = required ? Need(o, key, place) : o.value(QLatin1String(key));
    if (v.isUndefined())
        return {};
    if (!v.isString())
        Refuse(place + "." + key, "expected a text");
    return Std(v.toString());
}

std::string Loader::OneLine(const QJsonObject& o, const char* key, const std::string& place,
                            bool required) {
    std::string s = String(o, key, place, required);
    for (char c : s)
        if (c == '\t' || c == '\n' || c == '\r')
            Refuse(place + "." + key, std::string("holds a ") + (c == '\t' ? "tab" : "line break") +
                                          "; it must be one line of text");
    return s;
}

// The place of an error is only put together when there is one.
double Loader::Number(const QJsonValue& v, const std::string& place, const char* key) {
    if (v.isDouble())
        return v.toDouble();
    if (v.isString()) {
        // Hexadecimal is allowed as a text, "0x0229", since JSON has no such literal.
        std::string s = Std(v.toString());
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

double Loader::Number(const QJsonObject& o, const char* key, const std::string& place,
                      double fallback, bool required) {
    QJsonValue v = required ? Need(o, key, place) : o.value(QLatin1String(key));
    if (v.isUndefined())
        return fallback;
    return Number(v, place, key);
}

long Loader::Integer(const QJsonObject& o, const char* key, const std::string& place, long fallback,
                     long lo, long hi, bool required) {
    double v = Number(o, key, place, double(fallback), required);
    if (v != std::floor(v) || v < double(lo) || v > double(hi))
        Refuse(place + "." + key,
               "expected a whole number from " + std::to_string(lo) + " to " + std::to_string(hi));
    return long(v);
}

bool Loader::Flag(const QJsonObject& o, const char* key, const std::string& place, bool fallback) {
    QJsonValue v = o.value(QLatin1String(key));
    if (v.isUndefined())
        return fallback;
    if (!v.isBool())
        Refuse(place + "." + key, "expected true or false");
    return v.toBool();
}

QJsonArray Loader::Array(const QJsonObject& o, const char* key, const std::string& place,
                         bool required) {
    QJsonValue v = required ? Need(o, key, place) : o.value(QLatin1String(key));
    if (v.isUndefined())
        return {};
    if (!v.isArray())
        Refuse(place + "." + key, "expected a list");
    return v.toArray();
}

QJsonObject Loader::Object(const QJsonValue& v, const std::string& place) {
    if (!v.isObject())
        Refuse(place, "expected an object");
    return v.toObject();
}

// A label is written as hexadecimal bytes, blanks between them allowed.
std::vector<std::uint8_t> Loader::Label(const QJsonObject& o, const char* key,
                                        const std::string& place, bool required) {
    std::vector<std::uint8_t> bytes;
    if (!required && !o.contains(key))
        return bytes;
    const std::string at = place + "." + key;
    std::string label = String(o, key, place, required);
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

void Loader::LoadProduct(const QJsonObject& o) {
    const std::string place = "product";
    Keys(o, place,
         {"name", "nameEn", "subName", "lineId", "productId", "subProductId", "electronicLabel",
          "primaryElectronicLabel", "version", "kind", "accessModel", "axisCopyCount",
          "wordOrder"});
    ProductInfo& p = d_.product;
    p.name = OneLineText(o, "name", place, true);
    p.nameEn = OneLineText(o, "nameEn", place);
    p.lineId = std::uint32_t(Integer(o, "lineId", place, 0, 0, 0xFFFF, true));
    p.productId = std::uint32_t(Integer(o, "productId", place, 0, 0, 0xFFFF, true));
    p.subProductId = std::uint32_t(Integer(o, "subProductId", place, 0, 0, 0xFFFF));
    p.versionText = Text(o, "version", place);

    p.electronicLabel = Label(o, "electronicLabel", place, true);
    p.primaryElectronicLabel = Label(o, "primaryElectronicLabel", place, false);
    p.subName = OneLineText(o, "subName", place);

    std::string kind = String(o, "kind", place, true);
    if (kind == "servo")
        p.kind = ProductKind::Servo;
    else if (kind == "multiAxisServo")
        p.kind = ProductKind::MultiAxisServo;
    else if (kind == "inverter")
        p.kind = ProductKind::Inverter;
    else
        Refuse(place + ".kind", "unknown product kind \"" + kind + "\"");
    p.accessModel = AccessModel(Integer(o, "accessModel", place, 0, 0, 2, true));
    p.axisCopyCount = std::uint8_t(Integer(o, "axisCopyCount", place, 0, 0, 16));
    if (o.contains(QStringLiteral("wordOrder"))) {
        const std::string order = String(o, "wordOrder", place, true);
        if (order == "lowFirst")
            p.wordOrder = WordOrder::LowFirst;
        else if (order == "highFirst")
            p.wordOrder = WordOrder::HighFirst;
        else
            Refuse(place + ".wordOrder", "unknown word order \"" + order + "\"");
    }
}

std::vector<ValueOption> Loader::LoadOptions(const QJsonArray& a, const std::string& place) {
    std::vector<ValueOption> out;
    out.reserve(a.size());
    for (qsizetype i = 0; i < a.size(); ++i) {
        std::string at = place + "[" + std::to_string(i) + "]";
        QJsonObject o = Object(a[i], at);
        Keys(o, at, {"value", "text", "textEn"});
        ValueOption opt;
        opt.value = Number(o, "value", at, 0, true);
        opt.text = Text(o, "text", at, true);
        opt.textEn = Text(o, "textEn", at);
        for (const ValueOption& seen : out) {
            if (seen.value == opt.value)
                Refuse(at, "value listed twice");
        }
        out.push_back(opt);
    }
    if (out.empty())
        Refuse(place, "empty list");
    return out;
}

std::uint32_t Loader::LoadValueInfo(const QJsonObject& o, const std::string& place) {
    Keys(o, place, {"enum", "bits", "bitRanges", "digits"});
    if (o.size() != 1)
        Refuse(place, "expected exactly one of enum, bits, bitRanges, digits");
    ValueInfo info;
    if (o.contains(QLatin1String("enum"))) {
        info.kind = ValueInfoKind::Enumeration;
        info.enumeration = LoadOptions(Array(o, "enum", place), place + ".enum");
    } else if (o.contains(QLatin1String("bits"))) {
        info.kind = ValueInfoKind::Bits;
        QJsonArray a = Array(o, "bits", place);
        for (qsizetype i = 0; i < a.size(); ++i) {
            std::string at = place + ".bits[" + std::to_string(i) + "]";
            QJsonObject b = Object(a[i], at);
            Keys(b, at, {"bit", "text", "textEn"});
            BitEntry e;
            e.bit = std::uint8_t(Integer(b, "bit", at, 0, 0, 31, true));
            e.text = Text(b, "text", at, true);
            e.textEn = Text(b, "textEn", at);
            for (const BitEntry& seen : info.bits) {
                if (seen.bit == e.bit)
                    Refuse(at, "bit listed twice");
            }
            info.bits.push_back(e);
        }
        if (info.bits.empty())
            Refuse(place + ".bits", "empty list");
    } else if (o.contains(QLatin1String("bitRanges"))) {
        info.kind = ValueInfoKind::BitRanges;
        QJsonArray a = Array(o, "bitRanges", place);
        std::uint32_t used = 0;
        for (qsizetype i = 0; i < a.size(); ++i) {
            std::string at = place + ".bitRanges[" + std::to_string(i) + "]";
            QJsonObject b = Object(a[i], at);
            Keys(b, at, {"text", "textEn", "first", "width", "options"});
            BitRange r;
            r.text = Text(b, "text", at, true);
            r.textEn = Text(b, "textEn", at);
            r.firstBit = std::uint8_t(Integer(b, "first", at, 0, 0, 31, true));
            r.width = std::uint8_t(Integer(b, "width", at, 1, 1, 32, true));
            if (r.firstBit + r.width > 32)
                Refuse(at, "range runs past bit 31");
            std::uint32_t mask = r.width == 32 ? 0xFFFFFFFFu : ((1u << r.width) - 1u) << r.firstBit;
            if (used & mask)
                Refuse(at, "range overlaps an earlier one");
            used |= mask;
            r.options = LoadOptions(Array(b, "options", at, true), at + ".options");
            for (const ValueOption& opt : r.options) {
                if (opt.value < 0 || opt.value >= std::ldexp(1.0, r.width))
                    Refuse(at + ".options", "option value does not fit the range's width");
            }
            info.ranges.push_back(std::move(r));
        }
        if (info.ranges.empty())
            Refuse(place + ".bitRanges", "empty list");
    } else {
        info.kind = ValueInfoKind::Digits;
        QJsonArray a = Array(o, "digits", place);
        for (qsizetype i = 0; i < a.size(); ++i) {
            std::string at = place + ".digits[" + std::to_string(i) + "]";
            QJsonObject b = Object(a[i], at);
            Keys(b, at, {"text", "textEn", "digit", "options"});
            DigitField f;
            f.text = Text(b, "text", at, true);
            f.textEn = Text(b, "textEn", at);
            f.digit = std::uint8_t(Integer(b, "digit", at, 0, 0, 9, true));
            for (const DigitField& seen : info.digits) {
                if (seen.digit == f.digit)
                    Refuse(at, "digit listed twice");
            }
            f.options = LoadOptions(Array(b, "options", at, true), at + ".options");
            for (const ValueOption& opt : f.options) {
                if (opt.value < 0 || opt.value > 9 || opt.value != std::floor(opt.value))
                    Refuse(at + ".options", "a digit option is a value from 0 to 9");
            }
            info.digits.push_back(std::move(f));
        }
        if (info.digits.empty())
            Refuse(place + ".digits", "empty list");
    }
    d_.valueInfos.push_back(std::move(info));
    return std::uint32_t(d_.valueInfos.size() - 1);
}

// Bits and digits must fit the parameter that uses them; enumeration values its range.
void Loader::CheckValueInfo(const ParameterDef& p, const std::string& place) {
    const ValueInfo* info = d_.ValueInfoOf(p);
    if (!info)
        return;
    int bits = DataTypeBits(p.dataType);
    switch (info->kind) {
    case ValueInfoKind::Enumeration: {
        double lo, hi;
        TypeRange(p.dataType, lo, hi);
        for (const ValueOption& opt : info->enumeration) {
            if (opt.value < lo || opt.value > hi)
                Refuse(place + ".values", "enumeration value " + std::to_string(opt.value) +
                                              " does not fit type " + DataTypeName(p.dataType));
        }
        break;
    }
    case ValueInfoKind::Bits:
    case ValueInfoKind::BitRanges:
        if (!IsIntegerType(p.dataType))
            Refuse(place + ".values", "bit fields need an integer type");
        for (const BitEntry& b : info->bits) {
            if (b.bit >= bits)
                Refuse(place + ".values", "bit " + std::to_string(b.bit) + " outside a " +
                                              std::to_string(bits) + "-bit value");
        }
        for (const BitRange& r : info->ranges) {
            if (r.firstBit + r.width > bits)
                Refuse(place + ".values",
                       "bit range outside a " + std::to_string(bits) + "-bit value");
        }
        break;
    case ValueInfoKind::Digits: {
        if (!IsIntegerType(p.dataType))
            Refuse(place + ".values", "digit fields need an integer type");
        double lo, hi;
        TypeRange(p.dataType, lo, hi);
        for (const DigitField& f : info->digits) {
            if (std::pow(10.0, f.digit) > hi)
                Refuse(place + ".values", "digit " + std::to_string(f.digit) + " beyond type " +
                                              DataTypeName(p.dataType));
        }
        break;
    }
    case ValueInfoKind::None:
        break;
    }
}

ParameterDef Loader::LoadParameter(const QJsonObject& o, const std::string& arrayPlace,
                                   PendingLinks& links) {
    std::string code = OneLine(o, "code", arrayPlace, true);
    if (code.empty())
        Refuse(arrayPlace + ".code", "empty code");
    const std::string place = arrayPlace + " \"" + code + "\"";
    Keys(o, place,
         {"code",     "name",          "nameEn",      "unit",   "address",       "type",
          "decimals", "factory",       "min",         "max",    "minLink",       "maxLink",
          "modify",   "effect",        "display",     "access", "hiddenForUser", "transferable",
          "fixed",    "changeTracked", "perUnitBase", "info",   "infoEn",        "values"});
    ParameterDef p;
    p.code = Intern(code);
    p.name = OneLineText(o, "name", place, true);
    p.nameEn = OneLineText(o, "nameEn", place);
    p.unit = OneLineText(o, "unit", place);
    p.info = Text(o, "info", place);
    p.infoEn = Text(o, "infoEn", place);

    std::string type = String(o, "type", place, true);
    for (const TypeName& t : kTypeNames) {
        if (type == t.name)
            p.dataType = t.type;
    }
    if (p.dataType == DataType::Unknown)
        Refuse(place + ".type", "unknown type \"" + type + "\"");
    // No register layout carries a text, so the drive link could neither read nor write it.
    if (p.dataType == DataType::String)
        Refuse(place + ".type", "type \"string\" can't be read or written over the drive link");

    std::uint32_t derived = 0;
    bool hasDerived = AddressFromCode(code, derived);
    if (o.contains(QLatin1String("address"))) {
        double a = Number(o, "address", place, 0);
        if (a < 0 || a > 0xFFFF || a != std::floor(a))
            Refuse(place + ".address", "address outside 0x0000 to 0xFFFF");
        p.address = std::uint32_t(a);
        if (hasDerived && p.address != derived)
            Refuse(place + ".address", "address " + Hex(p.address) + " disagrees with code " +
                                           code + " (" + Hex(derived) + ")");
    } else if (hasDerived) {
        p.address = derived;
    } else {
        Refuse(place, "no address, and the code is not of the form Hgg-ii");
    }

    p.decimals = std::int8_t(Integer(o, "decimals", place, 0, -1, 9));
    p.modifyMode = ModifyMode(Integer(o, "modify", place, 0, 0, 3));
    p.effectMode = EffectMode(Integer(o, "effect", place, 1, 1, 3));
    p.displayFormat = DisplayFormat(Integer(o, "display", place, 0, 0, 4));
    p.accessLevel = std::uint8_t(Integer(o, "access", place, 0, 0, 3));
    p.perUnitBaseId = std::uint16_t(Integer(o, "perUnitBase", place, 0, 0, 0xFFFF));
    p.flags = 0;
    if (Flag(o, "hiddenForUser", place, false))
        p.flags |= kHiddenForUser;
    if (Flag(o, "transferable", place, true))
        p.flags |= kTransferable;
    if (Flag(o, "fixed", place, false))
        p.flags |= kFixed;
    if (Flag(o, "changeTracked", place, true))
        p.flags |= kChangeTracked;

    double lo, hi;
    TypeRange(p.dataType, lo, hi);
    bool numeric = p.dataType != DataType::String;
    p.minValue = Number(o, "min", place, numeric ? lo : 0);
    p.maxValue = Number(o, "max", place, numeric ? hi : 0);
    p.factoryValue = Number(o, "factory", place, 0);
    links.minLink = String(o, "minLink", place);
    links.maxLink = String(o, "maxLink", place);
    if (!links.minLink.empty() && o.contains(QLatin1String("min")))
        Refuse(place, "both min and minLink given");
    if (!links.maxLink.empty() && o.contains(QLatin1String("max")))
        Refuse(place, "both max and maxLink given");
    if (numeric) {
        auto fits = [&](double v, const char* what) {
            if (v < lo || v > hi || (IsIntegerType(p.dataType) && v != std::floor(v)))
                Refuse(place + "." + what,
                       std::string(what) + " does not fit type " + DataTypeName(p.dataType));
        };
        fits(p.factoryValue, "factory");
        fits(p.minValue, "min");
        fits(p.maxValue, "max");
        if (links.minLink.empty() && links.maxLink.empty() && p.minValue > p.maxValue)
            Refuse(place, "min is above max");
        if (links.minLink.empty() && p.factoryValue < p.minValue)
            Refuse(place + ".factory", "factory value below min");
        if (links.maxLink.empty() && p.factoryValue > p.maxValue)
            Refuse(place + ".factory", "factory value above max");
    }

    QJsonValue values = o.value(QLatin1String("values"));
    if (values.isString()) {
        auto it = valueInfoIds_.find(Std(values.toString()));
        if (it == valueInfoIds_.end())
            Refuse(place + ".values", "no value info named \"" + Std(values.toString()) + "\"");
        p.valueInfo = it->second;
    } else if (!values.isUndefined()) {
        p.valueInfo = LoadValueInfo(Object(values, place + ".values"), place + ".values");
    }
    CheckValueInfo(p, place);
    return p;
}

std::uint32_t Loader::ResolveCode(const std::string& code, int scope) const {
    std::uint32_t index = d_.FindByCode(code, scope);
    if (index == kNoIndex && scope != kCommonScope)
        index = d_.FindByCode(code, kCommonScope);
    return index;
}

void Loader::LoadParameters(const QJsonObject& root) {
    QJsonArray common = Array(root, "parameters", "", true);
    QJsonArray perAxis = Array(root, "axisParameters", "");
    QJsonArray axes = Array(root, "axes", "");
    if (!perAxis.isEmpty() && axes.isEmpty())
        Refuse("axisParameters", "axis parameters without axes");

    d_.parameters.reserve(std::size_t(common.size() + perAxis.size() * axes.size()));
    for (qsizetype i = 0; i < common.size(); ++i) {
        std::string place = "parameters[" + std::to_string(i) + "]";
        PendingLinks l;
        d_.parameters.push_back(LoadParameter(Object(common[i], place), place, l));
        origins_.push_back({place + " \"" + std::string(d_.Code(d_.parameters.back())) + "\""});
        links_.push_back(std::move(l));
    }

    // Axis parameters are written once and laid out again at each axis's address base.
    std::vector<ParameterDef> pattern;
    std::vector<PendingLinks> patternLinks;
    std::vector<std::string> patternPlaces;
    for (qsizetype i = 0; i < perAxis.size(); ++i) {
        std::string place = "axisParameters[" + std::to_string(i) + "]";
        PendingLinks l;
        pattern.push_back(LoadParameter(Object(perAxis[i], place), place, l));
        patternPlaces.push_back(place + " \"" + std::string(d_.Code(pattern.back())) + "\"");
        patternLinks.push_back(std::move(l));
    }
    for (qsizetype a = 0; a < axes.size(); ++a) {
        std::string place = "axes[" + std::to_string(a) + "]";
        QJsonObject ax = Object(axes[a], place);
        Keys(ax, place, {"name", "nameEn", "key", "addressBase", "groups", "categories"});
        AxisDef axis;
        axis.name = OneLineText(ax, "name", place, true);
        axis.nameEn = OneLineText(ax, "nameEn", place);
        axis.key = OneLineText(ax, "key", place, true);
        axis.addressBase = std::uint32_t(Integer(ax, "addressBase", place, 0, 0, 0xFFFF, true));
        axis.firstParameter = std::uint32_t(d_.parameters.size());
        axis.parameterCount = std::uint32_t(pattern.size());
        for (std::size_t i = 0; i < pattern.size(); ++i) {
            ParameterDef p = pattern[i];
            p.address += axis.addressBase;
            p.axis = std::int8_t(a);
            if (p.address > 0xFFFF)
                Refuse(patternPlaces[i], "address beyond 0xFFFF on " + place);
            d_.parameters.push_back(p);
            origins_.push_back({patternPlaces[i], int(a)});
            links_.push_back(patternLinks[i]);
        }
        for (const AxisDef& seen : d_.axes) {
            if (d_.Text(seen.key) == d_.Text(axis.key))
                Refuse(place + ".key", "axis key used twice");
        }
        d_.axes.push_back(std::move(axis));
    }
    if (d_.axes.size() > 64)
        Refuse("axes", "more than 64 axes");
}

void Loader::BuildIndexes() {
    const auto n = std::uint32_t(d_.parameters.size());
    d_.addressIndex.reserve(n);
    d_.codeIndex.reserve(n);
    for (std::uint32_t i = 0; i < n; ++i) {
        d_.addressIndex.emplace_back(d_.parameters[i].address, i);
        d_.codeIndex.push_back(i);
    }
    // Codes first: a repeated code also repeats its derived address, and says more.
    auto key = [&](std::uint32_t i) {
        return std::make_pair(int(d_.parameters[i].axis), d_.Code(d_.parameters[i]));
    };
    std::stable_sort(d_.codeIndex.begin(), d_.codeIndex.end(),
                     [&](std::uint32_t x, std::uint32_t y) { return key(x) < key(y); });
    for (std::size_t i = 1; i < d_.codeIndex.size(); ++i) {
        if (key(d_.codeIndex[i]) == key(d_.codeIndex[i - 1]))
            Refuse(origins_[d_.codeIndex[i]].Where(),
                   "duplicate code, also used by " + origins_[d_.codeIndex[i - 1]].Where());
    }
    std::stable_sort(d_.addressIndex.begin(), d_.addressIndex.end(),
                     [](const auto& x, const auto& y) { return x.first < y.first; });
    for (std::size_t i = 1; i < d_.addressIndex.size(); ++i) {
        if (d_.addressIndex[i].first == d_.addressIndex[i - 1].first)
            Refuse(origins_[d_.addressIndex[i].second].Where(),
                   "duplicate address " + Hex(d_.addressIndex[i].first) + ", also used by " +
                       origins_[d_.addressIndex[i - 1].second].Where());
    }
}

void Loader::ResolveLinks() {
    for (std::size_t i = 0; i < d_.parameters.size(); ++i) {
        ParameterDef& p = d_.parameters[i];
        const PendingLinks& l = links_[i];
        auto resolve = [&](const std::string& code, const std::string& place) {
            std::uint32_t target = ResolveCode(code, p.axis);
            if (target == kNoIndex)
                Refuse(place, "names no parameter \"" + code + "\"");
            if (target == i)
                Refuse(place, "a limit cannot follow its own parameter");
            if (d_.parameters[target].dataType == DataType::String)
                Refuse(place, "linked parameter \"" + code + "\" holds no number");
            return target;
        };
        if (!l.minLink.empty())
            p.minLink = resolve(l.minLink, origins_[i].Where(".minLink"));
        if (!l.maxLink.empty())
            p.maxLink = resolve(l.maxLink, origins_[i].Where(".maxLink"));
    }
}

std::uint32_t Loader::LoadGroup(const QJsonObject& o, const std::string& arrayPlace, int scope) {
    std::string name = String(o, "name", arrayPlace, true);
    if (name.empty())
        Refuse(arrayPlace + ".name", "empty group name");
    std::string place = arrayPlace + " \"" + name + "\"";
    Keys(o, place,
         {"name", "description", "descriptionEn", "access", "visible", "fixed", "members",
          "children"});
    GroupDef g;
    g.name = Intern(name);
    g.description = Text(o, "description", place);
    g.descriptionEn = Text(o, "descriptionEn", place);
    g.accessLevel = std::uint8_t(Integer(o, "access", place, 0, 0, 3));
    g.visible = Flag(o, "visible", place, true);
    g.fixed = Flag(o, "fixed", place, false);
    g.axis = std::int8_t(scope);

    QJsonValue members = o.value(QLatin1String("members"));
    if (members.isString() && members.toString() == QLatin1String("*")) {
        // Every parameter of the scope whose code begins with the group's name and a dash.
        // The code index is sorted by scope and code, so the matches are one run of it.
        std::string prefix = name + "-";
        auto it =
            std::lower_bound(d_.codeIndex.begin(), d_.codeIndex.end(), prefix,
                             [&](std::uint32_t i, const std::string& p) {
                                 const ParameterDef& def = d_.parameters[i];
                                 return def.axis != scope ? def.axis < scope : d_.Code(def) < p;
                             });
        for (; it != d_.codeIndex.end(); ++it) {
            const ParameterDef& def = d_.parameters[*it];
            if (def.axis != scope || !d_.Code(def).starts_with(prefix))
                break;
            g.members.push_back(*it);
        }
        std::sort(g.members.begin(), g.members.end()); // file order
        if (g.members.empty())
            Refuse(place + ".members", "\"*\" matches no parameter");
    } else if (!members.isUndefined()) {
        QJsonArray a = Array(o, "members", place);
        for (qsizetype i = 0; i < a.size(); ++i) {
            std::string at = place + ".members[" + std::to_string(i) + "]";
            if (!a[i].isString())
                Refuse(at, "expected a parameter code");
            std::string code = Std(a[i].toString());
            std::uint32_t index = ResolveCode(code, scope);
            if (index == kNoIndex)
                Refuse(at, "names no parameter \"" + code + "\"");
            if (std::find(g.members.begin(), g.members.end(), index) != g.members.end())
                Refuse(at, "\"" + code + "\" listed twice");
            g.members.push_back(index);
        }
    }

    QJsonArray children = Array(o, "children", place);
    std::vector<std::uint32_t> kids;
    for (qsizetype i = 0; i < children.size(); ++i) {
        std::string at = place + ".children[" + std::to_string(i) + "]";
        kids.push_back(LoadGroup(Object(children[i], at), at, scope));
    }
    g.children = std::move(kids);
    d_.groups.push_back(std::move(g));
    return std::uint32_t(d_.groups.size() - 1);
}

void Loader::LoadGroupSet(const QJsonArray& groups, const std::string& groupsPlace,
                          const QJsonArray& categories, const std::string& categoriesPlace,
                          int scope, GroupSet& set) {
    std::size_t firstGroup = d_.groups.size();
    for (qsizetype i = 0; i < groups.size(); ++i) {
        std::string at = groupsPlace + "[" + std::to_string(i) + "]";
        set.roots.push_back(LoadGroup(Object(groups[i], at), at, scope));
    }
    // Names are the keys of custom groups and categories, so one set holds each name once.
    for (std::size_t i = firstGroup; i < d_.groups.size(); ++i) {
        for (std::size_t j = firstGroup; j < i; ++j) {
            if (d_.Text(d_.groups[i].name) == d_.Text(d_.groups[j].name))
                Refuse(groupsPlace,
                       "group name \"" + std::string(d_.Text(d_.groups[i].name)) + "\" used twice");
        }
    }
    for (qsizetype i = 0; i < categories.size(); ++i) {
        std::string at = categoriesPlace + "[" + std::to_string(i) + "]";
        QJsonObject o = Object(categories[i], at);
        Keys(o, at, {"name", "description", "descriptionEn", "groups"});
        CategoryDef c;
        c.name = Text(o, "name", at, true);
        c.description = Text(o, "description", at);
        c.descriptionEn = Text(o, "descriptionEn", at);
        QJsonArray names = Array(o, "groups", at, true);
        for (qsizetype k = 0; k < names.size(); ++k) {
            std::string gat = at + ".groups[" + std::to_string(k) + "]";
            if (!names[k].isString())
                Refuse(gat, "expected a group name");
            std::string name = Std(names[k].toString());
            auto it = std::find_if(set.roots.begin(), set.roots.end(), [&](std::uint32_t g) {
                return d_.Text(d_.groups[g].name) == name;
            });
            if (it == set.roots.end())
                Refuse(gat, "names no group \"" + name + "\" of its set");
            c.groups.push_back(*it);
        }
        set.categories.push_back(std::move(c));
    }
}

void Loader::LoadNamed(const QJsonArray& a, const std::string& place,
                       std::vector<NamedVariable>& out) {
    for (qsizetype i = 0; i < a.size(); ++i) {
        std::string at = place + "[" + std::to_string(i) + "]";
        QJsonObject o = Object(a[i], at);
        Keys(o, at, {"name", "code", "address", "type"});
        NamedVariable v;
        std::string name = String(o, "name", at, true);
        v.name = Intern(name);
        at += " \"" + name + "\"";
        for (const NamedVariable& seen : out) {
            if (d_.Text(seen.name) == name)
                Refuse(at, "name used twice");
        }
        std::string code = String(o, "code", at);
        if (!code.empty()) {
            if (o.contains(QLatin1String("address")) || o.contains(QLatin1String("type")))
                Refuse(at, "give either a code or an address with a type");
            v.parameter = ResolveCode(code, kCommonScope);
            if (v.parameter == kNoIndex && !d_.axes.empty())
                v.parameter = d_.FindByCode(code, 0);
            if (v.parameter == kNoIndex)
                Refuse(at + ".code", "names no parameter \"" + code + "\"");
            v.address = d_.parameters[v.parameter].address;
            v.dataType = d_.parameters[v.parameter].dataType;
        } else {
            v.address = std::uint32_t(Integer(o, "address", at, 0, 0, 0xFFFF, true));
            std::string type = String(o, "type", at, true);
            for (const TypeName& t : kTypeNames) {
                if (type == t.name)
                    v.dataType = t.type;
            }
            if (v.dataType == DataType::Unknown)
                Refuse(at + ".type", "unknown type \"" + type + "\"");
            v.parameter = d_.FindByAddress(v.address);
        }
        out.push_back(v);
    }
}

void Loader::LoadConnectors(const QJsonArray& a) {
    for (qsizetype i = 0; i < a.size(); ++i) {
        std::string at = "connectors[" + std::to_string(i) + "]";
        QJsonObject o = Object(a[i], at);
        Keys(o, at, {"kind", "name", "group", "base"});
        ConnectorGroupDef c;
        std::string kind = String(o, "kind", at, true);
        if (kind == "B")
            c.kind = ConnectorKind::B;
        else if (kind == "K")
            c.kind = ConnectorKind::K;
        else if (kind == "F")
            c.kind = ConnectorKind::F;
        else
            Refuse(at + ".kind", "unknown connector kind \"" + kind + "\" (B, K or F)");
        c.name = Text(o, "name", at, true);
        std::string group = String(o, "group", at, true);
        c.groupKey = Intern(group);
        c.group = d_.FindGroup(group, kCommonScope);
        if (c.group == kNoIndex)
            Refuse(at + ".group", "names no group \"" + group + "\"");
        c.base = std::uint32_t(Integer(o, "base", at, 0, 0, 0x7FFFFFFF, true));
        for (const ConnectorGroupDef& seen : d_.connectors) {
            if (c.base < seen.base + 100 && seen.base < c.base + 100)
                Refuse(at + ".base", "values overlap those of connector group \"" +
                                         std::string(d_.Text(seen.name)) + "\"");
        }
        // The value of a connector is base + address % 100, so that must tell members apart.
        std::vector<bool> used(100, false);
        for (std::uint32_t m : d_.groups[c.group].members) {
            std::uint32_t slot = d_.parameters[m].address % 100;
            if (used[slot])
                Refuse(at + ".group",
                       "two members share the connector value " + std::to_string(c.base + slot));
            used[slot] = true;
        }
        d_.connectors.push_back(c);
    }
}

void Loader::LoadPerUnit(const QJsonArray& a) {
    for (qsizetype i = 0; i < a.size(); ++i) {
        std::string at = "perUnitBases[" + std::to_string(i) + "]";
        QJsonObject o = Object(a[i], at);
        Keys(o, at, {"id", "bases"});
        PerUnitTable t;
        t.id = std::uint16_t(Integer(o, "id", at, 0, 1, 0xFFFF, true));
        if (d_.FindPerUnitTable(t.id))
            Refuse(at + ".id", "id used twice");
        QJsonArray bases = Array(o, "bases", at, true);
        for (qsizetype k = 0; k < bases.size(); ++k) {
            std::string bat = at + ".bases[" + std::to_string(k) + "]";
            QJsonObject b = Object(bases[k], bat);
            Keys(b, bat, {"name", "nameEn", "code"});
            PerUnitBase base;
            base.name = Text(b, "name", bat, true);
            base.nameEn = Text(b, "nameEn", bat);
            std::string code = String(b, "code", bat, true);
            base.parameter = ResolveCode(code, kCommonScope);
            if (base.parameter == kNoIndex && !d_.axes.empty())
                base.parameter = d_.FindByCode(code, 0);
            if (base.parameter == kNoIndex)
                Refuse(bat + ".code", "names no parameter \"" + code + "\"");
            base.address = d_.parameters[base.parameter].address;
            t.bases.push_back(base);
        }
        if (t.bases.empty())
            Refuse(at + ".bases", "empty list");
        d_.perUnitTables.push_back(std::move(t));
    }
}

void Loader::CheckTables() {
    // The drop-down of a connector parameter ends in the name of its kind.
    static const std::pair<const char*, ConnectorKind> kConnectorNames[] = {
        {"B连接器", ConnectorKind::B},
        {"K连接器", ConnectorKind::K},
        {"F连接器", ConnectorKind::F},
        {"KF连接器", ConnectorKind::KF},
        {"BKF连接器", ConnectorKind::BKF}};
    for (std::size_t i = 0; i < d_.parameters.size(); ++i) {
        const ParameterDef& p = d_.parameters[i];
        if (p.perUnitBaseId != 0 && !d_.FindPerUnitTable(p.perUnitBaseId))
            Refuse(origins_[i].Where(".perUnitBase"),
                   "no per-unit table " + std::to_string(p.perUnitBaseId));
        if (p.perUnitBaseId != 0 && p.displayFormat != DisplayFormat::PerUnit)
            Refuse(origins_[i].Where(".perUnitBase"), "a per-unit base needs display 2");
        const ValueInfo* info = d_.ValueInfoOf(p);
        if (!info || info->kind != ValueInfoKind::Enumeration)
            continue;
        std::string_view last = d_.Text(info->enumeration.back().text);
        for (const auto& [name, kind] : kConnectorNames) {
            if (last != name)
                continue;
            bool served = false;
            for (const ConnectorGroupDef& c : d_.connectors) {
                served = served || (kind == ConnectorKind::BKF) ||
                         (kind == ConnectorKind::KF &&
                          (c.kind == ConnectorKind::K || c.kind == ConnectorKind::F)) ||
                         c.kind == kind;
            }
            if (!served)
                Refuse(origins_[i].Where(".values"),
                       std::string("connector parameter of kind \"") + name +
                           "\" without a connector group of that kind");
        }
    }
}

void Loader::Load(const QJsonObject& root) {
    Keys(root, "top level",
         {"format", "product", "valueInfos", "parameters", "axisParameters", "groups", "categories",
          "axisGroups", "axes", "namedVariables", "functions", "connectors", "perUnitBases"});
    if (Integer(root, "format", "top level", 0, 0, 1000, true) != 1)
        Refuse("format", "unsupported format version");
    LoadProduct(Object(Need(root, "product", "top level"), "product"));

    QJsonValue infos = root.value(QLatin1String("valueInfos"));
    if (!infos.isUndefined()) {
        QJsonObject o = Object(infos, "valueInfos");
        for (auto it = o.begin(); it != o.end(); ++it) {
            std::string place = "valueInfos." + Std(it.key());
            valueInfoIds_[Std(it.key())] = LoadValueInfo(Object(it.value(), place), place);
        }
    }

    LoadParameters(root);
    BuildIndexes();
    ResolveLinks();

    LoadGroupSet(Array(root, "groups", "", true), "groups", Array(root, "categories", ""),
                 "categories", kCommonScope, d_.groupSet);
    // Axes without a set of their own share the template; its faults show on the first axis.
    QJsonArray axisGroups = Array(root, "axisGroups", "");
    QJsonArray axes = Array(root, "axes", "");
    for (qsizetype a = 0; a < axes.size(); ++a) {
        QJsonObject ax = axes[a].toObject();
        std::string place = "axes[" + std::to_string(a) + "]";
        bool own = ax.contains(QLatin1String("groups"));
        LoadGroupSet(own ? Array(ax, "groups", place) : axisGroups,
                     own ? place + ".groups" : "axisGroups", Array(ax, "categories", place),
                     place + ".categories", int(a), d_.axes[a].groupSet);
    }
    if (d_.product.axisCopyCount > d_.axes.size())
        Refuse("product.axisCopyCount",
               "more than the device's " + std::to_string(d_.axes.size()) + " axes");

    LoadNamed(Array(root, "namedVariables", ""), "namedVariables", d_.namedVariables);
    LoadNamed(Array(root, "functions", ""), "functions", d_.functions);
    LoadConnectors(Array(root, "connectors", ""));
    LoadPerUnit(Array(root, "perUnitBases", ""));
    CheckTables();
}

std::string LineAndColumn(std::string_view text, std::size_t offset) {
    int line = 1;
    std::size_t lineStart = 0;
    offset = std::min(offset, text.size());
    for (std::size_t i = 0; i < offset; ++i) {
        if (text[i] == '\n') {
            ++line;
            lineStart = i + 1;
        }
    }
    return "line " + std::to_string(line) + ", column " + std::to_string(offset - lineStart + 1) +
           " (offset " + std::to_string(offset) + ")";
}

} // namespace

std::string LoadError::ToString() const {
    std::string s = file;
    if (!place.empty())
        s += ": " + place;
    return s + ": " + message;
}

LoadResult ParseDeviceJson(std::string_view json, const std::string& sourceName) {
    LoadResult result;
    QJsonParseError parseError;
    QJsonDocument doc = QJsonDocument::fromJson(
        QByteArray::fromRawData(json.data(), qsizetype(json.size())), &parseError);
    JsonShapeFault fault;
    if (parseError.error != QJsonParseError::NoError) {
        // The parser names a stray comma by what it expected next; say what it is.
        if (FindStrayComma(json, std::size_t(parseError.offset) + 1, fault))
            result.error = {sourceName, LineAndColumn(json, fault.offset), fault.message};
        else
            result.error = {sourceName, LineAndColumn(json, std::size_t(parseError.offset)),
                            Std(parseError.errorString())};
        return result;
    }
    // The parser keeps the last of two equal keys; which one was meant can't be known.
    if (FindDuplicateKey(json, fault)) {
        result.error = {sourceName, LineAndColumn(json, fault.offset), fault.message};
        return result;
    }
    if (!doc.isObject()) {
        result.error = {sourceName, "top level", "expected an object"};
        return result;
    }
    auto device = std::make_shared<DeviceDescription>();
    device->sourceFile = sourceName;
    try {
        Loader(*device).Load(doc.object());
    } catch (const Refusal& r) {
        result.error = {sourceName, r.place, r.message};
        return result;
    }
    if (LoadError overlap = CheckRegisterOverlaps(*device); !overlap.message.empty()) {
        result.error = std::move(overlap);
        return result;
    }
    device->textPool.shrink_to_fit();
    result.device = std::move(device);
    return result;
}

LoadResult LoadDeviceFile(const std::string& path) {
    std::string bytes, why;
    switch (files::ReadFileBounded(path, files::kMaxDeviceFileBytes, bytes, &why)) {
    case files::ReadOutcome::Ok:
        return ParseDeviceJson(bytes, path);
    case files::ReadOutcome::TooLarge:
        why += "; not a device description";
        break;
    case files::ReadOutcome::CannotRead:
        break;
    }
    LoadResult result;
    result.error = {path, "", why};
    return result;
}

std::string DefaultDeviceDirectory() {
    return layout::DevicesDir();
}

bool IsSameDeviceType(const std::uint8_t* a, std::size_t aSize, const std::uint8_t* b,
                      std::size_t bSize) {
    if (!a || !b || aSize < 16 || bSize < 16)
        return false;
    for (std::size_t offset : {0, 2, 4, 14}) {
        if (a[offset] != b[offset] || a[offset + 1] != b[offset + 1])
            return false;
    }
    return true;
}

bool DeviceLibrary::Add(const std::string& path, LoadError* error) {
    LoadResult result = LoadDeviceFile(path);
    if (!result) {
        if (error)
            *error = result.error;
        return false;
    }
    const ProductInfo& p = result.device->product;
    for (const auto& seen : devices_) {
        const ProductInfo& q = seen->product;
        if (p.lineId == q.lineId && p.productId == q.productId &&
            p.subProductId == q.subProductId) {
            if (error)
                *error = {path, "product",
                          "same line, product and sub-product as " + seen->sourceFile};
            return false;
        }
    }
    devices_.push_back(std::move(result.device));
    return true;
}

std::vector<LoadError> DeviceLibrary::AddDirectory(const std::string& dir) {
    std::vector<LoadError> errors;
    QDir d(QString::fromStdString(dir));
    const QStringList names = d.entryList({QStringLiteral("*.json")}, QDir::Files, QDir::Name);
    for (const QString& name : names) {
        LoadError error;
        if (!Add(Std(d.filePath(name)), &error))
            errors.push_back(std::move(error));
    }
    return errors;
}

std::shared_ptr<const DeviceDescription>
DeviceLibrary::FindByIds(std::uint32_t lineId, std::uint32_t productId,
                         std::uint32_t subProductId) const {
    for (const auto& d : devices_) {
        if (d->product.lineId == lineId && d->product.productId == productId &&
            d->product.subProductId == subProductId)
            return d;
    }
    return nullptr;
}

std::shared_ptr<const DeviceDescription> DeviceLibrary::FindByLabel(const std::uint8_t* label,
                                                                    std::size_t size) const {
    for (const auto& d : devices_) {
        const auto& own = d->product.electronicLabel;
        if (IsSameDeviceType(own.data(), own.size(), label, size))
            return d;
    }
    return nullptr;
}

} // namespace zorhost::device
