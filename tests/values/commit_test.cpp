// The commit of an edited value cell: the live list writes to the drive at once, the
// staging list stores a set value; hexadecimal and per-unit texts are turned into the
// parameter's raw figure first.
#include "values/ValueText.h"
#include "values_fixture.h"

using namespace VarText;

namespace {

class Commit : public ValuesTest {
protected:
    CAfxRecordingResponder prompts;
};

TEST_F(Commit, TheLiveListWritesTheRawFigureAtOnce) {
    EXPECT_EQ(CommitCellText(Var("H00-01"), "150.5", 0, 0), COMMIT_WRITTEN);
    ASSERT_EQ(helper.writes.size(), 1u);
    const auto& w = helper.writes[0];
    EXPECT_EQ(w.moduleKey, CString("M1"));
    EXPECT_EQ(w.address, 0x0001u);
    EXPECT_EQ(w.dataType, int(VT_I2));
    EXPECT_EQ(w.value, Variant::R8(1505.0));
    EXPECT_EQ(w.mode, 1);
    EXPECT_EQ(w.timeout_ms, 200);
    EXPECT_EQ(w.tries, 3);
    EXPECT_EQ(prompts.Count(AfxPrompt::MessageBox), 0u) << "success shows nothing";
    EXPECT_EQ(Var("H00-01")->GetValue(), Variant::I2(1000)) << "the next refresh shows it";

    // Figures finer than the parameter's resolution are rounded to it.
    EXPECT_EQ(CommitCellText(Var("H00-01"), " -0.06 ", 0, 0), COMMIT_WRITTEN);
    EXPECT_EQ(helper.writes.back().value, Variant::R8(-1.0));
    EXPECT_EQ(CommitCellText(Var("H00-16"), "-3.2768", 0, 0), COMMIT_WRITTEN);
    EXPECT_EQ(helper.writes.back().value, Variant::R8(-32768.0));
    EXPECT_EQ(CommitCellText(Var("H00-26"), "4294967295", 0, 0), COMMIT_WRITTEN);
    EXPECT_EQ(helper.writes.back().value, Variant::R8(4294967295.0));
    EXPECT_EQ(CommitCellText(Var("H00-28"), "0.1234", 0, 0), COMMIT_WRITTEN);
    EXPECT_EQ(helper.writes.back().value, Variant::R8(0.1234)) << "reals are not rounded";
}

TEST_F(Commit, AValueEqualToTheCurrentOneWritesNothing) {
    IVarObjEx* torque = Var("H00-01"); // holds 100.0
    EXPECT_EQ(CommitCellText(torque, "100", 0, 0), COMMIT_UNCHANGED);
    EXPECT_EQ(CommitCellText(torque, "100.0", 0, 0), COMMIT_UNCHANGED);
    EXPECT_EQ(CommitCellText(torque, "100.04", 0, 0), COMMIT_UNCHANGED) << "same raw figure";
    EXPECT_EQ(CommitCellText(Var("H00-03"), "0xFFFF", 0, 0), COMMIT_UNCHANGED)
        << "the hexadecimal text of -1 is -1";
    EXPECT_TRUE(helper.writes.empty());
    torque->SetValue(Variant());
    EXPECT_EQ(CommitCellText(torque, "0", 0, 0), COMMIT_WRITTEN) << "no value yet: written";
}

TEST_F(Commit, PlaceholdersAndTextsThatAreNoFigureAreIgnored) {
    IVarObjEx* torque = Var("H00-01");
    for (const char* text : {"", "   ", "---", "-", "abc", "1,5", "nan", "inf", "1e999", "0x"})
        EXPECT_EQ(CommitCellText(torque, text, 0, 0), COMMIT_IGNORED) << text;
    EXPECT_EQ(CommitCellText(nullptr, "1", 0, 0), COMMIT_IGNORED);
    EXPECT_TRUE(helper.writes.empty());
    EXPECT_EQ(prompts.Count(AfxPrompt::MessageBox), 0u);
}

TEST_F(Commit, ARefusedWriteShowsTheDrivesReason) {
    helper.acceptWrites = false;
    helper.refusalTexts = {"H00-01: value out of range (-3000 to 3000)", "second reason"};
    EXPECT_EQ(CommitCellText(Var("H00-01"), "500", 0, 0), COMMIT_WRITE_FAILED);
    const AfxPrompt* box = prompts.Last(AfxPrompt::MessageBox);
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->text, CString("H00-01: value out of range (-3000 to 3000)\nsecond reason"));
    EXPECT_EQ(box->caption, CString("<2037>")) << "the caption is string 2037";
    EXPECT_EQ(box->Buttons(), UINT(MB_OK));

