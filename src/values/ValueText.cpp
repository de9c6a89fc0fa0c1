#include "values/ValueText.h"

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

#include <afx/afxwin.h>

#include <cmath>
#include <cstdint>
#include <cstdio>

namespace VarText {

namespace {

// Fixed-point fractions behind the percent and base figures: 32-bit integer parameters
// have 28 binary places, the other integer parameters 12.
constexpr double kFraction28 = 3.725290298461914e-09; // 2^-28
constexpr double kFraction12 = 0.000244140625;        // 2^-12

// Reads of a per-unit base or a linked limit: short, a few tries, as the live list does.
constexpr int kReadTimeout_ms = 200;
constexpr int kReadTries = 3;

bool IsRealType(int type) {
    return type == VT_R4 || type == VT_R8;
}

bool IsIntegerTag(int tag) {
    switch (tag) {
    case VT_I1:
    case VT_I2:
    case VT_I4:
    case VT_UI1:
    case VT_UI2:
    case VT_UI4:
        return true;
    default:
        return false;
    }
}

// The figures an integer type can hold; false for a type without a fixed range.
bool TypeRange(int type, double& lo, double& hi) {
    switch (type) {
    case VT_I1:
        lo = INT8_MIN, hi = INT8_MAX;
        return true;
    case VT_UI1:
        lo = 0, hi = UINT8_MAX;
        return true;
    case VT_I2:
        lo = INT16_MIN, hi = INT16_MAX;
        return true;
    case VT_UI2:
        lo = 0, hi = UINT16_MAX;
        return true;
    case VT_BOOL:
        lo = -1, hi = 1;
        return true;
    case VT_I4:
        lo = INT32_MIN, hi = INT32_MAX;
        return true;
    case VT_UI4:
        lo = 0, hi = UINT32_MAX;
        return true;
    default:
        return false;
    }
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

int PerUnitMode(IVarObjEx* item) {
    const int mode = item->GetPerUnitMode();
    return mode < PER_UNIT_PERCENT ? PER_UNIT_RAW : mode;
}

CString AttrCode(IVarAttr* attr) {
    CString code;
    attr->GetCode(code);
    return code;
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
    return util->VariantToDouble(value, IsIntegerTag(value.vt) ? int(value.vt) : int(VT_R8),
                                 decimals);
}

// Decimal text with the parameter's places, in the parameter's own unit.
CString DecimalText(IHostVarUtil* util, IVarAttr* attr, const Variant& value) {
    CString text;
    const int decimals = attr->GetDecimals();
    if (decimals > 0 && IsIntegerTag(value.vt))
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

CString Joined(const std::vector<CString>& texts) {
    CString joined;
    for (const CString& t : texts) {
        if (!joined.IsEmpty())
            joined += "\n";
        joined += t;
    }
    return joined;
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

// ---- types and parsers

int DataTypeFromName(const CString& text) {
    struct Name {
        const char* text;
        int type;
    };
    static const Name kWhole1[] = {{"有符号16位", VT_I2},   {"无符号16位", VT_UI2},
                                   {"无符号32位", VT_UI4},  {"有符号32位", VT_I4},
                                   {"单精度浮点数", VT_R4}, {"双精度浮点数", VT_R8}};
    static const Name kWhole2[] = {{"无符号8位字符", VT_UI1},
                                   {"有符号8位字符", VT_I1},
                                   {"无符号字符串", VT_BSTR},
                                   {"无符号日期类型", VT_DATE}};
    for (const Name& n : kWhole1)
        if (text.CompareNoCase(n.text) == 0)
            return n.type;
    // A spreadsheet may write more behind the boolean type's name.
    const CString boolName("布尔型");
    if (text.Left(boolName.GetLength()).CompareNoCase(boolName) == 0)
        return VT_BOOL;
    for (const Name& n : kWhole2)
        if (text.CompareNoCase(n.text) == 0)
            return n.type;
    return 0;
}

CString HexTextToDecimal(const CString& text) {
    std::string s = text.str();
    if (s.size() >= 2 && s[0] == '0' && (s[1] == 'x' || s[1] == 'X'))
        s.erase(0, 2);
    std::string digits;
    for (char c : s) {
        if (c == ' ')
            continue;
        if (!std::isxdigit(static_cast<unsigned char>(c)))
            break;
        digits += c;
    }
    if (digits.size() > 8)
        digits.resize(8);
    uint32_t sum = 0;
    int shift = 0;
    for (auto it = digits.rbegin(); it != digits.rend(); ++it, shift += 4) {
        const int code = static_cast<unsigned char>(*it);
        const int value = code - 48 <= 9 ? code - 48 : code - 55 <= 15 ? code - 55 : code - 87;
        sum += uint32_t(value) << shift;
    }
    CString result;
    result.Format("%u", sum);
    return result;
}

CString BinaryTextToDecimal(const CString& text) {
    if (text.GetLength() < 3)
        return CString();
    std::string s = text.str();
    if (s[0] == '0' && (s[1] == 'b' || s[1] == 'B'))
        s.erase(0, 2);
    std::string digits;
    for (char c : s) {
        if (c == ' ')
            continue;
        if (c != '0' && c != '1')
            break;
        digits += c;
    }
    if (digits.size() > 16)
        digits.resize(16);
    int sum = 0;
    int weight = 1;
    for (auto it = digits.rbegin(); it != digits.rend(); ++it, weight *= 2)
        sum += (*it - '0') * weight;
    CString result;
    result.Format("%d", sum);
    return result;
}

UINT ParseAddressText(const CString& text) {
    CString upper = text;
    upper.MakeUpper();
    if (upper.Left(2) != "0X") {
        // Leading decimal digits; an address has no sign.
        const std::string& s = upper.str();
        uint64_t value = 0;
        for (char c : s) {
            if (c < '0' || c > '9')
                break;
            value = value * 10 + uint64_t(c - '0');
            if (value > UINT32_MAX)
                return 0;
        }
        return UINT(value);
    }
    CString rest = text;
    rest.Remove(' ');
    rest.Replace("0x", "");
    rest.Replace("0X", "");
    if (rest.IsEmpty())
        return 0;
    // The text must end in a hexadecimal digit.
    const std::string& s = rest.str();
    if (s.empty() || !std::isxdigit(static_cast<unsigned char>(s.back())))
        return 0;
    // Only the tail has to be hexadecimal; the value is read from the front, up to the
    // first character that is no digit, as an unsigned conversion would.
    uint64_t value = 0;
    for (char c : s) {
        if (!std::isxdigit(static_cast<unsigned char>(c)))
            break;
        value = value * 16 + uint64_t(std::isdigit(static_cast<unsigned char>(c))
                                          ? c - '0'
                                          : std::toupper(static_cast<unsigned char>(c)) - 'A' + 10);
        if (value > UINT32_MAX)
            return 0;
    }
    return UINT(value);
}

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
    if (!IsIntegerTag(value.vt) || !util->DoubleToVariant(raw, value))
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

// ---- connectors

namespace {
const char* const kConnectorNames[] = {"B连接器", "K连接器", "F连接器", "KF连接器", "BKF连接器"};
} // namespace

BOOL IsConnectorVar(IVarAttr* attr) {
    IValueInfo* info = attr != nullptr ? attr->GetValueInfo() : nullptr;
    if (info == nullptr || info->GetKind() != VALUE_INFO_ENUM)
        return FALSE;
    IValueInfoList* list = info->GetEnumList();
    if (list == nullptr || list->GetCount() <= 0)
        return FALSE;
    IValueInfoEntry* last = list->GetAt(list->GetCount() - 1);
    if (last == nullptr)
        return FALSE;
    CString text;
    last->GetText(text);
    for (const char* name : kConnectorNames)
        if (text.CompareNoCase(name) == 0)
            return TRUE;
    return FALSE;
}

BOOL IsConnectorName(const CString& text) {
    static const char* const kNames[] = {"B连接器", "K连接器", "F连接器", "KF连接器", "连接器"};
    for (const char* name : kNames)
        if (text.CompareNoCase(name) == 0)
            return TRUE;
    return FALSE;
}

BOOL HasConnectorName(const CString& text) {
    CString upper = text;
    upper.MakeUpper();
    for (const char* name : kConnectorNames) {
        CString bracketed = CString("[") + name + "]";
        bracketed.MakeUpper();
        if (upper.Find(bracketed) >= 0)
            return TRUE;
    }
    return FALSE;
}

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

CString Translate(const CString& text) {
    IHostUiService* ui = theApp.GetUiService();
    if (ui == nullptr || text.IsEmpty())
        return text;
    CString translated;
    ui->TranslateText(translated, text);
    return translated.IsEmpty() ? text : translated;
}

} // namespace VarText
