// The handle registry: every window's handle, its widget and its object; message sending,
// posting and destruction; the bridges between handles and Qt widgets.
#include "controls_p.h"

#include <QApplication>
#include <QTimer>

#include <atomic>
#include <mutex>
#include <unordered_map>
#include <vector>

namespace afxi {
namespace {

std::mutex g_regMutex;
std::unordered_map<uintptr_t, WindowData*> g_windows;
uintptr_t g_nextId = 0x1000;

// Lives on the user-interface thread; posted messages are queued calls on it.
std::atomic<QObject*> g_poster{nullptr};

thread_local std::vector<Frame*> t_frames;
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
    QObject* hook = NewEventHook();
    hook->setParent(qApp);
    qApp->installEventFilter(hook);
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
