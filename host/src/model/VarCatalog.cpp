#include "zorhost/model/VarCatalog.h"

#include <charconv>
#include <map>
#include <mutex>

namespace zorhost::model {

std::uint32_t FindParameterByKey(const DeviceDescription& d, std::string_view key) {
    size_t dot = key.find('.');
    if (dot != std::string_view::npos) {
        std::string_view axisKey = key.substr(0, dot);
        for (size_t a = 0; a < d.axes.size(); ++a)
            if (d.Text(d.axes[a].key) == axisKey)
                return d.FindByCode(key.substr(dot + 1), int(a));
        return device::kNoIndex;
    }
    std::uint32_t i = d.FindByCode(key, device::kCommonScope);
    for (size_t a = 0; i == device::kNoIndex && a < d.axes.size(); ++a)
        i = d.FindByCode(key, int(a));
    return i;
}

// ---- CConnectorTable

namespace {

int KindSlot(device::ConnectorKind kind) {
    switch (kind) {
    case device::ConnectorKind::B:
        return 0;
    case device::ConnectorKind::K:
        return 1;
    case device::ConnectorKind::F:
        return 2;
    default:
        return -1;
    }
}

} // namespace

CConnectorTable::CConnectorTable(CVarCatalog& catalog) : m_catalog(catalog) {
    const DeviceDescription& d = catalog.Device();
    for (const device::ConnectorGroupDef& c : d.connectors) {
        int slot = KindSlot(c.kind);
        if (slot >= 0)
            m_byKind[slot].push_back(std::make_unique<CConnectorGroup>(
                CString(d.Text(c.name)), CString(d.Text(c.groupKey)), LONGLONG(c.base)));
    }
}

int CConnectorTable::GetEntryCount(int kind) {
    return kind >= 1 && kind <= 3 ? int(m_byKind[kind - 1].size()) : 0;
}

IConnectorGroup* CConnectorTable::GetEntry(int index, int kind) {
    if (kind < 1 || kind > 3)
        return nullptr;
    auto& list = m_byKind[kind - 1];
    return index >= 0 && size_t(index) < list.size() ? list[size_t(index)].get() : nullptr;
}

IVarAttr* CConnectorTable::FindByValueText(const CString& valueText) {
    std::string_view text(valueText.str());
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
        text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t'))
        text.remove_suffix(1);
    std::uint32_t value = 0;
    auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (ec != std::errc() || end != text.data() + text.size() || text.empty())
        return nullptr;
    std::uint32_t p = m_catalog.Device().FindByConnectorValue(value);
    return p == device::kNoIndex ? nullptr : m_catalog.Attr(p);
}

LONGLONG CConnectorTable::ValueFromCode(const CString& code, int kind) {
    if (kind < 1 || kind > 5)
        return -1;
    const DeviceDescription& d = m_catalog.Device();
    std::uint32_t p = FindParameterByKey(d, code.str());
    if (p == device::kNoIndex)
        return -1;
    std::uint32_t v = d.ConnectorValueOf(p, device::ConnectorKind(kind));
    return v == device::kNoIndex ? -1 : LONGLONG(v);
}

// ---- CVarCatalog

std::shared_ptr<CVarCatalog> CVarCatalog::Of(std::shared_ptr<const DeviceDescription> device) {
    // Keyed by the description's address; an expired entry means that description is gone
    // and the address may have been reused, so it is simply replaced.
    static std::mutex lock;
    static std::map<const DeviceDescription*, std::weak_ptr<CVarCatalog>> catalogs;
    if (!device)
        return nullptr;
    std::lock_guard<std::mutex> hold(lock);
    for (auto it = catalogs.begin(); it != catalogs.end();)
        it = it->second.expired() ? catalogs.erase(it) : std::next(it);
    std::weak_ptr<CVarCatalog>& slot = catalogs[device.get()];
    if (auto existing = slot.lock())
        return existing;
    auto made = std::make_shared<CVarCatalog>(std::move(device));
    slot = made;
    return made;
}

CVarCatalog::CVarCatalog(std::shared_ptr<const DeviceDescription> device)
    : m_device(std::move(device)), m_groups(*m_device, m_device->groupSet), m_axes(*m_device),
      m_connectors(*this) {
    const DeviceDescription& d = *m_device;
    m_attrs.reserve(d.parameters.size());
    for (std::uint32_t i = 0; i < d.parameters.size(); ++i)
        m_attrs.emplace_back(this, &d, i);
    m_valueInfos.reserve(d.valueInfos.size());
    for (const device::ValueInfo& v : d.valueInfos)
        m_valueInfos.push_back(std::make_unique<CValueInfo>(d, v));
}

CVarCatalog::~CVarCatalog() = default;

CValueInfo* CVarCatalog::ValueInfoOf(std::uint32_t parameter) {
    std::uint32_t v = m_device->parameters[parameter].valueInfo;
    return v < m_valueInfos.size() ? m_valueInfos[v].get() : nullptr;
}

IVarAttr* CVarCatalog::FindAttrByCode(const CString& code) {
    std::uint32_t p = FindParameterByKey(*m_device, code.str());
    return p == device::kNoIndex ? nullptr : &m_attrs[p];
}

IVarAttr* CVarCatalog::FindAttrByAddress(UINT address) {
    std::uint32_t p = m_device->FindByAddress(address);
    return p == device::kNoIndex ? nullptr : &m_attrs[p];
}

} // namespace zorhost::model
