// The refresh life cycle: the worker's tick and the host's query reach the page of the
// style while the frame runs, and nothing does after StopRefresh. Run under
// ThreadSanitizer in CI, with the reference host's worker threads. And the panel around
// the frame: counts from UM_UPDATE_VAR_COUNT, the factory notice of line 13, forwarding to
// the frame, and closing in order.
#include "frame_fixture.h"

#include "table/ParmiraDialog.h"

#include <afx/afxmt.h>
#include <afx/afxtest.h>

#include <atomic>
#include <thread>

using namespace tt;

namespace {

// Counts the refresh messages that reach the frame's window.
class CountingTable : public CVarTable {
public:
    int ticks = 0, queries = 0;

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message == UM_REFRESH_TICK)
            ++ticks;
        else if (message == UM_REFRESH_QUERY)
            ++queries;
        return CVarTable::WindowProc(message, wParam, lParam);
    }
};

class RefreshTest : public FrameTest {
protected:
    void TearDown() override {
        if (panel != nullptr && panel->GetSafeHwnd() != nullptr)
            panel->DestroyWindow();
        panel.reset();
        FrameTest::TearDown();
    }
    void OpenCounting(bool withModule = true) {
        counter = new CountingTable;
        OpenFrame(counter, withModule);
    }
    // A panel inside the test window, as ShowPanel makes it.
    void OpenPanel() {
        ASSERT_TRUE(parent.Create(9901, nullptr));
        panel = std::make_unique<CParmiraDialog>();
        panel->SetProject(&host.project);
        panel->SetModuleKey("M1");
        ASSERT_TRUE(panel->Create(IDD_PARMIRA_PANEL, &parent));
    }
    CountingTable* counter = nullptr;
    std::unique_ptr<CParmiraDialog> panel;
};
using PanelTest = RefreshTest;

TEST_F(RefreshTest, TickAndQueryReachThePageWhileRunning) {
    ListedGroup("H02", "H02-00", 0x200);
    OpenCounting();
    TestPage* page = g_pages[0];
    ASSERT_NE(page, nullptr);
    ASSERT_EQ(host.refresh.ListenerCount(), 1u);
    // The worker's 500 ms tick repaints the page.
    EXPECT_TRUE(AfxPumpMessagesUntil([&] { return page->repaints >= 2; }, 5000));
    // The host's query, on another thread, only posts; the page submits on arrival.
    std::thread([&] { host.refresh.RunCycle(); }).join();
    EXPECT_TRUE(AfxPumpMessagesUntil([&] { return page->queries == 1; }, 2000));

    // Offline, ticks still come but the list stands still.
    module->online = 0;
    AfxPumpPendingMessages();
    const int repaints = page->repaints;
    const int ticks = counter->ticks;
    EXPECT_TRUE(AfxPumpMessagesUntil([&] { return counter->ticks >= ticks + 1; }, 5000));
    EXPECT_EQ(page->repaints, repaints);
}

TEST_F(RefreshTest, NothingFlowsAfterStopOrDestroyAndStopTwiceIsHarmless) {
    ListedGroup("H02", "H02-00", 0x200);
    OpenCounting();
    TestPage* page = g_pages[0];
    EXPECT_TRUE(AfxPumpMessagesUntil([&] { return page->repaints >= 1; }, 5000));

    table->StopRefresh();
    table->StopRefresh();
    EXPECT_EQ(table->GetModule(), nullptr);
    EXPECT_EQ(table->refreshEnabled.load(), 0);
    EXPECT_EQ(Tree().GetCount(), 0u);
    AfxPumpPendingMessages(); // whatever was posted before the stop
    const int ticks = counter->ticks, queries = counter->queries;

    // No post after the stop, from the query or from a worker.
    table->OnRefreshQuery();
    AfxPumpPendingMessages();
    EXPECT_EQ(counter->queries, queries);
    EXPECT_EQ(counter->ticks, ticks);

    // A late tick or query that was already on its way does nothing.
    const int repaints = page->repaints, submitted = page->queries;
    table->PostMessage(UM_REFRESH_TICK);
    table->PostMessage(UM_REFRESH_QUERY);
    AfxPumpPendingMessages();
    EXPECT_EQ(counter->ticks, ticks + 1);
    EXPECT_EQ(page->repaints, repaints);
    EXPECT_EQ(page->queries, submitted);

    // Started again with the module, the ticks come back.
    table->SetModule(module);
    table->StartRefresh();
    EXPECT_TRUE(AfxPumpMessagesUntil([&] { return page->repaints > repaints; }, 5000));

    // Destroying the window stops it all; the destructor's second stop is harmless.
    table->DestroyWindow();
    EXPECT_EQ(host.refresh.ListenerCount(), 0u);
    EXPECT_EQ(table->refreshEnabled.load(), 0);
}

// The host's query thread hammers the listener while the user-interface thread stops and
// restarts the refresh: the flag is the only shared state, and it is atomic.
TEST_F(RefreshTest, QueriesFromAnotherThreadRaceStopsCleanly) {
    ListedGroup("H02", "H02-00", 0x200);
    OpenCounting();
    std::atomic<bool> done{false};
    ASSERT_EQ(host.refresh.ListenerCount(), 1u);
    IRefreshQueryEvent* listener = counter; // called on, registered or not
    std::thread querier([&] {
        while (!done.load())
            listener->OnRefreshQuery();
    });
    for (int i = 0; i < 20; ++i) {
        table->StopRefresh();
        AfxPumpPendingMessages();
        table->SetModule(module);
        table->StartRefresh();
        AfxPumpPendingMessages();
    }
    // Running again, the querier's posts arrive.
    EXPECT_TRUE(AfxPumpMessagesUntil([&] { return counter->queries > 0; }, 5000));
    done.store(true);
    querier.join();
}

TEST_F(RefreshTest, WithoutWorkerTheFrameStillRuns) {
    host.services.Withhold<IHostModuleManager>();
    host.services.Withhold<IHostRefreshService>();
    ListedGroup("H02", "H02-00", 0x200);
    OpenCounting();
    EXPECT_EQ(g_pages[0]->calls.front(), "all");
    table->PostMessage(UM_REFRESH_TICK);
    AfxPumpPendingMessages();
    EXPECT_EQ(g_pages[0]->repaints, 1);
}

// No module at all: the fixed items stand alone, no list is filled, the worker still ticks.
TEST_F(RefreshTest, WithoutModuleTheTreeIsBareButTheWorkerRuns) {
    OpenCounting(false);
    EXPECT_EQ(Tree().GetCount(), 4u);
    EXPECT_TRUE(g_pages[0]->calls.empty());
    EXPECT_TRUE(AfxPumpMessagesUntil([&] { return counter->ticks >= 1; }, 5000));
    EXPECT_EQ(g_pages[0]->repaints, 0);
}

TEST_F(PanelTest, FactoryNoticeOnlyForLine13) {
    module->label = {0x13};
    host.products.records[0x13].line = 13;
    OpenPanel();
    EXPECT_EQ(panel->GetNoticeText(),
              "注：H00、H01组为厂家参数，请慎重修改，\n如需操作请先输入厂家密码（功能码H0241）！");
    panel->DestroyWindow();
    parent.DestroyWindow();
    host.products.records[0x13].line = 12;
    OpenPanel();
    EXPECT_EQ(panel->GetNoticeText(), "");
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
    EXPECT_EQ(host.refresh.ListenerCount(), 0u);
}

} // namespace
