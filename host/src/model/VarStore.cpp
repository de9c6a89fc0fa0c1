#include "zorhost/model/VarStore.h"

#include <cmath>
#include <string>

namespace zorhost::model {

namespace {

CString Txt(const DeviceDescription* d, device::TextRef ref) {
    return CString(d->Text(ref));
}

// One stateless converter serves every variable.
CHostVarUtil& Util() {
    static CHostVarUtil util;
    return util;
}

Variant FigureAs(int dataType, double figure) {
    if (dataType == VT_BSTR || dataType == VT_EMPTY)
        return Variant::OfType(VARTYPE(dataType));
    Variant v = Variant::OfType(VARTYPE(dataType));
    Util().DoubleToVariant(figure, v);
    return v;
}

} // namespace

// ---- CVarAttr

CVarAttr::CVarAttr(const DeviceDescription* device, std::uint32_t parameter)
    : m_device(device), m_parameter(parameter),
      m_accessLevel(device->parameters[parameter].accessLevel) {}

void CVarAttr::GetCode(CString& code) {
    code = Txt(m_device, Def().code);
}
void CVarAttr::GetName(CString& name) {
    name = Txt(m_device, Def().name);
}
void CVarAttr::GetUnit(CString& unit) {
    unit = Txt(m_device, Def().unit);
}
UINT CVarAttr::GetAddress() {
    return Def().address;
}
int CVarAttr::GetDataType() {
    return int(Def().dataType);
}
int CVarAttr::GetDecimals() {
    return Def().decimals;
}

int CVarAttr::GetValueLength() {
    // Registers are 16 bits wide: anything smaller still takes one.
    int bits = device::DataTypeBits(Def().dataType);
    return bits > 16 ? bits / 8 : 2;
}

Variant CVarAttr::GetFactoryValue() {
    return FigureAs(GetDataType(), Def().factoryValue);
}

Variant CVarAttr::Limit(double figure, std::uint32_t link) const {
    if (link != device::kNoIndex)
        return Variant::Str(CString(m_device->Code(m_device->parameters[link])));
    return FigureAs(int(Def().dataType), figure);
}

Variant CVarAttr::GetMinValue() {
    return Limit(Def().minValue, Def().minLink);
}
Variant CVarAttr::GetMaxValue() {
    return Limit(Def().maxValue, Def().maxLink);
}
BOOL CVarAttr::IsMinLinked() {
    return Def().IsMinLinked();
}
BOOL CVarAttr::IsMaxLinked() {
    return Def().IsMaxLinked();
}
int CVarAttr::GetModifyMode() {
    return int(Def().modifyMode);
}
int CVarAttr::GetEffectMode() {
    return int(Def().effectMode);
}
int CVarAttr::GetDisplayFormat() {
    return int(Def().displayFormat);
}
IValueInfo* CVarAttr::GetValueInfo() {
    return nullptr;
} // not built yet
int CVarAttr::GetPerUnitBaseId() {
    return Def().perUnitBaseId;
}
int CVarAttr::GetAccessLevel() {
    return m_accessLevel;
}
void CVarAttr::SetAccessLevel(int level) {
    m_accessLevel = level;
}
BOOL CVarAttr::IsHiddenForUser() {
    return Def().IsHiddenForUser();
}
BOOL CVarAttr::IsTransferable() {
    return Def().IsTransferable();
}
BOOL CVarAttr::IsFixed() {
    return Def().IsFixed();
}
BOOL CVarAttr::IsChangeTracked() {
    return Def().IsChangeTracked();
}

void CVarAttr::GetGroupText(CString& text) {
    int axis = Def().axis;
    if (axis >= 0 && size_t(axis) < m_device->axes.size())
        text = Txt(m_device, m_device->axes[size_t(axis)].name);
    else
        text.Empty();
}

void CVarAttr::GetInfoText(CString& text) {
    text = Txt(m_device, Def().info);
}
IVarCatalog* CVarAttr::GetOwnerCatalog() {
    return nullptr;
} // not built yet
IVarAttr* CVarAttr::Clone() {
    return new CVarAttr(*this);
}

// ---- CVarObj

CVarObj::CVarObj(IVarAttr* attr, IHostDeviceModule* owner) : m_attr(attr), m_owner(owner) {}

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
    if (!m_key.IsEmpty())
        key = m_key;
    else
        GetInstanceCode(key);
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
    FormatOwn(text, m_value);
}
void CVarObj::GetSetValueText(CString& text) {
    FormatOwn(text, m_setValue);
}

