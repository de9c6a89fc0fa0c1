#include "controls_p.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPlainTextEdit>
#include <QScreen>
#include <QThread>
#include <QTimer>
#include <QWheelEvent>

#include <atomic>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace afxi {
namespace {

std::mutex g_regMutex;
std::unordered_map<uintptr_t, WindowData*> g_windows;
uintptr_t g_nextId = 0x1000;
const char* const kHandleProp = "afx_hwnd";

// Lives on the user-interface thread; posted messages are queued calls on it.
std::atomic<QObject*> g_poster{nullptr};

thread_local std::vector<Frame*> t_frames;
QEvent* g_passThrough = nullptr;
QWidget* g_forcedKeyTarget = nullptr;

UINT VirtualKey(const QKeyEvent* ke) {
    const int k = ke->key();
    const bool keypad = ke->modifiers() & Qt::KeypadModifier;
    if (k >= Qt::Key_0 && k <= Qt::Key_9)
        return keypad ? UINT(0x60 + (k - Qt::Key_0)) : UINT('0' + (k - Qt::Key_0));
    if (k >= Qt::Key_A && k <= Qt::Key_Z)
        return UINT('A' + (k - Qt::Key_A));
    if (k >= Qt::Key_F1 && k <= Qt::Key_F12)
        return VK_F1 + UINT(k - Qt::Key_F1);
    switch (k) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return VK_RETURN;
    case Qt::Key_Escape:
        return VK_ESCAPE;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return VK_TAB;
    case Qt::Key_Backspace:
        return VK_BACK;
    case Qt::Key_Delete:
        return VK_DELETE;
    case Qt::Key_Insert:
        return VK_INSERT;
    case Qt::Key_Home:
        return VK_HOME;
    case Qt::Key_End:
        return VK_END;
    case Qt::Key_PageUp:
        return VK_PRIOR;
    case Qt::Key_PageDown:
        return VK_NEXT;
    case Qt::Key_Left:
        return VK_LEFT;
    case Qt::Key_Right:
        return VK_RIGHT;
    case Qt::Key_Up:
        return VK_UP;
    case Qt::Key_Down:
        return VK_DOWN;
    case Qt::Key_Space:
        return VK_SPACE;
    case Qt::Key_Shift:
        return VK_SHIFT;
    case Qt::Key_Control:
        return VK_CONTROL;
    case Qt::Key_Alt:
        return VK_MENU;
    case Qt::Key_Minus:
        return keypad ? 0x6D : 0xBD; // VK_SUBTRACT : VK_OEM_MINUS
    case Qt::Key_Period:
        return keypad ? 0x6E : 0xBE; // VK_DECIMAL : VK_OEM_PERIOD
    case Qt::Key_Plus:
        return keypad ? 0x6B : 0xBB;
    default:
        return UINT(k & 0xFFFF);
    }
}

UINT MouseFlags(Qt::MouseButtons b, Qt::KeyboardModifiers m) {
    UINT f = 0;
    if (b & Qt::LeftButton)
        f |= MK_LBUTTON;
    if (b & Qt::RightButton)
        f |= MK_RBUTTON;
    if (m & Qt::ShiftModifier)
        f |= MK_SHIFT;
    if (m & Qt::ControlModifier)
        f |= MK_CONTROL;
    return f;
}

LPARAM PackPoint(QPoint p) {
    return MAKELPARAM(WORD(short(p.x())), WORD(short(p.y())));
}

// Is `w` the first receiver of a mouse event at `pos`? Parents that get the event by
// propagation have a child under the point.
bool FirstMouseReceiver(QWidget* w, QPoint pos) {
    QWidget* child = w->childAt(pos);
    return !child || child->testAttribute(Qt::WA_TransparentForMouseEvents);
}

bool WantsReturn(HWND h) {
    WindowData* d = Lookup(h);
    return d && d->kind == KEdit && (d->style & ES_MULTILINE) && (d->style & ES_WANTRETURN);
}

