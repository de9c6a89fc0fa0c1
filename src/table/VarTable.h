// CVarTable: the table frame inside the panel. It holds the group tree, the description
// box and the stacked host with both list pages, turns a tree selection into a call on the
// page of the current list style, owns the cyclic refresh and the device lists, and is the
// pages' one link to the host.
#pragma once

#include "module/TemplateList.h"
#include "module/host/HostFwd.h"
#include "module/host/IMessage_LanguageChanged.h"
#include "module/host/IMessage_ModuleUploadEvent.h"
#include "module/host/IRefreshQueryEvent.h"
#include "table/GroupMembership.h"
#include "table/StackedDialog.h"
#include "table/TableSplitter.h"

#include <afx/afxcmn.h>
#include <afx/afxmt.h>
#include <skin/ZorSkin.h>

#include <atomic>
#include <map>
#include <set>
#include <vector>

class CParmiraDialog;
class COldProtocolDeviceAgent;
class CParamCompareDlg;

// Window messages of the panel and the frame.
constexpr UINT UM_UPDATE_VAR_COUNT = 1025; // panel: wParam nonzero sets the total too
constexpr UINT UM_REFRESH_TICK = 1026;     // frame: repaint the list (worker, 500 ms)
constexpr UINT UM_REFRESH_QUERY = 1027;    // frame: submit the visible rows for reading
constexpr UINT UM_RELOAD_MODULE = 1030;    // frame: a property of the module changed
constexpr UINT UM_SPLITTER_MOVED = 2024;   // frame: a splitter was dragged

// Timer of the frame: the first page takes over the drive's authority level.
constexpr UINT_PTR IDT_AUTHORITY_POLL = 1029;
constexpr UINT AUTHORITY_POLL_PERIOD_MS = 2000;
constexpr int REFRESH_TICK_MS = 500;

// Dialog and page ids of the frame.
constexpr UINT IDD_VAR_TABLE = 1953;
constexpr UINT IDD_STACKED_HOST = 2158;
constexpr UINT IDD_VAR_TABLE_PAGE1 = 2059;
constexpr UINT IDD_VAR_TABLE_PAGE2 = 2060;
constexpr UINT IDC_GROUP_TREE = 2007;
constexpr UINT IDC_TREE_SPLITTER = 1986;
constexpr UINT IDC_STACK_PLACEHOLDER = 2091;
constexpr UINT IDC_TEXT_SPLITTER = 1989;
constexpr UINT IDC_VAR_DESCRIPTION = 1018;

// The list page of a list style: 0 makes the live list (dialog 2059), 1 the staging list
// (dialog 2060), null for other styles. The object is not created as a window yet.
// Defined with the pages.
CVarTablePage* CreateVarTablePage(int style);
using VarTablePageFactory = CVarTablePage* (*)(int style);

// The record behind a tree item that stands for a host object. Fixed items have none.
class CTreeItemData {
public:
    enum { KindAxis = 0, KindGroup = 1, KindCategory = 2 };
    CTreeItemData(int kind, void* object) : m_nKind(kind), m_pObject(object) {}
    virtual ~CTreeItemData() = default;

    IHostAxis* GetAxis() const {
        return m_nKind == KindAxis ? static_cast<IHostAxis*>(m_pObject) : nullptr;
    }
    IGroupNode* GetGroup() const {
        return m_nKind == KindGroup ? static_cast<IGroupNode*>(m_pObject) : nullptr;
    }
    IGroupCategory* GetCategory() const {
        return m_nKind == KindCategory ? static_cast<IGroupCategory*>(m_pObject) : nullptr;
    }

    int m_nKind;
    void* m_pObject; // not owned
};

