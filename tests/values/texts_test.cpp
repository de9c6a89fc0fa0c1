// The texts of a row: values and limits by display format and per-unit mode, the display
// format and unit columns, linked limits; what a value means (enumeration names through the
// translator, connector targets, compare rows); and the parsers of spreadsheet cells and
// typed values, which need no host.
#include "values/GetVarInfo.h"
#include "values/ValueText.h"
#include "values_fixture.h"

#include <optional>

using namespace VarText;

namespace {

class ValueTexts : public ValuesTest {
protected:
    CGetVarInfo info;
};

// Values and limits by type, places and display format. Each row may first give the
// parameter a value; the rows of one parameter run in order.
TEST_F(ValueTexts, ValuesAndLimitsByTypePlacesAndFormat) {
    struct Case {
        const char* code;
        std::optional<Variant> value;
        CString (*text)(IVarObjEx*);
        const char* expected;
    };
    const Case cases[] = {
        // i16, 1 decimal, factory 1000 = 100.0
        {"H00-01", {}, FactoryValueText, "100.0"},
        {"H00-01", {}, MinValueText, "-300.0"},
        {"H00-01", {}, MaxValueText, "300.0"},
        {"H00-01", Variant::I2(-5), ItemValueText, "-0.5"},
        {"H00-01", Variant(), ItemValueText, ""}, // no value, no text
        // The ends of each type: i16 with 4 decimals, u32, f64 with 3, u16.
        {"H00-16", Variant::I2(-32768), ItemValueText, "-3.2768"},
        {"H00-16", Variant::I2(32767), ItemValueText, "3.2767"},
        {"H00-16", {}, MinValueText, "-3.2768"},
        {"H00-26", Variant::UI4(4294967295u), ItemValueText, "4294967295"},
        {"H00-26", {}, MaxValueText, "4294967295"},
        {"H00-28", Variant::R8(-0.0004), ItemValueText, "0.000"}, // no negative zero
        {"H00-28", Variant::R8(1.2346), ItemValueText, "1.235"},
        {"H00-28", {}, MaxValueText, "1.500"},
        {"H00-10", Variant::UI2(65535), ItemValueText, "65535"},
        // Hexadecimal shows the type's width, at least four digits; never with decimals.
        {"H00-20", {}, ItemValueText, "0x1234"}, // u32, factory 4660
        {"H00-20", {}, FactoryValueText, "0x1234"},
        {"H00-20", {}, MaxValueText, "0xFFFFFFFF"},
        {"H00-20", Variant::UI4(0xA), ItemValueText, "0x000A"},
        {"H00-03", {}, MinValueText, "0x8000"}, // i16: 16 bits, not 32
        {"H00-03", {}, MaxValueText, "0x7FFF"},
        {"H00-04", {}, MaxValueText, "100.0"}, // u16 with 1 decimal
        // Raw (format 3): no value text, but the limits show their figure.
        {"H00-06", {}, ItemValueText, ""},
        {"H00-06", {}, FactoryValueText, "7"},
        {"H00-06", {}, DisplayFormatText, "原始值"},
        // Hidden (format 4): the column puts "******" over the figure.
        {"H00-05", {}, ItemValueText, "1234"},
        {"H00-05", {}, MinValueText, "0"},
        {"H00-05", {}, MaxValueText, "65535"},
        {"H00-05", {}, DisplayFormatText, "原始值"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::Message() << c.code << " " << c.expected);
        if (c.value)
            Var(c.code)->SetValue(*c.value);
        EXPECT_EQ(c.text(Var(c.code)), CString(c.expected));
    }
}

TEST_F(ValueTexts, PercentOf16And32BitAndRealParametersAndTheRawFigure) {
    IVarObjEx* current = Var("H00-07"); // i16, 4096 = 100 %
    IVarObjEx* speed = Var("H00-22");   // i32, 2^28 = 100 %
    IVarObjEx* gain = Var("H00-24");    // f32, fraction as it stands
    for (IVarObjEx* v : {current, speed, gain})
        v->SetPerUnitMode(PER_UNIT_PERCENT);
    EXPECT_EQ(FactoryValueText(current), CString("100.00%"));
    EXPECT_EQ(MinValueText(current), CString("-200.00%"));
    EXPECT_EQ(FactoryValueText(speed), CString("100.00%"));
    EXPECT_EQ(MaxValueText(speed), CString("200.00%"));
    EXPECT_EQ(FactoryValueText(gain), CString("50.00%"));
    EXPECT_EQ(PerUnitValueText(current, Variant::I2(2048)), CString("50.00%"));
    EXPECT_EQ(PerUnitValueText(current, Variant::I2(-1)), CString("-0.02%"));
    EXPECT_EQ(PerUnitValueText(gain, Variant::R4(-0.00001f)), CString("0.00%"))
        << "no negative zero";
    EXPECT_EQ(UnitText(current), CString("%"));
    EXPECT_EQ(DisplayFormatText(current), CString("百分比"));
    EXPECT_EQ(info.CurrentValueText(current), CString("100.00%")) << "the cell, in the row's scale";
    EXPECT_TRUE(drive->TakeRequests().empty()) << "percent needs no base";

    // The raw figure's mode shows two places in the texts, none in the cell.
    for (int mode : {-1, 0}) {
        current->SetPerUnitMode(mode);
        EXPECT_EQ(FactoryValueText(current), CString("4096.00")) << mode;
        EXPECT_EQ(DisplayFormatText(current), CString("原始值")) << mode;
        EXPECT_EQ(UnitText(current), CString("A")) << mode;
    }
    EXPECT_EQ(info.CurrentValueText(current), CString("4096")) << "the cell's figure has no places";
}

TEST_F(ValueTexts, EngineeringValuesReadTheirBaseOnceAndKeepItAndWithoutOneReadZero) {
    IVarObjEx* current = Var("H00-07");
    current->SetPerUnitMode(2); // base H00-10 at 0x000A
    // The drive doesn't answer for the base yet: zero, and a failed read holds nothing.
    drive->SetFailure(zorhost::sim::FailureMode::FailReads, {0x000A});
    EXPECT_EQ(PerUnitBase(current), 0.0);
    EXPECT_EQ(MinValueText(current), CString("0.00"));
    EXPECT_EQ(PerUnitValueText(current, Variant::I2(1)), CString("0.00"));
    ASSERT_EQ(helper.readTypes.size(), 3u);

    drive->ClearFailures(); // it holds 30
    ui.translations["额定电流"] = "Rated current";
    EXPECT_EQ(FactoryValueText(current), CString("30.00"));
    EXPECT_EQ(MaxValueText(current), CString("60.00"));
    EXPECT_EQ(MinValueText(current), CString("-60.00"));
    EXPECT_EQ(PerUnitValueText(current, Variant::I2(1024)), CString("7.50"));
    ASSERT_EQ(helper.readTypes.size(), 4u) << "one read, then the table holds the base";
    EXPECT_EQ(helper.readTypes.back(), int(VT_I2)) << "read as the parameter's type";
    drive->PokeRaw(0x000A, 99);
    EXPECT_EQ(PerUnitBase(current), 30.0) << "a held base isn't read again";
    EXPECT_EQ(DisplayFormatText(current), CString("Rated current"));
    EXPECT_EQ(UnitText(current), CString("A"));

    // A further base is named, but only the first has a scale: no figure, no read.
    current->SetPerUnitMode(3); // H00-12 at 0x000C, holding 3000
    EXPECT_EQ(FactoryValueText(current), CString(""));
    EXPECT_EQ(PerUnitValueText(current, Variant::I2(1024)), CString(""));
    EXPECT_EQ(DisplayFormatText(current), CString("最高速度"));
    EXPECT_EQ(helper.readTypes.size(), 4u);
    current->SetPerUnitMode(9);
    EXPECT_EQ(DisplayFormatText(current), CString("")) << "no entry of that mode";
    EXPECT_EQ(PerUnitBase(current), 0.0);

    IVarObjEx* speed = Var("H00-22");
    speed->SetPerUnitMode(2);
    EXPECT_EQ(FactoryValueText(speed), CString("30.00")) << "2^28 with the held base 30";
    IVarObjEx* gain = Var("H00-24");
    gain->SetPerUnitMode(2);
    EXPECT_EQ(FactoryValueText(gain), CString("50.00")) << "reals take no part of the base";
}

TEST_F(ValueTexts, LinkedLimitShowsTheLiveValueOfItsTargetOnItsOwnAxis) {
    IVarObjEx* limited = Var("H00-11"); // maximum linked to H00-12
    IVarObjEx* target = nullptr;
    EXPECT_TRUE(IsLimitLinked(limited->GetAttr(), TRUE));
    EXPECT_FALSE(IsLimitLinked(limited->GetAttr(), FALSE));
    EXPECT_EQ(LinkedLimitText(limited, TRUE, &target), CString("3000[H00-12]"));
    EXPECT_EQ(target, Var("H00-12")) << "the list keeps this one refreshed";
    Var("H00-12")->SetValue(Variant::UI2(2500));
    EXPECT_EQ(LinkedLimitText(limited, TRUE), CString("2500[H00-12]"));
    EXPECT_EQ(LinkedLimitText(limited, FALSE, &target), CString(""));
    EXPECT_EQ(target, nullptr);
    EXPECT_EQ(LinkedLimitText(Var("H00-18"), FALSE), CString("100.0[H00-01]"));

    // On a multi-axis drive a linked limit follows the parameter of its own axis.
    IVarObjEx* axis2Max = Var("A2.H06-00", "M4"); // the maximum of A2.H06-01
    axis2Max->SetValue(Variant::UI2(4500));
    EXPECT_EQ(LinkedLimitText(Var("A2.H06-01", "M4"), TRUE, &target), CString("4500[H06-00]"));
    EXPECT_EQ(target, axis2Max);
}

TEST_F(ValueTexts, EnumerationValuesCarryTheirNameAndConnectorValuesTheirTarget) {
    IVarObjEx* mode = Var("H00-00");
    mode->SetValue(Variant::UI2(1));
    ui.translations["速度模式"] = "Speed";
    EXPECT_EQ(info.CurrentValueText(mode), CString("1[Speed]"));
    mode->SetValue(Variant::UI2(7));
    EXPECT_EQ(info.CurrentValueText(mode), CString("7")) << "no entry, no brackets";
    mode->SetValue(Variant());
    EXPECT_EQ(info.CurrentValueText(mode), CString(""));
    EXPECT_EQ(info.Meaning(mode->GetAttr(), Variant::R8(2.0)), CString("转矩模式"))
        << "compared as a figure of the parameter's type";
    // A connector's value names its target, translated.
    IVarObjEx* source = Var("H00-13");
    ASSERT_TRUE(IsConnectorVar(source->GetAttr()));
    EXPECT_FALSE(IsConnectorVar(Var("H00-00")->GetAttr()));
    EXPECT_FALSE(IsConnectorVar(Var("H00-01")->GetAttr()));
    ui.translations["母线电压"] = "DC bus voltage";
    source->SetSetValue(Variant::UI2(2013)); // K group H02 from 2000: H02-01
    EXPECT_EQ(info.SetValueText(source), CString("H02-01[DC bus voltage]"));
    source->SetValue(Variant::UI2(5));
    EXPECT_EQ(info.CurrentValueText(source), CString("5")) << "points nowhere: plain text";
    source->SetValue(Variant::UI2(1));
    EXPECT_EQ(info.CurrentValueText(source), CString("1[K连接器]"));
}

TEST_F(ValueTexts, ValueTextWithMeaningOfCompareRows) {
    EXPECT_EQ(info.ValueTextWithMeaning(Var("H00-00"), Variant()), CString("---"));
    EXPECT_EQ(info.ValueTextWithMeaning(Var("H00-00"), Variant::Null()), CString("---"));
    EXPECT_EQ(info.ValueTextWithMeaning(Var("H00-00"), Variant::UI2(2)), CString("2[转矩模式]"));
    EXPECT_EQ(info.ValueTextWithMeaning(Var("H00-01"), Variant::I2(1505)), CString("150.5"));
    EXPECT_EQ(info.ValueTextWithMeaning(Var("H00-16"), Variant::I2(-32768)), CString("-3.2768"));
    EXPECT_EQ(info.ValueTextWithMeaning(Var("H00-20"), Variant::UI4(255)), CString("FF"));
    // Per-unit values read as a percentage whatever the row shows.
    Var("H00-07")->SetPerUnitMode(2);
    EXPECT_EQ(info.ValueTextWithMeaning(Var("H00-07"), Variant::I2(4096)), CString("100%"));
    EXPECT_EQ(info.ValueTextWithMeaning(Var("H00-22"), Variant::I4(268435456)), CString("100%"));
    EXPECT_EQ(info.ValueTextWithMeaning(Var("H00-06"), Variant::UI2(1)), CString(""));
}

// Without the translator an enumeration's figure stands alone; without the value service,
// the device helper or an attribute the texts are empty.
TEST_F(ValueTexts, WithoutAServiceOrAnAttributeTextsAreEmptyOrPlain) {
    EXPECT_EQ(ItemValueText(nullptr), CString(""));
    EXPECT_EQ(MinValueText(nullptr), CString(""));
    EXPECT_EQ(DisplayFormatText(nullptr), CString(""));
    EXPECT_EQ(ModifyModeText(nullptr), CString(""));
    EXPECT_EQ(PerUnitBase(nullptr), 0.0);
    EXPECT_EQ(info.CurrentValueText(nullptr), CString(""));
    EXPECT_EQ(info.EnumText(nullptr, nullptr, Variant()), CString(""));
    IVarObjEx* mode = Var("H00-00");
    mode->SetValue(Variant::UI2(1));
    host.Services().Withhold<IHostUiService>();
    EXPECT_EQ(info.CurrentValueText(mode), CString("1"));
    host.Services().Withhold<IHostUiService>(false);
    host.Services().Withhold<IHostVarUtil>();
    EXPECT_EQ(info.ValueTextWithMeaning(mode, Variant::UI2(1)), CString(""));
    EXPECT_EQ(ItemValueText(Var("H00-01")), CString(""));
    EXPECT_EQ(FactoryValueText(Var("H00-01")), CString(""));
    EXPECT_EQ(LinkedLimitText(Var("H00-11"), TRUE), CString(""));
    host.Services().Withhold<IHostVarUtil>(false);
    host.Services().Withhold<IHostDeviceHelper>();
    Var("H00-07")->SetPerUnitMode(2);
    EXPECT_EQ(PerUnitBase(Var("H00-07")), 0.0);
    EXPECT_EQ(FactoryValueText(Var("H00-07")), CString("0.00"));
}

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

TEST(HexTextToDecimal, PrefixBlanksCaseEightDigitsAndHostileTexts) {
    EXPECT_EQ(HexTextToDecimal("0x00ff"), CString("255"));
    EXPECT_EQ(HexTextToDecimal("00 FF"), CString("255"));
    EXPECT_EQ(HexTextToDecimal("0XaBc"), CString("2748"));
    EXPECT_EQ(HexTextToDecimal("FFFFFFFF"), CString("4294967295"));
    EXPECT_EQ(HexTextToDecimal("0x8000"), CString("32768"));
    // It stops at the first foreign character and keeps eight digits.
    EXPECT_EQ(HexTextToDecimal("12G4"), CString("18"));
    EXPECT_EQ(HexTextToDecimal("123456789"), CString("305419896")) << "ninth digit dropped";
    EXPECT_EQ(HexTextToDecimal(CString(std::string(40, 'F'))), CString("4294967295"));
    EXPECT_EQ(HexTextToDecimal("1-2"), CString("1"));
    // Hostile texts give zero.
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

TEST(ParseAddressText, DecimalAndHexadecimalCellsAndTextsThatNameNone) {
    EXPECT_EQ(ParseAddressText("0x1A"), 26u);
    EXPECT_EQ(ParseAddressText("0X1a"), 26u);
    EXPECT_EQ(ParseAddressText("26"), 26u);
    EXPECT_EQ(ParseAddressText("26abc"), 26u) << "leading digits count";
    EXPECT_EQ(ParseAddressText("0x 02 29"), 0x229u);
    EXPECT_EQ(ParseAddressText("0xFFFFFFFF"), 0xFFFFFFFFu);
    EXPECT_EQ(ParseAddressText("4294967295"), 4294967295u);
    // Texts that name no address give zero.
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