class EventHook : public QObject {
public:
    bool eventFilter(QObject* obj, QEvent* ev) override {
        const QEvent::Type t = ev->type();
        switch (t) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseMove:
        case QEvent::Wheel:
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
        case QEvent::ContextMenu:
        case QEvent::FocusIn:
        case QEvent::FocusOut:
        case QEvent::Resize:
        case QEvent::Close:
            break;
        default:
            return false;
        }
        if (ev == g_passThrough || !obj->isWidgetType())
            return false;
        auto* w = static_cast<QWidget*>(obj);
        switch (t) {
        case QEvent::Resize:
        case QEvent::FocusIn:
        case QEvent::FocusOut:
        case QEvent::Close:
            return WindowEvent(w, ev);
        case QEvent::KeyPress:
        case QEvent::KeyRelease:
            return KeyEvent(w, static_cast<QKeyEvent*>(ev));
        default:
            return MouseEvent(w, ev);
        }
    }

private:
    static HWND Exact(QWidget* w) {
        const QVariant v = w->property(kHandleProp);
        return v.isValid() ? reinterpret_cast<HWND>(v.value<qulonglong>()) : nullptr;
    }

    bool WindowEvent(QWidget* w, QEvent* ev) {
        HWND h = Exact(w);
        if (!h) {
            // Focus of a control's inner part (the edit of a combo box) counts as the
            // control's.
            if (ev->type() != QEvent::FocusIn && ev->type() != QEvent::FocusOut)
                return false;
            h = HandleOf(w);
            if (!h || Lookup(h)->kind != KComboEdit)
                return false;
        }
        WindowData* d = Lookup(h);
        if (!d || d->destroying)
            return false;
        switch (ev->type()) {
        case QEvent::Resize: {
            const QSize s = static_cast<QResizeEvent*>(ev)->size();
            Send(h, WM_SIZE, SIZE_RESTORED, MAKELPARAM(WORD(s.width()), WORD(s.height())));
            return false;
        }
        case QEvent::FocusIn:
            Send(h, WM_SETFOCUS, 0, 0);
            if (d->kind == KEdit)
                NotifyCommand(h, EN_SETFOCUS);
            else if (d->kind == KComboList || d->kind == KComboEdit)
                NotifyCommand(h, CBN_SETFOCUS);
            return false;
        case QEvent::FocusOut: {
            QWidget* next = QApplication::focusWidget();
            Send(h, WM_KILLFOCUS, WPARAM(next ? HandleOf(next) : nullptr), 0);
            if (Lookup(h) && d->kind == KEdit)
                NotifyCommand(h, EN_KILLFOCUS);
            else if (Lookup(h) && (d->kind == KComboList || d->kind == KComboEdit))
                NotifyCommand(h, CBN_KILLFOCUS);
            return false;
        }
        case QEvent::Close: {
            Frame f{w, ev, false};
            Send(h, WM_CLOSE, 0, 0, &f);
            if (!f.defaultRequested) {
                ev->ignore();
                return true;
            }
            return false;
        }
        default:
            return false;
        }
    }

    bool KeyEvent(QWidget* w, QKeyEvent* ke) {
        QWidget* target = g_forcedKeyTarget ? g_forcedKeyTarget : QApplication::focusWidget();
        if (w != target)
            return false;
        HWND h = HandleOf(w);
        if (!h)
            return false;
        const UINT vk = VirtualKey(ke);
        const bool down = ke->type() == QEvent::KeyPress;
        const LPARAM lp = LPARAM(ke->isAutoRepeat() ? (1u << 30) : 0) | 1;
        MSG msg{h, down ? WM_KEYDOWN : WM_KEYUP, vk, lp, 0, {0, 0}};
        // Pre-translation walks from the focus window up to its top-level window.
        for (HWND p = h; p; p = ParentOf(p)) {
            CWnd* wnd = Lookup(p) ? Lookup(p)->wnd : nullptr;
            if (wnd && wnd->PreTranslateMessage(&msg))
                return Swallow(ke);
            if (!Lookup(h))
                return Swallow(ke);
        }
        if (down && vk == VK_F1) {
            // Help goes to the focus window, then up to its parents until one takes it.
            HELPINFO info{sizeof(HELPINFO), 1, int(Lookup(h)->ctrlId), h, 0, {0, 0}};
            for (HWND p = h; p; p = ParentOf(p))
                if (Send(p, WM_HELP, 0, LPARAM(&info)))
                    break;
            return Swallow(ke);
        }
        const QString text = ke->text();
        const bool hasChar = down && !text.isEmpty();
        Frame keyFrame{w, ke, !hasChar};
        Send(h, msg.message, vk, lp, &keyFrame);
        if (!keyFrame.defaultRequested || !Lookup(h))
            return Swallow(ke);
        // Enter and Escape that nobody took are the nearest dialog's OK and Cancel.
        if (down && (vk == VK_RETURN || vk == VK_ESCAPE) && !(vk == VK_RETURN && WantsReturn(h))) {
            if (HWND dlg = NearestDialog(h)) {
                CDialog* dialog = DialogOf(dlg);
                const int id = vk == VK_ESCAPE ? IDCANCEL : (dialog ? dialog->GetDefID() : IDOK);
                Send(dlg, WM_COMMAND, MAKEWPARAM(WORD(id), BN_CLICKED), 0);
                return Swallow(ke);
            }
        }
        Frame charFrame{w, ke, true};
        if (hasChar) {
            const UINT ch = UINT(text.toUcs4().value(0));
            MSG cmsg{h, WM_CHAR, ch, lp, 0, {0, 0}};
            for (HWND p = h; p; p = ParentOf(p)) {
                CWnd* wnd = Lookup(p) ? Lookup(p)->wnd : nullptr;
                if (wnd && wnd->PreTranslateMessage(&cmsg))
                    return Swallow(ke);
            }
            Send(h, WM_CHAR, ch, lp, &charFrame);
            if (!charFrame.defaultRequested)
                return Swallow(ke);
        }
        Frame& last = hasChar ? charFrame : keyFrame;
        if (!last.delivered)
            DeliverNow(last);
        return Swallow(ke);
    }

    static bool Swallow(QEvent* ev) {
        ev->accept();
        return true;
    }

    bool MouseEvent(QWidget* w, QEvent* ev) {
        QPoint local;
        QPoint global;
        UINT flags = 0;
        if (ev->type() == QEvent::Wheel) {
            auto* we = static_cast<QWheelEvent*>(ev);
            local = we->position().toPoint();
            global = we->globalPosition().toPoint();
            flags = MouseFlags(we->buttons(), we->modifiers());
        } else if (ev->type() == QEvent::ContextMenu) {
            auto* ce = static_cast<QContextMenuEvent*>(ev);
            local = ce->pos();
            global = ce->globalPos();
        } else {
            auto* me = static_cast<QMouseEvent*>(ev);
            local = me->position().toPoint();
            global = me->globalPosition().toPoint();
            flags = MouseFlags(me->buttons(), me->modifiers());
        }
        if (!FirstMouseReceiver(w, local))
            return false;
        HWND h = HandleOf(w);
        if (!h)
            return false;
        QWidget* hw = WidgetOf(h);
        const QPoint client =
            hw ? w->mapTo(hw->window(), local) - hw->mapTo(hw->window(), QPoint(0, 0)) : local;
        UINT msg = 0;
        WPARAM wp = flags;
        LPARAM lp = PackPoint(client);
        switch (ev->type()) {
        case QEvent::MouseButtonPress: {
            const auto b = static_cast<QMouseEvent*>(ev)->button();
            msg =
                b == Qt::RightButton ? WM_RBUTTONDOWN : (b == Qt::LeftButton ? WM_LBUTTONDOWN : 0);
            break;
        }
        case QEvent::MouseButtonRelease: {
            const auto b = static_cast<QMouseEvent*>(ev)->button();
            msg = b == Qt::RightButton ? WM_RBUTTONUP : (b == Qt::LeftButton ? WM_LBUTTONUP : 0);
            break;
        }
        case QEvent::MouseButtonDblClick:
            msg = static_cast<QMouseEvent*>(ev)->button() == Qt::LeftButton ? WM_LBUTTONDBLCLK : 0;
            break;
        case QEvent::MouseMove:
            msg = WM_MOUSEMOVE;
            break;
        case QEvent::Wheel: {
            const int delta = static_cast<QWheelEvent*>(ev)->angleDelta().y();
            msg = WM_MOUSEWHEEL;
            wp = MAKEWPARAM(WORD(flags), WORD(short(delta)));
            lp = PackPoint(global);
            break;
        }
        case QEvent::ContextMenu:
            msg = WM_CONTEXTMENU;
            wp = WPARAM(h);
            lp = PackPoint(global);
            break;
        default:
            break;
        }
        if (!msg)
            return false;
        Frame f{w, ev, true};
        Send(h, msg, wp, lp, &f);
        if (f.defaultRequested && !f.delivered && Lookup(h))
            DeliverNow(f);
        if (msg == WM_CONTEXTMENU && f.defaultRequested) {
            // Unhandled context menus go to the parent, as they do on the home platform.
            for (HWND p = ParentOf(h); p; p = ParentOf(p)) {
                Frame pf{nullptr, nullptr, false};
                Send(p, WM_CONTEXTMENU, WPARAM(h), lp, &pf);
                if (!pf.defaultRequested)
                    break;
            }
        }
        ev->accept();
        return true;
    }
};

