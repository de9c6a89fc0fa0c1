// The commit of an edited value cell and the limits it is checked against: the live list
// writes to the drive at once, the staging list stores a set value; hexadecimal and per-unit
// texts are turned into the parameter's raw figure first. Limits are accepted on both ends,
// refused just outside with the one English text, linked limits are read from the drive.
// The live list's figures are checked where they land: on the simulated drive.
#include "values/ValueText.h"
#include "values_fixture.h"

#include <limits>

using namespace VarText;

namespace {

class Commit : public ValuesTest {
protected:
    CAfxRecordingResponder prompts;
    std::vector<CString> errors; // of the limit checks
    Variant out;

    // Types `text` into the live list's cell of `code`; what the drive then holds.
    double Written(const char* code, const char* text) {
        EXPECT_EQ(CommitCellText(Var(code), text, 0, 0), COMMIT_WRITTEN) << code << " " << text;
        return OnDrive(code);
    }
};

TEST_F(Commit, TheLiveListWritesTheRawFigureAtOnce) {
    EXPECT_EQ(Written("H00-01", "150.5"), 1505.0);
    // What the drive cannot tell: the request's type, mode, time-out and tries.
    ASSERT_EQ(helper.writes.size(), 1u);
    const auto& w = helper.writes[0];
    EXPECT_EQ(w.dataType, int(VT_I2));
    EXPECT_EQ(w.mode, 1);
    EXPECT_EQ(w.timeout_ms, 200);
    EXPECT_EQ(w.tries, 3);
    EXPECT_EQ(prompts.Count(AfxPrompt::MessageBox), 0u) << "success shows nothing";
    EXPECT_EQ(Var("H00-01")->GetValue(), Variant::I2(1000)) << "the next refresh shows it";

    // Figures finer than the parameter's resolution are rounded to it.
    EXPECT_EQ(Written("H00-01", " -0.06 "), -1.0);
    EXPECT_EQ(Written("H00-16", "-3.2768"), -32768.0);
    EXPECT_EQ(Written("H00-26", "4294967295"), 4294967295.0);
    EXPECT_EQ(Written("H00-28", "0.1234"), 0.1234) << "reals are not rounded";
}

TEST_F(Commit, AValueEqualToTheCurrentOneWritesNothing) {
    IVarObjEx* torque = Var("H00-01"); // holds 100.0
    EXPECT_EQ(CommitCellText(torque, "100", 0, 0), COMMIT_UNCHANGED);
    EXPECT_EQ(CommitCellText(torque, "100.0", 0, 0), COMMIT_UNCHANGED);
    EXPECT_EQ(CommitCellText(torque, "100.04", 0, 0), COMMIT_UNCHANGED) << "same raw figure";
    EXPECT_EQ(CommitCellText(Var("H00-03"), "0xFFFF", 0, 0), COMMIT_UNCHANGED)
        << "the hexadecimal text of -1 is -1";
    EXPECT_EQ(DriveWrites(), 0u);
    torque->SetValue(Variant());
    EXPECT_EQ(CommitCellText(torque, "0", 0, 0), COMMIT_WRITTEN) << "no value yet: written";
}

// Placeholders and texts that are no whole figure are ignored: a cut or broken hexadecimal
// text would put another number into the drive.
TEST_F(Commit, PlaceholdersAndTextsThatAreNoWholeFigureAreIgnored) {
    IVarObjEx* torque = Var("H00-01");
    for (const char* text : {"", "   ", "---", "-", "abc", "1,5", "nan", "inf", "1e999", "0x"})
        EXPECT_EQ(CommitCellText(torque, text, 0, 0), COMMIT_IGNORED) << text;
    EXPECT_EQ(CommitCellText(nullptr, "1", 0, 0), COMMIT_IGNORED);
    for (const char* text : {"12G4", "123456789", "0x", "-1", "ＦＦ"})
        EXPECT_EQ(CommitCellText(Var("H00-20"), text, 0, 0), COMMIT_IGNORED) << text;
    EXPECT_EQ(DriveWrites(), 0u);
    EXPECT_EQ(prompts.Count(AfxPrompt::MessageBox), 0u);

    EXPECT_EQ(Written("H00-20", "0x00ff"), 255.0);
    EXPECT_EQ(Written("H00-20", "FFFF FFFF"), 4294967295.0);
}

// The live list leaves the limits to the drive: its refusal is what the user reads.
TEST_F(Commit, ARefusedWriteShowsTheDrivesReason) {
    host.SetEnglish(true);
    EXPECT_EQ(CommitCellText(Var("H00-01"), "300.1", 0, 0), COMMIT_WRITE_FAILED);
    EXPECT_EQ(OnDrive("H00-01"), 1000.0);
    ASSERT_EQ(prompts.Count(AfxPrompt::MessageBox), 1u);
    const AfxPrompt* box = prompts.Last(AfxPrompt::MessageBox);
    EXPECT_EQ(box->text, CString("H00-01: value out of range (-300.0 to 300.0)"));
    EXPECT_EQ(box->caption, CString("<2037>")) << "the caption is string 2037";
    EXPECT_EQ(box->Buttons(), UINT(MB_OK));
}

// The figure is typed in the scale the row shows; the drive gets the raw figure. The scale of
// each type is the one the texts show, which the texts' tests pin for 32 bits and reals.
TEST_F(Commit, PerUnitFiguresAreTypedInTheScaleShown) {
    IVarObjEx* current = Var("H00-07"); // i16, 4096 = 100 %
    current->SetPerUnitMode(PER_UNIT_PERCENT);
    EXPECT_EQ(Written("H00-07", "50"), 2048.0);
    EXPECT_EQ(CommitCellText(current, "100.00", 0, 0), COMMIT_UNCHANGED);
    EXPECT_EQ(DriveWrites(), 1u);

    // No base, no engineering commit: the drive doesn't answer for the base, or a further
    // base (H00-12, holding 3000) is named but without a scale.
    drive->SetFailure(zorhost::sim::FailureMode::FailReads, {0x000A});
    current->SetPerUnitMode(2);
    EXPECT_EQ(CommitCellText(current, "15", 0, 0), COMMIT_REFUSED);
    EXPECT_EQ(CommitCellText(current, "0.00", 0, 0), COMMIT_REFUSED) << "the cell's own text";
    current->SetPerUnitMode(3);
    EXPECT_EQ(CommitCellText(current, "15", 0, 0), COMMIT_REFUSED);
    EXPECT_EQ(DriveWrites(), 0u);

    drive->ClearFailures();
    current->SetPerUnitMode(2); // base H00-10 = 30 A
    EXPECT_EQ(Written("H00-07", "7.5"), 1024.0) << "written to the parameter, not the base";

    current->SetPerUnitMode(0);
    EXPECT_EQ(Written("H00-07", "1000"), 1000.0);
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
    EXPECT_EQ(DriveWrites(), 0u) << "nothing goes to the drive";

    // Outside the limits: dropped without a word.
    EXPECT_EQ(CommitCellText(torque, "300.1", 1, 1), COMMIT_REFUSED);
    EXPECT_EQ(torque->GetSetValue(), Variant::I2(-3000));
    EXPECT_EQ(prompts.Count(AfxPrompt::MessageBox), 0u);

    // The staging list reads hexadecimal whatever the value's meaning.
    EXPECT_EQ(CommitCellText(Var("H00-20"), "0x10", 1, 1), COMMIT_STAGED);
    EXPECT_EQ(Var("H00-20")->GetSetValue(), Variant::UI4(16));

    // Connector values pass the limit check but not the type's range.
    IVarObjEx* source = Var("H00-13"); // u16 connector: its value is an address
    EXPECT_EQ(CommitCellText(source, "2012", 1, 1), COMMIT_STAGED);
    EXPECT_EQ(source->GetSetValue(), Variant::UI2(2012));
    EXPECT_EQ(CommitCellText(source, "70000", 1, 1), COMMIT_REFUSED);
    EXPECT_EQ(source->GetSetValue(), Variant::UI2(2012));
}

TEST_F(Commit, ApplyLimitsAcceptsBothEndsAndRefusesJustOutsideWithTheExactText) {
    EXPECT_TRUE(ApplyLimits(1, VT_I2, 300.0, -300.0, Variant::R8(300.0), out, errors));
    EXPECT_EQ(out, Variant::R8(3000.0)) << "raw figure under the tag of the source";
    EXPECT_TRUE(ApplyLimits(1, VT_I2, 300.0, -300.0, Variant::R8(-300.0), out, errors));
    EXPECT_EQ(out, Variant::R8(-3000.0));
    EXPECT_TRUE(ApplyLimits(1, VT_I2, 300.0, -300.0, Variant::I2(3000), out, errors))
        << "a raw figure of the type is scaled like the host holds it";
    EXPECT_EQ(out, Variant::I2(3000));
    EXPECT_TRUE(ApplyLimits(3, VT_R8, 1.5, -1.5, Variant::R8(1.5), out, errors));
    EXPECT_EQ(out, Variant::R8(1.5)) << "reals keep the figure itself";
    EXPECT_TRUE(ApplyLimits(-1, VT_I2, 10, 0, Variant::R8(5), out, errors));
    EXPECT_EQ(out, Variant::R8(5)) << "negative decimals leave the value as it is";
    EXPECT_TRUE(errors.empty());

    // Just outside: refused with the exact text.
    EXPECT_FALSE(ApplyLimits(1, VT_I2, 300.0, -300.0, Variant::R8(300.1), out, errors));
    EXPECT_FALSE(ApplyLimits(0, VT_I2, 32767, -32768, Variant::R8(-32769), out, errors));
    EXPECT_FALSE(ApplyLimits(0, VT_UI4, 4294967295.0, 0, Variant::R8(4294967296.0), out, errors));
    ASSERT_EQ(errors.size(), 3u);
    EXPECT_EQ(errors[0], CString("Over the limit,value = 300.1,[min = -300,max = 300]"));
    EXPECT_EQ(errors[1], CString("Over the limit,value = -32769,[min = -32768,max = 32767]"));
    EXPECT_EQ(errors[2], CString("Over the limit,value = 4294967296,[min = 0,max = 4294967295]"));
    EXPECT_TRUE(ApplyLimits(0, VT_UI4, 4294967295.0, 0, Variant::R8(4294967295.0), out, errors));
    EXPECT_TRUE(ApplyLimits(0, VT_I2, 32767, -32768, Variant::R8(-32768), out, errors));
    // NaN is never inside.
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(ApplyLimits(0, VT_R8, 1e300, -1e300, Variant::R8(nan), out, errors));
    EXPECT_FALSE(CheckEditedValue("M1", 0x001C, VT_R8, Variant::R8(nan), out, errors));
    EXPECT_EQ(errors.size(), 5u);
}

TEST_F(Commit, CheckEditedValueTakesTheParametersOwnLimits) {
    // H00-01: i16, 1 decimal, -3000..3000 raw = -300.0..300.0
    EXPECT_TRUE(CheckEditedValue("M1", 0x0001, VT_I2, Variant::R8(300.0), out, errors));
    EXPECT_EQ(out, Variant::I2(3000)) << "the raw figure in the parameter's type";
    EXPECT_TRUE(CheckEditedValue("M1", 0x0001, VT_I2, Variant::R8(-300.0), out, errors));
    EXPECT_EQ(out, Variant::I2(-3000));
    EXPECT_TRUE(errors.empty());
    out = Variant::I2(7);
    EXPECT_FALSE(CheckEditedValue("M1", 0x0001, VT_I2, Variant::R8(300.1), out, errors));
    EXPECT_FALSE(CheckEditedValue("M1", 0x0001, VT_I2, Variant::R8(-300.1), out, errors));
    ASSERT_EQ(errors.size(), 2u);
    EXPECT_EQ(errors[0], CString("Over the limit,value = 300.1,[min = -300,max = 300]"));
    EXPECT_EQ(errors[1], CString("Over the limit,value = -300.1,[min = -300,max = 300]"));
    EXPECT_EQ(out, Variant::I2(7)) << "a refusal leaves the out value alone";

    // u32 up to its last figure; i16 with 4 decimals down to -3.2768.
    EXPECT_TRUE(CheckEditedValue("M1", 0x001A, VT_UI4, Variant::R8(4294967295.0), out, errors));
    EXPECT_EQ(out, Variant::UI4(4294967295u));
    EXPECT_TRUE(CheckEditedValue("M1", 0x0010, VT_I2, Variant::R8(-3.2768), out, errors));
    EXPECT_EQ(out, Variant::I2(-32768));
    EXPECT_FALSE(CheckEditedValue("M1", 0x0010, VT_I2, Variant::R8(3.2768), out, errors));
    EXPECT_EQ(errors.back(), CString("Over the limit,value = 3.2768,[min = -3.2768,max = 3.2767]"));
}

TEST_F(Commit, LinkedLimitsAreTheTargetsLiveValueFromTheDrive) {
    // H00-12, the maximum of H00-11, shows 3000 in the list; the drive holds 2500.
    drive->PokeRaw(0x000C, 2500);
    EXPECT_TRUE(CheckEditedValue("M1", 0x000B, VT_UI2, Variant::R8(2500), out, errors));
    EXPECT_EQ(out, Variant::UI2(2500));
    ASSERT_FALSE(CheckEditedValue("M1", 0x000B, VT_UI2, Variant::R8(2501), out, errors));
    EXPECT_EQ(errors.back(), CString("Over the limit,value = 2501,[min = 0,max = 2500]"));

    // A linked minimum with decimals on the target: H00-01 holding -1000 means -100.0.
    drive->PokeRaw(0x0001, -1000);
    EXPECT_TRUE(CheckEditedValue("M1", 0x0012, VT_I2, Variant::R8(-100), out, errors));
    EXPECT_FALSE(CheckEditedValue("M1", 0x0012, VT_I2, Variant::R8(-101), out, errors));

    // A target the drive doesn't answer for counts as 0.
    drive->SetFailure(zorhost::sim::FailureMode::FailReads, {0x000C});
    EXPECT_TRUE(CheckEditedValue("M1", 0x000B, VT_UI2, Variant::R8(0), out, errors));
    EXPECT_FALSE(CheckEditedValue("M1", 0x000B, VT_UI2, Variant::R8(1), out, errors));

    // On a multi-axis drive the limit is read from the target of the parameter's own axis.
    host.Drive("M4")->PokeRaw(Var("A2.H06-00", "M4")->GetInstanceAddress(), 4500);
    const UINT jog = Var("A2.H06-01", "M4")->GetInstanceAddress();
    EXPECT_TRUE(CheckEditedValue("M4", jog, VT_UI2, Variant::R8(4500), out, errors));
    EXPECT_FALSE(CheckEditedValue("M4", jog, VT_UI2, Variant::R8(4501), out, errors));
}

// Without the host or the module nothing is written, and a limit check says nothing.
TEST_F(Commit, WithoutTheHostOrTheModuleNothingHappens) {
    EXPECT_FALSE(CheckEditedValue("M9", 0x0001, VT_I2, Variant::R8(1), out, errors));
    EXPECT_FALSE(CheckEditedValue("M1", 0x7777, VT_I2, Variant::R8(1), out, errors));
    host.Services().Withhold<IHostDeviceHelper>();
    EXPECT_EQ(CommitCellText(Var("H00-01"), "1", 0, 0), COMMIT_IGNORED);
    host.Services().Withhold<IHostDeviceHelper>(false);
    host.Services().Withhold<IHostVarUtil>();
    EXPECT_EQ(CommitCellText(Var("H00-01"), "1", 0, 0), COMMIT_IGNORED);
    EXPECT_EQ(CommitCellText(Var("H00-01"), "1", 1, 1), COMMIT_IGNORED);
    EXPECT_FALSE(CheckEditedValue("M1", 0x0001, VT_I2, Variant::R8(1), out, errors));
    EXPECT_FALSE(ApplyLimits(0, VT_I2, 10, 0, Variant::R8(1), out, errors));
    host.Services().Withhold<IHostVarUtil>(false);
    host.Services().Withhold<IHostProjectRoot>();
    EXPECT_EQ(CommitCellText(Var("H00-01"), "1", 1, 1), COMMIT_REFUSED)
        << "no module to check against";
    EXPECT_FALSE(CheckEditedValue("M1", 0x0001, VT_I2, Variant::R8(1), out, errors));
    EXPECT_EQ(DriveWrites(), 0u);
    EXPECT_EQ(prompts.Count(AfxPrompt::MessageBox), 0u);
    EXPECT_TRUE(errors.empty()) << "quiet: nothing to tell without a host";
}

} // namespace
