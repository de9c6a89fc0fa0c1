// The host's value utility: texts to values and back at each type's limits, comparisons,
// packed fields, and the small file readers (text lines, profile integers, folders).
#include "zorhost/services/HostVarUtil.h"

#include "TempDir.h"
#include "TestFiles.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

using zorhost::CHostVarUtil;

namespace {

class HostVarUtil : public ::testing::Test {
protected:
    std::string Write(const char* name, const std::string& content) {
        Spit(m_dir / name, content);
        return m_dir / name;
    }
    CHostVarUtil u;
    TempDir m_dir;
};

// Text -> variant -> text must come back unchanged at each type's limits.
TEST_F(HostVarUtil, ParseAndFormatRoundTripAtTypeLimits) {
    struct Case {
        VARTYPE tag;
        const char* text;
    } cases[] = {
        {VT_I2, "-32768"},      {VT_I2, "32767"},       {VT_UI2, "0"},
        {VT_UI2, "65535"},      {VT_I4, "-2147483648"}, {VT_I4, "2147483647"},
        {VT_UI4, "4294967295"}, {VT_I1, "-128"},        {VT_UI1, "255"},
    };
    for (const Case& c : cases) {
        Variant v;
        ASSERT_TRUE(u.ParseVariant(v, c.text, c.tag)) << c.text;
        EXPECT_EQ(v.vt, c.tag);
        CString formatted, plain;
        u.FormatVariant(formatted, v, 0, 0);
        u.VariantToText(plain, v);
        EXPECT_EQ(formatted, CString(c.text)) << c.text;
        EXPECT_EQ(plain, CString(c.text));
    }
}

TEST_F(HostVarUtil, ParseRefusesOutOfRangeNanAndJunk) {
    Variant v;
    EXPECT_FALSE(u.ParseVariant(v, "-32769", VT_I2));
    EXPECT_FALSE(u.ParseVariant(v, "32768", VT_I2));
    EXPECT_FALSE(u.ParseVariant(v, "4294967296", VT_UI4));
    EXPECT_FALSE(u.ParseVariant(v, "-1", VT_UI4));
    for (const char* bad : {"nan", "NaN", "inf", "-inf", "", "  ", "12abc", "0x", "0xZZ", "1,5"}) {
        Variant r = Variant::R8(7);
        EXPECT_FALSE(u.ParseVariant(r, bad, VT_R8)) << bad;
        EXPECT_EQ(r.vt, VT_R8);
        EXPECT_EQ(r.dblVal, 0.0) << "a refused text leaves 0: " << bad;
    }
}

TEST_F(HostVarUtil, ParseAcceptsDecimalHexAndBlanksAndDoublesClampToTheType) {
    const struct {
        const char* text;
        VARTYPE tag;
        Variant want;
    } parsed[] = {
        {" 12.5 ", VT_R8, Variant::R8(12.5)},
        {"0x1F", VT_R8, Variant::R8(31)},
        {"0xffffFFFF", VT_UI4, Variant::UI4(0xFFFFFFFFu)},
        {"-1.5e3", VT_R8, Variant::R8(-1500)},
        {"2.5", VT_I4, Variant::I4(2)}, // rounded like the device would
        {"abc", VT_BSTR, Variant::Str("abc")},
    };
    for (const auto& c : parsed) {
        Variant v;
        ASSERT_TRUE(u.ParseVariant(v, c.text, c.tag)) << c.text;
        EXPECT_EQ(v, c.want) << c.text;
    }

    const struct {
        double value;
        Variant want;
    } converted[] = {
        {1e9, Variant::I2(32767)}, {-1e9, Variant::I2(-32768)},       {-2.6, Variant::I2(-3)},
        {-5, Variant::UI4(0)},     {5e12, Variant::UI4(4294967295u)}, {3, Variant::Bool(true)},
    };
    for (const auto& c : converted) {
        Variant v = Variant::OfType(c.want.vt);
        ASSERT_TRUE(u.DoubleToVariant(c.value, v)) << c.value;
        EXPECT_EQ(v, c.want) << c.value;
    }
    Variant w = Variant::OfType(VT_UI4), s = Variant::Str("t"), e;
    EXPECT_FALSE(u.DoubleToVariant(std::numeric_limits<double>::quiet_NaN(), w));
    EXPECT_FALSE(u.DoubleToVariant(1, s));
    EXPECT_FALSE(u.DoubleToVariant(1, e));
}

TEST_F(HostVarUtil, EqualityAcrossTagsAndTexts) {
    EXPECT_TRUE(u.VariantEquals(Variant::I4(1), Variant::UI4(1)));
    EXPECT_TRUE(u.VariantEquals(Variant::R8(2), Variant::Str("2.0")));
    EXPECT_FALSE(u.VariantEquals(Variant::R8(2), Variant::Str("abc")));
    EXPECT_TRUE(u.VariantEquals(Variant::Str("abc"), Variant::Str("abc")));
    EXPECT_FALSE(u.VariantEquals(Variant::I2(0), Variant()));
    EXPECT_TRUE(u.VariantEquals(Variant(), Variant::Null()));
    EXPECT_FALSE(u.VariantEqualsExact(Variant::I4(1), Variant::UI4(1)));
    EXPECT_TRUE(u.VariantEqualsExact(Variant::I4(1), Variant::I4(1)));
}

TEST_F(HostVarUtil, RealnessTextAndTypeNames) {
    EXPECT_TRUE(u.IsRealVariant(Variant::I2(3)));
    EXPECT_TRUE(u.IsRealVariant(Variant::Str(" -4.5 ")));
    EXPECT_FALSE(u.IsRealVariant(Variant::Str("4.5x")));
    EXPECT_FALSE(u.IsRealVariant(Variant::R8(std::nan(""))));
    EXPECT_FALSE(u.IsRealVariant(Variant()));
    CString t;
    u.VariantToText(t, Variant::R8(0.1));
    EXPECT_EQ(t, CString("0.1"));
    u.VariantToText(t, Variant::R4(0.1f));
    EXPECT_EQ(t, CString("0.1"));
    u.VariantToText(t, Variant::R8(-0.0));
    EXPECT_EQ(t, CString("0"));
    EXPECT_EQ(u.VariantAsDouble(Variant::Bool(true)), 1.0);
    EXPECT_EQ(u.VariantAsDouble(Variant::Str("zz")), 0.0);

    const std::pair<int, const char*> names[] = {
        {2, "有符号16位"},     {3, "有符号32位"},   {4, "单精度浮点数"}, {5, "双精度浮点数"},
        {7, "无符号日期类型"}, {8, "无符号字符串"}, {11, "布尔型"},      {16, "有符号8位字符"},
        {17, "无符号8位字符"}, {18, "无符号16位"},  {19, "无符号32位"},
    };
    for (const auto& [code, name] : names) {
        u.DataTypeName(t, code);
        EXPECT_EQ(t, CString(name)) << code;
    }
    u.DataTypeName(t, 6);
    EXPECT_TRUE(t.IsEmpty());
}

TEST_F(HostVarUtil, PackedFieldsAndDigitOptions) {
    EXPECT_EQ(u.GetBit(0x8000, 15), 1);
    EXPECT_EQ(u.GetBit(0x8000, 14), 0);
    EXPECT_EQ(u.GetBit(-1, 63), 1);
    EXPECT_EQ(u.GetBit(1, 64), 0);
    EXPECT_EQ(u.GetBitRange(0xABCD, 4, 11), 0xBC);
    EXPECT_EQ(u.GetBitRange(0xABCD, 11, 4), 0xBC);
    EXPECT_EQ(u.GetBitRange(-1, 0, 63), -1);
    EXPECT_EQ(u.GetDecimalDigit(4321, 0), 1);
    EXPECT_EQ(u.GetDecimalDigit(4321, 3), 4);
    EXPECT_EQ(u.GetDecimalDigit(-4321, 2), 3);
    EXPECT_EQ(u.GetDecimalDigit(4321, 4), 0);
    CString t;
    u.FormatDigitOption(t, Variant::UI2(0x1A), 4, 1);
    EXPECT_EQ(t, CString("0x001A"));
    u.FormatDigitOption(t, Variant::I2(7), 3, 0);
    EXPECT_EQ(t, CString("007"));
    u.FormatDigitOption(t, Variant::I2(-1), 0, 1);
    EXPECT_EQ(t, CString("0xFFFF"));
}

TEST_F(HostVarUtil, BytesAndLeadingIntegers) {
    const BYTE block[] = {0x10, 0xFF};
    EXPECT_EQ(u.ByteAt(block, 2, 1), 255);
    EXPECT_EQ(u.ByteAt(block, 2, 2), 0);
    EXPECT_EQ(u.ByteAt(nullptr, 2, 0), 0);
    EXPECT_EQ(u.TextToInt("  -42abc"), -42);
    EXPECT_EQ(u.TextToInt("+7"), 7);
    EXPECT_EQ(u.TextToInt("x1"), 0);
    EXPECT_EQ(u.TextToInt("99999999999"), 2147483647);
    EXPECT_EQ(u.TextToInt("-99999999999"), -2147483647 - 1);
    std::string bytes;
    u.ToNarrowText("速度 A", bytes);
    EXPECT_EQ(bytes, std::string("速度 A"));
    CHostVarUtil latin("ISO-8859-1");
    latin.ToNarrowText("é速", bytes);
    EXPECT_EQ(bytes, std::string("\xE9?"));
}

TEST_F(HostVarUtil, LinesWithoutEndsBomOrTrailingBreak) {
    std::vector<CString> lines{"stale"};
    ASSERT_TRUE(u.ReadTextLines(Write("a.txt", "\xEF\xBB\xBFone\r\ntwo\n\nfour\n").c_str(), lines));
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[0], CString("one"));
    EXPECT_EQ(lines[1], CString("two"));
    EXPECT_EQ(lines[2], CString(""));
    EXPECT_EQ(lines[3], CString("four"));

