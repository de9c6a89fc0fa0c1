#include <afx/afxtypes.h>

#include <chrono>
#include <cstdio>
#include <ctime>

void LocalTimeFromUnixMs(long long msSinceEpoch, SYSTEMTIME* st) {
    // Floor division, so that a moment before 1970 keeps its milliseconds positive.
    long long secs = msSinceEpoch / 1000;
    long long ms = msSinceEpoch % 1000;
    if (ms < 0) {
        ms += 1000;
        --secs;
    }
    const std::time_t t = std::time_t(secs);
    std::tm tm{};
    localtime_r(&t, &tm);
    st->wYear = WORD(tm.tm_year + 1900);
    st->wMonth = WORD(tm.tm_mon + 1);
    st->wDayOfWeek = WORD(tm.tm_wday);
    st->wDay = WORD(tm.tm_mday);
    st->wHour = WORD(tm.tm_hour);
    st->wMinute = WORD(tm.tm_min);
    st->wSecond = WORD(tm.tm_sec);
    st->wMilliseconds = WORD(ms);
}

void GetLocalTime(SYSTEMTIME* st) {
    LocalTimeFromUnixMs(std::chrono::duration_cast<std::chrono::milliseconds>(
                            std::chrono::system_clock::now().time_since_epoch())
                            .count(),
                        st);
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
