// CWnd: geometry, styles, dialog items, focus, timers, and the message dispatch to the
// named handlers.
#include "controls_p.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QScreen>
#include <QTimer>

#include <cmath>

using namespace afxi;

// ---------------------------------------------------------------- CFont
CFont::CFont() : m_impl(std::make_unique<Impl>()) {}
CFont::~CFont() = default;
// ---------------------------------------------------------------- CWnd
CWnd::CWnd() = default;

CWnd::~CWnd() {
    if (!m_hWnd)
        return;
    WindowData* d = Lookup(m_hWnd);
    if (d && d->wnd == this) {
        if (d->destroying) {
            d->wnd = nullptr; // deleted from inside its own destruction
        } else {
            DestroyTree(m_hWnd);
        }
    }
    m_hWnd = nullptr;
}

CWnd* CWnd::FromHandle(HWND h) {
    return WndOf(h);
}

CWnd* CWnd::GetFocus() {
    QWidget* w = QApplication::focusWidget();
    return w ? WndOf(HandleOf(w)) : nullptr;
}

namespace {
HWND g_capture = nullptr;
}

CWnd* CWnd::GetCapture() {
    return g_capture ? WndOf(g_capture) : nullptr;
}

CWnd* CWnd::SetCapture() {
    CWnd* old = GetCapture();
    g_capture = m_hWnd;
    return old;
}

BOOL ReleaseCapture() {
    g_capture = nullptr;
    return TRUE;
}

HCURSOR LoadCursor(HINSTANCE, const char* lpCursorName) {
    const auto id = reinterpret_cast<uintptr_t>(lpCursorName);
    return id >= 32512 && id <= 32660 ? reinterpret_cast<HCURSOR>(id) : nullptr;
}

HCURSOR SetCursor(HCURSOR h) {
    Qt::CursorShape shape = Qt::ArrowCursor;
    switch (reinterpret_cast<uintptr_t>(h)) {
    case 32513:
        shape = Qt::IBeamCursor;
        break;
    case 32514:
        shape = Qt::WaitCursor;
        break;
    case 32645:
        shape = Qt::SplitVCursor;
        break;
    case 32644:
        shape = Qt::SplitHCursor;
        break;
    case 32649:
        shape = Qt::PointingHandCursor;
        break;
    default:
        break;
    }
    QWidget* w = nullptr;
    if (Frame* f = CurrentFrame(); f && f->target && f->target->isWidgetType())
        w = static_cast<QWidget*>(f->target);
    else
        w = WidgetOf(g_capture);
    HCURSOR old = nullptr;
    if (w) {
        old = reinterpret_cast<HCURSOR>(uintptr_t(32512));
        w->setCursor(shape);
    }
    return old;
}

BOOL CWnd::CreateFromKind(int kind, const char* text, DWORD style, const RECT& rect, CWnd* pParent,
                          UINT nID) {
    if (m_hWnd)
        return FALSE;
    InitUi();
    QWidget* parentWidget = pParent ? WidgetOf(pParent->m_hWnd) : nullptr;
    if (pParent && !parentWidget)
        return FALSE;
    QWidget* w = MakeWidget(kind, style, text, parentWidget);
    if (!w)
        return FALSE;
    HWND h = Register(w, kind, nID, style);
    Lookup(h)->wnd = this;
    m_hWnd = h;
    const CRect r(rect);
    w->setGeometry(r.left, r.top, r.Width(), r.Height());
    w->setEnabled(!(style & WS_DISABLED));
    ConnectNotifications(h, kind);
    if (OnCreate() == -1) {
        DestroyWindow();
        return FALSE;
    }
    if (m_hWnd && (style & WS_VISIBLE))
        w->show();
    return m_hWnd != nullptr;
}

