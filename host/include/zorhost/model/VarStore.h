// Live variables over an immutable device description: the description and its shared
// catalog hold the fixed metadata once; each variable only carries its values and marks.
#pragma once

#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "zorhost/device/DeviceDescription.h"
#include "zorhost/model/DeviceTables.h"
#include "zorhost/model/Groups.h"
#include "zorhost/model/VarAttr.h"
#include "zorhost/model/VarCatalog.h"

#include <memory>
#include <string>
#include <vector>

namespace zorhost::model {

// A variant in 16 bytes: tag and payload inline, a text on the heap. Variables hold three
// values each, so this is where the bytes per parameter go.
class PackedValue {
public:
    PackedValue() = default;
    explicit PackedValue(const Variant& v) { Assign(v); }
    PackedValue(const PackedValue& o) { Assign(o); }
    PackedValue& operator=(const PackedValue& o);
    PackedValue& operator=(const Variant& v);
    ~PackedValue() { Free(); }

    Variant Get() const;

private:
    void Assign(const Variant& v);
    void Assign(const PackedValue& o);
    void Free();

    VARTYPE m_vt = VT_EMPTY;
    union {
        double m_bits = 0;   // numeric payload, copied bit for bit
        std::string* m_text; // VT_BSTR
    };
};

class CVarObj : public IVarObjEx {
public:
    CVarObj(IVarAttr* attr, IHostDeviceModule* owner) : m_attr(attr), m_owner(owner) {}
    CVarObj(const CVarObj& o);
    CVarObj& operator=(const CVarObj&) = delete;

    IVarAttr* GetAttr() override { return m_attr; }
    void SetAttr(IVarAttr* attr) override { m_attr = attr; }
    IHostDeviceModule* GetOwnerModule() override { return m_owner; }
    UINT GetInstanceAddress() override;
    void GetInstanceCode(CString& code) override;
    void GetInstanceGuid(CString& key) override;
    Variant GetValue() override;
    void SetValue(const Variant& value) override;
    Variant GetSetValue() override;
    void SetSetValue(const Variant& value) override;
    Variant GetLastReadValue() override;
    Variant GetRawValue() override { return GetValue(); }
    void GetValueText(CString& text) override;
    void GetSetValueText(CString& text) override;
    BOOL IsChecked() override { return m_checked ? 1 : 0; }
    void SetChecked(BOOL checked) override { m_checked = checked != 0; }
    int GetPerUnitMode() override { return m_perUnitMode; }
    void SetPerUnitMode(int mode) override { m_perUnitMode = mode; }
    IVarObjEx* Clone() override { return new CVarObj(*this); }

    // A read from the drive: current and last-read value both.
    void StoreRead(const Variant& value);
    // Instance key given by the store ("A2.H02-41" on an axis, the code elsewhere).
    void SetInstanceKey(const CString& key);
    // The key is `prefix` + the code; axis variables share one prefix ("A2.").
    void SetKeyPrefix(std::shared_ptr<const std::string> prefix);

private:
    void FormatOwn(CString& text, const Variant& value);

    IVarAttr* m_attr;
    IHostDeviceModule* m_owner;
    std::shared_ptr<const std::string> m_key; // null: the code is the key
    PackedValue m_value, m_setValue, m_lastRead;
    int m_perUnitMode = -1;
    bool m_checked = false;
    bool m_keyIsPrefix = false;
};

// All parameters of one device, in description order; each starts at its factory value.
// The fixed groups (root 0) and the axes come from the description, the custom groups
// (root 1) start empty.
class CVarStore : public IVarStore {
public:
    explicit CVarStore(std::shared_ptr<const DeviceDescription> device,
                       IHostDeviceModule* owner = nullptr);
    ~CVarStore() override;
    CVarStore(const CVarStore&) = delete;
    CVarStore& operator=(const CVarStore&) = delete;

    const DeviceDescription& Device() const { return *m_device; }
    const std::shared_ptr<const DeviceDescription>& DevicePtr() const { return m_device; }
    CVarCatalog& Catalog() { return *m_catalog; }
    CVarObj* Var(int index) { return &m_vars[size_t(index)]; }
    CGroupSet& FixedGroups() { return m_fixed; }
    CGroupSet& CustomGroups() { return m_custom; }
    CAxisList& Axes() { return m_axes; }

    int GetCount() override { return int(m_vars.size()); }
    IVarObjEx* GetAt(int index) override;
    IVarObjEx* FindByCode(const CString& key) override;
    IVarObjEx* FindByAddress(UINT address) override;
    IGroupSet* GetGroupRoot(int which) override;
    IHostAxisList* GetAxisList() override { return &m_axes; }
    IFunctionTable* GetFunctionTable(int which) override;
    IHostDeviceModule* GetOwnerModule() override { return m_owner; }
    IVarCatalog* GetStoreCatalog() override { return m_catalog.get(); }
    const BYTE* GetElecLabel() override;
    UINT GetElecLabelSize() override;
    void GetVersionText(CString& version) override;

private:
    std::shared_ptr<const DeviceDescription> m_device;
    std::shared_ptr<CVarCatalog> m_catalog;
    IHostDeviceModule* m_owner;
    std::vector<CVarObj> m_vars; // index = parameter index; never reallocated
    CGroupSet m_fixed;
    CGroupSet m_custom;
    CAxisList m_axes;
    std::unique_ptr<CFunctionTable> m_functions;
    // The store's own copy of the label: its address tells this store from another store
    // of the same device (IHostWorkspace::GetDatabase is handed it).
    std::vector<BYTE> m_label;
};

} // namespace zorhost::model
