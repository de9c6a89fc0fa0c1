// Resources are tables registered in code under a module's resource handle (HINSTANCE):
// the string table, dialog templates, menus and icons. A module registers them while its
// application object runs InitInstance; the host looks strings up by (handle, id).
#pragma once

#include <afx/CString.h>
#include <afx/afxtypes.h>

#include <initializer_list>
#include <utility>

// The handle resources are read from by default (LoadString, dialog and menu loading).
// Before any module is loaded it is the program's own handle.
HINSTANCE AfxGetResourceHandle();
void AfxSetResourceHandle(HINSTANCE h);
// The program's own handle.
HINSTANCE AfxGetInstanceHandle();
// A new, empty resource handle; `name` is for diagnostics. Freed by AfxFreeResourceHandle.
HINSTANCE AfxCreateResourceHandle(const char* name);
void AfxFreeResourceHandle(HINSTANCE h);
const char* AfxGetResourceHandleName(HINSTANCE h);

// ---------------------------------------------------------------- string table
void AfxRegisterString(HINSTANCE h, UINT id, const char* text);
void AfxRegisterStringTable(HINSTANCE h, std::initializer_list<std::pair<UINT, const char*>> table);
// Looks up text `id` under `h`; FALSE if there is none.
BOOL AfxLoadStringFrom(HINSTANCE h, UINT id, CString& text);
