#include "pages/VarTablePage2.h"

#include "module/LocalResource.h"
#include "module/ParmiraApp.h"
#include "module/host/IHostAxisList.h"
#include "module/host/IHostDeviceHelper.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostTransferService.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostWindowTranslator.h"
#include "module/host/IVarObjEx.h"
#include "module/host/IVarStore.h"
#include "pages/PageResources.h"
#include "pages/PageText.h"
#include "pages/VarTablePage1.h"
#include "table/VarTable.h"
#include "values/ValueText.h"

int filterActive = 0;

namespace {
constexpr UINT IDS_OSCILLOSCOPE_RUNNING = 150;
constexpr const char* kOfflineCompareText = "设备离线，无法进行当前值比较！";
constexpr const char* kFilterText = "筛选";
constexpr const char* kCancelFilterText = "取消筛选";
constexpr const char* kWriteAllShortText = "写入全部";
// The system's highlight and window colours.
constexpr COLORREF kHighlightFace = RGB(0, 120, 215);
constexpr COLORREF kWindowFace = RGB(255, 255, 255);
constexpr UINT kFilterEntries[] = {ID_FILTER_SET_NOT_CURRENT, ID_FILTER_MODIFIED,
                                   ID_FILTER_SET_NOT_FACTORY, ID_FILTER_CHECKED};
} // namespace

CVarTablePage2::CVarTablePage2() : CVarTablePageBase(IDD_VAR_TABLE_PAGE2, FALSE) {
    RegisterPageResources(theApp.m_hResource);
}

CVarTablePage2::~CVarTablePage2() = default;

void CVarTablePage2::SetTable(CVarTable* table) {
    CVarTablePageBase::SetTable(table);
    m_accessFrame.SetFrame(table);
}

void CVarTablePage2::DoDataExchange(CDataExchange* pDX) {
    CVarTablePageBase::DoDataExchange(pDX);
    DDX_Control(pDX, int(IDC_PAGE_LIST), m_list);
    DDX_Control(pDX, int(IDC_PAGE2_SEARCH), m_search);
    DDX_Control(pDX, int(IDC_PAGE_ACCESS), m_access);
    DDX_Control(pDX, int(IDC_PAGE2_FILTER), m_filter);
    DDX_Control(pDX, int(IDC_PAGE2_SELECT_ALL), m_selectAll);
}

BOOL CVarTablePage2::OnInitDialog() {
    CVarTablePageBase::OnInitDialog();
    IHostDeviceModule* module = m_pTable != nullptr ? m_pTable->GetModule() : nullptr;
    IVarStore* varList = m_pTable != nullptr ? m_pTable->GetVarList() : nullptr;
    IHostAxisList* axes = varList != nullptr ? varList->GetAxisList() : nullptr;
    if (CWnd* axisCopy = GetDlgItem(int(IDC_PAGE2_AXIS_COPY))) {
        if (axes != nullptr)
            axisCopy->EnableWindow(axes->GetCount() > 1);
        axisCopy->ShowWindow(module != nullptr && module->GetAxisCopyCount() != 0 ? SW_SHOW
                                                                                  : SW_HIDE);
    }
    m_list.SetPage(this);
    BuildColumns();
    LinkList();
    m_selector.Attach(&m_access, &m_accessFrame);
    if (module != nullptr && theApp.GetDeviceHelper() != nullptr)
        m_selector.FillAccessBox();
    m_search.ResetContent();
    m_search.AddString("All");
    if (module != nullptr && m_pTable != nullptr && !m_pTable->IsProductLine13(module))
        SetDlgItemText(int(IDC_PAGE2_WRITE_ALL),
                       VarText::Translate(kWriteAllShortText).GetString());
    {
        CLocalResource resource(theApp.m_hResource);
        m_filter.SetMenu(IDR_PAGE2_FILTER_MENU);
    }
    TranslateHeldMenus();
    ShowFilterState();
    FinishInit();
    return TRUE;
}

