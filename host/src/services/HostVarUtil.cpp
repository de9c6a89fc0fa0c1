#include "zorhost/services/HostVarUtil.h"
#include "zorhost/InstallLayout.h"

#include "zorhost/files/BoundedRead.h"

#include "module/host/VarTypes.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace zorhost {

namespace {

std::string Trimmed(const std::string& s) {
    size_t b = s.find_first_not_of(" \t\r\n");
    if (b == std::string::npos)
        return std::string();
    size_t e = s.find_last_not_of(" \t\r\n");
    return s.substr(b, e - b + 1);
}

// Whole-text number: decimal or 0x hexadecimal, finite only.
bool ParseNumber(const std::string& raw, double& out) {
    std::string s = Trimmed(raw);
    if (s.empty())
        return false;
    size_t i = 0;
    bool neg = false;
    if (s[i] == '+' || s[i] == '-') {
        neg = s[i] == '-';
        ++i;
    }
    if (s.size() > i + 2 && s[i] == '0' && (s[i + 1] == 'x' || s[i + 1] == 'X')) {
        unsigned long long v = 0;
        for (size_t k = i + 2; k < s.size(); ++k) {
            char c = s[k];
            int d = (c >= '0' && c <= '9')   ? c - '0'
                    : (c >= 'a' && c <= 'f') ? c - 'a' + 10
                    : (c >= 'A' && c <= 'F') ? c - 'A' + 10
                                             : -1;
            if (d < 0 || v > (ULLONG_MAX >> 4))
                return false;
            v = (v << 4) | unsigned(d);
        }
        out = neg ? -double(v) : double(v);
        return true;
    }
    // strtod also takes "nan", "inf" and its own hex floats: allow digits, '.', exponent.
    for (size_t k = i; k < s.size(); ++k) {
        char c = s[k];
        if (!((c >= '0' && c <= '9') || c == '.' || c == 'e' || c == 'E' || c == '+' || c == '-'))
            return false;
    }
    const char* begin = s.c_str();
    char* end = nullptr;
    errno = 0;
    double v = std::strtod(begin, &end);
    if (end == begin || *end != '\0' || !std::isfinite(v))
        return false;
    out = v;
    return true;
}

// Shortest "%.*g" that reads back to the same double.
std::string ShortestDouble(double v) {
    char buf[40];
    for (int p = 15; p <= 17; ++p) {
        std::snprintf(buf, sizeof buf, "%.*g", p, v);
        if (std::strtod(buf, nullptr) == v)
            break;
    }
    return buf;
}

// "-0", "-0.00" ... are plain zero to the user.
void DropNegativeZero(std::string& s) {
    if (!s.empty() && s[0] == '-' && s.find_first_not_of("0.", 1) == std::string::npos)
        s.erase(0, 1);
}

// Raw bits of an integer payload in its own width, for hexadecimal display.
bool IntegerBits(const Variant& v, unsigned long long& bits) {
    switch (v.vt) {
    case VT_I1:
        bits = uint8_t(v.cVal);
        return true;
    case VT_UI1:
        bits = v.bVal;
        return true;
    case VT_I2:
        bits = uint16_t(v.iVal);
        return true;
    case VT_UI2:
        bits = v.uiVal;
        return true;
    case VT_BOOL:
        bits = uint16_t(v.boolVal);
        return true;
    case VT_I4:
        bits = uint32_t(v.lVal);
        return true;
    case VT_UI4:
        bits = v.ulVal;
        return true;
    default:
        return false;
    }
}

bool NumberOf(const Variant& v, double& out) {
    switch (v.vt) {
    case VT_I1:
        out = v.cVal;
        return true;
    case VT_UI1:
        out = v.bVal;
        return true;
    case VT_I2:
        out = v.iVal;
        return true;
    case VT_UI2:
        out = v.uiVal;
        return true;
    case VT_I4:
        out = v.lVal;
        return true;
    case VT_UI4:
        out = v.ulVal;
        return true;
    case VT_R4:
        out = v.fltVal;
        return true;
    case VT_R8:
        out = v.dblVal;
        return true;
    case VT_DATE:
        out = v.date;
        return true;
    case VT_BOOL:
        out = v.boolVal ? 1 : 0;
        return true;
    case VT_BSTR:
        return ParseNumber(v.bstrVal.str(), out);
    default:
        return false;
    }
}

} // namespace

CHostVarUtil::CHostVarUtil(std::string narrowEncoding, CString helpFile)
    : m_narrowEncoding(std::move(narrowEncoding)), m_helpFile(std::move(helpFile)) {}

