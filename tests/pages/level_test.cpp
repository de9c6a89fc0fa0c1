// The demo servo seen by a user who logs in: the list and the tree follow the level the
// drive grants, through the access box, the login dialog and the authority poll.
#include "TempDir.h"
#include "page_fixture.h"

#include "groups/LoginDialog.h"

namespace pt {
namespace {

// The items from `first` on and all below them, expanded or not.
int CountTreeItems(CTreeCtrl& tree, HTREEITEM first) {
    int n = 0;
    for (HTREEITEM h = first; h != nullptr; h = tree.GetNextSiblingItem(h))
        n += 1 + CountTreeItems(tree, tree.GetChildItem(h));
    return n;
}

class LevelTest : public ServoPageTest {
protected:
    // Chooses entry `index` of the access box as a user does.
    void Choose(int index) {
        CNoWheelComboBox& box = Page().GetAccessBox();
        box.SetCurSel(index);
        Page().SendMessage(WM_COMMAND, MAKEWPARAM(IDC_PAGE_ACCESS, CBN_SELCHANGE),
                           LPARAM(box.GetSafeHwnd()));
    }
    // One read of the drive, then the 2 s poll of its authority.
    void ReadAndPoll() {
        ReadCycle();
        Page().PollAuthority();
        Pump();
    }
};

TEST_F(LevelTest, LoggingInWithTheFactoryCodeBringsTheHiddenGroupsAndRows) {
    // A user of the basic level, as the drive grants after power-on.
    table->ApplyAccessLevel(module, 1);
    ReadAndPoll();
    ASSERT_EQ(module->GetAccessLevel(), 1);
    const int rowsBefore = Page().GetShownCount();
    const int itemsBefore = CountTreeItems(table->GetTree(), table->GetTree().GetRootItem());
    ShootIfAsked(&parent, "level_before.png");

    int dialogs = 0;
    CAfxModalDriver driver([&](CDialog& dlg) {
        ++dialogs;
        AfxTestTypeText(dlg.GetDlgItem(IDC_LOGIN_PASSWORD), "2468");
        static_cast<CButton*>(dlg.GetDlgItem(IDOK))->Click();
    });
    Choose(3); // "厂家参数"
    EXPECT_EQ(dialogs, 1);
    // The code went to the drive; the tool's level rises once the drive says so.
    ReadAndPoll();
    EXPECT_EQ(module->GetAccessLevel(), 3);
    EXPECT_GT(Page().GetShownCount(), rowsBefore);
    EXPECT_GT(CountTreeItems(table->GetTree(), table->GetTree().GetRootItem()), itemsBefore);
    ShootIfAsked(&parent, "level_after.png");
}

} // namespace
} // namespace pt
