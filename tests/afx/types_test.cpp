#include <afx/afxcoll.h>
#include <afx/afxtypes.h>

#include <gtest/gtest.h>

#include <map>

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

TEST(TypesTest, LocalTimeIsPlausible) {
    SYSTEMTIME st{};
    GetLocalTime(&st);
    EXPECT_GE(st.wYear, 2024);
    EXPECT_GE(st.wMonth, 1);
    EXPECT_LE(st.wMonth, 12);
    EXPECT_LE(st.wDayOfWeek, 6);
    EXPECT_LT(st.wMilliseconds, 1000);
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
