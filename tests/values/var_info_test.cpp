// What a value means: enumeration names through the translator, connector targets, and
// the value text of the compare rows.
#include "values/GetVarInfo.h"
#include "values/ValueText.h"
#include "values_fixture.h"

using namespace VarText;

namespace {

class VarInfo : public ValuesTest {
protected:
    CGetVarInfo info;
};

TEST_F(VarInfo, EnumerationValuesCarryTheirNameThroughTheTranslator) {
    IVarObjEx* mode = Var("H00-00");
    mode->SetValue(Variant::UI2(1));
    EXPECT_EQ(info.CurrentValueText(mode), CString("1[速度模式]"));
    ui.translations["速度模式"] = "Speed";
    EXPECT_EQ(info.CurrentValueText(mode), CString("1[Speed]"));
    mode->SetValue(Variant::UI2(7));
    EXPECT_EQ(info.CurrentValueText(mode), CString("7")) << "no entry, no brackets";
    mode->SetValue(Variant());
    EXPECT_EQ(info.CurrentValueText(mode), CString(""));
    EXPECT_EQ(info.Meaning(mode->GetAttr(), Variant::R8(2.0)), CString("转矩模式"))
        << "compared as a figure of the parameter's type";
}

TEST_F(VarInfo, ConnectorValuesNameTheirTarget) {
    IVarObjEx* source = Var("H00-13");
    ASSERT_TRUE(IsConnectorVar(source->GetAttr()));
    EXPECT_FALSE(IsConnectorVar(Attr("H00-00")));
    EXPECT_FALSE(IsConnectorVar(Attr("H00-01")));
    source->SetValue(Variant::UI2(2012)); // K group H02 from 2000: H02-00 at 0x0200
    EXPECT_EQ(info.CurrentValueText(source), CString("H02-00[电机转速]"));
    ui.translations["母线电压"] = "DC bus voltage";
    source->SetSetValue(Variant::UI2(2013));
    EXPECT_EQ(info.SetValueText(source), CString("H02-01[DC bus voltage]"));
    source->SetValue(Variant::UI2(5));
    EXPECT_EQ(info.CurrentValueText(source), CString("5")) << "points nowhere: plain text";
    source->SetValue(Variant::UI2(1));
    EXPECT_EQ(info.CurrentValueText(source), CString("1[K连接器]"));
}

TEST_F(VarInfo, PerUnitCellsReadInTheScaleOfTheRow) {
    IVarObjEx* current = Var("H00-07");
    current->SetPerUnitMode(PER_UNIT_PERCENT);
    EXPECT_EQ(info.CurrentValueText(current), CString("100.00%"));
    current->SetPerUnitMode(PER_UNIT_RAW);
    EXPECT_EQ(info.CurrentValueText(current), CString("4096"));
}

TEST_F(VarInfo, ValueTextWithMeaningOfCompareRows) {
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

TEST_F(VarInfo, WithoutTheTranslatorTheFigureStandsAlone) {
    IVarObjEx* mode = Var("H00-00");
    mode->SetValue(Variant::UI2(1));
    services.Withhold<IHostUiService>();
    EXPECT_EQ(info.CurrentValueText(mode), CString("1"));
    services.Withhold<IHostUiService>(false);
    services.Withhold<IHostVarUtil>();
    EXPECT_EQ(info.ValueTextWithMeaning(mode, Variant::UI2(1)), CString(""));
    EXPECT_EQ(info.CurrentValueText(nullptr), CString(""));
    EXPECT_EQ(info.EnumText(nullptr, nullptr, Variant()), CString(""));
}

} // namespace
