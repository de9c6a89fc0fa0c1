// CNoWheelComboBox: a drop-down list that ignores the mouse wheel, so that scrolling the
// page over it never changes its choice by accident.
#pragma once

#include <skin/ZorSkin.h>

class CNoWheelComboBox : public CZorSkinPComboBox {
public:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
};
