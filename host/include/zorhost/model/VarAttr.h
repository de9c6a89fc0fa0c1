// The fixed attributes of one parameter: a thin view onto the shared description. The
// access level is the only field an attribute holds for itself, as it may be changed.
#pragma once

#include "module/host/IVarAttr.h"
#include "zorhost/device/DeviceDescription.h"

#include <memory>

namespace zorhost::model {

class CVarCatalog;

class CVarAttr : public IVarAttr {
public:
    CVarAttr(CVarCatalog* catalog, const device::DeviceDescription* device,
             std::uint32_t parameter);

    const device::ParameterDef& Def() const { return m_device->parameters[m_parameter]; }
    std::uint32_t ParameterIndex() const { return m_parameter; }
    const device::DeviceDescription& Device() const { return *m_device; }

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

    CVarCatalog* m_catalog; // null for an attribute made without one
    const device::DeviceDescription* m_device;
    std::uint32_t m_parameter;
    int m_accessLevel;
};

} // namespace zorhost::model
