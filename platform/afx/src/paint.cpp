#include "controls_p.h"

#include <QPaintEvent>
#include <QPainter>

#include <vector>

namespace afxi {
namespace {
struct PaintRun {
    HWND hwnd;
    QPainter* painter;
};
thread_local std::vector<PaintRun> t_paints;

QColor Col(COLORREF c) {
    return QColor(GetRValue(c), GetGValue(c), GetBValue(c));
}
COLORREF Ref(const QColor& c) {
    return RGB(c.red(), c.green(), c.blue());
}
} // namespace

QPainter* PainterFor(HWND h) {
    for (auto it = t_paints.rbegin(); it != t_paints.rend(); ++it)
        if (it->hwnd == h)
            return it->painter;
    return nullptr;
}
} // namespace afxi

using namespace afxi;

void AfxWindow::paintEvent(QPaintEvent* e) {
    HWND h = HandleOf(this);
    WindowData* d = Lookup(h);
    if (!d || !d->wnd || d->widget != this) {
        QWidget::paintEvent(e);
        return;
    }
    QPainter painter(this);
    t_paints.push_back({h, &painter});
    Frame f{nullptr, nullptr, false};
    Send(h, WM_PAINT, 0, 0, &f);
    t_paints.pop_back();
}

CDC::~CDC() = default;

static QPainter* P(void* p) {
    return static_cast<QPainter*>(p);
}

COLORREF CDC::SetTextColor(COLORREF c) {
    const COLORREF old = m_text;
    m_text = c;
    return old;
}
COLORREF CDC::SetBkColor(COLORREF c) {
    const COLORREF old = m_back;
    m_back = c;
    return old;
}
int CDC::SetBkMode(int mode) {
    const int old = m_bkMode;
    m_bkMode = mode;
    return old;
}
CFont* CDC::SelectObject(CFont* pFont) {
    CFont* old = m_font;
    m_font = pFont;
    if (m_painter && pFont)
        P(m_painter)->setFont(pFont->impl()->font);
    return old;
}
CPen* CDC::SelectObject(CPen* pPen) {
    CPen* old = m_pen;
    m_pen = pPen;
    return old;
}
CBrush* CDC::SelectObject(CBrush* pBrush) {
    CBrush* old = m_brush;
    m_brush = pBrush;
    return old;
}

