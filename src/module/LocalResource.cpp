#include "module/LocalResource.h"

#include <afx/afxres.h>

CLocalResource::CLocalResource(HINSTANCE moduleHandle) : m_previous(AfxGetResourceHandle()) {
    if (moduleHandle != nullptr)
        AfxSetResourceHandle(moduleHandle);
}

CLocalResource::~CLocalResource() {
    AfxSetResourceHandle(m_previous);
}
