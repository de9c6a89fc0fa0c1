#include <afx/CString.h>
#include <afx/afxres.h>

#include <QString>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <vector>

namespace {

bool IsContinuation(unsigned char c) {
    return (c & 0xC0) == 0x80;
}

// Decodes the character starting at s[i]; sets `len` to its byte length. Malformed input
// decodes as U+FFFD over the bytes that belong to it.
char32_t DecodeAt(const std::string& s, size_t i, size_t* len) {
    const auto c = static_cast<unsigned char>(s[i]);
    size_t n = 1;
    while (i + n < s.size() && IsContinuation(static_cast<unsigned char>(s[i + n])))
        ++n;
    *len = n;
    if (c < 0x80)
        return n == 1 ? c : 0xFFFD;
    int need;
    char32_t cp;
    if ((c & 0xE0) == 0xC0) {
        need = 1;
        cp = c & 0x1F;
    } else if ((c & 0xF0) == 0xE0) {
        need = 2;
        cp = c & 0x0F;
    } else if ((c & 0xF8) == 0xF0) {
        need = 3;
        cp = c & 0x07;
    } else {
        return 0xFFFD;
    }
    if (n != size_t(need) + 1)
        return 0xFFFD;
    for (int k = 1; k <= need; ++k)
        cp = (cp << 6) | (static_cast<unsigned char>(s[i + k]) & 0x3F);
    return cp;
}

bool InSet(const std::u32string& set, char32_t cp) {
    return set.find(cp) != std::u32string::npos;
}

const std::u32string& Whitespace() {
    static const std::u32string ws = U" \t\n\r\v\f\u00A0\u3000";
    return ws;
}

std::string Encode(char32_t cp) {
    std::string s;
    afx::AppendUtf8(s, cp);
    return s;
}

} // namespace