EventHook* g_hook = nullptr;

void ForgetWidget(uintptr_t id) {
    WindowData* d = nullptr;
    {
        std::lock_guard<std::mutex> lock(g_regMutex);
        const auto it = g_windows.find(id);
        if (it == g_windows.end())
            return;
        d = it->second;
        if (d->destroying)
            return; // DestroyTree owns the clean-up
        g_windows.erase(it);
    }
    // The widget went away under us (its owner deleted it): detach the object.
    if (d->wnd)
        d->wnd->m_hWnd = nullptr;
    delete d;
}

} // namespace

void InitUi() {
    if (g_poster.load())
        return;
    // Both live as long as the application object.
    auto* poster = new QObject(qApp);
    g_hook = new EventHook;
    g_hook->setParent(qApp);
    qApp->installEventFilter(g_hook);
    QObject::connect(poster, &QObject::destroyed, [] { g_poster.store(nullptr); });
    g_poster.store(poster);
}

WindowData* Lookup(HWND h) {
    if (!h)
        return nullptr;
    std::lock_guard<std::mutex> lock(g_regMutex);
    const auto it = g_windows.find(reinterpret_cast<uintptr_t>(h));
    return it == g_windows.end() ? nullptr : it->second;
}

HWND Register(QWidget* w, int kind, UINT ctrlId, DWORD style) {
    InitUi();
    auto* d = new WindowData;
    d->widget = w;
    d->kind = kind;
    d->ctrlId = ctrlId;
    d->style = style;
    {
        std::lock_guard<std::mutex> lock(g_regMutex);
        d->id = g_nextId++;
        g_windows[d->id] = d;
    }
    w->setProperty(kHandleProp, qulonglong(d->id));
    const uintptr_t id = d->id;
    QObject::connect(w, &QObject::destroyed, [id] { ForgetWidget(id); });
    return reinterpret_cast<HWND>(d->id);
}

