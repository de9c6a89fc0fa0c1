// Windows, dialogs, basic controls, menus and the application object.
//
// How messages work here (one rule everywhere):
// - Every window message goes through the virtual CWnd::WindowProc(message, wParam, lParam).
//   Its base version calls the matching virtual handler (OnSize, OnTimer, OnCommand,
//   OnNotify, OnLButtonDown, ...) and returns. To handle your own numbered messages
//   (WM_USER + n), override WindowProc, handle them, and pass the rest to the base class.
// - Input messages that come from the user (mouse, keys, focus) have a default action
//   (the control's own behaviour). A handler that calls its base class version lets the
//   default action run; a handler that does not call it swallows the input.
// - Key presses first go through PreTranslateMessage of the window with the focus and of
//   each parent up to the top-level window; TRUE from any of them swallows the key.
//   Enter and Escape that no one swallows become IDOK / IDCANCEL commands to the nearest
//   dialog (the default button's id instead of IDOK when a dialog has one).
// - Controls tell their parent through WM_COMMAND (OnCommand: LOWORD(wParam) = control id,
//   HIWORD(wParam) = notification code, lParam = the control's HWND) and WM_NOTIFY
//   (OnNotify: lParam points to an NMHDR-headed struct). Before the parent sees a
//   notification, the control itself gets it through OnChildNotify; TRUE stops it there.
// - SendMessage calls WindowProc at once, on the calling (user-interface) thread.
//   PostMessage may be called from any thread: messages reach WindowProc on the
//   user-interface thread in the order they were posted; a message for a window that has
//   been destroyed meanwhile is dropped.
// - Timers (SetTimer) deliver WM_TIMER to OnTimer and end with their window.
// - Coordinates are pixels; client coordinates start at the client area's top left.
#pragma once

#include <afx/CString.h>
#include <afx/afxcoll.h>
#include <afx/afxres.h>
#include <afx/afxtypes.h>

#include <functional>
#include <memory>

class CWnd;
class CDialog;
class CMenu;
class CFont;
class CDataExchange;

// ---------------------------------------------------------------- notification codes
constexpr UINT BN_CLICKED = 0;
constexpr UINT BN_DOUBLECLICKED = 5;
constexpr UINT EN_SETFOCUS = 0x0100;
constexpr UINT EN_KILLFOCUS = 0x0200;
constexpr UINT EN_CHANGE = 0x0300;
constexpr UINT EN_UPDATE = 0x0400;
constexpr UINT CBN_SELCHANGE = 1;
constexpr UINT CBN_DBLCLK = 2;
constexpr UINT CBN_SETFOCUS = 3;
constexpr UINT CBN_KILLFOCUS = 4;
constexpr UINT CBN_EDITCHANGE = 5;
constexpr UINT CBN_EDITUPDATE = 6;
constexpr UINT CBN_DROPDOWN = 7;
constexpr UINT CBN_CLOSEUP = 8;
constexpr UINT CBN_SELENDOK = 9;
constexpr UINT CBN_SELENDCANCEL = 10;
constexpr int CB_ERR = -1;
constexpr int LB_ERR = -1;

constexpr UINT WM_HELP = 0x0053;
constexpr UINT WM_SETFONT = 0x0030;

constexpr int BST_UNCHECKED = 0;
constexpr int BST_CHECKED = 1;
constexpr int BST_INDETERMINATE = 2;

constexpr int SW_HIDE = 0;
constexpr int SW_SHOWNORMAL = 1;
constexpr int SW_NORMAL = 1;
constexpr int SW_SHOW = 5;
constexpr int SW_SHOWNA = 8;
constexpr int SW_RESTORE = 9;

constexpr UINT SWP_NOSIZE = 0x0001;
constexpr UINT SWP_NOMOVE = 0x0002;
constexpr UINT SWP_NOZORDER = 0x0004;
constexpr UINT SWP_NOREDRAW = 0x0008;
constexpr UINT SWP_NOACTIVATE = 0x0010;
constexpr UINT SWP_SHOWWINDOW = 0x0040;
constexpr UINT SWP_HIDEWINDOW = 0x0080;

constexpr UINT SB_LINEUP = 0;
constexpr UINT SB_LINEDOWN = 1;
constexpr UINT SB_PAGEUP = 2;
constexpr UINT SB_PAGEDOWN = 3;
constexpr UINT SB_THUMBPOSITION = 4;
constexpr UINT SB_THUMBTRACK = 5;
constexpr UINT SB_ENDSCROLL = 8;

constexpr UINT MK_LBUTTON = 0x0001;
constexpr UINT MK_RBUTTON = 0x0002;
constexpr UINT MK_SHIFT = 0x0004;
constexpr UINT MK_CONTROL = 0x0008;

