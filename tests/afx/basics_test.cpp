// The basics that need no window: CString's character-based editing, string tables under
// resource handles, loading a module library and starting an application under its own
// handle, and local time from a pinned zone.
#include <afx/CString.h>
#include <afx/afxres.h>
#include <afx/afxtypes.h>
#include <afx/afxwin.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <ctime>
#include <string>
#include <thread>
#include <vector>

namespace {

// Lengths, indexes and cuts count characters, in ASCII and in Chinese text alike, and
// clamp out-of-range arguments as the classic string does.
TEST(CStringTest, CountsAndCutsCharactersNotBytes) {
    const CString s("变量总数:12");
    EXPECT_EQ(s.GetLength(), 7);
    EXPECT_EQ(s.GetAt(0), L'变');
    EXPECT_EQ(s[4], L':');
    EXPECT_EQ(s.Left(4), "变量总数");
    EXPECT_EQ(s.Mid(2, 2), "总数");
    EXPECT_EQ(s.Mid(4), ":12");
    EXPECT_EQ(s.Right(3), ":12");
    EXPECT_EQ(s.Find(L'总'), 2);
    EXPECT_EQ(s.Find("数:"), 3);
    EXPECT_EQ(s.Find("1", 5), 5);
    EXPECT_EQ(s.ReverseFind(L'量'), 1);
    const CString emoji("a😀b");
    EXPECT_EQ(emoji.GetLength(), 3);
    EXPECT_EQ(emoji.Mid(1, 1), "😀");
    EXPECT_EQ(emoji.GetAt(2), L'b');

    const CString abc("abc");
    EXPECT_EQ(abc.Left(-1), "");
    EXPECT_EQ(abc.Left(10), "abc");
    EXPECT_EQ(abc.Mid(-2, 2), "ab");
    EXPECT_EQ(abc.Mid(3), "");
    EXPECT_EQ(abc.Mid(1, 0), "");
    EXPECT_EQ(abc.Right(5), "abc");
    EXPECT_EQ(abc.GetAt(3), 0);
    EXPECT_EQ(abc.Find('c', 3), -1);
    EXPECT_EQ(abc.Find("", 1), 1);
    EXPECT_EQ(abc.Find('z'), -1);
}

TEST(CStringTest, EditsKeepCharacterPositions) {
    CString s("参数H00-10参数");
    EXPECT_EQ(s.Replace("参数", "P"), 2);
    EXPECT_EQ(s, "PH00-10P");
    EXPECT_EQ(s.Replace(L'0', L'〇'), 3);
    EXPECT_EQ(s, "PH〇〇-1〇P");
    EXPECT_EQ(s.Remove(L'〇'), 3);
    EXPECT_EQ(s, "PH-1P");
    EXPECT_EQ(s.Insert(2, "值"), 6);
    EXPECT_EQ(s, "PH值-1P");
    EXPECT_EQ(s.Insert(100, L'尾'), 7);
    EXPECT_EQ(s, "PH值-1P尾");
    s.MakeReverse();
    EXPECT_EQ(s, "尾P1-值HP");
    EXPECT_EQ(s.Replace("", "x"), 0);
    CString a("\t 参数 \r\n");
    EXPECT_EQ(a.Trim(), "参数");
    CString b("\u3000全角\u3000");
    EXPECT_EQ(b.Trim(), "全角");
    CString e("   ");
    EXPECT_TRUE(e.Trim().IsEmpty());
}

TEST(CStringTest, CaseIsUnicodeAware) {
    CString s("Straße ÄÖÜ abc");
    s.MakeUpper();
    EXPECT_EQ(s, "STRASSE ÄÖÜ ABC");
    EXPECT_EQ(s.GetLength(), 15); // casing may change the length
    CString g("ΑΒΓ Hello");
    g.MakeLower();
    EXPECT_EQ(g, "αβγ hello");
    EXPECT_EQ(CString("ÄBC").CompareNoCase("äbc"), 0);
    EXPECT_EQ(CString("abc").CompareNoCase("ABD"), -1);
    EXPECT_EQ(CString("H00-10").CompareNoCase("h00-1"), 1);
    // Ordinal order is by code point.
    EXPECT_LT(CString("Z"), CString("a"));
    EXPECT_LT(CString("a"), CString("é"));
}

TEST(CStringTest, FormatsAndConcatenates) {
    CString s;
    s.Format("%s=%05d|0x%04X|%lld", CString("值").GetString(), 42, 255, 1LL << 40);
    EXPECT_EQ(s, "值=00042|0x00FF|1099511627776");
    s.AppendFormat("[%.2f]", 1.005);
    EXPECT_EQ(s.Right(6), "[1.00]");
    // Longer than any small buffer.
    CString big;
    big.Format("%0500d", 7);
    EXPECT_EQ(big.GetLength(), 500);
    EXPECT_EQ(big.Right(2), "07");
    CString joined = CString("参") + "数" + L'值';
    joined += 'x';
    joined += CString("尾");
    EXPECT_EQ(joined, "参数值x尾");
    EXPECT_EQ(joined.GetLength(), 5);
    EXPECT_EQ(std::string(joined), "参数值x尾");
    EXPECT_EQ(joined.ToWide(), L"参数值x尾");
}

TEST(CStringTest, LoadsFromTheCurrentResourceHandle) {
    HINSTANCE h = AfxCreateResourceHandle("strings");
    AfxRegisterStringTable(h, {{175, "保存到'%s'成功。"}, {150, "提示"}});
    const HINSTANCE previous = AfxGetResourceHandle();
    CString s;
    EXPECT_FALSE(s.LoadString(175)); // not under the program's handle
    AfxSetResourceHandle(h);
    EXPECT_TRUE(s.LoadString(175));
    EXPECT_EQ(s, "保存到'%s'成功。");
    EXPECT_FALSE(s.LoadString(999));
    EXPECT_EQ(s, "保存到'%s'成功。"); // a failed load keeps the text
    AfxSetResourceHandle(previous);
    AfxFreeResourceHandle(h);
    EXPECT_EQ(AfxGetResourceHandle(), previous);
}

// Readers on several threads share one text; the length cache must not race (the
// thread sanitizer build watches this).
TEST(CStringTest, ConstReadsFromSeveralThreads) {
    const CString shared("参数名称-Parameter-名称");
    std::vector<std::thread> readers;
    std::atomic<int> wrong{0};
    for (int t = 0; t < 4; ++t)
        readers.emplace_back([&] {
            for (int i = 0; i < 200; ++i)
                if (shared.GetLength() != 17 || shared.Mid(5, 9) != "Parameter")
                    ++wrong;
        });
    for (auto& r : readers)
        r.join();
    EXPECT_EQ(wrong.load(), 0);
}

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

TEST(LoaderTest, LoadsAModuleRunsItsAppAndUnloadsIt) {
    const HINSTANCE before = AfxGetResourceHandle();
    HMODULE h = AfxLoadLibrary(AFX_TEST_MODULE);
    ASSERT_NE(h, nullptr) << AfxGetLoadError().GetString();
    EXPECT_EQ(AfxGetResourceHandle(), before); // restored after InitInstance
    auto initHandle = reinterpret_cast<HINSTANCE (*)()>(GetProcAddress(h, "InitHandle"));
    ASSERT_NE(initHandle, nullptr);
    EXPECT_EQ(initHandle(), h); // the module's handle was current in InitInstance
    CString text;
    EXPECT_TRUE(AfxLoadStringFrom(h, 100, text));
    EXPECT_EQ(text, "模块字符串");
    EXPECT_FALSE(AfxLoadStringFrom(before, 100, text));
    auto notifier = reinterpret_cast<void (*)(void (*)(int))>(GetProcAddress(h, "SetExitNotifier"));
    ASSERT_NE(notifier, nullptr);
    static int exitSeen = -1;
    notifier([](int handleWasCurrent) { exitSeen = handleWasCurrent; });
    EXPECT_EQ(GetProcAddress(h, "NoSuchExport"), nullptr);
    EXPECT_TRUE(AfxFreeLibrary(h));
    EXPECT_EQ(exitSeen, 1);
    EXPECT_EQ(AfxLoadLibrary("/nonexistent/libnothing.so"), nullptr);
    EXPECT_FALSE(AfxGetLoadError().IsEmpty());
}

class LinkedApp : public CWinApp {
public:
    LinkedApp() : CWinApp("Linked") {}
    BOOL InitInstance() override {
        during = AfxGetResourceHandle();
        AfxRegisterString(m_hInstance, 7, "seven");
        return ok;
    }
    int ExitInstance() override {
        exitDuring = AfxGetResourceHandle();
        return 3;
    }
    bool ok = true;
    HINSTANCE during = nullptr;
    HINSTANCE exitDuring = nullptr;
};

TEST(LoaderTest, StaticallyLinkedAppStartsUnderItsOwnHandle) {
    LinkedApp app;
    HINSTANCE h = AfxStartApp(&app, "linked");
    ASSERT_NE(h, nullptr);
    EXPECT_EQ(app.during, h);
    EXPECT_EQ(AfxGetApp(), &app);
    CString s;
    EXPECT_TRUE(AfxLoadStringFrom(h, 7, s));
    EXPECT_EQ(AfxStopApp(&app), 3);
    EXPECT_EQ(app.exitDuring, h);
    EXPECT_EQ(app.m_hInstance, nullptr);

    LinkedApp failing;
    failing.ok = false;
    EXPECT_EQ(AfxStartApp(&failing, "failing"), nullptr);
    EXPECT_EQ(failing.m_hInstance, nullptr);
}

} // namespace
