// Limits: accepted on both ends, refused just outside with the one English text, linked
// limits read from the drive, the type's own range, and no answer without the host.
#include "values/ValueText.h"
#include "values_fixture.h"

#include <limits>

using namespace VarText;

namespace {

class Limits : public ValuesTest {};

TEST_F(Limits, ApplyLimitsAcceptsBothEndsAndGivesTheRawFigure) {
    std::vector<CString> errors;
    Variant out;
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
}

TEST_F(Limits, ApplyLimitsRefusesJustOutsideWithTheExactText) {
    std::vector<CString> errors;
    Variant out;
    EXPECT_FALSE(ApplyLimits(1, VT_I2, 300.0, -300.0, Variant::R8(300.1), out, errors));
    EXPECT_FALSE(ApplyLimits(0, VT_I2, 32767, -32768, Variant::R8(-32769), out, errors));
    EXPECT_FALSE(ApplyLimits(0, VT_UI4, 4294967295.0, 0, Variant::R8(4294967296.0), out, errors));
    ASSERT_EQ(errors.size(), 3u);
    EXPECT_EQ(errors[0], CString("Over the limit,value = 300.1,[min = -300,max = 300]"));
    EXPECT_EQ(errors[1], CString("Over the limit,value = -32769,[min = -32768,max = 32767]"));
    EXPECT_EQ(errors[2], CString("Over the limit,value = 4294967296,[min = 0,max = 4294967295]"));
    EXPECT_TRUE(ApplyLimits(0, VT_UI4, 4294967295.0, 0, Variant::R8(4294967295.0), out, errors));
    EXPECT_TRUE(ApplyLimits(0, VT_I2, 32767, -32768, Variant::R8(-32768), out, errors));
}

TEST_F(Limits, NaNIsNeverInside) {
    std::vector<CString> errors;
    Variant out;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(ApplyLimits(0, VT_R8, 1e300, -1e300, Variant::R8(nan), out, errors));
    EXPECT_FALSE(CheckEditedValue("M1", 0x001C, VT_R8, Variant::R8(nan), out, errors));
    EXPECT_EQ(errors.size(), 2u);
}

TEST_F(Limits, CheckEditedValueTakesTheParametersOwnLimits) {
    std::vector<CString> errors;
    Variant out;
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

TEST_F(Limits, LinkedLimitsAreTheTargetsLiveValueFromTheDrive) {
    std::vector<CString> errors;
    Variant out;
    helper.driveValues[0x000C] = Variant::UI2(2500); // H00-12, the maximum of H00-11
    EXPECT_TRUE(CheckEditedValue("M1", 0x000B, VT_UI2, Variant::R8(2500), out, errors));
    EXPECT_EQ(out, Variant::UI2(2500));
    EXPECT_FALSE(CheckEditedValue("M1", 0x000B, VT_UI2, Variant::R8(2501), out, errors));
    EXPECT_EQ(errors.back(), CString("Over the limit,value = 2501,[min = 0,max = 2500]"));
    ASSERT_FALSE(helper.reads.empty());
    EXPECT_EQ(helper.reads.back().address, 0x000Cu);
    EXPECT_EQ(helper.reads.back().dataType, int(VT_UI2));

    // A linked minimum with decimals on the target: H00-01 holding -1000 means -100.0.
    helper.driveValues[0x0001] = Variant::I2(-1000);
    EXPECT_TRUE(CheckEditedValue("M1", 0x0012, VT_I2, Variant::R8(-100), out, errors));
    EXPECT_FALSE(CheckEditedValue("M1", 0x0012, VT_I2, Variant::R8(-101), out, errors));

    // A target the drive doesn't answer for counts as 0.
    helper.driveValues.erase(0x000C);
    EXPECT_TRUE(CheckEditedValue("M1", 0x000B, VT_UI2, Variant::R8(0), out, errors));
    EXPECT_FALSE(CheckEditedValue("M1", 0x000B, VT_UI2, Variant::R8(1), out, errors));
}

TEST_F(Limits, NoModuleVariableOrServiceMeansNoAnswer) {
    std::vector<CString> errors;
    Variant out;
    EXPECT_FALSE(CheckEditedValue("M9", 0x0001, VT_I2, Variant::R8(1), out, errors));
    EXPECT_FALSE(CheckEditedValue("M1", 0x7777, VT_I2, Variant::R8(1), out, errors));
    services.Withhold<IHostProjectRoot>();
    EXPECT_FALSE(CheckEditedValue("M1", 0x0001, VT_I2, Variant::R8(1), out, errors));
    services.Withhold<IHostProjectRoot>(false);
    services.Withhold<IHostVarUtil>();
    EXPECT_FALSE(CheckEditedValue("M1", 0x0001, VT_I2, Variant::R8(1), out, errors));
    EXPECT_FALSE(ApplyLimits(0, VT_I2, 10, 0, Variant::R8(1), out, errors));
    EXPECT_TRUE(errors.empty()) << "quiet: nothing to tell without a host";
}

} // namespace