BOOL CWnd::Create(const char*, const char* lpszWindowName, DWORD dwStyle, const RECT& rect,
                  CWnd* pParentWnd, UINT nID) {
    return CreateFromKind(KWindow, lpszWindowName, dwStyle, rect, pParentWnd, nID);
}

BOOL CWnd::DestroyWindow() {
    if (!m_hWnd || !Lookup(m_hWnd))
        return FALSE;
    DestroyTree(m_hWnd);
    return TRUE;
}

BOOL CWnd::Attach(HWND h) {
    WindowData* d = Lookup(h);
    if (!d || m_hWnd || (d->wnd && d->wnd != this))
        return FALSE;
    d->wnd = this;
    m_hWnd = h;
    return TRUE;
}

HWND CWnd::Detach() {
    HWND h = m_hWnd;
    if (WindowData* d = Lookup(h); d && d->wnd == this)
        d->wnd = nullptr;
    m_hWnd = nullptr;
    return h;
}

BOOL CWnd::SubclassDlgItem(UINT nID, CWnd* pParent) {
    CWnd* item = pParent ? pParent->GetDlgItem(int(nID)) : nullptr;
    if (!item)
        return FALSE;
    if (item == this)
        return TRUE;
    return Attach(item->m_hWnd);
}

BOOL CWnd::ShowWindow(int nCmdShow) {
    QWidget* w = WidgetOf(m_hWnd);
    if (!w)
        return FALSE;
    const BOOL was = w->isVisible();
    const bool show = nCmdShow != SW_HIDE;
    if (show != !w->isHidden()) {
        w->setVisible(show);
        Send(m_hWnd, WM_SHOWWINDOW, show, 0);
    }
    return was;
}

BOOL CWnd::IsWindowVisible() const {
    QWidget* w = WidgetOf(m_hWnd);
    return w && w->isVisible();
}

BOOL CWnd::EnableWindow(BOOL bEnable) {
    QWidget* w = WidgetOf(m_hWnd);
    if (!w)
        return FALSE;
    const BOOL wasDisabled = !w->isEnabled();
    w->setEnabled(bEnable);
    return wasDisabled;
}

BOOL CWnd::IsWindowEnabled() const {
    QWidget* w = WidgetOf(m_hWnd);
    return w && w->isEnabled();
}

void CWnd::MoveWindow(int x, int y, int nWidth, int nHeight, BOOL) {
    if (QWidget* w = WidgetOf(m_hWnd))
        w->setGeometry(x, y, std::max(0, nWidth), std::max(0, nHeight));
}

void CWnd::MoveWindow(const RECT* r, BOOL bRepaint) {
    if (r)
        MoveWindow(r->left, r->top, r->right - r->left, r->bottom - r->top, bRepaint);
}

BOOL CWnd::SetWindowPos(const CWnd* pAfter, int x, int y, int cx, int cy, UINT nFlags) {
    QWidget* w = WidgetOf(m_hWnd);
    if (!w)
        return FALSE;
    if (!(nFlags & SWP_NOMOVE))
        w->move(x, y);
    if (!(nFlags & SWP_NOSIZE))
        w->resize(std::max(0, cx), std::max(0, cy));
    if (!(nFlags & SWP_NOZORDER) && pAfter == nullptr)
        w->raise();
    if (nFlags & SWP_SHOWWINDOW)
        ShowWindow(SW_SHOW);
    if (nFlags & SWP_HIDEWINDOW)
        ShowWindow(SW_HIDE);
    return TRUE;
}

void CWnd::GetClientRect(RECT* r) const {
    QWidget* w = WidgetOf(m_hWnd);
    *r = w ? CRect(0, 0, w->width(), w->height()) : CRect();
}

void CWnd::GetWindowRect(RECT* r) const {
    QWidget* w = WidgetOf(m_hWnd);
    if (!w) {
        *r = CRect();
        return;
    }
    const QPoint tl = w->mapToGlobal(QPoint(0, 0));
    *r = CRect(tl.x(), tl.y(), tl.x() + w->width(), tl.y() + w->height());
}

