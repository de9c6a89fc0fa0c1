// Dialog templates and icons of the list pages, registered under the module's handle
// the first time a page is made.
#pragma once

#include <afx/afxtypes.h>

void RegisterPageResources(HINSTANCE module);
