#include "table/VarCollector.h"

#include "module/host/IGroupNode.h"
#include "module/host/IGroupSet.h"
#include "module/host/IHostAxis.h"
#include "module/host/IHostAxisList.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarCatalog.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "module/host/VarAttrCodes.h"
#include "table/VarSet.h"

void CVarCollector::ForEachDeviceGroup(IVarStore* store,
                                       const std::function<void(IGroupNode*)>& f) {
    if (store == nullptr)
        return;
    if (IGroupSet* root = store->GetGroupRoot(0))
        for (int i = 0; i < root->GetCount(); ++i)
            if (IGroupNode* group = root->GetAt(i))
                f(group);
    IHostAxisList* axes = store->GetAxisList();
    if (axes == nullptr || !axes->IsValid())
        return;
    for (int a = 0; a < axes->GetCount(); ++a) {
        IHostAxis* axis = axes->GetAt(a);
        IGroupSet* set = axis != nullptr ? axis->GetGroupSet() : nullptr;
        if (set == nullptr)
            continue;
        for (int i = 0; i < set->GetCount(); ++i)
            if (IGroupNode* group = set->GetAt(i))
                f(group);
    }
}

BOOL CVarCollector::IsFactoryGroupName(const CString& name) {
    return name == "H00" || name == "H01";
}

BOOL CVarCollector::IsCatalogVar(IVarCatalog* catalog, IVarObjEx* var) {
    if (catalog == nullptr || var == nullptr)
        return FALSE;
    IVarAttr* attr = catalog->FindAttrByAddress(var->GetInstanceAddress());
    return attr != nullptr && attr->IsTransferable() ? TRUE : FALSE;
}

const std::vector<IVarObjEx*>& CVarCollector::MembersOf(IGroupNode* group) {
    if (m_cached)
        return m_membership.Members(group);
    CGroupMembership::Resolve(group, m_membership.GetStore(), m_scratch);
    return m_scratch;
}

void CVarCollector::WalkPageRows(IGroupNode* group, BOOL firstPage,
                                 const std::function<void(IVarObjEx*, IVarAttr*)>& row) {
    if (group == nullptr || group->GetAccessLevel() > m_level || !group->IsGroupVisible())
        return;
    if (firstPage && group->IsGroupFixed())
        return;
    for (IVarObjEx* var : MembersOf(group)) {
        IVarAttr* attr = var->GetAttr();
        if (attr == nullptr || !attr->IsTransferable() || attr->GetAccessLevel() > m_level)
            continue;
        if (firstPage && (attr->IsFixed() || attr->GetModifyMode() == MODIFY_NOT_TRANSFERRED))
            continue;
        if (!firstPage && m_level == 0 && m_line13 && attr->IsHiddenForUser()) {
            attr->SetAccessLevel(3);
            continue;
        }
        row(var, attr);
    }
    for (int i = 0; i < group->GetChildCount(); ++i)
        WalkPageRows(group->GetChildAt(i), firstPage, row);
}

void CVarCollector::Gather(IGroupNode* group, std::vector<IVarObjEx*>& order, CVarSet& seen) {
    if (group == nullptr || !group->IsGroupVisible() || group->GetAccessLevel() > m_level)
        return;
    for (IVarObjEx* var : MembersOf(group)) {
        IVarAttr* attr = var->GetAttr();
        if (attr == nullptr || attr->GetAccessLevel() > m_level)
            continue;
        if (m_level == 0 && attr->IsHiddenForUser() && m_line13)
            continue;
        if (seen.Insert(var))
            order.push_back(var);
    }
    for (int i = 0; i < group->GetChildCount(); ++i)
        Gather(group->GetChildAt(i), order, seen);
}

void CVarCollector::CollectTransfer(IGroupNode* group, BOOL includeFactory,
                                    std::vector<IVarObjEx*>& list) {
    if (group == nullptr || m_membership.GetStore() == nullptr)
        return;
    if (!includeFactory) {
        CString name;
        group->GetName(name);
        if (IsFactoryGroupName(name))
            return;
    }
    if (group->IsGroupFixed() || !group->IsGroupVisible())
        return;
    std::vector<IVarObjEx*> found;
    CVarSet seen;
    Gather(group, found, seen);
    for (IVarObjEx* var : found) {
        IVarAttr* attr = var->GetAttr();
        if (attr != nullptr && attr->IsTransferable() && !attr->IsFixed() &&
            attr->GetModifyMode() != MODIFY_NOT_TRANSFERRED)
            list.push_back(var);
    }
}
