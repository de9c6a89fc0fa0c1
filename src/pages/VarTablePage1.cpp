#include "pages/VarTablePage1.h"

#include "module/ParmiraApp.h"
#include "module/host/IHostDeviceHelper.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostWindowTranslator.h"
#include "pages/PageResources.h"
#include "table/VarTable.h"

CVarTablePage1::CVarTablePage1() : CVarTablePageBase(IDD_VAR_TABLE_PAGE1, TRUE) {
    RegisterPageResources(theApp.m_hResource);
    m_columnWidths.reserve(13);
}

CVarTablePage1::~CVarTablePage1() {
    if (m_bLanguageListener)
        theApp.RemoveLanguageListener(this);
}

void CVarTablePage1::SetTable(CVarTable* table) {
    CVarTablePageBase::SetTable(table);
    m_accessFrame.SetFrame(table);
}

void CVarTablePage1::DoDataExchange(CDataExchange* pDX) {
    CVarTablePageBase::DoDataExchange(pDX);
    DDX_Control(pDX, int(IDC_PAGE_LIST), m_list);
    DDX_Control(pDX, int(IDC_PAGE1_SEARCH), m_search);
    DDX_Control(pDX, int(IDC_PAGE_ACCESS), m_access);
}

BOOL CVarTablePage1::OnInitDialog() {
    CVarTablePageBase::OnInitDialog();
    m_list.SetPage(this);
    BuildColumns();
    LinkList();
    IHostDeviceModule* module = m_pTable != nullptr ? m_pTable->GetModule() : nullptr;
    m_selector.Attach(&m_access, &m_accessFrame);
    if (module != nullptr && theApp.GetDeviceHelper() != nullptr)
        m_selector.FillAccessBox();
    if (CWnd* axisCopy = GetDlgItem(int(IDC_PAGE1_AXIS_COPY)))
        axisCopy->ShowWindow(module != nullptr && module->GetAxisCopyCount() != 0 ? SW_SHOW
                                                                                  : SW_HIDE);
    if (CWnd* update = GetDlgItem(int(IDC_PAGE_UPDATE_ATTRIBUTES)))
        update->ShowWindow(m_pTable != nullptr && m_pTable->SupportsAttributeUpdate() ? SW_SHOW
                                                                                      : SW_HIDE);
    m_bLanguageListener = theApp.AddLanguageListener(this);
    FinishInit();
    return TRUE;
}

int CVarTablePage1::GetListTop() const {
    IHostDeviceHelper* helper = theApp.GetDeviceHelper();
    const double scale = helper != nullptr ? helper->GetUiScale() : 1.0;
    return int(30 * scale);
}

void CVarTablePage1::PollAuthority() {
    m_selector.PollAuthority();
    m_authorityIndex = m_selector.m_authorityIndex;
}

BOOL CVarTablePage1::OnCommand(WPARAM wParam, LPARAM lParam) {
    const UINT id = LOWORD(wParam);
    const UINT code = HIWORD(wParam);
    if (m_pTable == nullptr || m_pTable->GetModule() == nullptr)
        return CVarTablePageBase::OnCommand(wParam, lParam);
    if (id == IDC_PAGE1_UPLOAD_SAVE && code == BN_CLICKED) {
        m_pTable->UploadAndSave();
        return TRUE;
    }
    if (id == IDC_PAGE_SAVE_CHECKED && code == BN_CLICKED) {
        m_pTable->SaveCheckedAs();
        return TRUE;
    }
    if (id == IDC_PAGE_UPDATE_ATTRIBUTES && code == BN_CLICKED) {
        UpdateAttributes();
        return TRUE;
    }
    if (id == IDC_PAGE1_OPEN_DOWNLOAD && code == BN_CLICKED) {
        m_pTable->OpenAndDownloadCommand();
        return TRUE;
    }
    if (id == IDC_PAGE_ACCESS && code == CBN_SELCHANGE) {
        m_selector.OnAccessSelected();
        return TRUE;
    }
    return CVarTablePageBase::OnCommand(wParam, lParam);
}

void CVarTablePage1::OnLanguageChanged() {
    if (m_pTranslator != nullptr)
        m_pTranslator->Retranslate(0);
}

void CVarTablePage1::OnModuleUploaded(const CString& moduleKey, BOOL) {
    if (GetSafeHwnd() != nullptr && IsWindowVisible()) {
        if (IsModuleKey(moduleKey))
            RefillAll();
        UnsubscribeUpload();
    }
    m_listFilter = LIST_FILTER_ALL;
}

void CVarTablePage1::OnModuleDownloaded(const CString&, BOOL) {
    if (m_list.GetSafeHwnd() != nullptr)
        m_list.SetItemCountEx(m_shownVars.GetCount(), 0);
    UnsubscribeUpload();
}

void CVarTablePage1::OnDestroy() {
    m_shownVars.RemoveAll();
    m_searchHistory.DeleteAll();
    m_linkedVars.RemoveAll();
    UnsubscribeUpload();
    if (m_bPropertySubscribed) {
        Unsubscribe(IMessage_ModulePropertyUpdateEvent::kIID,
                    AsSink<IMessage_ModulePropertyUpdateEvent>(this));
        m_bPropertySubscribed = FALSE;
    }
    if (m_bLanguageListener) {
        theApp.RemoveLanguageListener(this);
        m_bLanguageListener = FALSE;
    }
    CVarTablePageBase::OnDestroy();
}
