#include "zorhost/model/ProjectModel.h"

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

CDeviceModule::CDeviceModule(std::shared_ptr<const DeviceDescription> device, CString key,
                             int number)
    : m_key(std::move(key)), m_displayName(CString(device->Text(device->product.name))),
      m_subName(CString(device->Text(device->product.nameEn))), m_number(number),
      m_productInfo(ProductKindCode(device->product.kind)), m_store(device, this) {}

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

} // namespace zorhost::model
