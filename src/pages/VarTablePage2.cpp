#include "pages/VarTablePage2.h"

#include "module/ParmiraApp.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostWindowTranslator.h"
#include "pages/PageResources.h"
#include "pages/VarTablePage1.h"
#include "table/VarTable.h"

CVarTablePage2::CVarTablePage2() : CVarTablePageBase(IDD_VAR_TABLE_PAGE2, FALSE) {
    RegisterPageResources(theApp.m_hResource);
}

CVarTablePage2::~CVarTablePage2() = default;

void CVarTablePage2::DoDataExchange(CDataExchange* pDX) {
    CVarTablePageBase::DoDataExchange(pDX);
    DDX_Control(pDX, int(IDC_PAGE_LIST), m_list);
    DDX_Control(pDX, int(IDC_PAGE1_SEARCH), m_search);
}

BOOL CVarTablePage2::OnInitDialog() {
    CVarTablePageBase::OnInitDialog();
    m_list.SetPage(this);
    BuildColumns();
    LinkList();
    FinishInit();
    return TRUE;
}

int CVarTablePage2::GetListTop() const {
    CWnd* button = GetDlgItem(int(IDC_PAGE_SAVE_CHECKED));
    if (button == nullptr)
        return 5;
    CRect r;
    button->GetWindowRect(&r);
    return r.Height() + 5;
}

void CVarTablePage2::OnModuleUploaded(const CString& moduleKey, BOOL) {
    if (GetSafeHwnd() != nullptr && IsWindowVisible() && IsModuleKey(moduleKey))
        RefillAll();
    UnsubscribeUpload();
}

void CVarTablePage2::OnModuleDownloaded(const CString&, BOOL) {
    UnsubscribeUpload();
}

void CVarTablePage2::OnDestroy() {
    m_linkedVars.RemoveAll();
    m_searchHistory.DeleteAll();
    UnsubscribeUpload();
    if (m_bPropertySubscribed) {
        Unsubscribe(IMessage_ModulePropertyUpdateEvent::kIID,
                    AsSink<IMessage_ModulePropertyUpdateEvent>(this));
        m_bPropertySubscribed = FALSE;
    }
    CVarTablePageBase::OnDestroy();
}
