// CTemplateList<Key, Value>: the module's keyed list. Values stand in a vector in the
// order they were added; beside it an ordered map from key to value keeps a key from
// coming twice. The list owns nothing: clearing it frees no value unless the owner asks
// for that with DeleteAll.
//
// Walks go by index and re-read the length at every step, so an entry that removes
// itself (or another) while the walk runs is never read past the end. Walk() does that.
#pragma once

#include <afx/afxtypes.h>

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <type_traits>
#include <utility>
#include <vector>

template <class Key, class Value> class CTemplateList {
public:
    CTemplateList() = default;
    CTemplateList(const CTemplateList&) = default;
    CTemplateList& operator=(const CTemplateList&) = default;
    virtual ~CTemplateList() = default;

    // Appends `value` under `key`. Refuses (0) a null value and a key the map holds.
    BOOL Add(const Key& key, const Value& value) {
        if (IsNull(value) || m_map.count(key) != 0)
            return FALSE;
        m_map.emplace(key, value);
        m_array.push_back(value);
        return TRUE;
    }

    // Inserts `value` under `key` at `index` (clamped to 0..count). Same refusals as Add.
    BOOL InsertAt(int index, const Key& key, const Value& value) {
        if (IsNull(value) || m_map.count(key) != 0)
            return FALSE;
        const int at = std::clamp(index, 0, GetCount());
        m_map.emplace(key, value);
        m_array.insert(m_array.begin() + at, value);
        return TRUE;
    }

    // Takes the entry of `key` out of the map and the first equal value out of the
    // array. 0 when the map doesn't hold the key.
    BOOL Remove(const Key& key) {
        auto it = m_map.find(key);
        if (it == m_map.end())
            return FALSE;
        const Value value = it->second;
        m_map.erase(it);
        auto pos = std::find(m_array.begin(), m_array.end(), value);
        if (pos != m_array.end())
            m_array.erase(pos);
        return TRUE;
    }

    // Takes the value at `index` out of the array and its entry out of the map.
    BOOL RemoveAt(int index) {
        if (index < 0 || index >= GetCount())
            return FALSE;
        const Value value = m_array[size_t(index)];
        m_array.erase(m_array.begin() + index);
        for (auto it = m_map.begin(); it != m_map.end(); ++it) {
            if (it->second == value) {
                m_map.erase(it);
                break;
            }
        }
        return TRUE;
    }

    // Empties array and map; the values are not freed.
    void RemoveAll() {
        m_array.clear();
        m_map.clear();
    }

    // For lists whose owner owns the values: empties the list, then deletes each value
    // once, in insertion order. A destructor that looks at the list finds it empty.
    void DeleteAll() {
        static_assert(std::is_pointer_v<Value>, "DeleteAll needs pointer values");
        std::vector<Value> values;
        values.swap(m_array);
        m_map.clear();
        std::set<Value, std::less<>> deleted;
        for (Value v : values) {
            if (v != nullptr && deleted.insert(v).second)
                delete v;
        }
    }

    int GetCount() const { return int(m_array.size()); }
    BOOL IsEmpty() const { return m_array.empty(); }

    // The value at `index`; a null (default) value outside the array.
    Value GetAt(int index) const {
        if (index < 0 || index >= GetCount())
            return Value{};
        return m_array[size_t(index)];
    }

    // The index of the first value equal to `value`, or -1.
    int IndexOf(const Value& value) const {
        auto pos = std::find(m_array.begin(), m_array.end(), value);
        return pos == m_array.end() ? -1 : int(pos - m_array.begin());
    }

    // Nonzero when the map holds `key`; the value goes to `value`.
    BOOL Lookup(const Key& key, Value& value) const {
        auto it = m_map.find(key);
        if (it == m_map.end())
            return FALSE;
        value = it->second;
        return TRUE;
    }
    BOOL Contains(const Key& key) const { return m_map.count(key) != 0; }

    // The values in insertion order, e.g. to hand them to the host in one list.
    const std::vector<Value>& GetArray() const { return m_array; }

    // Calls `f(value)` for each non-null value from the front, by index, re-reading the
    // length at every step. `f` may remove entries, itself included: the walk never reads
    // past the end, and an entry that moves down into the present index is passed over.
    template <class F> void Walk(F f) const {
        for (int i = 0; i < GetCount(); ++i) {
            const Value v = m_array[size_t(i)];
            if (!IsNull(v))
                f(v);
        }
    }

private:
    static bool IsNull(const Value& v) {
        if constexpr (std::is_pointer_v<Value>)
            return v == nullptr;
        else
            return false;
    }

    std::vector<Value> m_array;
    std::map<Key, Value> m_map;
};
