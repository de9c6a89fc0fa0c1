// A category of a group set: a named list of group names. Implemented by the host; owned
// by its set.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/HostFwd.h"

class IGroupCategory : public IBaseInterface {
public:
    // `name` = the category's name.
    virtual void GetName(CString& name) = 0;
    // `text` = the category's description; may be empty.
    virtual void GetDescription(CString& text) = 0;
    // Number of children.
    virtual int GetChildCount() = 0;
    // Child `index`, or null. Only its name counts: the group itself is found by that
    // name with IGroupSet::FindByName.
    virtual IGroupNode* GetChildAt(int index) = 0;
};
