#include "afxres_p.h"
#include "controls_p.h"

#include <vector>

struct CImageList::Impl {
    int cx = 16;
    int cy = 16;
    std::vector<QPixmap> images;
    bool created = false;
};

namespace afxi {
QPixmap IconPixmap(HICON icon) {
    return icon ? icon->pixmap : QPixmap();
}
QPixmap ImageListPixmap(CImageList* list, int index) {
    if (!list || index < 0 || index >= list->GetImageCount())
        return QPixmap();
    return list->impl()->images[size_t(index)];
}
} // namespace afxi

CImageList::CImageList() : m_impl(std::make_unique<Impl>()) {}
CImageList::~CImageList() = default;

BOOL CImageList::Create(int cx, int cy, UINT, int nInitial, int) {
    m_impl->cx = cx > 0 ? cx : 16;
    m_impl->cy = cy > 0 ? cy : 16;
    m_impl->images.clear();
    m_impl->images.reserve(size_t(std::max(0, nInitial)));
    m_impl->created = true;
    return TRUE;
}

int CImageList::Add(HICON hIcon) {
    if (!m_impl->created || !hIcon)
        return -1;
    QPixmap pm = hIcon->pixmap;
    if (pm.width() != m_impl->cx || pm.height() != m_impl->cy)
        pm = pm.scaled(m_impl->cx, m_impl->cy, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    m_impl->images.push_back(pm);
    return int(m_impl->images.size()) - 1;
}

int CImageList::GetImageCount() const {
    return int(m_impl->images.size());
}

BOOL CImageList::Remove(int nImage) {
    if (nImage < 0) {
        m_impl->images.clear();
        return TRUE;
    }
    if (nImage >= GetImageCount())
        return FALSE;
    m_impl->images.erase(m_impl->images.begin() + nImage);
    return TRUE;
}

BOOL CImageList::GetIconSize(int& cx, int& cy) const {
    cx = m_impl->cx;
    cy = m_impl->cy;
    return m_impl->created;
}

HIMAGELIST CImageList::GetSafeHandle() const {
    return m_impl->created ? reinterpret_cast<HIMAGELIST>(m_impl.get()) : nullptr;
}

QPixmap AfxIconPixmap(HICON icon) {
    return afxi::IconPixmap(icon);
}
