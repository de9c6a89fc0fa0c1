// CLocalResource: a scope in which resources (dialogs, menus, icons, strings) come from
// the module. Construction remembers the framework's current resource handle and, when
// the module's handle isn't null, makes that one current; destruction restores the
// remembered handle. Every entry from the host that loads a resource opens one.
#pragma once

#include <afx/afxtypes.h>

class CLocalResource {
public:
    // `moduleHandle` is the module's resource handle, taken in InitInstance; null leaves
    // the current handle in place.
    explicit CLocalResource(HINSTANCE moduleHandle);
    ~CLocalResource();

    CLocalResource(const CLocalResource&) = delete;
    CLocalResource& operator=(const CLocalResource&) = delete;

    // The handle that was current when the scope opened.
    HINSTANCE GetPreviousHandle() const { return m_previous; }

private:
    HINSTANCE m_previous;
};
