#include "zorhost/device/DeviceDescription.h"

#include <algorithm>

namespace zorhost::device {

std::string_view DeviceDescription::TextAt(std::string_view pool, TextRef ref) {
    // The length is written seven bits to a byte, the lowest first.
    std::size_t at = ref.offset, size = 0;
    for (int shift = 0; at < pool.size() && shift < 35; shift += 7) {
        const auto b = static_cast<unsigned char>(pool[at++]);
        size |= std::size_t(b & 0x7F) << shift;
        if (b < 0x80)
            return size <= pool.size() - at ? pool.substr(at, size) : std::string_view();
    }
    return {};
}

const ValueInfo* DeviceDescription::ValueInfoOf(const ParameterDef& p) const {
    return p.valueInfo < valueInfos.size() ? &valueInfos[p.valueInfo] : nullptr;
}

ParameterInfo DeviceDescription::InfoOf(std::uint32_t parameter) const {
    auto it = std::lower_bound(
        parameterInfos.begin(), parameterInfos.end(), parameter,
        [](const ParameterInfo& info, std::uint32_t p) { return info.parameter < p; });
    return it != parameterInfos.end() && it->parameter == parameter ? *it : ParameterInfo{};
}

// Binary searches over the positions 0 .. n-1 of an order.
std::uint32_t DeviceDescription::FindByAddress(std::uint32_t address) const {
    const std::size_t n = parameters.size();
    std::size_t lo = m_addressHint.next.load(std::memory_order_relaxed);
    if (lo >= n || parameters[ByAddress(lo)].address != address) {
        std::size_t hi = n;
        lo = 0;
        while (lo < hi) {
            const std::size_t mid = lo + (hi - lo) / 2;
            if (parameters[ByAddress(mid)].address < address)
                lo = mid + 1;
            else
                hi = mid;
        }
        if (lo == n || parameters[ByAddress(lo)].address != address)
            return kNoIndex;
    }
    m_addressHint.next.store(std::uint32_t(lo + 1), std::memory_order_relaxed);
    return ByAddress(lo);
}

std::uint32_t DeviceDescription::FindByCode(std::string_view code, int scope) const {
    std::size_t lo = 0, hi = parameters.size();
    while (lo < hi) {
        const std::size_t mid = lo + (hi - lo) / 2;
        const ParameterDef& p = parameters[ByCode(mid)];
        if (p.axis != scope ? p.axis < scope : Text(p.code) < code)
            lo = mid + 1;
        else
            hi = mid;
    }
    if (lo == parameters.size())
        return kNoIndex;
    const ParameterDef& p = parameters[ByCode(lo)];
    return p.axis == scope && Text(p.code) == code ? ByCode(lo) : kNoIndex;
}

std::uint32_t DeviceDescription::FindGroup(std::string_view name, int scope) const {
    for (std::uint32_t i = 0; i < groups.size(); ++i) {
        if (groups[i].axis == scope && Text(groups[i].name) == name)
            return i;
    }
    return kNoIndex;
}

std::span<const ParameterDef> DeviceDescription::AxisParameters(int axis) const {
    if (axis < 0 || std::size_t(axis) >= axes.size())
        return {};
    const AxisDef& a = axes[axis];
    return std::span<const ParameterDef>(parameters).subspan(a.firstParameter, a.parameterCount);
}

static const NamedVariable* FindNamed(const DeviceDescription& d,
                                      const std::vector<NamedVariable>& list,
                                      std::string_view name) {
    for (const NamedVariable& v : list) {
        if (d.Text(v.name) == name)
            return &v;
    }
    return nullptr;
}

const NamedVariable* DeviceDescription::FindNamedVariable(std::string_view name) const {
    return FindNamed(*this, namedVariables, name);
}

const NamedVariable* DeviceDescription::FindFunction(std::string_view name) const {
    return FindNamed(*this, functions, name);
}

const PerUnitTable* DeviceDescription::FindPerUnitTable(std::uint16_t id) const {
    for (const PerUnitTable& t : perUnitTables) {
        if (t.id == id)
            return &t;
    }
    return nullptr;
}

static bool KindCovers(ConnectorKind asked, ConnectorKind groupKind) {
    switch (asked) {
    case ConnectorKind::KF:
        return groupKind == ConnectorKind::K || groupKind == ConnectorKind::F;
    case ConnectorKind::BKF:
        return groupKind == ConnectorKind::B || groupKind == ConnectorKind::K ||
               groupKind == ConnectorKind::F;
    default:
        return asked == groupKind;
    }
}

std::uint32_t DeviceDescription::ConnectorValueOf(std::uint32_t parameter,
                                                  ConnectorKind kind) const {
    if (parameter >= parameters.size())
        return kNoIndex;
    for (const ConnectorGroupDef& c : connectors) {
        if (!KindCovers(kind, c.kind) || c.group >= groups.size())
            continue;
        const auto& members = groups[c.group].members;
        if (std::find(members.begin(), members.end(), parameter) != members.end())
            return c.base + parameters[parameter].address % 100;
    }
    return kNoIndex;
}

std::uint32_t DeviceDescription::FindByConnectorValue(std::uint32_t value) const {
    for (const ConnectorGroupDef& c : connectors) {
        if (value < c.base || value - c.base >= 100 || c.group >= groups.size())
            continue;
        for (std::uint32_t m : groups[c.group].members) {
            if (parameters[m].address % 100 == value - c.base)
                return m;
        }
        return kNoIndex;
    }
    return kNoIndex;
}

std::size_t DeviceDescription::HeapBytes() const {
    auto options = [](const std::vector<ValueOption>& v) { return v.capacity() * sizeof(v[0]); };
    std::size_t n =
        sourceFile.capacity() + textPool.capacity() + product.electronicLabel.capacity() +
        product.primaryElectronicLabel.capacity() + parameters.capacity() * sizeof(ParameterDef) +
        valueInfos.capacity() * sizeof(ValueInfo) + groups.capacity() * sizeof(GroupDef) +
        axes.capacity() * sizeof(AxisDef) + namedVariables.capacity() * sizeof(NamedVariable) +
        functions.capacity() * sizeof(NamedVariable) +
        connectors.capacity() * sizeof(ConnectorGroupDef) +
        perUnitTables.capacity() * sizeof(PerUnitTable) +
        parameterInfos.capacity() * sizeof(ParameterInfo) +
        addressIndex.capacity() * sizeof(std::uint32_t) +
        codeIndex.capacity() * sizeof(std::uint32_t);
    for (const ValueInfo& v : valueInfos) {
        n += options(v.enumeration) + v.bits.capacity() * sizeof(BitEntry) +
             v.ranges.capacity() * sizeof(BitRange) + v.digits.capacity() * sizeof(DigitField);
        for (const BitRange& r : v.ranges)
            n += options(r.options);
        for (const DigitField& d : v.digits)
            n += options(d.options);
    }
    auto setBytes = [](const GroupSet& s) {
        std::size_t bytes = s.roots.capacity() * sizeof(std::uint32_t) +
                            s.categories.capacity() * sizeof(CategoryDef);
        for (const CategoryDef& c : s.categories)
            bytes += c.groups.capacity() * sizeof(std::uint32_t);
        return bytes;
    };
    for (const GroupDef& g : groups)
        n += (g.members.capacity() + g.children.capacity()) * sizeof(std::uint32_t);
    n += setBytes(groupSet);
    for (const AxisDef& a : axes)
        n += setBytes(a.groupSet);
    for (const PerUnitTable& t : perUnitTables)
        n += t.bases.capacity() * sizeof(PerUnitBase);
    return n;
}

const char* DataTypeName(DataType type) {
    switch (type) {
    case DataType::Int16:
        return "i16";
    case DataType::Int32:
        return "i32";
    case DataType::Float:
        return "f32";
    case DataType::Double:
        return "f64";
    case DataType::Date:
        return "date";
    case DataType::String:
        return "string";
    case DataType::Bool:
        return "bool";
    case DataType::Int8:
        return "i8";
    case DataType::UInt8:
        return "u8";
    case DataType::UInt16:
        return "u16";
    case DataType::UInt32:
        return "u32";
    case DataType::Unknown:
        break;
    }
    return "";
}

int RegisterCount(DataType type) {
    switch (type) {
    case DataType::Int8:
    case DataType::UInt8:
    case DataType::Int16:
    case DataType::UInt16:
    case DataType::Bool:
        return 1;
    case DataType::Int32:
    case DataType::UInt32:
    case DataType::Float:
        return 2;
    case DataType::Double:
    case DataType::Date:
        return 4;
    case DataType::String:
    case DataType::Unknown:
        return 0;
    }
    return 0;
}

int RegisterSpan(DataType type) {
    return std::max(1, RegisterCount(type));
}

int DataTypeBits(DataType type) {
    switch (type) {
    case DataType::Int8:
    case DataType::UInt8:
        return 8;
    case DataType::Int16:
    case DataType::UInt16:
    case DataType::Bool:
        return 16;
    case DataType::Int32:
    case DataType::UInt32:
    case DataType::Float:
        return 32;
    case DataType::Double:
        return 64;
    default:
        return 0;
    }
}

} // namespace zorhost::device