void CVarTablePage2::TranslateHeldMenus() {
    // The host's translator knows a text in either language, so this also goes back.
    if (CMenu* menu = m_filter.GetMenu())
        if (IHostUiService* ui = theApp.GetUiService())
            ui->TranslateMenu(menu->GetSafeHmenu());
}

int CVarTablePage2::GetListTop() const {
    IHostDeviceHelper* helper = theApp.GetDeviceHelper();
    const double scale = helper != nullptr ? helper->GetUiScale() : 1.0;
    return int(44 * scale);
}

void CVarTablePage2::PollAuthority() {
    m_selector.PollAuthority();
}

BOOL CVarTablePage2::OnCommand(WPARAM wParam, LPARAM lParam) {
    const UINT id = LOWORD(wParam);
    const UINT code = HIWORD(wParam);
    const BOOL click = code == BN_CLICKED;
    if (id == IDC_PAGE2_FILTER && click) {
        ApplyFilterChoice(m_filter.GetMenuResult());
        return TRUE;
    }
    if (click && m_pTable != nullptr && m_pTable->GetModule() != nullptr) {
        // The saves that read from the drive first are the frame's flows.
        if (id == IDC_PAGE2_UPLOAD_SAVE) {
            m_pTable->UploadAndSave();
            return TRUE;
        }
        if (id == IDC_PAGE_SAVE_CHECKED) {
            m_pTable->UploadCheckedAndSave();
            return TRUE;
        }
        if (id == IDC_PAGE_UPDATE_ATTRIBUTES) {
            UpdateAttributes();
            return TRUE;
        }
    }
    if ((id == IDC_PAGE2_WRITE_CHECKED && click) || id == ID_LIST_DOWNLOAD_CHECKED) {
        WriteCheckedRows();
        return TRUE;
    }
    if (id == IDC_PAGE2_WRITE_ALL && click) {
        WriteAllSetValues();
        return TRUE;
    }
    if ((id == IDC_PAGE2_SAVE_SET_VALUES && click) || id == ID_LIST_SAVE_SET_VALUES) {
        SaveSetValuesCommand();
        return TRUE;
    }
    if (id == IDC_PAGE2_OPEN_RECIPE && click) {
        OpenRecipe();
        return TRUE;
    }
    if (id == IDC_PAGE2_SELECT_ALL && click) {
        if (m_selectAll.GetCheck() != 0)
            CheckAllRows();
        else
            ClearAllChecks();
        return TRUE;
    }
    if (id == ID_LIST_CHECK_ALL || id == ID_LIST_CLEAR_CHECKS) {
        id == ID_LIST_CHECK_ALL ? CheckAllRows() : ClearAllChecks();
        return TRUE;
    }
    if (id == ID_LIST_SHOW_CHECKED || id == ID_LIST_SHOW_ALL) {
        m_listFilter = id == ID_LIST_SHOW_CHECKED ? LIST_FILTER_CHECKED : LIST_FILTER_ALL;
        RefillAll();
        return TRUE;
    }
    if (id == IDC_PAGE_ACCESS && code == CBN_SELCHANGE) {
        m_selector.OnAccessSelected();
        return TRUE;
    }
    return CVarTablePageBase::OnCommand(wParam, lParam);
}

// ---------------------------------------------------------------- checks

void CVarTablePage2::CheckAllRows() {
    for (int i = 0; i < m_shownVars.GetCount(); ++i)
        if (IVarObjEx* var = m_shownVars.GetAt(i))
            var->SetChecked(TRUE);
    RepaintList();
}

void CVarTablePage2::ClearAllChecks() {
    for (int i = 0; i < m_shownVars.GetCount(); ++i)
        if (IVarObjEx* var = m_shownVars.GetAt(i); var != nullptr && var->IsChecked())
            var->SetChecked(FALSE);
    RepaintList();
}

