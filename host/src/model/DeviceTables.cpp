#include "zorhost/model/DeviceTables.h"

#include "zorhost/model/VarCatalog.h"

namespace zorhost::model {

// ---- CFunctionTable

CFunctionTable::CFunctionTable(const DeviceDescription& d, IVarStore& store) {
    m_entries.reserve(d.functions.size());
    for (const device::NamedVariable& f : d.functions)
        m_entries.emplace_back(CString(d.Text(f.name)),
                               CFunctionEntry(f.address, store.FindByAddress(f.address)));
}

IFunctionEntry* CFunctionTable::FindFunction(const CString& name) {
    for (auto& [entryName, entry] : m_entries)
        if (entryName == name)
            return &entry;
    return nullptr;
}

// ---- CPerUnitBase, CPerUnitTable

IPerUnitEntry* CPerUnitBase::GetEntry(int mode) {
    int index = mode - 2;
    return index >= 0 && size_t(index) < m_entries.size() ? m_entries[size_t(index)].get()
                                                          : nullptr;
}

CPerUnitTable::CPerUnitTable(std::shared_ptr<const DeviceDescription> device)
    : m_device(std::move(device)) {}

IPerUnitBase* CPerUnitTable::Bases(int baseId, int axis) {
    if (baseId <= 0 || baseId > 0xFFFF)
        return nullptr;
    auto key = std::make_pair(baseId, axis);
    auto found = m_bases.find(key);
    if (found != m_bases.end())
        return found->second.get();
    const device::PerUnitTable* table = m_device->FindPerUnitTable(std::uint16_t(baseId));
    if (!table)
        return nullptr;
    // Bases name parameters at the first axis's addresses; another axis has its own.
    std::int64_t shift = 0;
    if (axis > 0 && size_t(axis) < m_device->axes.size())
        shift = std::int64_t(m_device->axes[size_t(axis)].addressBase) -
                std::int64_t(m_device->axes[0].addressBase);
    auto bases = std::make_unique<CPerUnitBase>();
    for (const device::PerUnitBase& b : table->bases)
        bases->Entries().push_back(std::make_unique<CPerUnitEntry>(
            CString(m_device->Text(b.name)), UINT(std::int64_t(b.address) + shift)));
    return (m_bases[key] = std::move(bases)).get();
}

IPerUnitBase* CPerUnitTable::FindByCode(const CString& code) {
    std::uint32_t p = FindParameterByKey(*m_device, code.str());
    if (p == device::kNoIndex)
        return nullptr;
    const device::ParameterDef& def = m_device->parameters[p];
    return Bases(def.perUnitBaseId, def.axis < 0 ? 0 : def.axis);
}

IPerUnitBase* CPerUnitTable::FindById(int baseId) {
    return Bases(baseId, 0);
}

void CPerUnitTable::ForgetValues() {
    for (auto& [key, bases] : m_bases)
        for (auto& e : bases->Entries())
            e->Forget();
}

} // namespace zorhost::model
