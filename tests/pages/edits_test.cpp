// The character rules of the cell edits.
#include "controls/AMSEdit.h"

#include <gtest/gtest.h>

namespace {

CString Valid(const char* text, int whole, int decimals, BOOL negative) {
    return CAMSNumericEdit::ValidText(text, whole, decimals, negative);
}

TEST(NumericEditRules, OneWalkKeepsWhatFormsANumberOfTheAllowedShape) {
    EXPECT_EQ(Valid("-12.345", 16, 2, TRUE), "-12.34");
    EXPECT_EQ(Valid("-12", 16, 2, FALSE), "12");
    // A minus counts only in front.
    EXPECT_EQ(Valid("1-2", 16, 2, TRUE), "12");
    // Whole digits beyond the limit are dropped, the rest goes on.
    EXPECT_EQ(Valid("12345.6", 3, 1, FALSE), "123.6");
    // No decimals: the point ends the text.
    EXPECT_EQ(Valid("12.5", 9, 0, FALSE), "12");
    // A second point is dropped; letters too.
    EXPECT_EQ(Valid("1.2.3a", 9, 4, FALSE), "1.23");
    EXPECT_EQ(Valid("", 9, 4, TRUE), "");
}

TEST(AlphanumericEditRules, RefusedCharactersAndTheHexadecimalSet) {
    CAMSAlphanumericEdit edit;
    for (char c : std::string("%'*\"+?><:\\"))
        EXPECT_FALSE(edit.IsCharacterValid(UINT(c))) << c;
    EXPECT_TRUE(edit.IsCharacterValid('a'));
    edit.SetInvalidCharacters("~!@#$%^&*(){}[]|\\:;\"'<>,.?/"
                              "qwrtyuiopsghjklzvnmQWRTYUIOPSGHJKLZVNM");
    for (char c : std::string("0123456789abcdefABCDEFxX-+"))
        EXPECT_TRUE(edit.IsCharacterValid(UINT(c))) << c;
    for (char c : std::string("gGzZ.,"))
        EXPECT_FALSE(edit.IsCharacterValid(UINT(c))) << c;
}

} // namespace
