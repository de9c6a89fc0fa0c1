// The frame's layout and what it shows of the drive's connection.
#include "module/ParmiraApp.h"
#include "module/host/IHostDeviceModule.h"
#include "pages/VarTablePageBase.h"
#include "table/ParmiraDialog.h"
#include "table/TableResources.h"
#include "table/VarTable.h"

#include <skin/ZorSkinLayout.h>

#include <algorithm>

namespace {

constexpr int kMinTreeWidth = 150;

} // namespace

void CVarTable::RecalcLayout() {
    if (GetSafeHwnd() == nullptr)
        return;
    CRect client;
    GetClientRect(&client);
    CWnd* tree = GetDlgItem(int(IDC_GROUP_TREE));
    CWnd* treeSplitter = GetDlgItem(int(IDC_TREE_SPLITTER));
    CWnd* stack = GetDlgItem(int(IDC_STACK_PLACEHOLDER));
    CWnd* textSplitter = GetDlgItem(int(IDC_TEXT_SPLITTER));
    CWnd* text = GetDlgItem(int(IDC_VAR_DESCRIPTION));
    if (tree == nullptr || treeSplitter == nullptr || stack == nullptr || textSplitter == nullptr ||
        text == nullptr)
        return;
    // Tree and text box keep their widths; the splitters stand beside them and the
    // stacked area takes what is left. An empty text box takes no room at all.
    CString description;
    text->GetWindowText(description);
    const BOOL showText = !description.IsEmpty();
    CRect r;
    tree->GetWindowRect(&r);
    const int treeWidth = r.Width();
    treeSplitter->GetWindowRect(&r);
    const int splitWidth1 = r.Width();
    textSplitter->GetWindowRect(&r);
    const int splitWidth2 = r.Width();
    text->GetWindowRect(&r);
    const int textWidth = r.Width();
    const int h = client.Height();
    int x = 0;
    tree->MoveWindow(x, 0, treeWidth, h);
    x += treeWidth;
    treeSplitter->MoveWindow(x, 0, splitWidth1, h);
    x += splitWidth1;
    const int textLeft = showText ? std::max(x, client.Width() - textWidth) : client.Width();
    const int splitLeft = showText ? std::max(x, textLeft - splitWidth2) : client.Width();
    stack->MoveWindow(x, 0, std::max(0, splitLeft - x), h);
    // Hidden, the two keep their widths for the next text.
    textSplitter->MoveWindow(splitLeft, 0, splitWidth2, h);
    text->MoveWindow(showText ? textLeft : client.Width(), 0, textWidth, h);
    textSplitter->ShowWindow(showText ? SW_SHOW : SW_HIDE);
    text->ShowWindow(showText ? SW_SHOW : SW_HIDE);
    if (m_stack.GetSafeHwnd() != nullptr) {
        CRect inner;
        stack->GetClientRect(&inner);
        m_stack.MoveWindow(&inner);
    }
}

void CVarTable::FitTreeWidth() {
    CWnd* tree = GetDlgItem(int(IDC_GROUP_TREE));
    if (tree == nullptr)
        return;
    CRect client, r;
    GetClientRect(&client);
    tree->GetWindowRect(&r);
    // A tree the user made wider stays so. The list keeps most of the room: where the
    // panel is wide enough, room for its main columns, else for those up to the value.
    int most = client.Width() * 3 / 10;
    CWnd* splitter = GetDlgItem(int(IDC_TREE_SPLITTER));
    CRect split;
    if (splitter != nullptr)
        splitter->GetWindowRect(&split);
    for (CVarTablePage* page : {m_pPage1, m_pPage2}) {
        auto* base = dynamic_cast<CVarTablePageBase*>(page);
        if (base == nullptr || base->GetSafeHwnd() == nullptr || !base->IsWindowVisible())
            continue;
        const int room = client.Width() - split.Width() - base->MainColumnsWidth();
        const int roomBesideValue = client.Width() - split.Width() - base->MainColumnsWidth(TRUE);
        if (room >= kMinTreeWidth)
            most = std::min(most, room);
        else // the list scrolls anyway: the tree's texts may take what the values leave
            most = std::max(most, roomBesideValue);
    }
    const int need = std::min(ZorSkinTreeContentWidth(&m_tree), most);
    // A width set here may shrink again (another page, other texts); one the user chose
    // may not.
    const int kept = r.Width() == m_fittedTreeWidth ? 0 : int(r.Width());
    const int width = std::max({kMinTreeWidth, need, kept});
    m_fittedTreeWidth = width;
    if (width == r.Width())
        return;
    tree->MoveWindow(0, 0, width, r.Height());
    RecalcLayout();
}

void CVarTable::ShowOnlineState() {
    const int online = m_pModule != nullptr && m_pModule->IsOnline() ? 1 : 0;
    if (m_pModule == nullptr || online == m_shownOnline)
        return;
    m_shownOnline = online;
    // Offline the list keeps the last values read, greyed, and the panel says why: an
    // edit would only fail at the commit.
    if (m_pPanel != nullptr && m_pPanel->GetSafeHwnd() != nullptr)
        m_pPanel->ShowNotice();
    for (CVarTablePage* page : {m_pPage1, m_pPage2})
        if (page != nullptr && page->GetSafeHwnd() != nullptr)
            if (CWnd* list = page->GetDlgItem(int(IDC_PAGE_LIST)))
                list->Invalidate(FALSE);
}

void CVarTable::ShowPagesInLanguage() {
    for (CVarTablePage* page : {m_pPage1, m_pPage2})
        if (auto* base = dynamic_cast<CVarTablePageBase*>(page))
            base->ShowInLanguage();
    FitTreeWidth();
}
