#include <afx/afxtypes.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <ctime>
#include <string>

TEST(TypesTest, LocalTimeOfAPinnedMomentAndZone) {
    // Pinned zone and moments: the test does not depend on when or where it runs.
    const char* old = std::getenv("TZ");
    const std::string saved = old ? old : "";
    using Fields = std::array<WORD, 8>; // year, month, day, day of week, h, min, s, ms
    struct Case {
        const char* zone;
        long long ms;
        Fields expected;
    };
    const Case cases[] = {
        {"UTC", 1772323199123LL, {2026, 2, 28, 6, 23, 59, 59, 123}}, // a Saturday, end of February
        {"UTC", -1LL, {1969, 12, 31, 3, 23, 59, 59, 999}},           // just before 1970
        {"UTC", 0LL, {1970, 1, 1, 4, 0, 0, 0, 0}},
        // Eight hours east, no summer time (a POSIX rule, no zone files).
        {"CST-8", 1772323199123LL, {2026, 3, 1, 0, 7, 59, 59, 123}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.zone) + " " + std::to_string(c.ms));
        setenv("TZ", c.zone, 1);
        tzset();
        SYSTEMTIME st{};
        LocalTimeFromUnixMs(c.ms, &st);
        EXPECT_EQ((Fields{st.wYear, st.wMonth, st.wDay, st.wDayOfWeek, st.wHour, st.wMinute,
                          st.wSecond, st.wMilliseconds}),
                  c.expected);
    }
    if (old)
        setenv("TZ", saved.c_str(), 1);
    else
        unsetenv("TZ");
    tzset();
}
