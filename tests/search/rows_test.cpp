// The context menus of both pages, the monitor command, removing rows from a custom group
// and the column dialog.
#include "page_fixture.h"

#include "pages/ConfigListDlg.h"
#include "pages/RowCommands.h"

namespace pt {
namespace {

class RowsTest : public ServoPageTest {
protected:
    void Select(CVarTablePageBase& page, std::initializer_list<int> rows) {
        page.GetList().SetItemState(-1, 0, LVIS_SELECTED);
        for (int row : rows)
            page.GetList().SetItemState(row, LVIS_SELECTED, LVIS_SELECTED);
    }
    // The entries of the menu a right click shows, as "id:text" ("-" first when greyed).
    CString MenuOf(CVarTablePageBase& page) {
        page.OnListRightClick();
        const AfxPrompt* menu = prompts.Last(AfxPrompt::PopupMenu);
        CString all;
        for (int i = 0; menu != nullptr && i < menu->menuItems.GetSize(); ++i)
            all += menu->menuItems[i] + "|";
        return all;
    }
};

TEST_F(RowsTest, MenuByPageAndSelection) {
    Page2().ShowAllParameters(Store());
    struct Case {
        bool firstPage;
        int inCustomOrModified;
        const char* starts;
    };
    const Case cases[] = {
        {true, 0, "2004:添加到监控列表|2107:导出|32817:筛选列|"},
        {false, 0, "2004:添加到监控列表|2105:下载勾选项|2103:全选|2099:取消全选|"},
        {true, 1, "2004:添加到监控列表|2097:编辑列表|2109:移除参数|"},
        {false, 1, "2004:添加到监控列表|2109:移除参数|"},
    };
    for (const Case& c : cases) {
        CVarTablePageBase& page = c.firstPage ? static_cast<CVarTablePageBase&>(Page()) : Page2();
        table->inCustomOrModified = c.inCustomOrModified;
        Select(page, {2});
        CString shown = MenuOf(page);
        SCOPED_TRACE(shown.GetString());
        EXPECT_EQ(shown.Find(c.starts), 0);
        // Nothing selected: the monitor entry is greyed.
        Select(page, {});
        shown = MenuOf(page);
        EXPECT_EQ(shown.Find("-2004:"), 0);
    }
    // The column dialog is on both menus without a custom selection.
    table->inCustomOrModified = 0;
    EXPECT_GE(MenuOf(Page()).Find("32817:筛选列"), 0);
    EXPECT_GE(MenuOf(Page2()).Find("32817:筛选列"), 0);
}

TEST_F(RowsTest, MonitorGetsTheSelectionOnceInRowOrder) {
    host.Access().ClearWatchList("ZD3S");
    Select(Page(), {7, 1, 3});
    prompts.ChooseMenuCommand(ID_ADD_TO_MONITOR);
    Page().OnListRightClick();
    std::vector<UINT> expected = {Page().GetShownVar(1)->GetInstanceAddress(),
                                  Page().GetShownVar(3)->GetInstanceAddress(),
                                  Page().GetShownVar(7)->GetInstanceAddress()};
    EXPECT_EQ(host.Access().WatchList("ZD3S"), expected);
    // 300 rows with the list scrolled: all of them, the earlier ones standing once.
    Page().GetList().SetItemState(-1, 0, LVIS_SELECTED);
    for (int row = 0; row < 300; ++row)
        Page().GetList().SetItemState(row, LVIS_SELECTED, LVIS_SELECTED);
    Page().GetList().EnsureVisible(250, FALSE);
    Page().AddToMonitorList();
    const std::vector<UINT> watched = host.Access().WatchList("ZD3S");
    ASSERT_EQ(watched.size(), 300u);
    EXPECT_EQ(watched[0], expected[0]);
    EXPECT_EQ(watched[3], Page().GetShownVar(0)->GetInstanceAddress());
}

TEST_F(RowsTest, RemoveRowsKeepsTheOtherMembers) {
    IGroupSet* custom = Store()->GetGroupRoot(1);
    ASSERT_NE(custom, nullptr);
    IGroupNode* group = custom->NewGroup();
    group->SetName("tuning");
    IGroupNode* child = custom->NewGroup();
    child->SetName("inner");
    for (const char* code : {"H00-10", "H02-04"}) {
        CString key;
        Var(code)->GetInstanceGuid(key);
        group->AddMember(key);
    }
    CString inner;
    Var("H03-02")->GetInstanceGuid(inner);
    child->AddMember(inner);
    ASSERT_TRUE(group->AddChild(child));
    ASSERT_TRUE(custom->AddGroup(group));
    table->ReloadModule();
    HTREEITEM item = table->GetTree().GetChildItem(table->GetCustomItem());
    ASSERT_NE(item, nullptr);
    table->GetTree().SelectItem(item);
    ASSERT_EQ(table->GetCurrentCustomGroup(), group);
    ASSERT_EQ(Page().GetShownCount(), 3);
    // H02-04 of the group itself and H03-02 of its child go; a No first changes nothing.
    Select(Page(), {RowOf("H02-04"), RowOf("H03-02")});
    prompts.AnswerMessageBox(IDNO);
    Page().RemoveRows();
    EXPECT_EQ(group->GetMemberCount(), 2);
    EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->text, "确定删除2个对象吗?");
    prompts.AnswerMessageBox(IDYES);
    Page().RemoveRows();
    EXPECT_EQ(group->GetMemberCount(), 1);
    EXPECT_EQ(child->GetMemberCount(), 0);
    ASSERT_EQ(Page().GetShownCount(), 1);
    EXPECT_GE(RowOf("H00-10"), 0);
}

TEST_F(RowsTest, ColumnChoicesSurviveATreeSelection) {
    CListCtrlEx& list = Page().GetList();
    const int name = 2;
    const int dec = 11;
    ASSERT_EQ(list.GetColumnWidth(dec), 0);
    list.SetColumnWidth(name, 300); // widened by the user, then hidden and brought back
    auto run = [&](std::function<void(CDialog&)> act) {
        CAfxModalDriver driver(std::move(act));
        Page().ChooseColumns();
    };
    run([&](CDialog& d) {
        EXPECT_EQ(d.IsDlgButtonChecked(2164), 0u); // "通讯地址(Dec)" starts hidden
        EXPECT_EQ(d.IsDlgButtonChecked(2085), 1u);
        d.CheckDlgButton(2164, BST_CHECKED);
        d.CheckDlgButton(2085, BST_UNCHECKED);
        d.SendMessage(WM_COMMAND, IDOK, 0);
    });
    // Back at 80, or as wide as its title needs.
    const int shown = list.GetColumnWidth(dec);
    EXPECT_GE(shown, 80);
    EXPECT_EQ(list.GetColumnWidth(name), 0);
    ShowGroup("H03");
    EXPECT_EQ(list.GetColumnWidth(dec), shown);
    EXPECT_EQ(list.GetColumnWidth(name), 0);
    // Cancel after changing ticks leaves every width alone.
    run([&](CDialog& d) {
        d.CheckDlgButton(2085, BST_CHECKED);
        d.SendMessage(WM_COMMAND, IDCANCEL, 0);
    });
    EXPECT_EQ(list.GetColumnWidth(name), 0);
    run([&](CDialog& d) {
        d.CheckDlgButton(2085, BST_CHECKED);
        d.SendMessage(WM_COMMAND, IDOK, 0);
    });
    EXPECT_EQ(list.GetColumnWidth(name), Page().GetColumnWidths()[size_t(name)]);
    EXPECT_NE(list.GetColumnWidth(name), 300);
}

} // namespace
} // namespace pt
