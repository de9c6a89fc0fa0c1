// Helpers that the value texts and the commit of an edited value share; for src/values only.
#pragma once

#include "module/host/HostFwd.h"
#include "module/host/VarTypes.h"

#include <afx/CString.h>

#include <cstdint>

namespace VarText::detail {

// Reads of a per-unit base or a linked limit: short, a few tries, as the live list does.
constexpr int kReadTimeout_ms = 200;
constexpr int kReadTries = 3;

bool IsRealType(int type);
// The figures an integer type can hold; false for a type without a fixed range.
bool TypeRange(int type, double& lo, double& hi);
// Bits shown by the hexadecimal form of a type: a negative 16-bit figure reads 0xFFFF.
uint64_t TypeMask(int type);
// The fixed-point fraction of one step of a per-unit figure of `type`; 1 for reals.
double PerUnitFactor(int type);
double Pow10(int decimals);
// The per-unit mode of a parameter; below the percent mode reads as the raw figure.
int PerUnitMode(IVarObjEx* item);
CString ModuleKey(IHostDeviceModule* module);
// The figure of `value` in the parameter's own unit: an integer raw figure divided by
// 10^decimals, anything else as it stands.
double OwnFigure(IHostVarUtil* util, const Variant& value, int decimals);
// The parameter a linked limit of `var` names: on a multi-axis drive the one of the same
// axis (instance key "A2.H00-12"), else the first of that code.
IVarObjEx* FindLinkedTarget(IVarStore* vars, IVarObjEx* var, const CString& code);

} // namespace VarText::detail
