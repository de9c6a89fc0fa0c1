// A write record: address, type and value of one parameter, and for axis copy the old
// value and a check mark. Implemented by the host; made by
// IHostParamRecordFactory::NewParamRecord or IHostTransferService::CompareAxes, and
// deleted by the caller.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/Variant.h"

class IRWDataItem : public IBaseInterface {
public:
    // Communication address the record writes to.
    virtual UINT GetRecordAddress() = 0;
    // The value the record writes.
    virtual Variant GetRecordValue() = 0;
    // The value the target held when the record was made; empty when unknown.
    virtual Variant GetRecordOldValue() = 0;
    // The record's check mark.
    virtual BOOL IsRecordChecked() = 0;
    // Sets or clears the check mark.
    virtual void SetRecordChecked(BOOL checked) = 0;
    // Sets the address.
    virtual void SetRecordAddress(UINT address) = 0;
    // Sets the value.
    virtual void SetRecordValue(const Variant& value) = 0;
    // Sets the data type code.
    virtual void SetRecordType(int dataType) = 0;
};
