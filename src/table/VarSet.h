// A set of parameter pointers for the walks that must take each parameter once. Open
// addressing in one array: a walk over a large device inserts tens of thousands of
// pointers, and a node per pointer would cost more than the walk itself.
#pragma once

#include "module/host/HostFwd.h"

#include <cstdint>
#include <vector>

class CVarSet {
public:
    // TRUE when `var` was not in the set yet.
    bool Insert(IVarObjEx* var) {
        if ((m_count + 1) * 2 > m_slots.size())
            Grow();
        const size_t mask = m_slots.size() - 1;
        for (size_t i = Hash(var) & mask;; i = (i + 1) & mask) {
            if (m_slots[i] == var)
                return false;
            if (m_slots[i] == nullptr) {
                m_slots[i] = var;
                ++m_count;
                return true;
            }
        }
    }
    void Clear() {
        if (m_count != 0)
            m_slots.assign(m_slots.size(), nullptr);
        m_count = 0;
    }
    size_t Size() const { return m_count; }

private:
    static size_t Hash(IVarObjEx* var) {
        return size_t((uintptr_t(var) >> 4) * 0x9E3779B97F4A7C15ull >> 16);
    }
    void Grow() {
        std::vector<IVarObjEx*> old;
        old.swap(m_slots);
        m_slots.assign(old.empty() ? 64 : old.size() * 2, nullptr);
        m_count = 0;
        for (IVarObjEx* var : old)
            if (var != nullptr)
                Insert(var);
    }

    std::vector<IVarObjEx*> m_slots;
    size_t m_count = 0;
};