// ---- CVarStore

CVarStore::CVarStore(std::shared_ptr<const DeviceDescription> device, IHostDeviceModule* owner)
    : m_device(std::move(device)), m_owner(owner) {
    const DeviceDescription* d = m_device.get();
    m_attrs.reserve(d->parameters.size());
    m_vars.reserve(d->parameters.size());
    for (std::uint32_t i = 0; i < d->parameters.size(); ++i) {
        m_attrs.push_back(std::make_unique<CVarAttr>(d, i));
        auto var = std::make_unique<CVarObj>(m_attrs.back().get(), owner);
        int axis = d->parameters[i].axis;
        if (axis >= 0 && size_t(axis) < d->axes.size())
            var->SetInstanceKey(CString(std::string(d->Text(d->axes[size_t(axis)].key)) + "." +
                                        std::string(d->Code(d->parameters[i]))));
        var->SetValue(m_attrs.back()->GetFactoryValue());
        m_vars.push_back(std::move(var));
    }
}

// Variables go before the attributes they point at.
CVarStore::~CVarStore() {
    m_vars.clear();
}

IVarObjEx* CVarStore::GetAt(int index) {
    return index >= 0 && size_t(index) < m_vars.size() ? m_vars[size_t(index)].get() : nullptr;
}

IVarObjEx* CVarStore::FindByCode(const CString& key) {
    const std::string& k = key.str();
    size_t dot = k.find('.');
    if (dot != std::string::npos) {
        // "<axis key>.<code>": the code within that axis.
        std::string_view axisKey(k.data(), dot);
        for (size_t a = 0; a < m_device->axes.size(); ++a)
            if (m_device->Text(m_device->axes[a].key) == axisKey) {
                std::uint32_t i = m_device->FindByCode(std::string_view(k).substr(dot + 1), int(a));
                return i == device::kNoIndex ? nullptr : m_vars[i].get();
            }
        return nullptr;
    }
    std::uint32_t i = m_device->FindByCode(k, device::kCommonScope);
    for (size_t a = 0; i == device::kNoIndex && a < m_device->axes.size(); ++a)
        i = m_device->FindByCode(k, int(a));
    return i == device::kNoIndex ? nullptr : m_vars[i].get();
}

IVarObjEx* CVarStore::FindByAddress(UINT address) {
    std::uint32_t i = m_device->FindByAddress(address);
    return i == device::kNoIndex ? nullptr : m_vars[i].get();
}

// Groups, axes, functions and the catalog are not built on the store yet.
IGroupSet* CVarStore::GetGroupRoot(int) {
    return nullptr;
}
IHostAxisList* CVarStore::GetAxisList() {
    return nullptr;
}
IFunctionTable* CVarStore::GetFunctionTable(int) {
    return nullptr;
}
IVarCatalog* CVarStore::GetStoreCatalog() {
    return nullptr;
}

const BYTE* CVarStore::GetElecLabel() {
    const auto& label = m_device->product.electronicLabel;
    return label.empty() ? nullptr : label.data();
}

UINT CVarStore::GetElecLabelSize() {
    return UINT(m_device->product.electronicLabel.size());
}

void CVarStore::GetVersionText(CString& version) {
    version = CString(m_device->Text(m_device->product.versionText));
}

} // namespace zorhost::model
