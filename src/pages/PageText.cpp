#include "pages/PageText.h"

#include "module/ParmiraApp.h"

namespace pagetext {

CString LoadString(UINT id) {
    return theApp.LoadText(id);
}

} // namespace pagetext
