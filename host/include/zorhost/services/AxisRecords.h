// Axis copy on the host's side (with the host's write records): the search for the
// parameters that differ between two axes, and the write of chosen records to an axis.
#pragma once

#include "zorhost/services/ParamRecord.h"

#include <afx/CString.h>

#include <vector>

class IHostDeviceModule;

namespace zorhost {

class CHostDeviceHelper;

// Appends one new record per parameter of axis `targetAxis` of `target` whose value
// differs from the parameter at the same place of axis `sourceAxis` of `source`: the
// target's address and data type, the source's value, the target's value as old value.
// Only transferable parameters that can be changed take part. False when a module or an
// axis is missing.
bool CompareAxisParameters(IHostDeviceModule* source, IHostDeviceModule* target,
                           const CString& sourceAxis, const CString& targetAxis,
                           std::vector<IRWDataItem*>& rows);

// Writes `rows` to the drive of `targetKey`, one parameter at a time, and stores what the
// drive took in the host's variables. False when any write failed; `errors` names them.
bool WriteAxisRecords(CHostDeviceHelper& helper, IHostDeviceModule* target,
                      const std::vector<IRWDataItem*>& rows, std::vector<CString>& errors);

} // namespace zorhost