constexpr UINT TPM_LEFTALIGN = 0x0000;
constexpr UINT TPM_LEFTBUTTON = 0x0000;
constexpr UINT TPM_RIGHTBUTTON = 0x0002;
constexpr UINT TPM_RETURNCMD = 0x0100;

struct NMHDR {
    HWND hwndFrom;
    UINT_PTR idFrom;
    UINT code;
};
typedef NMHDR* LPNMHDR;

struct HELPINFO {
    UINT cbSize;
    int iContextType;
    int iCtrlId;
    HWND hItemHandle;
    DWORD_PTR dwContextId;
    POINT MousePos;
};

// ---------------------------------------------------------------- fonts
class CFont {
public:
    CFont();
    ~CFont();
    CFont(const CFont&) = delete;
    CFont& operator=(const CFont&) = delete;

    struct Impl;
    Impl* impl() const { return m_impl.get(); }

private:
    std::unique_ptr<Impl> m_impl;
};

// ---------------------------------------------------------------- CWnd
class CWnd {
public:
    CWnd();
    virtual ~CWnd();
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;

    HWND m_hWnd = nullptr;
    HWND GetSafeHwnd() const { return m_hWnd; }
    operator HWND() const { return GetSafeHwnd(); }

    // The CWnd of a handle: the attached object, or a stand-in object that the framework
    // keeps for windows made from templates. nullptr for dead handles.
    static CWnd* FromHandle(HWND h);
    static CWnd* GetFocus();
    static CWnd* GetCapture();

    // A plain child window (a container) of `pParent`.
    virtual BOOL Create(const char* lpszClassName, const char* lpszWindowName, DWORD dwStyle,
                        const RECT& rect, CWnd* pParentWnd, UINT nID);
    virtual BOOL DestroyWindow();
    // Binds this object to an existing window that has no object of its own yet.
    BOOL Attach(HWND h);
    HWND Detach();
    BOOL SubclassDlgItem(UINT nID, CWnd* pParent);

    // ---- state and geometry
    BOOL ShowWindow(int nCmdShow);
    BOOL IsWindowVisible() const;
    BOOL EnableWindow(BOOL bEnable = TRUE);
    BOOL IsWindowEnabled() const;
    void MoveWindow(int x, int y, int nWidth, int nHeight, BOOL bRepaint = TRUE);
    void MoveWindow(const RECT* lpRect, BOOL bRepaint = TRUE);
    BOOL SetWindowPos(const CWnd* pWndInsertAfter, int x, int y, int cx, int cy, UINT nFlags);
    void GetClientRect(RECT* lpRect) const;
    // In screen coordinates.
    void GetWindowRect(RECT* lpRect) const;
    void ScreenToClient(POINT* p) const;
    void ScreenToClient(RECT* r) const;
    void ClientToScreen(POINT* p) const;
    void ClientToScreen(RECT* r) const;
    void CenterWindow(CWnd* pAlternateOwner = nullptr);
    DWORD GetStyle() const;
    BOOL ModifyStyle(DWORD dwRemove, DWORD dwAdd, UINT nFlags = 0);

    // ---- text
    void SetWindowText(const char* text);
    void SetWindowText(const CString& text) { SetWindowText(text.GetString()); }
    void GetWindowText(CString& text) const;
    CString GetWindowTextString() const;

    // ---- family
    // The parent; for a window of its own (a popup dialog) its owner.
    CWnd* GetParent() const;
    CWnd* GetDlgItem(int nID) const;
    int GetDlgCtrlID() const;
    BOOL IsChild(const CWnd* pWnd) const;
    void SetDlgItemText(int nID, const char* text);
    int GetDlgItemText(int nID, CString& text) const;
    void SetDlgItemInt(int nID, UINT value, BOOL bSigned = TRUE);
    UINT GetDlgItemInt(int nID, BOOL* lpTrans = nullptr, BOOL bSigned = TRUE) const;
    void CheckDlgButton(int nID, UINT nCheck);
    UINT IsDlgButtonChecked(int nID) const;
    void CheckRadioButton(int nIDFirst, int nIDLast, int nIDCheck);
    CWnd* GetNextDlgTabItem(CWnd* pWndCtl, BOOL bPrevious = FALSE) const;

    // ---- focus, painting, fonts
    CWnd* SetFocus();
    void Invalidate(BOOL bErase = TRUE);
    void UpdateWindow();
    void SetFont(CFont* pFont, BOOL bRedraw = TRUE);
    // The window's font; owned by the window.
    CFont* GetFont() const;
    CWnd* SetCapture();
    void BringWindowToTop();

