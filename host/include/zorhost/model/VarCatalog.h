// The catalog of one device type: one attribute per parameter of the description, the
// value meanings, the group set, the axes and the connector index. Every store of that
// description shares one catalog, so fixed metadata exists once however many modules use
// the device.
#pragma once

#include "module/host/IConnectorGroup.h"
#include "module/host/IConnectorTable.h"
#include "module/host/IVarCatalog.h"
#include "zorhost/model/Groups.h"
#include "zorhost/model/ValueInfo.h"
#include "zorhost/model/VarAttr.h"

#include <memory>
#include <string_view>
#include <vector>

namespace zorhost::model {

// Parameter index of a store key: "<axis key>.<code>" on that axis; a bare code on the
// device first, then on the axes in order. kNoIndex when nothing matches.
std::uint32_t FindParameterByKey(const DeviceDescription& device, std::string_view key);

class CConnectorGroup : public IConnectorGroup {
public:
    CConnectorGroup(CString name, CString groupKey, LONGLONG base)
        : m_name(std::move(name)), m_groupKey(std::move(groupKey)), m_base(base) {}
    void GetName(CString& name) override { name = m_name; }
    void GetGroupKey(CString& key) override { key = m_groupKey; }
    LONGLONG GetBase() override { return m_base; }

private:
    CString m_name, m_groupKey;
    LONGLONG m_base;
};

class CVarCatalog;

class CConnectorTable : public IConnectorTable {
public:
    explicit CConnectorTable(CVarCatalog& catalog);

    int GetEntryCount(int kind) override;
    IConnectorGroup* GetEntry(int index, int kind) override;
    // A decimal connector value, blanks around it allowed.
    IVarAttr* FindByValueText(const CString& valueText) override;
    // -1 when the parameter is in no connector group of that kind (4 K or F, 5 any).
    LONGLONG ValueFromCode(const CString& code, int kind) override;

private:
    CVarCatalog& m_catalog;
    std::vector<std::unique_ptr<CConnectorGroup>> m_byKind[3]; // B, K, F
};

class CVarCatalog : public IVarCatalog, public std::enable_shared_from_this<CVarCatalog> {
public:
    // The one catalog of `device` while anyone holds it; made on first use.
    static std::shared_ptr<CVarCatalog> Of(std::shared_ptr<const DeviceDescription> device);

    explicit CVarCatalog(std::shared_ptr<const DeviceDescription> device);
    ~CVarCatalog() override;
    CVarCatalog(const CVarCatalog&) = delete;
    CVarCatalog& operator=(const CVarCatalog&) = delete;

    IGroupSet* GetGroupSet() override { return &m_groups; }
    IHostAxisList* GetAxisList() override { return &m_axes; }
    IConnectorTable* GetConnectorTable() override { return &m_connectors; }
    // A code, or an instance key "<axis key>.<code>".
    IVarAttr* FindAttrByCode(const CString& code) override;
    IVarAttr* FindAttrByAddress(UINT address) override;

    const DeviceDescription& Device() const { return *m_device; }
    const std::shared_ptr<const DeviceDescription>& DevicePtr() const { return m_device; }
    CVarAttr* Attr(std::uint32_t parameter) { return &m_attrs[parameter]; }
    // The shared meaning of parameter `parameter`'s value, or null.
    CValueInfo* ValueInfoOf(std::uint32_t parameter);
    CGroupSet& Groups() { return m_groups; }
    CAxisList& Axes() { return m_axes; }

private:
    std::shared_ptr<const DeviceDescription> m_device;
    std::vector<CVarAttr> m_attrs; // index = parameter index; never reallocated
    std::vector<std::unique_ptr<CValueInfo>> m_valueInfos;
    CGroupSet m_groups;
    CAxisList m_axes;
    CConnectorTable m_connectors;
};

} // namespace zorhost::model
