// Resources are tables registered in code under a module's resource handle (HINSTANCE):
// the string table, dialog templates, menus and icons. A module registers them while its
// application object runs InitInstance; the host looks strings up by (handle, id).
#pragma once

#include <afx/CString.h>
#include <afx/afxtypes.h>

#include <cstdint>
#include <initializer_list>
#include <utility>
#include <vector>

// The handle resources are read from by default (LoadString, dialog and menu loading).
// Before any module is loaded it is the program's own handle.
HINSTANCE AfxGetResourceHandle();
void AfxSetResourceHandle(HINSTANCE h);
// The program's own handle.
HINSTANCE AfxGetInstanceHandle();
// A new, empty resource handle; `name` is for diagnostics. Freed by AfxFreeResourceHandle.
HINSTANCE AfxCreateResourceHandle(const char* name);
void AfxFreeResourceHandle(HINSTANCE h);

// ---------------------------------------------------------------- string table
void AfxRegisterString(HINSTANCE h, UINT id, const char* text);
void AfxRegisterStringTable(HINSTANCE h, std::initializer_list<std::pair<UINT, const char*>> table);
// Looks up text `id` under `h`; FALSE if there is none.
BOOL AfxLoadStringFrom(HINSTANCE h, UINT id, CString& text);

// ---------------------------------------------------------------- styles
// Window styles, shared by templates and Create calls.
constexpr DWORD WS_OVERLAPPED = 0x00000000;
constexpr DWORD WS_POPUP = 0x80000000;
constexpr DWORD WS_CHILD = 0x40000000;
constexpr DWORD WS_VISIBLE = 0x10000000;
constexpr DWORD WS_DISABLED = 0x08000000;
constexpr DWORD WS_CLIPSIBLINGS = 0x04000000;
constexpr DWORD WS_CLIPCHILDREN = 0x02000000;
constexpr DWORD WS_CAPTION = 0x00C00000;
constexpr DWORD WS_BORDER = 0x00800000;
constexpr DWORD WS_VSCROLL = 0x00200000;
constexpr DWORD WS_HSCROLL = 0x00100000;
constexpr DWORD WS_SYSMENU = 0x00080000;
constexpr DWORD WS_THICKFRAME = 0x00040000;
constexpr DWORD WS_GROUP = 0x00020000;
constexpr DWORD WS_TABSTOP = 0x00010000;
constexpr DWORD WS_EX_CLIENTEDGE = 0x00000200;

constexpr DWORD ES_LEFT = 0x0000;
constexpr DWORD ES_CENTER = 0x0001;
constexpr DWORD ES_RIGHT = 0x0002;
constexpr DWORD ES_MULTILINE = 0x0004;
constexpr DWORD ES_UPPERCASE = 0x0008;
constexpr DWORD ES_LOWERCASE = 0x0010;
constexpr DWORD ES_PASSWORD = 0x0020;
constexpr DWORD ES_AUTOVSCROLL = 0x0040;
constexpr DWORD ES_AUTOHSCROLL = 0x0080;
constexpr DWORD ES_NOHIDESEL = 0x0100;
constexpr DWORD ES_READONLY = 0x0800;
constexpr DWORD ES_WANTRETURN = 0x1000;
constexpr DWORD ES_NUMBER = 0x2000;

constexpr DWORD BS_PUSHBUTTON = 0x0000;
constexpr DWORD BS_DEFPUSHBUTTON = 0x0001;
constexpr DWORD BS_CHECKBOX = 0x0002;
constexpr DWORD BS_AUTOCHECKBOX = 0x0003;
constexpr DWORD BS_RADIOBUTTON = 0x0004;
constexpr DWORD BS_GROUPBOX = 0x0007;
constexpr DWORD BS_AUTORADIOBUTTON = 0x0009;
constexpr DWORD BS_MULTILINE = 0x2000;

constexpr DWORD SS_LEFT = 0x0000;
constexpr DWORD SS_CENTER = 0x0001;
constexpr DWORD SS_RIGHT = 0x0002;
constexpr DWORD SS_CENTERIMAGE = 0x0200;
constexpr DWORD SS_NOTIFY = 0x0100;
constexpr DWORD SS_SUNKEN = 0x1000;

constexpr DWORD CBS_SIMPLE = 0x0001;
constexpr DWORD CBS_DROPDOWN = 0x0002;
constexpr DWORD CBS_DROPDOWNLIST = 0x0003;
constexpr DWORD CBS_AUTOHSCROLL = 0x0040;

