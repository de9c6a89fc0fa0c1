// CString: a text value in UTF-8. Lengths, indexes and cuts count characters (code
// points), never bytes, so code written for a wide-character string keeps its meaning.
// One character is a wchar_t holding a code point. Pure-ASCII text takes fast paths.
// A CString is passed to printf-style functions with GetString().
#pragma once

#include <afx/afxtypes.h>

#include <atomic>
#include <cstdarg>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>

namespace afx {
// A cached number that const readers on several threads may fill in at once.
class CachedCount {
public:
    CachedCount(int v = -1) noexcept : m_v(v) {}
    CachedCount(const CachedCount& o) noexcept : m_v(o.get()) {}
    CachedCount& operator=(const CachedCount& o) noexcept {
        set(o.get());
        return *this;
    }
    CachedCount& operator=(int v) noexcept {
        set(v);
        return *this;
    }
    operator int() const noexcept { return get(); }
    int get() const noexcept { return m_v.load(std::memory_order_relaxed); }
    void set(int v) const noexcept { m_v.store(v, std::memory_order_relaxed); }

private:
    mutable std::atomic<int> m_v;
};
} // namespace afx

class CString {
public:
    typedef wchar_t XCHAR;

    CString() = default;
    CString(const char* utf8) : m_s(utf8 ? utf8 : "") {}
    CString(const std::string& utf8) : m_s(utf8) {}
    CString(std::string&& utf8) : m_s(std::move(utf8)) {}
    CString(std::string_view utf8) : m_s(utf8) {}
    // Wide text (UTF-32 on this platform) converted to UTF-8.
    CString(const wchar_t* wide);
    // `ch` repeated `repeat` times.
    CString(wchar_t ch, int repeat = 1);
    CString(const CString&) = default;
    CString(CString&&) noexcept = default;
    CString& operator=(const CString&) = default;
    CString& operator=(CString&&) noexcept = default;
    CString& operator=(const char* utf8) {
        m_s = utf8 ? utf8 : "";
        m_chars = -1;
        return *this;
    }
    CString& operator=(const std::string& utf8) {
        m_s = utf8;
        m_chars = -1;
        return *this;
    }

    // ------------------------------------------------------------ size and access
    int GetLength() const;
    BOOL IsEmpty() const { return m_s.empty(); }
    void Empty() {
        m_s.clear();
        m_chars = 0;
    }
    // Out-of-range indexes read as 0 and writes to them are ignored.
    wchar_t GetAt(int index) const;
    void SetAt(int index, wchar_t ch);
    wchar_t operator[](int index) const { return GetAt(index); }

    const char* GetString() const { return m_s.c_str(); }
    // Size of the UTF-8 text in bytes (without the terminating zero).
    int GetByteLength() const { return int(m_s.size()); }
    explicit operator std::string() const { return m_s; }
    const std::string& str() const { return m_s; }
    std::wstring ToWide() const;

    // ------------------------------------------------------------ extraction
    CString Left(int count) const;
    CString Mid(int first) const;
    CString Mid(int first, int count) const;
    CString Right(int count) const;

    // ------------------------------------------------------------ search (-1 if absent)
    int Find(wchar_t ch, int start = 0) const;
    int Find(const char* sub, int start = 0) const;
    int Find(const CString& sub, int start = 0) const { return Find(sub.GetString(), start); }
    int ReverseFind(wchar_t ch) const;

    // ------------------------------------------------------------ editing
    int Replace(const char* oldText, const char* newText);
    int Replace(wchar_t oldCh, wchar_t newCh);
    int Remove(wchar_t ch);
    int Insert(int index, wchar_t ch);
    int Insert(int index, const char* text);
    CString& Trim();
    CString& MakeUpper();
    CString& MakeLower();
    CString& MakeReverse();

