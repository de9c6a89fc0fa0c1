// The frame's parameter files: what a file of a group holds, and the parameter tables of a
// file's table or a group.
#include "table/VarTable.h"

#include "files/ParamTableWriter.h"
#include "module/host/IGroupNode.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IParamFileTable.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"

#include <set>

namespace {

BOOL IsFactoryGroupName(const CString& name) {
    return name == "H00" || name == "H01";
}

struct FileVarWalk {
    IVarStore* store;
    int level;
    BOOL hideForUser; // level 0 on a device of line 13
    std::set<IVarObjEx*> seen;

    void Collect(IGroupNode* group, std::vector<IVarObjEx*>& list, BOOL includeFactory) {
        if (group == nullptr)
            return;
        CString name;
        group->GetName(name);
        if (!includeFactory && IsFactoryGroupName(name))
            return;
        if (!group->IsGroupVisible() || group->GetAccessLevel() > level)
            return;
        const int members = group->GetMemberCount();
        for (int i = 0; i < members; ++i) {
            CString key;
            if (!group->GetMemberAt(i, key))
                continue;
            IVarObjEx* var = store->FindByCode(key);
            IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
            if (attr == nullptr || attr->GetAccessLevel() > level)
                continue;
            if (hideForUser && attr->IsHiddenForUser())
                continue;
            if (seen.insert(var).second)
                list.push_back(var);
        }
        for (int i = 0; i < group->GetChildCount(); ++i)
            Collect(group->GetChildAt(i), list, TRUE);
    }
};

} // namespace

void CVarTable::CollectFileVars(IGroupNode* group, std::vector<IVarObjEx*>& list,
                                BOOL includeFactory) {
    if (group == nullptr || m_pModule == nullptr)
        return;
    IVarStore* store = m_pModule->GetVarList();
    if (store == nullptr)
        return;
    const int level = m_pModule->GetAccessLevel();
    FileVarWalk walk{store, level, level == 0 && IsProductLine13(m_pModule), {}};
    walk.seen.insert(list.begin(), list.end());
    walk.Collect(group, list, includeFactory);
}

static BOOL WriteTableOf(CVarTable& frame, IParamFileTable* table, IGroupNode* group,
                         const CString& path, BOOL withGuid) {
    if (table == nullptr && group == nullptr)
        return FALSE;
    std::vector<IVarObjEx*> list;
    if (group != nullptr) {
        frame.CollectFileVars(group, list, TRUE);
    } else {
        const int count = table->GetCount();
        list.reserve(size_t(count > 0 ? count : 0));
        for (int i = 0; i < count; ++i)
            list.push_back(table->GetAt(i));
    }
    return WriteParamTableRows(path, list, frame.GetModule(), withGuid);
}

BOOL CVarTable::WriteParamTable(IParamFileTable* table, IGroupNode* group, const CString& path) {
    return WriteTableOf(*this, table, group, path, FALSE);
}

BOOL CVarTable::WriteParamTableGuid(IParamFileTable* table, IGroupNode* group,
                                    const CString& path) {
    return WriteTableOf(*this, table, group, path, TRUE);
}
