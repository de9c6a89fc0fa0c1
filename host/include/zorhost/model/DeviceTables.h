// Tables a store or a module keeps beside its variables: the function entries reached by
// a fixed name, and the per-unit bases with the base values read from the drive.
#pragma once

#include "module/host/IFunctionEntry.h"
#include "module/host/IFunctionTable.h"
#include "module/host/IPerUnitBase.h"
#include "module/host/IPerUnitEntry.h"
#include "module/host/IPerUnitTable.h"
#include "module/host/IVarStore.h"
#include "zorhost/device/DeviceDescription.h"

#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace zorhost::model {

using device::DeviceDescription;

class CFunctionEntry : public IFunctionEntry {
public:
    CFunctionEntry(UINT address, IVarObjEx* var) : m_address(address), m_var(var) {}
    UINT GetAddress() override { return m_address; }
    IVarObjEx* GetVar() override { return m_var; }

private:
    UINT m_address;
    IVarObjEx* m_var; // the store's; null for a register that is no parameter
};

class CFunctionTable : public IFunctionTable {
public:
    // The description's functions, their variables found in `store`.
    CFunctionTable(const DeviceDescription& device, IVarStore& store);
    IFunctionEntry* FindFunction(const CString& name) override;

private:
    std::vector<std::pair<CString, CFunctionEntry>> m_entries;
};

class CPerUnitEntry : public IPerUnitEntry {
public:
    CPerUnitEntry(CString name, UINT address) : m_name(std::move(name)), m_address(address) {}
    void GetName(CString& name) override { name = m_name; }
    UINT GetAddress() override { return m_address; }
    BOOL HasValue() override { return m_known ? 1 : 0; }
    double GetValue() override { return m_known ? m_value : 0; }
    void SetValue(double value) override {
        m_value = value;
        m_known = true;
    }
    // Forgets the held value (the drive changed), so it is read again.
    void Forget() { m_known = false; }

private:
    CString m_name;
    UINT m_address;
    double m_value = 0;
    bool m_known = false;
};

class CPerUnitBase : public IPerUnitBase {
public:
    int GetEntryCount() override { return int(m_entries.size()); }
    IPerUnitEntry* GetEntry(int mode) override;

    std::vector<std::unique_ptr<CPerUnitEntry>>& Entries() { return m_entries; }

private:
    std::vector<std::unique_ptr<CPerUnitEntry>> m_entries;
};

// One table per module: the held base values are the module's drive's. On a multi-axis
// device a parameter of another axis gets the bases at that axis's addresses.
class CPerUnitTable : public IPerUnitTable {
public:
    explicit CPerUnitTable(std::shared_ptr<const DeviceDescription> device);

    // A code ("H06-10": drive-wide first, then the first axis) or an instance key
    // ("A2.H06-10": that axis).
    IPerUnitBase* FindByCode(const CString& code) override;
    // The bases of that id at the description's own addresses.
    IPerUnitBase* FindById(int baseId) override;

    // Forgets every held base value.
    void ForgetValues();

private:
    IPerUnitBase* Bases(int baseId, int axis);

    std::shared_ptr<const DeviceDescription> m_device;
    std::map<std::pair<int, int>, std::unique_ptr<CPerUnitBase>> m_bases; // (id, axis)
};

} // namespace zorhost::model
