// Messages and the waits around them: posts from worker threads, timers, keys in a dialog,
// waits that keep the messages flowing, locks, events and nested modal runs.
#include <afx/afxmt.h>
#include <afx/afxtest.h>
#include <afx/afxwin.h>

#include <QApplication>
#include <QThread>
#include <QTimer>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace {

constexpr UINT UM_SEQ = WM_USER + 1;

// Records numbered messages and timer ticks, and on which thread they ran.
class RecordingWnd : public CWnd {
public:
    std::vector<std::pair<WPARAM, LPARAM>> seq;
    std::vector<UINT_PTR> ticks;
    bool offUiThread = false;
    int destroyed = 0;

    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message == UM_SEQ) {
            if (QThread::currentThread() != qApp->thread())
                offUiThread = true;
            seq.emplace_back(wParam, lParam);
            return 0;
        }
        return CWnd::WindowProc(message, wParam, lParam);
    }

protected:
    void OnTimer(UINT_PTR id) override { ticks.push_back(id); }
    void OnDestroy() override { ++destroyed; }
};

BOOL MakeTopLevel(CWnd& w) {
    return w.Create(nullptr, "test", WS_POPUP, CRect(0, 0, 50, 50), nullptr, 0);
}

TEST(MessagesTest, PostsFromWorkersArriveOnTheUiThreadInOrder) {
    RecordingWnd wnd;
    ASSERT_TRUE(MakeTopLevel(wnd));
    constexpr int kThreads = 4;
    constexpr int kEach = 500;
    std::vector<std::thread> workers;
    const HWND h = wnd.GetSafeHwnd();
    for (int t = 0; t < kThreads; ++t)
        workers.emplace_back([h, t] {
            for (int i = 0; i < kEach; ++i)
                ::PostMessage(h, UM_SEQ, WPARAM(t), LPARAM(i));
        });
    for (auto& w : workers)
        w.join();
    ASSERT_TRUE(AfxPumpMessagesUntil([&] { return wnd.seq.size() == kThreads * kEach; }, 5000));
    EXPECT_FALSE(wnd.offUiThread);
    std::vector<LPARAM> next(kThreads, 0);
    for (const auto& [t, i] : wnd.seq) {
        ASSERT_EQ(i, next[t]) << "thread " << t;
        ++next[t];
    }
}

TEST(MessagesTest, PostToADestroyedWindowIsDropped) {
    auto* wnd = new RecordingWnd;
    ASSERT_TRUE(MakeTopLevel(*wnd));
    const HWND h = wnd->GetSafeHwnd();
    EXPECT_TRUE(::PostMessage(h, UM_SEQ, 1, 1));
    delete wnd; // destroys the window with the message still queued
    EXPECT_FALSE(IsWindow(h));
    EXPECT_FALSE(::PostMessage(h, UM_SEQ, 2, 2));
    // A live window posted after the dead one proves the queue has been run past it.
    RecordingWnd marker;
    ASSERT_TRUE(MakeTopLevel(marker));
    marker.PostMessage(UM_SEQ, 0, 0);
    EXPECT_TRUE(AfxPumpMessagesUntil([&] { return !marker.seq.empty(); }, 2000));
}

TEST(MessagesTest, TimerFiresAndEndsWithItsWindow) {
    RecordingWnd wnd;
    RecordingWnd clock;
    ASSERT_TRUE(MakeTopLevel(wnd));
    ASSERT_TRUE(MakeTopLevel(clock));
    EXPECT_EQ(wnd.SetTimer(1029, 5), 1029u);
    ASSERT_TRUE(AfxPumpMessagesUntil([&] { return wnd.ticks.size() >= 3; }, 3000));
    EXPECT_EQ(wnd.ticks.front(), 1029u);
    EXPECT_TRUE(wnd.DestroyWindow());
    EXPECT_EQ(wnd.destroyed, 1);
    EXPECT_EQ(wnd.GetSafeHwnd(), nullptr);
    const size_t before = wnd.ticks.size();
    clock.SetTimer(1, 5);
    ASSERT_TRUE(AfxPumpMessagesUntil([&] { return clock.ticks.size() >= 6; }, 3000));
    EXPECT_EQ(wnd.ticks.size(), before);
    EXPECT_FALSE(wnd.KillTimer(1029));
    EXPECT_TRUE(clock.KillTimer(1));
    EXPECT_FALSE(clock.KillTimer(1));
}

class KeyDialog : public CDialog {
public:
    KeyDialog() : CDialog(9100) {}
    int oks = 0;
    int cancels = 0;
    void OnOK() override { ++oks; }
    void OnCancel() override { ++cancels; }
};

// A pre-translation that takes a key is left to the cell editors' suite, which relies on it;
// a button's click reaching its dialog, to the dialogs the pages and custom groups drive.
TEST(MessagesTest, EnterAndEscapeEndTheDialog) {
    AfxRegisterDialog(AfxGetInstanceHandle(),
                      {9100,
                       "keys",
                       200,
                       100,
                       {{9101, DlgCtl::Edit, "", 10, 10, 100, 22},
                        {IDOK, DlgCtl::Button, "OK", 100, 40, 80, 24, BS_DEFPUSHBUTTON}}});
    KeyDialog dlg;
    ASSERT_TRUE(dlg.Create(9100));
    CWnd* edit = dlg.GetDlgItem(9101);
    // Enter becomes the default button's command, Escape IDCANCEL.
    AfxTestPressKey(edit, VK_RETURN);
    EXPECT_EQ(dlg.oks, 1);
    AfxTestPressKey(edit, VK_ESCAPE);
    EXPECT_EQ(dlg.cancels, 1);
}

TEST(ThreadsTest, PumpingWaitKeepsMessagesFlowing) {
    RecordingWnd wnd;
    ASSERT_TRUE(MakeTopLevel(wnd));
    CEvent done; // auto-reset
    const HWND h = wnd.GetSafeHwnd();
    std::thread worker([&] {
        for (int i = 0; i < 20; ++i)
            ::PostMessage(h, UM_SEQ, 0, i);
        done.SetEvent();
    });
    // Polls in 50 ms steps, as the nested copy loop does.
    DWORD r = WAIT_TIMEOUT;
    for (int i = 0; i < 200 && r == WAIT_TIMEOUT; ++i)
        r = AfxWaitPumping(done, 50);
    worker.join();
    EXPECT_EQ(r, WAIT_OBJECT_0);
    // Messages posted before the signal were handled during the wait or right after.
    EXPECT_TRUE(AfxPumpMessagesUntil([&] { return wnd.seq.size() == 20; }, 2000));
    // Auto-reset: the signal was consumed; a wait now times out, timers still run meanwhile.
    wnd.SetTimer(1, 5);
    EXPECT_EQ(AfxWaitPumping(done, 60), WAIT_TIMEOUT);
    EXPECT_FALSE(wnd.ticks.empty());
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

} // namespace
