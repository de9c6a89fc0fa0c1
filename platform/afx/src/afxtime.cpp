#include <afx/afxtypes.h>

#include <chrono>
#include <cstdio>
#include <ctime>

void GetLocalTime(SYSTEMTIME* st) {
    const auto now = std::chrono::system_clock::now();
    const std::time_t t = std::chrono::system_clock::to_time_t(now);
    const auto ms =
        std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() %
        1000;
    std::tm tm{};
    localtime_r(&t, &tm);
    st->wYear = WORD(tm.tm_year + 1900);
    st->wMonth = WORD(tm.tm_mon + 1);
    st->wDayOfWeek = WORD(tm.tm_wday);
    st->wDay = WORD(tm.tm_mday);
    st->wHour = WORD(tm.tm_hour);
    st->wMinute = WORD(tm.tm_min);
    st->wSecond = WORD(tm.tm_sec);
    st->wMilliseconds = WORD(ms < 0 ? ms + 1000 : ms);
}

ULONGLONG GetTickCount64() {
    return ULONGLONG(std::chrono::duration_cast<std::chrono::milliseconds>(
                         std::chrono::steady_clock::now().time_since_epoch())
                         .count());
}

DWORD GetTickCount() {
    return DWORD(GetTickCount64());
}

void GuidToString(const GUID& g, char buf[39]) {
    std::snprintf(buf, 39, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", g.Data1, g.Data2,
                  g.Data3, g.Data4[0], g.Data4[1], g.Data4[2], g.Data4[3], g.Data4[4], g.Data4[5],
                  g.Data4[6], g.Data4[7]);
}
