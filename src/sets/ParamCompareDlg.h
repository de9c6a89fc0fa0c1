// CParamCompareDlg: the modeless compare of two parameter sets. Each side is a module of
// the workspace (its current or its factory values) or a parameter file. A worker does the
// comparing; the dialog shows the differing or the agreeing rows and saves them as CSV.
// The table frame owns it and shows it again on every press of a compare button.
#pragma once

#include "module/host/HostFwd.h"
#include "module/host/IMessage_LanguageChanged.h"
#include "module/host/IMessage_ModuleUploadEvent.h"
#include "pages/ListCtrlEx.h"
#include "sets/VarCompare.h"

#include <skin/ZorSkin.h>

#include <memory>
#include <set>

constexpr UINT IDD_PARAM_COMPARE = 1982;
constexpr UINT IDC_COMPARE_LABEL1 = 2112;
constexpr UINT IDC_COMPARE_SOURCE1 = 2078;
constexpr UINT IDC_COMPARE_KIND1 = 2076;
constexpr UINT IDC_COMPARE_UPLOAD1 = 2084;
constexpr UINT IDC_COMPARE_PATH1 = 2062;
constexpr UINT IDC_COMPARE_LABEL2 = 2113;
constexpr UINT IDC_COMPARE_SOURCE2 = 2079;
constexpr UINT IDC_COMPARE_KIND2 = 2077;
constexpr UINT IDC_COMPARE_UPLOAD2 = 2086;
constexpr UINT IDC_COMPARE_PATH2 = 2063;
constexpr UINT IDC_COMPARE_CONDITION = 2111;
constexpr UINT IDC_COMPARE_SHOW_DIFFERENT = 2067;
constexpr UINT IDC_COMPARE_SHOW_SAME = 2068;
constexpr UINT IDC_COMPARE_HIDE_READONLY = 2083;
constexpr UINT IDC_COMPARE_START = 2088;
constexpr UINT IDC_COMPARE_SAVE = 2168;
constexpr UINT IDC_COMPARE_LIST = 2071;

// Posted by the worker when it has ended; wParam tells which run it was.
constexpr UINT UM_COMPARE_DONE = 0x401;

// Registers the dialog's template under `module` (the module's resource handle).
void RegisterParamCompareResources(HINSTANCE module);

class CParamCompareDlg;

// The result list: virtual, every cell is formatted from its record when painted.
class CCompareListCtrl : public CListCtrlEx {
public:
    void SetOwnerDialog(CParamCompareDlg* dialog) { m_pDialog = dialog; }
    CString OnGetCellText(int nItem, int nSubItem) override;

private:
    CParamCompareDlg* m_pDialog = nullptr;
};

