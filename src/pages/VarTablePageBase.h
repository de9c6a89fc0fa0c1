// CVarTablePageBase: what both list pages share. The page holds the rows on show as
// pointers into the host's store and answers the list's questions about them as the
// list paints: texts, colours, which editor a cell gets and what a committed text does.
// Nothing of a cell is kept; a repaint is all a refresh needs.
#pragma once

#include "groups/AccessSelector.h"
#include "module/TemplateList.h"
#include "module/host/HostFwd.h"
#include "module/host/IMessage_ModulePropertyUpdateEvent.h"
#include "module/host/IMessage_ModuleUploadEvent.h"
#include "pages/ListCtrlEx.h"
#include "pages/SearchIndex.h"
#include "pages/SearcherComboBox.h"
#include "pages/VarRowList.h"
#include "table/StackedDialog.h"

#include <afx/afxcmn.h>

#include <functional>
#include <vector>

// Colours of the list.
constexpr COLORREF PAGE_ROW_EVEN = RGB(228, 250, 245);
constexpr COLORREF PAGE_ROW_ODD = RGB(200, 240, 240);
constexpr COLORREF PAGE_NOT_READ = RGB(254, 200, 241);
constexpr COLORREF PAGE_NOT_FACTORY_BACK = RGB(239, 228, 176);
constexpr COLORREF PAGE_READ_ONLY_SET = RGB(176, 176, 176);
constexpr COLORREF PAGE_SET_DIFFERS = RGB(255, 228, 225);
constexpr COLORREF PAGE_NOT_FACTORY_TEXT = RGB(24, 24, 240);
constexpr COLORREF PAGE_OFFLINE_TEXT = RGB(150, 150, 150);

// Filters of a collection (m_listFilter).
enum {
    LIST_FILTER_ALL = 1,
    LIST_FILTER_SET_NOT_FACTORY = 2,
    LIST_FILTER_SET_NOT_CURRENT = 3,
    LIST_FILTER_MODIFIED = 4,
    LIST_FILTER_CHECKED = 5,
};

constexpr UINT IDC_PAGE_LIST = 1984;
constexpr UINT IDI_STATE_NONE = 2053;
constexpr UINT IDI_STATE_UNCHECKED = 2054;
constexpr UINT IDI_STATE_CHECKED = 2055;

