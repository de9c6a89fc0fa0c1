// The frame's part of "打开并下载": guards only; the host opens, checks and downloads.
#include "module/ParmiraApp.h"
#include "module/host/IHostDeviceModule.h"
#include "module/host/IHostTransferService.h"
#include "module/host/IHostUiService.h"
#include "table/VarTable.h"

namespace {
constexpr UINT IDS_OSCILLOSCOPE_RUNNING = 150;
}

void CVarTable::OpenAndDownloadCommand() {
    if (theApp.GetUiService() == nullptr || m_pModule == nullptr)
        return;
    CString moduleKey;
    m_pModule->GetModuleKey(moduleKey);
    if (moduleKey.IsEmpty())
        return;
    if (IsOscilloscopeBusy(m_pModule)) {
        MessageBox(GetSafeHwnd(), theApp.LoadText(IDS_OSCILLOSCOPE_RUNNING).GetString(), "", MB_OK);
        return;
    }
    IHostTransferService* transfer = theApp.GetTransferService();
    if (transfer == nullptr)
        return;
    SubscribeUpload();
    transfer->OpenAndDownload(GetSafeHwnd(), moduleKey);
}
