#include "table/GroupMembership.h"

#include "module/host/IGroupNode.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "module/host/VarAttrCodes.h"

#include <algorithm>

void CGroupMembership::SetStore(IVarStore* store) {
    m_pStore = store;
    m_members.clear();
}

const std::vector<IVarObjEx*>& CGroupMembership::Members(IGroupNode* group) {
    auto found = m_members.find(group);
    if (found != m_members.end())
        return found->second;
    std::vector<IVarObjEx*>& members = m_members[group];
    Resolve(group, m_pStore, members);
    return members;
}

void CGroupMembership::Resolve(IGroupNode* group, IVarStore* store, std::vector<IVarObjEx*>& out) {
    out.clear();
    if (group == nullptr || store == nullptr)
        return;
    const int count = group->GetMemberCount();
    out.reserve(size_t(std::max(0, count)));
    CString key;
    for (int i = 0; i < count; ++i) {
        if (!group->GetMemberAt(i, key))
            continue;
        IVarObjEx* var = store->FindByCode(key);
        if (var != nullptr)
            out.push_back(var);
    }
}

BOOL CGroupMembership::IsTreeMember(IVarAttr* attr, int level) {
    return attr != nullptr && !attr->IsFixed() && attr->IsTransferable() &&
                   attr->GetAccessLevel() <= level &&
                   attr->GetModifyMode() != MODIFY_NOT_TRANSFERRED
               ? TRUE
               : FALSE;
}

BOOL CGroupMembership::IsGroupOpen(IGroupNode* group, int level) {
    return group != nullptr && group->GetAccessLevel() <= level && group->IsGroupVisible() &&
                   !group->IsGroupFixed()
               ? TRUE
               : FALSE;
}

BOOL CGroupMembership::IsGroupShown(IGroupNode* group, const std::vector<IVarObjEx*>& members,
                                    int level) {
    if (!IsGroupOpen(group, level))
        return FALSE;
    for (IVarObjEx* var : members)
        if (IsTreeMember(var->GetAttr(), level))
            return TRUE;
    return FALSE;
}

BOOL CGroupMembership::IsGroupShown(IGroupNode* group, int level) {
    if (group == nullptr || m_pStore == nullptr)
        return FALSE;
    const auto found = m_members.find(group);
    if (found != m_members.end())
        return IsGroupShown(group, found->second, level);
    // The tree asks this of every group of a device before any walk: the first member it
    // counts settles it, and the whole list is resolved when a walk needs it.
    if (!IsGroupOpen(group, level))
        return FALSE;
    const int count = group->GetMemberCount();
    CString key;
    for (int i = 0; i < count; ++i) {
        if (!group->GetMemberAt(i, key))
            continue;
        IVarObjEx* var = m_pStore->FindByCode(key);
        if (var != nullptr && IsTreeMember(var->GetAttr(), level))
            return TRUE;
    }
    return FALSE;
}