class CVarTablePageBase : public CVarTablePage,
                          public IMessage_ModulePropertyUpdateEvent,
                          public IMessage_ModuleUploadEvent {
public:
    CVarTablePageBase(UINT nIDTemplate, BOOL firstPage);
    ~CVarTablePageBase() override;

    // ---- what the frame calls
    void ShowAllParameters(IVarStore* varList) override;
    void ShowGroup(IGroupNode* group, IVarStore* varList) override;
    void ShowAxis(IHostAxis* axis, IVarStore* varList) override;
    void ShowCategory(IGroupCategory* category, IVarStore* varList) override;
    void ShowCustomRoot(IVarStore* varList) override;
    void ShowModified(IVarStore* varList, int mode) override;
    void RepaintList() override;
    void SubmitRefreshQuery() override;
    int GetShownCount() const override { return m_shownVars.GetCount(); }
    IVarObjEx* GetShownVar(int index) const override { return m_shownVars.GetAt(index); }
    void CollectShown(std::vector<IVarObjEx*>& list) const override;

    // Empties the rows and walks everything again, keeping the filter as it stands.
    void RefillAll();
    // Command 2146: asks for a file and saves the rows on show (VarTablePageSave.cpp).
    void SaveRowsAs() override;
    int GetListFilter() const { return m_listFilter; }
    void SetListFilter(int filter) { m_listFilter = filter; }
    BOOL IsFirstPage() const { return m_bFirstPage; }
    // 1 multi-axis, 0 single-axis, -1 when the chain to the catalog is broken.
    int GetMultiAxisFlag() const;
    // The index of the value column in the layout in use ("当前值" on the first page,
    // "设定值" on the second).
    int GetValueColumn() const;
    // The current value column of the layout in use.
    int GetCurrentValueColumn() const;
    const CTemplateList<IVarObjEx*, IVarObjEx*>& GetLinkedVars() const { return m_linkedVars; }
    const CVarRowList& GetGroupVars() const { return m_groupVars; }
    const std::vector<int>& GetColumnWidths() const { return m_columnWidths; }

    virtual CListCtrlEx& GetList() = 0;

    // The command of "更新属性" on both pages: checks the device, asks, then synchronises
    // (VarTablePageAttributes.cpp).
    void UpdateAttributes();

    // ---- search
    // The page's search box (control 2065), null while the page has none.
    virtual CSearcherComboBox* GetSearcher() { return nullptr; }
    virtual CAccessSelector* GetAccessSelector() { return nullptr; }
    // Lays the page out anew for its size, e.g. after its texts changed language.
    void Relayout();
    // After a change of language: the access box's entries anew, then the layout.
    void ShowInLanguage();
    // Width of the columns a user reads first (up to the limits on the first page, up to
    // the factory value on the second), with the list's frame and scroll bar; with
    // `valueOnly`, of those up to the value a user edits.
    int MainColumnsWidth(BOOL valueOnly = FALSE);
    // After a change of language: menus the page holds on to, in the new language.
    virtual void TranslateHeldMenus() {}
    void OnSearchEnter();
    void OnSearchPicked();
    // Shows the rows of the present selection that hold `text`.
    void SearchRows(const CString& text);
    void DropSearchCache() override { m_searchIndex.Drop(); }
    void PrepareSearchWhenIdle() override;
    const CSearchIndex& GetSearchIndex() const { return m_searchIndex; }

    // ---- row commands
    // Command 32817: the column dialog; the columns follow its ticks.
    void ChooseColumns();
    // A right click in the list: the menu of the page and the frame's flag, then its command.
    void OnListRightClick();
    // Runs a command of the page's context menu; FALSE when it isn't one of the rows'.
    BOOL RunRowCommand(UINT id);
    // Command 2004: the selected rows go to the host's monitor view.
    void AddToMonitorList();
    // Command 2109: the selected rows leave the custom group on show, after a question.
    void RemoveRows();
    // Command 2107: the rows on show to a list export file, with the host's progress box.
    void ExportList();
    // Command 32857: the rows on show to a compressed export file.
    void ExportZxd() override;
    // The variables of the selected rows, each once, in row order.
    void GetSelectedVars(std::vector<IVarObjEx*>& vars) const;

    // ---- what the list asks of its page
    CString GetCellText(int row, int column);
    virtual void OnCellButtonClicked(CItemButton* button, int row, int column, const CString& text);
    virtual void OnCellComboSelected(CItemComBox* combo, int row, int column, const CString& text);
    virtual void OnCellEditCommitted(int row, int column, const CString& text);
    virtual COLORREF GetCellTextColor(int row, int column);
    virtual COLORREF GetCellBackColor(int row, int column);
    virtual void GetCellEditorKind(int& kind, int row, int column);
    virtual void GetCellEditKind(int& kind, int row, int column);
    virtual void InitCellEditEx(CItemEditEx* edit, int row, int column);
    virtual void InitCellEdit(CItemEdit* edit, int row, int column);
    virtual void InitCellCombo(CItemComBox* combo, int row, int column);
    virtual void InitCellButton(CItemButton* button, int row, int column);
    // The tip over a cell: the meaning of each bit, range or digit of the current value.
    CString GetToolTipText(int row, int column);

    // A row whose value was never read.
    static BOOL HasNoValue(IVarObjEx* var);
    // Whether the current value equals the factory value at the parameter's decimals.
    static BOOL EqualsFactory(IVarObjEx* var);

    // IBaseInterface of the listener bases: the page is not released by the host.
    void Release() override {}
    // IMessage_ModulePropertyUpdateEvent
    void OnModulePropertyUpdated(const CString& moduleKey) override;

protected:
    BOOL OnInitDialog() override;
    void OnDestroy() override;
    void OnSize(UINT nType, int cx, int cy) override;
    BOOL OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* pResult) override;
    BOOL PreTranslateMessage(MSG* pMsg) override;
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    void OnTimer(UINT_PTR nIDEvent) override;
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override;
    // The compare and axis copy buttons; TRUE when `wParam` was one of them.
    BOOL OnSetsCommand(WPARAM wParam);

    // The top of the list in the page's client area.
    virtual int GetListTop() const = 0;
    // Places the tools above the list in rows for width `cx`, each as wide as its text
    // needs; returns the bottom of the last row.
    int ArrangeTools(int cx);
    void BuildColumns();
    void LinkList();
    // Last steps of both pages' start-up: the translator, the property-update event and
    // the first layout.
    void FinishInit();
    void OnListClick(const NMITEMACTIVATE* item);
    void Subscribe(const GUID& eventId, IBaseInterface* sink);
    void Unsubscribe(const GUID& eventId, IBaseInterface* sink);
    void SubscribeUpload();
    void UnsubscribeUpload();
    BOOL IsModuleKey(const CString& moduleKey) const;
    // The commit of a typed value: parsed, compared and written to the drive.
    void CommitCellText(int row, int column, const CString& text);
    // The text a packed or connector value takes in a cell on this page.
    CString FormatEditedValue(IVarAttr* attr, LONGLONG value) const;
    // The figure of an enumeration entry in the form of the cell.
    static CString ComboValueText(IVarAttr* attr, IValueInfoEntry* entry);
    void OpenConnectorDialog(int row, int column);
    CString LinkedLimitText(IVarObjEx* var, BOOL max);

    CVarRowList m_shownVars;
    CVarRowList m_groupVars;
    CTemplateList<IVarObjEx*, IVarObjEx*> m_linkedVars;
    CTemplateList<CString, CSearchObj*> m_searchHistory;
    int m_listFilter = LIST_FILTER_ALL;
    std::vector<int> m_columnWidths;
    IHostWindowTranslator* m_pTranslator = nullptr;
    int m_relockPending = 0;
    BOOL m_bFirstPage;
    BOOL m_bUploadSubscribed = FALSE;
    BOOL m_bPropertySubscribed = FALSE;
    CImageList m_stateImages;
    CSearchIndex m_searchIndex;
    // The next row of m_groupVars whose search texts the idle preparation makes.
    size_t m_searchPrepared = 0;

private:
    void Collect(IVarStore* varList, BOOL all);
    void WalkAll(IVarStore* varList);
    void WalkGroup(IGroupNode* group, IVarStore* varList, int level);
    // Walks `groups(visit)` with the page's rules; `device`: the groups are the device's.
    void WalkGroups(IVarStore* varList, BOOL device,
                    const std::function<void(const std::function<void(IGroupNode*)>&)>& groups);
    BOOL PassesFilter(IVarObjEx* var, IVarAttr* attr) const;
    // The column whose header bears `label`, stored or translated; -1 for none.
    int ColumnOfLabel(const char* label);
    void ShowCustomGroupRows(IGroupNode* group, IVarStore* store);
    void AddRow(IVarObjEx* var, BOOL toGroup);
    void AddRow(IVarObjEx* var, IVarAttr* attr, BOOL toGroup, IVarCatalog* catalog, int level);
    void FinishCollection(BOOL setTotal, BOOL postCount);
    void AddRefreshItem(IHostRefreshQuery* query, UINT address, int type, int length);
};
