// CGetVarInfo: a value and what it means, side by side. The figure of an enumeration
// parameter is followed by the name of its entry in brackets ("2[Speed]"); a connector
// parameter shows the code and name of the parameter it points to.
#pragma once

#include "module/host/HostFwd.h"
#include "module/host/Variant.h"

#include <afx/CString.h>

class CGetVarInfo {
public:
    virtual ~CGetVarInfo() = default;

    // The cell text of the current value.
    CString CurrentValueText(IVarObjEx* item);
    // The cell text of the set value; empty without one.
    CString SetValueText(IVarObjEx* item);
    // Any value of the parameter with its meaning; "---" for no value.
    CString ValueTextWithMeaning(IVarObjEx* item, const Variant& value);
    // The text of the entry of `list` that stands for `value`, or empty.
    CString EnumText(IVarAttr* attr, IValueInfoList* list, const Variant& value);
    // The meaning of `value`, translated; empty for a plain number.
    CString Meaning(IVarAttr* attr, const Variant& value);

private:
    CString TextWithMeaning(IVarObjEx* item, const CString& text, const Variant& value);
    CString ConnectorTarget(IVarAttr* attr, const Variant& value);
};
