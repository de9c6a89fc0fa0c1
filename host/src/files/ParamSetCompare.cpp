#include "zorhost/files/ParamSetCompare.h"

#include "module/host/IHostVarUtil.h"
#include "module/host/IParamFile.h"
#include "module/host/IParamFileTable.h"
#include "module/host/IValueInfo.h"
#include "module/host/IValueInfoEntry.h"
#include "module/host/IValueInfoList.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "module/host/VarAttrCodes.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace zorhost {

namespace {

// Two values agree when their numbers lie at most this far apart.
constexpr double kTolerance = 0.000001;

bool IsEmpty(const Variant& v) {
    return v.vt == VT_EMPTY || v.vt == VT_NULL;
}

Variant SourceValue(IVarObjEx* var, CompareSource source) {
    if (source != CompareSource::Factory)
        return var->GetValue();
    IVarAttr* attr = var->GetAttr();
    return attr != nullptr ? attr->GetFactoryValue() : Variant();
}

// The number part of a value by display format; a per-unit figure reads as a percentage.
CString NumberText(IHostVarUtil& util, IVarAttr& attr, const Variant& value) {
    CString text;
    const int type = attr.GetDataType();
    const int decimals = attr.GetDecimals();
    switch (attr.GetDisplayFormat()) {
    case FORMAT_DECIMAL:
    case FORMAT_HEX: {
        const double d = util.VariantToDouble(value, type, decimals);
        Variant shown = Variant::OfType(VARTYPE(decimals > 0 ? VT_R8 : type));
        util.DoubleToVariant(d, shown);
        util.FormatVariant(text, shown, decimals, attr.GetDisplayFormat() == FORMAT_HEX ? 1 : 0);
        break;
    }
    case FORMAT_PER_UNIT: {
        // A fixed-point fraction: 28 bits for the 32-bit types, 12 for the others.
        const double d = util.VariantToDouble(value, type, 1);
        Variant shown = Variant::OfType(VT_R8);
        shown.dblVal = std::ldexp(d, (type == VT_UI4 || type == VT_I4) ? -28 : -12) * 100.0;
        util.FormatVariant(text, shown, decimals, 0);
        text += "%";
        break;
    }
    default:
        break;
    }
    return text;
}

// The number, with the meaning of an enumerated value in square brackets.
CString ValueText(IHostVarUtil& util, IVarAttr* attr, const Variant& value) {
    if (attr == nullptr)
        return CString();
    CString text = NumberText(util, *attr, value);
    IValueInfo* info = attr->GetValueInfo();
    IValueInfoList* list = !text.IsEmpty() && info != nullptr && info->GetKind() == VALUE_INFO_ENUM
                               ? info->GetEnumList()
                               : nullptr;
    if (list == nullptr)
        return text;
    const int type = attr->GetDataType();
    const int decimals = attr->GetDecimals();
    Variant given = Variant::OfType(VARTYPE(type));
    util.DoubleToVariant(util.VariantToDouble(value, decimals > 0 ? VT_R8 : type, decimals), given);
    for (int i = 0; i < list->GetCount(); ++i) {
        IValueInfoEntry* entry = list->GetAt(i);
        if (entry == nullptr)
            continue;
        Variant option = Variant::OfType(VARTYPE(type));
        util.DoubleToVariant(util.VariantToDouble(entry->GetValue(), type, decimals), option);
        if (util.VariantEquals(given, option)) {
            CString meaning;
            entry->GetText(meaning);
            return text + "[" + meaning + "]";
        }
    }
    return text;
}

CString AttrColumns(IHostVarUtil& util, IVarAttr* attr, const Variant& value) {
    CString code;
    CString name;
    if (attr != nullptr) {
        attr->GetCode(code);
        attr->GetName(name);
    }
    return code + "," + name + "," + ValueText(util, attr, value);
}

} // namespace

CompareResult CompareParamSets(IHostVarUtil& util, const std::vector<IVarObjEx*>& set1,
                               CompareSource source1, const std::vector<IVarObjEx*>& set2,
                               CompareSource source2) {
    CompareResult result;
    // The first variable of an address wins, as a walk from the start of set 2 finds it.
    std::unordered_map<UINT, IVarObjEx*> byAddress;
    byAddress.reserve(set2.size());
    for (IVarObjEx* var : set2)
        if (var != nullptr)
            byAddress.emplace(var->GetInstanceAddress(), var);
    for (IVarObjEx* var1 : set1) {
        if (var1 == nullptr)
            continue;
        const auto it = byAddress.find(var1->GetInstanceAddress());
        if (it == byAddress.end())
            continue;
        IVarObjEx* var2 = it->second;
        IVarAttr* attr1 = var1->GetAttr();
        IVarAttr* attr2 = var2->GetAttr();
        if (attr1 == nullptr || attr2 == nullptr || attr1->GetDisplayFormat() == FORMAT_HIDDEN ||
            !attr1->IsTransferable() || !attr2->IsTransferable())
            continue;
        ComparedPair pair{attr1, attr2, SourceValue(var1, source1), SourceValue(var2, source2)};
        if (IsEmpty(pair.value1) || IsEmpty(pair.value2))
            continue;
        // Numbers decide, not texts: a hexadecimal and a decimal display of one value agree.
        const double d =
            std::fabs(util.VariantAsDouble(pair.value1) - util.VariantAsDouble(pair.value2));
        (d <= kTolerance ? result.agree : result.differ).push_back(std::move(pair));
    }
    return result;
}

std::string CompareCsv(IHostVarUtil& util, const std::vector<ComparedPair>& rows,
                       const SYSTEMTIME& time) {
    std::string out;
    std::string bytes;
    auto put = [&](const CString& line) {
        bytes.clear();
        util.ToNarrowText(line, bytes);
        out += bytes;
    };
    CString line;
    line.Format("Time,%4d-%02d-%02d,%02d:%02d:%02d\n", int(time.wYear), int(time.wMonth),
                int(time.wDay), int(time.wHour), int(time.wMinute), int(time.wSecond));
    put(line);
    put("行号,参数1,参数名称1,比较值1,参数2,参数名称2,比较值2\n");
    for (size_t i = 0; i < rows.size(); ++i) {
        const ComparedPair& r = rows[i];
        line.Format("%d,", int(i + 1));
        line += AttrColumns(util, r.attr1, r.value1) + "," + AttrColumns(util, r.attr2, r.value2) +
                "\n";
        put(line);
    }
    return out;
}

DetachedFileVars::DetachedFileVars(IParamFile* file) {
    IParamFileTable* table = file != nullptr ? file->GetVarList() : nullptr;
    if (table == nullptr)
        return;
    m_vars.reserve(size_t(std::max(0, table->GetCount())));
    for (int i = 0; i < table->GetCount(); ++i) {
        IVarObjEx* var = table->GetAt(i);
        IVarObjEx* copy = var != nullptr ? var->Clone() : nullptr;
        if (copy == nullptr)
            continue;
        // A clone shares the file's attribute; it gets its own, since the file goes first.
        IVarAttr* attr = var->GetAttr();
        copy->SetAttr(attr != nullptr ? attr->Clone() : nullptr);
        m_vars.push_back(copy);
    }
}

DetachedFileVars::~DetachedFileVars() {
    for (IVarObjEx* var : m_vars) {
        IVarAttr* attr = var->GetAttr();
        var->SetAttr(nullptr);
        delete attr;
        delete var;
    }
}

} // namespace zorhost
