// The parameter table: a CSV text of a drive's identity and one row per parameter, read
// back by the host's table reader. Line feeds only, no byte order mark, fields neither
// quoted nor escaped; every line goes through the host's narrow text.
#pragma once

#include "module/host/HostFwd.h"

#include <afx/CString.h>
#include <afx/afxtypes.h>

#include <string>
#include <vector>

// Column titles of the table, by string id.
constexpr UINT IDS_COL_CODE = 2013;
constexpr UINT IDS_COL_NAME = 2014;
constexpr UINT IDS_COL_CURRENT = 2009;
constexpr UINT IDS_COL_FACTORY = 2016;
constexpr UINT IDS_COL_UNIT = 2019;
constexpr UINT IDS_COL_MIN = 2017;
constexpr UINT IDS_COL_MAX = 2018;
constexpr UINT IDS_COL_MODIFY = 2020;
constexpr UINT IDS_COL_ADDRESS = 2022;
constexpr UINT IDS_COL_TYPE = 2023;

// Lines 1 to 6: sign and time, drive name, bus id, version and label. `stamp` is the
// local time of writing. Each line ends in "\n"; lines 3 and 6 are empty.
std::vector<CString> ParamTableHeadLines(IHostDeviceModule* module, const SYSTEMTIME& stamp);
// Line 7: the ten column titles from the string table; a comma in a title becomes ";".
// With `withGuid` an eleventh, "Guid".
CString ParamTableTitleLine(IHostUiService* ui, BOOL withGuid = FALSE);
// One row of ten fields (eleven with the instance key) with its "\n"; empty for a null
// variable or one without attribute.
CString ParamTableRow(IVarObjEx* var, IHostVarUtil* util, BOOL withGuid = FALSE);

// The texts of a parameter that the file rows hold; numbers decimal whatever the display
// format. FALSE without an attribute or a value service.
struct VarRowTexts {
    CString code, name, unit, current, factory, minimum, maximum, modify, type;
    int address = 0;
};
BOOL GetVarRowTexts(IVarObjEx* var, IHostVarUtil* util, VarRowTexts& texts);

// Writes the 10-column table of `list` for `module` to `path`, replacing the file in one
// step (temporary file, then rename). 1 on success; 0 without the value service or the
// module, with an empty path, or when the file can't be written (nothing is left then).
// A null `stamp` takes the local time now.
BOOL WriteParamTableList(const CString& path, const std::vector<IVarObjEx*>& list,
                         IHostDeviceModule* module, const SYSTEMTIME* stamp = nullptr);
// The same with 10 or, with `withGuid`, 11 columns.
BOOL WriteParamTableRows(const CString& path, const std::vector<IVarObjEx*>& list,
                         IHostDeviceModule* module, BOOL withGuid,
                         const SYSTEMTIME* stamp = nullptr);

// Replaces `path` with `bytes` in one step (AfxReplaceFile); the reason of a failure is
// AfxGetLastFileError().
BOOL WriteFileReplacing(const CString& path, const std::string& bytes);
