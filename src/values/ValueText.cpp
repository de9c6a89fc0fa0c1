#include "values/ValueText.h"
#include "values/ValueTextDetail.h"

#include "module/ParmiraApp.h"
#include "module/host/IHostDeviceHelper.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostVarUtil.h"
#include "module/host/IPerUnitBase.h"
#include "module/host/IPerUnitEntry.h"
#include "module/host/IPerUnitTable.h"
#include "module/host/IValueInfo.h"
#include "module/host/IValueInfoEntry.h"
#include "module/host/IValueInfoList.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"

#include <cmath>
#include <cstdint>

namespace VarText {

using namespace detail;

namespace {

// Fixed-point fractions behind the percent and base figures: 32-bit integer parameters
// have 28 binary places, the other integer parameters 12.
constexpr double kFraction28 = 3.725290298461914e-09; // 2^-28
constexpr double kFraction12 = 0.000244140625;        // 2^-12

// "%.2f" without a minus sign in front of a figure that rounds to zero.
CString Fixed2(double d) {
    CString text;
    if (!std::isfinite(d))
        return text;
    text.Format("%.2f", d);
    if (text == "-0.00")
        text = "0.00";
    return text;
}

CString AttrCode(IVarAttr* attr) {
    CString code;
    attr->GetCode(code);
    return code;
}

// Decimal text with the parameter's places, in the parameter's own unit.
CString DecimalText(IHostVarUtil* util, IVarAttr* attr, const Variant& value) {
    CString text;
    const int decimals = attr->GetDecimals();
    if (decimals > 0 && IsIntegerVarType(value.vt))
        util->FormatVariant(text, Variant::R8(OwnFigure(util, value, decimals)), decimals, 0);
    else
        util->FormatVariant(text, value, decimals, 0);
    return text;
}

// "0x" and at least four hexadecimal digits of the integer part, in the type's width.
CString HexText(IHostVarUtil* util, IVarAttr* attr, const Variant& value) {
    CString text;
    if (value.IsEmptyOrNull())
        return text;
    if (value.vt == VT_BSTR)
        return value.bstrVal;
    const double d = util->VariantToDouble(value, attr->GetDataType(), 0);
    // Outside what 64 bits hold no figure of a drive parameter can lie.
    if (!std::isfinite(d) || d < -9.2e18 || d > 1.8e19)
        return text;
    const int64_t whole = d < 0 ? int64_t(std::trunc(d)) : int64_t(uint64_t(std::trunc(d)));
    text.Format("0x%.4llX", (unsigned long long)(uint64_t(whole) & TypeMask(attr->GetDataType())));
    return text;
}

// `raw` in the scale of the per-unit mode. `own` is the figure in the parameter's unit,
// which the raw-figure mode shows.
CString ScaledPerUnitText(IVarObjEx* item, int type, double raw, double own) {
    const int mode = PerUnitMode(item);
    if (mode == PER_UNIT_RAW)
        return Fixed2(own);
    if (mode == PER_UNIT_PERCENT)
        return Fixed2(raw * PerUnitFactor(type) * 100) + "%";
    // Only the first base has a scale rule; the further entries name a base and show no
    // figure.
    if (mode != PER_UNIT_FIRST_BASE)
        return CString();
    // The base mode: fixed-point fraction times the base. Float and double parameters
    // hold the fraction itself and are shown as a percentage of the base.
    if (IsRealType(type))
        return Fixed2(raw * 100);
    // A base that can't be read counts as 0, so the row reads "0.00" in every column.
    return Fixed2(raw * PerUnitFactor(type) * PerUnitBase(item));
}

CString LimitText(IVarObjEx* item, int which) {
    IVarAttr* attr = item != nullptr ? item->GetAttr() : nullptr;
    IHostVarUtil* util = theApp.GetVarUtil();
    if (attr == nullptr || util == nullptr)
        return CString();
    const Variant raw = which == 0   ? attr->GetFactoryValue()
                        : which == 1 ? attr->GetMinValue()
                                     : attr->GetMaxValue();
    if (attr->GetDisplayFormat() != FORMAT_PER_UNIT)
        return LimitValueText(attr, raw);
    if (raw.IsEmptyOrNull() || raw.vt == VT_BSTR)
        return CString();
    // The factory value follows the same scale as the limits, so that a row reads alike
    // across its columns.
    return ScaledPerUnitText(item, attr->GetDataType(), util->VariantToDouble(raw, VT_R8, 0),
                             OwnFigure(util, raw, attr->GetDecimals()));
}

IPerUnitEntry* PerUnitEntryOf(IVarObjEx* item, IVarAttr* attr, int mode) {
    IHostDeviceModule* module = item->GetOwnerModule();
    IPerUnitTable* table = module != nullptr ? module->GetPerUnitTable() : nullptr;
    IPerUnitBase* bases = table != nullptr ? table->FindByCode(AttrCode(attr)) : nullptr;
    return bases != nullptr ? bases->GetEntry(mode) : nullptr;
}

} // namespace

namespace detail {

bool IsRealType(int type) {
    return type == VT_R4 || type == VT_R8;
}

// The figures an integer type can hold; a Boolean reads -1, 0 or 1.
bool TypeRange(int type, double& lo, double& hi) {
    if (type == VT_BOOL) {
        lo = -1, hi = 1;
        return true;
    }
    return IntegerVarTypeRange(type, lo, hi);
}

// Bits shown by the hexadecimal form of a type: a negative 16-bit figure reads 0xFFFF.
uint64_t TypeMask(int type) {
    switch (type) {
    case VT_I1:
    case VT_UI1:
        return 0xFF;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
        return 0xFFFF;
    default:
        return 0xFFFFFFFF;
    }
}

double PerUnitFactor(int type) {
    if (type == VT_I4 || type == VT_UI4)
        return kFraction28;
    if (IsRealType(type))
        return 1.0;
    return kFraction12;
}

double Pow10(int decimals) {
    return decimals > 0 ? std::pow(10.0, decimals) : 1.0;
}

int PerUnitMode(IVarObjEx* item) {
    const int mode = item->GetPerUnitMode();
    return mode < PER_UNIT_PERCENT ? PER_UNIT_RAW : mode;
}

CString ModuleKey(IHostDeviceModule* module) {
    CString key;
    if (module != nullptr)
        module->GetModuleKey(key);
    return key;
}

// The figure of `value` in the parameter's own unit: an integer raw figure divided by
// 10^decimals, anything else as it stands.
double OwnFigure(IHostVarUtil* util, const Variant& value, int decimals) {
    return util->VariantToDouble(value, IsIntegerVarType(value.vt) ? int(value.vt) : int(VT_R8),
                                 decimals);
}

// The parameter a linked limit of `var` names: on a multi-axis drive the one of the same
// axis (instance key "A2.H00-12"), else the first of that code.
IVarObjEx* FindLinkedTarget(IVarStore* vars, IVarObjEx* var, const CString& code) {
    CString key;
    var->GetInstanceGuid(key);
    const int dot = key.ReverseFind('.');
    if (dot > 0) {
        if (IVarObjEx* sameAxis = vars->FindByCode(key.Left(dot + 1) + code))
            return sameAxis;
    }
    return vars->FindByCode(code);
}

} // namespace detail

// ---- texts of values and limits

CString RawValueText(IVarAttr* attr, const Variant& value) {
    IHostVarUtil* util = theApp.GetVarUtil();
    if (attr == nullptr || util == nullptr)
        return CString();
    switch (attr->GetDisplayFormat()) {
    case FORMAT_DECIMAL:
    case FORMAT_PER_UNIT:
    case FORMAT_HIDDEN:
        return DecimalText(util, attr, value);
    case FORMAT_HEX:
        // A hexadecimal parameter with decimals has no hexadecimal form.
        return attr->GetDecimals() == 0 ? HexText(util, attr, value)
                                        : DecimalText(util, attr, value);
    default:
        return CString();
    }
}

CString EditorValueText(IVarAttr* attr, double raw) {
    IHostVarUtil* util = theApp.GetVarUtil();
    if (attr == nullptr || util == nullptr || !std::isfinite(raw))
        return CString();
    Variant value = Variant::OfType(VARTYPE(attr->GetDataType()));
    if (!IsIntegerVarType(value.vt) || !util->DoubleToVariant(raw, value))
        value = Variant::R8(raw);
    return RawValueText(attr, value);
}

CString ItemValueText(IVarObjEx* item) {
    IVarAttr* attr = item != nullptr ? item->GetAttr() : nullptr;
    if (attr == nullptr)
        return CString();
    return RawValueText(attr, item->GetValue());
}

CString LimitValueText(IVarAttr* attr, const Variant& value) {
    IHostVarUtil* util = theApp.GetVarUtil();
    if (attr == nullptr || util == nullptr)
        return CString();
    if (attr->GetDisplayFormat() == FORMAT_HEX && attr->GetDecimals() == 0)
        return HexText(util, attr, value);
    return DecimalText(util, attr, value);
}

CString FactoryValueText(IVarObjEx* item) {
    return LimitText(item, 0);
}

CString MinValueText(IVarObjEx* item) {
    return LimitText(item, 1);
}

CString MaxValueText(IVarObjEx* item) {
    return LimitText(item, 2);
}

CString PerUnitValueText(IVarObjEx* item, const Variant& value) {
    IVarAttr* attr = item != nullptr ? item->GetAttr() : nullptr;
    IHostVarUtil* util = theApp.GetVarUtil();
    if (attr == nullptr || util == nullptr || attr->GetDisplayFormat() != FORMAT_PER_UNIT ||
        value.IsEmptyOrNull() || value.vt == VT_BSTR)
        return CString();
    return ScaledPerUnitText(item, attr->GetDataType(), util->VariantToDouble(value, VT_R8, 0),
                             OwnFigure(util, value, attr->GetDecimals()));
}

double PerUnitBase(IVarObjEx* item) {
    IVarAttr* attr = item != nullptr ? item->GetAttr() : nullptr;
    if (attr == nullptr)
        return 0;
    const int mode = item->GetPerUnitMode();
    if (mode < PER_UNIT_FIRST_BASE)
        return 0;
    IPerUnitEntry* entry = PerUnitEntryOf(item, attr, mode);
    if (entry == nullptr)
        return 0;
    if (entry->HasValue())
        return entry->GetValue();
    IHostDeviceHelper* helper = theApp.GetDeviceHelper();
    IHostVarUtil* util = theApp.GetVarUtil();
    if (helper == nullptr || util == nullptr)
        return 0;
    Variant read;
    if (!helper->ReadVarDirect(ModuleKey(item->GetOwnerModule()), entry->GetAddress(),
                               attr->GetDataType(), read, kReadTimeout_ms, kReadTries))
        return 0;
    const double base = util->VariantToDouble(read, VT_R8, attr->GetDecimals());
    if (!std::isfinite(base))
        return 0;
    entry->SetValue(base);
    return base;
}

CString DisplayFormatText(IVarObjEx* item) {
    IVarAttr* attr = item != nullptr ? item->GetAttr() : nullptr;
    if (attr == nullptr)
        return CString();
    switch (attr->GetDisplayFormat()) {
    case FORMAT_DECIMAL:
        return "十进制";
    case FORMAT_HEX:
        return "十六进制";
    case FORMAT_PER_UNIT: {
        const int mode = PerUnitMode(item);
        if (mode == PER_UNIT_RAW)
            return "原始值";
        if (mode == PER_UNIT_PERCENT)
            return "百分比";
        IPerUnitEntry* entry = PerUnitEntryOf(item, attr, mode);
        if (entry == nullptr)
            return CString();
        CString name;
        entry->GetName(name);
        return Translate(name);
    }
    default:
        return "原始值";
    }
}

CString UnitText(IVarObjEx* item) {
    IVarAttr* attr = item != nullptr ? item->GetAttr() : nullptr;
    if (attr == nullptr)
        return CString();
    if (attr->GetDisplayFormat() == FORMAT_PER_UNIT && PerUnitMode(item) == PER_UNIT_PERCENT)
        return "%";
    CString unit;
    attr->GetUnit(unit);
    return unit;
}

CString ModifyModeText(IVarAttr* attr) {
    if (attr == nullptr)
        return CString();
    switch (attr->GetModifyMode()) {
    case MODIFY_ANY_TIME:
        return "任意修改";
    case MODIFY_AT_STANDSTILL:
        return "停机修改";
    case MODIFY_NEVER:
        return "不可修改";
    default:
        return CString();
    }
}

CString EffectModeText(IVarAttr* attr) {
    if (attr == nullptr)
        return CString();
    switch (attr->GetEffectMode()) {
    case EFFECT_AT_ONCE:
        return "立即生效";
    case EFFECT_AFTER_POWER_CYCLE:
        return "再次通电";
    case EFFECT_AT_STANDSTILL:
        return "停机生效";
    default:
        return CString();
    }
}

// ---- linked limits

BOOL IsLimitLinked(IVarAttr* attr, BOOL maximum) {
    if (attr == nullptr)
        return FALSE;
    return maximum ? attr->IsMaxLinked() : attr->IsMinLinked();
}

CString LinkedLimitCode(IVarAttr* attr, BOOL maximum) {
    IHostVarUtil* util = theApp.GetVarUtil();
    if (util == nullptr || !IsLimitLinked(attr, maximum))
        return CString();
    CString code;
    util->FormatVariant(code, maximum ? attr->GetMaxValue() : attr->GetMinValue(), 0, 0);
    return code;
}

CString LinkedLimitText(IVarObjEx* item, BOOL maximum, IVarObjEx** target) {
    if (target != nullptr)
        *target = nullptr;
    IVarAttr* attr = item != nullptr ? item->GetAttr() : nullptr;
    const CString code = LinkedLimitCode(attr, maximum);
    if (code.IsEmpty())
        return CString();
    IHostDeviceModule* module = item->GetOwnerModule();
    IVarStore* vars = module != nullptr ? module->GetVarList() : nullptr;
    IVarObjEx* linked = vars != nullptr ? FindLinkedTarget(vars, item, code) : nullptr;
    if (target != nullptr)
        *target = linked;
    CString text;
    text.Format("%s[%s]", linked != nullptr ? ItemValueText(linked).GetString() : "",
                code.GetString());
    return text;
}

CString Translate(const CString& text) {
    IHostUiService* ui = theApp.GetUiService();
    if (ui == nullptr || text.IsEmpty())
        return text;
    CString translated;
    ui->TranslateText(translated, text);
    return translated.IsEmpty() ? text : translated;
}

} // namespace VarText
