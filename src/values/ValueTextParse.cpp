// Texts read back: type names, hexadecimal, binary and address texts, and the names of
// connector parameters.
#include "values/ValueText.h"

#include "module/host/IValueInfo.h"
#include "module/host/IValueInfoEntry.h"
#include "module/host/IValueInfoList.h"
#include "module/host/IVarAttr.h"

#include <cstdint>

namespace VarText {

// ---- types and parsers

int DataTypeFromName(const CString& text) {
    struct Name {
        const char* text;
        int type;
    };
    static const Name kWhole1[] = {{"有符号16位", VT_I2},   {"无符号16位", VT_UI2},
                                   {"无符号32位", VT_UI4},  {"有符号32位", VT_I4},
                                   {"单精度浮点数", VT_R4}, {"双精度浮点数", VT_R8}};
    static const Name kWhole2[] = {{"无符号8位字符", VT_UI1},
                                   {"有符号8位字符", VT_I1},
                                   {"无符号字符串", VT_BSTR},
                                   {"无符号日期类型", VT_DATE}};
    for (const Name& n : kWhole1)
        if (text.CompareNoCase(n.text) == 0)
            return n.type;
    // A spreadsheet may write more behind the boolean type's name.
    const CString boolName("布尔型");
    if (text.Left(boolName.GetLength()).CompareNoCase(boolName) == 0)
        return VT_BOOL;
    for (const Name& n : kWhole2)
        if (text.CompareNoCase(n.text) == 0)
            return n.type;
    return 0;
}

CString HexTextToDecimal(const CString& text) {
    std::string s = text.str();
    if (s.size() >= 2 && s[0] == '0' && (s[1] == 'x' || s[1] == 'X'))
        s.erase(0, 2);
    std::string digits;
    for (char c : s) {
        if (c == ' ')
            continue;
        if (!std::isxdigit(static_cast<unsigned char>(c)))
            break;
        digits += c;
    }
    if (digits.size() > 8)
        digits.resize(8);
    uint32_t sum = 0;
    int shift = 0;
    for (auto it = digits.rbegin(); it != digits.rend(); ++it, shift += 4) {
        const int code = static_cast<unsigned char>(*it);
        const int value = code - 48 <= 9 ? code - 48 : code - 55 <= 15 ? code - 55 : code - 87;
        sum += uint32_t(value) << shift;
    }
    CString result;
    result.Format("%u", sum);
    return result;
}

CString BinaryTextToDecimal(const CString& text) {
    if (text.GetLength() < 3)
        return CString();
    std::string s = text.str();
    if (s[0] == '0' && (s[1] == 'b' || s[1] == 'B'))
        s.erase(0, 2);
    std::string digits;
    for (char c : s) {
        if (c == ' ')
            continue;
        if (c != '0' && c != '1')
            break;
        digits += c;
    }
    if (digits.size() > 16)
        digits.resize(16);
    int sum = 0;
    int weight = 1;
    for (auto it = digits.rbegin(); it != digits.rend(); ++it, weight *= 2)
        sum += (*it - '0') * weight;
    CString result;
    result.Format("%d", sum);
    return result;
}

UINT ParseAddressText(const CString& text) {
    CString upper = text;
    upper.MakeUpper();
    if (upper.Left(2) != "0X") {
        // Leading decimal digits; an address has no sign.
        const std::string& s = upper.str();
        uint64_t value = 0;
        for (char c : s) {
            if (c < '0' || c > '9')
                break;
            value = value * 10 + uint64_t(c - '0');
            if (value > UINT32_MAX)
                return 0;
        }
        return UINT(value);
    }
    CString rest = text;
    rest.Remove(' ');
    rest.Replace("0x", "");
    rest.Replace("0X", "");
    if (rest.IsEmpty())
        return 0;
    // The text must end in a hexadecimal digit.
    const std::string& s = rest.str();
    if (s.empty() || !std::isxdigit(static_cast<unsigned char>(s.back())))
        return 0;
    // Only the tail has to be hexadecimal; the value is read from the front, up to the
    // first character that is no digit, as an unsigned conversion would.
    uint64_t value = 0;
    for (char c : s) {
        if (!std::isxdigit(static_cast<unsigned char>(c)))
            break;
        value = value * 16 + uint64_t(std::isdigit(static_cast<unsigned char>(c))
                                          ? c - '0'
                                          : std::toupper(static_cast<unsigned char>(c)) - 'A' + 10);
        if (value > UINT32_MAX)
            return 0;
    }
    return UINT(value);
}

// ---- connectors

namespace {
const char* const kConnectorNames[] = {"B连接器", "K连接器", "F连接器", "KF连接器", "BKF连接器"};
} // namespace

BOOL IsConnectorVar(IVarAttr* attr) {
    IValueInfo* info = attr != nullptr ? attr->GetValueInfo() : nullptr;
    if (info == nullptr || info->GetKind() != VALUE_INFO_ENUM)
        return FALSE;
    IValueInfoList* list = info->GetEnumList();
    if (list == nullptr || list->GetCount() <= 0)
        return FALSE;
    IValueInfoEntry* last = list->GetAt(list->GetCount() - 1);
    if (last == nullptr)
        return FALSE;
    CString text;
    last->GetText(text);
    for (const char* name : kConnectorNames)
        if (text.CompareNoCase(name) == 0)
            return TRUE;
    return FALSE;
}

BOOL IsConnectorName(const CString& text) {
    static const char* const kNames[] = {"B连接器", "K连接器", "F连接器", "KF连接器", "连接器"};
    for (const char* name : kNames)
        if (text.CompareNoCase(name) == 0)
            return TRUE;
    return FALSE;
}

BOOL HasConnectorName(const CString& text) {
    CString upper = text;
    upper.MakeUpper();
    for (const char* name : kConnectorNames) {
        CString bracketed = CString("[") + name + "]";
        bracketed.MakeUpper();
        if (upper.Find(bracketed) >= 0)
            return TRUE;
    }
    return FALSE;
}

} // namespace VarText
