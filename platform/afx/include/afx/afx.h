// The whole framework.
#pragma once

#include <afx/CString.h>
#include <afx/afxcmn.h>
#include <afx/afxcoll.h>
#include <afx/afxdlgs.h>
#include <afx/afxmt.h>
#include <afx/afxres.h>
#include <afx/afxtypes.h>
#include <afx/afxwin.h>
