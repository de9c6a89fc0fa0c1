#include <zorhost/services/HostTabManager.h>

#include <afx/afxqt.h>
#include <afx/afxtest.h>
#include <afx/afxwin.h>

#include <QTabWidget>

#include <gtest/gtest.h>

#include <functional>
#include <vector>

using zorhost::CHostTabManager;

namespace {

// Stands for a plug-in's panel: a framework window built inside the tab's parent.
class Panel : public CWnd {
public:
    explicit Panel(int* destroyed) : m_destroyed(destroyed) {}
    std::function<void()> onDestroy;

protected:
    void OnDestroy() override {
        ++*m_destroyed;
        if (onDestroy)
            onDestroy();
        CWnd::OnDestroy();
    }

private:
    int* m_destroyed;
};

class TabManager : public ::testing::Test {
protected:
    TabManager() {
        widget.resize(800, 600);
        widget.show();
    }
    // A tab with a panel in it, as ShowPanel makes one.
    HWND Open(const char* caption, uintptr_t context, Panel& panel) {
        HWND parent = nullptr;
        RECT rect{};
        EXPECT_TRUE(tabs.CreateTab(parent, rect, context, caption, ""));
        EXPECT_NE(parent, nullptr);
        EXPECT_TRUE(panel.Create(nullptr, "panel", WS_CHILD | WS_VISIBLE, rect,
                                 CWnd::FromHandle(parent), 100));
        return parent;
    }
    QString Caption(int i) const { return widget.tabText(i); }

    QTabWidget widget;
    CHostTabManager tabs{&widget};
    int destroyed = 0;
};

} // namespace

// Captions, contexts, activation and renaming of the plug-in's own tabs are also walked by
// the module shell's tests, which run on this manager.
TEST_F(TabManager, NewTabsComeToTheFrontAndUnknownParentsAreIgnored) {
    Panel a(&destroyed), b(&destroyed);
    HWND first = Open("One", 11, a);
    CRect r;
    a.GetClientRect(&r);
    EXPECT_GT(r.Height(), 100); // the page had the tab area's size before the panel was built
    HWND second = Open("Two", 22, b);
    EXPECT_EQ(tabs.CurrentParent(), second);

    std::vector<uintptr_t> activated;
    tabs.SetActivationHandler([&](uintptr_t c) { activated.push_back(c); });
    tabs.ActivateTab(first);
    HWND stranger = reinterpret_cast<HWND>(uintptr_t(0x1234));
    tabs.ActivateTab(stranger);
    tabs.RenameTab(stranger, "x");
    tabs.CloseTab(stranger);
    tabs.CloseTab(nullptr);
    EXPECT_EQ(tabs.CurrentParent(), first);
    EXPECT_EQ(tabs.TabCount(), 2);
    EXPECT_EQ(Caption(0), QStringLiteral("One"));
    EXPECT_EQ(Caption(1), QStringLiteral("Two"));
    widget.setCurrentIndex(1);
    EXPECT_EQ(activated, (std::vector<uintptr_t>{11, 22}));
}

TEST_F(TabManager, ClosingDestroysThePanelOnceWhicheverWayTheTabCloses) {
    Panel a(&destroyed), b(&destroyed), c(&destroyed);
    HWND first = Open("One", 1, a);
    HWND second = Open("Two", 2, b);
    HWND third = Open("Three", 3, c);

    tabs.CloseTab(first);
    EXPECT_EQ(destroyed, 1);
    EXPECT_EQ(a.GetSafeHwnd(), nullptr);
    EXPECT_EQ(AfxWidgetFromHandle(first), nullptr);
    EXPECT_EQ(tabs.TabCount(), 2);
    EXPECT_EQ(widget.count(), 2);
    tabs.CloseTab(first); // twice is harmless
    EXPECT_EQ(destroyed, 1);

    // The user's close button.
    emit widget.tabCloseRequested(widget.indexOf(tabs.PageOf(second)));
    EXPECT_EQ(destroyed, 2);
    EXPECT_EQ(b.GetSafeHwnd(), nullptr);
    EXPECT_EQ(widget.count(), 1);
    EXPECT_EQ(Caption(0), QStringLiteral("Three"));

    // A panel that closes its own tab while dying.
    c.onDestroy = [&] { tabs.CloseTab(third); };
    tabs.CloseTab(third);
    EXPECT_EQ(destroyed, 3);
    EXPECT_EQ(tabs.TabCount(), 0);
    EXPECT_EQ(widget.count(), 0);
}

TEST(TabManagerLifetime, TheManagerClosesItsTabsAndLeavesOthersAlone) {
    QTabWidget widget;
    auto* own = new QWidget;
    widget.addTab(own, QStringLiteral("host page"));
    int destroyed = 0;
    Panel a(&destroyed);
    {
        CHostTabManager tabs(&widget);
        HWND parent = nullptr;
        RECT rect{};
        ASSERT_TRUE(tabs.CreateTab(parent, rect, 5, "One", ""));
        ASSERT_TRUE(
            a.Create(nullptr, "panel", WS_CHILD | WS_VISIBLE, rect, CWnd::FromHandle(parent), 100));
        EXPECT_EQ(tabs.ParentAt(0), nullptr); // the host's own page
        EXPECT_EQ(tabs.ParentAt(7), nullptr);
        emit widget.tabCloseRequested(0); // not the manager's to close
        EXPECT_EQ(widget.count(), 2);
    }
    EXPECT_EQ(destroyed, 1);
    EXPECT_EQ(widget.count(), 1);
    EXPECT_EQ(widget.widget(0), own);

    // Without a tab widget no tab is made, and no parent handed out.
    CHostTabManager none(nullptr);
    HWND parent = reinterpret_cast<HWND>(uintptr_t(1));
    RECT rect{};
    EXPECT_FALSE(none.CreateTab(parent, rect, 0, "x", ""));
    EXPECT_EQ(parent, nullptr);
}
