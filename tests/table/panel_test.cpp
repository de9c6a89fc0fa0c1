// The panel around the frame: counts from UM_UPDATE_VAR_COUNT, the factory notice of line
// 13, forwarding to the frame, and closing in order.
#include "frame_fixture.h"

#include "module/ModuleResources.h"
#include "table/ParmiraDialog.h"
#include "table/TableResources.h"

#include <afx/afxtest.h>

using namespace tt;

namespace {

class PanelTest : public FrameTest {
protected:
    // A panel inside the test window, as ShowPanel makes it.
    CParmiraDialog* OpenPanel() {
        EXPECT_TRUE(parent.Create(9901, nullptr));
        panel = std::make_unique<CParmiraDialog>();
        panel->SetProject(&host.project);
        panel->SetModuleKey("M1");
        EXPECT_TRUE(panel->Create(IDD_PARMIRA_PANEL, &parent));
        return panel.get();
    }
    void TearDown() override {
        if (panel != nullptr && panel->GetSafeHwnd() != nullptr)
            panel->DestroyWindow();
        panel.reset();
        FrameTest::TearDown();
    }
    CString Notice() { return panel->GetNoticeText(); }
    std::unique_ptr<CParmiraDialog> panel;
};

TEST_F(PanelTest, FactoryNoticeOnlyForLine13) {
    module->label = {0x13};
    host.products.records[0x13].line = 13;
    OpenPanel();
    EXPECT_EQ(Notice(),
              "注：H00、H01组为厂家参数，请慎重修改，\n如需操作请先输入厂家密码（功能码H0241）！");
    panel->DestroyWindow();
    parent.DestroyWindow();
    host.products.records[0x13].line = 12;
    OpenPanel();
    EXPECT_EQ(Notice(), "");
}

TEST_F(PanelTest, CountsComeFromTheFrameWhichGetsTheCallsAndClosesFirst) {
    ListedGroup("H02", "H02-00", 0x200);
    OpenPanel();
    CVarTable* frame = panel->GetTable();
    ASSERT_NE(frame, nullptr);
    ASSERT_NE(frame->GetSafeHwnd(), nullptr);
    // Counts come through posted messages.
    frame->PostVarCount(TRUE, 120);
    frame->PostVarCount(FALSE, 7);
    AfxPumpPendingMessages();
    EXPECT_EQ(panel->m_nTotalCount, 120);
    EXPECT_EQ(panel->m_nCurrentCount, 7);
    EXPECT_EQ(panel->GetDlgItemInt(int(IDC_TOTAL_COUNT)), 120u);
    EXPECT_EQ(panel->GetDlgItemInt(int(IDC_CURRENT_COUNT)), 7u);
    panel->SelectListPage(1);
    ASSERT_NE(g_pages[1], nullptr);
    // The style still names the first page: calls go there, the second only shows.
    EXPECT_EQ(g_pages[1]->calls.size(), 0u);
    EXPECT_EQ(g_pages[0]->calls.back(), "all");
    panel->SetModuleAccessLevel("M1", 3);
    EXPECT_EQ(module->level, 3);
    EXPECT_EQ(frame->GetModule(), module);
    // Removing the module detaches the frame.
    panel->OnModuleRemoved("M1");
    EXPECT_EQ(frame->GetModule(), nullptr);
    panel->DestroyWindow();
    EXPECT_EQ(panel->GetTable(), nullptr);
    EXPECT_EQ(host.refresh.listeners.size(), 0u);
}

} // namespace
