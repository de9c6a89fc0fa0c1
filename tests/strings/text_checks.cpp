#include "text_checks.h"

#include <cctype>
#include <cstring>

namespace {

// Decodes one UTF-8 sequence at `i`; malformed bytes count as themselves.
char32_t NextCodePoint(const std::string& s, size_t& i) {
    const auto b = static_cast<unsigned char>(s[i]);
    int extra = b >= 0xF0 ? 3 : b >= 0xE0 ? 2 : b >= 0xC0 ? 1 : 0;
    char32_t cp = extra == 3 ? (b & 0x07) : extra == 2 ? (b & 0x0F) : extra == 1 ? (b & 0x1F) : b;
    ++i;
    while (extra-- > 0 && i < s.size()) {
        cp = (cp << 6) | (static_cast<unsigned char>(s[i]) & 0x3F);
        ++i;
    }
    return cp;
}

} // namespace

bool HasChineseText(const std::string& text) {
    for (size_t i = 0; i < text.size();) {
        const char32_t cp = NextCodePoint(text, i);
        if ((cp >= 0x4E00 && cp <= 0x9FFF) || (cp >= 0x3400 && cp <= 0x4DBF) ||
            (cp >= 0x3000 && cp <= 0x303F) || (cp >= 0xFF00 && cp <= 0xFFEF))
            return true;
    }
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
