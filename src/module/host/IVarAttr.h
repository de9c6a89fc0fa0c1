// The fixed attributes of a parameter. Implemented by the host; host-owned unless it is
// a clone. Read-only for the module, except SetAccessLevel.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"
#include "module/host/Variant.h"

class IVarAttr : public IBaseInterface {
public:
    // `code` = the function code ("H00-10").
    virtual void GetCode(CString& code) = 0;
    // `name` = the parameter name, untranslated.
    virtual void GetName(CString& name) = 0;
    // `unit` = the unit; may be empty.
    virtual void GetUnit(CString& unit) = 0;
    // Communication address.
    virtual UINT GetAddress() = 0;
    // Data type code (Variant tags; 0 unknown).
    virtual int GetDataType() = 0;
    // Decimal places; 0 for an integer parameter.
    virtual int GetDecimals() = 0;
    // Byte length of the value for a read request.
    virtual int GetValueLength() = 0;
    // Factory value.
    virtual Variant GetFactoryValue() = 0;
    // Lower limit, or the code of another parameter when IsMinLinked.
    virtual Variant GetMinValue() = 0;
    // Upper limit, or the code of another parameter when IsMaxLinked.
    virtual Variant GetMaxValue() = 0;
    // Nonzero when the lower limit is the live value of another parameter.
    virtual BOOL IsMinLinked() = 0;
    // Nonzero when the upper limit is the live value of another parameter.
    virtual BOOL IsMaxLinked() = 0;
    // 0 any time, 1 at standstill, 2 never, 3 left out of transfers.
    virtual int GetModifyMode() = 0;
    // 1 at once, 2 after a power cycle, 3 at standstill.
    virtual int GetEffectMode() = 0;
    // 0 decimal, 1 hexadecimal, 2 per unit, 3 raw, 4 hidden.
    virtual int GetDisplayFormat() = 0;
    // The meaning of the value, or null.
    virtual IValueInfo* GetValueInfo() = 0;
    // Key into the module's per-unit table; 0 when none.
    virtual int GetPerUnitBaseId() = 0;
    // Lowest access level that sees the parameter.
    virtual int GetAccessLevel() = 0;
    // Changes that level.
    virtual void SetAccessLevel(int level) = 0;
    // Nonzero: held back at level 0 on some product lines.
    virtual BOOL IsHiddenForUser() = 0;
    // Zero for a parameter that takes no part in lists and transfers.
    virtual BOOL IsTransferable() = 0;
    // Nonzero: a fixed parameter, not listed in the live list.
    virtual BOOL IsFixed() = 0;
    // Nonzero: counts for the list of modified parameters.
    virtual BOOL IsChangeTracked() = 0;
    // `text` = the axis text of the parameter.
    virtual void GetGroupText(CString& text) = 0;
    // `text` = the description text; lines separated by "\n".
    virtual void GetInfoText(CString& text) = 0;
    // The catalog the attribute belongs to, or null.
    virtual IVarCatalog* GetOwnerCatalog() = 0;
    // A copy. Owned by the caller, who deletes it (after any variable that uses it).
    virtual IVarAttr* Clone() = 0;
};
