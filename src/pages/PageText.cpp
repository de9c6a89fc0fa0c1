#include "pages/PageText.h"

#include "module/ParmiraApp.h"
#include "module/host/IConnectorTable.h"
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
#include "module/host/IVarCatalog.h"
#include "module/host/IVarObjEx.h"

#include <afx/afxres.h>

#include <cmath>
#include <cstdint>

namespace pagetext {

namespace {

constexpr double kFraction28 = 3.725290298461914e-09; // 2^-28
constexpr double kFraction12 = 0.000244140625;        // 2^-12

BOOL IsEmptyValue(const Variant& v) {
    return v.vt == VT_EMPTY || v.vt == VT_NULL;
}

CString Fixed2(double d) {
    CString text;
    text.Format("%.2f", d);
    return text;
}

CString PerUnitLimitText(IVarObjEx* item, IVarAttr* attr, const Variant& raw, BOOL factory) {
    IHostVarUtil* util = theApp.GetVarUtil();
    if (util == nullptr)
        return CString();
    const double d = util->VariantToDouble(raw, 5, attr->GetDecimals());
    const int type = attr->GetDataType();
    const int mode = item->GetPerUnitMode();
    if (mode == -1 || mode == 0)
        return Fixed2(d);
    if (mode == 1) {
        double scaled = d;
        if (type == 3 || type == 19)
            scaled = d * kFraction28;
        else if (type != 4 && type != 5)
            scaled = d * kFraction12;
        return Fixed2(scaled * 100) + "%";
    }
    if (mode == 2) {
        // The factory value of these types has no rule in base mode: the cell stays empty.
        if (factory && (type == 3 || type == 19 || type == 4 || type == 5))
            return CString();
        if (type == 4 || type == 5)
            return Fixed2(d * 100);
        const double b = PerUnitBase(item);
        return Fixed2(d * ((type == 3 || type == 19) ? kFraction28 : kFraction12) * b);
    }
    return CString();
}

CString LimitText(IVarObjEx* item, int which) {
    IVarAttr* attr = item != nullptr ? item->GetAttr() : nullptr;
    if (attr == nullptr)
        return CString();
    const Variant raw = which == 0   ? attr->GetFactoryValue()
                        : which == 1 ? attr->GetMinValue()
                                     : attr->GetMaxValue();
    if (attr->GetDisplayFormat() != 2)
        return LimitValueText(attr, raw);
    return PerUnitLimitText(item, attr, raw, which == 0);
}

// The meaning of value `v` of an enumeration parameter; empty for the other kinds.
CString Meaning(IVarAttr* attr, const Variant& v) {
    IHostVarUtil* util = theApp.GetVarUtil();
    IValueInfo* info = attr->GetValueInfo();
    if (util == nullptr || info == nullptr || info->GetKind() != 1)
        return CString();
    const int type = attr->GetDataType();
    const int decimals = attr->GetDecimals();
    const double d = util->VariantToDouble(v, decimals > 0 ? 5 : type, decimals);
    Variant w;
    w.vt = VARTYPE(type);
    util->DoubleToVariant(d, w);
    IValueInfoList* list = info->GetEnumList();
    const int count = list != nullptr ? list->GetCount() : 0;
    for (int i = 0; i < count; ++i) {
        IValueInfoEntry* entry = list->GetAt(i);
        if (entry == nullptr)
            continue;
        Variant e;
        e.vt = VARTYPE(type);
        util->DoubleToVariant(util->VariantToDouble(entry->GetValue(), type, decimals), e);
        if (util->VariantEquals(e, w)) {
            CString text;
            entry->GetText(text);
            return Translate(text);
        }
    }
    return CString();
}

CString ValueWithMeaning(IVarObjEx* item, const CString& valueText, const Variant& value) {
    IVarAttr* attr = item->GetAttr();
    if (IsConnectorVar(attr)) {
        IVarCatalog* catalog = attr->GetOwnerCatalog();
        IConnectorTable* table = catalog != nullptr ? catalog->GetConnectorTable() : nullptr;
        IVarAttr* target = table != nullptr ? table->FindByValueText(valueText) : nullptr;
        if (target != nullptr) {
            CString code;
            CString name;
            target->GetCode(code);
            target->GetName(name);
            return code + "[" + Translate(name) + "]";
        }
    }
    if (valueText.IsEmpty())
        return CString();
    const CString meaning = Meaning(attr, value);
    return meaning.IsEmpty() ? valueText : valueText + "[" + meaning + "]";
}

const char* const kConnectorNames[] = {"B连接器", "K连接器", "F连接器", "KF连接器", "BKF连接器"};

} // namespace

CString Translate(const CString& text) {
    IHostUiService* ui = theApp.GetUiService();
    if (ui == nullptr || text.IsEmpty())
        return text;
    CString translated;
    ui->TranslateText(translated, text);
    return translated;
}

CString LoadString(UINT id) {
    CString text;
    if (IHostUiService* ui = theApp.GetUiService())
        if (ui->GetString(text, theApp.m_hResource, id, 0))
            return text;
    AfxLoadStringFrom(theApp.m_hResource, id, text);
    return text;
}

CString RawValueText(IVarAttr* attr, const Variant& value) {
    IHostVarUtil* util = theApp.GetVarUtil();
    if (attr == nullptr || util == nullptr)
        return CString();
    CString text;
    switch (attr->GetDisplayFormat()) {
    case 0:
    case 2:
    case 4:
        util->FormatVariant(text, value, attr->GetDecimals(), 0);
        break;
    case 1:
        if (attr->GetDecimals() == 0) {
            if (IsEmptyValue(value))
                break;
            const double d = util->VariantToDouble(value, attr->GetDataType(), 0);
            text.Format("0x%04X", unsigned(int64_t(d)));
        } else {
            util->FormatVariant(text, value, attr->GetDecimals(), 0);
        }
        break;
    default:
        break;
    }
    return text;
}

CString LimitValueText(IVarAttr* attr, const Variant& value) {
    IHostVarUtil* util = theApp.GetVarUtil();
    if (attr == nullptr || util == nullptr)
        return CString();
    CString text;
    if (attr->GetDisplayFormat() == 1 && attr->GetDecimals() == 0) {
        if (IsEmptyValue(value))
            return text;
        const double d = util->VariantToDouble(value, attr->GetDataType(), 0);
        text.Format("0x%.4X", unsigned(int64_t(d)));
        return text;
    }
    util->FormatVariant(text, value, attr->GetDecimals(), 0);
    return text;
}

CString ItemValueText(IVarObjEx* item) {
    IVarAttr* attr = item != nullptr ? item->GetAttr() : nullptr;
    if (attr == nullptr)
        return CString();
    return RawValueText(attr, item->GetValue());
}

CString CurrentValueText(IVarObjEx* item) {
    if (item == nullptr || item->GetAttr() == nullptr)
        return CString();
    CString text;
    item->GetValueText(text);
    return ValueWithMeaning(item, text, item->GetValue());
}

CString SetValueText(IVarObjEx* item) {
    if (item == nullptr || item->GetAttr() == nullptr)
        return CString();
    CString text;
    item->GetSetValueText(text);
    return ValueWithMeaning(item, text, item->GetSetValue());
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

double PerUnitBase(IVarObjEx* item) {
    IVarAttr* attr = item != nullptr ? item->GetAttr() : nullptr;
    if (attr == nullptr || item->GetPerUnitMode() <= 1)
        return 0;
    IHostDeviceModule* module = item->GetOwnerModule();
    IPerUnitTable* table = module != nullptr ? module->GetPerUnitTable() : nullptr;
    CString code;
    attr->GetCode(code);
    IPerUnitBase* base = table != nullptr ? table->FindByCode(code) : nullptr;
    IPerUnitEntry* entry = base != nullptr ? base->GetEntry(item->GetPerUnitMode()) : nullptr;
    if (entry == nullptr)
        return 0;
    if (entry->HasValue())
        return entry->GetValue();
    IHostDeviceHelper* helper = theApp.GetDeviceHelper();
    IHostVarUtil* util = theApp.GetVarUtil();
    if (helper == nullptr || util == nullptr)
        return 0;
    CString key;
    module->GetModuleKey(key);
    Variant read;
    if (!helper->ReadVarDirect(key, entry->GetAddress(), attr->GetDataType(), read, 200, 3))
        return 0;
    const double value = util->VariantToDouble(read, 5, attr->GetDecimals());
    entry->SetValue(value);
    return value;
}

CString DisplayFormatText(IVarObjEx* item) {
    IVarAttr* attr = item != nullptr ? item->GetAttr() : nullptr;
    if (attr == nullptr)
        return CString();
    switch (attr->GetDisplayFormat()) {
    case 0:
        return Translate("十进制");
    case 1:
        return Translate("十六进制");
    case 2: {
        const int mode = item->GetPerUnitMode();
        if (mode == -1 || mode == 0)
            return LoadString(176);
        if (mode == 1)
            return LoadString(195);
        IHostDeviceModule* module = item->GetOwnerModule();
        IPerUnitTable* table = module != nullptr ? module->GetPerUnitTable() : nullptr;
        CString code;
        attr->GetCode(code);
        IPerUnitBase* base = table != nullptr ? table->FindByCode(code) : nullptr;
        IPerUnitEntry* entry = base != nullptr ? base->GetEntry(mode) : nullptr;
        if (entry == nullptr)
            return CString();
        CString name;
        entry->GetName(name);
        return Translate(name);
    }
    default:
        return LoadString(176);
    }
}

CString UnitText(IVarObjEx* item) {
    IVarAttr* attr = item != nullptr ? item->GetAttr() : nullptr;
    if (attr == nullptr)
        return CString();
    if (attr->GetDisplayFormat() == 2 && item->GetPerUnitMode() == 1)
        return "%";
    CString unit;
    attr->GetUnit(unit);
    return unit;
}

CString ModifyModeText(IVarAttr* attr) {
    if (attr == nullptr)
        return CString();
    switch (attr->GetModifyMode()) {
    case 0:
        return Translate("任意修改");
    case 1:
        return Translate("停机修改");
    case 2:
        return Translate("不可修改");
    default:
        return CString();
    }
}

CString EffectModeText(IVarAttr* attr) {
    if (attr == nullptr)
        return CString();
    switch (attr->GetEffectMode()) {
    case 1:
        return Translate("立即生效");
    case 2:
        return Translate("再次通电");
    case 3:
        return Translate("停机生效");
    default:
        return CString();
    }
}

CString HexTextToDecimal(const CString& text) {
    CString body = text;
    if (body.GetLength() >= 2 && body.GetAt(0) == L'0' &&
        (body.GetAt(1) == L'x' || body.GetAt(1) == L'X'))
        body = body.Mid(2);
    CString digits;
    for (int i = 0; i < body.GetLength(); ++i) {
        const wchar_t c = body.GetAt(i);
        if (c == L' ')
            continue;
        const bool hex =
            (c >= L'0' && c <= L'9') || (c >= L'a' && c <= L'f') || (c >= L'A' && c <= L'F');
        if (!hex)
            break;
        digits += c;
    }
    digits = digits.Left(8);
    uint32_t sum = 0;
    int shift = 0;
    for (int i = digits.GetLength() - 1; i >= 0; --i, shift += 4) {
        const int code = int(digits.GetAt(i));
        const int value = code - 48 <= 9 ? code - 48 : (code - 55 <= 15 ? code - 55 : code - 87);
        sum += uint32_t(value) << shift;
    }
    CString result;
    result.Format("%u", sum);
    return result;
}

CString BinaryTextToDecimal(const CString& text) {
    if (text.GetLength() < 3)
        return CString();
    CString body = text;
    if (body.GetAt(0) == L'0' && (body.GetAt(1) == L'b' || body.GetAt(1) == L'B'))
        body = body.Mid(2);
    CString digits;
    for (int i = 0; i < body.GetLength(); ++i) {
        const wchar_t c = body.GetAt(i);
        if (c == L' ')
            continue;
        if (c != L'0' && c != L'1')
            break;
        digits += c;
    }
    digits = digits.Left(16);
    int sum = 0;
    int weight = 1;
    for (int i = digits.GetLength() - 1; i >= 0; --i, weight *= 2)
        sum += (digits.GetAt(i) == L'1' ? 1 : 0) * weight;
    CString result;
    result.Format("%d", sum);
    return result;
}

BOOL IsConnectorName(const CString& text) {
    for (const char* name : {"B连接器", "K连接器", "F连接器", "KF连接器", "连接器"})
        if (text.CompareNoCase(name) == 0)
            return TRUE;
    return FALSE;
}

BOOL HasConnectorName(const CString& text) {
    for (const char* name : kConnectorNames)
        if (text.Find(CString("[") + name + "]") >= 0)
            return TRUE;
    return FALSE;
}

BOOL IsConnectorVar(IVarAttr* attr) {
    IValueInfo* info = attr != nullptr ? attr->GetValueInfo() : nullptr;
    if (info == nullptr || info->GetKind() != 1)
        return FALSE;
    IValueInfoList* list = info->GetEnumList();
    const int count = list != nullptr ? list->GetCount() : 0;
    IValueInfoEntry* last = count > 0 ? list->GetAt(count - 1) : nullptr;
    if (last == nullptr)
        return FALSE;
    CString name;
    last->GetText(name);
    for (const char* connector : kConnectorNames)
        if (name.CompareNoCase(connector) == 0)
            return TRUE;
    return FALSE;
}

} // namespace pagetext