    // ---- messages and timers
    LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
    BOOL PostMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
    UINT_PTR SetTimer(UINT_PTR nIDEvent, UINT nElapse, void* lpfnTimer = nullptr);
    BOOL KillTimer(UINT_PTR nIDEvent);
    // Lets the default action of the input message being handled run (see top of file).
    LRESULT Default();
    // Sends WM_COMMAND with (id, code) of this control to the parent.
    void NotifyParent(UINT code);
    // Sends WM_NOTIFY with `hdr` (hwndFrom/idFrom filled in) to the parent.
    LRESULT NotifyParent(NMHDR* hdr);

    virtual LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    virtual BOOL PreTranslateMessage(MSG* pMsg);
    virtual LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam);

protected:
    virtual BOOL OnCommand(WPARAM wParam, LPARAM lParam);
    virtual BOOL OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* pResult);
    virtual BOOL OnChildNotify(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* pResult);
    virtual int OnCreate();
    virtual void OnDestroy();
    // Last call for a destroyed window; an object that deletes itself does it here.
    virtual void PostNcDestroy();
    virtual void OnSize(UINT nType, int cx, int cy);
    virtual void OnTimer(UINT_PTR nIDEvent);
    virtual void OnContextMenu(CWnd* pWnd, CPoint pos);
    virtual void OnLButtonDown(UINT nFlags, CPoint point);
    virtual void OnLButtonUp(UINT nFlags, CPoint point);
    virtual void OnLButtonDblClk(UINT nFlags, CPoint point);
    virtual void OnRButtonDown(UINT nFlags, CPoint point);
    virtual void OnRButtonUp(UINT nFlags, CPoint point);
    virtual void OnMouseMove(UINT nFlags, CPoint point);
    virtual BOOL OnMouseWheel(UINT nFlags, short zDelta, CPoint pt);
    virtual void OnKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags);
    virtual void OnKeyUp(UINT nChar, UINT nRepCnt, UINT nFlags);
    virtual void OnChar(UINT nChar, UINT nRepCnt, UINT nFlags);
    virtual void OnSetFocus(CWnd* pOldWnd);
    virtual void OnKillFocus(CWnd* pNewWnd);
    virtual void OnShowWindow(BOOL bShow, UINT nStatus);
    virtual void OnVScroll(UINT nSBCode, UINT nPos, CWnd* pScrollBar);
    virtual void OnHScroll(UINT nSBCode, UINT nPos, CWnd* pScrollBar);
    virtual BOOL OnHelpInfo(HELPINFO* pHelpInfo);
    virtual void OnClose();

public:
    // Framework internals; not for module code.
    struct Impl;
    BOOL CreateFromKind(int kind, const char* text, DWORD style, const RECT& rect, CWnd* pParent,
                        UINT nID);
};

// Ends SetCapture.
BOOL ReleaseCapture();

// Standard cursors for LoadCursor(nullptr, ...).
#define IDC_ARROW (reinterpret_cast<const char*>(32512))
#define IDC_IBEAM (reinterpret_cast<const char*>(32513))
#define IDC_WAIT (reinterpret_cast<const char*>(32514))
#define IDC_SIZENS (reinterpret_cast<const char*>(32645))
#define IDC_SIZEWE (reinterpret_cast<const char*>(32644))
#define IDC_HAND (reinterpret_cast<const char*>(32649))
HCURSOR LoadCursor(HINSTANCE hInstance, const char* lpCursorName);
// Shows `h` over the window whose mouse message is being handled (or the capture window).
HCURSOR SetCursor(HCURSOR h);

// Posts to a window by handle; safe from any thread.
BOOL PostMessage(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);
LRESULT SendMessage(HWND hWnd, UINT message, WPARAM wParam, LPARAM lParam);
BOOL IsWindow(HWND hWnd);

// ---------------------------------------------------------------- controls
class CButton : public CWnd {
public:
    // BS_PUSHBUTTON / BS_DEFPUSHBUTTON, BS_AUTOCHECKBOX, BS_AUTORADIOBUTTON, BS_GROUPBOX.
    BOOL Create(const char* caption, DWORD dwStyle, const RECT& rect, CWnd* pParent, UINT nID);
    int GetCheck() const;
    void SetCheck(int nCheck);
    // Simulates a user's click: toggles check boxes, then BN_CLICKED to the parent.
    void Click();
};

class CStatic : public CWnd {
public:
    BOOL Create(const char* text, DWORD dwStyle, const RECT& rect, CWnd* pParent,
                UINT nID = IDC_STATIC);
    HICON SetIcon(HICON hIcon);
};

