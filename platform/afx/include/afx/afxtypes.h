// Basic types of the framework: the familiar integer, handle, geometry, colour, time and
// GUID types with their usual meaning. Words that carry pointers or callbacks are
// pointer-sized. Nothing here depends on Qt.
#pragma once

#include <cstddef>
#include <cstdint>

// ---------------------------------------------------------------- integers and handles
typedef int BOOL;
#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif

typedef uint8_t BYTE;
typedef uint16_t WORD;
typedef uint32_t DWORD;
typedef unsigned int UINT;
typedef int16_t SHORT;
typedef int32_t LONG;
typedef uint32_t ULONG;
typedef int64_t LONGLONG;
typedef uint64_t ULONGLONG;
typedef intptr_t INT_PTR;
typedef uintptr_t UINT_PTR;
typedef intptr_t LONG_PTR;
typedef uintptr_t ULONG_PTR;
typedef uintptr_t DWORD_PTR;
typedef uintptr_t WPARAM;
typedef intptr_t LPARAM;
typedef intptr_t LRESULT;

// Text is UTF-8; one character of a CString is one code point held in a wchar_t.
typedef wchar_t TCHAR;
typedef const char* LPCSTR;
typedef const char* LPCTSTR;
typedef char* LPSTR;
typedef char* LPTSTR;
typedef void* LPVOID;
#ifndef _T
#define _T(x) x
#endif

struct HWND__;
typedef HWND__* HWND;
struct HINSTANCE__;
typedef HINSTANCE__* HINSTANCE;
typedef HINSTANCE HMODULE;
struct HMENU__;
typedef HMENU__* HMENU;
struct HICON__;
typedef HICON__* HICON;
struct HCURSOR__;
typedef HCURSOR__* HCURSOR;
struct HTREEITEM__;
typedef HTREEITEM__* HTREEITEM;
struct HIMAGELIST__;
typedef HIMAGELIST__* HIMAGELIST;

constexpr WORD LOWORD(uintptr_t v) {
    return static_cast<WORD>(v & 0xFFFF);
}
constexpr WORD HIWORD(uintptr_t v) {
    return static_cast<WORD>((v >> 16) & 0xFFFF);
}
constexpr DWORD MAKELONG(WORD lo, WORD hi) {
    return DWORD(lo) | (DWORD(hi) << 16);
}
constexpr WPARAM MAKEWPARAM(WORD lo, WORD hi) {
    return WPARAM(MAKELONG(lo, hi));
}
constexpr LPARAM MAKELPARAM(WORD lo, WORD hi) {
    return LPARAM(MAKELONG(lo, hi));
}

// ---------------------------------------------------------------- colours (0x00bbggrr)
typedef DWORD COLORREF;
constexpr COLORREF RGB(int r, int g, int b) {
    return COLORREF(BYTE(r)) | (COLORREF(BYTE(g)) << 8) | (COLORREF(BYTE(b)) << 16);
}
constexpr BYTE GetRValue(COLORREF c) {
    return BYTE(c & 0xFF);
}
constexpr BYTE GetGValue(COLORREF c) {
    return BYTE((c >> 8) & 0xFF);
}
constexpr BYTE GetBValue(COLORREF c) {
    return BYTE((c >> 16) & 0xFF);
}
// "Use the default colour" in colour callbacks.
constexpr COLORREF CLR_DEFAULT = 0xFF000000u;
constexpr COLORREF CLR_NONE = 0xFFFFFFFFu;

// ---------------------------------------------------------------- geometry
struct POINT {
    LONG x;
    LONG y;
};
struct SIZE {
    LONG cx;
    LONG cy;
};
struct RECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};

