// Custom groups end to end: made, edited, filled and deleted through the frame and the
// group dialog of a real panel, kept in the project folder and read back by a new host.
// With PARMIRA_SCREENSHOT_DIR set, pictures of the dialog and of the tree are left there.
#include "groups/GroupDialog.h"
#include "groups/MultiSelectVarDialog.h"
#include "module/host/HostContract.h"
#include "table/ParmiraDialog.h"
#include "table/TableResources.h"
#include "table/VarTable.h"

#include <afx/afxres.h>
#include <afx/afxtest.h>
#include <zorhost/ReferenceHost.h>
#include <zorhost/model/CustomGroupStore.h>

#include "ModuleScope.h"
#include "TempDir.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>

namespace {

namespace fs = std::filesystem;

std::vector<std::string> MemberKeys(IGroupNode* group) {
    std::vector<std::string> keys;
    for (int i = 0; group != nullptr && i < group->GetMemberCount(); ++i) {
        CString key;
        group->GetMemberAt(i, key);
        keys.push_back(key.str());
    }
    return keys;
}

std::string KeyOf(IVarObjEx* var) {
    CString key;
    var->GetInstanceGuid(key);
    return key.str();
}

class CustomGroupTest : public ::testing::Test {
protected:
    void SetUp() override {
        RegisterGroupDialogResources(scope.Handle());
        scope.AddParentDialog(9903, 1100, 640);
        host = std::make_unique<zorhost::ReferenceHost>();
        OpenProject();
    }
    void TearDown() override {
        ClosePanel();
        ModuleScope::Detach();
        host.reset();
    }

    // A servo module named "Spindle", on its in-process simulated drive.
    zorhost::ProjectSetup Setup() const {
        zorhost::ProjectSetup setup;
        setup.directory = CString(dir / "line2"); // made when the project opens
        setup.modules.resize(1);
        setup.modules[0].deviceFile = "zd3s_servo.json";
        setup.modules[0].key = "ZD3S";
        setup.modules[0].displayName = "Spindle";
        setup.modules[0].number = 1;
        return setup;
    }
    void OpenProject() {
        std::string error;
        ASSERT_TRUE(host->LoadProject(Setup(), &error)) << error;
        ModuleScope::Attach(host->Services());
    }
    // The program ends and starts again with the same project.
    void Restart() {
        ClosePanel();
        ModuleScope::Detach();
        host = std::make_unique<zorhost::ReferenceHost>();
        OpenProject();
        OpenPanel();
    }
    void OpenPanel() {
        parent = std::make_unique<CDialog>();
        ASSERT_TRUE(parent->Create(9903, nullptr));
        panel = std::make_unique<CParmiraDialog>();
        panel->SetProject(host->Project());
        panel->SetModuleKey("ZD3S");
        ASSERT_TRUE(panel->Create(IDD_PARMIRA_PANEL, parent.get()));
        CRect rc;
        parent->GetClientRect(&rc);
        panel->MoveWindow(&rc);
        parent->ShowWindow(SW_SHOW);
        table = panel->GetTable();
        ASSERT_NE(table, nullptr);
    }
    void ClosePanel() {
        if (panel)
            panel->DestroyWindow();
        if (parent)
            parent->DestroyWindow();
        panel.reset();
        parent.reset();
        table = nullptr;
    }

    IGroupSet* Custom() { return host->Module("ZD3S")->GetVarList()->GetGroupRoot(1); }
    // The name of the custom group at `index` of the top level.
    std::string NameOf(int index) {
        CString name;
        Custom()->GetAt(index)->GetName(name);
        return name.str();
    }
    IVarObjEx* Var(int index) { return host->Module("ZD3S")->GetVarList()->GetAt(index); }
    std::string StoreFile() const { return dir / "line2/Spindle_ZD3S/Variables.dat"; }

