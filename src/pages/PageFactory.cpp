#include "pages/VarTablePage1.h"
#include "pages/VarTablePage2.h"
#include "table/VarTable.h"

CVarTablePage* CreateVarTablePage(int style) {
    switch (style) {
    case 0:
        return new CVarTablePage1();
    case 1:
        return new CVarTablePage2();
    default:
        return nullptr;
    }
}
