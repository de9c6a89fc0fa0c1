// The compressed export of the rows on show.
#include "files/ZxdExport.h"
#include "module/LocalResource.h"
#include "module/ParmiraApp.h"
#include "pages/VarTablePageBase.h"
#include "table/VarTable.h"
#include "values/ValueText.h"

#include <afx/afxdlgs.h>

#include <cstdio>

void CVarTablePageBase::ExportZxd() {
    // NOT DONE: the upload before the export (and its wait) belongs to the upload-and-save
    // flow, which the frame doesn't offer yet; the export writes the values as they stand.
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