    ASSERT_TRUE(u.ReadTextLines(Write("b.txt", "last without break").c_str(), lines));
    ASSERT_EQ(lines.size(), 1u);
    ASSERT_TRUE(u.ReadTextLines(Write("c.txt", "").c_str(), lines));
    EXPECT_TRUE(lines.empty());
    lines.push_back("x");
    EXPECT_FALSE(u.ReadTextLines((m_dir / "missing").c_str(), lines));
    EXPECT_TRUE(lines.empty());
}

TEST_F(HostVarUtil, ProfileIntegersBySectionAndKey) {
    std::string path = Write("p.ini", "; comment\n[Other]\nRate=1\n"
                                      "[ Comm ]\r\n Rate = 115200 \nAxis=-3x\nEmpty=\n");
    CString p(path);
    EXPECT_EQ(u.GetIniInt(p, "comm", "rate", 9), 115200);
    EXPECT_EQ(u.GetIniInt(p, "Other", "Rate", 9), 1);
    EXPECT_EQ(u.GetIniInt(p, "Comm", "Axis", 9), -3);
    EXPECT_EQ(u.GetIniInt(p, "Comm", "Empty", 9), 0);
    EXPECT_EQ(u.GetIniInt(p, "Comm", "Absent", 9), 9);
    EXPECT_EQ(u.GetIniInt(p, "Nowhere", "Rate", 9), 9);
    EXPECT_EQ(u.GetIniInt((m_dir / "none.ini").c_str(), "Comm", "Rate", -1), -1);
}

TEST_F(HostVarUtil, DirectoriesAndHelpFile) {
    CString sub((m_dir / "made").c_str());
    EXPECT_TRUE(u.MakeDirectory(sub));
    EXPECT_TRUE(u.MakeDirectory(sub)) << "an existing directory counts";
    struct stat st {};
    EXPECT_EQ(stat(sub.GetString(), &st), 0);
    std::string file = Write("plain", "x");
    EXPECT_FALSE(u.MakeDirectory(file.c_str())) << "a file is not a directory";
    EXPECT_FALSE(u.MakeDirectory((m_dir / "no/two").c_str()));

    CString dir;
    u.GetInstallDir(dir);
    ASSERT_FALSE(dir.IsEmpty());
    EXPECT_NE(dir.str().back(), '/');
    std::string self = dir.str() + "/test_host_model";
    EXPECT_EQ(access(self.c_str(), X_OK), 0) << self;

    CString help;
    u.GetHelpFile(help);
    EXPECT_EQ(help, CString(dir.str() + "/help/index.html"));
}

} // namespace