void CWnd::ScreenToClient(POINT* p) const {
    if (QWidget* w = WidgetOf(m_hWnd)) {
        const QPoint q = w->mapFromGlobal(QPoint(p->x, p->y));
        p->x = q.x();
        p->y = q.y();
    }
}

void CWnd::ScreenToClient(RECT* r) const {
    POINT a{r->left, r->top}, b{r->right, r->bottom};
    ScreenToClient(&a);
    ScreenToClient(&b);
    *r = CRect(a.x, a.y, b.x, b.y);
}

void CWnd::ClientToScreen(POINT* p) const {
    if (QWidget* w = WidgetOf(m_hWnd)) {
        const QPoint q = w->mapToGlobal(QPoint(p->x, p->y));
        p->x = q.x();
        p->y = q.y();
    }
}

void CWnd::ClientToScreen(RECT* r) const {
    POINT a{r->left, r->top}, b{r->right, r->bottom};
    ClientToScreen(&a);
    ClientToScreen(&b);
    *r = CRect(a.x, a.y, b.x, b.y);
}

void CWnd::CenterWindow(CWnd* pAlternateOwner) {
    QWidget* w = WidgetOf(m_hWnd);
    if (!w)
        return;
    QRect area;
    QWidget* owner = pAlternateOwner ? WidgetOf(pAlternateOwner->m_hWnd) : w->parentWidget();
    if (owner && w->isWindow())
        area = QRect(owner->mapToGlobal(QPoint(0, 0)), owner->size());
    else if (owner)
        area = owner->rect();
    else if (QScreen* s = QGuiApplication::primaryScreen())
        area = s->availableGeometry();
    w->move(area.center() - QPoint(w->width() / 2, w->height() / 2));
}

DWORD CWnd::GetStyle() const {
    WindowData* d = Lookup(m_hWnd);
    if (!d)
        return 0;
    DWORD s = d->style & ~(WS_VISIBLE | WS_DISABLED);
    if (d->widget && !d->widget->isHidden())
        s |= WS_VISIBLE;
    if (d->widget && !d->widget->isEnabled())
        s |= WS_DISABLED;
    return s;
}

BOOL CWnd::ModifyStyle(DWORD dwRemove, DWORD dwAdd, UINT) {
    WindowData* d = Lookup(m_hWnd);
    if (!d)
        return FALSE;
    d->style = (d->style & ~dwRemove) | dwAdd;
    if (dwRemove & WS_VISIBLE)
        ShowWindow(SW_HIDE);
    if (dwAdd & WS_VISIBLE)
        ShowWindow(SW_SHOW);
    if (dwAdd & WS_DISABLED)
        EnableWindow(FALSE);
    if (dwRemove & WS_DISABLED)
        EnableWindow(TRUE);
    if (d->kind == KEdit && ((dwAdd | dwRemove) & ES_READONLY))
        if (auto* e = dynamic_cast<CEdit*>(this))
            e->SetReadOnly((d->style & ES_READONLY) != 0);
    return TRUE;
}

CWnd* CWnd::GetParent() const {
    QWidget* w = WidgetOf(m_hWnd);
    if (w && w->isWindow())
        return w->parentWidget() ? WndOf(HandleOf(w->parentWidget())) : nullptr;
    return WndOf(ParentOf(m_hWnd));
}

CWnd* CWnd::GetDlgItem(int nID) const {
    QWidget* w = WidgetOf(m_hWnd);
    if (!w)
        return nullptr;
    // Direct children only, in creation order, as dialog items are.
    for (QObject* o : w->children()) {
        if (!o->isWidgetType())
            continue;
        const QVariant v = o->property(kHandleProp);
        if (!v.isValid())
            continue;
        HWND h = reinterpret_cast<HWND>(v.value<qulonglong>());
        WindowData* d = Lookup(h);
        if (d && int(d->ctrlId) == nID && !static_cast<QWidget*>(o)->isWindow())
            return WndOf(h);
    }
    return nullptr;
}

