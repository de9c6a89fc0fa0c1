#include <afx/CString.h>
#include <afx/afxres.h>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

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
