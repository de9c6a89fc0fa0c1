// The demo servo seen by a user who logs in: the list and the tree follow the level the
// drive grants, through the access box, the login dialog and the authority poll.
#include "TempDir.h"
#include "page_fixture.h"

#include "groups/LoginDialog.h"

#include <afx/afxtest.h>

#include <vector>

namespace pt {
namespace {

int CountTreeItems(CTreeCtrl& tree) {
    int n = 0;
    // Depth-first over every item, expanded or not.
    std::vector<HTREEITEM> stack;
    for (HTREEITEM h = tree.GetRootItem(); h != nullptr; h = tree.GetNextSiblingItem(h))
        stack.push_back(h);
    while (!stack.empty()) {
        HTREEITEM h = stack.back();
        stack.pop_back();
        ++n;
        for (HTREEITEM c = tree.GetChildItem(h); c != nullptr; c = tree.GetNextSiblingItem(c))
            stack.push_back(c);
    }
    return n;
}

class LevelTest : public PageTest {
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
    OpenFrame("ZD3S");
    // A user of the basic level, as the drive grants after power-on.
    table->ApplyAccessLevel(module, 1);
    ReadAndPoll();
    ASSERT_EQ(module->GetAccessLevel(), 1);
    const int rowsBefore = Page().GetShownCount();
    const int itemsBefore = CountTreeItems(table->GetTree());
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
    EXPECT_GT(CountTreeItems(table->GetTree()), itemsBefore);
    ShootIfAsked(&parent, "level_after.png");
}

} // namespace
} // namespace pt
