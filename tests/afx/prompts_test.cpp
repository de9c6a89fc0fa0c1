// What the user is asked and answers: message boxes, file dialogs and popup menus, with a
// recording responder and without one.
#include <afx/afxdlgs.h>
#include <afx/afxtest.h>
#include <afx/afxwin.h>

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QKeyEvent>
#include <QMenu>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

// The path of `name` in `dir`, made as an empty file first when `make` is set.
CString PathIn(const QTemporaryDir& dir, const char* name, bool make = false) {
    EXPECT_TRUE(!make || QFile(dir.filePath(name)).open(QIODevice::WriteOnly)) << name;
    return CString(dir.filePath(name).toStdString());
}

TEST(PromptsTest, MessageBoxesAreAnsweredAndRecorded) {
    CAfxRecordingResponder r;
    r.AnswerMessageBox(IDNO);
    EXPECT_EQ(MessageBox(nullptr, "是否要从驱动器同步参数？", "提示", MB_YESNO | MB_ICONWARNING),
              IDNO);
    // With the queue empty the default button answers.
    EXPECT_EQ(AfxMessageBox("保存成功", MB_OK | MB_ICONINFORMATION), IDOK);
    EXPECT_EQ(AfxMessageBox("删除?", MB_YESNO | MB_DEFBUTTON2 | MB_ICONQUESTION), IDNO);
    EXPECT_EQ(AfxMessageBox("重试?", MB_RETRYCANCEL | MB_ICONERROR), IDRETRY);
    // Text, caption, buttons and the warning icon as recorded are what every page test
    // reads back; here the icons no page asks for.
    ASSERT_EQ(r.prompts.size(), 4u);
    EXPECT_EQ(r.prompts[1].Icon(), MB_ICONINFORMATION);
    EXPECT_EQ(r.prompts[3].Icon(), MB_ICONSTOP);
}

TEST(PromptsTest, WithoutResponderOffscreenTheDefaultAnswers) {
    ASSERT_EQ(AfxGetPromptResponder(), nullptr);
    EXPECT_EQ(AfxMessageBox("no one is there", MB_YESNO), IDYES);
    EXPECT_EQ(AfxMessageBox("no one is there", MB_OKCANCEL | MB_DEFBUTTON2), IDCANCEL);
    CFileDialog open(TRUE);
    EXPECT_EQ(open.DoModal(), IDCANCEL);
    // Nor does a dialog's modal run block without a driver; a missing template fails.
    AfxRegisterDialog(AfxGetInstanceHandle(), {9200, "写入参数", 320, 200, {}});
    EXPECT_EQ(CDialog(9200).DoModal(), IDCANCEL);
    EXPECT_EQ(CDialog(424242).DoModal(), -1);
}

TEST(PromptsTest, SaveDialogAddsTheExtensionAndAsksBeforeOverwriting) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const CString existing = PathIn(dir, "参数.csv", true), fresh = PathIn(dir, "新文件");

    CAfxRecordingResponder r;
    r.ChooseFiles({fresh});
    CFileDialog save(FALSE, "csv", "默认.csv", OFN_OVERWRITEPROMPT | OFN_HIDEREADONLY,
                     "CSV files (*.csv)|*.csv|All files (*.*)|*.*||");
    ASSERT_EQ(save.DoModal(), IDOK);
    EXPECT_EQ(save.GetPathName(), fresh + ".csv");
    const AfxPrompt* p = r.Last(AfxPrompt::FileDialog);
    ASSERT_NE(p, nullptr);
    EXPECT_FALSE(p->open);
    EXPECT_EQ(p->filter, "CSV files (*.csv)|*.csv|All files (*.*)|*.*||");
    EXPECT_TRUE(p->type & OFN_OVERWRITEPROMPT);
    EXPECT_EQ(r.Count(AfxPrompt::MessageBox), 0u);

    // An existing file: the user is asked; No cancels, Yes keeps the choice.
    r.ChooseFiles({existing});
    r.AnswerMessageBox(IDNO);
    EXPECT_EQ(save.DoModal(), IDCANCEL);
    EXPECT_EQ(r.Last(AfxPrompt::MessageBox)->Buttons(), MB_YESNO);
    r.ChooseFiles({existing});
    r.AnswerMessageBox(IDYES);
    EXPECT_EQ(save.DoModal(), IDOK);
    EXPECT_EQ(save.GetPathName(), existing);

    // Without the flag nobody is asked.
    CFileDialog quiet(FALSE, "csv", nullptr, OFN_HIDEREADONLY, "CSV files (*.csv)|*.csv||");
    r.ChooseFiles({existing});
    const size_t boxes = r.Count(AfxPrompt::MessageBox);
    EXPECT_EQ(quiet.DoModal(), IDOK);
    EXPECT_EQ(r.Count(AfxPrompt::MessageBox), boxes);
}

TEST(PromptsTest, OpenDialogWithSeveralFilesAndCancel) {
    QTemporaryDir dir;
    const CString a = PathIn(dir, "a.xlsx", true), b = PathIn(dir, "b.xls", true);
    CAfxRecordingResponder r;
    r.ChooseFiles({a, b});
    CFileDialog open(TRUE, nullptr, nullptr, OFN_ALLOWMULTISELECT | OFN_FILEMUSTEXIST,
                     "Workbooks (*.xls;*.xlsx)|*.xls;*.xlsx||");
    ASSERT_EQ(open.DoModal(), IDOK);
    std::vector<CString> got;
    for (POSITION pos = open.GetStartPosition(); pos;)
        got.push_back(open.GetNextPathName(pos));
    EXPECT_EQ(got, (std::vector<CString>{a, b}));
    EXPECT_TRUE(r.Last(AfxPrompt::FileDialog)->open);

    r.ChooseFiles({PathIn(dir, "missing.xls")});
    EXPECT_EQ(open.DoModal(), IDCANCEL); // must exist
    r.CancelFileDialog();
    EXPECT_EQ(open.DoModal(), IDCANCEL);
    EXPECT_EQ(open.GetPathName(), "");
    EXPECT_EQ(open.GetStartPosition(), nullptr);
}

TEST(MenuTest, PopupShowsItsEntriesAndReturnsTheChosenCommand) {
    AfxRegisterMenu(AfxGetInstanceHandle(), {1980,
                                             {{0,
                                               "tree",
                                               MF_POPUP,
                                               {{2108, "新建自定义组"},
                                                {2101, "删除自定义组"},
                                                {0, "", MF_SEPARATOR},
                                                {0, "更多", MF_POPUP, {{2146, "另存为..."}}},
                                                {32853, "不再提示更新"}}}}});
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

} // namespace
