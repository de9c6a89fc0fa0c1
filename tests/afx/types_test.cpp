#include <afx/afxcoll.h>
#include <afx/afxtypes.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <map>
#include <string>

TEST(TypesTest, GuidFromTextMatchesItsParts) {
    constexpr GUID a = GuidFromString("{6B29FC40-CA47-1067-B31D-00DD010662DA}");
    constexpr GUID b =
        MakeGuid(0x6B29FC40, 0xCA47, 0x1067, 0xB3, 0x1D, 0x00, 0xDD, 0x01, 0x06, 0x62, 0xDA);
    static_assert(a == b);
    static_assert(GuidFromString("6b29fc40-ca47-1067-b31d-00dd010662db") != b);
    char text[39];
    GuidToString(a, text);
    EXPECT_STREQ(text, "{6B29FC40-CA47-1067-B31D-00DD010662DA}");
    std::map<GUID, int> m{{a, 1}, {GuidFromString("00000000-0000-0000-0000-000000000001"), 2}};
    EXPECT_EQ(m.begin()->second, 2);
    EXPECT_THROW(GuidFromString("{6B29FC40-CA47-1067-B31D-00DD010662DX}"), const char*);
}

TEST(TypesTest, RectanglesAndColours) {
    CRect r(10, 20, 110, 70);
    EXPECT_EQ(r.Width(), 100);
    EXPECT_EQ(r.Height(), 50);
    EXPECT_TRUE(r.PtInRect(CPoint(10, 20)));
    EXPECT_FALSE(r.PtInRect(CPoint(110, 20))); // right edge is outside
    r.DeflateRect(5, 5);
    EXPECT_EQ(r, CRect(15, 25, 105, 65));
    r.OffsetRect(-15, -25);
    EXPECT_EQ(r.TopLeft(), CPoint(0, 0));
    CRect i;
    EXPECT_FALSE(i.IntersectRect(CRect(0, 0, 10, 10), CRect(10, 0, 20, 10)));
    EXPECT_TRUE(i.IsRectNull());
    EXPECT_TRUE(i.IntersectRect(CRect(0, 0, 10, 10), CRect(5, 5, 20, 20)));
    EXPECT_EQ(i, CRect(5, 5, 10, 10));
    CRect u;
    u.UnionRect(CRect(0, 0, 1, 1), CRect(5, 5, 6, 6));
    EXPECT_EQ(u, CRect(0, 0, 6, 6));
    const COLORREF c = RGB(1, 2, 3);
    EXPECT_EQ(c, 0x030201u);
    EXPECT_EQ(GetRValue(c), 1);
    EXPECT_EQ(GetBValue(c), 3);
    EXPECT_EQ(sizeof(WPARAM), sizeof(void*));
    EXPECT_EQ(sizeof(LPARAM), sizeof(void*));
}

TEST(TypesTest, LocalTimeOfAPinnedMomentAndZone) {
    // Pinned zone and moments: the test does not depend on when or where it runs.
    const char* old = std::getenv("TZ");
    const std::string saved = old ? old : "";
    setenv("TZ", "UTC", 1);
    tzset();
    struct Case {
        long long ms;
        WORD year, month, day, dayOfWeek, hour, minute, second, milli;
    };
    const Case cases[] = {
        {1772323199123LL, 2026, 2, 28, 6, 23, 59, 59, 123}, // a Saturday, last day of February
        {-1LL, 1969, 12, 31, 3, 23, 59, 59, 999},           // just before 1970
        {0LL, 1970, 1, 1, 4, 0, 0, 0, 0},
    };
    for (const Case& c : cases) {
        SYSTEMTIME st{};
        LocalTimeFromUnixMs(c.ms, &st);
        EXPECT_EQ(st.wYear, c.year) << c.ms;
        EXPECT_EQ(st.wMonth, c.month) << c.ms;
        EXPECT_EQ(st.wDay, c.day) << c.ms;
        EXPECT_EQ(st.wDayOfWeek, c.dayOfWeek) << c.ms;
        EXPECT_EQ(st.wHour, c.hour) << c.ms;
        EXPECT_EQ(st.wMinute, c.minute) << c.ms;
        EXPECT_EQ(st.wSecond, c.second) << c.ms;
        EXPECT_EQ(st.wMilliseconds, c.milli) << c.ms;
    }
    setenv("TZ", "CST-8", 1); // eight hours east, no summer time (a POSIX rule, no zone files)
    tzset();
    SYSTEMTIME st{};
    LocalTimeFromUnixMs(1772323199123LL, &st);
    EXPECT_EQ(st.wDay, 1);
    EXPECT_EQ(st.wMonth, 3);
    EXPECT_EQ(st.wHour, 7);
    if (old)
        setenv("TZ", saved.c_str(), 1);
    else
        unsetenv("TZ");
    tzset();
}

TEST(TypesTest, CollectionsKeepPositionsAndOrder) {
    CList<int, int> list;
    const POSITION p2 = list.AddTail(2);
    list.AddHead(1);
    list.AddTail(3);
    list.InsertAfter(p2, 25);
    list.RemoveAt(list.Find(1));
    std::vector<int> seen;
    for (POSITION p = list.GetHeadPosition(); p;)
        seen.push_back(list.GetNext(p));
    EXPECT_EQ(seen, (std::vector<int>{2, 25, 3}));
    EXPECT_EQ(list.GetAt(p2), 2); // positions survive other changes
    CStringArray a;
    a.Add("x");
    a.InsertAt(0, "参数");
    a.RemoveAt(5);
    EXPECT_EQ(a.GetSize(), 2);
    EXPECT_EQ(a[0], "参数");
}
