// The value texts the list pages paint and the commit of a typed value cell. Free
// functions of their arguments; a missing service or attribute gives an empty text.
#pragma once

#include "module/host/HostFwd.h"
#include "module/host/Variant.h"

#include <afx/CString.h>

namespace pagetext {

// Display format 4 hides a value wherever it would stand.
inline const char* const kHiddenText = "******";

CString RawValueText(IVarAttr* attr, const Variant& value);
CString LimitValueText(IVarAttr* attr, const Variant& value);
// The current value as the host formats it, the raw text when the host has none.
CString ItemValueText(IVarObjEx* item);
// The current value with its meaning: an enumeration's name in brackets, or the code and
// name of the parameter a connector points to.
CString CurrentValueText(IVarObjEx* item);
CString SetValueText(IVarObjEx* item);
CString FactoryValueText(IVarObjEx* item);
CString MinValueText(IVarObjEx* item);
CString MaxValueText(IVarObjEx* item);
CString DisplayFormatText(IVarObjEx* item);
CString UnitText(IVarObjEx* item);
CString ModifyModeText(IVarAttr* attr);
CString EffectModeText(IVarAttr* attr);
double PerUnitBase(IVarObjEx* item);

CString HexTextToDecimal(const CString& text);
CString BinaryTextToDecimal(const CString& text);

BOOL IsConnectorName(const CString& text);
BOOL HasConnectorName(const CString& text);
BOOL IsConnectorVar(IVarAttr* attr);

// A text in the user's language.
CString Translate(const CString& text);
// String `id` of the module's table, in the user's language.
CString LoadString(UINT id);

} // namespace pagetext
