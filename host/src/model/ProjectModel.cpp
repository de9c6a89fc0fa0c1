#include "zorhost/model/ProjectModel.h"

#include "zorhost/device/DeviceLoader.h"

namespace zorhost::model {

int ProductKindCode(device::ProductKind kind) {
    switch (kind) {
    case device::ProductKind::Servo:
        return 0;
    case device::ProductKind::MultiAxisServo:
        return 5;
    case device::ProductKind::Inverter:
        return 1;
    }
    return 0;
}

namespace {

// The description's own sub name, else the model designation that leads the product name
// ("ZD3-S" of "ZD3-S 单轴伺服驱动器").
CString SubNameOf(const DeviceDescription& d) {
    std::string_view sub = d.Text(d.product.subName);
    if (!sub.empty())
        return CString(sub);
    std::string_view name = d.Text(d.product.name);
    return CString(name.substr(0, name.find(' ')));
}

} // namespace

CDeviceModule::CDeviceModule(const std::shared_ptr<const DeviceDescription>& device, CString key,
                             int number)
    : m_key(std::move(key)), m_displayName(CString(device->Text(device->product.name))),
      m_subName(SubNameOf(*device)), m_number(number),
      m_productInfo(ProductKindCode(device->product.kind)), m_store(device, this),
      m_perUnit(device), m_primaryLabel(device->product.primaryElectronicLabel) {}

int CDeviceModule::GetAxisCopyCount() {
    return m_store.Device().product.axisCopyCount;
}

CDeviceModule* CModuleList::Add(std::unique_ptr<CDeviceModule> module) {
    if (!module)
        return nullptr;
    CString key;
    module->GetModuleKey(key);
    if (FindModule(key) || FindModuleByNumber(module->GetAxisIndex()))
        return nullptr;
    m_modules.push_back(std::move(module));
    return m_modules.back().get();
}

IHostDeviceModule* CModuleList::FindModule(const CString& moduleKey) {
    for (auto& m : m_modules) {
        CString key;
        m->GetModuleKey(key);
        if (key == moduleKey)
            return m.get();
    }
    return nullptr;
}

IHostDeviceModule* CModuleList::FindModuleByNumber(int number) {
    for (auto& m : m_modules)
        if (m->GetAxisIndex() == number)
            return m.get();
    return nullptr;
}

IHostDeviceModule* CModuleList::GetModuleAt(int index) {
    return index >= 0 && size_t(index) < m_modules.size() ? m_modules[size_t(index)].get()
                                                          : nullptr;
}

BOOL CWorkspace::GetProjectDir(CString& dir) {
    dir = m_dir;
    return !m_dir.IsEmpty();
}

IVarDatabase* CWorkspace::GetDatabase(const BYTE* label, UINT size, const CString& version) {
    if (!label || size == 0)
        return nullptr;
    // A module hands in its own label, so the store that owns those bytes is the one
    // meant: two drives of one type in a project keep their groups apart. A label from
    // elsewhere (a file) finds the first module of that device type and version.
    CVarStore* own = nullptr;
    CVarStore* sameType = nullptr;
    for (int i = 0; i < m_modules.GetModuleCount(); ++i) {
        CVarStore& store = static_cast<CDeviceModule*>(m_modules.GetModuleAt(i))->Store();
        CString v;
        store.GetVersionText(v);
        if (v != version ||
            !device::IsSameDeviceType(label, size, store.GetElecLabel(), store.GetElecLabelSize()))
            continue;
        if (store.GetElecLabel() == label) {
            own = &store;
            break;
        }
        if (!sameType)
            sameType = &store;
    }
    CVarStore* store = own ? own : sameType;
    return store ? &DatabaseFor(*store) : nullptr;
}

CVarDatabase& CWorkspace::DatabaseFor(CVarStore& store) {
    for (auto& db : m_databases)
        if (&db->Store() == &store)
            return *db;
    m_databases.push_back(std::make_unique<CVarDatabase>(store));
    return *m_databases.back();
}

} // namespace zorhost::model
