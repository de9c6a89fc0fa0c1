// Internal: window handles, the registry behind them and the Qt widgets of each kind.
#pragma once

#include <afx/afxcmn.h>
#include <afx/afxqt.h>
#include <afx/afxwin.h>

#include <QFont>
#include <QPointer>
#include <QString>
#include <QWidget>

#include <map>
#include <memory>

class QTimer;
class QEvent;

struct CFont::Impl {
    QFont font;
};

namespace afxi {

enum Kind {
    KWindow = 0,
    KDialog,
    KButton,
    KCheck,
    KRadio,
    KGroupBox,
    KEdit,
    KStatic,
    KComboList,
    KComboEdit,
    KTree,
    KList,
    KCustom,
    KHeader,
    KHost,
};

struct WindowData {
    uintptr_t id = 0;
    CWnd* wnd = nullptr;           // attached object, if any
    std::unique_ptr<CWnd> standIn; // stand-in object for FromHandle
    QPointer<QWidget> widget;
    int kind = KWindow;
    UINT ctrlId = 0;
    DWORD style = 0;
    bool destroying = false;
    std::map<UINT_PTR, QTimer*> timers;
    std::unique_ptr<CFont> font;
};

inline QString Q(const CString& s) {
    return QString::fromUtf8(s.GetString(), s.GetByteLength());
}
inline QString Q(const char* s) {
    return QString::fromUtf8(s ? s : "");
}
inline CString C(const QString& s) {
    return CString(s.toStdString());
}

// The widget property that holds a registered widget's handle.
inline constexpr const char* kHandleProp = "afx_hwnd";

void InitUi();
WindowData* Lookup(HWND h);
HWND Register(QWidget* w, int kind, UINT ctrlId, DWORD style);
// The registered window a widget belongs to, walking up to the nearest registered
// ancestor within the same top-level window.
HWND HandleOf(const QWidget* w);
QWidget* WidgetOf(HWND h);
template <class T> T* WidgetAs(HWND h) {
    return qobject_cast<T*>(WidgetOf(h));
}
HWND ParentOf(HWND h);
// The attached object, or the stand-in.
CWnd* WndOf(HWND h);
// Queues a message for `h` on the user-interface thread; safe from any thread.
void PostTo(HWND h, UINT msg, WPARAM wp, LPARAM lp);
// Destroys a window and its descendants (OnDestroy, PostNcDestroy, timers, widget).
void DestroyTree(HWND h);

// Builds the Qt widget of a control kind.
QWidget* MakeWidget(int kind, DWORD style, const char* text, QWidget* parent);
// Hooks up the notifications a control of `kind` sends to its parent.
void ConnectNotifications(HWND h, int kind);

// Input dispatch: a frame per message being handled; Default() marks it.
struct Frame {
    QObject* target = nullptr; // widget the input event belongs to, nullptr for plain sends
    QEvent* event = nullptr;
    bool deliverOnDefault = true;
    bool defaultRequested = false;
    bool delivered = false;
};
void DeliverNow(Frame& f);
// The application-wide filter that turns Qt's input and window events into messages.
QObject* NewEventHook();
Frame* CurrentFrame();
LRESULT Send(HWND h, UINT msg, WPARAM wp, LPARAM lp, Frame* frame = nullptr);
void NotifyCommand(HWND ctl, UINT code);
LRESULT NotifyHdr(HWND ctl, NMHDR* hdr);

// Enter/Escape routing to the nearest dialog.
HWND NearestDialog(HWND h);

// Test seam behind ClickCell/ClickItem: a press and release (and a context-menu event for
// the right button) at `at` in the viewport's coordinates, as a user's click would send.
void SendClick(QWidget* viewport, const QPoint& at, UINT button);

// List and tree internals used across files.
void RadioClicked(HWND h);
CDialog* DialogOf(HWND h);

} // namespace afxi
