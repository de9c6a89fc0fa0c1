// The tools above each list, in the order they stand. Each takes the width its text
// needs in the language shown, and a row that is full wraps to the next one, so no
// control is cut or pushed out of a narrow window.
#include "pages/PageResources.h"
#include "pages/VarTablePage1.h"
#include "pages/VarTablePage2.h"
#include "pages/VarTablePageBase.h"
#include "table/VarTable.h"

#include <skin/ZorSkinLayout.h>

namespace {

constexpr int kGap = 4;
constexpr int kSearchWidth = 150;

const std::vector<ZorSkinToolSlot>& FirstPageTools() {
    static const std::vector<ZorSkinToolSlot> tools = {
        {{IDC_PAGE1_UPLOAD_SAVE}},
        {{IDC_PAGE1_OPEN_DOWNLOAD}},
        {{IDC_PAGE1_COMPARE}},
        {{IDC_PAGE1_FIND_LABEL}, 0, TRUE},
        {{IDC_PAGE1_SEARCH}, kSearchWidth},
        {{IDC_PAGE1_AXIS_COPY}},
        {{UINT(IDC_STATIC)}, 0, TRUE},
        {{IDC_PAGE_ACCESS}},
        {{IDC_PAGE_UPDATE_ATTRIBUTES}},
    };
    return tools;
}

const std::vector<ZorSkinToolSlot>& SecondPageTools() {
    static const std::vector<ZorSkinToolSlot> tools = {
        {{IDC_PAGE2_UPLOAD_SAVE}},
        {{IDC_PAGE2_OPEN_RECIPE}},
        {{IDC_PAGE2_WRITE_CHECKED}},
        {{IDC_PAGE2_FILTER}},
        {{IDC_PAGE2_SELECT_ALL}},
        {{IDC_PAGE_UPDATE_ATTRIBUTES}},
        {{IDC_PAGE2_COMPARE}},
        {{IDC_PAGE2_AXIS_COPY}},
        {{IDC_PAGE_ACCESS}},
        {{IDC_PAGE2_FIND_LABEL}, 0, TRUE},
        {{IDC_PAGE2_SEARCH}, kSearchWidth},
    };
    return tools;
}

} // namespace

int CVarTablePageBase::ArrangeTools(int cx) {
    std::vector<ZorSkinToolSlot> shown;
    for (const ZorSkinToolSlot& slot : m_bFirstPage ? FirstPageTools() : SecondPageTools()) {
        CWnd* control = GetDlgItem(int(slot.ids.front()));
        // A tool the module doesn't offer (no axis copy, no attribute update) takes no room.
        if (control != nullptr && (control->GetStyle() & WS_VISIBLE) != 0)
            shown.push_back(slot);
    }
    return ZorSkinFlowControls(this, shown, CRect(kGap, 3, cx - kGap, 3), kGap);
}

void CVarTablePageBase::Relayout() {
    if (GetSafeHwnd() == nullptr)
        return;
    CRect client;
    GetClientRect(&client);
    OnSize(0, client.Width(), client.Height());
}

void CVarTablePageBase::ShowInLanguage() {
    // The entries come from the string table in the language chosen when filled.
    CAccessSelector* selector = GetAccessSelector();
    if (selector != nullptr && m_pTable != nullptr && m_pTable->GetModule() != nullptr)
        selector->FillAccessBox();
    TranslateHeldMenus();
    Relayout();
}
