#include "sets/VarCompare.h"
#include "module/host/VarAttrCodes.h"

#include "module/host/IHostVarUtil.h"
#include "module/host/IParamFile.h"
#include "module/host/IParamFileTable.h"
#include "module/host/IValueInfo.h"
#include "module/host/IValueInfoEntry.h"
#include "module/host/IValueInfoList.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"

#include <cmath>
#include <unordered_map>

namespace {

// How many variables pass between two stop questions while set 2 is indexed.
constexpr size_t kIndexStopStride = 1024;

bool IsEmptyValue(const Variant& v) {
    return v.vt == VT_EMPTY || v.vt == VT_NULL;
}

} // namespace

Variant CVarCompare::SourceValue(IVarObjEx* var, int source) {
    if (var == nullptr)
        return Variant();
    if (source == VarSourceFactory) {
        IVarAttr* attr = var->GetAttr();
        return attr != nullptr ? attr->GetFactoryValue() : Variant();
    }
    return var->GetValue();
}

IVarObjEx* CVarCompare::FindLinear(const std::vector<IVarObjEx*>& set2, UINT address,
                                   bool& stopped) const {
    for (IVarObjEx* var : set2) {
        if (Stopped()) {
            stopped = true;
            return nullptr;
        }
        if (var != nullptr && var->GetInstanceAddress() == address)
            return var;
    }
    return nullptr;
}

BOOL CVarCompare::Run(const std::vector<IVarObjEx*>& set1, int source1,
                      const std::vector<IVarObjEx*>& set2, int source2, CVarCompareRstList& agree,
                      CVarCompareRstList& differ) {
    if (m_pUtil == nullptr)
        return TRUE;
    // The first variable of an address wins, exactly as a walk from the start finds it.
    std::unordered_map<UINT, IVarObjEx*> byAddress;
    if (m_mode == SearchIndexed) {
        byAddress.reserve(set2.size());
        for (size_t i = 0; i < set2.size(); ++i) {
            if (i % kIndexStopStride == 0 && Stopped())
                return FALSE;
            if (IVarObjEx* var = set2[i])
                byAddress.emplace(var->GetInstanceAddress(), var);
        }
    }
    for (IVarObjEx* var1 : set1) {
        if (Stopped())
            return FALSE;
        if (var1 == nullptr)
            continue;
        const UINT address = var1->GetInstanceAddress();
        IVarObjEx* var2 = nullptr;
        if (m_mode == SearchIndexed) {
            auto it = byAddress.find(address);
            var2 = it != byAddress.end() ? it->second : nullptr;
        } else {
            bool stopped = false;
            var2 = FindLinear(set2, address, stopped);
            if (stopped)
                return FALSE;
        }
        if (var2 != nullptr)
            ComparePair(var1, source1, var2, source2, agree, differ);
    }
    return TRUE;
}

void CVarCompare::ComparePair(IVarObjEx* var1, int source1, IVarObjEx* var2, int source2,
                              CVarCompareRstList& agree, CVarCompareRstList& differ) {
    // The attribute rules come before the values: they are cheaper, and a pair must pass
    // all of them anyway.
    IVarAttr* attr1 = var1->GetAttr();
    IVarAttr* attr2 = var2->GetAttr();
    // Values shown as "******" are never compared.
    if (attr1 != nullptr && attr1->GetDisplayFormat() == FORMAT_HIDDEN)
        return;
    if (attr1 == nullptr || attr2 == nullptr || !attr1->IsTransferable() ||
        !attr2->IsTransferable())
        return;
    if (m_bHideReadOnly &&
        (attr1->GetModifyMode() == MODIFY_NEVER || attr2->GetModifyMode() == MODIFY_NEVER))
        return;
    Variant value1 = SourceValue(var1, source1);
    Variant value2 = SourceValue(var2, source2);
    if (IsEmptyValue(value1) || IsEmptyValue(value2))
        return;

    // Numbers decide, not texts: a hexadecimal and a decimal display of one value agree.
    const double d = std::fabs(m_pUtil->VariantAsDouble(value1) - m_pUtil->VariantAsDouble(value2));
    auto* rst = new CVarCompareRst;
    rst->m_pAttr1 = attr1;
    rst->m_pAttr2 = attr2;
    rst->m_nAddress = var2->GetInstanceAddress();
    rst->m_value1 = std::move(value1);
    rst->m_value2 = std::move(value2);
    if (d <= kTolerance)
        agree.Add(rst, rst);
    else
        differ.Add(rst, rst);
}

CString CVarCompareRst::GetText(IHostVarUtil* util, int column) const {
    const bool first = column <= Value1;
    IVarAttr* attr = first ? m_pAttr1 : m_pAttr2;
    CString text;
    if (attr == nullptr)
        return text;
    switch (first ? column : column - (Group2 - Group1)) {
    case Group1:
        attr->GetGroupText(text);
        break;
    case Code1:
        attr->GetCode(text);
        break;
    case Name1:
        attr->GetName(text);
        break;
    case Value1:
        text = CVarCompare::CompareValueText(util, attr, first ? m_value1 : m_value2);
        break;
    default:
        break;
    }
    return text;
}

