#include "values/GetVarInfo.h"

#include "module/ParmiraApp.h"
#include "module/host/IConnectorTable.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostVarUtil.h"
#include "module/host/IValueInfo.h"
#include "module/host/IValueInfoEntry.h"
#include "module/host/IValueInfoList.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarCatalog.h"
#include "module/host/IVarObjEx.h"
#include "values/ValueText.h"

#include <cmath>

namespace {

constexpr double kFraction28 = 3.725290298461914e-09; // 2^-28
constexpr double kFraction12 = 0.000244140625;        // 2^-12

// `value` as a figure of the parameter's own type, so that entries and values compare by
// the raw figure whatever tag each arrived with. The value itself when the type holds no
// number.
Variant InOwnType(IHostVarUtil* util, int type, const Variant& value) {
    if (value.vt == VT_BSTR || value.IsEmptyOrNull())
        return value;
    Variant w = Variant::OfType(VARTYPE(type));
    if (!util->DoubleToVariant(util->VariantAsDouble(value), w))
        return value;
    return w;
}

} // namespace

CString CGetVarInfo::CurrentValueText(IVarObjEx* item) {
    if (item == nullptr || item->GetAttr() == nullptr)
        return CString();
    CString text;
    item->GetValueText(text);
    return TextWithMeaning(item, text, item->GetValue());
}

CString CGetVarInfo::SetValueText(IVarObjEx* item) {
    if (item == nullptr || item->GetAttr() == nullptr)
        return CString();
    CString text;
    item->GetSetValueText(text);
    return TextWithMeaning(item, text, item->GetSetValue());
}

CString CGetVarInfo::TextWithMeaning(IVarObjEx* item, const CString& hostText,
                                     const Variant& value) {
    IVarAttr* attr = item->GetAttr();
    if (VarText::IsConnectorVar(attr)) {
        CString target = ConnectorTarget(attr, value);
        if (!target.IsEmpty())
            return target;
    }
    if (hostText.IsEmpty())
        return CString();
    // A per-unit parameter reads in the scale its row shows, like its limits and unit.
    CString text = hostText;
    if (attr->GetDisplayFormat() == FORMAT_PER_UNIT && item->GetPerUnitMode() >= PER_UNIT_PERCENT) {
        text = VarText::PerUnitValueText(item, value);
        if (text.IsEmpty())
            return text;
    }
    const CString meaning = Meaning(attr, value);
    if (meaning.IsEmpty())
        return text;
    return text + "[" + meaning + "]";
}

CString CGetVarInfo::ConnectorTarget(IVarAttr* attr, const Variant& value) {
    IHostVarUtil* util = theApp.GetVarUtil();
    IVarCatalog* catalog = attr->GetOwnerCatalog();
    IConnectorTable* connectors = catalog != nullptr ? catalog->GetConnectorTable() : nullptr;
    if (util == nullptr || connectors == nullptr || value.IsEmptyOrNull())
        return CString();
    CString valueText;
    util->VariantToText(valueText, value);
    IVarAttr* target = connectors->FindByValueText(valueText);
    if (target == nullptr)
        return CString();
    CString code, name;
    target->GetCode(code);
    target->GetName(name);
    return code + "[" + VarText::Translate(name) + "]";
}

CString CGetVarInfo::Meaning(IVarAttr* attr, const Variant& value) {
    IHostVarUtil* util = theApp.GetVarUtil();
    // The meaning goes through the translator; without it there is none to show.
    if (attr == nullptr || util == nullptr || theApp.GetUiService() == nullptr ||
        value.IsEmptyOrNull())
        return CString();
    IValueInfo* info = attr->GetValueInfo();
    // Bits, ranges and digits are shown by the write dialog; kinds 5 and 6 mean nothing.
    if (info == nullptr || info->GetKind() != VALUE_INFO_ENUM)
        return CString();
    const CString text =
        EnumText(attr, info->GetEnumList(), InOwnType(util, attr->GetDataType(), value));
    return text.IsEmpty() ? text : VarText::Translate(text);
}

CString CGetVarInfo::EnumText(IVarAttr* attr, IValueInfoList* list, const Variant& value) {
    IHostVarUtil* util = theApp.GetVarUtil();
    if (attr == nullptr || list == nullptr || util == nullptr)
        return CString();
    const int type = attr->GetDataType();
    const int count = list->GetCount();
    for (int i = 0; i < count; ++i) {
        IValueInfoEntry* entry = list->GetAt(i);
        if (entry == nullptr)
            continue;
        if (util->VariantEquals(InOwnType(util, type, entry->GetValue()), value)) {
            CString text;
            entry->GetText(text);
            return text;
        }
    }
    return CString();
}

CString CGetVarInfo::ValueTextWithMeaning(IVarObjEx* item, const Variant& value) {
    IVarAttr* attr = item != nullptr ? item->GetAttr() : nullptr;
    IHostVarUtil* util = theApp.GetVarUtil();
    if (attr == nullptr || util == nullptr)
        return CString();
    if (value.IsEmptyOrNull())
        return VarText::kNoValueText;
    const int type = attr->GetDataType();
    const int decimals = attr->GetDecimals();
    CString text;
    switch (attr->GetDisplayFormat()) {
    case FORMAT_DECIMAL:
    case FORMAT_HEX: {
        // Integer raw figures in the parameter's unit; a figure with places is a double.
        const bool integer = value.vt != VT_R4 && value.vt != VT_R8 && value.vt != VT_BSTR;
        const double d =
            util->VariantToDouble(value, integer ? int(value.vt) : int(VT_R8), decimals);
        Variant w = Variant::OfType(decimals > 0 ? VARTYPE(VT_R8) : VARTYPE(type));
        if (!util->DoubleToVariant(d, w))
            w = Variant::R8(d);
        util->FormatVariant(text, w, decimals, attr->GetDisplayFormat() == FORMAT_HEX);
        break;
    }
    case FORMAT_PER_UNIT: {
        // Always a percentage here, whatever scale the list shows the row in.
        double d = util->VariantAsDouble(value);
        if (type == VT_I4 || type == VT_UI4)
            d *= kFraction28;
        else if (type != VT_R4 && type != VT_R8)
            d *= kFraction12;
        util->FormatVariant(text, Variant::R8(d * 100), decimals, 0);
        text += "%";
        break;
    }
    default:
        return CString();
    }
    const CString meaning = Meaning(attr, value);
    return meaning.IsEmpty() ? text : text + "[" + meaning + "]";
}