void CHostVarUtil::FormatVariant(CString& text, const Variant& value, int decimals, BOOL hex) {
    text.Empty();
    if (value.IsEmptyOrNull())
        return;
    if (value.vt == VT_BSTR) {
        text = value.bstrVal;
        return;
    }
    char buf[400];
    if (hex) {
        unsigned long long bits = 0;
        if (!IntegerBits(value, bits)) {
            double d = 0;
            NumberOf(value, d);
            d = std::nearbyint(d);
            bits = d < 0 ? (unsigned long long)(long long)std::max(d, -9.2e18)
                         : (unsigned long long)std::min(d, 1.8e19);
        }
        std::snprintf(buf, sizeof buf, "%llX", bits);
        text = buf;
        return;
    }
    double d = 0;
    if (!NumberOf(value, d)) {
        return;
    }
    if (std::isnan(d) || std::isinf(d)) {
        text = std::isnan(d) ? "NaN" : (d < 0 ? "-Inf" : "Inf");
        return;
    }
    decimals = std::clamp(decimals, 0, 15);
    // Integer variants hold raw figures, as the drive does: 1234 with two places is 12.34.
    // Reals hold the figure itself.
    if (IsIntegerVarType(value.vt))
        d /= std::pow(10.0, decimals);
    std::snprintf(buf, sizeof buf, "%.*f", decimals, d);
    std::string s = buf;
    DropNegativeZero(s);
    text = s;
}

void CHostVarUtil::FormatValueText(CString& text, const Variant& value, int dataType, int decimals,
                                   int displayFormat) {
    text.Empty();
    if (value.IsEmptyOrNull())
        return;
    if (value.vt == VT_BSTR) {
        text = value.bstrVal;
        return;
    }
    if (displayFormat == 1 && decimals <= 0) {
        // The bits of the parameter's own width: -1 of a 16-bit parameter reads 0xFFFF.
        unsigned long long bits = 0;
        Variant own = Variant::OfType(VARTYPE(dataType));
        if (!(IsIntegerVarType(own.vt) && DoubleToVariant(VariantAsDouble(value), own) &&
              IntegerBits(own, bits)) &&
            !IntegerBits(value, bits)) {
            const double d = std::trunc(VariantAsDouble(value));
            if (!std::isfinite(d))
                return;
            bits = d < 0 ? (unsigned long long)(long long)std::max(d, -9.2e18)
                         : (unsigned long long)std::min(d, 1.8e19);
        }
        char buf[40];
        std::snprintf(buf, sizeof buf, "0x%04llX", bits);
        text = buf;
        return;
    }
    // FormatVariant divides an integer payload by its places itself.
    FormatVariant(text, value, decimals, 0);
}

double CHostVarUtil::VariantToDouble(const Variant& value, int dataType, int decimals) {
    double d = VariantAsDouble(value);
    if (decimals > 0 && IsIntegerVarType(VARTYPE(dataType)))
        d /= std::pow(10.0, std::min(decimals, 15));
    return d;
}

BOOL CHostVarUtil::DoubleToVariant(double number, Variant& value) {
    double lo = 0, hi = 0;
    if (IntegerVarTypeRange(value.vt, lo, hi)) {
        if (std::isnan(number))
            return 0;
        double r = std::clamp(std::nearbyint(number), lo, hi);
        switch (value.vt) {
        case VT_I1:
            value.cVal = int8_t(r);
            break;
        case VT_I2:
            value.iVal = int16_t(r);
            break;
        case VT_I4:
            value.lVal = int32_t(r);
            break;
        case VT_UI1:
            value.bVal = uint8_t(r);
            break;
        case VT_UI2:
            value.uiVal = uint16_t(r);
            break;
        default:
            value.ulVal = uint32_t(r);
            break;
        }
        return 1;
    }
    switch (value.vt) {
    case VT_R4:
        value.fltVal = float(number);
        return 1;
    case VT_R8:
        value.dblVal = number;
        return 1;
    case VT_DATE:
        value.date = number;
        return 1;
    case VT_BOOL:
        value.boolVal = number != 0 ? VARIANT_TRUE : VARIANT_FALSE;
        return 1;
    default:
        return 0;
    }
}

double CHostVarUtil::VariantAsDouble(const Variant& value) {
    double d = 0;
    return NumberOf(value, d) ? d : 0.0;
}

