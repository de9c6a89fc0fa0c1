// The limits of a value and the commit of an edited value cell: what a typed text becomes,
// and whether it is written to the drive, staged, or refused.
#include "values/ValueText.h"
#include "values/ValueTextDetail.h"

#include "module/ParmiraApp.h"
#include "module/host/IHostDeviceHelper.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostVarUtil.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"

#include <afx/afxwin.h>

#include <cctype>
#include <cmath>
#include <string>

namespace VarText {

using namespace detail;

namespace {

CString Joined(const std::vector<CString>& texts) {
    CString joined;
    for (const CString& t : texts) {
        if (!joined.IsEmpty())
            joined += "\n";
        joined += t;
    }
    return joined;
}

// The live value of a linked limit in the target's own unit; 0 when it can't be read.
double LinkedLimitValue(IHostVarUtil* util, IHostDeviceHelper* helper, IVarStore* vars,
                        const CString& moduleKey, IVarObjEx* var, IVarAttr* attr, BOOL maximum) {
    IVarObjEx* target = FindLinkedTarget(vars, var, LinkedLimitCode(attr, maximum));
    IVarAttr* targetAttr = target != nullptr ? target->GetAttr() : nullptr;
    if (targetAttr == nullptr || helper == nullptr)
        return 0;
    const int type = targetAttr->GetDataType();
    const int decimals = targetAttr->GetDecimals();
    Variant read;
    if (!helper->ReadVarDirect(moduleKey, target->GetInstanceAddress(), type, read, kReadTimeout_ms,
                               kReadTries))
        return 0;
    if (type == VT_BSTR || decimals < 0 || read.IsEmptyOrNull())
        return 0;
    const double d = OwnFigure(util, read, decimals);
    return std::isfinite(d) ? d : 0;
}

CString OverLimitText(const CString& value, const CString& minimum, const CString& maximum) {
    CString text;
    text.Format(kOverLimitFormat, value.GetString(), minimum.GetString(), maximum.GetString());
    return text;
}

// A limit in the error text: in the parameter's unit, with its decimals when it has any.
CString LimitFigureText(IHostVarUtil* util, int type, int decimals, double limit) {
    Variant v = Variant::OfType(IsRealType(type) || decimals > 0 ? VARTYPE(VT_R8) : VARTYPE(type));
    if (!util->DoubleToVariant(limit, v))
        v = Variant::R8(limit);
    CString text;
    util->VariantToText(text, v);
    return text;
}

// A hexadecimal cell text that HexTextToDecimal reads whole: an optional prefix, then one
// to eight digits, blanks between them allowed, nothing else. A longer or broken text is
// not written: cutting it would put a different number into the drive.
bool IsWholeHexText(const CString& text) {
    std::string s = text.str();
    size_t i = 0;
    while (i < s.size() && s[i] == ' ')
        ++i;
    if (s.size() >= i + 2 && s[i] == '0' && (s[i + 1] == 'x' || s[i + 1] == 'X'))
        i += 2;
    int digits = 0;
    for (; i < s.size(); ++i) {
        const char c = s[i];
        if (c == ' ')
            continue;
        if (!std::isxdigit(static_cast<unsigned char>(c)))
            return false;
        ++digits;
    }
    return digits >= 1 && digits <= 8;
}

// The raw figure of a typed figure, `shown` in the cell's scale. False when the scale
// can't be undone (a base mode without a base value).
//
// The commit rule of per-unit parameters: the figure is typed in the scale the row shows
// (the unit column says "%" in percent mode, the base's unit in a base mode), and the
// value stored is the parameter's own raw figure. So the shown scale is undone here:
//   raw figure mode:  raw = shown * 10^decimals (as a decimal parameter)
//   percent:          raw = shown / 100 / fraction    (fraction 2^-28 or 2^-12; 1 for reals)
//   a base mode:      raw = shown / (fraction * base) (reals: shown / 100)
bool RawFromShown(IVarObjEx* item, IVarAttr* attr, double shown, double& raw) {
    const int type = attr->GetDataType();
    const int decimals = attr->GetDecimals();
    if (attr->GetDisplayFormat() != FORMAT_PER_UNIT || PerUnitMode(item) == PER_UNIT_RAW) {
        raw = IsRealType(type) ? shown : shown * Pow10(decimals);
    } else if (PerUnitMode(item) == PER_UNIT_PERCENT) {
        raw = shown / 100 / PerUnitFactor(type);
    } else if (PerUnitMode(item) != PER_UNIT_FIRST_BASE) {
        return false;
    } else if (IsRealType(type)) {
        raw = shown / 100;
    } else {
        const double base = PerUnitBase(item);
        if (base == 0 || !std::isfinite(base))
            return false;
        raw = shown / (PerUnitFactor(type) * base);
    }
    // Integer parameters take whole raw figures: the figure typed is rounded to the
    // parameter's resolution, halves away from zero.
    if (!IsRealType(type))
        raw = std::round(raw);
    return std::isfinite(raw);
}

void ShowWriteFailure(const std::vector<CString>& errors) {
    CString caption;
    if (IHostUiService* ui = theApp.GetUiService())
        ui->GetString(caption, theApp.m_hResource, IDS_WRITE_FAILED_CAPTION, 0);
    const CString text = errors.empty() ? Translate(kDownloadFailedText) : Joined(errors);
    ::MessageBox(nullptr, text.GetString(), caption.GetString(), MB_OK | MB_ICONWARNING);
}

} // namespace

// ---- limits

BOOL ApplyLimits(int decimals, int type, double maximum, double minimum, const Variant& source,
                 Variant& out, std::vector<CString>& errors) {
    out = source;
    IHostVarUtil* util = theApp.GetVarUtil();
    if (util == nullptr)
        return FALSE;
    const double d = OwnFigure(util, source, decimals);
    // NaN compares false both ways: it is never inside.
    if (d >= minimum && d <= maximum) {
        if (decimals < 0)
            return TRUE;
        if (IsRealType(type))
            return util->DoubleToVariant(d, out) ? TRUE : FALSE;
        return util->DoubleToVariant(Pow10(decimals) * d, out) ? TRUE : FALSE;
    }
    CString value;
    util->VariantToText(value, source);
    errors.push_back(OverLimitText(value, LimitFigureText(util, type, decimals, minimum),
                                   LimitFigureText(util, type, decimals, maximum)));
    return FALSE;
}

BOOL CheckEditedValue(const CString& moduleKey, UINT address, int type, const Variant& value,
                      Variant& out, std::vector<CString>& errors) {
    IHostVarUtil* util = theApp.GetVarUtil();
    IHostDeviceModule* module = theApp.FindModule(moduleKey);
    IVarStore* vars = module != nullptr ? module->GetVarList() : nullptr;
    IVarObjEx* var = vars != nullptr ? vars->FindByAddress(address) : nullptr;
    IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
    if (util == nullptr || attr == nullptr)
        return FALSE;
    const int decimals = attr->GetDecimals();
    IHostDeviceHelper* helper = theApp.GetDeviceHelper();
    const double minimum =
        attr->IsMinLinked()
            ? LinkedLimitValue(util, helper, vars, moduleKey, var, attr, FALSE)
            : util->VariantToDouble(attr->GetMinValue(), attr->GetDataType(), decimals);
    const double maximum =
        attr->IsMaxLinked()
            ? LinkedLimitValue(util, helper, vars, moduleKey, var, attr, TRUE)
            : util->VariantToDouble(attr->GetMaxValue(), attr->GetDataType(), decimals);
    const double v = OwnFigure(util, value, decimals);
    if (!(v >= minimum && v <= maximum)) {
        CString text;
        util->FormatVariant(text, value, decimals, 0);
        errors.push_back(OverLimitText(text, LimitFigureText(util, type, decimals, minimum),
                                       LimitFigureText(util, type, decimals, maximum)));
        return FALSE;
    }
    Variant limited;
    const BOOL result = ApplyLimits(decimals, type, maximum, minimum, value, limited, errors);
    if (result) {
        out = limited;
        if (util->IsRealVariant(limited)) {
            out = Variant::OfType(VARTYPE(attr->GetDataType()));
            util->DoubleToVariant(util->VariantAsDouble(limited), out);
        }
    }
    return result;
}

// ---- the commit of an edited value cell

CommitResult CommitCellText(IVarObjEx* item, const CString& text, int page, int listStyle) {
    IVarAttr* attr = item != nullptr ? item->GetAttr() : nullptr;
    IHostVarUtil* util = theApp.GetVarUtil();
    if (attr == nullptr || util == nullptr)
        return COMMIT_IGNORED;
    CString typed = text;
    typed.Trim();
    if (typed.IsEmpty() || typed == kNoValueText || typed == kNoUnitText)
        return COMMIT_IGNORED;

    // Every editor of a hexadecimal cell hands its figure in hexadecimal (typed, from the
    // drop-down, the bit view or the connector dialog), so both lists read it so, whatever
    // the value's meaning. With decimals the cell and its editors are decimal.
    const int type = attr->GetDataType();
    const int decimals = attr->GetDecimals();
    const bool hex = attr->GetDisplayFormat() == FORMAT_HEX && decimals == 0;
    if (hex) {
        if (!IsWholeHexText(typed))
            return COMMIT_IGNORED;
        typed = HexTextToDecimal(typed);
    }

    Variant parsed;
    if (!util->ParseVariant(parsed, typed, VT_R8) || !std::isfinite(parsed.dblVal))
        return COMMIT_IGNORED;
    double raw = 0;
    if (!RawFromShown(item, attr, parsed.dblVal, raw))
        return COMMIT_REFUSED;
    // A hexadecimal cell shows a signed parameter's bits (-1 of 16 bits reads 0xFFFF), so
    // the same digits typed back mean the same negative figure.
    double lo = 0, hi = 0;
    const bool ranged = TypeRange(type, lo, hi);
    if (hex && ranged && lo < 0 && raw > hi && raw <= double(TypeMask(type)))
        raw -= double(TypeMask(type)) + 1;
    // The figure in the parameter's own unit, rounded to its resolution.
    const Variant own = Variant::R8(IsRealType(type) ? raw : raw / Pow10(decimals));
    const Variant current = item->GetValue();

    if (page == 0 && !current.IsEmptyOrNull() &&
        util->VariantEquals(Variant::R8(util->VariantAsDouble(current)), Variant::R8(raw)))
        return COMMIT_UNCHANGED;

    CString moduleKey = ModuleKey(item->GetOwnerModule());
    if (listStyle == 0) {
        IHostDeviceHelper* helper = theApp.GetDeviceHelper();
        if (helper == nullptr)
            return COMMIT_IGNORED;
        // The drive takes the raw figure and judges it against its own range and state; its
        // refusal comes back as the reason shown.
        Variant echo;
        std::vector<CString> errors;
        if (helper->WriteVarDirect(moduleKey, item->GetInstanceAddress(), type, Variant::R8(raw),
                                   echo, errors, 1, kReadTimeout_ms, kReadTries))
            return COMMIT_WRITTEN;
        ShowWriteFailure(errors);
        return COMMIT_WRITE_FAILED;
    }

    // Staging: what the limits refuse is dropped without a word; a connector value is an
    // address and has no limits of its own.
    Variant checked;
    std::vector<CString> errors;
    if (!CheckEditedValue(moduleKey, item->GetInstanceAddress(), type, own, checked, errors) &&
        !IsConnectorVar(attr))
        return COMMIT_REFUSED;
    if (ranged && (raw < lo || raw > hi))
        return COMMIT_REFUSED;
    Variant staged = Variant::OfType(VARTYPE(type));
    if (!util->DoubleToVariant(raw, staged))
        staged = Variant::R8(raw);
    item->SetSetValue(staged);
    item->SetChecked(current.IsEmptyOrNull() || !util->VariantEquals(current, staged));
    return COMMIT_STAGED;
}

} // namespace VarText