CString CVarCompare::CompareNumberText(IHostVarUtil* util, IVarAttr* attr, const Variant& value) {
    CString text;
    if (util == nullptr || attr == nullptr)
        return text;
    const int format = attr->GetDisplayFormat();
    const int type = attr->GetDataType();
    const int decimals = attr->GetDecimals();
    switch (format) {
    case FORMAT_DECIMAL:
    case FORMAT_HEX: {
        const double d = util->VariantToDouble(value, type, decimals);
        Variant shown = Variant::OfType(VARTYPE(decimals > 0 ? VT_R8 : type));
        util->DoubleToVariant(d, shown);
        util->FormatVariant(text, shown, decimals, format == FORMAT_HEX ? 1 : 0);
        break;
    }
    case FORMAT_PER_UNIT: {
        // A per-unit figure is a fixed-point fraction: 28 bits for the 32-bit types, 12
        // for the others. It reads as a percentage here, whatever the list shows.
        double d = util->VariantToDouble(value, type, 1);
        d = std::ldexp(d, (type == VT_UI4 || type == VT_I4) ? -28 : -12) * 100.0;
        Variant shown = Variant::OfType(VT_R8);
        shown.dblVal = d;
        util->FormatVariant(text, shown, decimals, 0);
        text += "%";
        break;
    }
    default:
        break;
    }
    return text;
}

CString CVarCompare::CompareValueText(IHostVarUtil* util, IVarAttr* attr, const Variant& value) {
    if (attr == nullptr || util == nullptr)
        return CString();
    CString text = CompareNumberText(util, attr, value);
    if (text.IsEmpty())
        return text;
    IValueInfo* info = attr->GetValueInfo();
    IValueInfoList* list =
        info != nullptr && info->GetKind() == VALUE_INFO_ENUM ? info->GetEnumList() : nullptr;
    if (list == nullptr)
        return text;
    const int type = attr->GetDataType();
    const int decimals = attr->GetDecimals();
    Variant given = Variant::OfType(VARTYPE(type));
    util->DoubleToVariant(util->VariantToDouble(value, decimals > 0 ? VT_R8 : type, decimals),
                          given);
    const int count = list->GetCount();
    for (int i = 0; i < count; ++i) {
        IValueInfoEntry* entry = list->GetAt(i);
        if (entry == nullptr)
            continue;
        Variant option = Variant::OfType(VARTYPE(type));
        util->DoubleToVariant(util->VariantToDouble(entry->GetValue(), type, decimals), option);
        if (util->VariantEquals(given, option)) {
            CString meaning;
            entry->GetText(meaning);
            return text + "[" + meaning + "]";
        }
    }
    return text;
}

std::string CVarCompare::CsvText(IHostVarUtil* util, const CVarCompareRstList& rows,
                                 const SYSTEMTIME& time) {
    std::string out;
    if (util == nullptr)
        return out;
    std::string bytes;
    auto put = [&](const CString& line) {
        bytes.clear();
        util->ToNarrowText(line, bytes);
        out += bytes;
    };
    CString line;
    line.Format("Time,%4d-%02d-%02d,%02d:%02d:%02d\n", int(time.wYear), int(time.wMonth),
                int(time.wDay), int(time.wHour), int(time.wMinute), int(time.wSecond));
    put(line);
    put("行号,参数1,参数名称1,比较值1,参数2,参数名称2,比较值2\n");
    const int count = rows.GetCount();
    for (int i = 0; i < count; ++i) {
        const CVarCompareRst* r = rows.GetAt(i);
        line.Format("%d", i + 1);
        for (int column : {CVarCompareRst::Code1, CVarCompareRst::Name1, CVarCompareRst::Value1,
                           CVarCompareRst::Code2, CVarCompareRst::Name2, CVarCompareRst::Value2}) {
            line += ',';
            line += r->GetText(util, column);
        }
        line += "\n";
        put(line);
    }
    return out;
}

void CVarCompare::CloneFileVars(IParamFile* file, std::vector<IVarObjEx*>& vars) {
    IParamFileTable* table = file != nullptr ? file->GetVarList() : nullptr;
    if (table == nullptr)
        return;
    const int count = table->GetCount();
    vars.reserve(vars.size() + size_t(count));
    for (int i = 0; i < count; ++i) {
        IVarObjEx* var = table->GetAt(i);
        IVarObjEx* copy = var != nullptr ? var->Clone() : nullptr;
        if (copy == nullptr)
            continue;
        // A clone shares the file's attribute; it gets its own, since the file goes first.
        IVarAttr* attr = var->GetAttr();
        copy->SetAttr(attr != nullptr ? attr->Clone() : nullptr);
        vars.push_back(copy);
    }
}

void CVarCompare::FreeFileVars(std::vector<IVarObjEx*>& vars) {
    for (IVarObjEx* var : vars) {
        if (var == nullptr)
            continue;
        IVarAttr* attr = var->GetAttr();
        var->SetAttr(nullptr);
        delete attr;
        delete var;
    }
    vars.clear();
}