    std::vector<std::string> CustomItemTexts() {
        std::vector<std::string> texts;
        CTreeCtrl& tree = table->GetTree();
        for (HTREEITEM i = tree.GetChildItem(table->GetCustomItem()); i != nullptr;
             i = tree.GetNextSiblingItem(i))
            texts.push_back(tree.GetItemText(i).str());
        return texts;
    }
    HTREEITEM CustomItem(const char* text) {
        CTreeCtrl& tree = table->GetTree();
        for (HTREEITEM i = tree.GetChildItem(table->GetCustomItem()); i != nullptr;
             i = tree.GetNextSiblingItem(i))
            if (tree.GetItemText(i) == text)
                return i;
        return nullptr;
    }
    // A group made directly at the host, as a loaded store would hold it.
    IGroupNode* AddGroup(const char* name, std::vector<int> vars) {
        IGroupNode* g = Custom()->NewGroup();
        g->SetName(name);
        for (int v : vars)
            g->AddMember(CString(KeyOf(Var(v))));
        EXPECT_TRUE(Custom()->AddGroup(g));
        return g;
    }
    // Runs command `id` of the frame with `act` acting inside the group dialog.
    void RunWithDialog(UINT id, std::function<void(CGroupDialog&)> act) {
        CAfxModalDriver driver([&](CDialog& dlg) { act(static_cast<CGroupDialog&>(dlg)); });
        table->OnFrameCommand(id);
    }
    static void Click(CDialog& dlg, int id) { static_cast<CButton*>(dlg.GetDlgItem(id))->Click(); }
    static void SelectRows(CListCtrl& list, std::vector<int> rows) {
        list.SetItemState(-1, 0, LVIS_SELECTED);
        for (int r : rows)
            list.SetItemState(r, LVIS_SELECTED, LVIS_SELECTED);
    }

    TempDir dir;
    ModuleScope scope{"custom-groups-test"};
    std::unique_ptr<zorhost::ReferenceHost> host;
    std::unique_ptr<CDialog> parent;
    std::unique_ptr<CParmiraDialog> panel;
    CVarTable* table = nullptr;
    CAfxRecordingResponder prompts;
};

} // namespace

TEST_F(CustomGroupTest, NewGroupListsPickedMembersInChosenOrderAndComesBackAfterRestart) {
    OpenPanel();
    table->GetTree().SelectItem(table->GetCustomItem());
    std::vector<std::string> picked;
    RunWithDialog(ID_NEW_CUSTOM_GROUP, [&](CGroupDialog& dlg) {
        // A new group proposes a time-stamped name.
        EXPECT_EQ(dlg.m_strName.GetLength(), 19) << dlg.m_strName.str();
        CMultiSelectVarDialog* picker = dlg.GetPicker();
        picker->FillLeftRows(picker->GetTree().GetRootItem());
        ASSERT_GT(picker->GetLeftRows().GetCount(), 6);
        // Rows 5 and 2, then 2 again: the second time adds nothing.
        SelectRows(picker->GetLeftList(), {5});
        Click(*picker, IDC_MSV_ADD);
        SelectRows(picker->GetLeftList(), {2, 3});
        Click(*picker, IDC_MSV_ADD);
        SelectRows(picker->GetLeftList(), {2});
        picker->AddSelected();
        ASSERT_EQ(picker->GetRightRows().GetCount(), 3);
        // 5 2 3 -> 2 3 5: the block of two moves up past 5, and stays selected.
        SelectRows(picker->GetRightList(), {1, 2});
        Click(*picker, IDC_MSV_UP);
        EXPECT_EQ(picker->GetRightList().GetItemState(0, LVIS_SELECTED), LVIS_SELECTED);
        EXPECT_EQ(picker->GetRightList().GetItemState(1, LVIS_SELECTED), LVIS_SELECTED);
        EXPECT_EQ(picker->GetRightList().GetItemState(2, LVIS_SELECTED), 0u);
        for (int i = 0; i < 3; ++i)
            picked.push_back(KeyOf(picker->GetRightRows().GetAt(i)));
        EXPECT_EQ(picked[2], KeyOf(picker->GetLeftRows().GetAt(5)));
        AfxTestTypeText(dlg.GetDlgItem(IDC_GROUP_NAME), "Tuning");
        AfxTestTypeText(dlg.GetDlgItem(IDC_GROUP_DESCRIPTION), "loop gains");
        ShootIfAsked(&dlg, "group_dialog.png");
        Click(dlg, IDOK);
    });
    ASSERT_EQ(CustomItemTexts(), std::vector<std::string>{"Tuning[loop gains]"});
    EXPECT_EQ(table->GetTree().GetSelectedItem(), CustomItem("Tuning[loop gains]"));
    ASSERT_EQ(Custom()->GetCount(), 1);
    EXPECT_EQ(table->GetCurrentCustomGroup(), Custom()->GetAt(0));
    EXPECT_EQ(MemberKeys(Custom()->GetAt(0)), picked);
    EXPECT_TRUE(fs::exists(StoreFile()));

    // A cancelled new group leaves nothing behind.
    RunWithDialog(ID_NEW_CUSTOM_GROUP, [](CGroupDialog& dlg) { Click(dlg, IDCANCEL); });
    EXPECT_EQ(Custom()->GetCount(), 1);

    Restart();
    EXPECT_TRUE(host->StoreProblems().empty());
    ASSERT_EQ(CustomItemTexts(), std::vector<std::string>{"Tuning[loop gains]"});
    EXPECT_EQ(MemberKeys(Custom()->GetAt(0)), picked);
}

