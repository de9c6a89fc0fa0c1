#include "files/ListExportWriter.h"

#include "files/ParamTableWriter.h"
#include "module/ParmiraApp.h"
#include "module/host/IHostProgressBox.h"
#include "module/host/IHostProgressStep.h"
#include "module/host/IHostUiService.h"
#include "module/host/IHostVarUtil.h"
#include "module/host/IVarAttr.h"
#include "module/host/IVarObjEx.h"
#include "values/ValueText.h"

#include <afx/afxdlgs.h>
#include <afx/afxmt.h>

#include <string>

CString ListExportTitleLine(IHostUiService* ui) {
    static const UINT ids[10] = {
        IDS_COL_CODE, IDS_COL_NAME,    IDS_COL_CURRENT_VALUE, IDS_COL_UNIT,    IDS_COL_MIN,
        IDS_COL_MAX,  IDS_COL_FACTORY, IDS_COL_MODIFY,        IDS_COL_ADDRESS, IDS_COL_TYPE};
    CString line;
    for (int i = 0; i < 10; ++i) {
        CString title;
        if (ui != nullptr)
            ui->GetString(title, theApp.m_hResource, ids[i], 0);
        title.Replace(",", ";");
        if (i > 0)
            line += ",";
        line += title;
    }
    line += "\n";
    return line;
}

CString ListExportRow(IVarObjEx* var, IHostVarUtil* util) {
    VarRowTexts t;
    if (!GetVarRowTexts(var, util, t))
        return CString();
    CString row;
    row.Format("%s,%s,%s,%s,%s,%s,%s,%s,%d,%s\n", t.code.GetString(), t.name.GetString(),
               t.current.GetString(), t.unit.GetString(), t.minimum.GetString(),
               t.maximum.GetString(), t.factory.GetString(), t.modify.GetString(), t.address,
               t.type.GetString());
    return row;
}

BOOL WriteListExport(IHostProgressBox* progress, const CString& path,
                     const std::vector<IVarObjEx*>& rows, CWnd* owner) {
    IHostVarUtil* util = theApp.GetVarUtil();
    if (util == nullptr)
        return FALSE;
    std::string file, narrow;
    util->ToNarrowText(ListExportTitleLine(theApp.GetUiService()), narrow);
    file += narrow;
    const BOOL pumping = owner != nullptr && owner->GetSafeHwnd() != nullptr;
    for (IVarObjEx* var : rows) {
        if (progress != nullptr && progress->IsCancelled())
            break;
        const CString row = ListExportRow(var, util);
        if (!row.IsEmpty()) {
            util->ToNarrowText(row, narrow);
            file += narrow;
        }
        if (progress != nullptr)
            progress->StepOn();
        // Keeps the box and its cancel button alive.
        if (pumping)
            AfxPumpPendingMessages();
    }
    // The box closes before the file is written and the final message shows.
    if (progress != nullptr)
        progress->Show(0, 0);
    const HWND window = owner != nullptr ? owner->GetSafeHwnd() : nullptr;
    if (!WriteFileReplacing(path, file)) {
        MessageBox(window, theApp.LoadText(IDS_CSV_OPEN_FAILED).GetString(),
                   theApp.LoadText(IDS_ERROR_CAPTION).GetString(), MB_OK | MB_ICONERROR);
        return FALSE;
    }
    CString done;
    done.Format(theApp.LoadText(IDS_FILE_SAVED).GetString(), path.GetString());
    MessageBox(window, done.GetString(), theApp.LoadText(IDS_APP_CAPTION).GetString(),
               MB_OK | MB_ICONINFORMATION);
    return TRUE;
}

BOOL ExportListWithDialog(const std::vector<IVarObjEx*>& rows, CWnd* owner) {
    CFileDialog dialog(FALSE, "csv", nullptr, OFN_HIDEREADONLY | OFN_OVERWRITEPROMPT,
                       "CSV files (*.csv)|*.csv||", owner);
    if (dialog.DoModal() != IDOK)
        return FALSE;
    const CString path = dialog.GetPathName();
    IHostProgressBox* progress = theApp.CreateProgressBox();
    if (progress != nullptr) {
        if (IHostProgressStep* step = progress->NewStep()) {
            step->SetText(theApp.LoadText(IDS_EXPORTING));
            step->SetLowest(0);
            step->SetHighest(rows.empty() ? 1 : int(rows.size()));
            step->SetIncrement(1);
            progress->SetMode(0);
            progress->AddStep(step);
            delete step;
        }
        progress->Show(5, 0);
    }
    const BOOL written = WriteListExport(progress, path, rows, owner);
    if (progress != nullptr)
        progress->Release();
    return written;
}