class CEdit : public CWnd {
public:
    BOOL Create(DWORD dwStyle, const RECT& rect, CWnd* pParent, UINT nID);
    void SetSel(int nStart, int nEnd, BOOL bNoScroll = FALSE);
    void GetSel(int& nStart, int& nEnd) const;
    BOOL SetReadOnly(BOOL bReadOnly = TRUE);
    void SetPasswordChar(TCHAR ch);
    // Multi-line text uses "\r\n" between lines, as callers expect.
};

class CComboBox : public CWnd {
public:
    // CBS_DROPDOWNLIST (choice only) or CBS_DROPDOWN (with an edit).
    BOOL Create(DWORD dwStyle, const RECT& rect, CWnd* pParent, UINT nID);
    int GetCount() const;
    int GetCurSel() const;
    int SetCurSel(int nSelect);
    int AddString(const char* text);
    int InsertString(int nIndex, const char* text);
    void ResetContent();
    int GetLBText(int nIndex, CString& text) const;
    DWORD_PTR GetItemData(int nIndex) const;
    int SetItemData(int nIndex, DWORD_PTR data);
    void* GetItemDataPtr(int nIndex) const { return reinterpret_cast<void*>(GetItemData(nIndex)); }
    int SetItemDataPtr(int nIndex, void* p) { return SetItemData(nIndex, DWORD_PTR(p)); }
    void ShowDropDown(BOOL bShowIt = TRUE);
    int SetDroppedWidth(UINT nWidth);
    int GetDroppedWidth() const;
    // Simulates a user's choice of entry nIndex (CBN_SELCHANGE, CBN_SELENDOK, CBN_CLOSEUP).
    void ChooseEntry(int nIndex);
};

// ---------------------------------------------------------------- menus
class CMenu {
public:
    CMenu();
    ~CMenu();
    CMenu(const CMenu&) = delete;
    CMenu& operator=(const CMenu&) = delete;

    HMENU m_hMenu = nullptr;
    HMENU GetSafeHmenu() const { return m_hMenu; }
    static CMenu* FromHandle(HMENU h);

    BOOL CreatePopupMenu();
    // Copies menu `nIDResource` of the current resource handle.
    BOOL LoadMenu(UINT nIDResource);
    BOOL DestroyMenu();
    BOOL Attach(HMENU h);
    HMENU Detach();

    BOOL AppendMenu(UINT nFlags, UINT_PTR nIDNewItem = 0, const char* text = nullptr);
    BOOL InsertMenu(UINT nPosition, UINT nFlags, UINT_PTR nIDNewItem = 0,
                    const char* text = nullptr);
    BOOL ModifyMenu(UINT nPosition, UINT nFlags, UINT_PTR nIDNewItem = 0,
                    const char* text = nullptr);
    BOOL DeleteMenu(UINT nPosition, UINT nFlags);
    // Return the previous state, or (UINT)-1 when there is no such item.
    UINT EnableMenuItem(UINT nIDEnableItem, UINT nEnable);
    UINT CheckMenuItem(UINT nIDCheckItem, UINT nCheck);
    UINT GetMenuState(UINT nID, UINT nFlags) const;
    int GetMenuItemCount() const;
    UINT GetMenuItemID(int nPos) const; // 0 for separators, (UINT)-1 for popups
    int GetMenuString(UINT nIDItem, CString& text, UINT nFlags) const;
    CMenu* GetSubMenu(int nPos) const;
    // Shows the menu at screen position (x, y) and returns the chosen command, 0 when
    // none. Callers pass TPM_RETURNCMD; the choice is never sent to pWnd as a command.
    UINT TrackPopupMenu(UINT nFlags, int x, int y, CWnd* pWnd, const RECT* lpRect = nullptr);

private:
    bool m_owned = false;
};

// ---------------------------------------------------------------- dialogs
class CDataExchange {
public:
    CDataExchange(CWnd* pDlgWnd, BOOL bSaveAndValidate)
        : m_bSaveAndValidate(bSaveAndValidate), m_pDlgWnd(pDlgWnd) {}
    BOOL m_bSaveAndValidate; // TRUE: controls -> members
    CWnd* m_pDlgWnd;
    BOOL m_bFailed = FALSE;
    void Fail() { m_bFailed = TRUE; }
};

void DDX_Control(CDataExchange* pDX, int nIDC, CWnd& rControl);
void DDX_Text(CDataExchange* pDX, int nIDC, CString& value);
void DDX_Text(CDataExchange* pDX, int nIDC, int& value);
void DDX_Text(CDataExchange* pDX, int nIDC, UINT& value);
void DDX_Text(CDataExchange* pDX, int nIDC, double& value);
void DDX_Check(CDataExchange* pDX, int nIDC, int& value);
// nIDC is the first radio of its group; value is the index of the checked one, -1 for none.
void DDX_Radio(CDataExchange* pDX, int nIDC, int& value);