class CVarTable : public CZorSkinPDialog,
                  public IMessage_ModuleUploadEvent,
                  public IMessage_LanguageChanged,
                  public IRefreshQueryEvent {
public:
    CVarTable();
    ~CVarTable() override;
    CVarTable(const CVarTable&) = delete;
    CVarTable& operator=(const CVarTable&) = delete;

    // Forwarded from the panel interface.
    virtual void SelectListPage(int index);
    virtual void SetModuleAccessLevel(const CString& moduleKey, int level);

    // Set before the window is created.
    void SetPanel(CParmiraDialog* panel) { m_pPanel = panel; }
    void SetWorkspace(IHostWorkspace* workspace) { m_pWorkspace = workspace; }
    void SetModule(IHostDeviceModule* module) { m_pModule = module; }

    // What the pages and dialogs ask of the frame.
    IHostDeviceModule* GetModule() const { return m_pModule; }
    IHostWorkspace* GetWorkspace() const { return m_pWorkspace; }
    CParmiraDialog* GetPanel() const { return m_pPanel; }
    // After a change of language: the pages' choice lists and layout anew.
    void ShowPagesInLanguage();
    IGroupNode* GetCurrentCustomGroup() const { return m_pCurrentGroup; }
    int GetAccessLevel() const;
    // 0 when the chain to the workspace is broken.
    int GetListStyle() const;
    IVarStore* GetVarList() const;
    void PostVarCount(BOOL setTotal, int count);
    void ShowVarDescription(IVarObjEx* var);
    void ShowDescribedText();
    BOOL IsOscilloscopeBusy(IHostDeviceModule* module);
    BOOL IsOscilloscopeWindowVisible();
    // Command 1998 of the live list: the host opens a parameter file and downloads it.
    void OpenAndDownloadCommand();
    void OpenCompareDialog();
    // The compare dialog once opened; null before.
    CParamCompareDlg* GetCompareDialog() const { return m_pCompareDlg; }
    // Runs the axis copy on the shown module (button 1997 of either page).
    void OpenAxisCopyDialog(CWnd* parent);
    void ApplyAccessLevel(IHostDeviceModule* module, int level);
    void ApplyAccessLevelToAll(int level);
    void ReloadModule();
    // True when the module's catalog knows the variable's address as transferable.
    BOOL IsCatalogVar(IVarObjEx* var);
    // The catalogue that IsCatalogVar looks in; null when it would refuse every row.
    IVarCatalog* GetRowCatalog();
    // The members of the device's groups, resolved once per store and tree build.
    CGroupMembership& Membership();
    // The page of the current list style when it has a window, else null.
    CVarTablePage* GetStylePage() const;
    CVarTablePage* GetPage1() const { return m_pPage1; }
    CVarTablePage* GetPage2() const { return m_pPage2; }

    // The windowless export: 1 when the table file was written.
    BOOL ExportAllToFile(const CString& path);
    // The 10-column parameter table of `list` for the shown module.
    BOOL WriteParamTableList(const CString& path, const std::vector<IVarObjEx*>& list);
    // The parameter table of all variables of `table`, or of the variables of `group`
    // (exactly one of them given): 10 columns, or 11 with the instance keys. 1 on success.
    BOOL WriteParamTable(IVarStore* table, IGroupNode* group, const CString& path);
    BOOL WriteParamTableGuid(IVarStore* table, IGroupNode* group, const CString& path);
    // The variables a file of `group` holds: its members and those of its children, by
    // visibility and level only (no transfer filters), without doubles.
    void CollectFileVars(IGroupNode* group, std::vector<IVarObjEx*>& list, BOOL includeFactory);

    // Upload and save (commands 1987 and 1004) and the saves without upload.
    void UploadAndSave();
    void UploadCheckedAndSave();
    // The ends of the uploads the two flows above started, counted, and whether the last
    // one read every variable: a caller that needs fresh values waits for the count to move.
    int GetUploadsEnded() const { return m_uploadsEnded; }
    BOOL LastUploadSucceeded() const { return m_bLastUploadOk; }
    BOOL IsUploadPending() const { return m_bSavePending; }
    void SaveCheckedAs();
    void SaveSelectionAs();
    void SaveCheckedVars(IVarStore* store, const CString& path);
    void SaveModule(IVarStore* store, const CString& path);
    void SaveAxis(IHostAxis* axis, const CString& path);
    void SaveGroup(IGroupNode* group, const CString& path);
    void SaveCategory(IGroupCategory* category, IGroupSet* rootSet, const CString& path);
    void CollectCheckedVars(IGroupNode* group, std::vector<IVarObjEx*>& list);
    // Every row of the page of the list style, in row order.
    void CollectVisibleRows(std::vector<IVarObjEx*>& list);
    // A new parameter file with the module's version, label and `level`; null without one.
    IParamFile* BeginFileSave(int level, BOOL tableVersion);
    // The common tail of the saves: the form by the path's extension, the success message,
    // and the file object released.
    BOOL FinishSave(IParamFile* file, IVarStore* table, IGroupNode* group, const CString& path);
    // Adds the module's control function entries (ControlFunction1..9) to `table`.
    void AddControlFunctions(IParamFileTable* table);

    // Where frames get their pages from; null restores CreateVarTablePage. For hosts
    // that embed their own pages, and for tests.
    static void SetPageFactory(VarTablePageFactory factory) { s_pageFactory = factory; }

    // Group tree.
    void BuildTree();
    // Item texts in the language now chosen.
    void RetranslateTree();
    void SaveTreeState(HTREEITEM parent);
    BOOL RestoreTreeState(HTREEITEM parent);
    BOOL IsGroupShown(IGroupNode* group);
    void CollectAllVars(std::vector<IVarObjEx*>& list, BOOL includeFactory);
    void CollectGroupVars(IGroupNode* group, std::vector<IVarObjEx*>& list, BOOL includeFactory);
    void OnTreeSelection(HTREEITEM item);
    CTreeCtrl& GetTree() { return m_tree; }
    CTableSplitter& GetTreeSplitter() { return m_treeSplitter; }
    CTableSplitter& GetTextSplitter() { return m_textSplitter; }
    HTREEITEM GetRootItem() const { return m_hRoot; }
    HTREEITEM GetAllItem() const { return m_hAll; }
    HTREEITEM GetCustomItem() const { return m_hCustom; }
    HTREEITEM GetModifiedItem() const { return m_hModified; }
    BOOL IsInCustomSubtree(HTREEITEM item) const;
    BOOL IsInModifiedSubtree(HTREEITEM item) const;
    // The tree's context menu for the item under `point` (tree client coordinates).
    void OnTreeContextMenu(CPoint point);
    // Whether a command of the tree menus is offered for `item`.
    BOOL IsTreeCommandEnabled(UINT id, HTREEITEM item) const;
    // Runs a command of the frame; FALSE for ids that aren't the frame's.
    BOOL OnFrameCommand(UINT id);
    // Shows a list page's context menu `menuId` at `screen` for `owner`, with the custom
    // groups in its add-to-group popup (greyed unless `groupEntries`) and the `grayed`
    // entries greyed; the command taken, 0 for none.
    UINT TrackPageMenu(UINT menuId, CPoint screen, CWnd* owner, const std::vector<UINT>& grayed,
                       BOOL groupEntries);

    // Custom groups. Every change that makes, edits or deletes a group ends with
    // SaveCustomGroups; adding through the add-to-group menu waits for the next one.
    void SaveCustomGroups();
    // "<project dir>/<display name>_<module key>/Variables.dat"; empty without the chain.
    CString GetCustomGroupPath();
    // A new top-level custom group of `list` (each variable once); an empty name is made
    // from the local time, a taken one gets "new" behind it. Rebuilds the tree.
    void CreateCustomGroup(const std::vector<IVarObjEx*>& list, const CString& name);
    void AddVarsToCustomRoot(const std::vector<IVarObjEx*>& list);
    // Fills a page's add-to-group popup with the custom groups, ids from 4001, and the two
    // menu maps that AddVarsToMenuGroup reads.
    void FillAddToGroupMenu(CMenu& popup);
    void AddVarsToMenuGroup(const std::vector<IVarObjEx*>& list, UINT id);
    void NewCustomGroup();
    void DeleteCustomGroup();
    void EditCustomGroup();
    void LoadCustomGroup();
    // Command 32848: the first page's rows become a new group.
    void AddModifiedToCustomGroup();

    // Refresh.
    void StartRefresh();
    void StopRefresh();
    // IRefreshQueryEvent: any thread; only posts.
    void OnRefreshQuery() override;

    // Device classes.
    static void LoadDeviceList(COldProtocolDeviceAgent* agent, const CString& fileName);
    BOOL IsProductLine13(IHostDeviceModule* module);
    BOOL SupportsAttributeUpdate();
    void StartAttributeUpload();
    static BOOL IsFactoryPasswordAddress(UINT address);
    // 3 for line 13, 2 for line 11 product 282, else 1.
    static int AttributeUploadMode(DWORD lineId, DWORD productId);
    // The module's line and product ids; 0 and 0 (and FALSE) without a product record.
    BOOL GetProductNumbers(IHostDeviceModule* module, DWORD& lineId, DWORD& productId,
                           DWORD* subProductId = nullptr);
    // Command 2095 of the pages: the checks run, nothing further happens.
    void OnOldProtocolCommand();
    COldProtocolDeviceAgent* GetOldProtocolDevices() const { return oldProtocolDevices; }
    COldProtocolDeviceAgent* GetHalfDuplexDevices() const { return halfDuplexDevices; }

    // IBaseInterface (shared by the listener bases): the frame is not released by the host.
    void Release() override {}
    // IMessage_ModuleUploadEvent
    void OnModuleUploaded(const CString& moduleKey, BOOL success) override;
    void OnModuleDownloaded(const CString& moduleKey, BOOL success) override;
    // IMessage_LanguageChanged
    void OnLanguageChanged() override;

    // The one lock of the frame, taken on the user-interface thread only.
    CCriticalSection m_refreshLock;

    // Flags shared with the pages and the save flows.
    int busyExporting = 0;
    int inCustomOrModified = 0;
    int saveAfterUpload = 1;
    int includeFactoryGroups = 0;
    int contextMenuOpen = 0;
    int promptOnModified = 1;
    // Read by the worker and by OnRefreshQuery without the lock.
    std::atomic<int> refreshEnabled{1};

    // Menu command id to group while a page shows its add-to-group menu.
    std::map<UINT, IGroupNode*> m_menuGroups;
    std::map<UINT, IGroupNode*> m_menuSubGroups;

protected:
    BOOL OnInitDialog() override;
    void OnDestroy() override;
    void OnSize(UINT nType, int cx, int cy) override;
    void OnSetFocus(CWnd* pOldWnd) override;
    void OnTimer(UINT_PTR nIDEvent) override;
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override;
    BOOL OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* pResult) override;
    BOOL PreTranslateMessage(MSG* pMsg) override;
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;
    void OnOK() override {}
    void OnCancel() override {}

