// The stacked host of the table frame and the pages it holds.
#pragma once

#include "module/host/HostFwd.h"

#include <skin/ZorSkin.h>

#include <vector>

class CVarTable;

// A page of a TStackedDialog. Enter and Escape must not end a page, so OK and Cancel do
// nothing.
class TCard : public CZorSkinPDialog {
public:
    TCard() = default;
    explicit TCard(UINT nIDTemplate, CWnd* pParent = nullptr)
        : CZorSkinPDialog(nIDTemplate, pParent) {}

protected:
    void OnOK() override {}
    void OnCancel() override {}
};

// What both list pages offer the frame. The frame dispatches a tree selection to the page
// of the current list style through these, and reads the shown rows back for the save
// flows. The first page adds PollAuthority; the second page keeps the default.
class CVarTablePage : public TCard {
public:
    explicit CVarTablePage(UINT nIDTemplate) : TCard(nIDTemplate) {}

    // Links the page to its frame before the window is created.
    virtual void SetTable(CVarTable* table) { m_pTable = table; }
    CVarTable* GetTable() const { return m_pTable; }

    virtual void ShowAllParameters(IVarStore* varList) = 0;
    virtual void ShowGroup(IGroupNode* group, IVarStore* varList) = 0;
    virtual void ShowAxis(IHostAxis* axis, IVarStore* varList) = 0;
    virtual void ShowCategory(IGroupCategory* category, IVarStore* varList) = 0;
    virtual void ShowCustomRoot(IVarStore* varList) = 0;
    virtual void ShowModified(IVarStore* varList, int mode) = 0;
    virtual void RepaintList() = 0;
    virtual void SubmitRefreshQuery() = 0;
    virtual void PollAuthority() {}
    // Forgets what the page derived from the attributes (they were reloaded).
    virtual void DropSearchCache() {}
    // Prepares the search texts of the rows on show while the program is idle.
    virtual void PrepareSearchWhenIdle() {}
    // Writes the rows on show to a compressed export file.
    virtual void ExportZxd() {}

    virtual int GetShownCount() const = 0;
    virtual IVarObjEx* GetShownVar(int index) const = 0;
    // Appends every shown row, in row order.
    virtual void CollectShown(std::vector<IVarObjEx*>& list) const = 0;
    // Command 2146 "另存为...": the shown rows as a parameter file or table.
    virtual void SaveRowsAs() {}

protected:
    CVarTable* m_pTable = nullptr;
};

// Holds TCard pages by id; the first page added becomes the active one.
class TStackedDialog : public CZorSkinPDialog {
public:
    TStackedDialog() = default;
    ~TStackedDialog() override;

    // Creates the card's window from dialog resource `id` as a child of this host and
    // takes ownership. When creation fails the card is deleted and FALSE returned.
    BOOL AddPage(UINT id, TCard* card);
    // Hides and disables the active page, shows and enables the page of `id`, and fits
    // the host to it. Nothing happens for an unknown id or the page already active.
    void SetActivePage(UINT id);
    TCard* GetPage(UINT id) const;
    TCard* GetActivePage() const { return m_pActive; }
    UINT GetActivePageId() const { return m_activeId; }

protected:
    void OnSize(UINT nType, int cx, int cy) override;

private:
    struct Page {
        UINT id;
        TCard* card;
    };
    std::vector<Page> m_pages;
    TCard* m_pActive = nullptr;
    UINT m_activeId = 0;
};