HWND HandleOf(const QWidget* w) {
    for (; w; w = w->parentWidget()) {
        const QVariant v = w->property(kHandleProp);
        if (v.isValid()) {
            HWND h = reinterpret_cast<HWND>(v.value<qulonglong>());
            if (Lookup(h))
                return h;
        }
        if (w->isWindow())
            break;
    }
    return nullptr;
}

QWidget* WidgetOf(HWND h) {
    WindowData* d = Lookup(h);
    return d ? d->widget.data() : nullptr;
}

HWND ParentOf(HWND h) {
    QWidget* w = WidgetOf(h);
    if (!w || w->isWindow())
        return nullptr;
    return HandleOf(w->parentWidget());
}

CWnd* WndOf(HWND h) {
    WindowData* d = Lookup(h);
    if (!d)
        return nullptr;
    if (d->wnd)
        return d->wnd;
    if (!d->standIn) {
        // Of the class of its kind, so that the usual casts of GetDlgItem hold.
        switch (d->kind) {
        case KButton:
        case KCheck:
        case KRadio:
        case KGroupBox:
            d->standIn = std::make_unique<CButton>();
            break;
        case KEdit:
            d->standIn = std::make_unique<CEdit>();
            break;
        case KStatic:
            d->standIn = std::make_unique<CStatic>();
            break;
        case KComboList:
        case KComboEdit:
            d->standIn = std::make_unique<CComboBox>();
            break;
        case KList:
            d->standIn = std::make_unique<CListCtrl>();
            break;
        case KTree:
            d->standIn = std::make_unique<CTreeCtrl>();
            break;
        case KHeader:
            d->standIn = std::make_unique<CHeaderCtrl>();
            break;
        case KDialog:
            d->standIn = std::make_unique<CDialog>();
            break;
        default:
            d->standIn = std::make_unique<CWnd>();
            break;
        }
        d->standIn->m_hWnd = h;
    }
    return d->standIn.get();
}