class CPoint : public POINT {
public:
    constexpr CPoint() : POINT{0, 0} {}
    constexpr CPoint(int x_, int y_) : POINT{x_, y_} {}
    constexpr CPoint(POINT p) : POINT(p) {}
    void Offset(int dx, int dy) {
        x += dx;
        y += dy;
    }
    void SetPoint(int x_, int y_) {
        x = x_;
        y = y_;
    }
    constexpr bool operator==(const POINT& o) const { return x == o.x && y == o.y; }
    constexpr bool operator!=(const POINT& o) const { return !(*this == o); }
    constexpr CPoint operator+(const POINT& o) const { return CPoint(x + o.x, y + o.y); }
    constexpr CPoint operator-(const POINT& o) const { return CPoint(x - o.x, y - o.y); }
    CPoint& operator+=(const POINT& o) {
        Offset(o.x, o.y);
        return *this;
    }
    CPoint& operator-=(const POINT& o) {
        Offset(-o.x, -o.y);
        return *this;
    }
};

class CSize : public SIZE {
public:
    constexpr CSize() : SIZE{0, 0} {}
    constexpr CSize(int cx_, int cy_) : SIZE{cx_, cy_} {}
    constexpr CSize(SIZE s) : SIZE(s) {}
    constexpr bool operator==(const SIZE& o) const { return cx == o.cx && cy == o.cy; }
    constexpr bool operator!=(const SIZE& o) const { return !(*this == o); }
};

// Rectangles are half-open: right and bottom are just outside, as everywhere else here.
class CRect : public RECT {
public:
    constexpr CRect() : RECT{0, 0, 0, 0} {}
    constexpr CRect(int l, int t, int r, int b) : RECT{l, t, r, b} {}
    constexpr CRect(const RECT& r) : RECT(r) {}
    constexpr CRect(POINT topLeft, SIZE size)
        : RECT{topLeft.x, topLeft.y, topLeft.x + size.cx, topLeft.y + size.cy} {}
    constexpr CRect(POINT topLeft, POINT bottomRight)
        : RECT{topLeft.x, topLeft.y, bottomRight.x, bottomRight.y} {}

    constexpr int Width() const { return right - left; }
    constexpr int Height() const { return bottom - top; }
    constexpr CSize Size() const { return CSize(Width(), Height()); }
    constexpr CPoint CenterPoint() const { return CPoint((left + right) / 2, (top + bottom) / 2); }
    constexpr BOOL IsRectEmpty() const { return Width() <= 0 || Height() <= 0; }
    constexpr BOOL PtInRect(POINT p) const {
        return p.x >= left && p.x < right && p.y >= top && p.y < bottom;
    }
    void SetRect(int l, int t, int r, int b) {
        left = l;
        top = t;
        right = r;
        bottom = b;
    }
    constexpr bool operator==(const RECT& o) const {
        return left == o.left && top == o.top && right == o.right && bottom == o.bottom;
    }
    constexpr bool operator!=(const RECT& o) const { return !(*this == o); }
};

// ---------------------------------------------------------------- time
struct SYSTEMTIME {
    WORD wYear;
    WORD wMonth;     // 1..12
    WORD wDayOfWeek; // 0 = Sunday
    WORD wDay;
    WORD wHour;
    WORD wMinute;
    WORD wSecond;
    WORD wMilliseconds;
};
void GetLocalTime(SYSTEMTIME* st);
// The local time of a moment given in milliseconds since 1970-01-01 UTC (what GetLocalTime
// does for now); the time zone is the process's (TZ).
void LocalTimeFromUnixMs(long long msSinceEpoch, SYSTEMTIME* st);
// Milliseconds since an arbitrary start, monotonic.
DWORD GetTickCount();
ULONGLONG GetTickCount64();

