#include "text_checks.h"

#include <afx/CString.h>

#include <cctype>
#include <cstring>

bool HasChineseText(const std::string& text) {
    for (const wchar_t c : CString(text.c_str()).ToWide())
        if ((c >= 0x4E00 && c <= 0x9FFF) || (c >= 0x3400 && c <= 0x4DBF) ||
            (c >= 0x3000 && c <= 0x303F) || (c >= 0xFF00 && c <= 0xFFEF))
            return true;
    return false;
}

std::vector<std::string> PrintfConversions(const std::string& format) {
    std::vector<std::string> result;
    for (size_t i = 0; i < format.size(); ++i) {
        if (format[i] != '%')
            continue;
        size_t j = i + 1;
        if (j < format.size() && format[j] == '%') {
            i = j;
            continue;
        }
        while (j < format.size() && std::strchr("-+ #0", format[j]))
            ++j;
        while (j < format.size() && (std::isdigit(static_cast<unsigned char>(format[j])) ||
                                     format[j] == '.' || format[j] == '*'))
            ++j;
        while (j < format.size() && std::strchr("hlLqjztI", format[j]))
            ++j;
        if (j < format.size() && std::strchr("diouxXeEfFgGaAcspn", format[j])) {
            result.push_back(format.substr(i, j - i + 1));
            i = j;
        }
    }
    return result;
}