Frame* CurrentFrame() {
    return t_frames.empty() ? nullptr : t_frames.back();
}

void DeliverNow(Frame& f) {
    if (f.delivered || !f.target || !f.event)
        return;
    f.delivered = true;
    QEvent* saved = g_passThrough;
    g_passThrough = f.event;
    QCoreApplication::sendEvent(f.target, f.event);
    g_passThrough = saved;
}

LRESULT Send(HWND h, UINT msg, WPARAM wp, LPARAM lp, Frame* frame) {
    CWnd* wnd = WndOf(h);
    if (!wnd)
        return 0;
    Frame local;
    Frame* f = frame ? frame : &local;
    t_frames.push_back(f);
    const LRESULT r = wnd->WindowProc(msg, wp, lp);
    t_frames.pop_back();
    return r;
}

void NotifyCommand(HWND ctl, UINT code) {
    WindowData* d = Lookup(ctl);
    HWND parent = ParentOf(ctl);
    if (!d || !parent)
        return;
    const WPARAM wp = MAKEWPARAM(WORD(d->ctrlId), WORD(code));
    LRESULT r = 0;
    // Reflection: the control may handle its own notification first.
    struct Access : CWnd {
        static BOOL Child(CWnd* w, UINT m, WPARAM a, LPARAM b, LRESULT* r) {
            return (w->*(&Access::OnChildNotify))(m, a, b, r);
        }
    };
    if (CWnd* self = WndOf(ctl); self && Access::Child(self, WM_COMMAND, wp, LPARAM(ctl), &r))
        return;
    Send(parent, WM_COMMAND, wp, LPARAM(ctl));
}

LRESULT NotifyHdr(HWND ctl, NMHDR* hdr) {
    WindowData* d = Lookup(ctl);
    if (!d)
        return 0;
    hdr->hwndFrom = ctl;
    hdr->idFrom = d->ctrlId;
    const WPARAM wp = d->ctrlId;
    LRESULT r = 0;
    struct Access : CWnd {
        static BOOL Child(CWnd* w, UINT m, WPARAM a, LPARAM b, LRESULT* r) {
            return (w->*(&Access::OnChildNotify))(m, a, b, r);
        }
    };
    if (CWnd* self = WndOf(ctl); self && Access::Child(self, WM_NOTIFY, wp, LPARAM(hdr), &r))
        return r;
    HWND parent = ParentOf(ctl);
    if (!parent)
        return 0;
    return Send(parent, WM_NOTIFY, wp, LPARAM(hdr));
}

HWND NearestDialog(HWND h) {
    for (HWND p = h; p; p = ParentOf(p)) {
        WindowData* d = Lookup(p);
        if (d && d->kind == KDialog)
            return p;
    }
    return nullptr;
}

CDialog* DialogOf(HWND h) {
    WindowData* d = Lookup(h);
    return d ? dynamic_cast<CDialog*>(d->wnd) : nullptr;
}

