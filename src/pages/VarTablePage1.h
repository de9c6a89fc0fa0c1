// CVarTablePage1: the live list (dialog 2059). Its value column shows what the drive
// holds; a value typed into it is written to the drive when the cell is left.
#pragma once

#include "controls/NoWheelComboBox.h"
#include "groups/AccessSelector.h"
#include "module/host/IMessage_LanguageChanged.h"
#include "pages/PageAccessFrame.h"
#include "pages/VarTableListCtrl.h"
#include "pages/VarTablePageBase.h"

class CVarTable;

// Controls of dialog 2059.
constexpr UINT IDC_PAGE1_UPLOAD_SAVE = 1987;
constexpr UINT IDC_PAGE1_OPEN_DOWNLOAD = 1998;
constexpr UINT IDC_PAGE1_COMPARE = 1993;
constexpr UINT IDC_PAGE1_FIND_LABEL = 1994;
constexpr UINT IDC_PAGE1_SEARCH = 2065;
constexpr UINT IDC_PAGE1_AXIS_COPY = 1997;
constexpr UINT IDC_PAGE_ACCESS = 1006;
constexpr UINT IDC_PAGE_UPDATE_ATTRIBUTES = 2151;
constexpr UINT IDC_PAGE_SAVE_CHECKED = 1004;

class CVarTablePage1 : public CVarTablePageBase, public IMessage_LanguageChanged {
public:
    CVarTablePage1();
    ~CVarTablePage1() override;

    CListCtrlEx& GetList() override { return m_list; }
    CVarTableListCtrl_1& GetPageList() { return m_list; }
    CComboBox& GetSearchBox() { return m_search; }
    CSearcherComboBox* GetSearcher() override { return &m_search; }
    CAccessSelector* GetAccessSelector() override { return &m_selector; }
    CNoWheelComboBox& GetAccessBox() { return m_access; }
    void SetTable(CVarTable* table) override;
    void PollAuthority() override;

    void Release() override {}
    void OnLanguageChanged() override;
    void OnModuleUploaded(const CString& moduleKey, BOOL success) override;
    void OnModuleDownloaded(const CString& moduleKey, BOOL success) override;

    int m_authorityIndex = -1;

protected:
    BOOL OnInitDialog() override;
    void OnDestroy() override;
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override;
    void DoDataExchange(CDataExchange* pDX) override;
    int GetListTop() const override;

private:
    CVarTableListCtrl_1 m_list;
    CSearcherComboBox m_search;
    CNoWheelComboBox m_access;
    CAccessSelector m_selector{TRUE};
    CPageAccessFrame m_accessFrame;
    BOOL m_bLanguageListener = FALSE;
};
