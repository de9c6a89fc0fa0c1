// The list export: the rows of a list page as a CSV text for people and spreadsheets, with
// a title line and no head of drive identity. Same line ends and the same absence of
// quoting as the parameter table.
#pragma once

#include "module/host/HostFwd.h"

#include <afx/CString.h>
#include <afx/afxtypes.h>

#include <vector>

class CWnd;

constexpr UINT IDS_COL_CURRENT_VALUE = 2026;
constexpr UINT IDS_FILE_SAVED = 2033;
constexpr UINT IDS_CSV_OPEN_FAILED = 2034;
constexpr UINT IDS_APP_CAPTION = 2040;
constexpr UINT IDS_EXPORTING = 2043;
constexpr UINT IDS_ERROR_CAPTION = 2044;

// The ten column titles; a comma in a title becomes ";".
CString ListExportTitleLine(IHostUiService* ui);
// One row with its "\n"; empty for a null row or one without attribute.
CString ListExportRow(IVarObjEx* var, IHostVarUtil* util);

// Writes `rows` in list order to `path`, replacing the file in one step. `progress` (may
// be null) is stepped once per row, and a cancel in it stops the taking of rows: what was
// taken is written. With `owner`, pending window messages are handled between rows. Shows
// string 2034 when the file can't be written and string 2033 when it was. 1 on success.
BOOL WriteListExport(IHostProgressBox* progress, const CString& path,
                     const std::vector<IVarObjEx*>& rows, CWnd* owner);

// Command 2107: asks for the file, shows the host's progress box ("正在导出...") during
// the run and writes the export. 1 when a file was written.
BOOL ExportListWithDialog(const std::vector<IVarObjEx*>& rows, CWnd* owner);