// ---------------------------------------------------------------- GUID
struct GUID {
    uint32_t Data1;
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];

    constexpr bool operator==(const GUID& o) const {
        if (Data1 != o.Data1 || Data2 != o.Data2 || Data3 != o.Data3)
            return false;
        for (int i = 0; i < 8; ++i)
            if (Data4[i] != o.Data4[i])
                return false;
        return true;
    }
    constexpr bool operator!=(const GUID& o) const { return !(*this == o); }
    constexpr bool operator<(const GUID& o) const {
        if (Data1 != o.Data1)
            return Data1 < o.Data1;
        if (Data2 != o.Data2)
            return Data2 < o.Data2;
        if (Data3 != o.Data3)
            return Data3 < o.Data3;
        for (int i = 0; i < 8; ++i)
            if (Data4[i] != o.Data4[i])
                return Data4[i] < o.Data4[i];
        return false;
    }
};
typedef GUID IID;
typedef GUID CLSID;
typedef const GUID& REFGUID;
typedef const GUID& REFIID;

namespace afx_detail {
constexpr int HexDigit(char c) {
    return (c >= '0' && c <= '9')   ? c - '0'
           : (c >= 'a' && c <= 'f') ? c - 'a' + 10
           : (c >= 'A' && c <= 'F') ? c - 'A' + 10
                                    : -1;
}
// Reads `digits` hex digits at text[pos]; a bad digit makes the constant expression fail.
constexpr uint32_t ReadHex(const char* text, int pos, int digits) {
    uint32_t v = 0;
    for (int i = 0; i < digits; ++i) {
        const int d = HexDigit(text[pos + i]);
        if (d < 0)
            throw "bad hex digit in GUID text";
        v = (v << 4) | uint32_t(d);
    }
    return v;
}
} // namespace afx_detail

// A GUID from "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx", braces optional. Evaluated at compile
// time when used in a constexpr context; malformed text is then a compile error.
constexpr GUID GuidFromString(const char* text) {
    int p = text[0] == '{' ? 1 : 0;
    if (text[p + 8] != '-' || text[p + 13] != '-' || text[p + 18] != '-' || text[p + 23] != '-')
        throw "malformed GUID text";
    GUID g{afx_detail::ReadHex(text, p, 8),
           uint16_t(afx_detail::ReadHex(text, p + 9, 4)),
           uint16_t(afx_detail::ReadHex(text, p + 14, 4)),
           {}};
    g.Data4[0] = uint8_t(afx_detail::ReadHex(text, p + 19, 2));
    g.Data4[1] = uint8_t(afx_detail::ReadHex(text, p + 21, 2));
    for (int i = 0; i < 6; ++i)
        g.Data4[2 + i] = uint8_t(afx_detail::ReadHex(text, p + 24 + 2 * i, 2));
    return g;
}
// Upper-case registry form with braces; buf must hold 39 bytes.
void GuidToString(const GUID& g, char buf[39]);

// ---------------------------------------------------------------- message boxes
constexpr UINT MB_OK = 0x00000000;
constexpr UINT MB_OKCANCEL = 0x00000001;
constexpr UINT MB_ABORTRETRYIGNORE = 0x00000002;
constexpr UINT MB_YESNOCANCEL = 0x00000003;
constexpr UINT MB_YESNO = 0x00000004;
constexpr UINT MB_RETRYCANCEL = 0x00000005;
constexpr UINT MB_TYPEMASK = 0x0000000F;
constexpr UINT MB_ICONHAND = 0x00000010;
constexpr UINT MB_ICONERROR = MB_ICONHAND;
constexpr UINT MB_ICONSTOP = MB_ICONHAND;
constexpr UINT MB_ICONQUESTION = 0x00000020;
constexpr UINT MB_ICONEXCLAMATION = 0x00000030;
constexpr UINT MB_ICONWARNING = MB_ICONEXCLAMATION;
constexpr UINT MB_ICONASTERISK = 0x00000040;
constexpr UINT MB_ICONINFORMATION = MB_ICONASTERISK;
constexpr UINT MB_ICONMASK = 0x000000F0;
constexpr UINT MB_DEFBUTTON1 = 0x00000000;
constexpr UINT MB_DEFBUTTON2 = 0x00000100;
constexpr UINT MB_DEFBUTTON3 = 0x00000200;
constexpr UINT MB_DEFMASK = 0x00000F00;

