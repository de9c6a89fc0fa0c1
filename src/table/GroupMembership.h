// Which parameters a group holds, and the tree's rules about them. A group names its
// members by code; the store turns each code into the parameter. That lookup is the cost
// of every walk over a device, so the members of a group are resolved once and kept until
// the store or the device changes (Drop). The user's own groups change under the user's
// hands: walks over them resolve afresh (Resolve). Attributes are asked of the parameter
// each time, as a reload of the attributes may replace them.
#pragma once

#include "module/host/HostFwd.h"

#include <afx/afxtypes.h>

#include <unordered_map>
#include <vector>

class CGroupMembership {
public:
    // Forgets what was resolved; the next walk asks `store`.
    void SetStore(IVarStore* store);
    IVarStore* GetStore() const { return m_pStore; }
    void Drop() { m_members.clear(); }

    // The members of a group of the device that the store knows, in member order. Kept.
    const std::vector<IVarObjEx*>& Members(IGroupNode* group);
    // The same, resolved now and not kept.
    static void Resolve(IGroupNode* group, IVarStore* store, std::vector<IVarObjEx*>& out);

    // A member the tree counts: not fixed, transferable, within `level` and transferred.
    static BOOL IsTreeMember(IVarAttr* attr, int level);
    // A group the tree shows at `level`: within the level, visible, not fixed, and holding
    // at least one member the tree counts. `members` are the group's own members.
    static BOOL IsGroupShown(IGroupNode* group, const std::vector<IVarObjEx*>& members, int level);
    BOOL IsGroupShown(IGroupNode* group, int level);

private:
    // The group's own conditions: within `level`, visible and not fixed.
    static BOOL IsGroupOpen(IGroupNode* group, int level);

    IVarStore* m_pStore = nullptr;
    std::unordered_map<IGroupNode*, std::vector<IVarObjEx*>> m_members;
};
