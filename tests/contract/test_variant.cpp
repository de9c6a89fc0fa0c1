#include "module/host/Variant.h"

#include <gtest/gtest.h>

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