constexpr DWORD LVS_ICON = 0x0000;
constexpr DWORD LVS_REPORT = 0x0001;
constexpr DWORD LVS_SINGLESEL = 0x0004;
constexpr DWORD LVS_SHOWSELALWAYS = 0x0008;
constexpr DWORD LVS_OWNERDATA = 0x1000;
constexpr DWORD LVS_NOCOLUMNHEADER = 0x4000;
constexpr DWORD LVS_NOSORTHEADER = 0x8000;
constexpr DWORD LVS_EX_GRIDLINES = 0x00000001;
constexpr DWORD LVS_EX_CHECKBOXES = 0x00000004;
constexpr DWORD LVS_EX_FULLROWSELECT = 0x00000020;
constexpr DWORD LVS_EX_DOUBLEBUFFER = 0x00010000;

constexpr DWORD TVS_HASBUTTONS = 0x0001;
constexpr DWORD TVS_HASLINES = 0x0002;
constexpr DWORD TVS_LINESATROOT = 0x0004;
constexpr DWORD TVS_SHOWSELALWAYS = 0x0020;
constexpr DWORD TVS_CHECKBOXES = 0x0100;
constexpr DWORD TVS_FULLROWSELECT = 0x1000;

// ---------------------------------------------------------------- dialog templates
// Coordinates and sizes are in pixels, relative to the dialog's client area.
enum class DlgCtl {
    Button,        // push button; BS_DEFPUSHBUTTON makes it the default button
    Check,         // check box
    Radio,         // radio button; WS_GROUP starts a new group
    Edit,          // ES_MULTILINE, ES_READONLY, ES_PASSWORD, ES_NUMBER apply
    Static,        // text label
    GroupBox,      // framed caption; it does not own the controls inside it
    ComboDropList, // choice from a list only
    ComboDropDown, // list with an editable text
    Tree,
    List,   // report view; LVS_OWNERDATA for a virtual list
    Custom, // empty placeholder or container; code puts its own window there
};

struct DlgControl {
    UINT id;
    DlgCtl kind;
    const char* text;
    int x, y, cx, cy;
    DWORD style = 0; // WS_DISABLED, WS_GROUP, ES_*, BS_*, CBS_*, LVS_*, TVS_* flags
    bool hidden = false;
};

// WS_CHILD: created by Create(id, parent) inside its parent (panels, pages); otherwise a
// window of its own owned by its parent. WS_VISIBLE: Create shows it at once. DoModal
// always makes a window of its own. The size is that of the client area.
struct DlgTemplate {
    UINT id;
    const char* caption;
    int cx, cy;
    std::vector<DlgControl> controls = {};
    DWORD style = WS_POPUP | WS_VISIBLE;
};

// Registers (a copy of) a dialog template under `h`; a later one with the same id replaces it.
void AfxRegisterDialog(HINSTANCE h, const DlgTemplate& tmpl);
// Finds template `id` under `h`, else under any handle; nullptr if none. The pointer stays
// valid until the handle is freed or the template replaced.
const DlgTemplate* AfxFindDialogTemplate(HINSTANCE h, UINT id);

// ---------------------------------------------------------------- menus
constexpr UINT MF_STRING = 0x0000;
constexpr UINT MF_ENABLED = 0x0000;
constexpr UINT MF_UNCHECKED = 0x0000;
constexpr UINT MF_BYCOMMAND = 0x0000;
constexpr UINT MF_GRAYED = 0x0001;
constexpr UINT MF_DISABLED = 0x0002;
constexpr UINT MF_CHECKED = 0x0008;
constexpr UINT MF_POPUP = 0x0010;
constexpr UINT MF_BYPOSITION = 0x0400;
constexpr UINT MF_SEPARATOR = 0x0800;

// One entry of a menu template: a command (id, text), a separator (MF_SEPARATOR) or a
// popup (MF_POPUP with `items`).
struct MenuItemTemplate {
    UINT id = 0;
    const char* text = "";
    UINT flags = MF_STRING;
    std::vector<MenuItemTemplate> items = {};
};
struct MenuTemplate {
    UINT id;
    std::vector<MenuItemTemplate> items = {}; // the top level, usually popups
};
void AfxRegisterMenu(HINSTANCE h, const MenuTemplate& tmpl);
const MenuTemplate* AfxFindMenuTemplate(HINSTANCE h, UINT id);

// ---------------------------------------------------------------- icons
// An icon from image file bytes (PNG, BMP, XPM ... whatever the image readers know).
void AfxRegisterIconData(HINSTANCE h, UINT id, const unsigned char* bytes, size_t size);
// An icon from XPM text lines.
void AfxRegisterIconXpm(HINSTANCE h, UINT id, const char* const* xpm);
// An icon from 32-bit ARGB pixels, row by row.
void AfxRegisterIconPixels(HINSTANCE h, UINT id, int width, int height, const uint32_t* argb);
// The icon `id` under `h` (else any handle), nullptr if none. Icons live with their handle.
HICON AfxFindIcon(HINSTANCE h, UINT id);
