#include <afx/afxtypes.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>

TEST(TypesTest, RectanglesAndColours) {
    const CRect r(10, 20, 110, 70);
    EXPECT_EQ(r.Width(), 100);
    EXPECT_EQ(r.Height(), 50);
    EXPECT_TRUE(r.PtInRect(CPoint(10, 20)));
    EXPECT_FALSE(r.PtInRect(CPoint(110, 20))); // right edge is outside
    const COLORREF c = RGB(1, 2, 3);
    EXPECT_EQ(c, 0x030201u);
    EXPECT_EQ(GetRValue(c), 1);
    EXPECT_EQ(GetBValue(c), 3);
}

TEST(TypesTest, LocalTimeOfAPinnedMomentAndZone) {
    // Pinned zone and moments: the test does not depend on when or where it runs.
    const char* old = std::getenv("TZ");
    const std::string saved = old ? old : "";
    struct Case {
        const char* zone;
        long long ms;
        WORD year, month, day, dayOfWeek, hour, minute, second, milli;
    };
    const Case cases[] = {
        {"UTC", 1772323199123LL, 2026, 2, 28, 6, 23, 59, 59, 123}, // a Saturday, end of February
        {"UTC", -1LL, 1969, 12, 31, 3, 23, 59, 59, 999},           // just before 1970
        {"UTC", 0LL, 1970, 1, 1, 4, 0, 0, 0, 0},
        // Eight hours east, no summer time (a POSIX rule, no zone files).
        {"CST-8", 1772323199123LL, 2026, 3, 1, 0, 7, 59, 59, 123},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.zone) + " " + std::to_string(c.ms));
        setenv("TZ", c.zone, 1);
        tzset();
        SYSTEMTIME st{};
        LocalTimeFromUnixMs(c.ms, &st);
        EXPECT_EQ(st.wYear, c.year);
        EXPECT_EQ(st.wMonth, c.month);
        EXPECT_EQ(st.wDay, c.day);
        EXPECT_EQ(st.wDayOfWeek, c.dayOfWeek);
        EXPECT_EQ(st.wHour, c.hour);
        EXPECT_EQ(st.wMinute, c.minute);
        EXPECT_EQ(st.wSecond, c.second);
        EXPECT_EQ(st.wMilliseconds, c.milli);
    }
    if (old)
        setenv("TZ", saved.c_str(), 1);
    else
        unsetenv("TZ");
    tzset();
}
