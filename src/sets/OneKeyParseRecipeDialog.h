// COneKeyParseRecipeDialog: backs up every parameter of a drive module into a recipe
// file, reading one parameter at a time, and restores a recipe by writing one parameter
// at a time. Both jobs run on a worker of the host that reports by posted messages; the
// writes that fail are shown in CTranslateFailedDialog at the end of a restore.
#pragma once

#include "module/TemplateList.h"
#include "module/host/HostFwd.h"
#include "module/host/IHostWorkerThread.h"
#include "sets/VarTableListCtrlOneKey.h"
#include "table/TableSplitter.h"
#include "table/VarTable.h"

#include <skin/ZorSkin.h>

#include <atomic>
#include <mutex>
#include <vector>

constexpr UINT IDD_ONEKEY_RECIPE = 149;
constexpr UINT IDC_RECIPE_LIST = 1000;
constexpr UINT IDC_RECIPE_TREE = 1001;
constexpr UINT IDC_RECIPE_BACKUP = 1005;
constexpr UINT IDC_RECIPE_RESTORE = 1008;
constexpr UINT IDC_RECIPE_SPLITTER = 1010;

// Worker reports: the kind in wParam, the payload in lParam.
constexpr UINT UM_RECIPE_RESULT = 0x401;
constexpr UINT UM_RECIPE_PROGRESS = 0x402;
// The rows were rebuilt by a restore's worker: the list takes the new count.
constexpr UINT UM_RECIPE_ROWS = 0x403;

void RegisterRecipeDialogResources(HINSTANCE module);

class COneKeyParseRecipeDialog : public CZorSkinPDialog {
public:
    explicit COneKeyParseRecipeDialog(CWnd* pParent = nullptr);
    ~COneKeyParseRecipeDialog() override;

    void SetModule(IHostDeviceModule* module) { m_pModule = module; }
    IHostDeviceModule* GetModule() const { return m_pModule; }

    // Even rows 0xF5FAE4, odd rows 0xF0F0C8.
    COLORREF GetRowBackground(int row) const;
    CString GetCellText(int row, int column);
    int GetRowCount() const;
    IVarObjEx* GetRow(int row) const;
    // The variable table of the recipe last opened for a restore; null before.
    IParamFileTable* GetOpenedRecipe() const { return m_pRecipe; }
    BOOL IsWorkerRunning() const { return m_bRunning; }

    // Button handlers, also for tests.
    void OnBackup();
    void OnRestore();
    void OnTreeSelection(HTREEITEM item);

    // Rows of the whole module: every visible group of every axis of `store`.
    void BuildRecipeRows(IVarStore* store);
    // Saves the module with its variables as they are now; nonzero on success.
    BOOL SaveRecipeFile(CString path);

    CTreeCtrl m_tree;
    CVarTableListCtrl_OneKey m_list;

protected:
    BOOL OnInitDialog() override;
    void OnDestroy() override;
    void OnSize(UINT nType, int cx, int cy) override;
    BOOL OnCommand(WPARAM wParam, LPARAM lParam) override;
    BOOL OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* pResult) override;
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    static UINT BackupProc(void* arg);
    static UINT RestoreProc(void* arg);
    void RunBackup(IHostWorkerThread* worker);
    void RunRestore(IHostWorkerThread* worker);

    void Layout();
    void BuildTree();
    void AddGroupItems(IGroupNode* group, HTREEITEM parent);
    void CollectGroupRows(IVarStore* store, IGroupNode* group,
                          CTemplateList<IVarObjEx*, IVarObjEx*>& rows);
    void CollectSetRows(IVarStore* store, IGroupSet* set,
                        CTemplateList<IVarObjEx*, IVarObjEx*>& rows);
    void ReplaceRows(const CTemplateList<IVarObjEx*, IVarObjEx*>& rows);
    std::vector<IVarObjEx*> SnapshotRows() const;
    BOOL StartWorker(HostWorkerProc proc);
    void StopWorker();
    BOOL WriteFactoryCode(IHostDeviceHelper* helper, const CString& key);
    // Creates the box with one step of `highest` positions and has the window show it.
    IHostProgressBox* OpenProgress(const char* text, int highest);
    void Post(UINT message, WPARAM kind, LPARAM payload);
    BOOL IsOscilloscopeBusy(IHostDeviceModule* module);
    BOOL IsSameSeries(IParamFileTable* recipe);
    void EnableButtons(BOOL enable);
    void OnRecipeResult(WPARAM kind, LPARAM payload);
    void OnRecipeProgress(WPARAM kind, LPARAM payload);
    void CloseRecipe();

    CTableSplitter m_splitter;
    CTemplateList<CTreeItemData*, CTreeItemData*> m_treeItems;
    // Read by the list on the window thread and replaced by a restore's worker.
    mutable std::mutex m_rowsLock;
    CTemplateList<IVarObjEx*, IVarObjEx*> m_rows;
    HTREEITEM m_hRoot = nullptr;
    IHostDeviceModule* m_pModule = nullptr;
    IHostWorkerThread* m_pWorker = nullptr;
    IParamFile* m_pRecipeFile = nullptr;
    IParamFileTable* m_pRecipe = nullptr;
    CString m_strBackupPath;
    std::atomic<HWND> m_hWndForWorker{nullptr};
    // The box of the running job: made by the worker, shown, stepped and given back on
    // the window thread.
    std::atomic<IHostProgressBox*> m_pProgress{nullptr};
    // Filled by a restore's worker; shown and emptied at its result.
    std::vector<IVarObjEx*> m_failedVars;
    BOOL m_bRunning = FALSE;
    int m_nInProgressBox = 0;
    BOOL m_bHidePending = FALSE;
};
