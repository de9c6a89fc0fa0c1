#include "zorhost/files/ParamFile.h"

#include "zorhost/files/BoundedRead.h"
#include "zorhost/files/MemoryStream.h"
#include "zorhost/files/ParamFileCodec.h"
#include "zorhost/model/VarStore.h"

#include "module/host/IHostAxis.h"
#include "module/host/IHostAxisList.h"
#include "module/host/IVarObjEx.h"

#include <afx/afxfile.h>

#include <QFile>

#include <algorithm>

namespace zorhost::files {

namespace {

// A deep copy: IGroupNode::Clone leaves the children out.
model::CGroupNode* CloneTree(IGroupNode* group) {
    auto* copy = static_cast<model::CGroupNode*>(group->Clone());
    for (int i = 0; i < group->GetChildCount(); ++i)
        if (IGroupNode* child = group->GetChildAt(i)) {
            model::CGroupNode* c = CloneTree(child);
            if (!copy->AddChild(c))
                delete c;
        }
    return copy;
}

void CopySet(IGroupSet* from, model::CGroupSet& to) {
    if (from == nullptr)
        return;
    for (int i = 0; i < from->GetMemberCount(); ++i) {
        CString key;
        if (from->GetMemberAt(i, key))
            to.AddMember(key);
    }
    for (int i = 0; i < from->GetCount(); ++i)
        if (IGroupNode* g = from->GetAt(i)) {
            model::CGroupNode* c = CloneTree(g);
            if (!to.AddGroup(c))
                delete c;
        }
    for (int i = 0; i < from->GetCategoryCount(); ++i) {
        IGroupCategory* category = from->GetCategoryAt(i);
        if (category == nullptr)
            continue;
        CString name, description;
        category->GetName(name);
        category->GetDescription(description);
        auto copy = std::make_unique<model::CGroupCategory>(name, description);
        for (int c = 0; c < category->GetChildCount(); ++c)
            if (IGroupNode* child = category->GetChildAt(c)) {
                CString childName;
                child->GetName(childName);
                copy->AddChildName(childName);
            }
        to.AddCategory(std::move(copy));
    }
}

std::string KeyOf(IVarObjEx& var) {
    CString key;
    var.GetInstanceGuid(key);
    return key.str();
}

} // namespace

// ---- AttrFields, CFileVarAttr

AttrFields AttrFields::Of(IVarAttr& a) {
    AttrFields f;
    a.GetCode(f.code);
    a.GetName(f.name);
    a.GetUnit(f.unit);
    a.GetGroupText(f.groupText);
    a.GetInfoText(f.infoText);
    f.address = a.GetAddress();
    f.dataType = a.GetDataType();
    f.decimals = a.GetDecimals();
    f.valueLength = a.GetValueLength();
    f.factoryValue = a.GetFactoryValue();
    f.minValue = a.GetMinValue();
    f.maxValue = a.GetMaxValue();
    f.minLinked = a.IsMinLinked() ? 1 : 0;
    f.maxLinked = a.IsMaxLinked() ? 1 : 0;
    f.modifyMode = a.GetModifyMode();
    f.effectMode = a.GetEffectMode();
    f.displayFormat = a.GetDisplayFormat();
    f.perUnitBaseId = a.GetPerUnitBaseId();
    f.accessLevel = a.GetAccessLevel();
    f.hiddenForUser = a.IsHiddenForUser() ? 1 : 0;
    f.transferable = a.IsTransferable() ? 1 : 0;
    f.fixed = a.IsFixed() ? 1 : 0;
    f.changeTracked = a.IsChangeTracked() ? 1 : 0;
    return f;
}

CFileVarAttr::CFileVarAttr(AttrFields fields, IVarAttr* context)
    : m_f(std::move(fields)), m_context(context) {}

CFileVarAttr::~CFileVarAttr() {
    delete m_context;
}

IValueInfo* CFileVarAttr::GetValueInfo() {
    return m_context ? m_context->GetValueInfo() : nullptr;
}

IVarCatalog* CFileVarAttr::GetOwnerCatalog() {
    return m_context ? m_context->GetOwnerCatalog() : nullptr;
}

IVarAttr* CFileVarAttr::Clone() {
    return new CFileVarAttr(m_f, m_context ? m_context->Clone() : nullptr);
}

// ---- CFileAxisList

BOOL CFileAxisList::IsValid() {
    return m_table.Fixed().AxisCount() > 0 ? 1 : 0;
}

int CFileAxisList::GetCount() {
    return m_table.Fixed().AxisCount();
}

IHostAxis* CFileAxisList::GetAt(int index) {
    model::CGroupSet& root = m_table.Fixed();
    return index >= 0 && index < root.AxisCount() ? root.Axis(index) : nullptr;
}

// ---- CParamFileTable

CParamFileTable::CParamFileTable()
    : m_fixed(std::make_unique<model::CGroupSet>()), m_custom(std::make_unique<model::CGroupSet>()),
      m_axisList(*this) {
    BindSets();
}

// Variables go before the attributes they point at.
CParamFileTable::~CParamFileTable() {
    m_vars.clear();
}

void CParamFileTable::BindSets() {
    auto drop = [this](const CString& key) { DropVar(key); };
    m_fixed->SetVarDropper(drop);
    m_custom->SetVarDropper(drop);
    for (int i = 0; i < m_fixed->AxisCount(); ++i)
        m_fixed->Axis(i)->Groups().SetVarDropper(drop);
}

void CParamFileTable::Swap(CParamFileTable& other) {
    std::swap(m_vars, other.m_vars);
    std::swap(m_attrs, other.m_attrs);
    std::swap(m_byKey, other.m_byKey);
    std::swap(m_byCode, other.m_byCode);
    std::swap(m_byAddress, other.m_byAddress);
    std::swap(m_fixed, other.m_fixed);
    std::swap(m_custom, other.m_custom);
    std::swap(m_label, other.m_label);
    std::swap(m_version, other.m_version);
    BindSets();
    other.BindSets();
}

IVarObjEx* CParamFileTable::GetAt(int index) {
    return index >= 0 && size_t(index) < m_vars.size() ? m_vars[size_t(index)].get() : nullptr;
}

IVarObjEx* CParamFileTable::FindByCode(const CString& key) {
    auto it = m_byKey.find(key.str());
    if (it != m_byKey.end())
        return m_vars[it->second].get();
    it = m_byCode.find(key.str());
    return it != m_byCode.end() ? m_vars[it->second].get() : nullptr;
}

IVarObjEx* CParamFileTable::FindByAddress(UINT address) {
    auto it = m_byAddress.find(address);
    return it != m_byAddress.end() ? m_vars[it->second].get() : nullptr;
}

IGroupSet* CParamFileTable::GetGroupRoot(int which) {
    switch (which) {
    case 0:
        return m_fixed.get();
    case 1:
        return m_custom.get();
    default:
        return nullptr;
    }
}

const BYTE* CParamFileTable::GetElecLabel() {
    return m_label.empty() ? nullptr : m_label.data();
}

void CParamFileTable::Index(size_t i, std::string key) {
    IVarObjEx& var = *m_vars[i];
    m_byKey.emplace(std::move(key), i);
    if (IVarAttr* attr = var.GetAttr()) {
        CString code;
        attr->GetCode(code);
        m_byCode.emplace(code.str(), i);
        m_byAddress.emplace(var.GetInstanceAddress(), i);
    }
}

void CParamFileTable::Reindex() {
    m_byKey.clear();
    m_byCode.clear();
    m_byAddress.clear();
    for (size_t i = 0; i < m_vars.size(); ++i)
        Index(i, KeyOf(*m_vars[i]));
}

BOOL CParamFileTable::Adopt(std::unique_ptr<IVarObjEx> var, std::unique_ptr<IVarAttr> attr) {
    if (!var)
        return 0;
    std::string key = KeyOf(*var);
    if (m_byKey.count(key) != 0)
        return 0;
    Take(std::move(key), std::move(var), std::move(attr));
    return 1;
}

// The key is asked for once: a large file adds many thousand variables.
void CParamFileTable::Take(std::string key, std::unique_ptr<IVarObjEx> var,
                           std::unique_ptr<IVarAttr> attr) {
    if (attr)
        m_attrs.push_back(std::move(attr));
    m_vars.push_back(std::move(var));
    Index(m_vars.size() - 1, std::move(key));
}

BOOL CParamFileTable::AddVar(IVarObjEx* var) {
    if (var == nullptr)
        return 0;
    std::string key = KeyOf(*var);
    if (m_byKey.count(key) != 0)
        return 0;
    std::unique_ptr<IVarAttr> attr;
    if (IVarAttr* source = var->GetAttr()) {
        attr.reset(source->Clone());
        var->SetAttr(attr.get());
    }
    Take(std::move(key), std::unique_ptr<IVarObjEx>(var), std::move(attr));
    return 1;
}

void CParamFileTable::DropVar(const CString& key) {
    auto it = m_byKey.find(key.str());
    if (it == m_byKey.end())
        return;
    // The attribute stays until the table ends: another variable may share it.
    m_vars.erase(m_vars.begin() + std::ptrdiff_t(it->second));
    Reindex();
}

void CParamFileTable::CopyFrom(IVarStore* store) {
    if (store == nullptr)
        return;
    const int count = store->GetCount();
    m_vars.reserve(m_vars.size() + size_t(std::max(count, 0)));
    for (int i = 0; i < count; ++i)
        if (IVarObjEx* var = store->GetAt(i)) {
            IVarObjEx* copy = var->Clone();
            if (copy != nullptr && !AddVar(copy))
                delete copy;
        }
    CopySet(store->GetGroupRoot(0), *m_fixed);
    CopySet(store->GetGroupRoot(1), *m_custom);
    IHostAxisList* axes = store->GetAxisList();
    if (axes != nullptr && axes->IsValid()) {
        for (int i = 0; i < axes->GetCount(); ++i) {
            IHostAxis* from = axes->GetAt(i);
            if (from == nullptr)
                continue;
            auto* to = static_cast<model::CHostAxis*>(m_fixed->AddAxis());
            CString text;
            from->GetName(text);
            to->SetName(text);
            from->GetKey(text);
            to->SetKey(text);
            to->SetAddressBase(from->GetAddressBase());
            CopySet(from->GetGroupSet(), to->Groups());
        }
        BindSets();
    }
    if (m_label.empty() && store->GetElecLabel() != nullptr)
        m_label.assign(store->GetElecLabel(), store->GetElecLabel() + store->GetElecLabelSize());
    if (m_version.IsEmpty())
        store->GetVersionText(m_version);
}

// ---- CParamFile

CParamFile::CParamFile() = default;
CParamFile::~CParamFile() = default;

const BYTE* CParamFile::GetElecLabel() {
    return m_label.empty() ? nullptr : m_label.data();
}

void CParamFile::SetElecLabel(const BYTE* label, UINT size) {
    if (label == nullptr)
        size = 0;
    m_label.assign(label, label + size);
    m_table.SetLabel(m_label);
}

BOOL CParamFile::SerializeTo(IMemoryStream* stream) {
    if (stream == nullptr)
        return 0;
    static_cast<CMemoryStream*>(stream)->Append(ToBytes());
    return 1;
}

std::string CParamFile::ToBytes() {
    return EncodeParamFile(*this);
}

void CParamFile::Swap(CParamFile& other) {
    m_table.Swap(other.m_table);
    std::swap(m_label, other.m_label);
    std::swap(m_version, other.m_version);
    std::swap(m_accessLevel, other.m_accessLevel);
}

bool CParamFile::FromBytes(const std::string& bytes, std::string* error) {
    CParamFile fresh;
    fresh.LoadContext(m_context);
    std::string why;
    if (!DecodeParamFile(bytes, fresh, why)) {
        if (error)
            *error = why;
        return false;
    }
    Swap(fresh);
    return true;
}

BOOL CParamFile::Open(const CString& path) {
    std::string bytes, why;
    if (!ReadWholeFile(path, kMaxFileBytes, bytes, &why) || !FromBytes(bytes, &why)) {
        m_error = path.str() + ": " + why;
        return 0;
    }
    m_error.clear();
    return 1;
}

BOOL CParamFile::Save(const CString& path) {
    std::string why;
    if (!WriteFileAtomically(path, ToBytes(), &why)) {
        m_error = path.str() + ": " + why;
        return 0;
    }
    m_error.clear();
    return 1;
}

// ---- file helpers

bool WriteFileAtomically(const CString& path, const std::string& bytes, std::string* error) {
    // The module's own rules for replacing a file, so that host and module save alike.
    return AfxReplaceFile(path.str(), bytes, error);
}

bool ReadWholeFile(const CString& path, std::int64_t maxBytes, std::string& bytes,
                   std::string* error) {
    std::string why;
    switch (ReadFileBounded(path.str(), std::size_t(maxBytes), bytes, &why)) {
    case ReadOutcome::Ok:
        return true;
    case ReadOutcome::TooLarge:
        why += "; not a parameter file";
        break;
    case ReadOutcome::CannotRead:
        break;
    }
    if (error)
        *error = why;
    return false;
}

} // namespace zorhost::files