void CDC::FillSolidRect(const RECT* r, COLORREF c) {
    if (m_painter && r)
        P(m_painter)->fillRect(QRect(r->left, r->top, r->right - r->left, r->bottom - r->top),
                               Col(c));
}
void CDC::FillSolidRect(int x, int y, int cx, int cy, COLORREF c) {
    const CRect r(x, y, x + cx, y + cy);
    FillSolidRect(&r, c);
}
BOOL CDC::FillRect(const RECT* r, CBrush* pBrush) {
    if (!pBrush)
        return FALSE;
    FillSolidRect(r, pBrush->color);
    return TRUE;
}
void CDC::FrameRect(const RECT* r, CBrush* pBrush) {
    if (!m_painter || !r || !pBrush)
        return;
    P(m_painter)->setPen(Col(pBrush->color));
    P(m_painter)->setBrush(Qt::NoBrush);
    P(m_painter)->drawRect(QRect(r->left, r->top, r->right - r->left - 1, r->bottom - r->top - 1));
}
void CDC::Draw3dRect(const RECT* r, COLORREF tl, COLORREF br) {
    if (!m_painter || !r)
        return;
    QPainter* p = P(m_painter);
    p->setPen(Col(tl));
    p->drawLine(r->left, r->top, r->right - 1, r->top);
    p->drawLine(r->left, r->top, r->left, r->bottom - 1);
    p->setPen(Col(br));
    p->drawLine(r->left, r->bottom - 1, r->right - 1, r->bottom - 1);
    p->drawLine(r->right - 1, r->top, r->right - 1, r->bottom - 1);
}
BOOL CDC::Rectangle(const RECT* r) {
    if (!m_painter || !r)
        return FALSE;
    QPainter* p = P(m_painter);
    p->setPen(m_pen && m_pen->valid ? QPen(Col(m_pen->color), m_pen->width) : QPen(Qt::black));
    p->setBrush(m_brush && m_brush->valid ? QBrush(Col(m_brush->color)) : QBrush(Qt::white));
    p->drawRect(QRect(r->left, r->top, r->right - r->left - 1, r->bottom - r->top - 1));
    return TRUE;
}
CPoint CDC::MoveTo(int x, int y) {
    const CPoint old = m_pos;
    m_pos = CPoint(x, y);
    return old;
}
BOOL CDC::LineTo(int x, int y) {
    if (!m_painter)
        return FALSE;
    QPainter* p = P(m_painter);
    QPen pen(m_pen && m_pen->valid ? Col(m_pen->color) : QColor(Qt::black));
    pen.setWidth(m_pen && m_pen->valid ? m_pen->width : 1);
    if (m_pen && m_pen->style == PS_DASH)
        pen.setStyle(Qt::DashLine);
    else if (m_pen && m_pen->style == PS_DOT)
        pen.setStyle(Qt::DotLine);
    p->setPen(pen);
    p->drawLine(m_pos.x, m_pos.y, x, y);
    m_pos = CPoint(x, y);
    return TRUE;
}
BOOL CDC::TextOut(int x, int y, const CString& text) {
    if (!m_painter)
        return FALSE;
    QPainter* p = P(m_painter);
    const QString s = Q(text);
    const QFontMetrics fm = p->fontMetrics();
    if (m_bkMode == OPAQUE)
        p->fillRect(QRect(x, y, fm.horizontalAdvance(s), fm.height()), Col(m_back));
    p->setPen(Col(m_text));
    p->drawText(x, y + fm.ascent(), s);
    return TRUE;
}
int CDC::DrawText(const CString& text, RECT* r, UINT nFormat) {
    if (!m_painter || !r)
        return 0;
    QPainter* p = P(m_painter);
    QString s = Q(text);
    if (!(nFormat & DT_NOPREFIX))
        s.replace(QLatin1String("&&"), QLatin1String("\x01")).remove('&').replace('\x01', '&');
    int flags = (nFormat & DT_CENTER) ? Qt::AlignHCenter
                                      : ((nFormat & DT_RIGHT) ? Qt::AlignRight : Qt::AlignLeft);
    if (nFormat & DT_SINGLELINE)
        flags |= (nFormat & DT_VCENTER) ? Qt::AlignVCenter
                                        : ((nFormat & DT_BOTTOM) ? Qt::AlignBottom : Qt::AlignTop);
    else
        flags |= Qt::AlignTop;
    if (nFormat & DT_WORDBREAK)
        flags |= Qt::TextWordWrap;
    QRect qr(r->left, r->top, r->right - r->left, r->bottom - r->top);
    const QFontMetrics fm = p->fontMetrics();
    if (nFormat & DT_CALCRECT) {
        const QRect need = fm.boundingRect(qr.width() > 0 && (nFormat & DT_WORDBREAK)
                                               ? qr
                                               : QRect(qr.topLeft(), QSize(100000, 100000)),
                                           flags, s);
        r->right = r->left + need.width();
        r->bottom = r->top + need.height();
        return need.height();
    }
    if (nFormat & DT_END_ELLIPSIS)
        s = fm.elidedText(s, Qt::ElideRight, qr.width());
    if (m_bkMode == OPAQUE)
        p->fillRect(qr, Col(m_back));
    p->setPen(Col(m_text));
    QRect used;
    p->drawText(qr, flags, s, &used);
    return used.height();
}
CSize CDC::GetTextExtent(const CString& text) const {
    if (!m_painter)
        return CSize();
    const QFontMetrics fm = P(m_painter)->fontMetrics();
    return CSize(fm.horizontalAdvance(Q(text)), fm.height());
}
BOOL CDC::DrawIcon(int x, int y, HICON hIcon) {
    if (!m_painter || !hIcon)
        return FALSE;
    P(m_painter)->drawPixmap(x, y, IconPixmap(hIcon));
    return TRUE;
}

CPaintDC::CPaintDC(CWnd* pWnd) {
    QPainter* p = pWnd ? PainterFor(pWnd->GetSafeHwnd()) : nullptr;
    m_painter = p;
    if (p) {
        p->save();
        const QPalette& pal =
            p->device() ? static_cast<QWidget*>(p->device())->palette() : QPalette();
        m_back = Ref(pal.color(QPalette::Window));
        m_text = Ref(pal.color(QPalette::WindowText));
    }
}

CPaintDC::~CPaintDC() {
    if (m_painter)
        P(m_painter)->restore();
}
