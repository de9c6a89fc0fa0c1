// The host's value and text conversions (IHostVarUtil). Stateless apart from the two
// settings given at construction, so one instance may serve every thread.
#pragma once

#include "module/host/IHostVarUtil.h"

#include <string>

namespace zorhost {

class CHostVarUtil : public IHostVarUtil {
public:
    // `narrowEncoding`: name of the encoding ToNarrowText writes ("UTF-8" unless the
    // host is told otherwise; "ISO-8859-1" is the other one known). `helpFile`: the help
    // file path; empty means "help/index.html" under the install directory.
    explicit CHostVarUtil(std::string narrowEncoding = "UTF-8", CString helpFile = CString());

    void FormatVariant(CString& text, const Variant& value, int decimals, BOOL hex) override;
    double VariantToDouble(const Variant& value, int dataType, int decimals) override;
    BOOL DoubleToVariant(double number, Variant& value) override;
    // Booleans count as 1 (true) and 0; numeric texts count as their number.
    double VariantAsDouble(const Variant& value) override;
    void VariantToText(CString& text, const Variant& value) override;
    BOOL VariantEquals(const Variant& a, const Variant& b) override;
    BOOL VariantEqualsExact(const Variant& a, const Variant& b) override;
    // Decimal (sign, fraction, exponent) or "0x" hexadecimal; surrounding blanks are
    // ignored. NaN, infinities and figures outside an integer tag's range are refused.
    BOOL ParseVariant(Variant& value, const CString& text, VARTYPE tag) override;
    BOOL IsRealVariant(const Variant& value) override;
    void DataTypeName(CString& name, int dataType) override;

    // The text of a variable's value as the lists show it: a hexadecimal parameter
    // without decimals as "0x" and at least four digits of its own width; any other
    // number as the decimal figure with its places (integer payloads are raw figures).
    void FormatValueText(CString& text, const Variant& value, int dataType, int decimals,
                         int displayFormat);

    int GetBit(LONGLONG value, int bit) override;
    LONGLONG GetBitRange(LONGLONG value, int firstBit, int lastBit) override;
    int GetDecimalDigit(LONGLONG value, int digit) override;
    void FormatDigitOption(CString& text, const Variant& value, int width, BOOL hex) override;

    void ToNarrowText(const CString& text, std::string& bytes) override;
    int ByteAt(const BYTE* block, UINT size, UINT index) override;
    int TextToInt(const CString& text) override;

    BOOL ReadTextLines(const CString& path, std::vector<CString>& lines) override;
    int GetIniInt(const CString& path, const CString& section, const CString& key,
                  int defaultValue) override;
    void GetInstallDir(CString& dir) override;
    BOOL MakeDirectory(const CString& path) override;
    void GetHelpFile(CString& path) override;

    // The parts of ReadTextLines and GetIniInt that read the bytes of a file already in
    // memory: lines without a byte order mark or line ends, and a key's figure.
    static void SplitTextLines(std::string data, std::vector<CString>& lines);
    int IniInt(const std::vector<CString>& lines, const CString& section, const CString& key,
               int defaultValue);

private:
    std::string m_narrowEncoding;
    CString m_helpFile;
};

} // namespace zorhost
