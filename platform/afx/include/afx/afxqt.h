// Bridges between the framework and Qt, for the host program and tests only. The module's
// own code never includes this header.
#pragma once

#include <afx/afxwin.h>

#include <functional>

class QWidget;
class QString;
class QPixmap;

// The Qt widget behind a window handle; nullptr for dead handles.
QWidget* AfxWidgetFromHandle(HWND h);
// The handle of a widget made by the framework, else nullptr.
HWND AfxHandleFromWidget(QWidget* w);
// Wraps a widget owned by the host (for example a tab page) as a window that module
// dialogs can use as their parent. The widget stays the host's. Before deleting it, call
// AfxReleaseHostWidget: it destroys the module's windows inside (their OnDestroy runs)
// and ends the handle.
HWND AfxWrapHostWidget(QWidget* w);
void AfxReleaseHostWidget(HWND h);

// Makes `w`, a widget built by an extension library as a child of its parent window's
// widget, the window of `owner` with control id nID. Messages, timers and notifications
// then work on it as on any window.
BOOL AfxAttachCustomWidget(CWnd* owner, QWidget* w, UINT nID, DWORD style);

// The picture of an icon resource.
QPixmap AfxIconPixmap(HICON icon);

QString AfxToQString(const CString& s);
CString AfxFromQString(const QString& s);

// Must be called on the user-interface thread once a QApplication exists, before any
// window is created or any message posted (the first window creation does it too).
void AfxInitUiThread();

class QObject;
// Runs `call` on the thread of `receiver`, through its event queue, as posted messages
// do. The queue's lock lives in Qt, which ThreadSanitizer doesn't see into; the hand-off
// is told to it here, so that what a thread wrote before queuing counts as seen by the
// call, as it is.
void AfxQueueCall(QObject* receiver, std::function<void()> call);