TEST_F(CustomGroupTest, EditKeepsOrChangesNameAndDescriptionAsToldDeleteAsksFirst) {
    AddGroup("Alpha", {1, 2});
    AddGroup("Beta", {3});
    OpenPanel();
    table->GetTree().SelectItem(CustomItem("Alpha"));

    // Cancel keeps name and description.
    RunWithDialog(ID_EDIT_CUSTOM_GROUP, [](CGroupDialog& dlg) {
        EXPECT_EQ(dlg.m_strName, CString("Alpha"));
        AfxTestTypeText(dlg.GetDlgItem(IDC_GROUP_NAME), "Other");
        Click(dlg, IDCANCEL);
    });
    EXPECT_EQ(NameOf(0), "Alpha");

    // Blanks and a taken name are refused and the dialog stays; a change of case passes.
    int refusals = 0;
    RunWithDialog(ID_EDIT_CUSTOM_GROUP, [&](CGroupDialog& dlg) {
        AfxTestTypeText(dlg.GetDlgItem(IDC_GROUP_NAME), "   ");
        Click(dlg, IDOK);
        AfxTestTypeText(dlg.GetDlgItem(IDC_GROUP_NAME), "Beta");
        Click(dlg, IDOK);
        refusals = int(prompts.Count(AfxPrompt::MessageBox));
        AfxTestTypeText(dlg.GetDlgItem(IDC_GROUP_NAME), " ALPHA ");
        AfxTestTypeText(dlg.GetDlgItem(IDC_GROUP_DESCRIPTION), "first");
        Click(dlg, IDOK);
    });
    ASSERT_EQ(refusals, 2);
    EXPECT_EQ(prompts.prompts[0].text, CString("对象不能为空."));
    EXPECT_EQ(prompts.prompts[1].text, CString("错误,对象'Beta'已经存在."));
    EXPECT_EQ(prompts.prompts[1].caption, CString("警告"));
    EXPECT_EQ(prompts.prompts[1].Icon(), UINT(MB_ICONWARNING));
    EXPECT_EQ(NameOf(0), "ALPHA");
    EXPECT_EQ(MemberKeys(Custom()->GetAt(0)).size(), 2u);
    EXPECT_NE(CustomItem("ALPHA[first]"), nullptr);

    // Delete asks first, then takes the group from the tree, the host and the store.
    table->GetTree().SelectItem(CustomItem("ALPHA[first]"));
    prompts.AnswerMessageBox(IDNO);
    table->OnFrameCommand(ID_DELETE_CUSTOM_GROUP);
    ASSERT_EQ(prompts.Count(AfxPrompt::MessageBox), 3u);
    const AfxPrompt& question = prompts.prompts[2];
    EXPECT_EQ(question.text, CString("确定删除对象'ALPHA'吗?"));
    EXPECT_EQ(question.caption, CString("警告"));
    EXPECT_EQ(question.Buttons(), UINT(MB_YESNO));
    EXPECT_EQ(Custom()->GetCount(), 2);

    prompts.AnswerMessageBox(IDYES);
    table->OnFrameCommand(ID_DELETE_CUSTOM_GROUP);
    EXPECT_EQ(CustomItemTexts(), std::vector<std::string>{"Beta"});
    ASSERT_EQ(Custom()->GetCount(), 1);
    // What is selected now is shown: the group beside the deleted one.
    EXPECT_EQ(table->GetTree().GetSelectedItem(), CustomItem("Beta"));
    EXPECT_EQ(table->GetCurrentCustomGroup(), Custom()->GetAt(0));

    Restart();
    EXPECT_EQ(CustomItemTexts(), std::vector<std::string>{"Beta"});
}