    helper.refusalTexts.clear();
    EXPECT_EQ(CommitCellText(Var("H00-01"), "501", 0, 0), COMMIT_WRITE_FAILED);
    EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->text, CString("参数下载失败."));
    EXPECT_EQ(prompts.Count(AfxPrompt::MessageBox), 2u);
}

TEST_F(Commit, HexadecimalTextsAreReadWholeOrNotAtAll) {
    EXPECT_EQ(CommitCellText(Var("H00-20"), "0x00ff", 0, 0), COMMIT_WRITTEN);
    EXPECT_EQ(helper.writes.back().value, Variant::R8(255.0));
    EXPECT_EQ(CommitCellText(Var("H00-20"), "FFFF FFFF", 0, 0), COMMIT_WRITTEN);
    EXPECT_EQ(helper.writes.back().value, Variant::R8(4294967295.0));
    const size_t before = helper.writes.size();
    // A cut or broken text would put another number into the drive.
    for (const char* text : {"12G4", "123456789", "0x", "-1", "ＦＦ"})
        EXPECT_EQ(CommitCellText(Var("H00-20"), text, 0, 0), COMMIT_IGNORED) << text;
    EXPECT_EQ(helper.writes.size(), before);
}

// The figure is typed in the scale the row shows; the drive gets the raw figure.
TEST_F(Commit, PerUnitFiguresAreTypedInTheScaleShown) {
    IVarObjEx* current = Var("H00-07"); // i16, 4096 = 100 %
    current->SetPerUnitMode(PER_UNIT_PERCENT);
    EXPECT_EQ(CommitCellText(current, "50", 0, 0), COMMIT_WRITTEN);
    EXPECT_EQ(helper.writes.back().value, Variant::R8(2048.0));
    EXPECT_EQ(CommitCellText(current, "100.00", 0, 0), COMMIT_UNCHANGED);

    IVarObjEx* speed = Var("H00-22"); // i32, 2^28 = 100 %
    speed->SetPerUnitMode(PER_UNIT_PERCENT);
    EXPECT_EQ(CommitCellText(speed, "50", 0, 0), COMMIT_WRITTEN);
    EXPECT_EQ(helper.writes.back().value, Variant::R8(134217728.0));

    IVarObjEx* gain = Var("H00-24"); // f32 fraction
    gain->SetPerUnitMode(PER_UNIT_PERCENT);
    EXPECT_EQ(CommitCellText(gain, "25", 0, 0), COMMIT_WRITTEN);
    EXPECT_EQ(helper.writes.back().value, Variant::R8(0.25));

    current->SetPerUnitMode(2); // base H00-10 = 30 A
    helper.driveValues[0x000A] = Variant::UI2(30);
    EXPECT_EQ(CommitCellText(current, "15", 0, 0), COMMIT_WRITTEN);
    EXPECT_EQ(helper.writes.back().value, Variant::R8(2048.0));
    EXPECT_EQ(helper.writes.back().address, 0x0007u) << "written to the parameter, not the base";

    current->SetPerUnitMode(0);
    EXPECT_EQ(CommitCellText(current, "1000", 0, 0), COMMIT_WRITTEN);
    EXPECT_EQ(helper.writes.back().value, Variant::R8(1000.0));
}

