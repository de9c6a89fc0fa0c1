// The text parsers of spreadsheet cells and typed values: type names, hexadecimal and
// binary figures, addresses. They need no host.
#include "values/ValueText.h"

#include <gtest/gtest.h>

using namespace VarText;

namespace {

// The order of the tests matters only for texts that extend another; only the boolean's
// name may have more behind it.
TEST(DataTypeFromName, WholeNamesExceptTheBoolean) {
    EXPECT_EQ(DataTypeFromName("无符号16位"), VT_UI2);
    EXPECT_EQ(DataTypeFromName("有符号32位"), VT_I4);
    EXPECT_EQ(DataTypeFromName("无符号8位字符"), VT_UI1);
    EXPECT_EQ(DataTypeFromName("无符号日期类型"), VT_DATE);
    EXPECT_EQ(DataTypeFromName("布尔型"), VT_BOOL);
    EXPECT_EQ(DataTypeFromName("布尔型(16位)"), VT_BOOL);
    EXPECT_EQ(DataTypeFromName("有符号16位 "), 0);
    EXPECT_EQ(DataTypeFromName(" 有符号16位"), 0);
    EXPECT_EQ(DataTypeFromName("有符号16"), 0);
    EXPECT_EQ(DataTypeFromName(""), 0);
    EXPECT_EQ(DataTypeFromName("int16"), 0);
    EXPECT_EQ(DataTypeFromName("布尔"), 0);
}

TEST(HexTextToDecimal, PrefixBlanksAndCase) {
    EXPECT_EQ(HexTextToDecimal("0x00ff"), CString("255"));
    EXPECT_EQ(HexTextToDecimal("00 FF"), CString("255"));
    EXPECT_EQ(HexTextToDecimal("0XaBc"), CString("2748"));
    EXPECT_EQ(HexTextToDecimal("FFFFFFFF"), CString("4294967295"));
    EXPECT_EQ(HexTextToDecimal("0x8000"), CString("32768"));
}

TEST(HexTextToDecimal, StopsAtTheFirstForeignCharacterAndKeepsEightDigits) {
    EXPECT_EQ(HexTextToDecimal("12G4"), CString("18"));
    EXPECT_EQ(HexTextToDecimal("123456789"), CString("305419896")) << "ninth digit dropped";
    EXPECT_EQ(HexTextToDecimal(CString(std::string(40, 'F'))), CString("4294967295"));
    EXPECT_EQ(HexTextToDecimal("1-2"), CString("1"));
}

TEST(HexTextToDecimal, HostileTextsGiveZero) {
    EXPECT_EQ(HexTextToDecimal(""), CString("0"));
    EXPECT_EQ(HexTextToDecimal("0x"), CString("0"));
    EXPECT_EQ(HexTextToDecimal("   "), CString("0"));
    EXPECT_EQ(HexTextToDecimal("ＦＦ"), CString("0")) << "full-width letters are no digits";
    EXPECT_EQ(HexTextToDecimal("参数"), CString("0"));
    EXPECT_EQ(HexTextToDecimal("-1"), CString("0"));
}

TEST(BinaryTextToDecimal, PrefixBlanksAndLength) {
    EXPECT_EQ(BinaryTextToDecimal("0b1010"), CString("10"));
    EXPECT_EQ(BinaryTextToDecimal("0B1111"), CString("15"));
    EXPECT_EQ(BinaryTextToDecimal("1 1"), CString("3"));
    EXPECT_EQ(BinaryTextToDecimal("101"), CString("5"));
    EXPECT_EQ(BinaryTextToDecimal("11"), CString("")) << "shorter than three characters";
    EXPECT_EQ(BinaryTextToDecimal(""), CString(""));
    EXPECT_EQ(BinaryTextToDecimal("1111111111111111"), CString("65535"));
    EXPECT_EQ(BinaryTextToDecimal(CString(std::string(40, '1'))), CString("65535"))
        << "only 16 digits count";
    EXPECT_EQ(BinaryTextToDecimal("1012"), CString("5")) << "stops at the 2";
    EXPECT_EQ(BinaryTextToDecimal("0b"), CString(""));
    EXPECT_EQ(BinaryTextToDecimal("0b2"), CString("0"));
    EXPECT_EQ(BinaryTextToDecimal("一一一"), CString("0"));
}

TEST(ParseAddressText, DecimalAndHexadecimalCells) {
    EXPECT_EQ(ParseAddressText("0x1A"), 26u);
    EXPECT_EQ(ParseAddressText("0X1a"), 26u);
    EXPECT_EQ(ParseAddressText("26"), 26u);
    EXPECT_EQ(ParseAddressText("26abc"), 26u) << "leading digits count";
    EXPECT_EQ(ParseAddressText("0x 02 29"), 0x229u);
    EXPECT_EQ(ParseAddressText("0xFFFFFFFF"), 0xFFFFFFFFu);
    EXPECT_EQ(ParseAddressText("4294967295"), 4294967295u);
}

TEST(ParseAddressText, TextsThatNameNoAddressGiveZero) {
    EXPECT_EQ(ParseAddressText("0xZZ"), 0u);
    EXPECT_EQ(ParseAddressText("0x"), 0u);
    EXPECT_EQ(ParseAddressText(""), 0u);
    EXPECT_EQ(ParseAddressText("地址"), 0u);
    EXPECT_EQ(ParseAddressText("-5"), 0u);
    EXPECT_EQ(ParseAddressText("0x1G"), 0u) << "the tail must be hexadecimal";
    // Too large for an address: no wrap-around onto some other parameter.
    EXPECT_EQ(ParseAddressText("0x100000000"), 0u);
    EXPECT_EQ(ParseAddressText(CString("0x" + std::string(40, 'F'))), 0u);
    EXPECT_EQ(ParseAddressText(CString(std::string(40, '9'))), 0u);
    EXPECT_EQ(ParseAddressText("4294967296"), 0u);
}

TEST(ConnectorNames, WholeNamesAndBracketedNames) {
    EXPECT_TRUE(IsConnectorName("K连接器"));
    EXPECT_TRUE(IsConnectorName("kf连接器"));
    EXPECT_TRUE(IsConnectorName("连接器"));
    EXPECT_FALSE(IsConnectorName("BKF连接器")) << "not one of the whole names";
    EXPECT_FALSE(IsConnectorName("K连接器 "));
    EXPECT_TRUE(HasConnectorName("速度给定[BKF连接器]"));
    EXPECT_TRUE(HasConnectorName("x[b连接器]y"));
    EXPECT_FALSE(HasConnectorName("K连接器"));
    EXPECT_FALSE(HasConnectorName("[连接器]"));
    EXPECT_FALSE(HasConnectorName(""));
}

} // namespace