private:
    struct TreeState {
        UINT selected = 0;
        UINT expanded = 0;
    };

    static UINT RefreshWorker(void* arg);
    CVarTablePage* NewPage(int style);
    BOOL IsInSubtree(HTREEITEM item, HTREEITEM top) const;
    void OnRefreshTick();
    void OnRefreshQueryMessage();
    void StartWorker();
    void RemoveRefreshListener();
    void ReleaseWorker();
    void RecalcLayout();
    // Widens the tree so that its labels are whole, up to 30 % of the frame.
    void FitTreeWidth();
    // Greys the list and tells the panel when the module's link went down or came back.
    void ShowOnlineState();
    void DeleteTreeRecords();
    HTREEITEM AddGroupItem(IGroupNode* group, HTREEITEM parent, BOOL filtered);
    void AddGroupChildren(IGroupNode* group, HTREEITEM parent, BOOL filtered);
    HTREEITEM InsertRecordItem(const CString& text, int image, HTREEITEM parent, int kind,
                               void* object);
    void ShowModifiedWithMode(int mode);
    void CloseCompareDialog();
    void SubscribeUpload();
    void UnsubscribeUpload();
    void WriteFactoryAccessCode();
    // The save dialog of the frame's saves; FALSE on cancel.
    BOOL AskSavePath(const CString& defaultName, CString& path);
    IGroupSet* GetCustomGroupSet() const;
    IGroupNode* GetSelectedCustomGroup(HTREEITEM* item) const;
    void RebuildAfterGroupChange();
    void ForgetRecordsBelow(HTREEITEM item);
    void AppendGroupMenuEntries(CMenu& menu, IGroupNode* group, UINT& counter);

    TStackedDialog m_stack;
    CVarTablePage* m_pPage1 = nullptr; // owned by m_stack
    CVarTablePage* m_pPage2 = nullptr;
    CZorSkinPTreeCtrl m_tree;
    CTableSplitter m_treeSplitter;
    CTableSplitter m_textSplitter;
    CTemplateList<CTreeItemData*, CTreeItemData*> m_treeItems;
    CImageList m_images;
    HTREEITEM m_hRoot = nullptr;
    HTREEITEM m_hAll = nullptr;
    HTREEITEM m_hCustom = nullptr;
    HTREEITEM m_hModified = nullptr;
    HTREEITEM lastSelection = nullptr;
    COldProtocolDeviceAgent* oldProtocolDevices = nullptr;
    COldProtocolDeviceAgent* halfDuplexDevices = nullptr;
    IHostDeviceModule* m_pModule = nullptr;
    CGroupMembership m_membership;
    IHostWorkspace* m_pWorkspace = nullptr;
    IGroupNode* m_pCurrentGroup = nullptr;
    CParmiraDialog* m_pPanel = nullptr;
    IHostWindowTranslator* m_pTranslator = nullptr;
    // The described parameter's text as written, shown again after a change of language.
    CString m_describedText;
    IHostWorkerThread* m_pWorker = nullptr;
    CParamCompareDlg* m_pCompareDlg = nullptr; // owned
    // The frame's window handle as the worker reads it.
    std::atomic<HWND> m_hWndForWorker{nullptr};
    std::map<CString, TreeState> m_treeState;
    // Set by the upload-and-save flows: only their uploads end in a save, not the
    // attribute sync, which ends through the same event.
    BOOL m_bSavePending = FALSE;
    int m_uploadsEnded = 0;
    BOOL m_bLastUploadOk = FALSE;
    BOOL m_bRefreshListening = FALSE;
    // Set while items are made or deleted in bulk: selection changes then show nothing.
    BOOL m_bRebuilding = FALSE;
    // Whether the panel shows the module online: -1 before the first tick.
    int m_shownOnline = -1;
    int m_fittedTreeWidth = 0; // the group tree's width as last fitted to its texts

    static VarTablePageFactory s_pageFactory;
};
