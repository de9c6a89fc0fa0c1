// Parameter groups, their sets and categories, and the axes of a multi-axis device.
//
// Groups built from a description keep their member list as parameter indices into it and
// only copy the keys out when a member is added or removed, so the fixed groups of a large
// device cost next to nothing per store.
#pragma once

#include "module/host/IGroupCategory.h"
#include "module/host/IGroupNode.h"
#include "module/host/IGroupSet.h"
#include "module/host/IHostAxis.h"
#include "module/host/IHostAxisList.h"
#include "zorhost/device/DeviceDescription.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace zorhost::model {

using device::DeviceDescription;

// The key a store gives parameter `index`: its code, or "<axis key>.<code>" on an axis.
std::string InstanceKeyOf(const DeviceDescription& device, std::uint32_t index);

class CGroupNode : public IGroupNode {
public:
    CGroupNode() = default;
    explicit CGroupNode(CString name) : m_name(std::move(name)) {}
    // Group `group` of the description with all its child groups.
    CGroupNode(const DeviceDescription& device, std::uint32_t group);

    void GetName(CString& name) override { name = m_name; }
    void SetName(const CString& name) override { m_name = name; }
    void GetDescription(CString& text) override { text = m_description; }
    void SetDescription(const CString& text) override { m_description = text; }
    int GetAccessLevel() override { return m_accessLevel; }
    BOOL IsGroupVisible() override { return m_visible; }
    BOOL IsGroupFixed() override { return m_fixed; }
    int GetMemberCount() override;
    BOOL GetMemberAt(int index, CString& key) override;
    BOOL AddMember(const CString& key) override;
    BOOL RemoveMember(const CString& key) override;
    void ClearMembers() override;
    int GetChildCount() override { return int(m_children.size()); }
    IGroupNode* GetChildAt(int index) override;
    BOOL AddChild(IGroupNode* child) override;
    BOOL RemoveChild(IGroupNode* child) override;
    IGroupNode* GetParent() override { return m_parent; }
    IGroupNode* Clone() override;

    const CString& Name() const { return m_name; }
    void SetAccessLevel(int level) { m_accessLevel = level; }
    void SetFlags(bool visible, bool fixed) {
        m_visible = visible ? 1 : 0;
        m_fixed = fixed ? 1 : 0;
    }
    CGroupNode* Child(int index) { return m_children[size_t(index)].get(); }
    // Depth-first, this group first.
    CGroupNode* FindByName(const CString& name);
    // Every member key of this group and of all its children.
    void CollectKeys(std::vector<CString>& keys);

private:
    friend class CGroupSet;
    void OwnMembers(); // copies description members out before a change

    CString m_name, m_description;
    int m_accessLevel = 0;
    BOOL m_visible = 1;
    BOOL m_fixed = 0;
    CGroupNode* m_parent = nullptr;
    bool m_owned = false; // held by a set or a parent
    std::vector<std::unique_ptr<CGroupNode>> m_children;
    const DeviceDescription* m_device = nullptr; // set while members are borrowed
    const std::vector<std::uint32_t>* m_borrowed = nullptr;
    std::vector<CString> m_members;
};

class CGroupCategory : public IGroupCategory {
public:
    CGroupCategory(CString name, CString description)
        : m_name(std::move(name)), m_description(std::move(description)) {}

    void GetName(CString& name) override { name = m_name; }
    void GetDescription(CString& text) override { text = m_description; }
    int GetChildCount() override { return int(m_children.size()); }
    IGroupNode* GetChildAt(int index) override;

    void AddChildName(const CString& name);

private:
    CString m_name, m_description;
    std::vector<std::unique_ptr<CGroupNode>> m_children; // name-only entries
};

class CHostAxis;

class CGroupSet : public IGroupSet {
public:
    // Called with every member key of a group that RemoveGroup takes out with its
    // variables; the set itself holds no variables.
    using VarDropper = std::function<void(const CString& key)>;

    CGroupSet();
    ~CGroupSet() override;
    // The groups and categories of `set` in the description.
    CGroupSet(const DeviceDescription& device, const device::GroupSet& set);

    int GetCount() override { return int(m_groups.size()); }
    IGroupNode* GetAt(int index) override;
    int GetCategoryCount() override { return int(m_categories.size()); }
    IGroupCategory* GetCategoryAt(int index) override;
    IGroupNode* FindByName(const CString& name) override;
    IGroupNode* NewGroup() override { return new CGroupNode(); }
    BOOL AddGroup(IGroupNode* group) override;
    BOOL RemoveGroup(IGroupNode* group, BOOL withVars) override;
    int GetMemberCount() override { return int(m_members.size()); }
    BOOL GetMemberAt(int index, CString& key) override;
    BOOL AddMember(const CString& key) override;
    BOOL RemoveMember(const CString& key) override;
    IHostAxis* AddAxis() override;

    void SetVarDropper(VarDropper dropper) { m_dropVar = std::move(dropper); }
    // Appends a category (a file's table rebuilds its sets this way).
    void AddCategory(std::unique_ptr<CGroupCategory> category) {
        m_categories.push_back(std::move(category));
    }
    CGroupNode* Group(int index) { return m_groups[size_t(index)].get(); }
    int AxisCount() const { return int(m_axes.size()); }
    CHostAxis* Axis(int index) { return m_axes[size_t(index)].get(); }

private:
    std::vector<std::unique_ptr<CGroupNode>> m_groups;
    std::vector<std::unique_ptr<CGroupCategory>> m_categories;
    std::vector<CString> m_members;
    std::vector<std::unique_ptr<CHostAxis>> m_axes; // made by AddAxis
    VarDropper m_dropVar;
};

class CHostAxis : public IHostAxis {
public:
    CHostAxis() : m_groups(std::make_unique<CGroupSet>()) {}
    // Axis `axis` of the description with its own group set.
    CHostAxis(const DeviceDescription& device, int axis);

    void GetName(CString& name) override { name = m_name; }
    void SetName(const CString& name) override { m_name = name; }
    void GetKey(CString& key) override { key = m_key; }
    void SetKey(const CString& key) override { m_key = key; }
    UINT GetAddressBase() override { return m_addressBase; }
    IGroupSet* GetGroupSet() override { return m_groups.get(); }

    void SetAddressBase(UINT base) { m_addressBase = base; }
    CGroupSet& Groups() { return *m_groups; }

private:
    CString m_name, m_key;
    UINT m_addressBase = 0;
    std::unique_ptr<CGroupSet> m_groups;
};

class CAxisList : public IHostAxisList {
public:
    CAxisList() = default;
    // Valid exactly when the description has axes.
    explicit CAxisList(const DeviceDescription& device);

    BOOL IsValid() override { return m_axes.empty() ? 0 : 1; }
    int GetCount() override { return int(m_axes.size()); }
    IHostAxis* GetAt(int index) override;

    CHostAxis* Axis(int index) { return m_axes[size_t(index)].get(); }

private:
    std::vector<std::unique_ptr<CHostAxis>> m_axes;
};

} // namespace zorhost::model