constexpr int IDOK = 1;
constexpr int IDCANCEL = 2;
constexpr int IDABORT = 3;
constexpr int IDRETRY = 4;
constexpr int IDIGNORE = 5;
constexpr int IDYES = 6;
constexpr int IDNO = 7;
constexpr int IDCLOSE = 8;
constexpr int IDC_STATIC = -1;

// ---------------------------------------------------------------- window messages
constexpr UINT WM_NULL = 0x0000;
constexpr UINT WM_CREATE = 0x0001;
constexpr UINT WM_DESTROY = 0x0002;
constexpr UINT WM_MOVE = 0x0003;
constexpr UINT WM_SIZE = 0x0005;
constexpr UINT WM_SETFOCUS = 0x0007;
constexpr UINT WM_KILLFOCUS = 0x0008;
constexpr UINT WM_ENABLE = 0x000A;
constexpr UINT WM_SETTEXT = 0x000C;
constexpr UINT WM_GETTEXT = 0x000D;
constexpr UINT WM_ERASEBKGND = 0x0014;
constexpr UINT WM_CLOSE = 0x0010;
constexpr UINT WM_SHOWWINDOW = 0x0018;
constexpr UINT WM_NOTIFY = 0x004E;
constexpr UINT WM_CONTEXTMENU = 0x007B;
constexpr UINT WM_KEYDOWN = 0x0100;
constexpr UINT WM_KEYUP = 0x0101;
constexpr UINT WM_CHAR = 0x0102;
constexpr UINT WM_INITDIALOG = 0x0110;
constexpr UINT WM_COMMAND = 0x0111;
constexpr UINT WM_TIMER = 0x0113;
constexpr UINT WM_HSCROLL = 0x0114;
constexpr UINT WM_VSCROLL = 0x0115;
constexpr UINT WM_MOUSEMOVE = 0x0200;
constexpr UINT WM_LBUTTONDOWN = 0x0201;
constexpr UINT WM_LBUTTONUP = 0x0202;
constexpr UINT WM_LBUTTONDBLCLK = 0x0203;
constexpr UINT WM_RBUTTONDOWN = 0x0204;
constexpr UINT WM_RBUTTONUP = 0x0205;
constexpr UINT WM_MOUSEWHEEL = 0x020A;
constexpr UINT WM_USER = 0x0400;
constexpr UINT WM_APP = 0x8000;

// WM_SIZE kinds
constexpr UINT SIZE_RESTORED = 0;
constexpr UINT SIZE_MINIMIZED = 1;
constexpr UINT SIZE_MAXIMIZED = 2;

// ---------------------------------------------------------------- virtual keys
constexpr UINT VK_BACK = 0x08;
constexpr UINT VK_TAB = 0x09;
constexpr UINT VK_RETURN = 0x0D;
constexpr UINT VK_SHIFT = 0x10;
constexpr UINT VK_CONTROL = 0x11;
constexpr UINT VK_MENU = 0x12;
constexpr UINT VK_ESCAPE = 0x1B;
constexpr UINT VK_SPACE = 0x20;
constexpr UINT VK_PRIOR = 0x21;
constexpr UINT VK_NEXT = 0x22;
constexpr UINT VK_END = 0x23;
constexpr UINT VK_HOME = 0x24;
constexpr UINT VK_LEFT = 0x25;
constexpr UINT VK_UP = 0x26;
constexpr UINT VK_RIGHT = 0x27;
constexpr UINT VK_DOWN = 0x28;
constexpr UINT VK_INSERT = 0x2D;
constexpr UINT VK_DELETE = 0x2E;
constexpr UINT VK_F1 = 0x70;
constexpr UINT VK_F2 = 0x71;
constexpr UINT VK_F5 = 0x74;

struct MSG {
    HWND hwnd;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    DWORD time;
    POINT pt;
};
