// The texts of a row: values and limits by display format and per-unit mode, the display
// format and unit columns, modify and effect modes, linked limits.
#include "values/ValueText.h"
#include "values_fixture.h"
#include "zorhost/device/DeviceLoader.h"

using namespace VarText;

namespace {

class ValueTexts : public ValuesTest {};

TEST_F(ValueTexts, DecimalParametersShowTheirOwnUnitWithTheirPlaces) {
    IVarObjEx* torque = Var("H00-01"); // i16, 1 decimal, factory 1000 = 100.0
    EXPECT_EQ(ItemValueText(torque), CString("100.0"));
    EXPECT_EQ(FactoryValueText(torque), CString("100.0"));
    EXPECT_EQ(MinValueText(torque), CString("-300.0"));
    EXPECT_EQ(MaxValueText(torque), CString("300.0"));
    torque->SetValue(Variant::I2(-5));
    EXPECT_EQ(ItemValueText(torque), CString("-0.5"));
    torque->SetValue(Variant());
    EXPECT_EQ(ItemValueText(torque), CString("")) << "no value, no text";
}

TEST_F(ValueTexts, RoundingAtTheLimitsOfEachType) {
    IVarObjEx* fine = Var("H00-16"); // i16, 4 decimals
    fine->SetValue(Variant::I2(-32768));
    EXPECT_EQ(ItemValueText(fine), CString("-3.2768"));
    fine->SetValue(Variant::I2(32767));
    EXPECT_EQ(ItemValueText(fine), CString("3.2767"));
    EXPECT_EQ(MinValueText(fine), CString("-3.2768"));
    IVarObjEx* count = Var("H00-26"); // u32
    count->SetValue(Variant::UI4(4294967295u));
    EXPECT_EQ(ItemValueText(count), CString("4294967295"));
    EXPECT_EQ(MaxValueText(count), CString("4294967295"));
    IVarObjEx* ratio = Var("H00-28"); // f64, 3 decimals
    ratio->SetValue(Variant::R8(-0.0004));
    EXPECT_EQ(ItemValueText(ratio), CString("0.000")) << "no negative zero";
    ratio->SetValue(Variant::R8(1.2346));
    EXPECT_EQ(ItemValueText(ratio), CString("1.235"));
    EXPECT_EQ(MaxValueText(ratio), CString("1.500"));
    IVarObjEx* none = Var("H00-10"); // u16, 0 decimals
    none->SetValue(Variant::UI2(65535));
    EXPECT_EQ(ItemValueText(none), CString("65535"));
}

TEST_F(ValueTexts, HexadecimalShowsTheTypesWidthAndNeverForDecimals) {
    IVarObjEx* serial = Var("H00-20"); // u32 hex, factory 4660
    EXPECT_EQ(ItemValueText(serial), CString("0x1234"));
    EXPECT_EQ(FactoryValueText(serial), CString("0x1234"));
    EXPECT_EQ(MaxValueText(serial), CString("0xFFFFFFFF"));
    serial->SetValue(Variant::UI4(0xA));
    EXPECT_EQ(ItemValueText(serial), CString("0x000A")) << "at least four digits";
    IVarObjEx* offset = Var("H00-03"); // i16 hex, factory -1
    EXPECT_EQ(ItemValueText(offset), CString("0xFFFF")) << "16 bits, not 32";
    EXPECT_EQ(MinValueText(offset), CString("0x8000"));
    EXPECT_EQ(MaxValueText(offset), CString("0x7FFF"));
    IVarObjEx* filter = Var("H00-04"); // u16 hex with 1 decimal, factory 255
    EXPECT_EQ(ItemValueText(filter), CString("25.5"));
    EXPECT_EQ(MaxValueText(filter), CString("100.0"));
}

TEST_F(ValueTexts, RawAndHiddenFormats) {
    IVarObjEx* raw = Var("H00-06"); // format 3
    EXPECT_EQ(ItemValueText(raw), CString(""));
    EXPECT_EQ(FactoryValueText(raw), CString("7")) << "limits still show their figure";
    IVarObjEx* hidden = Var("H00-05"); // format 4: the column puts "******" over it
    EXPECT_EQ(ItemValueText(hidden), CString("1234"));
    EXPECT_EQ(MinValueText(hidden), CString("0"));
    EXPECT_EQ(MaxValueText(hidden), CString("65535"));
    EXPECT_EQ(DisplayFormatText(raw), CString("原始值"));
    EXPECT_EQ(DisplayFormatText(hidden), CString("原始值"));
}

TEST_F(ValueTexts, PercentOf16And32BitAndRealParameters) {
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
    EXPECT_TRUE(helper.reads.empty()) << "percent needs no base";
}

TEST_F(ValueTexts, RawFigureModeShowsTwoPlaces) {
    IVarObjEx* current = Var("H00-07");
    for (int mode : {-1, 0}) {
        current->SetPerUnitMode(mode);
        EXPECT_EQ(FactoryValueText(current), CString("4096.00")) << mode;
        EXPECT_EQ(DisplayFormatText(current), CString("原始值")) << mode;
        EXPECT_EQ(UnitText(current), CString("A")) << mode;
    }
}

TEST_F(ValueTexts, EngineeringValuesReadTheirBaseOnceAndKeepIt) {
    IVarObjEx* current = Var("H00-07");
    current->SetPerUnitMode(2); // base H00-10 at 0x000A
    helper.driveValues[0x000A] = Variant::UI2(30);
    ui.translations["额定电流"] = "Rated current";
    EXPECT_EQ(FactoryValueText(current), CString("30.00"));
    EXPECT_EQ(MaxValueText(current), CString("60.00"));
    EXPECT_EQ(MinValueText(current), CString("-60.00"));
    EXPECT_EQ(PerUnitValueText(current, Variant::I2(1024)), CString("7.50"));
    ASSERT_EQ(helper.reads.size(), 1u) << "one read, then the table holds the base";
    EXPECT_EQ(helper.reads[0].address, 0x000Au);
    EXPECT_EQ(helper.reads[0].dataType, int(VT_I2)) << "read as the parameter's type";
    helper.driveValues[0x000A] = Variant::UI2(99);
    EXPECT_EQ(PerUnitBase(current), 30.0) << "a held base isn't read again";
    EXPECT_EQ(DisplayFormatText(current), CString("Rated current"));
    EXPECT_EQ(UnitText(current), CString("A"));

    // A further base is named, but only the first has a scale: no figure, no read.
    current->SetPerUnitMode(3); // H00-12 at 0x000C
    helper.driveValues[0x000C] = Variant::UI2(3000);
    EXPECT_EQ(FactoryValueText(current), CString(""));
    EXPECT_EQ(PerUnitValueText(current, Variant::I2(1024)), CString(""));
    EXPECT_EQ(DisplayFormatText(current), CString("最高速度"));
    EXPECT_EQ(helper.reads.size(), 1u);
    current->SetPerUnitMode(2);

    IVarObjEx* speed = Var("H00-22");
    speed->SetPerUnitMode(2);
    EXPECT_EQ(FactoryValueText(speed), CString("30.00")) << "2^28 with the held base 30";
}

TEST_F(ValueTexts, WithoutABaseEngineeringTextsReadZeroAndAreTriedAgain) {
    IVarObjEx* current = Var("H00-07");
    current->SetPerUnitMode(2);
    EXPECT_EQ(PerUnitBase(current), 0.0);
    EXPECT_EQ(MinValueText(current), CString("0.00"));
    EXPECT_EQ(PerUnitValueText(current, Variant::I2(1)), CString("0.00"));
    EXPECT_EQ(helper.reads.size(), 3u) << "a failed read holds nothing";
    current->SetPerUnitMode(9);
    EXPECT_EQ(DisplayFormatText(current), CString("")) << "no entry of that mode";
    EXPECT_EQ(PerUnitBase(current), 0.0);
    // Real parameters take no part of the base.
    IVarObjEx* gain = Var("H00-24");
    gain->SetPerUnitMode(2);
    EXPECT_EQ(FactoryValueText(gain), CString("50.00"));
}

TEST_F(ValueTexts, LinkedLimitShowsTheLiveValueOfItsTarget) {
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
}

// On a multi-axis drive a linked limit follows the parameter of its own axis.
TEST_F(ValueTexts, LinkedLimitsStayOnTheirAxis) {
    auto loaded = zorhost::device::LoadDeviceFile(std::string(PARMIRA_SOURCE_DIR) +
                                                  "/devices/zd4m_four_axis.json");
    ASSERT_TRUE(loaded) << loaded.error.ToString();
    auto* project = static_cast<zorhost::model::CProject*>(root.GetProject());
    zorhost::model::CDeviceModule* four = project->Workspace().Modules().Add(
        std::make_unique<zorhost::model::CDeviceModule>(loaded.device, CString("M4"), 4));
    ASSERT_NE(four, nullptr);
    IVarObjEx* jog = four->Store().FindByCode("A2.H06-01"); // maximum: H06-00 of its axis
    IVarObjEx* axis2Max = four->Store().FindByCode("A2.H06-00");
    ASSERT_TRUE(jog && axis2Max);
    axis2Max->SetValue(Variant::UI2(4500));
    IVarObjEx* target = nullptr;
    EXPECT_EQ(LinkedLimitText(jog, TRUE, &target), CString("4500[H06-00]"));
    EXPECT_EQ(target, axis2Max);

    helper.driveValues[axis2Max->GetInstanceAddress()] = Variant::UI2(4500);
    std::vector<CString> errors;
    Variant out;
    EXPECT_TRUE(
        CheckEditedValue("M4", jog->GetInstanceAddress(), VT_UI2, Variant::R8(4500), out, errors));
    EXPECT_FALSE(
        CheckEditedValue("M4", jog->GetInstanceAddress(), VT_UI2, Variant::R8(4501), out, errors));
}

TEST_F(ValueTexts, MissingServiceOrAttributeGivesEmptyTexts) {
    EXPECT_EQ(ItemValueText(nullptr), CString(""));
    EXPECT_EQ(MinValueText(nullptr), CString(""));
    EXPECT_EQ(DisplayFormatText(nullptr), CString(""));
    EXPECT_EQ(ModifyModeText(nullptr), CString(""));
    EXPECT_EQ(PerUnitBase(nullptr), 0.0);
    services.Withhold<IHostVarUtil>();
    EXPECT_EQ(ItemValueText(Var("H00-01")), CString(""));
    EXPECT_EQ(FactoryValueText(Var("H00-01")), CString(""));
    EXPECT_EQ(LinkedLimitText(Var("H00-11"), TRUE), CString(""));
    services.Withhold<IHostVarUtil>(false);
    services.Withhold<IHostDeviceHelper>();
    Var("H00-07")->SetPerUnitMode(2);
    EXPECT_EQ(PerUnitBase(Var("H00-07")), 0.0);
    EXPECT_EQ(FactoryValueText(Var("H00-07")), CString("0.00"));
}

} // namespace
