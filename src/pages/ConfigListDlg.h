// CConfigListDlg: the choice of the columns a list page shows (dialog 155, "筛选列"). A
// column is hidden by width 0 and brought back at a remembered width; none is removed.
#pragma once

#include "module/host/HostFwd.h"

#include <skin/ZorSkin.h>

constexpr UINT IDD_CONFIG_LIST = 155;
constexpr UINT ID_CHOOSE_COLUMNS = 32817;
constexpr int CONFIG_LIST_VALUES = 14;

// Registers the dialog's template under `module` (the module's resource handle).
void RegisterConfigListResources(HINSTANCE module);

class CConfigListDlg : public CZorSkinPDialog {
public:
    struct Box {
        UINT id;
        const char* label;
        int index; // the value index in the single-axis layout, before the axis shift
    };
    // The boxes in the order of the dialog; "设定值" (2087) stays hidden and has no value.
    static const Box kBoxes[13];

    explicit CConfigListDlg(CWnd* pParent = nullptr);
    ~CConfigListDlg() override;

    // Copies `count` widths in; a nonzero entry comes up ticked.
    void SetColumnWidths(const int* widths, int count);
    void SetMultiAxis(BOOL multiAxis) { m_bMultiAxis = multiAxis; }
    // The value index of a box for the flag set with SetMultiAxis.
    int ValueIndex(const Box& box) const { return box.index == 0 ? 0 : box.index + m_bMultiAxis; }
    // After OK: nonzero for a ticked box.
    int m_values[CONFIG_LIST_VALUES] = {};

protected:
    BOOL OnInitDialog() override;
    void OnOK() override;

private:
    BOOL m_bMultiAxis = FALSE;
    IHostWindowTranslator* m_pTranslator = nullptr;
};
