#include "zorhost/model/Groups.h"

#include <algorithm>

namespace zorhost::model {

std::string InstanceKeyOf(const DeviceDescription& d, std::uint32_t index) {
    const device::ParameterDef& p = d.parameters[index];
    if (p.axis < 0 || size_t(p.axis) >= d.axes.size())
        return std::string(d.Code(p));
    std::string key(d.Text(d.axes[size_t(p.axis)].key));
    key += '.';
    key += d.Code(p);
    return key;
}

// ---- CGroupNode

CGroupNode::CGroupNode(const DeviceDescription& d, std::uint32_t group) {
    const device::GroupDef& g = d.groups[group];
    m_name = CString(d.Text(g.name));
    m_description = CString(d.Text(g.description));
    m_accessLevel = g.accessLevel;
    SetFlags(g.visible, g.fixed);
    m_device = &d;
    m_borrowed = &g.members;
    m_children.reserve(g.children.size());
    for (std::uint32_t c : g.children) {
        m_children.push_back(std::make_unique<CGroupNode>(d, c));
        m_children.back()->m_parent = this;
        m_children.back()->m_owned = true;
    }
}

int CGroupNode::GetMemberCount() {
    return m_borrowed ? int(m_borrowed->size()) : int(m_members.size());
}

BOOL CGroupNode::GetMemberAt(int index, CString& key) {
    if (index < 0 || index >= GetMemberCount()) {
        key.Empty();
        return 0;
    }
    if (m_borrowed)
        key = CString(InstanceKeyOf(*m_device, (*m_borrowed)[size_t(index)]));
    else
        key = m_members[size_t(index)];
    return 1;
}

void CGroupNode::OwnMembers() {
    if (!m_borrowed)
        return;
    std::vector<CString> keys;
    keys.reserve(m_borrowed->size());
    for (std::uint32_t i : *m_borrowed)
        keys.emplace_back(InstanceKeyOf(*m_device, i));
    m_members = std::move(keys);
    m_borrowed = nullptr;
    m_device = nullptr;
}

BOOL CGroupNode::AddMember(const CString& key) {
    if (key.IsEmpty())
        return 0;
    OwnMembers();
    m_members.push_back(key);
    return 1;
}

BOOL CGroupNode::RemoveMember(const CString& key) {
    OwnMembers();
    auto it = std::find(m_members.begin(), m_members.end(), key);
    if (it == m_members.end())
        return 0;
    m_members.erase(it);
    return 1;
}

void CGroupNode::ClearMembers() {
    m_borrowed = nullptr;
    m_device = nullptr;
    m_members.clear();
}

IGroupNode* CGroupNode::GetChildAt(int index) {
    return index >= 0 && size_t(index) < m_children.size() ? m_children[size_t(index)].get()
                                                           : nullptr;
}

BOOL CGroupNode::AddChild(IGroupNode* child) {
    // Only a group that belongs nowhere may be taken, and never this group or one above it.
    auto* node = static_cast<CGroupNode*>(child);
    if (!node || node->m_parent || node->m_owned)
        return 0;
    for (CGroupNode* up = this; up; up = up->m_parent)
        if (up == node)
            return 0;
    node->m_parent = this;
    node->m_owned = true;
    m_children.emplace_back(node);
    return 1;
}

BOOL CGroupNode::RemoveChild(IGroupNode* child) {
    auto it = std::find_if(m_children.begin(), m_children.end(),
                           [&](const auto& c) { return c.get() == child; });
    if (it == m_children.end())
        return 0;
    m_children.erase(it);
    return 1;
}

IGroupNode* CGroupNode::Clone() {
    auto* copy = new CGroupNode(m_name);
    copy->m_description = m_description;
    copy->m_accessLevel = m_accessLevel;
    copy->m_visible = m_visible;
    copy->m_fixed = m_fixed;
    // A clone may outlive the description it came from: it keeps keys, not indices.
    int n = GetMemberCount();
    copy->m_members.reserve(size_t(n));
    for (int i = 0; i < n; ++i) {
        CString key;
        GetMemberAt(i, key);
        copy->m_members.push_back(std::move(key));
    }
    return copy;
}

CGroupNode* CGroupNode::FindByName(const CString& name) {
    if (m_name == name)
        return this;
    for (auto& c : m_children)
        if (CGroupNode* found = c->FindByName(name))
            return found;
    return nullptr;
}

void CGroupNode::CollectKeys(std::vector<CString>& keys) {
    int n = GetMemberCount();
    for (int i = 0; i < n; ++i) {
        CString key;
        GetMemberAt(i, key);
        keys.push_back(std::move(key));
    }
    for (auto& c : m_children)
        c->CollectKeys(keys);
}

// ---- CGroupCategory

IGroupNode* CGroupCategory::GetChildAt(int index) {
    return index >= 0 && size_t(index) < m_children.size() ? m_children[size_t(index)].get()
                                                           : nullptr;
}

void CGroupCategory::AddChildName(const CString& name) {
    m_children.push_back(std::make_unique<CGroupNode>(name));
}

// ---- CGroupSet

CGroupSet::CGroupSet() = default;
CGroupSet::~CGroupSet() = default;

CGroupSet::CGroupSet(const DeviceDescription& d, const device::GroupSet& set) {
    m_groups.reserve(set.roots.size());
    for (std::uint32_t g : set.roots) {
        m_groups.push_back(std::make_unique<CGroupNode>(d, g));
        m_groups.back()->m_owned = true;
    }
    for (const device::CategoryDef& c : set.categories) {
        auto category = std::make_unique<CGroupCategory>(CString(d.Text(c.name)),
                                                         CString(d.Text(c.description)));
        for (std::uint32_t g : c.groups)
            category->AddChildName(CString(d.Text(d.groups[g].name)));
        m_categories.push_back(std::move(category));
    }
}

IGroupNode* CGroupSet::GetAt(int index) {
    return index >= 0 && size_t(index) < m_groups.size() ? m_groups[size_t(index)].get() : nullptr;
}

IGroupCategory* CGroupSet::GetCategoryAt(int index) {
    return index >= 0 && size_t(index) < m_categories.size() ? m_categories[size_t(index)].get()
                                                             : nullptr;
}

IGroupNode* CGroupSet::FindByName(const CString& name) {
    for (auto& g : m_groups)
        if (CGroupNode* found = g->FindByName(name))
            return found;
    return nullptr;
}

BOOL CGroupSet::AddGroup(IGroupNode* group) {
    auto* node = static_cast<CGroupNode*>(group);
    if (!node || node->m_parent || node->m_owned)
        return 0;
    node->m_owned = true;
    m_groups.emplace_back(node);
    return 1;
}

BOOL CGroupSet::RemoveGroup(IGroupNode* group, BOOL withVars) {
    auto it = std::find_if(m_groups.begin(), m_groups.end(),
                           [&](const auto& g) { return g.get() == group; });
    if (it == m_groups.end())
        return 0;
    std::unique_ptr<CGroupNode> gone = std::move(*it);
    m_groups.erase(it);
    if (withVars && m_dropVar) {
        std::vector<CString> keys;
        gone->CollectKeys(keys);
        for (const CString& k : keys)
            m_dropVar(k);
    }
    return 1;
}

BOOL CGroupSet::GetMemberAt(int index, CString& key) {
    if (index < 0 || size_t(index) >= m_members.size()) {
        key.Empty();
        return 0;
    }
    key = m_members[size_t(index)];
    return 1;
}

BOOL CGroupSet::AddMember(const CString& key) {
    if (key.IsEmpty())
        return 0;
    m_members.push_back(key);
    return 1;
}

BOOL CGroupSet::RemoveMember(const CString& key) {
    auto it = std::find(m_members.begin(), m_members.end(), key);
    if (it == m_members.end())
        return 0;
    m_members.erase(it);
    return 1;
}

IHostAxis* CGroupSet::AddAxis() {
    m_axes.push_back(std::make_unique<CHostAxis>());
    return m_axes.back().get();
}

// ---- CHostAxis, CAxisList

CHostAxis::CHostAxis(const DeviceDescription& d, int axis) {
    const device::AxisDef& a = d.axes[size_t(axis)];
    m_name = CString(d.Text(a.name));
    m_key = CString(d.Text(a.key));
    m_addressBase = a.addressBase;
    m_groups = std::make_unique<CGroupSet>(d, a.groupSet);
}

CAxisList::CAxisList(const DeviceDescription& d) {
    m_axes.reserve(d.axes.size());
    for (size_t a = 0; a < d.axes.size(); ++a)
        m_axes.push_back(std::make_unique<CHostAxis>(d, int(a)));
}

IHostAxis* CAxisList::GetAt(int index) {
    return index >= 0 && size_t(index) < m_axes.size() ? m_axes[size_t(index)].get() : nullptr;
}

} // namespace zorhost::model
