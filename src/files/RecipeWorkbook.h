// Recipe workbooks: each sheet lists parameters for one module (single sheet) or, by a
// "是" in a module's column, for several (matrix sheet). The reading gives one list of
// write records per module number text.
#pragma once

#include "module/host/HostFwd.h"

#include <afx/CString.h>

#include <map>
#include <vector>

struct RecipeKeyLess {
    bool operator()(const CString& a, const CString& b) const { return a.str() < b.str(); }
};
// Module number text to its records, ordered by that text. The records are the caller's.
using RecipeRecordMap = std::map<CString, std::vector<IRWDataItem*>, RecipeKeyLess>;

// Fills `map` from the workbook at `path`. A workbook that can't be read leaves it empty;
// so does a host without a record factory.
void ReadRecipeWorkbook(const CString& path, RecipeRecordMap& map);
// Deletes all records of `map` and empties it.
void DeleteRecipeRecords(RecipeRecordMap& map);
// Whether a parameter file was written for the device type of `module`: the label words
// at the byte offsets 0, 2, 4 and 14 agree.
BOOL IsSameDeviceType(IParamFile* file, IHostDeviceModule* module);
