#include "zorhost/model/ValueInfo.h"

#include <cmath>
#include <cstdint>

namespace zorhost::model {

using device::ValueInfoKind;
using device::ValueOption;

Variant ValueInfoNumber(double value) {
    if (std::trunc(value) == value) {
        if (value >= INT32_MIN && value <= INT32_MAX)
            return Variant::I4(std::int32_t(value));
        if (value > 0 && value <= UINT32_MAX)
            return Variant::UI4(std::uint32_t(value));
    }
    return Variant::R8(value);
}

CValueInfoList::CValueInfoList() = default;
CValueInfoList::~CValueInfoList() = default;
CValueInfoList::CValueInfoList(const CValueInfoList&) = default;
CValueInfoList& CValueInfoList::operator=(const CValueInfoList&) = default;

int CValueInfoList::GetCount() {
    return int(m_entries.size());
}

IValueInfoEntry* CValueInfoList::GetAt(int index) {
    return index >= 0 && size_t(index) < m_entries.size() ? &m_entries[size_t(index)] : nullptr;
}

namespace {

void AddOptions(const device::DeviceDescription& d, const std::vector<ValueOption>& options,
                CValueInfoList& list) {
    list.Entries().reserve(options.size());
    for (const ValueOption& o : options)
        list.Entries().emplace_back(CString(d.Text(o.text)), ValueInfoNumber(o.value));
}

} // namespace

CValueInfo::CValueInfo(const device::DeviceDescription& d, const device::ValueInfo& info)
    : m_kind(int(info.kind)) {
    auto& entries = m_list.Entries();
    switch (info.kind) {
    case ValueInfoKind::Enumeration:
        AddOptions(d, info.enumeration, m_list);
        break;
    case ValueInfoKind::Bits:
        entries.reserve(info.bits.size());
        for (const auto& b : info.bits)
            entries.emplace_back(CString(d.Text(b.text)), Variant::I4(b.bit), b.bit, 1);
        break;
    case ValueInfoKind::BitRanges:
        entries.reserve(info.ranges.size());
        for (const auto& r : info.ranges) {
            entries.emplace_back(CString(d.Text(r.text)), Variant(), r.firstBit, r.width);
            AddOptions(d, r.options, entries.back().Options());
        }
        break;
    case ValueInfoKind::Digits:
        entries.reserve(info.digits.size());
        for (const auto& g : info.digits) {
            entries.emplace_back(CString(d.Text(g.text)), Variant(), g.digit, 1);
            AddOptions(d, g.options, entries.back().Options());
        }
        break;
    case ValueInfoKind::None:
        break;
    }
}

} // namespace zorhost::model
