// The four functions a module exports by name, and the query callback the host gives it.
// The host binds them with dlsym after loading the module; the module defines them
// extern "C" with default visibility.
#pragma once

#include "module/host/BaseInterface.h"

// The host's query callback. Writes to *out a pointer to the interface named by `iid`
// (a pointer of that interface type, converted to void*), or null when the host has
// none. `context` is the word the host gave with SetQueryInterfaceCallback, unread by
// the module. Services are the host's; the module never deletes them.
typedef void (*QueryInterfaceCallback)(uintptr_t context, const GUID* iid, void** out);

extern "C" {
// Stores context and callback, and subscribes the module's language and active-view
// sinks when the callback is not null.
typedef void (*PFN_SetQueryInterfaceCallback)(uintptr_t context, QueryInterfaceCallback callback);
// 1 when the module offers `iid`, else 0.
typedef int (*PFN_SupportedInterface)(const GUID* iid);
// A new instance of the interface `iid` (an IQXParmira*, as IBaseInterface*), or null.
// The module keeps it in its registry until SafeRelease or the instance's Release.
typedef IBaseInterface* (*PFN_CreateInterFace)(const GUID* iid);
// Destroys the instance *instance made by CreateInterFace; `iid` is not read. Nonzero
// and *instance null when found; 0 and *instance untouched when not.
typedef int (*PFN_SafeRelease)(const GUID* iid, void** instance);
}

inline constexpr const char* kExportSetQueryInterfaceCallback = "SetQueryInterfaceCallback";
inline constexpr const char* kExportSupportedInterface = "SupportedInterface";
inline constexpr const char* kExportCreateInterFace = "CreateInterFace";
inline constexpr const char* kExportSafeRelease = "SafeRelease";
