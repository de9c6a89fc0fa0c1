// The cyclic refresh of the frame and the oscilloscope guards.
//
// Three clocks: the host's query event posts UM_REFRESH_QUERY, the worker posts
// UM_REFRESH_TICK every 500 ms, and timer 1029 polls the drive's authority. Only the two
// handlers, StartRefresh and StopRefresh take m_refreshLock, all on the user-interface
// thread; the worker and OnRefreshQuery read refreshEnabled and post, nothing else.
#include "table/VarTable.h"

#include "module/ParmiraApp.h"
#include "module/host/IHostCommState.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostModuleManager.h"
#include "module/host/IHostProductDb.h"
#include "module/host/IHostProductRecord.h"
#include "module/host/IHostProject.h"
#include "module/host/IHostWorkerThread.h"
#include "module/host/IOscilloscopePanel.h"
#include "table/OldProtocolDevice.h"
#include "table/ParmiraDialog.h"

UINT CVarTable::RefreshWorker(void* arg) {
    auto* thread = static_cast<IHostWorkerThread*>(arg);
    if (thread == nullptr)
        return 0;
    auto* table = static_cast<CVarTable*>(thread->GetUserData());
    if (table == nullptr)
        return 0;
    while (!thread->IsStopRequested()) {
        if (table->refreshEnabled.load() != 0)
            ::PostMessage(table->m_hWndForWorker.load(), UM_REFRESH_TICK, 0, 0);
        thread->Wait(REFRESH_TICK_MS);
    }
    return 0;
}

void CVarTable::StartWorker() {
    if (m_pWorker != nullptr)
        return;
    IHostWorkerThread* worker = theApp.CreateWorkerThread();
    if (worker == nullptr)
        return;
    m_pWorker = worker;
    worker->SetUserData(this);
    worker->SetWaitTimeout(-1);
    worker->Start(&CVarTable::RefreshWorker, 0, worker);
}

void CVarTable::ReleaseWorker() {
    if (m_pWorker == nullptr)
        return;
    IHostWorkerThread* worker = m_pWorker;
    m_pWorker = nullptr;
    worker->Release(); // returns once the loop has ended
}

void CVarTable::StartRefresh() {
    CSingleLock lock(&m_refreshLock, TRUE);
    refreshEnabled.store(1);
    StartWorker();
}

void CVarTable::StopRefresh() {
    CSingleLock lock(&m_refreshLock, TRUE);
    refreshEnabled.store(0);
    m_pModule = nullptr;
    // The worker takes no lock, so releasing it here can't deadlock.
    ReleaseWorker();
    m_bRebuilding = TRUE;
    DeleteTreeRecords();
    if (m_tree.GetSafeHwnd() != nullptr) {
        m_treeState.clear();
        SaveTreeState(m_tree.GetRootItem());
        m_tree.DeleteAllItems();
    }
    m_hRoot = m_hAll = m_hCustom = m_hModified = nullptr;
    lastSelection = nullptr;
    m_pCurrentGroup = nullptr;
    m_bRebuilding = FALSE;
}

void CVarTable::OnRefreshQuery() {
    if (refreshEnabled.load() != 0)
        ::PostMessage(m_hWndForWorker.load(), UM_REFRESH_QUERY, 0, 0);
}

void CVarTable::OnRefreshTick() {
    CSingleLock lock(&m_refreshLock, TRUE);
    ShowOnlineState();
    if (refreshEnabled.load() == 0 || m_pModule == nullptr || !m_pModule->IsOnline())
        return;
    const int style = GetListStyle();
    CVarTablePage* page = style == 1 ? m_pPage2 : style == 0 ? m_pPage1 : nullptr;
    if (page != nullptr && page->GetSafeHwnd() != nullptr)
        page->RepaintList();
}

void CVarTable::OnRefreshQueryMessage() {
    if (refreshEnabled.load() == 0)
        return;
    CSingleLock lock(&m_refreshLock, TRUE);
    const int style = GetListStyle();
    CVarTablePage* page = style == 1 ? m_pPage2 : style == 0 ? m_pPage1 : nullptr;
    if (page != nullptr && page->GetSafeHwnd() != nullptr)
        page->SubmitRefreshQuery();
}

BOOL CVarTable::IsOscilloscopeBusy(IHostDeviceModule* module) {
    if (module == nullptr)
        return FALSE;
    IHostProject* rootProject = theApp.GetProject();
    IHostCommState* comm = rootProject != nullptr ? rootProject->GetCommState() : nullptr;
    const BOOL running = comm != nullptr && comm->IsOscilloscopeRunning() ? TRUE : FALSE;

    DWORD lineId = 0, productId = 0;
    GetProductNumbers(module, lineId, productId);

    IHostProject* project = m_pPanel != nullptr ? m_pPanel->GetProject() : nullptr;
    if (project == nullptr)
        return FALSE;
    const int connection = project->GetConnectionKind();
    // Line 13 shares the bus with the oscilloscope on connection 2 without harm.
    if (lineId != 13 && connection == 2 && running)
        return TRUE;
    if (connection == 6 && running)
        return TRUE;
    if (running && halfDuplexDevices != nullptr &&
        halfDuplexDevices->IsOldProtocolDevice(lineId, productId))
        return TRUE;
    return FALSE;
}

BOOL CVarTable::IsOscilloscopeWindowVisible() {
    IHostModuleManager* manager = theApp.GetModuleManager();
    if (manager == nullptr)
        return FALSE;
    auto* scope =
        static_cast<IOscilloscopePanel*>(manager->GetModuleInterface(IID_IOscilloscopePanel));
    if (scope == nullptr)
        return FALSE;
    HWND window = scope->GetWindow();
    if (window == nullptr || !::IsWindow(window))
        return FALSE;
    CWnd* wnd = CWnd::FromHandle(window);
    return wnd != nullptr && wnd->IsWindowVisible() ? TRUE : FALSE;
}