int CWnd::GetDlgCtrlID() const {
    WindowData* d = Lookup(m_hWnd);
    return d ? int(d->ctrlId) : 0;
}

BOOL CWnd::IsChild(const CWnd* pWnd) const {
    QWidget* w = WidgetOf(m_hWnd);
    QWidget* c = pWnd ? WidgetOf(pWnd->m_hWnd) : nullptr;
    return w && c && w != c && w->isAncestorOf(c);
}

void CWnd::SetDlgItemText(int nID, const char* text) {
    if (CWnd* c = GetDlgItem(nID))
        c->SetWindowText(text);
}

int CWnd::GetDlgItemText(int nID, CString& text) const {
    text.Empty();
    if (CWnd* c = GetDlgItem(nID))
        c->GetWindowText(text);
    return text.GetLength();
}

void CWnd::SetDlgItemInt(int nID, UINT value, BOOL bSigned) {
    CString s;
    if (bSigned)
        s.Format("%d", int(value));
    else
        s.Format("%u", value);
    SetDlgItemText(nID, s.GetString());
}

UINT CWnd::GetDlgItemInt(int nID, BOOL* lpTrans, BOOL bSigned) const {
    CString s;
    GetDlgItemText(nID, s);
    s.Trim();
    bool ok = false;
    const QString q = Q(s);
    const UINT v = bSigned ? UINT(q.toInt(&ok)) : q.toUInt(&ok);
    if (lpTrans)
        *lpTrans = ok;
    return ok ? v : 0;
}

void CWnd::CheckDlgButton(int nID, UINT nCheck) {
    if (auto* b = dynamic_cast<CButton*>(GetDlgItem(nID)))
        b->SetCheck(int(nCheck));
}

UINT CWnd::IsDlgButtonChecked(int nID) const {
    auto* b = dynamic_cast<CButton*>(GetDlgItem(nID));
    return b ? UINT(b->GetCheck()) : 0;
}

void CWnd::CheckRadioButton(int nIDFirst, int nIDLast, int nIDCheck) {
    for (int id = nIDFirst; id <= nIDLast; ++id)
        CheckDlgButton(id, id == nIDCheck ? BST_CHECKED : BST_UNCHECKED);
}

CWnd* CWnd::GetNextDlgTabItem(CWnd* pWndCtl, BOOL bPrevious) const {
    QWidget* c = pWndCtl ? WidgetOf(pWndCtl->m_hWnd) : nullptr;
    if (!c)
        return nullptr;
    QWidget* n = bPrevious ? c->previousInFocusChain() : c->nextInFocusChain();
    return n ? WndOf(HandleOf(n)) : nullptr;
}

CWnd* CWnd::SetFocus() {
    CWnd* old = GetFocus();
    if (QWidget* w = WidgetOf(m_hWnd))
        w->setFocus(Qt::OtherFocusReason);
    return old;
}

void CWnd::Invalidate(BOOL) {
    if (QWidget* w = WidgetOf(m_hWnd)) {
        w->update();
        if (auto* a = qobject_cast<QAbstractScrollArea*>(w))
            a->viewport()->update();
    }
}

void CWnd::UpdateWindow() {
    if (QWidget* w = WidgetOf(m_hWnd))
        w->repaint();
}

void CWnd::SetFont(CFont* pFont, BOOL) {
    QWidget* w = WidgetOf(m_hWnd);
    if (w && pFont)
        w->setFont(pFont->impl()->font);
}

CFont* CWnd::GetFont() const {
    WindowData* d = Lookup(m_hWnd);
    if (!d || !d->widget)
        return nullptr;
    if (!d->font)
        d->font = std::make_unique<CFont>();
    d->font->impl()->font = d->widget->font();
    return d->font.get();
}

