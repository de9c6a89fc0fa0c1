// The search of both list pages: a filter over the rows of the present tree selection.
#include "module/ParmiraApp.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "pages/VarTablePageBase.h"
#include "table/VarTable.h"

#include <algorithm>

void CVarTablePageBase::OnSearchEnter() {
    CSearcherComboBox* box = GetSearcher();
    if (box == nullptr || box->GetSafeHwnd() == nullptr)
        return;
    CString text;
    box->GetWindowText(text);
    if (text.IsEmpty())
        return;
    if (!m_searchHistory.Contains(text)) {
        CSearchObj* entry = new CSearchObj(text);
        if (m_searchHistory.Add(text, entry))
            box->AddString(text.GetString());
        else
            delete entry;
    }
    SearchRows(text);
}

void CVarTablePageBase::OnSearchPicked() {
    CSearcherComboBox* box = GetSearcher();
    if (box == nullptr || box->GetSafeHwnd() == nullptr)
        return;
    const int index = box->GetCurSel();
    CString text;
    if (index >= 0)
        box->GetLBText(index, text);
    if (!m_bFirstPage && text.IsEmpty())
        return;
    SearchRows(text);
}

void CVarTablePageBase::SearchRows(const CString& text) {
    if (theApp.GetUiService() == nullptr || theApp.GetVarUtil() == nullptr)
        return;
    const int level = m_pTable != nullptr ? m_pTable->GetAccessLevel() : 0;
    m_searchIndex.Validate(level);
    const BOOL all = text.CompareNoCase("All") == 0 || (m_bFirstPage && text.IsEmpty());
    CString lower = text;
    lower.MakeLower();
    const bool firstPage = m_bFirstPage != FALSE;
    const std::vector<IVarObjEx*>& base = m_groupVars.GetArray();
    m_searchIndex.BeginSearch(lower.str(), base.size());
    // The base holds each variable once, so the finds go into the list in one step.
    std::vector<IVarObjEx*> found;
    found.reserve(base.size());
    for (size_t row = 0; row < base.size(); ++row) {
        IVarObjEx* var = base[row];
        IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr;
        if (attr == nullptr)
            continue;
        if (!all && !m_searchIndex.Matches(row, attr, firstPage))
            continue;
        if (m_pTable != nullptr && attr->GetAccessLevel() <= level && m_pTable->IsCatalogVar(var))
            found.push_back(var);
    }
    m_shownVars.AssignDistinct(found);
    FinishCollection(FALSE, TRUE);
}

namespace {

constexpr UINT_PTR TIMER_SEARCH_PREPARE = 2065;
// Rows prepared per tick: about a millisecond, so that typing and painting stay smooth.
constexpr size_t kPrepareSlice = 1000;

} // namespace

// A search formats the fields of every row it meets first; done here in slices while the
// program waits for the user, the first Enter finds them ready.
void CVarTablePageBase::PrepareSearchWhenIdle() {
    m_searchPrepared = 0;
    if (GetSafeHwnd() != nullptr && !m_groupVars.GetArray().empty())
        SetTimer(TIMER_SEARCH_PREPARE, 1);
}

void CVarTablePageBase::OnTimer(UINT_PTR nIDEvent) {
    if (nIDEvent != TIMER_SEARCH_PREPARE) {
        CVarTablePage::OnTimer(nIDEvent);
        return;
    }
    const std::vector<IVarObjEx*>& base = m_groupVars.GetArray();
    if (theApp.GetVarUtil() == nullptr || m_searchPrepared >= base.size()) {
        KillTimer(TIMER_SEARCH_PREPARE);
        return;
    }
    m_searchIndex.Validate(m_pTable != nullptr ? m_pTable->GetAccessLevel() : 0);
    const size_t end = std::min(base.size(), m_searchPrepared + kPrepareSlice);
    for (; m_searchPrepared < end; ++m_searchPrepared) {
        IVarObjEx* var = base[m_searchPrepared];
        if (IVarAttr* attr = var != nullptr ? var->GetAttr() : nullptr)
            m_searchIndex.Prepare(m_searchPrepared, attr, m_bFirstPage != FALSE);
    }
}

LRESULT CVarTablePageBase::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == UM_SEARCH_ENTER) {
        OnSearchEnter();
        return 0;
    }
    return CVarTablePage::WindowProc(message, wParam, lParam);
}
