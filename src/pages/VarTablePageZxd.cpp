// The compressed export of the rows on show.
#include "files/ZxdExport.h"
#include "module/LocalResource.h"
#include "module/ParmiraApp.h"
#include "pages/VarTablePageBase.h"
#include "table/VarTable.h"
#include "values/ValueText.h"

#include <afx/afxdlgs.h>
#include <afx/afxmt.h>

#include <cstdio>

namespace {

constexpr DWORD kUploadPoll_ms = 50;

enum class UploadOutcome { GoOn, Failed, FrameGone };

// The upload-and-save flow of the frame reads the variables of the selection from the drive
// first, so that the export holds the drive's values. Its questions and guards run as usual;
// when they start no upload, the export goes on with the values as they stand. An upload that
// started is waited for (the host shows its progress), and one that failed stops the export:
// a file of half-read values would claim to be the drive's.
UploadOutcome UploadBeforeExport(CVarTable* table) {
    const int before = table->GetUploadsEnded();
    // busyExporting keeps the end of the upload from starting a save.
    const int busy = table->busyExporting;
    table->busyExporting = 1;
    table->UploadAndSave();
    CEvent idle;
    while (table->GetUploadsEnded() == before && table->IsUploadPending()) {
        if (table->GetSafeHwnd() == nullptr)
            return UploadOutcome::FrameGone;
        AfxWaitPumping(idle, kUploadPoll_ms);
    }
    table->busyExporting = busy;
    if (table->GetUploadsEnded() != before && !table->LastUploadSucceeded())
        return UploadOutcome::Failed;
    return UploadOutcome::GoOn;
}

} // namespace

void CVarTablePageBase::ExportZxd() {
    const UploadOutcome upload =
        m_pTable != nullptr ? UploadBeforeExport(m_pTable) : UploadOutcome::GoOn;
    if (upload == UploadOutcome::FrameGone)
        return;
    if (upload == UploadOutcome::Failed) {
        MessageBox(GetSafeHwnd(), VarText::Translate("参数上传失败,未导出ZXD文件").GetString(), "",
                   MB_OK | MB_ICONWARNING);
        return;
    }
    SYSTEMTIME now{};
    GetLocalTime(&now);
    char name[1024];
    std::snprintf(name, sizeof name, "%hu年%02hu月%02hu日-%02hu时%02hu分%02hu秒", now.wYear,
                  now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond);
    const CString defaultName = CString(name) + ".zxd";
    CLocalResource scope(theApp.m_hResource);
    CFileDialog dialog(FALSE, "zxd", defaultName.GetString(),
                       OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT,
                       "zxd Files (*.zxd)|*.zxd|All Files (*.*)|*.*||", this);
    if (dialog.DoModal() != IDOK)
        return;
    // File names are the file system's UTF-8 whatever the setting for narrow text.
    const std::string narrow = dialog.GetPathName().GetString();
    std::vector<IVarObjEx*> rows;
    CollectShown(rows);
    IHostDeviceModule* module = m_pTable != nullptr ? m_pTable->GetModule() : nullptr;
    const ZxdResult result = WriteZxdFile(narrow, module, rows);
    if (result == ZxdResult::OpenFailed) {
        MessageBox(GetSafeHwnd(), VarText::Translate("文件打开失败").GetString(), "", MB_OK);
        return;
    }
    if (result == ZxdResult::AppendFailed)
        MessageBox(GetSafeHwnd(), VarText::Translate("ZXD文件打开失败").GetString(), "", MB_OK);
    MessageBox(GetSafeHwnd(), VarText::Translate("文件保存成功").GetString(), "", MB_OK);
}
