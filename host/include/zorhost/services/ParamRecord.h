// Write records (IRWDataItem) and the factory that makes them for the module
// (IHostParamRecordFactory). A record carries its data type beside address and value, so a
// download writes the width the record was made for.
#pragma once

#include "module/host/IHostParamRecordFactory.h"
#include "module/host/IRWDataItem.h"

namespace zorhost {

class CParamRecord : public IRWDataItem {
public:
    UINT GetRecordAddress() override { return m_address; }
    Variant GetRecordValue() override { return m_value; }
    Variant GetRecordOldValue() override { return m_oldValue; }
    BOOL IsRecordChecked() override { return m_checked; }
    void SetRecordChecked(BOOL checked) override { m_checked = checked ? 1 : 0; }
    void SetRecordAddress(UINT address) override { m_address = address; }
    void SetRecordValue(const Variant& value) override { m_value = value; }
    void SetRecordType(int dataType) override { m_type = dataType; }

    // 0 when never set: the download then takes the type of the parameter at the address.
    int GetRecordType() const { return m_type; }
    void SetRecordOldValue(const Variant& value) { m_oldValue = value; }

private:
    UINT m_address = 0;
    int m_type = 0;
    Variant m_value;
    Variant m_oldValue;
    BOOL m_checked = 0;
};

class CHostParamRecordFactory : public IHostParamRecordFactory {
public:
    IRWDataItem* NewParamRecord() override { return new CParamRecord; }
};

} // namespace zorhost
