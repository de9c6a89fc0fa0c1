#include "pages/SearcherComboBox.h"

BOOL CSearcherComboBox::PreTranslateMessage(MSG* pMsg) {
    if (pMsg->message == WM_KEYDOWN && pMsg->wParam == VK_RETURN && m_pOwner != nullptr &&
        m_pOwner->GetSafeHwnd() != nullptr)
        m_pOwner->PostMessage(UM_SEARCH_ENTER, 0, 0);
    return CZorSkinPComboBox::PreTranslateMessage(pMsg);
}
