#include "controls/NoWheelComboBox.h"

LRESULT CNoWheelComboBox::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    // Swallowed before any handler sees it: not passing it on keeps the box's own
    // reaction (stepping through the entries) from running.
    if (message == WM_MOUSEWHEEL)
        return 0;
    return CZorSkinPComboBox::WindowProc(message, wParam, lParam);
}
