// The character rules of the cell edits, and the sorting list.
#include "controls/AMSEdit.h"
#include "page_fixture.h"
#include "pages/ListCtrlEx.h"

namespace {

// Typed key by key into the list's numeric cell edit, as a user types.
TEST(NumericCellEdit, TypedKeysKeepTheFirstPointAndEndAtThePlaces) {
    struct Row {
        int whole;
        int places;
        BOOL negative;
        const char* typed;
        const char* shown;
    };
    const Row rows[] = {
        {16, 0, TRUE, "12.5", "12."}, // the point ends the figure: never 125
        {16, 1, TRUE, "12.5", "12.5"},    {16, 2, TRUE, "12.5", "12.5"},
        {16, 2, TRUE, "12.345", "12.34"}, {16, 2, TRUE, "-12.5", "-12.5"},
        {16, 2, FALSE, "-12.5", "12.5"}, // no minus where negatives are refused
        {16, 2, FALSE, "7-", "7"},        {3, 1, FALSE, "12345.6", "123.6"},
        {16, 4, FALSE, "1.2.3a", "1.23"}, // a second point and letters are dropped
        {16, 2, TRUE, "12-5", "-5"},      // a minus starts a new negative figure
        {16, 2, TRUE, "--12", "-12"},
    };
    CWnd parent;
    ASSERT_TRUE(parent.Create(nullptr, "", WS_POPUP, CRect(0, 0, 200, 50), nullptr, 0));
    for (const Row& r : rows) {
        SCOPED_TRACE(testing::Message() << r.typed << " places " << r.places);
        CItemEdit edit;
        ASSERT_TRUE(edit.Create(WS_CHILD | WS_VISIBLE, CRect(0, 0, 200, 24), &parent, 1));
        edit.SetMaxWholeDigits(r.whole);
        edit.AllowNegative(r.negative);
        edit.SetMaxDecimalPlaces(r.places);
        edit.SetFocus();
        pt::TypeKeys(&edit, r.typed);
        EXPECT_EQ(edit.GetWindowTextString(), r.shown);
        edit.DestroyWindow();
    }
    // A minus key in the cell edit starts a new negative figure; the rule behind it still
    // drops a minus anywhere but in front.
    EXPECT_EQ(CAMSNumericEdit::ValidText("1-2", 16, 2, TRUE), "12");
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

class SortingList : public CVarListCtrlEx {
public:
    void ClickHeader(int column) {
        NMLISTVIEW nm{};
        nm.hdr.code = LVN_COLUMNCLICK;
        nm.iItem = -1;
        nm.iSubItem = column;
        LRESULT result = 0;
        OnChildNotify(WM_NOTIFY, 0, LPARAM(&nm), &result);
    }
};

TEST(VarListSorting, AHeaderClickSortsFlipsOnTheSameColumnAndLeavesColumnZero) {
    CWnd parent;
    ASSERT_TRUE(parent.Create(nullptr, "", WS_POPUP, CRect(0, 0, 300, 200), nullptr, 0));
    SortingList list;
    ASSERT_TRUE(list.Create(WS_CHILD | WS_VISIBLE | LVS_REPORT, CRect(0, 0, 300, 200), &parent, 1));
    list.InsertColumn(0, "row", LVCFMT_LEFT, 40);
    list.InsertColumn(1, "code", LVCFMT_LEFT, 80);
    const char* codes[] = {"H02", "H00", "H01"};
    for (int i = 0; i < 3; ++i) {
        list.InsertItem(i, std::to_string(3 - i).c_str());
        list.SetItemText(i, 1, codes[i]);
    }
    auto column = [&](int c) {
        std::string s;
        for (int i = 0; i < list.GetItemCount(); ++i)
            s += list.GetItemText(i, c).GetString() + std::string(" ");
        return s;
    };
    list.ClickHeader(0);
    EXPECT_EQ(column(1), "H02 H00 H01 ");
    list.ClickHeader(1);
    EXPECT_EQ(column(1), "H00 H01 H02 ");
    EXPECT_TRUE(list.IsSortedAscending());
    list.ClickHeader(1);
    EXPECT_EQ(column(1), "H02 H01 H00 ");
    EXPECT_FALSE(list.IsSortedAscending());
    list.DestroyWindow();
    parent.DestroyWindow();
}

} // namespace