void CVarTablePage2::ClearAllSetValues() {
    IVarStore* varList = m_pTable != nullptr ? m_pTable->GetVarList() : nullptr;
    if (varList == nullptr)
        return;
    for (int i = 0; i < varList->GetCount(); ++i)
        if (IVarObjEx* var = varList->GetAt(i)) {
            var->SetSetValue(Variant());
            var->SetChecked(FALSE);
        }
}

// ---------------------------------------------------------------- filter

void CVarTablePage2::ApplyFilterChoice(UINT choice) {
    if (m_pTable == nullptr || m_pTable->IsOscilloscopeWindowVisible() ||
        theApp.GetUiService() == nullptr)
        return;
    IHostDeviceModule* module = m_pTable->GetModule();
    if (module == nullptr)
        return;
    CMenu* menu = m_filter.GetMenu();
    CMenu* popup = menu != nullptr && menu->GetSubMenu(0) != nullptr ? menu->GetSubMenu(0) : menu;
    const HWND owner = GetSafeHwnd();
    if (choice == ID_FILTER_SET_NOT_CURRENT || choice == ID_FILTER_MODIFIED) {
        if (!module->IsOnline()) {
            MessageBox(owner, VarText::Translate(kOfflineCompareText).GetString(), "",
                       MB_OK | MB_ICONWARNING);
            return;
        }
        if (m_pTable->IsOscilloscopeBusy(module)) {
            MessageBox(owner, pagetext::LoadString(IDS_OSCILLOSCOPE_RUNNING).GetString(), "",
                       MB_OK);
            return;
        }
        IHostTransferService* transfer = theApp.GetTransferService();
        if (transfer == nullptr)
            return;
        m_listFilter = choice == ID_FILTER_SET_NOT_CURRENT ? LIST_FILTER_SET_NOT_CURRENT
                                                           : LIST_FILTER_MODIFIED;
        if (popup != nullptr)
            popup->CheckMenuItem(choice, MF_BYCOMMAND | MF_CHECKED);
        SubscribeUpload();
        CString moduleKey;
        module->GetModuleKey(moduleKey);
        // The list and the button follow when the upload has ended.
        transfer->UploadModule(owner, moduleKey);
        return;
    }
    if (choice == ID_FILTER_SET_NOT_FACTORY || choice == ID_FILTER_CHECKED) {
        filterActive = 1;
        m_listFilter =
            choice == ID_FILTER_SET_NOT_FACTORY ? LIST_FILTER_SET_NOT_FACTORY : LIST_FILTER_CHECKED;
        if (popup != nullptr)
            popup->CheckMenuItem(choice, MF_BYCOMMAND | MF_CHECKED);
    } else {
        m_listFilter = LIST_FILTER_ALL;
        if (popup != nullptr)
            for (UINT entry : kFilterEntries)
                popup->CheckMenuItem(entry, MF_BYCOMMAND | MF_UNCHECKED);
        filterActive = 0;
    }
    ShowFilterState();
    RefillAll();
}

void CVarTablePage2::ShowFilterState() {
    if (m_filter.GetSafeHwnd() == nullptr)
        return;
    m_filter.SetWindowText(
        VarText::Translate(filterActive ? kCancelFilterText : kFilterText).GetString());
    m_filter.SetFaceColor(filterActive ? kHighlightFace : kWindowFace);
}

void CVarTablePage2::OnModuleUploaded(const CString& moduleKey, BOOL) {
    if (GetSafeHwnd() != nullptr && IsWindowVisible() && IsModuleKey(moduleKey)) {
        if (m_listFilter == LIST_FILTER_SET_NOT_CURRENT || m_listFilter == LIST_FILTER_MODIFIED) {
            filterActive = 1;
            ShowFilterState();
        }
        RefillAll();
    }
    UnsubscribeUpload();
}

void CVarTablePage2::OnDestroy() {
    ClearAllSetValues();
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
