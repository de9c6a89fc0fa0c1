// Service: conversions of values and texts, and the few file helpers the module leaves
// to the host. Implemented by the host; got through the query callback under kIID.
// All operations are free of state and may be called from any thread.
#pragma once

#include "module/host/BaseInterface.h"
#include "module/host/Variant.h"

#include <string>
#include <vector>

class IHostVarUtil : public IBaseInterface {
public:
    static constexpr GUID kIID = GuidFromString("8E0120AD-A410-42C1-A751-7ECF03EA1860");

    // ---- values
    // `text` = `value` as a number with `decimals` places; hexadecimal when `hex` is
    // nonzero. An integer variant is a raw figure and is divided by 10^decimals first, as
    // VariantToDouble does; a real is taken as it stands. Texts as they stand; empty for
    // an empty variant.
    virtual void FormatVariant(CString& text, const Variant& value, int decimals, BOOL hex) = 0;
    // The number in `value`, read as a raw figure of data type `dataType` with
    // `decimals` places (so integer types are divided by 10^decimals).
    virtual double VariantToDouble(const Variant& value, int dataType, int decimals) = 0;
    // Stores `number` in `value` under the tag `value` already has (rounded and clamped
    // for integer tags). Nonzero on success; 0 for a tag without a number.
    virtual BOOL DoubleToVariant(double number, Variant& value) = 0;
    // The number in `value` as it stands, without any scaling; 0 when there is none.
    virtual double VariantAsDouble(const Variant& value) = 0;
    // `text` = plain text of any variant (numbers in decimal, texts as they are).
    virtual void VariantToText(CString& text, const Variant& value) = 0;
    // Nonzero when both hold the same number (or text), whatever their tags.
    virtual BOOL VariantEquals(const Variant& a, const Variant& b) = 0;
    // Nonzero when both have the same tag and the same payload exactly.
    virtual BOOL VariantEqualsExact(const Variant& a, const Variant& b) = 0;
    // Parses `text` into `value` with tag `tag`. Nonzero on success; on failure `value`
    // holds what could be read (0 for a number).
    virtual BOOL ParseVariant(Variant& value, const CString& text, VARTYPE tag) = 0;
    // Nonzero when `value` holds a number (any numeric tag or a numeric text).
    virtual BOOL IsRealVariant(const Variant& value) = 0;
    // `name` = the text of data type `dataType` ("有符号16位" ...); empty when unknown.
    virtual void DataTypeName(CString& name, int dataType) = 0;

    // ---- packed values
    // Bit `bit` of `value`: 0 or 1.
    virtual int GetBit(LONGLONG value, int bit) = 0;
    // Bits `firstBit` to `lastBit` of `value`, shifted down to bit 0.
    virtual LONGLONG GetBitRange(LONGLONG value, int firstBit, int lastBit) = 0;
    // Decimal digit `digit` of `value` (0 the units).
    virtual int GetDecimalDigit(LONGLONG value, int digit) = 0;
    // `text` = an option value of a digit field; "0x"-prefixed hexadecimal when `hex` is
    // nonzero. `width` is the least number of digits, 0 for as many as needed.
    virtual void FormatDigitOption(CString& text, const Variant& value, int width, BOOL hex) = 0;

    // ---- texts and bytes
    // `bytes` = `text` in the host's narrow encoding (for files that other tools read).
    virtual void ToNarrowText(const CString& text, std::string& bytes) = 0;
    // Byte `index` of `block` (`size` bytes); 0 for a null block or an index past the end.
    virtual int ByteAt(const BYTE* block, UINT size, UINT index) = 0;
    // The leading decimal integer of `text`; 0 when there is none.
    virtual int TextToInt(const CString& text) = 0;

    // ---- files
    // `lines` = the lines of the text file `path`, without line ends. 0 and no lines
    // when the file can't be read.
    virtual BOOL ReadTextLines(const CString& path, std::vector<CString>& lines) = 0;
    // Integer `key` of `section` of the profile file `path`; `defaultValue` when absent.
    virtual int GetIniInt(const CString& path, const CString& section, const CString& key,
                          int defaultValue) = 0;
    // `dir` = the directory of the host's executable, without a trailing separator.
    virtual void GetInstallDir(CString& dir) = 0;
    // Creates the directory `path` (one level). Nonzero when it exists afterwards.
    virtual BOOL MakeDirectory(const CString& path) = 0;
    // `path` = the host's help file, for IHostHelpService::ShowHelp.
    virtual void GetHelpFile(CString& path) = 0;
};

inline constexpr GUID IID_IHostVarUtil = IHostVarUtil::kIID;
