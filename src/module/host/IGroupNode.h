// A parameter group: members (variable keys) and child groups. Implemented by the host;
// owned by its set or parent, or by the caller while it is new or a clone.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"

class IGroupNode : public IBaseInterface {
public:
    // `name` = the group's name ("H00" ...).
    virtual void GetName(CString& name) = 0;
    // Renames the group.
    virtual void SetName(const CString& name) = 0;
    // `text` = the group's description; may be empty.
    virtual void GetDescription(CString& text) = 0;
    // Sets the description.
    virtual void SetDescription(const CString& text) = 0;
    // Lowest access level that sees the group.
    virtual int GetAccessLevel() = 0;
    // Zero for a group that is never shown.
    virtual BOOL IsGroupVisible() = 0;
    // Nonzero for a group of fixed parameters.
    virtual BOOL IsGroupFixed() = 0;
    // Number of members.
    virtual int GetMemberCount() = 0;
    // `key` = member `index`, a key for IVarStore::FindByCode; 0 outside the list.
    virtual BOOL GetMemberAt(int index, CString& key) = 0;
    // Appends the member `key`. Nonzero on success.
    virtual BOOL AddMember(const CString& key) = 0;
    // Removes the member `key` from this group (not its children). Nonzero when it was
    // there.
    virtual BOOL RemoveMember(const CString& key) = 0;
    // Removes all members.
    virtual void ClearMembers() = 0;
    // Number of child groups.
    virtual int GetChildCount() = 0;
    // Child group `index`, or null.
    virtual IGroupNode* GetChildAt(int index) = 0;
    // Appends `child` (a new group or a clone). Nonzero: this group owns it. 0: the
    // caller keeps it.
    virtual BOOL AddChild(IGroupNode* child) = 0;
    // Takes `child` out and destroys it. Nonzero when it was a child.
    virtual BOOL RemoveChild(IGroupNode* child) = 0;
    // The parent group, or null at the top of a set.
    virtual IGroupNode* GetParent() = 0;
    // A copy with name, description, flags and members, without child groups and
    // belonging to no set. Owned by the caller until a set or group accepts it.
    virtual IGroupNode* Clone() = 0;
};