namespace {

// The registered windows whose nearest registered ancestor widget is `parent`: its child
// windows, and the windows it owns as a Qt parent (popups, modeless dialogs).
std::vector<HWND> WindowsDirectlyInside(HWND parent, QWidget* w) {
    std::vector<HWND> out;
    for (QWidget* c : w->findChildren<QWidget*>()) {
        const QVariant v = c->property(kHandleProp);
        if (!v.isValid())
            continue;
        const HWND h = reinterpret_cast<HWND>(v.value<qulonglong>());
        if (!Lookup(h))
            continue;
        HWND above = nullptr;
        for (QWidget* p = c->parentWidget(); p && !above; p = p->parentWidget()) {
            const QVariant pv = p->property(kHandleProp);
            if (pv.isValid() && Lookup(reinterpret_cast<HWND>(pv.value<qulonglong>())))
                above = reinterpret_cast<HWND>(pv.value<qulonglong>());
        }
        if (above == parent)
            out.push_back(h);
    }
    return out;
}

// Destroys one window and, after its OnDestroy, the windows still inside it: WM_DESTROY
// goes parent first, PostNcDestroy children first, as the home platform orders them. A
// window its parent's OnDestroy destroys or deletes goes through here at that moment, so
// its own OnDestroy runs while its object is whole. `outermost` is the window destruction
// started at; only its widget is taken off, the others go with it.
void DestroyOne(HWND h, bool outermost) {
    WindowData* d = Lookup(h);
    if (!d || d->destroying)
        return;
    d->destroying = true;
    const QPointer<QWidget> widget = d->widget;
    Send(h, WM_DESTROY, 0, 0);
    if (widget)
        for (HWND child : WindowsDirectlyInside(h, widget))
            DestroyOne(child, false);
    {
        std::lock_guard<std::mutex> lock(g_regMutex);
        g_windows.erase(reinterpret_cast<uintptr_t>(h));
    }
    for (auto& [id, timer] : d->timers)
        delete timer;
    d->timers.clear();
    CWnd* attached = d->wnd;
    if (attached)
        attached->m_hWnd = nullptr;
    delete d;
    if (outermost && widget) {
        widget->hide();
        widget->setParent(nullptr);
        widget->deleteLater();
    }
    struct Access : CWnd {
        static void Post(CWnd* w) { (w->*(&Access::PostNcDestroy))(); }
    };
    if (attached)
        Access::Post(attached);
}

} // namespace

void DestroyTree(HWND root) {
    WindowData* rd = Lookup(root);
    if (!rd || rd->destroying)
        return;
    // A focused window in the tree loses its focus before it is destroyed.
    if (QWidget* rw = rd->widget.data()) {
        QWidget* focus = QApplication::focusWidget();
        if (focus && (focus == rw || rw->isAncestorOf(focus)))
            focus->clearFocus();
    }
    DestroyOne(root, true);
}

void PostTo(HWND h, UINT msg, WPARAM wp, LPARAM lp) {
    QObject* poster = g_poster.load();
    if (!poster)
        return;
    AfxQueueCall(poster, [h, msg, wp, lp] {
        if (Lookup(h))
            Send(h, msg, wp, lp);
    });
}

} // namespace afxi

using namespace afxi;

// ---------------------------------------------------------------- CFont
CFont::CFont() : m_impl(std::make_unique<Impl>()) {}
CFont::~CFont() = default;
BOOL CFont::CreatePointFont(int nPointSize, const char* faceName) {
    m_impl->font = QFont(Q(faceName));
    m_impl->font.setPointSizeF(nPointSize / 10.0);
    return TRUE;
}
CString CFont::GetFaceName() const {
    return C(m_impl->font.family());
}
int CFont::GetPointSize() const {
    return int(m_impl->font.pointSizeF() * 10 + 0.5);
}
void CFont::SetBold(BOOL bold) {
    m_impl->font.setBold(bold);
}
BOOL CFont::IsBold() const {
    return m_impl->font.bold();
}

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

CWnd* CWnd::SetParent(CWnd* pNewParent) {
    QWidget* w = WidgetOf(m_hWnd);
    QWidget* p = pNewParent ? WidgetOf(pNewParent->m_hWnd) : nullptr;
    if (!w)
        return nullptr;
    CWnd* old = GetParent();
    const bool visible = !w->isHidden();
    const QPoint pos = w->pos();
    w->setParent(p);
    w->move(pos);
    w->setVisible(visible);
    return old;
}

