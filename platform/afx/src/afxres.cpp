#include "afxres_p.h"

#include <atomic>

namespace afx_internal {
std::mutex& ResourceMutex() {
    static std::mutex m;
    return m;
}
} // namespace afx_internal

using afx_internal::ResourceMutex;

namespace {
HINSTANCE__& ProgramHandle() {
    static HINSTANCE__ h{"program", {}};
    return h;
}
std::atomic<HINSTANCE> g_resourceHandle{nullptr};
} // namespace

HINSTANCE AfxGetInstanceHandle() {
    return &ProgramHandle();
}

HINSTANCE AfxGetResourceHandle() {
    HINSTANCE h = g_resourceHandle.load();
    return h ? h : AfxGetInstanceHandle();
}

void AfxSetResourceHandle(HINSTANCE h) {
    g_resourceHandle.store(h);
}

HINSTANCE AfxCreateResourceHandle(const char* name) {
    auto* h = new HINSTANCE__;
    h->name = name ? name : "";
    return h;
}

void AfxFreeResourceHandle(HINSTANCE h) {
    if (!h || h == AfxGetInstanceHandle())
        return;
    HINSTANCE expected = h;
    g_resourceHandle.compare_exchange_strong(expected, nullptr);
    delete h;
}

const char* AfxGetResourceHandleName(HINSTANCE h) {
    return h ? h->name.c_str() : "";
}

void AfxRegisterString(HINSTANCE h, UINT id, const char* text) {
    if (!h)
        return;
    std::lock_guard<std::mutex> lock(ResourceMutex());
    h->strings[id] = text ? text : "";
}

void AfxRegisterStringTable(HINSTANCE h,
                            std::initializer_list<std::pair<UINT, const char*>> table) {
    if (!h)
        return;
    std::lock_guard<std::mutex> lock(ResourceMutex());
    for (const auto& [id, text] : table)
        h->strings[id] = text ? text : "";
}

BOOL AfxLoadStringFrom(HINSTANCE h, UINT id, CString& text) {
    if (!h)
        return FALSE;
    std::lock_guard<std::mutex> lock(ResourceMutex());
    const auto it = h->strings.find(id);
    if (it == h->strings.end())
        return FALSE;
    text = it->second;
    return TRUE;
}
