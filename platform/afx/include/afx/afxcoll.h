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
    INT_PTR GetUpperBound() const { return GetSize() - 1; }
    void SetSize(INT_PTR n) { m_items.resize(size_t(n < 0 ? 0 : n)); }
    void RemoveAll() { m_items.clear(); }
    const TYPE& GetAt(INT_PTR i) const { return m_items.at(size_t(i)); }
    TYPE& ElementAt(INT_PTR i) { return m_items.at(size_t(i)); }
    void SetAt(INT_PTR i, ARG_TYPE v) { m_items.at(size_t(i)) = v; }
    void SetAtGrow(INT_PTR i, ARG_TYPE v) {
        if (i >= GetSize())
            SetSize(i + 1);
        m_items[size_t(i)] = v;
    }
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
    CList() = default;
    CList(const CList& o) {
        for (const auto* n = o.m_head; n; n = n->next)
            AddTail(n->value);
    }
    CList& operator=(const CList& o) {
        if (this != &o) {
            RemoveAll();
            for (const auto* n = o.m_head; n; n = n->next)
                AddTail(n->value);
        }
        return *this;
    }
    ~CList() { RemoveAll(); }

    INT_PTR GetCount() const { return m_count; }
    INT_PTR GetSize() const { return m_count; }
    BOOL IsEmpty() const { return m_count == 0; }
    POSITION GetHeadPosition() const { return Pos(m_head); }
    POSITION GetTailPosition() const { return Pos(m_tail); }
    TYPE& GetHead() { return m_head->value; }
    TYPE& GetTail() { return m_tail->value; }
    TYPE& GetNext(POSITION& pos) {
        Node* n = NodeOf(pos);
        pos = Pos(n->next);
        return n->value;
    }
    const TYPE& GetNext(POSITION& pos) const {
        Node* n = NodeOf(pos);
        pos = Pos(n->next);
        return n->value;
    }
    TYPE& GetPrev(POSITION& pos) {
        Node* n = NodeOf(pos);
        pos = Pos(n->prev);
        return n->value;
    }
    TYPE& GetAt(POSITION pos) { return NodeOf(pos)->value; }
    void SetAt(POSITION pos, ARG_TYPE v) { NodeOf(pos)->value = v; }
    POSITION AddHead(ARG_TYPE v) { return InsertBefore(GetHeadPosition(), v); }
    POSITION AddTail(ARG_TYPE v) { return InsertAfter(GetTailPosition(), v); }
    POSITION InsertBefore(POSITION pos, ARG_TYPE v) {
        Node* at = NodeOf(pos);
        Node* n = new Node{v, at ? at->prev : m_tail, at};
        Link(n);
        return Pos(n);
    }
    POSITION InsertAfter(POSITION pos, ARG_TYPE v) {
        Node* at = NodeOf(pos);
        Node* n = new Node{v, at, at ? at->next : m_head};
        Link(n);
        return Pos(n);
    }
    TYPE RemoveHead() {
        TYPE v = m_head->value;
        RemoveAt(GetHeadPosition());
        return v;
    }
    TYPE RemoveTail() {
        TYPE v = m_tail->value;
        RemoveAt(GetTailPosition());
        return v;
    }
    void RemoveAt(POSITION pos) {
        Node* n = NodeOf(pos);
        if (!n)
            return;
        (n->prev ? n->prev->next : m_head) = n->next;
        (n->next ? n->next->prev : m_tail) = n->prev;
        delete n;
        --m_count;
    }
    void RemoveAll() {
        while (m_head)
            RemoveAt(GetHeadPosition());
    }
    POSITION Find(ARG_TYPE v, POSITION after = nullptr) const {
        for (Node* n = after ? NodeOf(after)->next : m_head; n; n = n->next)
            if (n->value == v)
                return Pos(n);
        return nullptr;
    }
    POSITION FindIndex(INT_PTR index) const {
        Node* n = m_head;
        for (INT_PTR i = 0; n && i < index; ++i)
            n = n->next;
        return index < 0 ? nullptr : Pos(n);
    }

private:
    struct Node {
        TYPE value;
        Node* prev;
        Node* next;
    };
    static POSITION Pos(Node* n) { return reinterpret_cast<POSITION>(n); }
    static Node* NodeOf(POSITION p) { return reinterpret_cast<Node*>(p); }
    void Link(Node* n) {
        (n->prev ? n->prev->next : m_head) = n;
        (n->next ? n->next->prev : m_tail) = n;
        ++m_count;
    }
    Node* m_head = nullptr;
    Node* m_tail = nullptr;
    INT_PTR m_count = 0;
};

class CStringList : public CList<CString, const CString&> {};

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
    BOOL RemoveKey(ARG_KEY key) { return m_map.erase(key) > 0; }
    void RemoveAll() { m_map.clear(); }
    auto begin() const { return m_map.begin(); }
    auto end() const { return m_map.end(); }

private:
    std::map<KEY, VALUE> m_map;
};