class CDialog : public CWnd {
public:
    CDialog();
    explicit CDialog(UINT nIDTemplate, CWnd* pParentWnd = nullptr);
    ~CDialog() override;

    // Modeless: creates the dialog as a child of pParentWnd (shown unless the template
    // says otherwise) or, with no parent, as a top-level window.
    virtual BOOL Create(UINT nIDTemplate, CWnd* pParentWnd = nullptr);
    BOOL Create(const char*, const char*, DWORD, const RECT&, CWnd*, UINT) override {
        return FALSE;
    }
    // Modal: runs until EndDialog; returns its result, or -1 when no template was found.
    virtual INT_PTR DoModal();
    virtual void EndDialog(int nResult);
    BOOL UpdateData(BOOL bSaveAndValidate = TRUE);
    UINT GetTemplateId() const { return m_nIDTemplate; }
    BOOL IsModal() const { return m_bModal; }
    // The id Enter maps to: the default button's id, else IDOK.
    int GetDefID() const;
    void SetDefID(UINT nID);
    void GotoDlgCtrl(CWnd* pWndCtrl);

    virtual BOOL OnInitDialog();
    virtual void OnOK();
    virtual void OnCancel();

protected:
    virtual void DoDataExchange(CDataExchange* pDX);
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override;
    void OnClose() override;

    UINT m_nIDTemplate = 0;
    CWnd* m_pParentWnd = nullptr;

private:
    BOOL CreateFromTemplate(const DlgTemplate& tmpl, CWnd* pParent, bool modal);
    BOOL m_bModal = FALSE;
    BOOL m_bEnded = FALSE;
    int m_nModalResult = -1;
    void* m_pLoop = nullptr;
    UINT m_nDefId = 0;
};

// ---------------------------------------------------------------- message boxes
// Shows a message box; returns IDOK, IDCANCEL, IDYES, IDNO ... See afxtest.h for the seam
// that answers them in tests.
int AfxMessageBox(const char* text, UINT nType = MB_OK, UINT nIDHelp = 0);
int MessageBox(HWND hWnd, const char* text, const char* caption, UINT nType);

// ---------------------------------------------------------------- application object
// A module's application object. Construct exactly one at namespace scope; the loader
// (AfxLoadLibrary) gives it its resource handle and runs InitInstance and ExitInstance.
class CWinApp {
public:
    explicit CWinApp(const char* lpszAppName = nullptr);
    virtual ~CWinApp();
    CWinApp(const CWinApp&) = delete;
    CWinApp& operator=(const CWinApp&) = delete;

    virtual BOOL InitInstance();
    virtual int ExitInstance();

    HINSTANCE m_hInstance = nullptr;
    const char* m_pszAppName = nullptr;
    CWnd* m_pMainWnd = nullptr;
};
CWinApp* AfxGetApp();
const char* AfxGetAppName();
// The application's main window, else the active top-level window; may be null.
CWnd* AfxGetMainWnd();

// Screen position of the mouse.
BOOL GetCursorPos(POINT* lpPoint);
// High bit set while the key is down; knows VK_SHIFT, VK_CONTROL and VK_MENU.
SHORT GetKeyState(int nVirtKey);

// Shows the busy cursor while it lives.
class CWaitCursor {
public:
    CWaitCursor();
    ~CWaitCursor();
    CWaitCursor(const CWaitCursor&) = delete;
    CWaitCursor& operator=(const CWaitCursor&) = delete;
    void Restore();

private:
    bool m_active = false;
};

// Starts an application object that is already constructed (one linked in statically):
// gives it a new resource handle named `name`, makes that handle current while
// InitInstance runs, and returns it. nullptr if InitInstance fails (the handle is freed).
HINSTANCE AfxStartApp(CWinApp* app, const char* name);
// Runs ExitInstance with the app's handle current, then frees the handle.
int AfxStopApp(CWinApp* app);

// Opens a module library, starts the application object it brings (see AfxStartApp) and
// returns its handle, which is also the module's resource handle. nullptr on failure;
// AfxGetLoadError tells why.
HMODULE AfxLoadLibrary(const char* path);
// Runs the module's ExitInstance, closes the library and frees the handle.
BOOL AfxFreeLibrary(HMODULE h);
void* GetProcAddress(HMODULE h, const char* name);
CString AfxGetLoadError();