namespace afx {

int Utf8Length(const char* p, size_t n) {
    int count = 0;
    for (size_t i = 0; i < n; ++i)
        count += !IsContinuation(static_cast<unsigned char>(p[i]));
    // Stray continuation bytes at the very start still count as a character.
    if (n > 0 && IsContinuation(static_cast<unsigned char>(p[0])))
        ++count;
    return count;
}

void AppendUtf8(std::string& out, char32_t cp) {
    if (cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF))
        cp = 0xFFFD;
    if (cp < 0x80) {
        out.push_back(char(cp));
    } else if (cp < 0x800) {
        out.push_back(char(0xC0 | (cp >> 6)));
        out.push_back(char(0x80 | (cp & 0x3F)));
    } else if (cp < 0x10000) {
        out.push_back(char(0xE0 | (cp >> 12)));
        out.push_back(char(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(char(0x80 | (cp & 0x3F)));
    } else {
        out.push_back(char(0xF0 | (cp >> 18)));
        out.push_back(char(0x80 | ((cp >> 12) & 0x3F)));
        out.push_back(char(0x80 | ((cp >> 6) & 0x3F)));
        out.push_back(char(0x80 | (cp & 0x3F)));
    }
}

} // namespace afx

CString::CString(const wchar_t* wide) {
    if (wide)
        for (; *wide; ++wide)
            afx::AppendUtf8(m_s, char32_t(*wide));
}

CString::CString(wchar_t ch, int repeat) {
    const std::string one = Encode(char32_t(ch));
    for (int i = 0; i < repeat; ++i)
        m_s += one;
    m_chars = repeat > 0 ? repeat : 0;
}

int CString::GetLength() const {
    if (m_chars < 0)
        m_chars = afx::Utf8Length(m_s.data(), m_s.size());
    return m_chars;
}

size_t CString::ByteOffsetFrom(size_t pos, int count) const {
    if (IsAscii())
        return std::min(m_s.size(), pos + size_t(std::max(count, 0)));
    for (int k = 0; k < count && pos < m_s.size(); ++k) {
        ++pos;
        while (pos < m_s.size() && IsContinuation(static_cast<unsigned char>(m_s[pos])))
            ++pos;
    }
    return pos;
}

size_t CString::ByteOffset(int index) const {
    return ByteOffsetFrom(0, index);
}

int CString::CharIndex(size_t byteOffset) const {
    if (IsAscii())
        return int(byteOffset);
    return afx::Utf8Length(m_s.data(), byteOffset);
}

std::wstring CString::ToWide() const {
    std::wstring w;
    for (size_t i = 0; i < m_s.size();) {
        size_t n;
        w.push_back(wchar_t(DecodeAt(m_s, i, &n)));
        i += n;
    }
    return w;
}

wchar_t CString::GetAt(int index) const {
    if (index < 0 || index >= GetLength())
        return 0;
    if (IsAscii())
        return wchar_t(static_cast<unsigned char>(m_s[size_t(index)]));
    size_t n;
    return wchar_t(DecodeAt(m_s, ByteOffset(index), &n));
}

void CString::SetAt(int index, wchar_t ch) {
    if (index < 0 || index >= GetLength())
        return;
    const size_t b = ByteOffset(index);
    const size_t e = ByteOffsetFrom(b, 1);
    m_s.replace(b, e - b, Encode(char32_t(ch)));
    // Character count is unchanged.
}

CString CString::Left(int count) const {
    if (count <= 0)
        return CString();
    return CString(m_s.substr(0, ByteOffset(count)));
}

CString CString::Mid(int first) const {
    return Mid(first, GetLength());
}

CString CString::Mid(int first, int count) const {
    if (first < 0)
        first = 0;
    if (count <= 0 || first >= GetLength())
        return CString();
    const size_t b = ByteOffset(first);
    const size_t e = ByteOffsetFrom(b, count);
    return CString(m_s.substr(b, e - b));
}

CString CString::Right(int count) const {
    const int len = GetLength();
    if (count <= 0)
        return CString();
    if (count >= len)
        return *this;
    return CString(m_s.substr(ByteOffset(len - count)));
}

int CString::Find(wchar_t ch, int start) const {
    if (start < 0 || start >= GetLength())
        return -1;
    const std::string needle = Encode(char32_t(ch));
    const size_t pos = m_s.find(needle, ByteOffset(start));
    return pos == std::string::npos ? -1 : CharIndex(pos);
}

int CString::Find(const char* sub, int start) const {
    if (!sub || start < 0 || start > GetLength())
        return -1;
    const size_t pos = m_s.find(sub, ByteOffset(start));
    return pos == std::string::npos ? -1 : CharIndex(pos);
}

int CString::ReverseFind(wchar_t ch) const {
    const size_t pos = m_s.rfind(Encode(char32_t(ch)));
    return pos == std::string::npos ? -1 : CharIndex(pos);
}

int CString::Replace(const char* oldText, const char* newText) {
    if (!oldText || !*oldText)
        return 0;
    const std::string_view from(oldText);
    const std::string_view to(newText ? newText : "");
    int count = 0;
    std::string out;
    size_t i = 0;
    for (size_t pos; (pos = m_s.find(from, i)) != std::string::npos; i = pos + from.size()) {
        out.append(m_s, i, pos - i);
        out.append(to);
        ++count;
    }
    if (count) {
        out.append(m_s, i, std::string::npos);
        m_s = std::move(out);
        Changed();
    }
    return count;
}

int CString::Replace(wchar_t oldCh, wchar_t newCh) {
    const std::string from = Encode(char32_t(oldCh));
    const std::string to = Encode(char32_t(newCh));
    return Replace(from.c_str(), to.c_str());
}

int CString::Remove(wchar_t ch) {
    return Replace(Encode(char32_t(ch)).c_str(), "");
}

int CString::Insert(int index, wchar_t ch) {
    return Insert(index, Encode(char32_t(ch)).c_str());
}

int CString::Insert(int index, const char* text) {
    if (index < 0)
        index = 0;
    if (text && *text) {
        m_s.insert(ByteOffset(index), text);
        Changed();
    }
    return GetLength();
}

CString& CString::Trim() {
    const std::u32string& set = Whitespace();
    size_t b = 0;
    size_t e = m_s.size();
    size_t n;
    while (b < e && InSet(set, DecodeAt(m_s, b, &n)))
        b += n;
    while (e > b) {
        size_t p = e - 1;
        while (p > b && IsContinuation(static_cast<unsigned char>(m_s[p])))
            --p;
        if (!InSet(set, DecodeAt(m_s, p, &n)))
            break;
        e = p;
    }
    if (b != 0 || e != m_s.size()) {
        m_s = m_s.substr(b, e - b);
        Changed();
    }
    return *this;
}

CString& CString::MakeUpper() {
    if (IsAscii()) {
        for (char& c : m_s)
            if (c >= 'a' && c <= 'z')
                c = char(c - 'a' + 'A');
        return *this;
    }
    // Casing may change the character count (e.g. German sharp s).
    m_s = QString::fromUtf8(m_s.data(), qsizetype(m_s.size())).toUpper().toStdString();
    Changed();
    return *this;
}

CString& CString::MakeLower() {
    if (IsAscii()) {
        for (char& c : m_s)
            if (c >= 'A' && c <= 'Z')
                c = char(c - 'A' + 'a');
        return *this;
    }
    m_s = QString::fromUtf8(m_s.data(), qsizetype(m_s.size())).toLower().toStdString();
    Changed();
    return *this;
}

CString& CString::MakeReverse() {
    std::wstring w = ToWide();
    std::reverse(w.begin(), w.end());
    *this = CString(w.c_str());
    return *this;
}

int CString::Compare(const char* other) const {
    const int r = std::strcmp(m_s.c_str(), other ? other : "");
    return r < 0 ? -1 : (r > 0 ? 1 : 0);
}

int CString::CompareNoCase(const char* other) const {
    if (!other)
        other = "";
    const size_t n = std::strlen(other);
    const bool ascii = IsAscii() && afx::Utf8Length(other, n) == int(n);
    if (ascii) {
        for (size_t i = 0;; ++i) {
            const auto fold = [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; };
            const char a = i < m_s.size() ? fold(m_s[i]) : '\0';
            const char b = i < n ? fold(other[i]) : '\0';
            if (a != b)
                return static_cast<unsigned char>(a) < static_cast<unsigned char>(b) ? -1 : 1;
            if (!a)
                return 0;
        }
    }
    const int r = QString::compare(QString::fromUtf8(m_s.data(), qsizetype(m_s.size())),
                                   QString::fromUtf8(other, qsizetype(n)), Qt::CaseInsensitive);
    return r < 0 ? -1 : (r > 0 ? 1 : 0);
}

void CString::FormatV(const char* fmt, va_list args) {
    m_s.clear();
    AppendFormatV(fmt, args);
}

void CString::AppendFormatV(const char* fmt, va_list args) {
    char small[256];
    va_list copy;
    va_copy(copy, args);
    const int n = std::vsnprintf(small, sizeof small, fmt, copy);
    va_end(copy);
    if (n < 0)
        return;
    if (size_t(n) < sizeof small) {
        m_s.append(small, size_t(n));
    } else {
        std::vector<char> big(size_t(n) + 1);
        std::vsnprintf(big.data(), big.size(), fmt, args);
        m_s.append(big.data(), size_t(n));
    }
    Changed();
}

void CString::Format(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    FormatV(fmt, args);
    va_end(args);
}

void CString::AppendFormat(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    AppendFormatV(fmt, args);
    va_end(args);
}

BOOL CString::LoadString(UINT id) {
    CString text;
    if (!AfxLoadStringFrom(AfxGetResourceHandle(), id, text))
        return FALSE;
    *this = std::move(text);
    return TRUE;
}

void CString::Append(const char* p, size_t n, int chars) {
    const int before = m_chars;
    m_s.append(p, n);
    if (before >= 0 && chars >= 0)
        m_chars = before + chars;
    else
        Changed();
}

CString& CString::operator+=(wchar_t ch) {
    const std::string one = Encode(char32_t(ch));
    Append(one.data(), one.size(), 1);
    return *this;
}