TEST_F(Commit, NoBaseNoEngineeringCommit) {
    IVarObjEx* current = Var("H00-07");
    current->SetPerUnitMode(2); // the drive doesn't answer for the base
    EXPECT_EQ(CommitCellText(current, "15", 0, 0), COMMIT_REFUSED);
    EXPECT_EQ(CommitCellText(current, "0.00", 0, 0), COMMIT_REFUSED) << "the cell's own text";
    current->SetPerUnitMode(3); // a further base: named, but without a scale
    helper.driveValues[0x000C] = Variant::UI2(3000);
    EXPECT_EQ(CommitCellText(current, "15", 0, 0), COMMIT_REFUSED);
    EXPECT_TRUE(helper.writes.empty());
}

TEST_F(Commit, TheStagingListStoresASetValueAndTheCheckMark) {
    IVarObjEx* torque = Var("H00-01");
    EXPECT_EQ(CommitCellText(torque, "150.5", 1, 1), COMMIT_STAGED);
    EXPECT_EQ(torque->GetSetValue(), Variant::I2(1505));
    EXPECT_TRUE(torque->IsChecked());
    EXPECT_EQ(CommitCellText(torque, "100", 1, 1), COMMIT_STAGED) << "no comparison first";
    EXPECT_EQ(torque->GetSetValue(), Variant::I2(1000));
    EXPECT_FALSE(torque->IsChecked()) << "equal to the current value";
    EXPECT_EQ(CommitCellText(torque, "300", 1, 1), COMMIT_STAGED);
    EXPECT_EQ(CommitCellText(torque, "-300", 1, 1), COMMIT_STAGED);
    EXPECT_EQ(torque->GetSetValue(), Variant::I2(-3000));
    EXPECT_TRUE(helper.writes.empty()) << "nothing goes to the drive";

    // Outside the limits: dropped without a word.
    EXPECT_EQ(CommitCellText(torque, "300.1", 1, 1), COMMIT_REFUSED);
    EXPECT_EQ(torque->GetSetValue(), Variant::I2(-3000));
    EXPECT_EQ(prompts.Count(AfxPrompt::MessageBox), 0u);

    // The staging list reads hexadecimal whatever the value's meaning.
    EXPECT_EQ(CommitCellText(Var("H00-20"), "0x10", 1, 1), COMMIT_STAGED);
    EXPECT_EQ(Var("H00-20")->GetSetValue(), Variant::UI4(16));
}

TEST_F(Commit, ConnectorValuesPassTheLimitCheckButNotTheTypesRange) {
    IVarObjEx* source = Var("H00-13"); // u16 connector: its value is an address
    EXPECT_EQ(CommitCellText(source, "2012", 1, 1), COMMIT_STAGED);
    EXPECT_EQ(source->GetSetValue(), Variant::UI2(2012));
    EXPECT_EQ(CommitCellText(source, "70000", 1, 1), COMMIT_REFUSED);
    EXPECT_EQ(source->GetSetValue(), Variant::UI2(2012));
}

TEST_F(Commit, WithoutTheHostNothingHappens) {
    services.Withhold<IHostDeviceHelper>();
    EXPECT_EQ(CommitCellText(Var("H00-01"), "1", 0, 0), COMMIT_IGNORED);
    services.Withhold<IHostDeviceHelper>(false);
    services.Withhold<IHostVarUtil>();
    EXPECT_EQ(CommitCellText(Var("H00-01"), "1", 0, 0), COMMIT_IGNORED);
    EXPECT_EQ(CommitCellText(Var("H00-01"), "1", 1, 1), COMMIT_IGNORED);
    services.Withhold<IHostVarUtil>(false);
    services.Withhold<IHostProjectRoot>();
    EXPECT_EQ(CommitCellText(Var("H00-01"), "1", 1, 1), COMMIT_REFUSED)
        << "no module to check against";
    EXPECT_TRUE(helper.writes.empty());
    EXPECT_EQ(prompts.Count(AfxPrompt::MessageBox), 0u);
}

} // namespace
