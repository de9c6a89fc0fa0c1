// A variable as the host holds it: current value (kept fresh by the cyclic refresh), set
// value, check mark and per-unit scale. Implemented by the host; host-owned unless it is
// a clone. Getters may be called from workers; the host guards the values.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"
#include "module/host/Variant.h"

class IVarObjEx : public IBaseInterface {
public:
    // The fixed attributes, or null. Not owned by the caller.
    virtual IVarAttr* GetAttr() = 0;
    // Replaces the attribute pointer. Not owned by the variable: who made `attr` deletes
    // it, after the variable.
    virtual void SetAttr(IVarAttr* attr) = 0;
    // The module the variable belongs to, or null.
    virtual IHostDeviceModule* GetOwnerModule() = 0;
    // The communication address of this instance (per axis).
    virtual UINT GetInstanceAddress() = 0;
    // `code` = the function code of this instance ("H00-10").
    virtual void GetInstanceCode(CString& code) = 0;
    // `key` = the text key of the variable; a member name in a custom group.
    virtual void GetInstanceGuid(CString& key) = 0;
    // The current value: the last value read, or the value a file gave.
    virtual Variant GetValue() = 0;
    // Replaces the current value.
    virtual void SetValue(const Variant& value) = 0;
    // The set value of the staging list; empty when none.
    virtual Variant GetSetValue() = 0;
    // Replaces the set value.
    virtual void SetSetValue(const Variant& value) = 0;
    // The value of the last read from the drive; empty until the first read.
    virtual Variant GetLastReadValue() = 0;
    // The value the object carries itself; empty when it takes its value from elsewhere.
    virtual Variant GetRawValue() = 0;
    // `text` = the current value as the host formats it; empty without a value.
    virtual void GetValueText(CString& text) = 0;
    // `text` = the set value as the host formats it; empty without a set value.
    virtual void GetSetValueText(CString& text) = 0;
    // The row's check mark.
    virtual BOOL IsChecked() = 0;
    // Sets or clears the check mark.
    virtual void SetChecked(BOOL checked) = 0;
    // Per-unit mode of a display format 2 parameter: -1/0 raw, 1 percent, 2+ a base.
    virtual int GetPerUnitMode() = 0;
    // Sets the per-unit mode.
    virtual void SetPerUnitMode(int mode) = 0;
    // A copy with the same values, sharing the attribute. Owned by the caller, who
    // deletes it or hands it to IParamFileTable::AddVar.
    virtual IVarObjEx* Clone() = 0;
};
