// CVarTablePage2: the staging list (dialog 2060). A value typed into "设定值" is kept in
// the host's variable as its set value and the row gets a check mark; nothing reaches the
// drive until a write sends the checked rows (or all set values) in one transfer.
#pragma once

#include "controls/NoWheelComboBox.h"
#include "files/RecipeWorkbook.h"
#include "groups/AccessSelector.h"
#include "pages/PageAccessFrame.h"
#include "pages/VarTableListCtrl.h"
#include "pages/VarTablePageBase.h"

#include <skin/ZorSkin.h>

#include <vector>

class CVarTable;

// Controls of dialog 2060 beyond those the pages share.
constexpr UINT IDC_PAGE2_UPLOAD_SAVE = 1987;
constexpr UINT IDC_PAGE2_OPEN_RECIPE = 1990;
constexpr UINT IDC_PAGE2_WRITE_CHECKED = 2147;
constexpr UINT IDC_PAGE2_FILTER = 1011;
constexpr UINT IDC_PAGE2_SELECT_ALL = 1010;
constexpr UINT IDC_PAGE2_COMPARE = 2161;
constexpr UINT IDC_PAGE2_AXIS_COPY = 1997;
constexpr UINT IDC_PAGE2_FIND_LABEL = 1994;
constexpr UINT IDC_PAGE2_SEARCH = 2065;
constexpr UINT IDC_PAGE2_SAVE_SET_VALUES = 1009;
constexpr UINT IDC_PAGE2_WRITE_ALL = 1998;
// The filter menu and the commands of the list's own menu.
constexpr UINT IDR_PAGE2_FILTER_MENU = 139;
constexpr UINT IDB_PAGE2_FILTER = 140;
constexpr UINT ID_FILTER_SET_NOT_CURRENT = 32809;
constexpr UINT ID_FILTER_SET_NOT_FACTORY = 32810;
constexpr UINT ID_FILTER_MODIFIED = 32811;
constexpr UINT ID_FILTER_CHECKED = 32821;
constexpr UINT ID_LIST_DOWNLOAD_CHECKED = 2105;
constexpr UINT ID_LIST_CHECK_ALL = 2103;
constexpr UINT ID_LIST_CLEAR_CHECKS = 2099;
constexpr UINT ID_LIST_SHOW_CHECKED = 32802;
constexpr UINT ID_LIST_SHOW_ALL = 32805;
constexpr UINT ID_LIST_SAVE_SET_VALUES = 2110;

// 1 while a filter of a second page's button is in force; one value for all panels.
extern int filterActive;

class CVarTablePage2 : public CVarTablePageBase {
public:
    CVarTablePage2();
    ~CVarTablePage2() override;

    CListCtrlEx& GetList() override { return m_list; }
    CVarTableListCtrl_2& GetPageList() { return m_list; }
    CZorSkinPMenuButton& GetFilterButton() { return m_filter; }
    CNoWheelComboBox& GetAccessBox() { return m_access; }
    void SetTable(CVarTable* table) override;
    void PollAuthority() override;

    // The transfers: the checked rows on show, or every set value outside H00 and H01.
    void WriteCheckedRows();
    void WriteAllSetValues();
    // A parameter file into the set values, or a recipe workbook straight to the drives.
    void OpenRecipe();
    void ImportWorkbook(const CString& path);
    // The checked variables with their set values as values, to a .zorparam or a
    // parameter table; the command asks for the path first.
    BOOL SaveSetValuesAs(const CString& path);
    void SaveSetValuesCommand();
    // The filter button was pressed; `choice` is the menu entry taken, 0 for none.
    void ApplyFilterChoice(UINT choice);
    void CheckAllRows();
    void ClearAllChecks();
    void ClearAllSetValues();
    CSearcherComboBox* GetSearcher() override { return &m_search; }
    CAccessSelector* GetAccessSelector() override { return &m_selector; }
    void TranslateHeldMenus() override;

    void OnModuleUploaded(const CString& moduleKey, BOOL success) override;
    void OnModuleDownloaded(const CString& moduleKey, BOOL success) override;

protected:
    BOOL OnInitDialog() override;
    void OnDestroy() override;
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override;
    void DoDataExchange(CDataExchange* pDX) override;
    int GetListTop() const override;

private:
    // Appends a record of each writable member of `group` with a set value, then of its
    // children; groups named H00 and H01 are left out with all they hold.
    void CollectWrites(IGroupNode* group, std::vector<IRWDataItem*>& records);
    BOOL AddRecord(IVarObjEx* var, std::vector<IRWDataItem*>& records);
    // The guards of both writes; FALSE when the write must not start.
    BOOL CanWrite();
    void SendRecords(std::vector<IRWDataItem*>& records);
    void ShowFilterState();

    CVarTableListCtrl_2 m_list;
    CSearcherComboBox m_search;
    CNoWheelComboBox m_access;
    CZorSkinPMenuButton m_filter;
    CButton m_selectAll;
    CAccessSelector m_selector{FALSE};
    CPageAccessFrame m_accessFrame;
};
