#include <afx/afxtest.h>
#include <afx/afxwin.h>

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

void RegisterMenu() {
    AfxRegisterMenu(AfxGetInstanceHandle(), {1980,
                                             {{0,
                                               "tree",
                                               MF_POPUP,
                                               {{2108, "新建自定义组"},
                                                {2101, "删除自定义组"},
                                                {0, "", MF_SEPARATOR},
                                                {0, "更多", MF_POPUP, {{2146, "另存为..."}}},
                                                {32853, "不再提示更新"}}}}});
}

} // namespace

TEST(MenuTest, PopupShowsItsEntriesAndReturnsTheChosenCommand) {
    RegisterMenu();
    CWnd wnd;
    ASSERT_TRUE(wnd.Create(nullptr, "menu", WS_POPUP, CRect(0, 0, 100, 100), nullptr, 0));
    CMenu menu;
    ASSERT_TRUE(menu.LoadMenu(1980));
    CMenu* popup = menu.GetSubMenu(0);
    popup->EnableMenuItem(2101, MF_GRAYED);
    CAfxRecordingResponder r;
    r.ChooseMenuCommand(2108);
    EXPECT_EQ(popup->TrackPopupMenu(TPM_RETURNCMD, 10, 10, &wnd), 2108);
    const AfxPrompt* shown = r.Last(AfxPrompt::PopupMenu);
    ASSERT_NE(shown, nullptr);
    EXPECT_EQ(shown->menuItems.GetSize(), 4);
    EXPECT_EQ(shown->menuItems[1], "-2101:删除自定义组");
    EXPECT_EQ(shown->menuItems[2], "2146:更多>另存为...");
    EXPECT_EQ(popup->TrackPopupMenu(TPM_RETURNCMD, 10, 10, &wnd), 0); // dismissed
}

TEST(MenuTest, RealPopupMenuReturnsTheTriggeredEntry) {
    CMenu menu;
    menu.CreatePopupMenu();
    menu.AppendMenu(MF_STRING, 11, "一");
    menu.AppendMenu(MF_SEPARATOR);
    menu.AppendMenu(MF_STRING | MF_GRAYED, 12, "二");
    menu.AppendMenu(MF_STRING, 13, "三");
    ASSERT_EQ(AfxGetPromptResponder(), nullptr);
    // Picks the entry as soon as the menu is up.
    QTimer picker;
    QObject::connect(&picker, &QTimer::timeout, [&picker] {
        QMenu* q = nullptr;
        for (QWidget* w : QApplication::topLevelWidgets())
            if (auto* m = qobject_cast<QMenu*>(w); m && m->isVisible())
                q = m;
        if (!q)
            return;
        picker.stop();
        for (QAction* a : q->actions())
            if (a->data().toUInt() == 13)
                q->setActiveAction(a);
        QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
        QCoreApplication::sendEvent(q, &enter);
    });
    picker.start(5);
    EXPECT_EQ(menu.TrackPopupMenu(TPM_RETURNCMD, 20, 20, nullptr), 13);
}
