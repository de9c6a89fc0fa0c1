// One per-unit scale: a base parameter whose value is read once and then held.
// Implemented by the host; owned by its IPerUnitBase. User-interface thread only.
#pragma once

#include "module/host/BaseInterface.h"

class IPerUnitEntry : public IBaseInterface {
public:
    // `name` = the base's name, untranslated.
    virtual void GetName(CString& name) = 0;
    // Communication address of the base parameter.
    virtual UINT GetAddress() = 0;
    // Nonzero once a base value is held.
    virtual BOOL HasValue() = 0;
    // The held base value; 0 when none.
    virtual double GetValue() = 0;
    // Holds `value` as the base value.
    virtual void SetValue(double value) = 0;
};
