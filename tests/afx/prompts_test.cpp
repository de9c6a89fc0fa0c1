#include <afx/afxdlgs.h>
#include <afx/afxtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

TEST(PromptsTest, MessageBoxesAreAnsweredAndRecorded) {
    CAfxRecordingResponder r;
    r.AnswerMessageBox(IDNO);
    EXPECT_EQ(MessageBox(nullptr, "是否要从驱动器同步参数？", "提示", MB_YESNO | MB_ICONWARNING),
              IDNO);
    // With the queue empty the default button answers.
    EXPECT_EQ(AfxMessageBox("保存成功", MB_OK | MB_ICONINFORMATION), IDOK);
    EXPECT_EQ(AfxMessageBox("删除?", MB_YESNO | MB_DEFBUTTON2 | MB_ICONQUESTION), IDNO);
    EXPECT_EQ(AfxMessageBox("重试?", MB_RETRYCANCEL | MB_ICONERROR), IDRETRY);
    ASSERT_EQ(r.prompts.size(), 4u);
    const AfxPrompt& first = r.prompts[0];
    EXPECT_EQ(first.kind, AfxPrompt::MessageBox);
    EXPECT_EQ(first.text, "是否要从驱动器同步参数？");
    EXPECT_EQ(first.caption, "提示");
    EXPECT_EQ(first.Icon(), MB_ICONWARNING);
    EXPECT_EQ(first.Buttons(), MB_YESNO);
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
    const CString existing = CString(dir.filePath("参数.csv").toStdString());
    QFile f(dir.filePath("参数.csv"));
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.close();
    const CString fresh = CString(dir.filePath("新文件").toStdString());

    CAfxRecordingResponder r;
    r.ChooseFiles({fresh});
    CFileDialog save(FALSE, "csv", "默认.csv", OFN_OVERWRITEPROMPT | OFN_HIDEREADONLY,
                     "CSV files (*.csv)|*.csv|All files (*.*)|*.*||");
    ASSERT_EQ(save.DoModal(), IDOK);
    EXPECT_EQ(save.GetPathName(), fresh + ".csv");
    const AfxPrompt* p = r.Last(AfxPrompt::FileDialog);
    ASSERT_NE(p, nullptr);
    EXPECT_FALSE(p->open);
    EXPECT_EQ(p->text, "默认.csv");
    EXPECT_EQ(p->defExt, "csv");
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
    const CString a = CString(dir.filePath("a.xlsx").toStdString());
    const CString b = CString(dir.filePath("b.xls").toStdString());
    for (const char* n : {"a.xlsx", "b.xls"}) {
        QFile f(dir.filePath(n));
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    }
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

    r.ChooseFiles({CString(dir.filePath("missing.xls").toStdString())});
    EXPECT_EQ(open.DoModal(), IDCANCEL); // must exist
    r.CancelFileDialog();
    EXPECT_EQ(open.DoModal(), IDCANCEL);
    EXPECT_EQ(open.GetPathName(), "");
    EXPECT_EQ(open.GetStartPosition(), nullptr);
}
