// CVarTablePage2: the staging list (dialog 2060). For now it carries the common model:
// rows, columns, colours, editors and refresh. Its buttons, filters and the staging
// commit are still to come.
#pragma once

#include "pages/VarTableListCtrl.h"
#include "pages/VarTablePageBase.h"

class CVarTablePage2 : public CVarTablePageBase {
public:
    CVarTablePage2();
    ~CVarTablePage2() override;

    CListCtrlEx& GetList() override { return m_list; }
    CSearcherComboBox* GetSearcher() override { return &m_search; }

    void OnModuleUploaded(const CString& moduleKey, BOOL success) override;
    void OnModuleDownloaded(const CString& moduleKey, BOOL success) override;

protected:
    BOOL OnInitDialog() override;
    void OnDestroy() override;
    void DoDataExchange(CDataExchange* pDX) override;
    int GetListTop() const override;

private:
    CVarTableListCtrl_2 m_list;
    CSearcherComboBox m_search;
};