class CParamCompareDlg : public CZorSkinPDialog,
                         public IMessage_ModuleUploadEvent,
                         public IMessage_LanguageChanged {
public:
    explicit CParamCompareDlg(CWnd* pParent = nullptr);
    ~CParamCompareDlg() override;
    CParamCompareDlg(const CParamCompareDlg&) = delete;
    CParamCompareDlg& operator=(const CParamCompareDlg&) = delete;

    // Modeless, from the dialog's template (registered on first use).
    BOOL Create(UINT nIDTemplate, CWnd* pParentWnd = nullptr) override;

    // Before the window exists: the module whose entries are preselected.
    void SetModule(IHostDeviceModule* module) { m_pModule = module; }

    // The buttons' actions, also for the frame and tests.
    void StartCompare();
    void SaveShownList();
    // Sets the list's count to the result list the radio buttons name.
    void ShowSelectedList();

    // The result list the radio buttons name: agreeing with "显示相同", else differing.
    const CVarCompareRstList& GetShownList() const;
    const CVarCompareRstList& GetSameList() const { return m_sameList; }
    const CVarCompareRstList& GetDiffList() const { return m_diffList; }
    CString GetCellText(int row, int column) const;
    // Uploads still awaited before the compare starts.
    int GetUploadCount() const { return m_nUploadCount; }
    BOOL IsComparing() const { return m_pWorker != nullptr && !m_bDone; }
    CCompareListCtrl& GetList() { return m_list; }

    // The text of an entry of the source lists for `module`.
    static CString ModuleEntryText(IHostDeviceModule* module);

    // IBaseInterface: the frame owns the dialog.
    void Release() override {}
    // IMessage_ModuleUploadEvent
    void OnModuleUploaded(const CString& moduleKey, BOOL success) override;
    void OnModuleDownloaded(const CString&, BOOL) override {}
    // IMessage_LanguageChanged
    void OnLanguageChanged() override;

    // Bound to the controls.
    CString m_strPath1;
    CString m_strPath2;
    int m_nUpload1 = 1;
    int m_nUpload2 = 0;
    int m_nShowSame = 0; // radio group 2067/2068
    int m_nHideReadOnly = 0;

protected:
    BOOL OnInitDialog() override;
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override;
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    void OnOK() override {}
    void OnCancel() override;
    void OnClose() override;
    void OnDestroy() override;

private:
    // What one run needs, fixed when it starts; the worker reads only this and fills
    // its own result lists, which the window thread takes over at the end.
    struct Job {
        int source1 = VarSourceCurrent;
        int source2 = VarSourceFactory;
        CString path1;
        CString path2;
        CString key1;
        CString key2;
        BOOL module2Given = FALSE;
        BOOL hideReadOnly = FALSE;
        HWND window = nullptr;
        WPARAM serial = 0;
        IHostVarUtil* util = nullptr;
        IHostTransferService* transfer = nullptr;
        IHostModuleManager* manager = nullptr;
        CVarCompareRstList same;
        CVarCompareRstList diff;
        // The variables read from files: the rows refer to their attributes.
        std::vector<IVarObjEx*> fileVars;
        ~Job() {
            same.DeleteAll();
            diff.DeleteAll();
            CVarCompare::FreeFileVars(fileVars);
        }
    };

    static UINT CompareWorker(void* arg);
    static void LoadSet(Job& job, IHostWorkerThread* thread, int source, const CString& path,
                        const CString& key, std::vector<IVarObjEx*>& vars);
    void FillSourceList(CComboBox& box);
    void FillKindList(CComboBox& box, int selectedSource);
    void ApplyKindRule(int object);
    void OnSourceChanged(int object);
    void EnableControls(BOOL enable);
    void StartWorker();
    void EndWorker();
    void ClearResults();
    void OnCompareDone(WPARAM serial);
    void Subscribe();
    void Unsubscribe();
    void Warn(const CString& text);

    IHostDeviceModule* m_pModule = nullptr;
    CVarCompareRstList m_sameList;
    CVarCompareRstList m_diffList;
    // Taken over from the run with its lists, freed with them.
    std::vector<IVarObjEx*> m_fileVars;
    int m_nSource1 = VarSourceCurrent;
    int m_nSource2 = VarSourceFactory;
    IHostDeviceModule* m_pModule1 = nullptr;
    IHostDeviceModule* m_pModule2 = nullptr;
    int m_nUploadCount = 0;
    // Keys of the modules whose upload end is still awaited.
    std::set<CString> m_pendingUploads;
    BOOL m_bUploadFailed = FALSE;
    BOOL m_bHideReadOnly = FALSE;
    IHostWorkerThread* m_pWorker = nullptr;
    std::unique_ptr<Job> m_pJob;
    WPARAM m_nSerial = 0;
    BOOL m_bDone = TRUE;
    BOOL m_bSubscribed = FALSE;
    IHostWindowTranslator* m_pTranslator = nullptr;

    CZorSkinPComboBox m_source1;
    CZorSkinPComboBox m_source2;
    CZorSkinPComboBox m_kind1;
    CZorSkinPComboBox m_kind2;
    CCompareListCtrl m_list;
};
