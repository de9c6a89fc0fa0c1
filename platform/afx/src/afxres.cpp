#include "afxres_p.h"

#include <atomic>

#include <QImage>

#include <algorithm>
#include <vector>

namespace afx_internal {
std::mutex& ResourceMutex() {
    static std::mutex m;
    return m;
}
static std::vector<HINSTANCE>& HandleList() {
    static std::vector<HINSTANCE> v;
    return v;
}
std::vector<HINSTANCE> AllHandles() {
    std::lock_guard<std::mutex> lock(ResourceMutex());
    std::vector<HINSTANCE> v{AfxGetInstanceHandle()};
    v.insert(v.end(), HandleList().begin(), HandleList().end());
    return v;
}
} // namespace afx_internal

using afx_internal::ResourceMutex;

namespace {
HINSTANCE__& ProgramHandle() {
    static HINSTANCE__ h{"program", {}, {}, {}, {}, nullptr, nullptr};
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
    std::lock_guard<std::mutex> lock(ResourceMutex());
    afx_internal::HandleList().push_back(h);
    return h;
}

void AfxFreeResourceHandle(HINSTANCE h) {
    if (!h || h == AfxGetInstanceHandle())
        return;
    HINSTANCE expected = h;
    g_resourceHandle.compare_exchange_strong(expected, nullptr);
    {
        std::lock_guard<std::mutex> lock(ResourceMutex());
        auto& list = afx_internal::HandleList();
        list.erase(std::remove(list.begin(), list.end(), h), list.end());
    }
    delete h;
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

namespace {
// Looks in `h` first, then in every handle: dialogs opened from a module's own handlers
// find the module's templates without a resource scope.
template <class Map, class Get>
auto FindIn(HINSTANCE h, UINT id, Get get) -> decltype(get(h)->find(id)->second.get()) {
    std::vector<HINSTANCE> order;
    if (h)
        order.push_back(h);
    for (HINSTANCE x : afx_internal::AllHandles())
        if (x != h)
            order.push_back(x);
    std::lock_guard<std::mutex> lock(ResourceMutex());
    for (HINSTANCE x : order) {
        Map* m = get(x);
        const auto it = m->find(id);
        if (it != m->end())
            return it->second.get();
    }
    return nullptr;
}
} // namespace

void AfxRegisterDialog(HINSTANCE h, const DlgTemplate& tmpl) {
    if (!h)
        return;
    std::lock_guard<std::mutex> lock(ResourceMutex());
    h->dialogs[tmpl.id] = std::make_unique<DlgTemplate>(tmpl);
}

const DlgTemplate* AfxFindDialogTemplate(HINSTANCE h, UINT id) {
    using M = std::map<UINT, std::unique_ptr<DlgTemplate>>;
    return FindIn<M>(h, id, [](HINSTANCE x) { return &x->dialogs; });
}

void AfxRegisterMenu(HINSTANCE h, const MenuTemplate& tmpl) {
    if (!h)
        return;
    std::lock_guard<std::mutex> lock(ResourceMutex());
    h->menus[tmpl.id] = std::make_unique<MenuTemplate>(tmpl);
}

const MenuTemplate* AfxFindMenuTemplate(HINSTANCE h, UINT id) {
    using M = std::map<UINT, std::unique_ptr<MenuTemplate>>;
    return FindIn<M>(h, id, [](HINSTANCE x) { return &x->menus; });
}

static void StoreIcon(HINSTANCE h, UINT id, const QImage& img) {
    if (!h || img.isNull())
        return;
    auto icon = std::make_unique<HICON__>();
    icon->pixmap = QPixmap::fromImage(img);
    std::lock_guard<std::mutex> lock(ResourceMutex());
    h->icons[id] = std::move(icon);
}

void AfxRegisterIconData(HINSTANCE h, UINT id, const unsigned char* bytes, size_t size) {
    QImage img;
    img.loadFromData(bytes, int(size));
    StoreIcon(h, id, img);
}

void AfxRegisterIconXpm(HINSTANCE h, UINT id, const char* const* xpm) {
    StoreIcon(h, id, QImage(xpm));
}

void AfxRegisterIconPixels(HINSTANCE h, UINT id, int width, int height, const uint32_t* argb) {
    if (!argb || width <= 0 || height <= 0)
        return;
    QImage img(width, height, QImage::Format_ARGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            img.setPixel(x, y, argb[y * width + x]);
    StoreIcon(h, id, img);
}

HICON AfxFindIcon(HINSTANCE h, UINT id) {
    using M = std::map<UINT, std::unique_ptr<HICON__>>;
    return FindIn<M>(h, id, [](HINSTANCE x) { return &x->icons; });
}
