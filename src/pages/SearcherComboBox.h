// CSearcherComboBox: the search box of a list page (control 2065). Enter in its edit field
// tells the owner page by UM_SEARCH_ENTER; the key goes on as usual.
#pragma once

#include <skin/ZorSkin.h>

constexpr UINT UM_SEARCH_ENTER = 0x410;

// One text of a page's search history.
class CSearchObj {
public:
    explicit CSearchObj(const CString& text) : m_text(text) {}
    CString m_text;
};

class CSearcherComboBox : public CZorSkinPComboBox {
public:
    void SetOwnerPage(CWnd* owner) { m_pOwner = owner; }
    BOOL PreTranslateMessage(MSG* pMsg) override;

private:
    CWnd* m_pOwner = nullptr;
};