void CWnd::BringWindowToTop() {
    if (QWidget* w = WidgetOf(m_hWnd)) {
        w->raise();
        if (w->isWindow())
            w->activateWindow();
    }
}

LRESULT CWnd::SendMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    return m_hWnd ? Send(m_hWnd, message, wParam, lParam) : 0;
}

BOOL CWnd::PostMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    return ::PostMessage(m_hWnd, message, wParam, lParam);
}

BOOL PostMessage(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (!Lookup(hWnd))
        return FALSE;
    PostTo(hWnd, message, wParam, lParam);
    return TRUE;
}

LRESULT SendMessage(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam) {
    return Send(hWnd, message, wParam, lParam);
}

BOOL IsWindow(HWND hWnd) {
    return Lookup(hWnd) != nullptr;
}

UINT_PTR CWnd::SetTimer(UINT_PTR nIDEvent, UINT nElapse, void*) {
    WindowData* d = Lookup(m_hWnd);
    if (!d || !d->widget)
        return 0;
    QTimer*& t = d->timers[nIDEvent];
    if (!t) {
        t = new QTimer(d->widget);
        HWND h = m_hWnd;
        QObject::connect(t, &QTimer::timeout, [h, nIDEvent] { Send(h, WM_TIMER, nIDEvent, 0); });
    }
    t->start(int(std::max<UINT>(nElapse, 1)));
    return nIDEvent;
}

BOOL CWnd::KillTimer(UINT_PTR nIDEvent) {
    WindowData* d = Lookup(m_hWnd);
    if (!d)
        return FALSE;
    const auto it = d->timers.find(nIDEvent);
    if (it == d->timers.end())
        return FALSE;
    delete it->second;
    d->timers.erase(it);
    return TRUE;
}

LRESULT CWnd::Default() {
    if (Frame* f = CurrentFrame()) {
        f->defaultRequested = true;
        if (f->deliverOnDefault)
            DeliverNow(*f);
    }
    return 0;
}

void CWnd::NotifyParent(UINT code) {
    NotifyCommand(m_hWnd, code);
}

LRESULT CWnd::NotifyParent(NMHDR* hdr) {
    return NotifyHdr(m_hWnd, hdr);
}

static CPoint PointOf(LPARAM lp) {
    return CPoint(short(LOWORD(lp)), short(HIWORD(lp)));
}