CWnd* CWnd::GetTopLevelParent() const {
    HWND h = m_hWnd;
    while (ParentOf(h))
        h = ParentOf(h);
    return h ? WndOf(h) : nullptr;
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

int CWnd::SetDlgCtrlID(int nID) {
    WindowData* d = Lookup(m_hWnd);
    if (!d)
        return 0;
    const int old = int(d->ctrlId);
    d->ctrlId = UINT(nID);
    return old;
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

int CWnd::GetCheckedRadioButton(int nIDFirst, int nIDLast) const {
    for (int id = nIDFirst; id <= nIDLast; ++id)
        if (IsDlgButtonChecked(id))
            return id;
    return 0;
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

void CWnd::InvalidateRect(const RECT* r, BOOL bErase) {
    QWidget* w = WidgetOf(m_hWnd);
    if (!w)
        return;
    if (!r || qobject_cast<QAbstractScrollArea*>(w)) {
        Invalidate(bErase);
        return;
    }
    w->update(QRect(r->left, r->top, r->right - r->left, r->bottom - r->top));
}

void CWnd::UpdateWindow() {
    if (QWidget* w = WidgetOf(m_hWnd))
        w->repaint();
}

void CWnd::RedrawWindow() {
    Invalidate();
}

void CWnd::SetRedraw(BOOL bRedraw) {
    if (QWidget* w = WidgetOf(m_hWnd)) {
        w->setUpdatesEnabled(bRedraw);
        if (bRedraw)
            Invalidate();
    }
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
    case WM_PAINT:
        OnPaint();
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

// ---------------------------------------------------------------- Qt bridges
QWidget* AfxWidgetFromHandle(HWND h) {
    return WidgetOf(h);
}
HWND AfxHandleFromWidget(QWidget* w) {
    const QVariant v = w ? w->property(kHandleProp) : QVariant();
    HWND h = v.isValid() ? reinterpret_cast<HWND>(v.value<qulonglong>()) : nullptr;
    return Lookup(h) ? h : nullptr;
}
HWND AfxWrapHostWidget(QWidget* w) {
    if (!w)
        return nullptr;
    if (HWND h = AfxHandleFromWidget(w))
        return h;
    return Register(w, KHost, 0, WS_VISIBLE);
}
void AfxReleaseHostWidget(HWND h) {
    WindowData* d = Lookup(h);
    if (!d || d->kind != KHost)
        return;
    QWidget* w = d->widget;
    // The windows inside are destroyed properly (OnDestroy runs) before the host's widget
    // takes their widgets with it.
    if (w) {
        std::vector<HWND> inner;
        for (QWidget* c : w->findChildren<QWidget*>()) {
            HWND ch = AfxHandleFromWidget(c);
            if (ch && ParentOf(ch) == h)
                inner.push_back(ch);
        }
        for (HWND ch : inner)
            DestroyTree(ch);
    }
    d = Lookup(h);
    if (!d)
        return;
    {
        std::lock_guard<std::mutex> lock(g_regMutex);
        g_windows.erase(reinterpret_cast<uintptr_t>(h));
    }
    if (d->wnd)
        d->wnd->m_hWnd = nullptr;
    for (auto& [id, t] : d->timers)
        delete t;
    if (w)
        w->setProperty(kHandleProp, QVariant());
    delete d;
}
BOOL AfxAttachCustomWidget(CWnd* owner, QWidget* w, UINT nID, DWORD style) {
    if (!owner || !w || owner->m_hWnd)
        return FALSE;
    HWND h = Register(w, KCustom, nID, style);
    Lookup(h)->wnd = owner;
    owner->m_hWnd = h;
    w->setEnabled(!(style & WS_DISABLED));
    if (style & WS_VISIBLE)
        w->show();
    return TRUE;
}
QString AfxToQString(const CString& s) {
    return Q(s);
}
CString AfxFromQString(const QString& s) {
    return C(s);
}
void AfxInitUiThread() {
    InitUi();
}

namespace afxi {
void SetForcedKeyTarget(QWidget* w) {
    g_forcedKeyTarget = w;
}
void SendClick(QWidget* viewport, const QPoint& at, UINT button) {
    QPointer<QWidget> vp = viewport;
    if (!vp)
        return;
    const Qt::MouseButton b = button == MK_RBUTTON ? Qt::RightButton : Qt::LeftButton;
    const QPoint global = vp->mapToGlobal(at);
    QMouseEvent press(QEvent::MouseButtonPress, at, global, b, b, Qt::NoModifier);
    QCoreApplication::sendEvent(vp, &press);
    // The press may have closed the window the viewport belongs to.
    if (!vp)
        return;
    QMouseEvent release(QEvent::MouseButtonRelease, at, global, b, Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(vp, &release);
    if (vp && b == Qt::RightButton) {
        QContextMenuEvent menu(QContextMenuEvent::Mouse, at, global);
        QCoreApplication::sendEvent(vp, &menu);
    }
}

} // namespace afxi

void CWnd::OnPaint() {
    Default();
}
