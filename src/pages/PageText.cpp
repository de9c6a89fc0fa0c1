#include "pages/PageText.h"

#include "module/ParmiraApp.h"
#include "module/host/IHostUiService.h"

#include <afx/afxres.h>

namespace pagetext {

CString LoadString(UINT id) {
    CString text;
    if (IHostUiService* ui = theApp.GetUiService())
        if (ui->GetString(text, theApp.m_hResource, id, 0))
            return text;
    AfxLoadStringFrom(theApp.m_hResource, id, text);
    return text;
}

} // namespace pagetext
