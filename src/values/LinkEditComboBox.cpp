#include "values/LinkEditComboBox.h"

void CLinkEditComboBox::OnEnter() {
    CString text;
    GetWindowText(text);
    int index = -1;
    for (int i = 0; i < GetCount() && index < 0; ++i) {
        CString entry;
        GetLBText(i, entry);
        if (entry == text)
            index = i;
    }
    if (index < 0)
        index = AddString(text.GetString());
    SetCurSel(index);
    if (m_pDialog != nullptr)
        m_pDialog->PostMessage(UM_LINK_SEARCH, WPARAM(index), 0);
}

BOOL CLinkEditComboBox::PreTranslateMessage(MSG* pMsg) {
    if (pMsg->message == WM_KEYDOWN && pMsg->wParam == VK_RETURN) {
        OnEnter();
        return TRUE;
    }
    return CZorSkinPComboBox::PreTranslateMessage(pMsg);
}
