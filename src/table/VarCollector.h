// The rules that turn the groups of a device into the rows of a list page and into the
// parameters of a transfer: which groups are walked, in which order, and which members
// count at an access level. Window-free: the frame and the pages hand it the membership,
// the level and the product line, and receive the parameters in walk order.
#pragma once

#include "table/GroupMembership.h"

#include <afx/CString.h>

#include <functional>
#include <vector>

class CVarSet;

class CVarCollector {
public:
    // `cached`: the walked groups belong to the device, so their resolved members are kept.
    CVarCollector(CGroupMembership& membership, int level, BOOL line13, BOOL cached = TRUE)
        : m_membership(membership), m_level(level), m_line13(line13), m_cached(cached) {}

    // Every group of the device in tree order: its own groups, then each axis' groups.
    static void ForEachDeviceGroup(IVarStore* store, const std::function<void(IGroupNode*)>& f);
    static BOOL IsFactoryGroupName(const CString& name);
    // A row of the device's catalogue: the catalogue holds its address and transfers it.
    static BOOL IsCatalogVar(IVarCatalog* catalog, IVarObjEx* var);

    // The rows a list page shows of `group` and its children, depth first. The parameter
    // page (`firstPage`) leaves out fixed groups and parameters that are fixed or never
    // transferred. On the set-value page at level 0, a parameter of the product line that
    // is hidden from users is held back and raised to level 3 until the attributes are
    // reloaded.
    void WalkPageRows(IGroupNode* group, BOOL firstPage,
                      const std::function<void(IVarObjEx*, IVarAttr*)>& row);

    // What a transfer of `group` takes: its members and its children's, each once, within
    // the level; none of a fixed or hidden group, nor of the factory groups unless asked.
    void CollectTransfer(IGroupNode* group, BOOL includeFactory, std::vector<IVarObjEx*>& list);

private:
    const std::vector<IVarObjEx*>& MembersOf(IGroupNode* group);
    void Gather(IGroupNode* group, std::vector<IVarObjEx*>& order, CVarSet& seen);

    CGroupMembership& m_membership;
    int m_level;
    BOOL m_line13;
    BOOL m_cached;
    std::vector<IVarObjEx*> m_scratch;
};
