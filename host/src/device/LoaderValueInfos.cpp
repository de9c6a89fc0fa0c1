#include "Loader.h"

#include <algorithm>
#include <cmath>

namespace zorhost::device {

std::vector<ValueOption> Loader::LoadOptions(const Array& a, const std::string& place) {
    std::vector<ValueOption> out;
    out.reserve(a.Size());
    for (std::uint32_t i = 0; i < a.Size(); ++i) {
        std::string at = place + "[" + std::to_string(i) + "]";
        Object o = ObjectOf(a[i], at);
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

// Named meanings, in the order of their names; parameters refer to them by name.
void Loader::LoadValueInfos(const Object& root) {
    Value infos = root.Find("valueInfos");
    if (infos.IsUndefined())
        return;
    Object o = ObjectOf(infos, "valueInfos");
    std::vector<std::uint32_t> order(o.Size());
    for (std::uint32_t i = 0; i < o.Size(); ++i)
        order[i] = i;
    std::sort(order.begin(), order.end(),
              [&](std::uint32_t x, std::uint32_t y) { return o.KeyAt(x) < o.KeyAt(y); });
    for (std::uint32_t i : order) {
        std::string name(o.KeyAt(i));
        std::string place = "valueInfos." + name;
        valueInfoIds_[name] = LoadValueInfo(ObjectOf(o.ValueAt(i), place), place);
    }
}

std::uint32_t Loader::LoadValueInfo(const Object& o, const std::string& place) {
    Keys(o, place, {"enum", "bits", "bitRanges", "digits"});
    if (o.Size() != 1)
        Refuse(place, "expected exactly one of enum, bits, bitRanges, digits");
    ValueInfo info;
    if (o.Contains("enum")) {
        info.kind = ValueInfoKind::Enumeration;
        info.enumeration = LoadOptions(ArrayOf(o, "enum", place), place + ".enum");
    } else if (o.Contains("bits")) {
        info.kind = ValueInfoKind::Bits;
        LoadBits(ArrayOf(o, "bits", place), place, info);
    } else if (o.Contains("bitRanges")) {
        info.kind = ValueInfoKind::BitRanges;
        LoadBitRanges(ArrayOf(o, "bitRanges", place), place, info);
    } else {
        info.kind = ValueInfoKind::Digits;
        LoadDigits(ArrayOf(o, "digits", place), place, info);
    }
    d_.valueInfos.push_back(std::move(info));
    return std::uint32_t(d_.valueInfos.size() - 1);
}

void Loader::LoadBits(const Array& a, const std::string& place, ValueInfo& info) {
    for (std::uint32_t i = 0; i < a.Size(); ++i) {
        std::string at = place + ".bits[" + std::to_string(i) + "]";
        Object b = ObjectOf(a[i], at);
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
}

void Loader::LoadBitRanges(const Array& a, const std::string& place, ValueInfo& info) {
    std::uint32_t used = 0;
    for (std::uint32_t i = 0; i < a.Size(); ++i) {
        std::string at = place + ".bitRanges[" + std::to_string(i) + "]";
        Object b = ObjectOf(a[i], at);
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
        r.options = LoadOptions(ArrayOf(b, "options", at, true), at + ".options");
        for (const ValueOption& opt : r.options) {
            if (opt.value < 0 || opt.value >= std::ldexp(1.0, r.width))
                Refuse(at + ".options", "option value does not fit the range's width");
        }
        info.ranges.push_back(std::move(r));
    }
    if (info.ranges.empty())
        Refuse(place + ".bitRanges", "empty list");
}

void Loader::LoadDigits(const Array& a, const std::string& place, ValueInfo& info) {
    for (std::uint32_t i = 0; i < a.Size(); ++i) {
        std::string at = place + ".digits[" + std::to_string(i) + "]";
        Object b = ObjectOf(a[i], at);
        Keys(b, at, {"text", "textEn", "digit", "options"});
        DigitField f;
        f.text = Text(b, "text", at, true);
        f.textEn = Text(b, "textEn", at);
        f.digit = std::uint8_t(Integer(b, "digit", at, 0, 0, 9, true));
        for (const DigitField& seen : info.digits) {
            if (seen.digit == f.digit)
                Refuse(at, "digit listed twice");
        }
        f.options = LoadOptions(ArrayOf(b, "options", at, true), at + ".options");
        for (const ValueOption& opt : f.options) {
            if (opt.value < 0 || opt.value > 9 || opt.value != std::floor(opt.value))
                Refuse(at + ".options", "a digit option is a value from 0 to 9");
        }
        info.digits.push_back(std::move(f));
    }
    if (info.digits.empty())
        Refuse(place + ".digits", "empty list");
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

} // namespace zorhost::device