void CHostVarUtil::VariantToText(CString& text, const Variant& value) {
    text.Empty();
    switch (value.vt) {
    case VT_EMPTY:
    case VT_NULL:
        return;
    case VT_BSTR:
        text = value.bstrVal;
        return;
    case VT_R4:
    case VT_R8:
    case VT_DATE: {
        double d = VariantAsDouble(value);
        std::string s = value.vt == VT_R4 ? [&] {
            char buf[40];
            std::snprintf(buf, sizeof buf, "%.9g", double(value.fltVal));
            // A float prints shortest within its own precision.
            for (int p = 6; p <= 9; ++p) {
                std::snprintf(buf, sizeof buf, "%.*g", p, double(value.fltVal));
                if (std::strtof(buf, nullptr) == value.fltVal)
                    break;
            }
            return std::string(buf);
        }() : ShortestDouble(d);
        DropNegativeZero(s);
        text = s;
        return;
    }
    default: {
        char buf[32];
        std::snprintf(buf, sizeof buf, "%lld", (long long)VariantAsDouble(value));
        text = buf;
    }
    }
}

BOOL CHostVarUtil::VariantEquals(const Variant& a, const Variant& b) {
    if (a.IsEmptyOrNull() || b.IsEmptyOrNull())
        return a.IsEmptyOrNull() && b.IsEmptyOrNull();
    double x = 0, y = 0;
    bool nx = NumberOf(a, x), ny = NumberOf(b, y);
    if (nx && ny)
        return x == y;
    if (a.vt == VT_BSTR && b.vt == VT_BSTR)
        return a.bstrVal == b.bstrVal;
    return 0;
}

BOOL CHostVarUtil::VariantEqualsExact(const Variant& a, const Variant& b) {
    return a == b;
}

BOOL CHostVarUtil::ParseVariant(Variant& value, const CString& text, VARTYPE tag) {
    value = Variant::OfType(tag);
    if (tag == VT_BSTR) {
        value.bstrVal = text;
        return 1;
    }
    if (tag == VT_EMPTY || tag == VT_NULL)
        return Trimmed(text.str()).empty();
    double d = 0;
    if (!ParseNumber(text.str(), d))
        return 0;
    double lo = 0, hi = 0;
    if (IntegerVarTypeRange(tag, lo, hi) && (std::nearbyint(d) < lo || std::nearbyint(d) > hi))
        return 0;
    if (tag == VT_R4 && std::fabs(d) > 3.4028234663852886e38)
        return 0;
    if (!DoubleToVariant(d, value)) {
        value = Variant::OfType(tag);
        return 0;
    }
    return 1;
}

BOOL CHostVarUtil::IsRealVariant(const Variant& value) {
    double d = 0;
    return NumberOf(value, d) && std::isfinite(d);
}

void CHostVarUtil::DataTypeName(CString& name, int dataType) {
    switch (dataType) {
    case VT_I2:
        name = "有符号16位";
        break;
    case VT_I4:
        name = "有符号32位";
        break;
    case VT_R4:
        name = "单精度浮点数";
        break;
    case VT_R8:
        name = "双精度浮点数";
        break;
    case VT_DATE:
        name = "无符号日期类型";
        break;
    case VT_BSTR:
        name = "无符号字符串";
        break;
    case VT_BOOL:
        name = "布尔型";
        break;
    case VT_I1:
        name = "有符号8位字符";
        break;
    case VT_UI1:
        name = "无符号8位字符";
        break;
    case VT_UI2:
        name = "无符号16位";
        break;
    case VT_UI4:
        name = "无符号32位";
        break;
    default:
        name.Empty();
        break;
    }
}

int CHostVarUtil::GetBit(LONGLONG value, int bit) {
    if (bit < 0 || bit > 63)
        return 0;
    return int((ULONGLONG(value) >> bit) & 1u);
}

LONGLONG CHostVarUtil::GetBitRange(LONGLONG value, int firstBit, int lastBit) {
    if (firstBit > lastBit)
        std::swap(firstBit, lastBit);
    firstBit = std::max(firstBit, 0);
    lastBit = std::min(lastBit, 63);
    if (firstBit > lastBit)
        return 0;
    ULONGLONG v = ULONGLONG(value) >> firstBit;
    int width = lastBit - firstBit + 1;
    if (width < 64)
        v &= (ULONGLONG(1) << width) - 1;
    return LONGLONG(v);
}

int CHostVarUtil::GetDecimalDigit(LONGLONG value, int digit) {
    if (digit < 0 || digit > 18)
        return 0;
    ULONGLONG v = value < 0 ? ULONGLONG(0) - ULONGLONG(value) : ULONGLONG(value);
    for (int i = 0; i < digit; ++i)
        v /= 10;
    return int(v % 10);
}

