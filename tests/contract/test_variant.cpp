#include "module/host/Variant.h"

#include <gtest/gtest.h>

TEST(Variant, TypedConstructorsSetTagAndPayload) {
    EXPECT_EQ(Variant().vt, VT_EMPTY);
    EXPECT_EQ(Variant::Null().vt, VT_NULL);

    const Variant i2 = Variant::I2(-2);
    EXPECT_EQ(i2.vt, VT_I2);
    EXPECT_EQ(i2.iVal, -2);
    const Variant i4 = Variant::I4(-70000);
    EXPECT_EQ(i4.vt, VT_I4);
    EXPECT_EQ(i4.lVal, -70000);
    const Variant r4 = Variant::R4(1.5f);
    EXPECT_EQ(r4.vt, VT_R4);
    EXPECT_EQ(r4.fltVal, 1.5f);
    const Variant r8 = Variant::R8(-0.25);
    EXPECT_EQ(r8.vt, VT_R8);
    EXPECT_EQ(r8.dblVal, -0.25);
    const Variant date = Variant::Date(45000.5);
    EXPECT_EQ(date.vt, VT_DATE);
    EXPECT_EQ(date.date, 45000.5);
    const Variant text = Variant::Str("参数");
    EXPECT_EQ(text.vt, VT_BSTR);
    EXPECT_EQ(text.bstrVal, "参数");
    EXPECT_EQ(Variant::Bool(true).vt, VT_BOOL);
    EXPECT_EQ(Variant::Bool(true).boolVal, VARIANT_TRUE);
    EXPECT_EQ(Variant::Bool(false).boolVal, VARIANT_FALSE);
    const Variant i1 = Variant::I1(-128);
    EXPECT_EQ(i1.vt, VT_I1);
    EXPECT_EQ(i1.cVal, -128);
    const Variant ui1 = Variant::UI1(255);
    EXPECT_EQ(ui1.vt, VT_UI1);
    EXPECT_EQ(ui1.bVal, 255);
    const Variant ui2 = Variant::UI2(65535);
    EXPECT_EQ(ui2.vt, VT_UI2);
    EXPECT_EQ(ui2.uiVal, 65535);
    const Variant ui4 = Variant::UI4(0xFFFFFFFFu);
    EXPECT_EQ(ui4.vt, VT_UI4);
    EXPECT_EQ(ui4.ulVal, 0xFFFFFFFFu);

    // The "tag preset" form starts at zero.
    const Variant preset = Variant::OfType(VT_R8);
    EXPECT_EQ(preset.vt, VT_R8);
    EXPECT_EQ(preset.dblVal, 0.0);
}

TEST(Variant, TagValuesAreTheAutomationOnes) {
    // Tags travel to the host and into files as numbers; they must not drift.
    EXPECT_EQ(VT_EMPTY, 0);
    EXPECT_EQ(VT_NULL, 1);
    EXPECT_EQ(VT_I2, 2);
    EXPECT_EQ(VT_I4, 3);
    EXPECT_EQ(VT_R4, 4);
    EXPECT_EQ(VT_R8, 5);
    EXPECT_EQ(VT_DATE, 7);
    EXPECT_EQ(VT_BSTR, 8);
    EXPECT_EQ(VT_BOOL, 11);
    EXPECT_EQ(VT_I1, 16);
    EXPECT_EQ(VT_UI1, 17);
    EXPECT_EQ(VT_UI2, 18);
    EXPECT_EQ(VT_UI4, 19);
}

TEST(Variant, CopiesOwnTheirText) {
    Variant original = Variant::Str("H00-10");
    Variant copy = original;
    copy.bstrVal += "x";
    EXPECT_EQ(original.bstrVal, "H00-10");
    EXPECT_EQ(copy.bstrVal, "H00-10x");

    Variant assigned;
    assigned = original;
    original.bstrVal = "changed";
    EXPECT_EQ(assigned.vt, VT_BSTR);
    EXPECT_EQ(assigned.bstrVal, "H00-10");

    // A number written over a text leaves no text behind.
    assigned = Variant::I4(7);
    EXPECT_EQ(assigned.vt, VT_I4);
    EXPECT_TRUE(assigned.bstrVal.IsEmpty());
}

TEST(Variant, EmptinessAndClear) {
    EXPECT_TRUE(Variant().IsEmpty());
    EXPECT_TRUE(Variant().IsEmptyOrNull());
    EXPECT_FALSE(Variant::Null().IsEmpty());
    EXPECT_TRUE(Variant::Null().IsEmptyOrNull());
    EXPECT_FALSE(Variant::I4(0).IsEmptyOrNull()) << "zero is a value";
    EXPECT_FALSE(Variant::Str("").IsEmptyOrNull()) << "an empty text is a value";

    Variant v = Variant::Str("abc");
    v.Clear();
    EXPECT_TRUE(v.IsEmpty());
    EXPECT_TRUE(v.bstrVal.IsEmpty());
}

TEST(Variant, EqualityIsExactOnTagAndPayload) {
    EXPECT_EQ(Variant::I4(1), Variant::I4(1));
    EXPECT_NE(Variant::I4(1), Variant::I4(2));
    EXPECT_NE(Variant::I4(1), Variant::UI4(1)) << "no conversion between tags";
    EXPECT_NE(Variant::R4(1.0f), Variant::R8(1.0));
    EXPECT_EQ(Variant::Str("a"), Variant::Str("a"));
    EXPECT_NE(Variant::Str("a"), Variant::Str("A"));
    EXPECT_EQ(Variant(), Variant());
    EXPECT_NE(Variant(), Variant::Null());
    EXPECT_EQ(Variant::Bool(true), Variant::Bool(true));
    EXPECT_NE(Variant::Bool(true), Variant::Bool(false));
    EXPECT_EQ(Variant::I2(-1), Variant::I2(-1));
    EXPECT_NE(Variant::UI2(1), Variant::UI2(2));
    EXPECT_NE(Variant::I1(1), Variant::UI1(1));
    EXPECT_NE(Variant::Date(1.0), Variant::Date(2.0));
}
