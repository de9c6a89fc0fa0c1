// Small collection templates with the familiar names; std containers inside.
#pragma once

#include <afx/CString.h>
#include <afx/afxtypes.h>

#include <algorithm>
#include <list>
#include <map>
#include <vector>

// Opaque iterator position for CList and selection walks; nullptr ends a walk.
struct __POSITION {};
typedef __POSITION* POSITION;

template <class TYPE, class ARG_TYPE = const TYPE&> class CArray {
public:
    INT_PTR GetSize() const { return INT_PTR(m_items.size()); }
    INT_PTR GetCount() const { return GetSize(); }
    BOOL IsEmpty() const { return m_items.empty(); }
    void SetSize(INT_PTR n) { m_items.resize(size_t(n < 0 ? 0 : n)); }
    void RemoveAll() { m_items.clear(); }
    const TYPE& GetAt(INT_PTR i) const { return m_items.at(size_t(i)); }
    void SetAt(INT_PTR i, ARG_TYPE v) { m_items.at(size_t(i)) = v; }
    INT_PTR Add(ARG_TYPE v) {
        m_items.push_back(v);
        return GetSize() - 1;
    }
    void InsertAt(INT_PTR i, ARG_TYPE v, INT_PTR count = 1) {
        if (i > GetSize())
            SetSize(i);
        m_items.insert(m_items.begin() + i, size_t(count), v);
    }
    void RemoveAt(INT_PTR i, INT_PTR count = 1) {
        if (i < 0 || i >= GetSize())
            return;
        const INT_PTR end = std::min(GetSize(), i + count);
        m_items.erase(m_items.begin() + i, m_items.begin() + end);
    }
    INT_PTR Append(const CArray& o) {
        const INT_PTR at = GetSize();
        m_items.insert(m_items.end(), o.m_items.begin(), o.m_items.end());
        return at;
    }
    void Copy(const CArray& o) { m_items = o.m_items; }
    TYPE& operator[](INT_PTR i) { return m_items.at(size_t(i)); }
    const TYPE& operator[](INT_PTR i) const { return m_items.at(size_t(i)); }
    TYPE* GetData() { return m_items.data(); }

    auto begin() { return m_items.begin(); }
    auto end() { return m_items.end(); }
    auto begin() const { return m_items.begin(); }
    auto end() const { return m_items.end(); }

private:
    std::vector<TYPE> m_items;
};

class CStringArray : public CArray<CString, const CString&> {};
class CUIntArray : public CArray<UINT, UINT> {};
class CDWordArray : public CArray<DWORD, DWORD> {};
class CPtrArray : public CArray<void*, void*> {};

// A list whose POSITION values stay valid while other elements come and go.
template <class TYPE, class ARG_TYPE = const TYPE&> class CList {
public:
    INT_PTR GetCount() const { return INT_PTR(m_items.size()); }
    BOOL IsEmpty() const { return m_items.empty(); }
    POSITION AddTail(ARG_TYPE v) {
        m_items.push_back(v);
        return Pos(m_items.back());
    }
    void RemoveAll() { m_items.clear(); }
    POSITION Find(ARG_TYPE v) const {
        for (const TYPE& item : m_items)
            if (item == v)
                return Pos(item);
        return nullptr;
    }

private:
    static POSITION Pos(const TYPE& item) {
        return reinterpret_cast<POSITION>(const_cast<TYPE*>(&item));
    }
    std::list<TYPE> m_items;
};

template <class KEY, class ARG_KEY, class VALUE, class ARG_VALUE> class CMap {
public:
    INT_PTR GetCount() const { return INT_PTR(m_map.size()); }
    BOOL IsEmpty() const { return m_map.empty(); }
    BOOL Lookup(ARG_KEY key, VALUE& value) const {
        const auto it = m_map.find(key);
        if (it == m_map.end())
            return FALSE;
        value = it->second;
        return TRUE;
    }
    void SetAt(ARG_KEY key, ARG_VALUE value) { m_map[key] = value; }
    VALUE& operator[](ARG_KEY key) { return m_map[key]; }
    void RemoveAll() { m_map.clear(); }
    auto begin() const { return m_map.begin(); }
    auto end() const { return m_map.end(); }

private:
    std::map<KEY, VALUE> m_map;
};