TEST_F(CustomGroupTest, AddToGroupMenuKeepsMembersAddsNoDoubleAndMakesNewGroups) {
    IGroupNode* alpha = AddGroup("Alpha", {1, 2});
    IGroupNode* beta = AddGroup("Beta", {});
    IGroupNode* child = Custom()->NewGroup();
    child->SetName("Beta-1");
    ASSERT_TRUE(beta->AddChild(child));
    OpenPanel();

    CMenu popup;
    popup.CreatePopupMenu();
    table->FillAddToGroupMenu(popup);
    // Alpha 4001; Beta's popup: new subgroup 4002, add directly 4003, Beta-1 4004.
    EXPECT_EQ(table->m_menuGroups.at(4001), alpha);
    EXPECT_EQ(table->m_menuSubGroups.at(4002), beta);
    EXPECT_EQ(table->m_menuGroups.at(4003), beta);
    EXPECT_EQ(table->m_menuGroups.at(4004), child);

    const std::vector<std::string> before = MemberKeys(alpha);
    table->AddVarsToMenuGroup({Var(2), Var(7), Var(1)}, 4001);
    std::vector<std::string> expected = before;
    expected.push_back(KeyOf(Var(7)));
    EXPECT_EQ(MemberKeys(alpha), expected);

    // "New subgroup" makes a top-level group named by the time.
    table->AddVarsToMenuGroup({Var(4)}, 4002);
    ASSERT_EQ(Custom()->GetCount(), 3);
    EXPECT_EQ(MemberKeys(Custom()->GetAt(2)), std::vector<std::string>{KeyOf(Var(4))});
    // A taken name gets "new" once, without a second test.
    table->CreateCustomGroup({Var(5)}, "Alpha");
    table->CreateCustomGroup({Var(5)}, "Alpha");
    EXPECT_EQ(NameOf(3), "Alphanew");
    EXPECT_EQ(NameOf(4), "Alphanew");
    EXPECT_EQ(CustomItemTexts().size(), 5u);
    table->AddVarsToCustomRoot({Var(6)});
    ShootIfAsked(parent.get(), "custom_group_tree.png");

    // Command 32848 of the modified branch: the first page's rows, each once.
    CVarTablePage* page = table->GetPage1();
    ASSERT_GT(page->GetShownCount(), 0);
    table->OnFrameCommand(ID_ADD_TO_CUSTOM_GROUP);
    ASSERT_EQ(Custom()->GetCount(), 6);
    EXPECT_EQ(Custom()->GetAt(5)->GetMemberCount(), page->GetShownCount());
    EXPECT_EQ(MemberKeys(Custom()->GetAt(5)).front(), KeyOf(page->GetShownVar(0)));

    Restart();
    ASSERT_EQ(Custom()->GetCount(), 6);
    EXPECT_EQ(MemberKeys(Custom()->GetAt(0)), expected);
    EXPECT_EQ(Custom()->GetAt(1)->GetChildCount(), 1);
    EXPECT_EQ(Custom()->GetMemberCount(), 1);
}

TEST_F(CustomGroupTest, PickerMovesOnlyConsecutiveBlocksAwayFromTheEdge) {
    IGroupNode* g = AddGroup("Order", {0, 1, 2, 3, 4, 5});
    const std::vector<std::string> start = MemberKeys(g);
    OpenPanel();
    table->GetTree().SelectItem(CustomItem("Order"));
    RunWithDialog(ID_EDIT_CUSTOM_GROUP, [&](CGroupDialog& dlg) {
        CMultiSelectVarDialog* picker = dlg.GetPicker();
        CChooserList& right = picker->GetRightList();
        for (std::vector<int> rows : {std::vector<int>{2, 3, 5}, {0}, {0, 1}}) {
            SelectRows(right, rows);
            picker->MoveUp();
        }
        SelectRows(right, {4, 5});
        picker->MoveDown();
        SelectRows(right, {1});
        picker->MoveDown(); // 0 2 1 3 4 5
        SelectRows(right, {0, 4});
        Click(*picker, IDC_MSV_REMOVE); // 2 1 3 5
        Click(dlg, IDOK);
    });
    EXPECT_EQ(MemberKeys(g), (std::vector<std::string>{start[2], start[1], start[3], start[5]}));
}

TEST_F(CustomGroupTest, DamagedStoreIsReportedKeptAsideAndTheModuleStillWorks) {
    fs::create_directories(fs::path(StoreFile()).parent_path());
    std::ofstream(StoreFile()) << "{\"format\": 1, \"groups\": [ {\"name\": \"x\", ";
    Restart();
    ASSERT_EQ(host->StoreProblems().size(), 1u);
    const std::string& problem = host->StoreProblems()[0];
    EXPECT_NE(problem.find(StoreFile()), std::string::npos) << problem;
    EXPECT_NE(problem.find("at byte"), std::string::npos) << problem;
    EXPECT_TRUE(fs::exists(StoreFile() + ".damaged"));
    EXPECT_EQ(Custom()->GetCount(), 0);
    table->CreateCustomGroup({Var(1)}, "Fresh");
    EXPECT_EQ(CustomItemTexts(), std::vector<std::string>{"Fresh"});
    Restart();
    EXPECT_TRUE(host->StoreProblems().empty());
    EXPECT_EQ(CustomItemTexts(), std::vector<std::string>{"Fresh"});
}

