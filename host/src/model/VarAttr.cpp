#include "zorhost/model/VarAttr.h"

#include "zorhost/model/VarCatalog.h"
#include "zorhost/services/HostVarUtil.h"

namespace zorhost::model {

namespace {

CString Txt(const device::DeviceDescription* d, device::TextRef ref) {
    return CString(d->Text(ref));
}

Variant FigureAs(int dataType, double figure) {
    if (dataType == VT_BSTR || dataType == VT_EMPTY)
        return Variant::OfType(VARTYPE(dataType));
    static CHostVarUtil util; // stateless for numbers
    Variant v = Variant::OfType(VARTYPE(dataType));
    util.DoubleToVariant(figure, v);
    return v;
}

// A copy handed to a caller may outlive every store of its device: it keeps the catalog
// (and through it the description) alive.
class CVarAttrCopy : public CVarAttr {
public:
    CVarAttrCopy(const CVarAttr& source, std::shared_ptr<CVarCatalog> keep)
        : CVarAttr(source), m_keep(std::move(keep)) {}
    IVarAttr* Clone() override { return new CVarAttrCopy(*this, m_keep); }

private:
    std::shared_ptr<CVarCatalog> m_keep;
};

} // namespace

CVarAttr::CVarAttr(CVarCatalog* catalog, const device::DeviceDescription* device,
                   std::uint32_t parameter)
    : m_catalog(catalog), m_device(device), m_parameter(parameter),
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
    return m_catalog ? m_catalog->ValueInfoOf(m_parameter) : nullptr;
}
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
    text = Txt(m_device, m_device->InfoOf(m_parameter).text);
}

IVarCatalog* CVarAttr::GetOwnerCatalog() {
    return m_catalog;
}

IVarAttr* CVarAttr::Clone() {
    return new CVarAttrCopy(*this, m_catalog ? m_catalog->weak_from_this().lock() : nullptr);
}

} // namespace zorhost::model