void CHostVarUtil::FormatDigitOption(CString& text, const Variant& value, int width, BOOL hex) {
    char buf[64];
    width = std::clamp(width, 0, 32);
    if (hex) {
        unsigned long long bits = 0;
        if (!IntegerBits(value, bits))
            bits = (unsigned long long)(long long)std::nearbyint(VariantAsDouble(value));
        std::snprintf(buf, sizeof buf, "0x%0*llX", width, bits);
    } else {
        std::snprintf(buf, sizeof buf, "%0*lld", width,
                      (long long)std::nearbyint(VariantAsDouble(value)));
    }
    text = buf;
}

void CHostVarUtil::ToNarrowText(const CString& text, std::string& bytes) {
    if (m_narrowEncoding == "ISO-8859-1" || m_narrowEncoding == "Latin1") {
        // Characters outside Latin-1 become '?', as other tools expect one byte each.
        bytes.clear();
        for (wchar_t ch : text.ToWide())
            bytes.push_back(ch < 256 ? char(ch) : '?');
        return;
    }
    bytes = text.str();
}

int CHostVarUtil::ByteAt(const BYTE* block, UINT size, UINT index) {
    return block && index < size ? int(block[index]) : 0;
}

int CHostVarUtil::TextToInt(const CString& text) {
    const std::string& s = text.str();
    size_t i = 0;
    while (i < s.size() && (s[i] == ' ' || s[i] == '\t'))
        ++i;
    bool neg = false;
    if (i < s.size() && (s[i] == '+' || s[i] == '-'))
        neg = s[i++] == '-';
    long long v = 0;
    for (; i < s.size() && s[i] >= '0' && s[i] <= '9'; ++i)
        v = std::min<long long>(v * 10 + (s[i] - '0'), 1LL << 32);
    v = neg ? -v : v;
    return int(std::clamp<long long>(v, INT_MIN, INT_MAX));
}

BOOL CHostVarUtil::ReadTextLines(const CString& path, std::vector<CString>& lines) {
    lines.clear();
    std::string data, why;
    const files::ReadOutcome outcome =
        files::ReadFileBounded(path.str(), files::kMaxConfigFileBytes, data, &why);
    if (outcome == files::ReadOutcome::TooLarge)
        std::fprintf(stderr, "%s: %s; not a configuration file, ignored\n", path.GetString(),
                     why.c_str());
    if (outcome != files::ReadOutcome::Ok)
        return 0;
    SplitTextLines(std::move(data), lines);
    return 1;
}

void CHostVarUtil::SplitTextLines(std::string data, std::vector<CString>& lines) {
    lines.clear();
    if (data.compare(0, 3, "\xEF\xBB\xBF") == 0)
        data.erase(0, 3);
    size_t start = 0;
    while (start < data.size()) {
        size_t nl = data.find('\n', start);
        size_t end = nl == std::string::npos ? data.size() : nl;
        size_t len = end - start;
        if (len > 0 && data[start + len - 1] == '\r')
            --len;
        lines.emplace_back(data.substr(start, len));
        if (nl == std::string::npos)
            break;
        start = nl + 1;
    }
}

int CHostVarUtil::GetIniInt(const CString& path, const CString& section, const CString& key,
                            int defaultValue) {
    std::vector<CString> lines;
    if (!ReadTextLines(path, lines))
        return defaultValue;
    return IniInt(lines, section, key, defaultValue);
}

int CHostVarUtil::IniInt(const std::vector<CString>& lines, const CString& section,
                         const CString& key, int defaultValue) {
    bool inSection = false;
    for (CString line : lines) {
        line.Trim();
        if (line.IsEmpty() || line[0] == L';' || line[0] == L'#')
            continue;
        if (line[0] == L'[') {
            int close = line.Find(L']');
            CString name = close > 0 ? line.Mid(1, close - 1) : line.Mid(1);
            inSection = name.Trim().CompareNoCase(section) == 0;
            continue;
        }
        if (!inSection)
            continue;
        int eq = line.Find(L'=');
        if (eq <= 0)
            continue;
        CString name = line.Left(eq);
        if (name.Trim().CompareNoCase(key) == 0)
            return TextToInt(line.Mid(eq + 1));
    }
    return defaultValue;
}

void CHostVarUtil::GetInstallDir(CString& dir) {
    dir = layout::ProgramDir();
}

BOOL CHostVarUtil::MakeDirectory(const CString& path) {
    if (path.IsEmpty())
        return 0;
    ::mkdir(path.GetString(), 0777);
    struct stat st {};
    return ::stat(path.GetString(), &st) == 0 && S_ISDIR(st.st_mode);
}

void CHostVarUtil::GetHelpFile(CString& path) {
    if (!m_helpFile.IsEmpty()) {
        path = m_helpFile;
        return;
    }
    GetInstallDir(path);
    path = CString(path.str() + "/help/index.html");
}

} // namespace zorhost
