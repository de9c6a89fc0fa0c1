// Live variables over an immutable device description: the description holds the fixed
// metadata once; each variable only carries its values and marks.
#pragma once

#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "zorhost/device/DeviceDescription.h"
#include "zorhost/services/HostVarUtil.h"

#include <memory>
#include <vector>

namespace zorhost::model {

using device::DeviceDescription;

class CVarAttr : public IVarAttr {
public:
    CVarAttr(const DeviceDescription* device, std::uint32_t parameter);
    const device::ParameterDef& Def() const { return m_device->parameters[m_parameter]; }

    void GetCode(CString& code) override;
    void GetName(CString& name) override;
    void GetUnit(CString& unit) override;
    UINT GetAddress() override;
    int GetDataType() override;
    int GetDecimals() override;
    int GetValueLength() override;
    Variant GetFactoryValue() override;
    Variant GetMinValue() override;
    Variant GetMaxValue() override;
    BOOL IsMinLinked() override;
    BOOL IsMaxLinked() override;
    int GetModifyMode() override;
    int GetEffectMode() override;
    int GetDisplayFormat() override;
    IValueInfo* GetValueInfo() override;
    int GetPerUnitBaseId() override;
    int GetAccessLevel() override;
    void SetAccessLevel(int level) override;
    BOOL IsHiddenForUser() override;
    BOOL IsTransferable() override;
    BOOL IsFixed() override;
    BOOL IsChangeTracked() override;
    void GetGroupText(CString& text) override;
    void GetInfoText(CString& text) override;
    IVarCatalog* GetOwnerCatalog() override;
    IVarAttr* Clone() override;

private:
    Variant Limit(double figure, std::uint32_t link) const;

    const DeviceDescription* m_device;
    std::uint32_t m_parameter;
    int m_accessLevel; // own copy: the level may be changed per attribute
};

class CVarObj : public IVarObjEx {
public:
    CVarObj(IVarAttr* attr, IHostDeviceModule* owner);

    IVarAttr* GetAttr() override { return m_attr; }
    void SetAttr(IVarAttr* attr) override { m_attr = attr; }
    IHostDeviceModule* GetOwnerModule() override { return m_owner; }
    UINT GetInstanceAddress() override;
    void GetInstanceCode(CString& code) override;
    void GetInstanceGuid(CString& key) override;
    Variant GetValue() override { return m_value; }
    void SetValue(const Variant& value) override { m_value = value; }
    Variant GetSetValue() override { return m_setValue; }
    void SetSetValue(const Variant& value) override { m_setValue = value; }
    Variant GetLastReadValue() override { return m_lastRead; }
    Variant GetRawValue() override { return m_value; }
    void GetValueText(CString& text) override;
    void GetSetValueText(CString& text) override;
    BOOL IsChecked() override { return m_checked; }
    void SetChecked(BOOL checked) override { m_checked = checked ? 1 : 0; }
    int GetPerUnitMode() override { return m_perUnitMode; }
    void SetPerUnitMode(int mode) override { m_perUnitMode = mode; }
    IVarObjEx* Clone() override { return new CVarObj(*this); }

    // A read from the drive: current and last-read value both.
    void StoreRead(const Variant& value) {
        m_value = value;
        m_lastRead = value;
    }
    // Instance key given by the store ("A2.H02-41" on an axis, the code elsewhere).
    void SetInstanceKey(CString key) { m_key = std::move(key); }

private:
    void FormatOwn(CString& text, const Variant& value);

    IVarAttr* m_attr;
    IHostDeviceModule* m_owner;
    CString m_key;
    Variant m_value, m_setValue, m_lastRead;
    BOOL m_checked = 0;
    int m_perUnitMode = -1;
};

// All parameters of one device, in description order; each starts at its factory value.
class CVarStore : public IVarStore {
public:
    explicit CVarStore(std::shared_ptr<const DeviceDescription> device,
                       IHostDeviceModule* owner = nullptr);
    ~CVarStore() override;

    const DeviceDescription& Device() const { return *m_device; }
    CVarObj* Var(int index) { return m_vars[size_t(index)].get(); }

    int GetCount() override { return int(m_vars.size()); }
    IVarObjEx* GetAt(int index) override;
    IVarObjEx* FindByCode(const CString& key) override;
    IVarObjEx* FindByAddress(UINT address) override;
    IGroupSet* GetGroupRoot(int which) override;
    IHostAxisList* GetAxisList() override;
    IFunctionTable* GetFunctionTable(int which) override;
    IHostDeviceModule* GetOwnerModule() override { return m_owner; }
    IVarCatalog* GetStoreCatalog() override;
    const BYTE* GetElecLabel() override;
    UINT GetElecLabelSize() override;
    void GetVersionText(CString& version) override;

private:
    std::shared_ptr<const DeviceDescription> m_device;
    IHostDeviceModule* m_owner;
    std::vector<std::unique_ptr<CVarAttr>> m_attrs;
    std::vector<std::unique_ptr<CVarObj>> m_vars;
};

} // namespace zorhost::model
