// The rows of a list page: parameters in row order, each at most once. Filled by the
// walks over a whole device, so taking a row costs no allocation of its own.
#pragma once

#include "table/VarSet.h"

#include <afx/afxtypes.h>

#include <vector>

class CVarRowList {
public:
    // Appends `value`; refuses (FALSE) a null one and a `key` the rows hold already.
    BOOL Add(IVarObjEx* key, IVarObjEx* value) {
        if (value == nullptr || !m_seen.Insert(key))
            return FALSE;
        m_rows.push_back(value);
        return TRUE;
    }
    // Takes `values` as the rows; they hold no variable twice (a search's finds over a base
    // that holds each once), so nothing is refused.
    void AssignDistinct(const std::vector<IVarObjEx*>& values) {
        m_seen.Clear();
        for (IVarObjEx* var : values)
            m_seen.Insert(var);
        m_rows = values;
    }
    void RemoveAll() {
        m_rows.clear();
        m_seen.Clear();
    }
    int GetCount() const { return int(m_rows.size()); }
    BOOL IsEmpty() const { return m_rows.empty(); }
    // The row at `index`; null outside the rows.
    IVarObjEx* GetAt(int index) const {
        return index >= 0 && size_t(index) < m_rows.size() ? m_rows[size_t(index)] : nullptr;
    }
    const std::vector<IVarObjEx*>& GetArray() const { return m_rows; }

private:
    std::vector<IVarObjEx*> m_rows;
    CVarSet m_seen;
};
