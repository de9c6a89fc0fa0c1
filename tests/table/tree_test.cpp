// The group tree: which groups get an item, how a rebuild keeps expansion and selection,
// how a selection reaches the page, and which variables a group collects.
#include "frame_fixture.h"

#include <afx/afxtest.h>

using namespace tt;

namespace {

using Texts = std::vector<std::string>;

class TreeTest : public FrameTest {};

// Only groups with at least one member that a list could show get an item.
TEST_F(TreeTest, GroupsWithoutListableMembersHaveNoItem) {
    ListedGroup("H02", "H02-00", 0x200);
    CGroupNode* notListed = ListedGroup("H03", "H03-00", 0x300);
    module->drive.VarOf("H03-00")->attr->modifyMode = 3;
    notListed->AddMember("H03-01");
    module->drive.AddParam("H03-01", 0x301)->modifyMode = 3;
    ListedGroup("H04", "H04-00", 0x400)->SetFlags(true, true);
    ListedGroup("H05", "H05-00", 0x500)->SetFlags(false, false);
    ListedGroup("H06", "H06-00", 0x600);
    module->drive.VarOf("H06-00")->attr->transferable = 0;
    ListedGroup("H07", "H07-00", 0x700);
    module->drive.VarOf("H07-00")->attr->fixed = 1;
    AddGroup(module->drive.groups, "H08")->AddMember("no-such-code");
    // Shown for its last member, after an unknown code and a fixed one.
    CGroupNode* late = AddGroup(module->drive.groups, "H10");
    for (const char* code : {"no-such-code", "H07-00", "H02-00"})
        late->AddMember(code);
    // A failing parent hides its children, whatever they hold.
    AddChildGroup(AddGroup(module->drive.groups, "H09"), "H09a")->AddMember("H02-00");
    OpenFrame();
    EXPECT_EQ(ChildTexts(table->GetAllItem()), (Texts{"H02", "H10"}));
}

// The fixed items stand in order and all parameters is selected; categories hold their
// groups, which do not repeat at the top level.
TEST_F(TreeTest, FixedItemsAndCategoriesHoldingTheirGroups) {
    ListedGroup("H02", "H02-00", 0x200);
    ListedGroup("H03", "H03-00", 0x300);
    ListedGroup("H04", "H04-00", 0x400)->SetAccessLevel(3);
    ListedGroup("H05", "H05-00", 0x500)->SetDescription("基本控制");
    AddCategory(module->drive.groups, "电机", {"H02"});
    // Above the level: the category gets nothing and goes again.
    AddCategory(module->drive.groups, "空类", {"H04"});
    // Named in another case: found by no exact lookup, yet not repeated at the top.
    AddCategory(module->drive.groups, "其他", {"h03"});
    OpenFrame();
    EXPECT_EQ(Tree().GetItemText(table->GetRootItem()), "参数组");
    EXPECT_EQ(ChildTexts(table->GetRootItem()), (Texts{"已修改参数", "自定义", "所有参数"}));
    EXPECT_EQ(SelectedText(), "所有参数");
    ASSERT_NE(g_pages[0], nullptr);
    EXPECT_EQ(g_pages[0]->calls.front(), "all");
    // A description makes the label "name[description]".
    EXPECT_EQ(ChildTexts(table->GetAllItem()), (Texts{"电机", "H05[基本控制]"}));
    HTREEITEM motorItem = FindChild(table->GetAllItem(), "电机");
    ASSERT_NE(motorItem, nullptr);
    EXPECT_EQ(ChildTexts(motorItem), (Texts{"H02"}));
}

TEST_F(TreeTest, RebuildRestoresSelectionAndExpansionButNeverTheModifiedItem) {
    AddChildGroup(ListedGroup("H02", "H02-00", 0x200), "H02a")->AddMember("H02-00");
    ListedGroup("H03", "H03-00", 0x300);
    OpenFrame();
    HTREEITEM h02 = FindChild(table->GetAllItem(), "H02");
    ASSERT_NE(h02, nullptr);
    Tree().Expand(h02, TVE_EXPAND);
    Tree().Expand(table->GetCustomItem(), TVE_COLLAPSE);
    Tree().SelectItem(FindChild(table->GetAllItem(), "H03"));

    table->ReloadModule();
    EXPECT_EQ(SelectedText(), "H03");
    h02 = FindChild(table->GetAllItem(), "H02");
    EXPECT_TRUE(Tree().GetItemState(h02, TVIS_EXPANDED) & TVIS_EXPANDED);
    EXPECT_FALSE(Tree().GetItemState(table->GetCustomItem(), TVIS_EXPANDED) & TVIS_EXPANDED);

    // On the modified item a rebuild lands on all parameters, without the sync question.
    CAfxRecordingResponder responder;
    responder.AnswerMessageBox(IDNO);
    Tree().SelectItem(table->GetModifiedItem());
    EXPECT_EQ(responder.Count(AfxPrompt::MessageBox), 1u);
    table->ReloadModule();
    EXPECT_EQ(SelectedText(), "所有参数");
    EXPECT_EQ(responder.Count(AfxPrompt::MessageBox), 1u);
}

TEST_F(TreeTest, AccessLevelChangesAddAndDropGroups) {
    ListedGroup("H02", "H02-00", 0x200);
    ListedGroup("H03", "H03-00", 0x300)->SetAccessLevel(2);
    ListedGroup("H04", "H04-00", 0x400);
    module->drive.VarOf("H04-00")->attr->level = 2; // only member above level 0
    OpenFrame();
    EXPECT_EQ(ChildTexts(table->GetAllItem()), (Texts{"H02"}));

    table->SetModuleAccessLevel("M1", 2);
    EXPECT_EQ(module->level, 2);
    EXPECT_EQ(ChildTexts(table->GetAllItem()), (Texts{"H02", "H03", "H04"}));
    Tree().SelectItem(FindChild(table->GetAllItem(), "H03"));

    // Going down drops the selected group: all parameters takes the selection.
    table->ApplyAccessLevel(module, 0);
    EXPECT_EQ(ChildTexts(table->GetAllItem()), (Texts{"H02"}));
    EXPECT_EQ(SelectedText(), "所有参数");
    ASSERT_FALSE(host.transfer.levels.empty());
    EXPECT_EQ(host.transfer.levels.back(), std::make_pair(CString("M1"), 0));
    // The shown module stays shown after the level change.
    EXPECT_EQ(table->GetModule(), module);
}

// Axes list their groups as the catalog does; custom groups are shown whatever they hold,
// children too.
TEST_F(TreeTest, AxesAndCustomGroupsAreListedAndSelectionCallsThePageOfTheListStyle) {
    CGroupNode* h02 = ListedGroup("H02", "H02-00", 0x200);
    AddCategory(module->drive.groups, "类", {"H02"});
    CGroupSet& axis = module->drive.axes.Add("轴1");
    AddGroup(axis, "H11")->AddMember("H02-00");
    AddGroup(axis, "H12")->AddMember("nothing");
    AddChildGroup(AddGroup(module->drive.custom, "我的"), "子组");
    OpenFrame();
    EXPECT_EQ(ChildTexts(table->GetAllItem()), (Texts{"类", "轴1"}));
    EXPECT_EQ(ChildTexts(FindChild(table->GetAllItem(), "轴1")), (Texts{"H11"}));
    EXPECT_EQ(ChildTexts(FindChild(table->GetCustomItem(), "我的")), (Texts{"子组"}));
    TestPage* page = g_pages[0];
    ASSERT_NE(page, nullptr);
    page->calls.clear();

    HTREEITEM category = FindChild(table->GetAllItem(), "类");
    Tree().SelectItem(FindChild(category, "H02"));
    EXPECT_EQ(table->GetCurrentCustomGroup(), h02);
    EXPECT_EQ(table->inCustomOrModified, 0);
    Tree().SelectItem(category);
    EXPECT_EQ(table->GetCurrentCustomGroup(), nullptr);
    Tree().SelectItem(FindChild(table->GetAllItem(), "轴1"));
    Tree().SelectItem(table->GetCustomItem());
    EXPECT_EQ(table->inCustomOrModified, 1);
    Tree().SelectItem(FindChild(table->GetCustomItem(), "我的"));
    EXPECT_EQ(table->inCustomOrModified, 1);
    EXPECT_EQ(page->calls, (Texts{"group:H02", "category", "axis", "custom", "group:我的"}));

    // Style 1 sends the same selection to the second page; the first hears nothing more.
    host.project.listStyle = 1;
    page->calls.clear();
    table->SelectListPage(1);
    ASSERT_NE(g_pages[1], nullptr);
    EXPECT_EQ(g_pages[1]->calls, (Texts{"group:我的"}));
    EXPECT_TRUE(page->calls.empty());

    // Another style fills no list at all.
    host.project.listStyle = 7;
    g_pages[1]->calls.clear();
    Tree().SelectItem(table->GetAllItem());
    EXPECT_TRUE(page->calls.empty());
    EXPECT_TRUE(g_pages[1]->calls.empty());
}

TEST_F(TreeTest, ModifiedItemAsksToSynchroniseUnlessToldNotTo) {
    ListedGroup("H02", "H02-00", 0x200);
    OpenFrame();
    TestPage* page = g_pages[0];
    CAfxRecordingResponder responder;
    responder.AnswerMessageBox(IDYES);
    Tree().SelectItem(table->GetModifiedItem());
    ASSERT_EQ(responder.Count(AfxPrompt::MessageBox), 1u);
    const AfxPrompt* box = responder.Last(AfxPrompt::MessageBox);
    EXPECT_EQ(box->text, "是否要从驱动器同步参数？");
    EXPECT_EQ(box->caption, "提示");
    EXPECT_EQ(box->Buttons(), UINT(MB_YESNO));
    EXPECT_EQ(box->Icon(), UINT(MB_ICONWARNING));
    EXPECT_EQ(page->calls.back(), "modified:2");

    responder.AnswerMessageBox(IDNO);
    Tree().SelectItem(table->GetAllItem());
    Tree().SelectItem(table->GetModifiedItem());
    EXPECT_EQ(page->calls.back(), "modified:0");

    // Toggled off through its menu command: no question, the known list.
    EXPECT_TRUE(table->OnFrameCommand(ID_TOGGLE_MODIFIED_PROMPT));
    Tree().SelectItem(table->GetAllItem());
    Tree().SelectItem(table->GetModifiedItem());
    EXPECT_EQ(responder.Count(AfxPrompt::MessageBox), 2u);
    EXPECT_EQ(page->calls.back(), "modified:0");
}

TEST_F(TreeTest, ContextMenusFollowTheItemUnderTheCursor) {
    ListedGroup("H02", "H02-00", 0x200);
    AddGroup(module->drive.custom, "我的");
    OpenFrame();
    TestPage* page = g_pages[0];
    CAfxRecordingResponder responder;
    auto centre = [&](HTREEITEM item) {
        CRect rc;
        Tree().GetItemRect(item, &rc, TRUE);
        return rc.CenterPoint();
    };

    // Right click on the modified item: selected without the question, menu 162.
    table->OnTreeContextMenu(centre(table->GetModifiedItem()));
    EXPECT_EQ(responder.Count(AfxPrompt::MessageBox), 0u);
    EXPECT_EQ(page->calls.back(), "modified:0");
    ASSERT_EQ(responder.Count(AfxPrompt::PopupMenu), 1u);
    auto offered = [&](const char* entry) {
        const CStringArray& items = responder.Last(AfxPrompt::PopupMenu)->menuItems;
        for (int i = 0; i < items.GetSize(); ++i)
            if (items[i] == entry)
                return true;
        return false;
    };
    EXPECT_TRUE(offered("32853:不再提示更新"));

    // The toggle taken from the menu flips its own text.
    responder.ChooseMenuCommand(ID_TOGGLE_MODIFIED_PROMPT);
    table->OnTreeContextMenu(centre(table->GetModifiedItem()));
    EXPECT_EQ(table->promptOnModified, 0);
    table->OnTreeContextMenu(centre(table->GetModifiedItem()));
    EXPECT_TRUE(offered("32853:恢复提示更新"));

    // On "自定义" delete and edit are never offered; the custom branch gets menu 1980.
    table->OnTreeContextMenu(centre(table->GetCustomItem()));
    EXPECT_EQ(responder.Count(AfxPrompt::PopupMenu), 4u);
    EXPECT_FALSE(table->IsTreeCommandEnabled(ID_DELETE_CUSTOM_GROUP, table->GetCustomItem()));
    EXPECT_FALSE(table->IsTreeCommandEnabled(ID_EDIT_CUSTOM_GROUP, table->GetCustomItem()));

    // Empty space selects nothing and opens nothing, whatever was selected before.
    const size_t menus = responder.Count(AfxPrompt::PopupMenu);
    table->OnTreeContextMenu(CPoint(5, 2000));
    EXPECT_EQ(responder.Count(AfxPrompt::PopupMenu), menus);
    EXPECT_EQ(SelectedText(), "自定义");
}

// ---------------------------------------------------------------- collection

class CollectTest : public FrameTest {};

TEST_F(CollectTest, FactoryGroupsHiddenAndUnlistedParametersAreLeftOut) {
    ListedGroup("H00", "H00-00", 0x000);
    ListedGroup("H01", "H01-00", 0x100);
    CGroupNode* h02 = ListedGroup("H02", "H02-00", 0x200);
    h02->AddMember("H02-01");
    module->drive.AddParam("H02-01", 0x201)->modifyMode = 3;
    h02->AddMember("H02-02");
    module->drive.AddParam("H02-02", 0x202)->hidden = 1;
    h02->AddMember("H02-03");
    module->drive.AddParam("H02-03", 0x203)->level = 1;
    // A child's members join the parent's list once each.
    CGroupNode* child = AddChildGroup(h02, "H00"); // the factory test is off below the top
    child->AddMember("H02-00");
    child->AddMember("H02-04");
    module->drive.AddParam("H02-04", 0x204);
    // Axes come after the catalog's groups.
    module->drive.AddParam("A1-00", 0x1000);
    AddGroup(module->drive.axes.Add("轴1"), "A1")->AddMember("A1-00");

    auto codes = [&](BOOL includeFactory) {
        std::vector<IVarObjEx*> list;
        table->CollectAllVars(list, includeFactory);
        std::vector<std::string> out;
        for (IVarObjEx* v : list) {
            CString code;
            v->GetAttr()->GetCode(code);
            out.emplace_back(code.GetString());
        }
        return out;
    };
    table = std::make_unique<CVarTable>(); // no window is needed for collecting
    table->SetModule(module);
    EXPECT_EQ(codes(TRUE), (Texts{"H00-00", "H01-00", "H02-00", "H02-02", "H02-04", "A1-00"}));
    EXPECT_EQ(codes(FALSE), (Texts{"H02-00", "H02-02", "H02-04", "A1-00"}));

    // A line-13 drive at level 0 also keeps its hidden-for-user parameters out.
    module->label = {0x13};
    host.products.records[0x13].line = 13;
    EXPECT_EQ(codes(FALSE), (Texts{"H02-00", "H02-04", "A1-00"}));
    module->level = 1;
    EXPECT_EQ(codes(FALSE), (Texts{"H02-00", "H02-02", "H02-03", "H02-04", "A1-00"}));
}

// Pages list a variable only when the module's catalog knows its address as transferable.
TEST_F(CollectTest, CatalogVarsAreTheTransferableOnesOfTheCatalog) {
    ListedGroup("H02", "H02-00", 0x200)->AddMember("H02-01");
    module->drive.AddParam("H02-01", 0x201)->transferable = 0;
    OpenFrame();
    EXPECT_TRUE(table->IsCatalogVar(module->drive.VarOf("H02-00")));
    EXPECT_FALSE(table->IsCatalogVar(module->drive.VarOf("H02-01")));
    EXPECT_FALSE(table->IsCatalogVar(nullptr));
    module->catalog = nullptr;
    EXPECT_FALSE(table->IsCatalogVar(module->drive.VarOf("H02-00")));
}

// The device's groups are resolved once per tree build; the user's own groups change under
// the user's hands and are read afresh every time.
TEST_F(CollectTest, MembersFollowEditsOfCustomGroupsAndRebuildsOfTheTree) {
    CGroupNode* h02 = ListedGroup("H02", "H02-00", 0x200);
    module->drive.AddParam("H02-01", 0x201);
    CGroupNode* mine = AddGroup(module->drive.custom, "我的");
    mine->AddMember("H02-00");
    OpenFrame();
    auto count = [&](IGroupNode* group) {
        std::vector<IVarObjEx*> list;
        if (group != nullptr)
            table->CollectGroupVars(group, list, TRUE);
        else
            table->CollectAllVars(list, TRUE);
        return list.size();
    };
    EXPECT_EQ(count(mine), 1u);
    mine->AddMember("H02-01");
    EXPECT_EQ(count(mine), 2u);
    EXPECT_EQ(count(nullptr), 1u);
    h02->AddMember("H02-01");
    table->BuildTree();
    EXPECT_EQ(count(nullptr), 2u);
}

// The text box takes room only while it has a text, shown with the line ends of the
// window. Dragging a bar resizes the tree or the text box; the stacked area takes the rest.
TEST_F(TreeTest, DescriptionAndSplittersResizeTheirNeighbourAndTheLayoutFollows) {
    ListedGroup("H02", "H02-00", 0x200);
    OpenFrame();
    auto rectOf = [&](UINT id) {
        CRect rc;
        table->GetDlgItem(int(id))->GetWindowRect(&rc);
        table->ScreenToClient(&rc);
        return rc;
    };
    CRect client;
    table->GetClientRect(&client);
    EXPECT_EQ(rectOf(IDC_STACK_PLACEHOLDER).right, client.right);
    auto shown = [&] {
        return (table->GetDlgItem(int(IDC_VAR_DESCRIPTION))->GetStyle() & WS_VISIBLE) != 0;
    };
    EXPECT_FALSE(shown());
    module->drive.VarOf("H02-00")->attr->info = "第一行\n第二行";
    table->ShowVarDescription(module->drive.VarOf("H02-00"));
    EXPECT_TRUE(shown());
    CString description;
    table->GetDlgItemText(int(IDC_VAR_DESCRIPTION), description);
    EXPECT_EQ(description, "第一行\r\n第二行");
    EXPECT_EQ(rectOf(IDC_VAR_DESCRIPTION).right, client.right);
    EXPECT_EQ(rectOf(IDC_TEXT_SPLITTER).left, rectOf(IDC_STACK_PLACEHOLDER).right);
    const CRect tree = rectOf(IDC_GROUP_TREE), text = rectOf(IDC_VAR_DESCRIPTION);
    const CRect stack = rectOf(IDC_STACK_PLACEHOLDER);
    table->GetTreeSplitter().MoveBy(50);
    table->GetTextSplitter().MoveBy(-30);
    AfxPumpPendingMessages();
    EXPECT_EQ(rectOf(IDC_GROUP_TREE).Width(), tree.Width() + 50);
    EXPECT_EQ(rectOf(IDC_VAR_DESCRIPTION).Width(), text.Width() + 30);
    EXPECT_EQ(rectOf(IDC_VAR_DESCRIPTION).right, text.right);
    EXPECT_EQ(rectOf(IDC_TREE_SPLITTER).left, rectOf(IDC_GROUP_TREE).right);
    EXPECT_EQ(rectOf(IDC_STACK_PLACEHOLDER).left, rectOf(IDC_TREE_SPLITTER).right);
    EXPECT_EQ(rectOf(IDC_TEXT_SPLITTER).right, rectOf(IDC_VAR_DESCRIPTION).left);
    EXPECT_EQ(rectOf(IDC_STACK_PLACEHOLDER).Width(), stack.Width() - 80);
    // Never below the minimum, however far the bar goes.
    table->GetTreeSplitter().MoveBy(-5000);
    AfxPumpPendingMessages();
    EXPECT_EQ(rectOf(IDC_GROUP_TREE).Width(), CTableSplitter::kMinWidth);
}

} // namespace