    // ------------------------------------------------------------ comparison
    // Ordinal by code point; <0, 0 or >0.
    int Compare(const char* other) const;
    int Compare(const CString& other) const { return Compare(other.GetString()); }
    // Unicode-aware case-insensitive comparison.
    int CompareNoCase(const char* other) const;
    int CompareNoCase(const CString& other) const { return CompareNoCase(other.GetString()); }

    // ------------------------------------------------------------ formatting
    void Format(const char* fmt, ...) __attribute__((format(printf, 2, 3)));
    void AppendFormat(const char* fmt, ...) __attribute__((format(printf, 2, 3)));
    void FormatV(const char* fmt, va_list args) __attribute__((format(printf, 2, 0)));
    void AppendFormatV(const char* fmt, va_list args) __attribute__((format(printf, 2, 0)));

    // Text `id` of the string table of the current resource handle; FALSE if absent.
    BOOL LoadString(UINT id);

    // ------------------------------------------------------------ concatenation
    CString& operator+=(const CString& o) {
        Append(o.m_s.data(), o.m_s.size(), o.m_chars);
        return *this;
    }
    CString& operator+=(const char* utf8) {
        if (utf8)
            Append(utf8, std::char_traits<char>::length(utf8), -1);
        return *this;
    }
    CString& operator+=(wchar_t ch);
    CString& operator+=(char ch) { return *this += wchar_t(static_cast<unsigned char>(ch)); }
    void Append(const char* utf8) { *this += utf8; }

    friend bool operator==(const CString& a, const CString& b) { return a.m_s == b.m_s; }
    friend bool operator==(const CString& a, const char* b) { return a.m_s == (b ? b : ""); }
    friend bool operator==(const char* a, const CString& b) { return b == a; }
    friend bool operator!=(const CString& a, const CString& b) { return !(a == b); }
    friend bool operator!=(const CString& a, const char* b) { return !(a == b); }
    friend bool operator!=(const char* a, const CString& b) { return !(b == a); }
    friend bool operator<(const CString& a, const CString& b) { return a.m_s < b.m_s; }
    friend bool operator>(const CString& a, const CString& b) { return b.m_s < a.m_s; }
    friend bool operator<=(const CString& a, const CString& b) { return !(b < a); }
    friend bool operator>=(const CString& a, const CString& b) { return !(a < b); }

    friend CString operator+(const CString& a, const CString& b) {
        CString r(a);
        r += b;
        return r;
    }
    friend CString operator+(const CString& a, const char* b) {
        CString r(a);
        r += b;
        return r;
    }
    friend CString operator+(const char* a, const CString& b) {
        CString r(a);
        r += b;
        return r;
    }
    friend CString operator+(const CString& a, wchar_t ch) {
        CString r(a);
        r += ch;
        return r;
    }
    friend CString operator+(wchar_t ch, const CString& b) {
        CString r(ch);
        r += b;
        return r;
    }

private:
    void Append(const char* p, size_t n, int chars);
    bool IsAscii() const { return GetLength() == int(m_s.size()); }
    // Byte offset of character `index` (clamped to the end).
    size_t ByteOffset(int index) const;
    size_t ByteOffsetFrom(size_t fromByte, int count) const;
    int CharIndex(size_t byteOffset) const;
    void Changed() { m_chars = -1; }

    std::string m_s;
    mutable afx::CachedCount m_chars{-1}; // character count, -1 when unknown
};

template <> struct std::hash<CString> {
    size_t operator()(const CString& s) const noexcept { return std::hash<std::string>()(s.str()); }
};

inline std::ostream& operator<<(std::ostream& os, const CString& s) {
    return os << s.str();
}

// Helpers on UTF-8 text shared by the framework.
namespace afx {
// Number of code points in UTF-8 text (a stray byte counts as one).
int Utf8Length(const char* p, size_t n);
// Appends code point `cp` to `out` as UTF-8.
void AppendUtf8(std::string& out, char32_t cp);
} // namespace afx
