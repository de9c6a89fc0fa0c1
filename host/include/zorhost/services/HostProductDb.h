// The host's product database: the loaded device descriptions, found by electronic label,
// each with its product record and its shared variable catalog.
#pragma once

#include "module/host/IHostProductDb.h"
#include "module/host/IHostProductRecord.h"
#include "zorhost/device/DeviceDescription.h"
#include "zorhost/model/VarCatalog.h"

#include <memory>
#include <vector>

namespace zorhost {

class CHostProductRecord : public IHostProductRecord {
public:
    explicit CHostProductRecord(const device::ProductInfo& product)
        : m_line(product.lineId), m_product(product.productId), m_sub(product.subProductId) {}
    DWORD GetLineId() override { return m_line; }
    DWORD GetProductId() override { return m_product; }
    DWORD GetSubProductId() override { return m_sub; }

private:
    DWORD m_line, m_product, m_sub;
};

class CHostProductDb : public IHostProductDb {
public:
    // Adds a description (again: no effect). Its catalog is the one its modules use.
    void Add(std::shared_ptr<const device::DeviceDescription> device);
    int Count() const { return int(m_products.size()); }

    // The record of the first product of the same device type as `label` (see
    // device::IsSameDeviceType), or null.
    IHostProductRecord* FindProduct(const BYTE* label, UINT size) override;
    // The catalog of that device type whose version text equals `version`; without one,
    // the catalog of the first product of that type, as a drive with newer firmware still
    // answers to the parameters its type has always had.
    IVarCatalog* GetProductCatalog(const BYTE* label, UINT size, const CString& version) override;

private:
    struct Product {
        std::shared_ptr<model::CVarCatalog> catalog;
        std::unique_ptr<CHostProductRecord> record;
    };
    Product* Find(const BYTE* label, UINT size, const CString* version);

    std::vector<Product> m_products;
};

} // namespace zorhost
