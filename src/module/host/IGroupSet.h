// A set of parameter groups: a group root of a store, the groups of a catalog or of an
// axis. It may hold categories, and (the custom root) members of its own. Implemented by
// the host; owned by its store, catalog or axis.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"

class IGroupSet : public IBaseInterface {
public:
    // Number of groups at the top of the set.
    virtual int GetCount() = 0;
    // Group `index`, or null.
    virtual IGroupNode* GetAt(int index) = 0;
    // Number of categories.
    virtual int GetCategoryCount() = 0;
    // Category `index`, or null.
    virtual IGroupCategory* GetCategoryAt(int index) = 0;
    // The first group at any depth whose name equals `name` exactly, or null.
    virtual IGroupNode* FindByName(const CString& name) = 0;
    // A new, empty, unnamed group that belongs to no set yet, or null. Owned by the
    // caller until AddGroup (or IGroupNode::AddChild) accepts it.
    virtual IGroupNode* NewGroup() = 0;
    // Appends `group` at the top. Nonzero: the set owns it. 0: the caller keeps it.
    virtual BOOL AddGroup(IGroupNode* group) = 0;
    // Takes the top-level `group` out of the set and destroys it with its children; with
    // `withVars` nonzero the variables of its members leave the store too. Nonzero when
    // the set held it.
    virtual BOOL RemoveGroup(IGroupNode* group, BOOL withVars) = 0;
    // Number of members of the set itself (the custom root holds some).
    virtual int GetMemberCount() = 0;
    // `key` = member `index` of the set itself; 0 outside the list.
    virtual BOOL GetMemberAt(int index, CString& key) = 0;
    // Appends the member `key` to the set itself. Nonzero on success.
    virtual BOOL AddMember(const CString& key) = 0;
    // Removes the member `key` from the set itself. Nonzero when it was there.
    virtual BOOL RemoveMember(const CString& key) = 0;
    // A new axis in this set, with an empty group set of its own, or null. Owned by the
    // set.
    virtual IHostAxis* AddAxis() = 0;
};