TEST_F(CustomGroupTest, TwoDrivesOfOneTypeKeepTheirGroupsApart) {
    zorhost::ProjectSetup setup = Setup();
    setup.modules.push_back(setup.modules[0]);
    setup.modules[1].key = "ZD3S-B";
    setup.modules[1].number = 2;
    ASSERT_TRUE(host->LoadProject(setup));
    AddGroup("Only on A", {1});
    IHostDeviceModule* b = host->Module("ZD3S-B");
    CString version;
    b->GetVersionText(version);
    IVarDatabase* db = host->Project()->GetWorkspace()->GetDatabase(b->GetElecLabel(),
                                                                    b->GetElecLabelSize(), version);
    ASSERT_NE(db, nullptr);
    const std::string path = zorhost::model::CustomGroupFile(CString(dir / "line2"), *b);
    fs::create_directories(fs::path(path).parent_path());
    ASSERT_TRUE(db->SaveToFile(CString(path)));

    ASSERT_TRUE(host->LoadProject(setup));
    EXPECT_EQ(host->Module("ZD3S-B")->GetVarList()->GetGroupRoot(1)->GetCount(), 0);
}

TEST_F(CustomGroupTest, SaveWritesThroughALinkKeepsTheModeAndLeavesNoTemporaryFile) {
    OpenPanel();
    const fs::path folder = fs::path(StoreFile()).parent_path();
    fs::create_directories(folder);
    const fs::path target = fs::path(dir.Path()) / "kept-elsewhere.dat";
    std::ofstream(target) << "{}";
    fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    fs::create_symlink(target, StoreFile());
    table->CreateCustomGroup({Var(1)}, "Linked");
    EXPECT_TRUE(fs::is_symlink(StoreFile()));
    EXPECT_GT(fs::file_size(target), 2u);
    EXPECT_EQ(fs::status(target).permissions() & fs::perms::all,
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 1);
}

TEST_F(CustomGroupTest, GroupsLoadFromAParameterFileOfTheSameDeviceTypeOnly) {
    // A file of this drive and one of another device type, each with every variable.
    auto write = [&](const char* key, const std::string& path) {
        IHostDeviceModule* m = host->Module(key);
        auto* file =
            static_cast<IParamFile*>(host->ModuleManager().CreateInstance(IParamFile::kIID));
        file->GetVarList()->CopyFrom(m->GetVarList());
        file->SetElecLabel(m->GetElecLabel(), m->GetElecLabelSize());
        ASSERT_TRUE(file->Save(CString(path)));
        file->Release();
    };
    const std::string other = dir / "inverter.zorparam";
    const std::string same = dir / "Spindle tune.zorparam";
    ASSERT_TRUE(host->LoadDemo());
    write("ZV5", other);
    OpenProject();
    write("ZD3S", same);
    OpenPanel();
    const int vars = host->Module("ZD3S")->GetVarList()->GetCount();

    prompts.ChooseFiles({CString(same)});
    table->OnFrameCommand(ID_LOAD_CUSTOM_GROUP);
    const AfxPrompt* dialog = prompts.Last(AfxPrompt::FileDialog);
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->defExt, CString("zorparam"));
    EXPECT_EQ(prompts.Count(AfxPrompt::MessageBox), 0u);
    ASSERT_EQ(Custom()->GetCount(), 1);
    EXPECT_EQ(CustomItemTexts(), std::vector<std::string>{"Spindle tune"});
    EXPECT_EQ(Custom()->GetAt(0)->GetMemberCount(), vars);

    // Another type asks; No ends it, and a Yes is told once more and loads nothing too.
    for (int answer : {IDNO, IDYES}) {
        prompts.ChooseFiles({CString(other)});
        prompts.AnswerMessageBox(answer);
        table->OnFrameCommand(ID_LOAD_CUSTOM_GROUP);
    }
    std::vector<AfxPrompt> boxes;
    for (const AfxPrompt& p : prompts.prompts)
        if (p.kind == AfxPrompt::MessageBox)
            boxes.push_back(p);
    ASSERT_EQ(boxes.size(), 3u);
    const std::string question = boxes[0].text.str();
    EXPECT_NE(question.find("inverter.zorparam"), std::string::npos) << question;
    EXPECT_NE(question.find("是否继续打开"), std::string::npos) << question;
    EXPECT_EQ(boxes[0].Buttons(), UINT(MB_YESNO));
    EXPECT_EQ(boxes[2].text, boxes[1].text);
    EXPECT_EQ(prompts.Last(AfxPrompt::MessageBox)->caption, CString("警告"));
    EXPECT_EQ(Custom()->GetCount(), 1);
}
