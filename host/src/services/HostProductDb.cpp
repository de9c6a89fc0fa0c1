#include "zorhost/services/HostProductDb.h"

#include "zorhost/device/DeviceLoader.h"

namespace zorhost {

void CHostProductDb::Add(std::shared_ptr<const device::DeviceDescription> device) {
    if (!device)
        return;
    for (const Product& p : m_products)
        if (&p.catalog->Device() == device.get())
            return;
    Product p;
    p.record = std::make_unique<CHostProductRecord>(device->product);
    p.catalog = model::CVarCatalog::Of(std::move(device));
    m_products.push_back(std::move(p));
}

CHostProductDb::Product* CHostProductDb::Find(const BYTE* label, UINT size,
                                              const CString* version) {
    for (Product& p : m_products) {
        const auto& own = p.catalog->Device().product;
        if (!device::IsSameDeviceType(own.electronicLabel.data(), own.electronicLabel.size(), label,
                                      size))
            continue;
        if (!version || p.catalog->Device().Text(own.versionText) == version->str())
            return &p;
    }
    return nullptr;
}

IHostProductRecord* CHostProductDb::FindProduct(const BYTE* label, UINT size) {
    Product* p = Find(label, size, nullptr);
    return p ? p->record.get() : nullptr;
}

IVarCatalog* CHostProductDb::GetProductCatalog(const BYTE* label, UINT size,
                                               const CString& version) {
    Product* p = Find(label, size, &version);
    if (!p)
        p = Find(label, size, nullptr);
    return p ? p->catalog.get() : nullptr;
}

} // namespace zorhost
