// CLinkEditComboBox: the search box of the connector dialog. Enter keeps the text in the
// box's history and tells the dialog to search for it.
#pragma once

#include <skin/ZorSkin.h>

// Posted to the dialog with the index of the entry to search for.
constexpr UINT UM_LINK_SEARCH = 0x1400;

class CLinkEditComboBox : public CZorSkinPComboBox {
public:
    void SetDialog(CWnd* dialog) { m_pDialog = dialog; }
    // Enter in the box: the text joins the history once, is selected, and the dialog hears
    // of it.
    void OnEnter();
    BOOL PreTranslateMessage(MSG* pMsg) override;

private:
    CWnd* m_pDialog = nullptr;
};
