#include "table/StackedDialog.h"

TStackedDialog::~TStackedDialog() {
    // Pages are children of this host; their windows go with it, their objects here.
    for (Page& page : m_pages) {
        if (page.card->GetSafeHwnd() != nullptr)
            page.card->DestroyWindow();
        delete page.card;
    }
    m_pages.clear();
    m_pActive = nullptr;
}

BOOL TStackedDialog::AddPage(UINT id, TCard* card) {
    if (card == nullptr)
        return FALSE;
    if (GetSafeHwnd() == nullptr || GetPage(id) != nullptr || !card->Create(id, this)) {
        delete card;
        return FALSE;
    }
    m_pages.push_back({id, card});
    if (m_pActive == nullptr) {
        m_pActive = card;
        m_activeId = id;
        CRect rc;
        GetClientRect(&rc);
        card->MoveWindow(&rc);
        card->EnableWindow(TRUE);
        card->ShowWindow(SW_SHOW);
    } else {
        card->EnableWindow(FALSE);
        card->ShowWindow(SW_HIDE);
    }
    return TRUE;
}

TCard* TStackedDialog::GetPage(UINT id) const {
    for (const Page& page : m_pages)
        if (page.id == id)
            return page.card;
    return nullptr;
}

void TStackedDialog::SetActivePage(UINT id) {
    TCard* card = GetPage(id);
    if (card == nullptr || card == m_pActive)
        return;
    if (m_pActive != nullptr && m_pActive->GetSafeHwnd() != nullptr) {
        m_pActive->EnableWindow(FALSE);
        m_pActive->ShowWindow(SW_HIDE);
    }
    m_pActive = card;
    m_activeId = id;
    if (card->GetSafeHwnd() != nullptr) {
        CRect rc;
        GetClientRect(&rc);
        card->MoveWindow(&rc);
        card->EnableWindow(TRUE);
        card->ShowWindow(SW_SHOW);
    }
}

void TStackedDialog::OnSize(UINT nType, int cx, int cy) {
    CZorSkinPDialog::OnSize(nType, cx, cy);
    // Every page fills the host, the hidden one too, so a switch shows it at its size.
    for (Page& page : m_pages)
        if (page.card->GetSafeHwnd() != nullptr)
            page.card->MoveWindow(0, 0, cx, cy);
}