LRESULT CWnd::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_COMMAND:
        if (OnCommand(wParam, lParam))
            return 0;
        break;
    case WM_NOTIFY: {
        LRESULT r = 0;
        if (OnNotify(wParam, lParam, &r))
            return r;
        break;
    }
    case WM_TIMER:
        OnTimer(wParam);
        return 0;
    case WM_SIZE:
        OnSize(UINT(wParam), LOWORD(lParam), HIWORD(lParam));
        return 0;
    case WM_DESTROY:
        OnDestroy();
        return 0;
    case WM_CONTEXTMENU:
        OnContextMenu(FromHandle(reinterpret_cast<HWND>(wParam)), PointOf(lParam));
        return 0;
    case WM_LBUTTONDOWN:
        OnLButtonDown(UINT(wParam), PointOf(lParam));
        return 0;
    case WM_LBUTTONUP:
        OnLButtonUp(UINT(wParam), PointOf(lParam));
        return 0;
    case WM_LBUTTONDBLCLK:
        OnLButtonDblClk(UINT(wParam), PointOf(lParam));
        return 0;
    case WM_RBUTTONDOWN:
        OnRButtonDown(UINT(wParam), PointOf(lParam));
        return 0;
    case WM_RBUTTONUP:
        OnRButtonUp(UINT(wParam), PointOf(lParam));
        return 0;
    case WM_MOUSEMOVE:
        OnMouseMove(UINT(wParam), PointOf(lParam));
        return 0;
    case WM_MOUSEWHEEL:
        return OnMouseWheel(LOWORD(wParam), short(HIWORD(wParam)), PointOf(lParam));
    case WM_KEYDOWN:
        OnKeyDown(UINT(wParam), 1, UINT(lParam >> 16));
        return 0;
    case WM_KEYUP:
        OnKeyUp(UINT(wParam), 1, UINT(lParam >> 16));
        return 0;
    case WM_CHAR:
        OnChar(UINT(wParam), 1, UINT(lParam >> 16));
        return 0;
    case WM_SETFOCUS:
        OnSetFocus(FromHandle(reinterpret_cast<HWND>(wParam)));
        return 0;
    case WM_KILLFOCUS:
        OnKillFocus(FromHandle(reinterpret_cast<HWND>(wParam)));
        return 0;
    case WM_SHOWWINDOW:
        OnShowWindow(BOOL(wParam), UINT(lParam));
        return 0;
    case WM_VSCROLL:
        OnVScroll(LOWORD(wParam), HIWORD(wParam), FromHandle(reinterpret_cast<HWND>(lParam)));
        return 0;
    case WM_HSCROLL:
        OnHScroll(LOWORD(wParam), HIWORD(wParam), FromHandle(reinterpret_cast<HWND>(lParam)));
        return 0;
    case WM_HELP:
        return OnHelpInfo(reinterpret_cast<HELPINFO*>(lParam));
    case WM_CLOSE:
        OnClose();
        return 0;
    case WM_SETTEXT:
        SetWindowText(reinterpret_cast<const char*>(lParam));
        return TRUE;
    default:
        break;
    }
    return DefWindowProc(message, wParam, lParam);
}

LRESULT CWnd::DefWindowProc(UINT, WPARAM, LPARAM) {
    return 0;
}
BOOL CWnd::PreTranslateMessage(MSG*) {
    return FALSE;
}
BOOL CWnd::OnCommand(WPARAM, LPARAM) {
    return FALSE;
}
BOOL CWnd::OnNotify(WPARAM, LPARAM, LRESULT*) {
    return FALSE;
}
BOOL CWnd::OnChildNotify(UINT, WPARAM, LPARAM, LRESULT*) {
    return FALSE;
}
int CWnd::OnCreate() {
    return 0;
}
void CWnd::OnDestroy() {}
void CWnd::PostNcDestroy() {}
void CWnd::OnSize(UINT, int, int) {}
void CWnd::OnTimer(UINT_PTR) {}
void CWnd::OnContextMenu(CWnd*, CPoint) {
    Default();
}
void CWnd::OnLButtonDown(UINT, CPoint) {
    Default();
}
void CWnd::OnLButtonUp(UINT, CPoint) {
    Default();
}
void CWnd::OnLButtonDblClk(UINT, CPoint) {
    Default();
}
void CWnd::OnRButtonDown(UINT, CPoint) {
    Default();
}
void CWnd::OnRButtonUp(UINT, CPoint) {
    Default();
}
void CWnd::OnMouseMove(UINT, CPoint) {
    Default();
}
BOOL CWnd::OnMouseWheel(UINT, short, CPoint) {
    Default();
    return TRUE;
}
void CWnd::OnKeyDown(UINT, UINT, UINT) {
    Default();
}
void CWnd::OnKeyUp(UINT, UINT, UINT) {
    Default();
}
void CWnd::OnChar(UINT, UINT, UINT) {
    Default();
}
void CWnd::OnSetFocus(CWnd*) {}
void CWnd::OnKillFocus(CWnd*) {}
void CWnd::OnShowWindow(BOOL, UINT) {}
void CWnd::OnVScroll(UINT, UINT, CWnd*) {}
void CWnd::OnHScroll(UINT, UINT, CWnd*) {}
BOOL CWnd::OnHelpInfo(HELPINFO*) {
    return FALSE;
}
void CWnd::OnClose() {
    Default();
}
