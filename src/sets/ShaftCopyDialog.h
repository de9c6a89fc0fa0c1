// CShaftCopyDialog: takes the parameters of one axis as the pattern for another axis, on
// the same drive or on a drive of the same series. The compare lists what differs; the
// ticked rows go to the drive, or a parameter file in the target's shape is written with
// the source's values. Modal; its one long wait (the target's upload) pumps messages.
#pragma once

#include "module/TemplateList.h"
#include "module/host/HostFwd.h"
#include "module/host/IMessage_LanguageChanged.h"
#include "module/host/IMessage_ModuleUploadEvent.h"
#include "pages/ListCtrlEx.h"

#include <afx/afxmt.h>
#include <skin/ZorSkin.h>

constexpr UINT IDD_SHAFT_COPY = 1964;
constexpr UINT IDC_SHAFT_FROM_DEVICE_LABEL = 2134;
constexpr UINT IDC_SHAFT_SOURCE_DEVICE = 2080;
constexpr UINT IDC_SHAFT_FROM_AXIS_LABEL = 2128;
constexpr UINT IDC_SHAFT_SOURCE_AXIS = 2149;
constexpr UINT IDC_SHAFT_COPY_TO_LABEL = 2130;
constexpr UINT IDC_SHAFT_TARGET_DEVICE = 2081;
constexpr UINT IDC_SHAFT_AXIS_LABEL = 2136;
constexpr UINT IDC_SHAFT_TARGET_AXIS = 2082;
constexpr UINT IDC_SHAFT_MODE_DOWNLOAD = 1999;
constexpr UINT IDC_SHAFT_MODE_FILE = 2148;
constexpr UINT IDC_SHAFT_GROUP = 2132;
constexpr UINT IDC_SHAFT_UPLOAD_FIRST = 2061;
constexpr UINT IDC_SHAFT_SELECT_ALL = 2064;
constexpr UINT IDC_SHAFT_COMPARE = 1993;
constexpr UINT IDC_SHAFT_LIST = 1984;

// Registers the dialog's template under `module` (the module's resource handle).
void RegisterShaftCopyResources(HINSTANCE module);

class CShaftCopyDialog;

// The rows: virtual, with a check box each; texts are looked up when painted.
class CShaftCopyListCtrl : public CListCtrlEx {
public:
    void SetOwnerDialog(CShaftCopyDialog* dialog) { m_pDialog = dialog; }
    CString OnGetCellText(int nItem, int nSubItem) override;

private:
    CShaftCopyDialog* m_pDialog = nullptr;
};

class CShaftCopyDialog : public CZorSkinPDialog,
                         public IMessage_ModuleUploadEvent,
                         public IMessage_LanguageChanged {
public:
    explicit CShaftCopyDialog(CWnd* pParent = nullptr);
    ~CShaftCopyDialog() override;
    CShaftCopyDialog(const CShaftCopyDialog&) = delete;
    CShaftCopyDialog& operator=(const CShaftCopyDialog&) = delete;

    void SetModule(IHostDeviceModule* module) { m_pModule = module; }
    // Registers the template on first use, then runs the dialog.
    INT_PTR DoModal() override;

    // The buttons' actions, also for tests.
    void Compare();
    void OnSelectAll();
    // Writes the file of target axis `target` with the values of axis `source`.
    BOOL SaveAxisFile(IHostAxis* source, IHostAxis* target, const CString& path);

    static BOOL IsSameDeviceSeries(IHostDeviceModule* a, IHostDeviceModule* b);

    const CTemplateList<IRWDataItem*, IRWDataItem*>& GetRows() const { return m_rows; }
    CString GetCellText(int row, int column);
    CShaftCopyListCtrl& GetList() { return m_list; }
    IHostDeviceModule* GetSourceDevice() const;
    IHostDeviceModule* GetTargetDevice() const;
    IHostAxis* GetSourceAxis() const;
    IHostAxis* GetTargetAxis() const;

    void Release() override {}
    // IMessage_ModuleUploadEvent
    void OnModuleUploaded(const CString& moduleKey, BOOL success) override;
    void OnModuleDownloaded(const CString&, BOOL) override {}
    // IMessage_LanguageChanged
    void OnLanguageChanged() override;

    // Bound to the controls.
    int m_nMode = 0;        // 0 download to the drive, 1 save a parameter file
    int m_nUploadFirst = 1; // 2061
    int m_nSelectAll = 1;   // 2064

protected:
    BOOL OnInitDialog() override;
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override;
    BOOL OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* pResult) override;
    void OnOK() override;
    void OnCancel() override;
    void OnDestroy() override;

private:
    void FillAxisList(CComboBox& box, IHostDeviceModule* device);
    // TRUE once the upload has ended, well or not, or when none could start: the compare
    // then goes on with what the host holds. FALSE when the dialog or the application is
    // going away first.
    BOOL UploadAndWait(const CString& targetKey);
    void OnListClick(const NMITEMACTIVATE* item);
    void SignalUpload();
    void Warn(const CString& text);
    IVarAttr* RowAttr(int row);

    CTemplateList<IRWDataItem*, IRWDataItem*> m_rows;
    IHostDeviceModule* m_pModule = nullptr;
    IHostWindowTranslator* m_pTranslator = nullptr;
    CEvent* m_pUploadEvent = nullptr;
    BOOL m_bSubscribed = FALSE;
    // Set once "取消" or the end of the dialog is on its way: the wait gives up.
    BOOL m_bClosing = FALSE;

    CZorSkinPComboBox m_sourceDevice;
    CZorSkinPComboBox m_sourceAxis;
    CZorSkinPComboBox m_targetDevice;
    CZorSkinPComboBox m_targetAxis;
    CShaftCopyListCtrl m_list;
};
