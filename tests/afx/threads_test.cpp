#include <afx/afxmt.h>
#include <afx/afxtest.h>
#include <afx/afxwin.h>

#include <QCoreApplication>
#include <QTimer>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

class Counter : public CWnd {
public:
    int posted = 0;
    int ticks = 0;
    LRESULT WindowProc(UINT m, WPARAM w, LPARAM l) override {
        if (m == WM_USER + 5) {
            ++posted;
            return 0;
        }
        return CWnd::WindowProc(m, w, l);
    }

protected:
    void OnTimer(UINT_PTR) override { ++ticks; }
};

} // namespace

TEST(ThreadsTest, PumpingWaitKeepsMessagesFlowing) {
    Counter wnd;
    ASSERT_TRUE(wnd.Create(nullptr, "w", WS_POPUP, CRect(0, 0, 10, 10), nullptr, 0));
    CEvent done; // auto-reset
    const HWND h = wnd.GetSafeHwnd();
    std::atomic<bool> go{false};
    std::thread worker([&] {
        while (!go.load())
            std::this_thread::yield();
        for (int i = 0; i < 20; ++i)
            ::PostMessage(h, WM_USER + 5, 0, 0);
        done.SetEvent();
    });
    go = true;
    // Polls in 50 ms steps, as the nested copy loop does.
    DWORD r = WAIT_TIMEOUT;
    for (int i = 0; i < 200 && r == WAIT_TIMEOUT; ++i)
        r = AfxWaitPumping(done, 50);
    worker.join();
    EXPECT_EQ(r, WAIT_OBJECT_0);
    // Messages posted before the signal were handled during the wait or right after.
    EXPECT_TRUE(AfxPumpMessagesUntil([&] { return wnd.posted == 20; }, 2000));
    // Auto-reset: the signal was consumed; a wait now times out, timers still run meanwhile.
    wnd.SetTimer(1, 5);
    EXPECT_EQ(AfxWaitPumping(done, 60), WAIT_TIMEOUT);
    EXPECT_GT(wnd.ticks, 0);
}

// A quit ends a pumping wait at once, however long it was to be, and the loops outside it
// end too; once they have, waits work as before.
TEST(ThreadsTest, PumpingWaitEndsWhenTheApplicationQuits) {
    CEvent never, finished;
    // A wait that missed the quit would spin for ever; the watchdog turns that into a
    // failure rather than a hung suite.
    std::thread watchdog([&] {
        if (!finished.Lock(30000))
            never.SetEvent();
    });
    DWORD r = WAIT_OBJECT_0;
    QTimer::singleShot(0, qApp, [&] {
        QTimer::singleShot(0, qApp, [] { QCoreApplication::exit(3); });
        r = AfxWaitPumping(never, INFINITE);
    });
    EXPECT_EQ(QCoreApplication::exec(), 3);
    finished.SetEvent();
    watchdog.join();
    EXPECT_EQ(r, WAIT_QUIT);
    EXPECT_EQ(AfxWaitPumping(never, 1), WAIT_TIMEOUT);
}

TEST(ThreadsTest, LocksAreRecursiveAndEventsWakeWaiters) {
    CCriticalSection cs;
    int shared = 0;
    {
        CSingleLock outer(&cs, TRUE);
        CSingleLock inner(&cs, TRUE); // recursive on one thread
        EXPECT_TRUE(inner.IsLocked());
        shared = 1;
    }
    std::thread t([&] {
        CSingleLock lock(&cs, TRUE);
        shared = 2;
    });
    t.join();
    EXPECT_EQ(shared, 2);
    CEvent ev;
    std::thread setter([&] { ev.SetEvent(); });
    EXPECT_TRUE(ev.Lock(INFINITE));
    setter.join();
}

TEST(ThreadsTest, NestedModalRunsAreDrivenInnermostFirst) {
    AfxRegisterDialog(AfxGetInstanceHandle(), {9700, "outer", 100, 100, {}});
    AfxRegisterDialog(AfxGetInstanceHandle(), {9701, "inner", 80, 80, {}});
    std::vector<UINT> seen;
    INT_PTR innerResult = 0;
    CAfxModalDriver driver([&](CDialog& d) {
        seen.push_back(d.GetTemplateId());
        if (d.GetTemplateId() == 9700) {
            CDialog inner(9701, &d);
            innerResult = inner.DoModal();
            d.EndDialog(IDYES);
        } else {
            // A posted message reaches the outer dialog while the inner one runs.
            d.EndDialog(IDNO);
        }
    });
    CDialog outer(9700);
    EXPECT_EQ(outer.DoModal(), IDYES);
    EXPECT_EQ(innerResult, IDNO);
    EXPECT_EQ(seen, (std::vector<UINT>{9700, 9701}));
    EXPECT_EQ(driver.runs, 2);
}
