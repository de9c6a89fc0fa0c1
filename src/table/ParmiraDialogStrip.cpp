// The panel's bottom strip: the two counts and the notice. Labels take the width their
// text needs in the language shown; the notice takes what is left.
#include "module/ModuleResources.h"
#include "table/ParmiraDialog.h"

#include <skin/ZorSkin.h>

#include <skin/ZorSkinLayout.h>

#include <algorithm>

namespace {

constexpr int kStripHeight = 30;
constexpr int kGap = 6;

} // namespace

void CParmiraDialog::ArrangeStrip() {
    if (GetSafeHwnd() == nullptr)
        return;
    CRect client;
    GetClientRect(&client);
    const int top = std::max(0, int(client.bottom) - kStripHeight);
    const std::vector<ZorSkinToolSlot> counts = {
        {{IDC_TOTAL_LABEL}}, {{IDC_TOTAL_COUNT}}, {{IDC_CURRENT_LABEL}}, {{IDC_CURRENT_COUNT}}};
    // One row whatever the width: the counts are short, the notice gives way.
    CRect area(kGap, top + 3, std::max(int(client.right), 4000), top + 3);
    ZorSkinFlowControls(this, counts, area, kGap);
    CWnd* count = GetDlgItem(int(IDC_CURRENT_COUNT));
    CWnd* notice = GetDlgItem(int(IDC_NOTICE_STRIP));
    if (count == nullptr || notice == nullptr)
        return;
    CRect r;
    count->GetWindowRect(&r);
    ScreenToClient(&r);
    const int left = r.right + 2 * kGap;
    const int width = std::max(0, int(client.right) - kGap - left);
    notice->MoveWindow(left, top + 2, width, kStripHeight - 4);
    if (m_pNotice != nullptr && m_pNotice->GetSafeHwnd() != nullptr)
        m_pNotice->MoveWindow(0, 0, width, kStripHeight - 4);
}
