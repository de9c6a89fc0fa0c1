// Axis copy on the host's side: the write record the host hands out, the search for the
// parameters that differ between two axes, and the write of chosen records to an axis.
#pragma once

#include "module/host/IRWDataItem.h"

#include <afx/CString.h>

#include <vector>

class IHostDeviceModule;

namespace zorhost {

class CHostDeviceHelper;

// A write record: address, data type, value, the value the target held, a check mark.
class CParamRecord : public IRWDataItem {
public:
    UINT GetRecordAddress() override { return m_address; }
    Variant GetRecordValue() override { return m_value; }
    Variant GetRecordOldValue() override { return m_oldValue; }
    BOOL IsRecordChecked() override { return m_checked; }
    void SetRecordChecked(BOOL checked) override { m_checked = checked ? 1 : 0; }
    void SetRecordAddress(UINT address) override { m_address = address; }
    void SetRecordValue(const Variant& value) override { m_value = value; }
    void SetRecordType(int dataType) override { m_dataType = dataType; }

    int RecordType() const { return m_dataType; }
    void SetOldValue(const Variant& value) { m_oldValue = value; }

private:
    UINT m_address = 0;
    int m_dataType = 0;
    Variant m_value;
    Variant m_oldValue;
    BOOL m_checked = 0;
};

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
