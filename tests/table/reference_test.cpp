// The frame against the reference host with its demo drives: real groups, catalog,
// product records and list pages. With PARMIRA_SCREENSHOT_DIR set, the panel test leaves
// a picture of the panel there.
#include "files/ParamTableWriter.h"
#include "module/Implementation.h"
#include "module/ParmiraApp.h"
#include "table/ParmiraDialog.h"
#include "table/VarTable.h"

#include <afx/afxres.h>
#include <afx/afxtest.h>
#include <zorhost/ReferenceHost.h>

#include "ModuleScope.h"
#include "TempDir.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

std::vector<std::string> ReadLines(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

class ReferenceTest : public ::testing::Test {
protected:
    void SetUp() override {
        scope.AddParentDialog(9902, 1100, 640);
        std::string error;
        ASSERT_TRUE(host.LoadDemo(&error)) << error;
        ModuleScope::Attach(host.Services());
    }
    zorhost::ReferenceHost host;
    ModuleScope scope{"table-reference-test"};
    TempDir dir;
};

TEST_F(ReferenceTest, ExportOfADemoDriveWritesOneRowPerCollectedParameter) {
    CImplementation impl(nullptr);
    const std::string path = dir / "new/ZD3S.csv"; // one missing level is made
    impl.ExportParameters(CString(path), "ZD3S");
    const std::vector<std::string> lines = ReadLines(path);
    // The head's layout is the table test's golden file; here the drive's own line.
    ASSERT_GT(lines.size(), 7u);
    EXPECT_EQ(lines[4].substr(lines[4].find(',')),
              ",1,V3.02.07,000D00210000030200000000000000015A4433532D355235"
              "0000000000000000");

    CVarTable table;
    table.SetModule(host.Module("ZD3S"));
    std::vector<IVarObjEx*> all;
    table.CollectAllVars(all, TRUE);
    EXPECT_EQ(lines.size() - 7, all.size());
    for (size_t i = 7; i < lines.size(); ++i)
        EXPECT_GE(std::count(lines[i].begin(), lines[i].end(), ','), 9) << lines[i];

    // Offline, nothing is written and nothing is said.
    CAfxRecordingResponder responder;
    host.SetOnline("ZD4M", false);
    impl.ExportParameters(CString(dir / "ZD4M.csv"), "ZD4M");
    EXPECT_FALSE(std::filesystem::exists(dir / "ZD4M.csv"));
    EXPECT_TRUE(responder.prompts.empty());
}

TEST_F(ReferenceTest, PanelOfALine13DriveShowsTreeCountsAndNotice) {
    CDialog parent;
    ASSERT_TRUE(parent.Create(9902, nullptr));
    CParmiraDialog panel;
    panel.SetProject(host.Project());
    panel.SetModuleKey("ZD3S");
    ASSERT_TRUE(panel.Create(IDD_PARMIRA_PANEL, &parent));
    CRect rc;
    parent.GetClientRect(&rc);
    panel.MoveWindow(&rc);
    parent.ShowWindow(SW_SHOW);
    CVarTable* table = panel.GetTable();
    ASSERT_NE(table, nullptr);
    CTreeCtrl& tree = table->GetTree();
    EXPECT_EQ(tree.GetItemText(tree.GetSelectedItem()), "所有参数");
    EXPECT_NE(tree.GetChildItem(table->GetAllItem()), nullptr);
    EXPECT_TRUE(AfxPumpMessagesUntil([&] { return panel.m_nTotalCount > 0; }, 5000));
    EXPECT_EQ(panel.m_nCurrentCount, panel.m_nTotalCount);
    EXPECT_FALSE(panel.GetNoticeText().IsEmpty());
    for (int i = 0; i < 5; ++i)
        host.Tick(100);
    // The picture waits for a tick of the worker to repaint; the test itself waits for nothing.
    if (std::getenv("PARMIRA_SCREENSHOT_DIR") != nullptr) {
        AfxPumpMessagesUntil([] { return false; }, 600);
        ShootIfAsked(&parent, "parmira_panel.png");
    }
    panel.DestroyWindow();
    parent.DestroyWindow();
}

} // namespace
