// Qt's input and window events as window messages: keys (pre-translation first, Enter and
// Escape left over for the nearest dialog), the mouse, focus and size.
#include "wnd_p.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

namespace afxi {
namespace {

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

// The message of a mouse event; 0 for buttons the framework has no message for. The
// wheel and the context menu carry the screen point, the wheel its delta beside the flags.
UINT MouseMessage(QEvent* ev, HWND h, QPoint global, WPARAM& wp, LPARAM& lp) {
    switch (ev->type()) {
    case QEvent::MouseButtonPress: {
        const auto b = static_cast<QMouseEvent*>(ev)->button();
        return b == Qt::RightButton ? WM_RBUTTONDOWN : (b == Qt::LeftButton ? WM_LBUTTONDOWN : 0);
    }
    case QEvent::MouseButtonRelease: {
        const auto b = static_cast<QMouseEvent*>(ev)->button();
        return b == Qt::RightButton ? WM_RBUTTONUP : (b == Qt::LeftButton ? WM_LBUTTONUP : 0);
    }
    case QEvent::MouseButtonDblClick:
        return static_cast<QMouseEvent*>(ev)->button() == Qt::LeftButton ? WM_LBUTTONDBLCLK : 0;
    case QEvent::MouseMove:
        return WM_MOUSEMOVE;
    case QEvent::Wheel: {
        const int delta = static_cast<QWheelEvent*>(ev)->angleDelta().y();
        wp = MAKEWPARAM(WORD(wp), WORD(short(delta)));
        lp = PackPoint(global);
        return WM_MOUSEWHEEL;
    }
    case QEvent::ContextMenu:
        wp = WPARAM(h);
        lp = PackPoint(global);
        return WM_CONTEXTMENU;
    default:
        return 0;
    }
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
        WPARAM wp = flags;
        LPARAM lp = PackPoint(client);
        const UINT msg = MouseMessage(ev, h, global, wp, lp);
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

} // namespace

QObject* NewEventHook() {
    return new EventHook;
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
