#include "zorhost/model/VarStore.h"

#include "zorhost/services/HostVarUtil.h"

#include <array>
#include <cstring>
#include <mutex>
#include <string>

namespace zorhost::model {

namespace {

// One stateless converter serves every variable.
CHostVarUtil& Util() {
    static CHostVarUtil util;
    return util;
}

// Values may be read by workers while the user-interface thread writes them. A small
// pool of locks picked by address keeps a mutex out of every variable.
std::mutex& LockOf(const void* var) {
    static std::array<std::mutex, 64> locks;
    return locks[(reinterpret_cast<std::uintptr_t>(var) >> 4) % locks.size()];
}

} // namespace

// ---- PackedValue

void PackedValue::Free() {
    if (m_vt == VT_BSTR)
        delete m_text;
    m_vt = VT_EMPTY;
    m_bits = 0;
}

void PackedValue::Assign(const Variant& v) {
    if (v.vt == VT_BSTR) {
        m_text = new std::string(v.bstrVal.str());
    } else {
        // Every numeric member lives in the same eight bytes.
        std::memcpy(&m_bits, &v.dblVal, sizeof m_bits);
    }
    m_vt = v.vt;
}

void PackedValue::Assign(const PackedValue& o) {
    if (o.m_vt == VT_BSTR)
        m_text = new std::string(*o.m_text);
    else
        m_bits = o.m_bits;
    m_vt = o.m_vt;
}

PackedValue& PackedValue::operator=(const PackedValue& o) {
    if (this != &o) {
        Free();
        Assign(o);
    }
    return *this;
}

PackedValue& PackedValue::operator=(const Variant& v) {
    Free();
    Assign(v);
    return *this;
}

Variant PackedValue::Get() const {
    Variant v;
    v.vt = m_vt;
    if (m_vt == VT_BSTR)
        v.bstrVal = CString(*m_text);
    else
        std::memcpy(&v.dblVal, &m_bits, sizeof m_bits);
    return v;
}

// ---- CVarObj

CVarObj::CVarObj(const CVarObj& o)
    : IVarObjEx(o), m_attr(o.m_attr), m_owner(o.m_owner), m_key(o.m_key),
      m_perUnitMode(o.m_perUnitMode), m_checked(o.m_checked), m_keyIsPrefix(o.m_keyIsPrefix) {
    std::lock_guard<std::mutex> hold(LockOf(&o));
    m_value = o.m_value;
    m_setValue = o.m_setValue;
    m_lastRead = o.m_lastRead;
}

UINT CVarObj::GetInstanceAddress() {
    return m_attr ? m_attr->GetAddress() : 0;
}

void CVarObj::GetInstanceCode(CString& code) {
    if (m_attr)
        m_attr->GetCode(code);
    else
        code.Empty();
}

void CVarObj::GetInstanceGuid(CString& key) {
    if (!m_key) {
        GetInstanceCode(key);
    } else if (m_keyIsPrefix) {
        CString code;
        GetInstanceCode(code);
        key = CString(*m_key + code.str());
    } else {
        key = CString(*m_key);
    }
}

void CVarObj::SetInstanceKey(const CString& key) {
    m_key = key.IsEmpty() ? nullptr : std::make_shared<const std::string>(key.str());
    m_keyIsPrefix = false;
}

void CVarObj::SetKeyPrefix(std::shared_ptr<const std::string> prefix) {
    m_key = std::move(prefix);
    m_keyIsPrefix = m_key != nullptr;
}

Variant CVarObj::GetValue() {
    std::lock_guard<std::mutex> hold(LockOf(this));
    return m_value.Get();
}

void CVarObj::SetValue(const Variant& value) {
    std::lock_guard<std::mutex> hold(LockOf(this));
    m_value = value;
}

Variant CVarObj::GetSetValue() {
    std::lock_guard<std::mutex> hold(LockOf(this));
    return m_setValue.Get();
}

void CVarObj::SetSetValue(const Variant& value) {
    std::lock_guard<std::mutex> hold(LockOf(this));
    m_setValue = value;
}

Variant CVarObj::GetLastReadValue() {
    std::lock_guard<std::mutex> hold(LockOf(this));
    return m_lastRead.Get();
}

void CVarObj::StoreRead(const Variant& value) {
    std::lock_guard<std::mutex> hold(LockOf(this));
    m_value = value;
    m_lastRead = value;
}

void CVarObj::FormatOwn(CString& text, const Variant& value) {
    text.Empty();
    if (value.IsEmptyOrNull() || !m_attr)
        return;
    int decimals = m_attr->GetDecimals();
    if (m_attr->GetDisplayFormat() == 1 || decimals <= 0 || value.vt == VT_BSTR) {
        Util().FormatVariant(text, value, decimals, m_attr->GetDisplayFormat() == 1);
        return;
    }
    double d = Util().VariantToDouble(value, m_attr->GetDataType(), decimals);
    Util().FormatVariant(text, Variant::R8(d), decimals, 0);
}

void CVarObj::GetValueText(CString& text) {
    FormatOwn(text, GetValue());
}
void CVarObj::GetSetValueText(CString& text) {
    FormatOwn(text, GetSetValue());
}

// ---- CVarStore

CVarStore::CVarStore(std::shared_ptr<const DeviceDescription> device, IHostDeviceModule* owner)
    : m_device(std::move(device)), m_catalog(CVarCatalog::Of(m_device)), m_owner(owner),
      m_fixed(*m_device, m_device->groupSet), m_axes(*m_device),
      m_label(m_device->product.electronicLabel.begin(), m_device->product.electronicLabel.end()) {
    const DeviceDescription& d = *m_device;
    std::vector<std::shared_ptr<const std::string>> prefixes;
    for (const device::AxisDef& a : d.axes)
        prefixes.push_back(std::make_shared<const std::string>(std::string(d.Text(a.key)) + "."));
    m_vars.reserve(d.parameters.size());
    for (std::uint32_t i = 0; i < d.parameters.size(); ++i) {
        CVarAttr* attr = m_catalog->Attr(i);
        m_vars.emplace_back(attr, owner);
        int axis = d.parameters[i].axis;
        if (axis >= 0 && size_t(axis) < prefixes.size())
            m_vars.back().SetKeyPrefix(prefixes[size_t(axis)]);
        m_vars.back().SetValue(attr->GetFactoryValue());
    }
    m_functions = std::make_unique<CFunctionTable>(d, *this);
}

// Variables and tables go before the catalog whose attributes they point at.
CVarStore::~CVarStore() {
    m_functions.reset();
    m_vars.clear();
}

IVarObjEx* CVarStore::GetAt(int index) {
    return index >= 0 && size_t(index) < m_vars.size() ? &m_vars[size_t(index)] : nullptr;
}

IVarObjEx* CVarStore::FindByCode(const CString& key) {
    std::uint32_t i = FindParameterByKey(*m_device, key.str());
    return i == device::kNoIndex ? nullptr : &m_vars[i];
}

IVarObjEx* CVarStore::FindByAddress(UINT address) {
    std::uint32_t i = m_device->FindByAddress(address);
    return i == device::kNoIndex ? nullptr : &m_vars[i];
}

IGroupSet* CVarStore::GetGroupRoot(int which) {
    switch (which) {
    case 0:
        return &m_fixed;
    case 1:
        return &m_custom;
    default:
        return nullptr;
    }
}

IFunctionTable* CVarStore::GetFunctionTable(int which) {
    return which == 0 ? m_functions.get() : nullptr;
}

const BYTE* CVarStore::GetElecLabel() {
    return m_label.empty() ? nullptr : m_label.data();
}

UINT CVarStore::GetElecLabelSize() {
    return UINT(m_label.size());
}

void CVarStore::GetVersionText(CString& version) {
    version = CString(m_device->Text(m_device->product.versionText));
}

} // namespace zorhost::model
