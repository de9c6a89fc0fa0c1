// What a parameter's value means: enumeration texts, single bits, bit ranges and decimal
// digits with their options. Built once per value meaning of a description and shared by
// every attribute that uses it.
#pragma once

#include "module/host/IValueInfo.h"
#include "module/host/IValueInfoEntry.h"
#include "module/host/IValueInfoList.h"
#include "zorhost/device/DeviceDescription.h"

#include <vector>

namespace zorhost::model {

class CValueInfoEntry;

class CValueInfoList : public IValueInfoList {
public:
    // Out of line, where CValueInfoEntry is complete: a vector of an incomplete type may
    // not be measured or destroyed.
    CValueInfoList();
    ~CValueInfoList() override;
    CValueInfoList(const CValueInfoList&);
    CValueInfoList& operator=(const CValueInfoList&);
    int GetCount() override;
    IValueInfoEntry* GetAt(int index) override;

    std::vector<CValueInfoEntry>& Entries() { return m_entries; }

private:
    std::vector<CValueInfoEntry> m_entries;
};

class CValueInfoEntry : public IValueInfoEntry {
public:
    CValueInfoEntry(CString text, Variant value, int bit = 0, int width = 0)
        : m_text(std::move(text)), m_value(std::move(value)), m_bit(bit), m_width(width) {}

    void GetText(CString& text) override { text = m_text; }
    Variant GetValue() override { return m_value; }
    int GetBit() override { return m_bit; }
    int GetWidth() override { return m_width; }
    int GetOptionCount() override { return m_options.GetCount(); }
    IValueInfoEntry* GetOptionAt(int index) override { return m_options.GetAt(index); }

    CValueInfoList& Options() { return m_options; }

private:
    CString m_text;
    Variant m_value;
    int m_bit;
    int m_width;
    CValueInfoList m_options;
};

class CValueInfo : public IValueInfo {
public:
    CValueInfo(const device::DeviceDescription& device, const device::ValueInfo& info);

    int GetKind() override { return m_kind; }
    IValueInfoList* GetEnumList() override { return ListOf(1); }
    IValueInfoList* GetBitList() override { return ListOf(2); }
    IValueInfoList* GetBitRangeList() override { return ListOf(3); }
    IValueInfoList* GetDigitList() override { return ListOf(4); }

private:
    IValueInfoList* ListOf(int kind) { return m_kind == kind ? &m_list : nullptr; }

    int m_kind;
    CValueInfoList m_list; // the one list of the kind
};

// An entry's value as the narrowest exact variant: i32 or u32 for whole numbers, else double.
Variant ValueInfoNumber(double value);

} // namespace zorhost::model
